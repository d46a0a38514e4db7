#include "reference_host/discretisation/linear_solve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "reference_host/discretisation/solver_matrix.h"

namespace {

using host::LinearSolve;
using host::MatrixSolver;
using host::SolverMatrix;

constexpr int size = 5;

/// Tridiagonal with 4 on the diagonal, -1 before and -2 after it, and two entries in the corners,
/// all times a factor.
void FillBand(CKVX_ART_SparseMatrix& A, double factor = 1.0) {
    for (int row = 1; row <= size; ++row) {
        A.AddElementValue(row, row, 4.0 * factor);
        if (row > 1) {
            A.AddElementValue(row, row - 1, -1.0 * factor);
        }
        if (row < size) {
            A.AddElementValue(row, row + 1, -2.0 * factor);
        }
    }
    A.AddElementValue(1, size, -1.0 * factor);
    A.AddElementValue(size, 1, -2.0 * factor);
}

TEST(LinearSolveReport, ResidualThatFellIsProgress) {
    EXPECT_TRUE((LinearSolve{1.0, 0.999, 0.0, 1, true}.MadeProgress()));
    EXPECT_FALSE((LinearSolve{1.0, 1.0, 0.0, 1, true}.MadeProgress()));
    EXPECT_FALSE((LinearSolve{1.0, 1.001, 0.0, 1, true}.MadeProgress()));
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE((LinearSolve{1.0, notANumber, notANumber, 1, true}.MadeProgress()));
}

TEST(LinearSolveReport, ResidualAtTheLevelOfRoundingErrorsNeedNotFall) {
    const LinearSolve atRounding{1e-16, 2e-16, 3e-16, 1, true};

    EXPECT_TRUE(atRounding.MadeProgress());
    EXPECT_EQ(atRounding.Reduction(), 0.0);
    EXPECT_EQ((LinearSolve{1.0, 0.25, 0.0, 1, true}.Reduction()), 0.25);
    EXPECT_EQ((LinearSolve{}.Reduction()), 0.0);  // solved by its first guess
}

TEST(LinearSolveReport, OnlyAnUnchangedFirstGuessWithAResidualIsIdle) {
    EXPECT_TRUE((LinearSolve{1.0, 1.0, 0.1, 0, false}.IsIdle()));
    EXPECT_FALSE((LinearSolve{1.0, 1.0, 0.1, 1, true}.IsIdle()));
    EXPECT_FALSE((LinearSolve{1e-16, 1e-16, 2e-16, 0, false}.IsIdle()));
    EXPECT_FALSE((LinearSolve{}.IsIdle()));
}

class LinearSolveOf : public testing::TestWithParam<MatrixSolver> {};

TEST_P(LinearSolveOf, MeasuresTheTrueResidualBeforeAndAfter) {
    SolverMatrix A(size, GetParam());
    FillBand(A.Matrix());
    const std::vector<double> b = {0, 3, -4, 0, 0, 0};
    std::vector<double> x(size + 1, 0.0);

    const LinearSolve solve = A.Solve(b, x);

    EXPECT_EQ(solve.firstResidual, 5.0);
    EXPECT_EQ(solve.residual, A.Residual(b, x));
    EXPECT_LT(solve.residual, 1e-6);
    EXPECT_TRUE(solve.changed);
    EXPECT_TRUE(solve.MadeProgress());
}

TEST_P(LinearSolveOf, SolvesOfASolvedSystemCountAsProgress) {
    SolverMatrix A(size, GetParam());
    FillBand(A.Matrix());
    const std::vector<double> b = {0, 4, 1, 1, 1, 2};
    std::vector<double> x(size + 1, 0.0);
    A.SetTolerance(1e-12);
    A.Solve(b, x);

    // Repeated solves end at the level of rounding errors, where the residual moves at random.
    for (int call = 0; call < 20; ++call) {
        const LinearSolve solve = A.Solve(b, x);

        EXPECT_FALSE(solve.IsIdle()) << call;
        EXPECT_TRUE(solve.MadeProgress()) << call << ": " << solve.firstResidual << " to "
                                          << solve.residual << ", rounding " << solve.rounding;
    }
}

TEST_P(LinearSolveOf, CoefficientsOfAnySizeAreSolvedAndRestored) {
    for (const double coefficient : {1e-150, 1e-30, 1.0, 1e30, 1e150}) {
        for (const double right : {1e-150, 1e-30, 1.0, 1e30, 1e150}) {
            SolverMatrix A(size, GetParam());
            FillBand(A.Matrix(), coefficient);
            A.SetTolerance(1e-12);
            const double diagonal = A.Matrix().GetDiagonalValue(3);
            const std::vector<double> b = {0, right, right, right, right, right};
            std::vector<double> x(size + 1, 0.0);

            const LinearSolve solve = A.Solve(b, x);

            EXPECT_LT(solve.residual, 1e-9 * solve.firstResidual) << coefficient << ' ' << right;
            EXPECT_NEAR(solve.firstResidual / right, std::sqrt(5.0), 1e-9);
            for (int row = 1; row <= size; ++row) {
                EXPECT_NEAR(x[row] * coefficient / right, 1.0, 1e-9)
                    << coefficient << ' ' << right << ", row " << row;
            }
            EXPECT_EQ(A.Matrix().GetDiagonalValue(3), diagonal) << coefficient << ' ' << right;
        }
    }
}

/// Each row has coefficients of a size of its own.
TEST_P(LinearSolveOf, RowsOfDifferentSizesAreSolvedTogether) {
    const std::vector<double> sizes = {0, 1e-150, 1.0, 1e150, 1e-20, 1e90};
    SolverMatrix A(size, GetParam());
    std::vector<double> b(size + 1, 0.0);
    for (int row = 1; row <= size; ++row) {
        A.Matrix().AddElementValue(row, row, 4.0 * sizes[row]);
        A.Matrix().AddElementValue(row, row % size + 1, -3.0 * sizes[row]);
        b[row] = sizes[row];  // the solution is x = 1
    }
    A.SetTolerance(1e-12);
    std::vector<double> x(size + 1, 0.0);

    A.Solve(b, x);

    for (int row = 1; row <= size; ++row) {
        EXPECT_NEAR(x[row], 1.0, 1e-9) << row;
    }
}

TEST_P(LinearSolveOf, ResidualBelowTheThresholdOfTheSolverIsReduced) {
    SolverMatrix A(size, GetParam());
    FillBand(A.Matrix());
    const std::vector<double> b(size + 1, 1e-16);  // BiCGSTAB alone stops below 1e-15
    std::vector<double> x(size + 1, 0.0);

    const LinearSolve solve = A.Solve(b, x);

    EXPECT_TRUE(solve.changed);
    EXPECT_LT(solve.residual, 1e-6 * solve.firstResidual);
}

INSTANTIATE_TEST_SUITE_P(Both, LinearSolveOf,
                         testing::Values(MatrixSolver::Bicgstab, MatrixSolver::Samg),
                         [](const auto& given) { return std::string(host::Name(given.param)); });

TEST(LinearSolveLimit, BicgstabWithoutIterationsIsIdle) {
    SolverMatrix A(size, MatrixSolver::Bicgstab);
    FillBand(A.Matrix());
    A.SetTimes(0);
    const std::vector<double> b = {0, 3, -4, 0, 0, 0};
    const std::vector<double> guess = {0, 1, 2, 3, 4, 5};
    std::vector<double> x = guess;

    const LinearSolve solve = A.Solve(b, x);

    EXPECT_EQ(x, guess);
    EXPECT_TRUE(solve.IsIdle());
    EXPECT_GT(solve.firstResidual, 1.0);
}

TEST(LinearSolveLimit, SamgWithAToleranceOfOneIsIdle) {
    SolverMatrix A(size, MatrixSolver::Samg);
    FillBand(A.Matrix());
    A.SetTolerance(1.0);
    const std::vector<double> b = {0, 3, -4, 0, 0, 0};
    std::vector<double> x(size + 1, 0.0);

    EXPECT_TRUE(A.Solve(b, x).IsIdle());
}

}  // namespace
