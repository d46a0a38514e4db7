/// The two classes of the toolbox that call the solver library, from assembled entries to a
/// solution.

#include <gtest/gtest.h>

#include <vector>

#include "linear_algebra/solver_dense.h"
#include "linear_algebra/solver_samg.h"
#include "matrix_solver/matrix_solver.h"
#include "plain/samples/problems.h"

namespace {

/// Declares and fills the entries of the problem as an operator does.
void Assemble(const Problem& problem, CKVX_ART_SparseMatrix& A) {
    for (int row = 1; row <= problem.n; ++row) {
        for (int k = problem.Ia[row - 1] - 1; k < problem.Ia[row] - 1; ++k) {
            A.AddIndex(row, problem.Ja[k]);
        }
    }
    A.CompressIndex();
    for (int row = 1; row <= problem.n; ++row) {
        for (int k = problem.Ia[row - 1] - 1; k < problem.Ia[row] - 1; ++k) {
            A.AddElementValue(row, problem.Ja[k], problem.Aa[k]);
        }
    }
}

/// The values with an unused entry 0 in front.
std::vector<double> OneBased(const std::vector<double>& values) {
    std::vector<double> result(1, 0.0);
    result.insert(result.end(), values.begin(), values.end());
    return result;
}

std::vector<double> ZeroBased(const std::vector<double>& values) {
    return {values.begin() + 1, values.end()};
}

TEST(SolverFront, SolvesTheAssembledSystem) {
    const Problem problem = ConvectionDiffusion(12, 10.0);
    CKVX_ART_MatSolver_SAMG A(problem.n);
    Assemble(problem, A);
    const std::vector<double> b = OneBased(problem.rhs);
    std::vector<double> x(b.size(), 0.0);

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));

    EXPECT_LE(RelativeResidual(problem, ZeroBased(x)), 1.1e-8 * 1.0001);
}

TEST(SolverFront, SolvesRowsWithNegativeDiagonals) {
    Problem problem = Diffusion(12, 1.0, 1.0, 1.0);
    NegateHalfOfTheRows(problem, /*seed=*/41);
    CKVX_ART_MatSolver_SAMG A(problem.n);
    Assemble(problem, A);
    const std::vector<double> b = OneBased(problem.rhs);
    std::vector<double> x(b.size(), 0.0);

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));

    EXPECT_LE(RelativeResidual(problem, ZeroBased(x)), 1.1e-8 * 1.0001);
    for (int row = 1; row <= problem.n; ++row) {
        ASSERT_EQ(A.GetDiagonalValue(row), problem.Aa[problem.Ia[row - 1] - 1]) << row;
    }
}

TEST(SolverFront, ATighterToleranceTakesEffectAtTheNextSolve) {
    const Problem problem = Diffusion(12, 1.0, 1.0, 1.0);
    CKVX_ART_MatSolver_SAMG A(problem.n);
    Assemble(problem, A);
    const std::vector<double> b = OneBased(problem.rhs);
    std::vector<double> x(b.size(), 0.0);
    A.SetTolerance(1e-2);
    A.MatSolve(b.data(), x.data());
    const double rough = RelativeResidual(problem, ZeroBased(x));

    A.SetTolerance(1e-12);
    A.MatSolve(b.data(), x.data());

    EXPECT_LE(rough, 1e-2);
    EXPECT_GT(rough, 1e-12);
    EXPECT_LE(RelativeResidual(problem, ZeroBased(x)), 1.0001e-12);
}

/// Full systems that the dense solver hands to the library.
class DenseFront : public testing::TestWithParam<int> {};

TEST_P(DenseFront, SolvesSystemsThatAreNotDominant) {
    const int n = GetParam();
    const Problem problem = Dense(n, 0.05, /*seed=*/42);
    std::vector<std::vector<double>> rows(n + 1, std::vector<double>(n + 1, 0.0));
    std::vector<double*> A(n + 1, nullptr);
    for (int i = 1; i <= n; ++i) {
        for (int k = problem.Ia[i - 1] - 1; k < problem.Ia[i] - 1; ++k) {
            rows[i][problem.Ja[k]] = problem.Aa[k];
        }
        A[i] = rows[i].data();
    }
    std::vector<double> b = OneBased(problem.rhs), x(b.size(), 0.0);
    CKVX_ACMT_MatSolver_Dense dense;

    EXPECT_EQ(dense.SolveDenseMatrix(A.data(), b.data(), n, x.data()), CKVXMatrixSolver::Solved);

    EXPECT_LE(RelativeResidual(problem, ZeroBased(x)), 1.1e-6);
}

INSTANTIATE_TEST_SUITE_P(Sizes, DenseFront, testing::Values(1, 2, 19, 50, 200));

TEST(DenseFront, ReturnsTheStatusOfASingularPair) {
    std::vector<double> first{0.0, 1.0, 1.0}, second{0.0, 1.0, 1.0}, b{0.0, 1.0, 2.0};
    std::vector<double*> A{nullptr, first.data(), second.data()};
    std::vector<double> x(3, 0.0);
    CKVX_ACMT_MatSolver_Dense dense;

    EXPECT_EQ(dense.SolveDenseMatrix(A.data(), b.data(), 2, x.data()), CKVXMatrixSolver::Singular);
}

}  // namespace
