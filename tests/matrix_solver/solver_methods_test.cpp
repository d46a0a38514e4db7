/// The parts behind the class, each on data small enough to redo by hand or against a scan.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "matrix_solver/csr_system.h"
#include "matrix_solver/dense_lu.h"
#include "matrix_solver/ilu0.h"
#include "matrix_solver/krylov.h"
#include "matrix_solver/lu_work.h"
#include "matrix_solver/multigrid.h"
#include "matrix_solver/pairwise_multigrid.h"
#include "matrix_solver/sparse_lu.h"
#include "plain/samples/problems.h"

namespace {

using kvx3d_solver::CsrSystem;
using kvx3d_solver::Vector;

CsrSystem Read(const Problem& p) {
    return kvx3d_solver::ReadSystem(
               {p.n, p.NonZeros(), p.Ia.data(), p.Ja.data(), p.Aa.data(), p.rhs.data()})
        .value();
}

/// The system's solution in its own scale.
Vector Scaled(const Problem& p, const CsrSystem& system) {
    Vector x = p.exact;
    for (double& v : x) {
        v = std::ldexp(v, -system.solutionExponent);
    }
    return x;
}

TEST(CsrSystem, SortsRowsAndTurnsNegativeDiagonals) {
    Problem p;
    p.AddRow(1.0, {{3, 0.5}, {2, 0.25}});
    p.AddRow(-1.5, {{1, 0.5}});
    p.AddRow(1.0, {});
    p.rhs = {1.0, 1.0, 1.5};

    const CsrSystem system = Read(p);

    EXPECT_EQ(system.rowStart, (std::vector<int>{0, 3, 5, 6}));
    EXPECT_EQ(system.column, (std::vector<int>{0, 1, 2, 0, 1, 2}));
    EXPECT_EQ(system.value, (Vector{1.0, 0.25, 0.5, -0.5, 1.5, 1.0}));
    EXPECT_EQ(system.diagonal, (std::vector<int>{0, 4, 5}));
    EXPECT_EQ(system.rhs, (Vector{1.0, -1.0, 1.5}));
    EXPECT_EQ(system.solutionExponent, 0);
}

TEST(CsrSystem, ScalesByPowersOfTwo) {
    Problem p;
    p.AddRow(12.0, {});
    p.rhs = {3.0};

    const CsrSystem system = Read(p);

    EXPECT_EQ(system.value, (Vector{1.5}));
    EXPECT_EQ(system.rhs, (Vector{1.5}));
    EXPECT_EQ(system.solutionExponent, 1 - 3);  // x = 1 here, 0.25 for the caller
}

TEST(CsrSystem, ResidualOfAValueThatIsNotFiniteIsInfinite) {
    const CsrSystem system = Read(Diffusion(2, 1.0, 1.0, 1.0));
    Vector x(8, 0.0), r(8);
    x[4] = std::nan("");

    EXPECT_EQ(kvx3d_solver::Residual(system, x, r), HUGE_VAL);
}

TEST(CsrSystem, IsSymmetricWhereEveryEntryHasAnEqualPartner) {
    Problem negated = Diffusion(6, 1.0, 2.0, 3.0);
    NegateHalfOfTheRows(negated, /*seed=*/37);
    EXPECT_TRUE(kvx3d_solver::IsSymmetric(Read(Diffusion(6, 1.0, 2.0, 3.0))));
    EXPECT_TRUE(kvx3d_solver::IsSymmetric(Read(negated)));

    Problem changed = Diffusion(6, 1.0, 2.0, 3.0);
    changed.Aa[1] *= 1.0 + 1e-6;
    EXPECT_FALSE(kvx3d_solver::IsSymmetric(Read(changed)));
    EXPECT_FALSE(kvx3d_solver::IsSymmetric(Read(ConvectionDiffusion(6, 1.0))));
}

TEST(CsrSystem, AnEntryWithoutPartnerIsNotSymmetric) {
    for (const bool below : {false, true}) {
        Problem p;
        p.AddRow(1.0, {{2, -0.25}});
        p.AddRow(1.0, {{1, -0.25}, {3, below ? -0.25 : -0.5}});
        p.AddRow(1.0, {{2, -0.25}});
        p.rhs = {1.0, 1.0, 1.0};
        EXPECT_EQ(kvx3d_solver::IsSymmetric(Read(p)), below);

        Problem oneSided;
        oneSided.AddRow(1.0, below ? std::vector<Problem::Neighbour>{{2, -0.25}}
                                   : std::vector<Problem::Neighbour>{{2, -0.25}, {3, -0.25}});
        oneSided.AddRow(1.0, {{1, -0.25}});
        oneSided.AddRow(1.0, below ? std::vector<Problem::Neighbour>{{1, -0.25}}
                                   : std::vector<Problem::Neighbour>{{2, -1e-9}});
        oneSided.rhs = {1.0, 1.0, 1.0};
        EXPECT_FALSE(kvx3d_solver::IsSymmetric(Read(oneSided)));
    }
}

TEST(CsrSystem, ColumnsOfFixedRowsDoNotCountAgainstSymmetry) {
    Problem blanked = Diffusion(6, 1.0, 1.0, 1.0);
    BlankCells(blanked, /*seed=*/38);

    EXPECT_TRUE(kvx3d_solver::IsSymmetric(Read(blanked)));
    EXPECT_TRUE(kvx3d_solver::IsSymmetric(Read(NeumannWithOneFixedCell(6))));
}

TEST(DenseLu, ExchangesRowsForTheLargerPivot) {
    Problem p;
    p.AddRow(0.0, {{2, 1.0}});
    p.AddRow(1.0, {{1, 1.0}});
    p.rhs = {1.0, 1.5};
    const CsrSystem system = Read(p);
    Vector x(2);

    const kvx3d_solver::DenseLu lu(system, 0.0);
    lu.Solve(system.rhs, x);

    EXPECT_EQ(lu.ZeroPivots(), 0);
    EXPECT_EQ(x, (Vector{0.5, 1.0}));
}

TEST(DenseLu, CountsZeroPivotsAndGivesTheirUnknownsZero) {
    Problem p;
    p.AddRow(1.0, {{2, 1.0}});
    p.AddRow(1.0, {{1, 1.0}});
    p.rhs = {1.0, 1.0};
    const CsrSystem system = Read(p);
    Vector x(2);

    const kvx3d_solver::DenseLu lu(system, 0.0);
    lu.Solve(system.rhs, x);

    EXPECT_EQ(lu.ZeroPivots(), 1);
    EXPECT_EQ(x, (Vector{1.0, 0.0}));
}

class DenseLuPanels : public testing::TestWithParam<int> {};

TEST_P(DenseLuPanels, MeetAcrossTheirBorders) {
    const Problem p = Dense(GetParam(), 0.01, /*seed=*/31);
    const CsrSystem system = Read(p);
    const Vector exact = Scaled(p, system);
    Vector x(exact.size());

    kvx3d_solver::DenseLu(system, 0.0).Solve(system.rhs, x);

    for (int i = 0; i < p.n; ++i) {
        ASSERT_NEAR(x[i], exact[i], 1e-9 * std::fabs(exact[0]) + 1e-9) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, DenseLuPanels, testing::Values(1, 31, 32, 33, 64, 97, 150));

TEST(Ilu0, IsExactOnATridiagonalMatrix) {
    Problem p;
    for (int i = 1; i <= 20; ++i) {
        std::vector<Problem::Neighbour> neighbours;
        if (i > 1) {
            neighbours.push_back({i - 1, -0.5});
        }
        if (i < 20) {
            neighbours.push_back({i + 1, -0.75});
        }
        p.AddRow(1.5, neighbours);
    }
    p.ChooseSolution(/*seed=*/32);
    const CsrSystem system = Read(p);
    const Vector exact = Scaled(p, system);
    Vector x(exact.size());

    kvx3d_solver::Ilu0(system).Apply(system.rhs, x);

    for (int i = 0; i < p.n; ++i) {
        EXPECT_NEAR(x[i], exact[i], 1e-13) << i;
    }
}

TEST(Ilu0, SurvivesAPivotThatVanishes) {
    Problem p;
    p.AddRow(1.0, {{2, 1.0}});
    p.AddRow(1.0, {{1, 1.0}});
    p.rhs = {1.0, 1.0};
    const CsrSystem system = Read(p);
    Vector z(2);

    kvx3d_solver::Ilu0(system).Apply(system.rhs, z);

    EXPECT_TRUE(std::isfinite(z[0]) && std::isfinite(z[1]));
}

/// M = 1, which makes the steps those of the textbook.
struct Identity : kvx3d_solver::Preconditioner {
    void Apply(const Vector& r, Vector& z) override { z = r; }
};

TEST(Krylov, BothMethodsEndTwoUnknownsInTwoSteps) {
    Problem p;
    p.AddRow(1.5, {{2, 0.5}});
    p.AddRow(1.25, {{1, -0.5}});
    p.rhs = {1.0, 1.0};
    const CsrSystem system = Read(p);
    Identity M;
    for (const auto method : {kvx3d_solver::BiCgStab, kvx3d_solver::Gmres}) {
        Vector x(2, 0.0), r(2);

        const int steps = method(system, M, {1e-13, 10}, x);

        EXPECT_EQ(steps, 2);
        EXPECT_LE(kvx3d_solver::Residual(system, x, r), 1e-13);
    }
}

TEST(Krylov, StepsAreBounded) {
    const CsrSystem system = Read(Diffusion(8, 1.0, 1.0, 1.0));
    Identity M;
    for (const auto method : {kvx3d_solver::BiCgStab, kvx3d_solver::Gmres}) {
        Vector x(512, 0.0), r(512);

        EXPECT_EQ(method(system, M, {0.0, 5}, x), 5);
        EXPECT_LT(kvx3d_solver::Residual(system, x, r), system.rhsNorm);
    }
}

TEST(Krylov, GmresGoesOnAcrossRestarts) {
    const CsrSystem system = Read(Diffusion(20, 1.0, 1.0, 50.0));
    Identity M;
    Vector x(8000, 0.0), r(8000);
    const double target = 1e-9 * system.rhsNorm;

    const int steps = kvx3d_solver::Gmres(system, M, {target, 500}, x);

    EXPECT_GT(steps, 40);  // one cycle does not do, or the test says nothing
    EXPECT_LE(kvx3d_solver::Residual(system, x, r), target * 1.0001);
}

TEST(Krylov, BiCgStabGivesUpATrialThatIsSlow) {
    const CsrSystem system = Read(Diffusion(12, 1.0, 1.0, 1.0));
    Identity M;
    Vector x(1728, 0.0);

    EXPECT_EQ(kvx3d_solver::BiCgStab(system, M, {1e-9, 100, 4, 1e-6}, x), 4);
}

TEST(Krylov, ABreakdownLeavesTheStart) {
    // The shadow residual is orthogonal to A r at once.
    Problem p;
    p.AddRow(0.0, {{2, 1.0}});
    p.AddRow(0.0, {{1, -1.0}});
    p.rhs = {1.0, 0.0};
    const CsrSystem system = Read(p);
    Identity M;
    Vector x(2, 0.0);

    const int steps = kvx3d_solver::BiCgStab(system, M, {1e-9, 100}, x);

    EXPECT_EQ(steps, 1);
    EXPECT_EQ(x, (Vector{0.0, 0.0}));
}

TEST(Krylov, ConjugateGradientsEndTwoUnknownsInTwoSteps) {
    Problem p;
    p.AddRow(1.5, {{2, 0.5}});
    p.AddRow(1.25, {{1, 0.5}});
    p.rhs = {1.0, 1.0};
    const CsrSystem system = Read(p);
    Identity M;
    Vector x(2, 0.0), r(2);

    const int steps = kvx3d_solver::ConjugateGradients(system, M, {1e-13, 10}, x);

    EXPECT_EQ(steps, 2);
    EXPECT_LE(kvx3d_solver::Residual(system, x, r), 1e-13);
}

TEST(Krylov, ConjugateGradientsSetFixedUnknownsFirst) {
    Problem p;  // row 1 is fixed, row 2 sees it, row 3 does not
    p.AddRow(1.0, {{2, 0.0}});
    p.AddRow(1.5, {{1, -1.0}, {3, -0.5}});
    p.AddRow(1.5, {{2, -0.5}});
    p.rhs = {1.0, 1.0, 1.0};
    const CsrSystem system = Read(p);
    Identity M;
    Vector x = {7.0, 0.0, 0.0}, r(3);

    const int steps = kvx3d_solver::ConjugateGradients(system, M, {1e-13, 10}, x);

    EXPECT_LE(steps, 2);
    EXPECT_EQ(x[0], 1.0);
    EXPECT_LE(kvx3d_solver::Residual(system, x, r), 1e-13);
}

TEST(Krylov, ConjugateGradientsLeaveAMatrixThatIsNotDefinite) {
    Problem p;
    p.AddRow(0.0, {{2, 1.0}});
    p.AddRow(0.0, {{1, 1.0}});
    p.rhs = {1.0, -1.0};
    const CsrSystem system = Read(p);
    Identity M;
    Vector x(2, 0.0);

    EXPECT_EQ(kvx3d_solver::ConjugateGradients(system, M, {1e-13, 10}, x), 1);
    EXPECT_EQ(x, (Vector{0.0, 0.0}));
}

TEST(LuWork, CountsALineAsAChainOfSingleRows) {
    Problem p;
    for (int i = 1; i <= 10; ++i) {
        std::vector<Problem::Neighbour> neighbours;
        if (i > 1) {
            neighbours.push_back({i - 1, -1.0});
        }
        if (i < 10) {
            neighbours.push_back({i + 1, -1.0});
        }
        p.AddRow(2.0, neighbours);
    }
    p.ChooseSolution(/*seed=*/33);

    EXPECT_EQ(kvx3d_solver::EstimateLuWork(Read(p)), 9 * 2.0 * 4.0 + 2.0);
}

TEST(LuWork, TellsARandomGraphFromAMesh) {
    const double mesh = kvx3d_solver::EstimateLuWork(Read(Diffusion(12, 1.0, 1.0, 1.0)));
    const double random = kvx3d_solver::EstimateLuWork(Read(RandomSparse(1728, 6, /*seed=*/34)));

    EXPECT_GT(random, 10.0 * mesh);
}

TEST(SparseLu, SolvesWithRowsAndColumnsTheRightWayRound) {
    if (!kvx3d_solver::HasSparseLu()) {
        GTEST_SKIP() << "this build has no sparse LU";
    }
    Vector b{4.0, 6.0};
    kvx3d_solver::SparseLu lu({0, 2, 3}, {0, 1, 1}, {1.0, 1.0, 2.0});

    ASSERT_EQ(lu.Result(), kvx3d_solver::SparseLu::State::Ready);
    lu.Solve(b.data());

    EXPECT_EQ(b, (Vector{1.0, 3.0}));
}

TEST(SparseLu, SaysSingular) {
    if (!kvx3d_solver::HasSparseLu()) {
        GTEST_SKIP() << "this build has no sparse LU";
    }
    const kvx3d_solver::SparseLu lu({0, 2, 4}, {0, 1, 0, 1}, {1.0, 1.0, 1.0, 1.0});

    EXPECT_EQ(lu.Result(), kvx3d_solver::SparseLu::State::Singular);
}

/// Largest |x - 1|.
double DistanceFromOne(const Vector& x) {
    double largest = 0.0;
    for (const double v : x) {
        largest = std::max(largest, std::fabs(v - 1.0));
    }
    return largest;
}

TEST(Multigrid, OneCycleReachesTheSmoothPartThatIlu0DoesNot) {
    if (!kvx3d_solver::HasMultigrid()) {
        GTEST_SKIP() << "this build has no multigrid";
    }
    CsrSystem system = Read(Diffusion(24, 1.0, 1.0, 1.0));
    const Vector one(system.rhs.size(), 1.0);
    kvx3d_solver::Multiply(system, one, system.rhs);
    Vector byMultigrid(one), byIlu(one);
    const auto multigrid = kvx3d_solver::MakeMultigrid(system);
    ASSERT_TRUE(multigrid);

    multigrid->Apply(system.rhs, byMultigrid);
    kvx3d_solver::Ilu0(system).Apply(system.rhs, byIlu);

    EXPECT_LT(DistanceFromOne(byMultigrid), 0.7);
    EXPECT_GT(DistanceFromOne(byIlu), 0.95);
}

TEST(Multigrid, AddsNoConstantWhereWallsAreClosed) {
    if (!kvx3d_solver::HasMultigrid()) {
        GTEST_SKIP() << "this build has no multigrid";
    }
    const CsrSystem system = Read(PureNeumann(32));
    Vector z(system.rhs.size());
    const auto multigrid = kvx3d_solver::MakeMultigrid(system);
    ASSERT_TRUE(multigrid);

    multigrid->Apply(system.rhs, z);

    EXPECT_LT(DistanceFromOne(z), 5.0);
}

/// Couplings with a positive sign are weak to the coarsening, which then stalls.
TEST(Multigrid, IsSilentWhereCoarseningStalls) {
    Problem weak = Diffusion(18, 1.0, 1.0, 1.0);
    for (double& a : weak.Aa) {
        a = a < 0.0 ? 1e-3 : a;
    }
    for (const Problem& p : {weak, RandomSparse(6000, 8, /*seed=*/36)}) {
        const CsrSystem system = Read(p);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();

        kvx3d_solver::MakeMultigrid(system);

        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    }
}

TEST(Multigrid, DeclinesADiagonalMatrix) {
    Problem p;
    for (int i = 0; i < 2000; ++i) {
        p.AddRow(2.0, {});
    }
    p.ChooseSolution(/*seed=*/35);

    EXPECT_FALSE(kvx3d_solver::MakeMultigrid(Read(p)));
}

TEST(PairwiseMultigrid, OneCycleReachesTheSmoothPartThatIlu0DoesNot) {
    CsrSystem system = Read(Diffusion(24, 1.0, 1.0, 1.0));
    const Vector one(system.rhs.size(), 1.0);
    kvx3d_solver::Multiply(system, one, system.rhs);
    Vector byMultigrid(one), byIlu(one);
    const auto multigrid = kvx3d_solver::MakePairwiseMultigrid(system);
    ASSERT_TRUE(multigrid);

    multigrid->Apply(system.rhs, byMultigrid);
    kvx3d_solver::Ilu0(system).Apply(system.rhs, byIlu);

    const double rows = static_cast<double>(one.size());
    EXPECT_GT(kvx3d_solver::Dot(one, byMultigrid), 0.6 * rows);
    EXPECT_LT(kvx3d_solver::Dot(one, byIlu), 0.2 * rows);
}

TEST(PairwiseMultigrid, IsSymmetric) {
    const CsrSystem system = Read(JumpingDiffusion(16, 100.0));
    const Vector u = Read(Diffusion(16, 1.0, 2.0, 3.0)).rhs;
    const Vector v = system.rhs;
    Vector Mu(u.size()), Mv(v.size());
    const auto multigrid = kvx3d_solver::MakePairwiseMultigrid(system);
    ASSERT_TRUE(multigrid);

    multigrid->Apply(u, Mu);
    multigrid->Apply(v, Mv);

    const double size = std::sqrt(kvx3d_solver::Dot(u, Mu) * kvx3d_solver::Dot(v, Mv));
    EXPECT_NEAR(kvx3d_solver::Dot(v, Mu), kvx3d_solver::Dot(u, Mv), 1e-5 * size);  // of a float
    EXPECT_GT(std::fabs(kvx3d_solver::Dot(v, Mu)), 1e-3 * size);  // or the test says nothing
}

TEST(PairwiseMultigrid, AddsNoConstantWhereWallsAreClosed) {
    const CsrSystem system = Read(PureNeumann(32));
    Vector z(system.rhs.size());
    const auto multigrid = kvx3d_solver::MakePairwiseMultigrid(system);
    ASSERT_TRUE(multigrid);

    multigrid->Apply(system.rhs, z);

    EXPECT_LT(DistanceFromOne(z), 5.0);
}

TEST(PairwiseMultigrid, SolvesADiagonalMatrixBySweepsAlone) {
    Problem p;
    for (int i = 0; i < 2000; ++i) {
        p.AddRow(2.0, {});
    }
    p.ChooseSolution(/*seed=*/39);
    const CsrSystem system = Read(p);
    Vector z(system.rhs.size()), r(system.rhs.size());
    const auto multigrid = kvx3d_solver::MakePairwiseMultigrid(system);
    ASSERT_TRUE(multigrid);

    multigrid->Apply(system.rhs, z);

    EXPECT_LE(kvx3d_solver::Residual(system, z, r), 1e-6 * system.rhsNorm);
}

TEST(PairwiseMultigrid, DeclinesWhereNothingCanBeMatched) {
    Problem p = Diffusion(18, 1.0, 1.0, 1.0);
    for (double& a : p.Aa) {
        a = std::fabs(a);  // a positive coupling is none
    }

    EXPECT_FALSE(kvx3d_solver::MakePairwiseMultigrid(Read(p)));
}

TEST(PairwiseMultigrid, DeclinesADiagonalOfZero) {
    Problem p = Diffusion(10, 1.0, 1.0, 1.0);
    p.Aa[static_cast<std::size_t>(p.Ia[500] - 1)] = 0.0;

    EXPECT_FALSE(kvx3d_solver::MakePairwiseMultigrid(Read(p)));
}

}  // namespace
