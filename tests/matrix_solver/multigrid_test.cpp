/// The multigrid cycle as a preconditioner, and where it is not available.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "matrix_solver/csr_system.h"
#include "matrix_solver/ilu0.h"
#include "matrix_solver/krylov.h"
#include "matrix_solver/pairwise_multigrid.h"
#include "plain/samples/flow_problem.h"
#include "plain/samples/problems.h"
#include "tests/matrix_solver/systems.h"

namespace {

using kvx3d_solver::CsrSystem;
using kvx3d_solver::Vector;

/// Largest |x - 1|.
double DistanceFromOne(const Vector& x) {
    double largest = 0.0;
    for (const double v : x) {
        largest = std::max(largest, std::fabs(v - 1.0));
    }
    return largest;
}

TEST(PairwiseMultigrid, OneCycleReducesTheSmoothErrorThatIlu0Leaves) {
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

TEST(PairwiseMultigrid, IsSymmetricForASymmetricMatrix) {
    const CsrSystem system = Read(JumpingDiffusion(16, 100.0));
    const Vector u = Read(Diffusion(16, 1.0, 2.0, 3.0)).rhs;
    const Vector v = system.rhs;
    Vector Mu(u.size()), Mv(v.size());
    const auto multigrid = kvx3d_solver::MakePairwiseMultigrid(system);
    ASSERT_TRUE(multigrid);

    multigrid->Apply(u, Mu);
    multigrid->Apply(v, Mv);

    const double size = std::sqrt(kvx3d_solver::Dot(u, Mu) * kvx3d_solver::Dot(v, Mv));
    EXPECT_NEAR(kvx3d_solver::Dot(v, Mu), kvx3d_solver::Dot(u, Mv),
                1e-5 * size);  // single precision
    EXPECT_GT(std::fabs(kvx3d_solver::Dot(v, Mu)),
              1e-3 * size);  // otherwise the test would compare zeros
}

TEST(PairwiseMultigrid, AddsNoHugeConstantWhereWallsAreClosed) {
    const CsrSystem system = Read(PureNeumann(32));
    Vector z(system.rhs.size());
    const auto multigrid = kvx3d_solver::MakePairwiseMultigrid(system);
    ASSERT_TRUE(multigrid);

    multigrid->Apply(system.rhs, z);

    EXPECT_LT(DistanceFromOne(z), 5.0);
}

TEST(PairwiseMultigrid, SolvesADiagonalMatrixByItsSweeps) {
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

TEST(PairwiseMultigrid, IsNotMadeWhereNoRowsCanBeMatched) {
    Problem p = Diffusion(18, 1.0, 1.0, 1.0);
    for (double& a : p.Aa) {
        a = std::fabs(a);  // positive couplings are not matched
    }

    EXPECT_FALSE(kvx3d_solver::MakePairwiseMultigrid(Read(p)));
}

TEST(PairwiseMultigrid, IsNotMadeForADiagonalOfZero) {
    Problem p = Diffusion(10, 1.0, 1.0, 1.0);
    p.Aa[static_cast<std::size_t>(p.Ia[500] - 1)] = 0.0;

    EXPECT_FALSE(kvx3d_solver::MakePairwiseMultigrid(Read(p)));
}

/// Couplings with a positive sign are not matched, so the coarsening stalls; random graphs fill in.
TEST(PairwiseMultigrid, PrintsNothingWhereCoarseningStalls) {
    Problem weak = Diffusion(18, 1.0, 1.0, 1.0);
    for (double& a : weak.Aa) {
        a = a < 0.0 ? 1e-3 : a;
    }
    for (const Problem& p : {weak, RandomSparse(6000, 8, /*seed=*/36)}) {
        const CsrSystem system = Read(p);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();

        kvx3d_solver::MakePairwiseMultigrid(system);

        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    }
}

TEST(PairwiseMultigrid, NeedsFewStepsMoreOnAFinerMesh) {
    int steps[2] = {0, 0};
    for (const int refinement : {0, 1}) {
        const CsrSystem system = Read(Diffusion(refinement == 0 ? 20 : 40, 1.0, 1.0, 1.0));
        const auto multigrid = kvx3d_solver::MakePairwiseMultigrid(system);
        ASSERT_TRUE(multigrid);
        Vector x(system.rhs.size(), 0.0);

        steps[refinement] =
            kvx3d_solver::ConjugateGradients(system, *multigrid, {1e-8 * system.rhsNorm, 100}, x);
    }

    EXPECT_LE(steps[1], steps[0] + 6);  // without multigrid the steps double
    EXPECT_LE(steps[1], 20);
}

}  // namespace
