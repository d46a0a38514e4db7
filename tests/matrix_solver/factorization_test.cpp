/// The factorizations: exact ones, the incomplete one, and the estimate of their cost.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "matrix_solver/csr_system.h"
#include "matrix_solver/dense_lu.h"
#include "matrix_solver/ilu0.h"
#include "matrix_solver/lu_cost.h"
#include "matrix_solver/sparse_lu.h"
#include "plain/samples/problems.h"
#include "tests/matrix_solver/systems.h"

namespace {

using kvx3d_solver::CsrSystem;
using kvx3d_solver::DenseLu;
using kvx3d_solver::SparseLu;
using kvx3d_solver::Vector;
using Pivoting = DenseLu::Pivoting;

/// 2 x 2, both rows (1, 1).
Problem TwoEqualRows() {
    Problem p;
    p.AddRow(1.0, {{2, 1.0}});
    p.AddRow(1.0, {{1, 1.0}});
    p.rhs = {1.0, 1.0};
    return p;
}

TEST(DenseLu, ExchangesRowsForTheLargerPivot) {
    Problem p;
    p.AddRow(0.0, {{2, 1.0}});
    p.AddRow(1.0, {{1, 1.0}});
    p.rhs = {1.0, 1.5};
    const CsrSystem system = Read(p);
    for (const Pivoting pivoting : {Pivoting::Partial, Pivoting::Full}) {
        Vector x(2);

        const DenseLu lu(system, pivoting);
        lu.Solve(system.rhs, x);

        EXPECT_EQ(lu.ZeroPivots(), 0);
        EXPECT_EQ(x, (Vector{0.5, 1.0}));
    }
}

TEST(DenseLu, CountsExactZeroPivots) {
    EXPECT_EQ(DenseLu(Read(TwoEqualRows()), Pivoting::Partial).ZeroPivots(), 1);
}

TEST(DenseLu, WithFullPivotingSolvesAConsistentSingularSystem) {
    const CsrSystem system = Read(TwoEqualRows());
    Vector x(2);

    const DenseLu lu(system, Pivoting::Full);
    lu.Solve(system.rhs, x);

    EXPECT_EQ(lu.ZeroPivots(), 1);
    EXPECT_EQ(x[0] + x[1], 1.0);
    EXPECT_EQ(x[0] * x[1], 0.0);  // the unknown of the zero pivot
}

TEST(DenseLu, WithFullPivotingFindsPivotsOfTheSizeOfRounding) {
    // The third row is the sum of the others, but 0.1 + 0.2 is not 0.3 in binary.
    Problem p;
    p.AddRow(0.1, {{2, 0.7}, {3, 0.3}});
    p.AddRow(0.1, {{1, 0.2}, {3, 0.9}});
    p.AddRow(0.3 + 0.9, {{1, 0.3}, {2, 0.7 + 0.1}});
    p.rhs = {1.0, 1.0, 2.0};

    EXPECT_EQ(DenseLu(Read(p), Pivoting::Full).ZeroPivots(), 1);
}

TEST(DenseLu, ChoosesPivotsIndependentOfTheUnitsOfARow) {
    // Without a common scale the first row would be the pivot row, and the second lose its digits.
    Problem p;
    p.AddRow(1.0, {{2, 1e20}});
    p.AddRow(1.0, {{1, 1.0}});
    p.rhs = {1e20, 2.0};
    const CsrSystem system = Read(p);
    Vector x(2);

    DenseLu(system, Pivoting::Partial).Solve(system.rhs, x);

    EXPECT_EQ(std::ldexp(x[0], system.solutionExponent), 1.0);
    EXPECT_EQ(std::ldexp(x[1], system.solutionExponent), 1.0);
}

class DenseLuSizes : public testing::TestWithParam<int> {};

TEST_P(DenseLuSizes, AreSolvedToRounding) {
    const Problem p = Dense(GetParam(), 0.01, /*seed=*/31);
    const CsrSystem system = Read(p);
    const Vector exact = Scaled(p, system);
    for (const Pivoting pivoting : {Pivoting::Partial, Pivoting::Full}) {
        Vector x(exact.size());

        DenseLu(system, pivoting).Solve(system.rhs, x);

        for (int i = 0; i < p.n; ++i) {
            ASSERT_NEAR(x[i], exact[i], 1e-9 * std::fabs(exact[0]) + 1e-9) << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, DenseLuSizes, testing::Values(1, 31, 32, 33, 64, 97, 150));

TEST(Ilu0, IsExactOnATridiagonalMatrix) {
    const Problem p = Tridiagonal(20, -0.5, 1.5, -0.75);
    const CsrSystem system = Read(p);
    const Vector exact = Scaled(p, system);
    Vector x(exact.size());

    kvx3d_solver::Ilu0(system).Apply(system.rhs, x);

    for (int i = 0; i < p.n; ++i) {
        EXPECT_NEAR(x[i], exact[i], 1e-13) << i;
    }
}

TEST(Ilu0, CanBeAppliedAfterAZeroPivot) {
    Problem p;
    p.AddRow(1.0, {{2, 1.0}});
    p.AddRow(1.0, {{1, 1.0}});
    p.rhs = {1.0, 1.0};
    const CsrSystem system = Read(p);
    Vector z(2);

    kvx3d_solver::Ilu0(system).Apply(system.rhs, z);

    EXPECT_TRUE(std::isfinite(z[0]) && std::isfinite(z[1]));
}

TEST(Ilu0, PromisesMuchForConvectionAndLittleForALargePoissonProblem) {
    const auto promise = [](const Problem& p) {
        const CsrSystem system = Read(p);
        kvx3d_solver::Ilu0 ilu(system);
        return kvx3d_solver::IluPromise(system, ilu);
    };

    EXPECT_NEAR(promise(Diffusion(32, 1.0, 1.0, 1.0)), 4.0 / 32.0, 0.02);
    EXPECT_GT(promise(ConvectionDiffusion(32, 100.0)), 0.7);
    EXPECT_NEAR(promise(Tridiagonal(20, -0.5, 1.5, -0.75)), 1.0, 1e-12);  // exact factors
}

TEST(LuCost, CountsALineAsAChainOfSingleRows) {
    const kvx3d_solver::LuCost cost =
        kvx3d_solver::EstimateLuCost(Read(Tridiagonal(10, -1.0, 2.0, -1.0)));

    EXPECT_EQ(cost.work, 9 * 2.0 * 4.0 + 2.0);
    EXPECT_EQ(cost.entries, 9 * 2.0 * 2.0 + 2.0);
}

TEST(LuCost, IsMuchHigherForARandomGraphThanForAMesh) {
    const double mesh = kvx3d_solver::EstimateLuCost(Read(Diffusion(12, 1.0, 1.0, 1.0))).work;
    const double random = kvx3d_solver::EstimateLuCost(Read(RandomSparse(1728, 6, 34))).work;

    EXPECT_GT(random, 10.0 * mesh);
}

TEST(SparseLu, SolvesWithTheMatrixAndNotItsTranspose) {
    Problem p;
    p.AddRow(1.0, {{2, 1.0}});
    p.AddRow(1.5, {});
    p.rhs = {1.0, 1.5};
    const CsrSystem system = Read(p);
    Vector x(2);

    const SparseLu lu(system);
    ASSERT_EQ(lu.Result(), SparseLu::State::Ready);
    lu.Solve(system.rhs, x);

    EXPECT_EQ(x, (Vector{0.0, 1.0}));
}

TEST(SparseLu, ReportsASingularMatrix) {
    EXPECT_EQ(SparseLu(Read(TwoEqualRows())).Result(), SparseLu::State::Singular);
}

TEST(SparseLu, ReportsAColumnOfZerosAsSingular) {
    Problem p = Diffusion(6, 1.0, 1.0, 1.0);
    for (std::size_t k = 0; k < p.Ja.size(); ++k) {
        p.Aa[k] = p.Ja[k] == 100 ? 0.0 : p.Aa[k];
    }

    EXPECT_EQ(SparseLu(Read(p)).Result(), SparseLu::State::Singular);
}

}  // namespace
