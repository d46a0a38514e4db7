#include "linear_algebra/solver_dense.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/linear_algebra/dense_matrix.h"
#include "tests/linear_algebra/recording_matrix_solver.h"
#include "tests/support/private_access.h"

KVX3D_EXPOSE(TheElimination, &CKVX_ACMT_MatSolver_Dense::GaussElimination,
             void (CKVX_ACMT_MatSolver_Dense::*)(int, double**, double*, double*));

KVX3D_EXPOSE(TheConversion, &CKVX_ACMT_MatSolver_Dense::MatrixToCSR,
             bool (CKVX_ACMT_MatSolver_Dense::*)(double**, int));

namespace {

using Dense = CKVX_ACMT_MatSolver_Dense;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

class DenseSolver : public testing::Test {
protected:
    DenseSolver() { TheRecord() = SolverRecord{}; }
    Dense dense;
};

using DenseSolverObject = DenseSolver;
using DenseElimination = DenseSolver;
using DenseExternalPath = DenseSolver;

// The object

TEST_F(DenseSolverObject, HasItsDefaults) {
    EXPECT_EQ(dense.Ia, nullptr);
    EXPECT_EQ(dense.Ja, nullptr);
    EXPECT_EQ(dense.Aa, nullptr);
    EXPECT_EQ(dense.tolerance, 1.1e-16);
    EXPECT_EQ(dense.maxIterations, 5000);
    EXPECT_EQ(dense.solver, nullptr);
    EXPECT_TRUE(std::has_virtual_destructor_v<Dense>);
}

TEST_F(DenseSolverObject, MembersAreInTheirOrder) {
    const void* members[] = {
        &dense.Ia,       &dense.Ja,    &dense.Aa,    &dense.tolerance,   &dense.maxIterations,
        &dense.nonZeroN, &dense.rowsN, &dense.colsN, &dense.gaussMatrix, &dense.gaussSolution,
        &dense.solver};

    for (int i = 0; i < 10; ++i) {
        EXPECT_LT(members[i], members[i + 1]);
    }
    EXPECT_EQ(sizeof(dense.gaussMatrix), 21 * 21 * sizeof(double));
    EXPECT_EQ(sizeof(dense.gaussSolution), 21 * sizeof(double));
    EXPECT_EQ(sizeof(dense), sizeof(void*) * 5 + sizeof(double) * (1 + 21 * 22) + 4 * sizeof(int));
}

TEST_F(DenseSolverObject, DestroysTheLastSolverOnly) {
    Matrix A({Doubles{4.0}});
    double rhs[] = {0.0, 8.0};
    double x[] = {0.0, 0.0};
    {
        Dense three;
        three.SolveDenseMatrix(A, rhs, 1, x);
        three.SolveDenseMatrix(A, rhs, 1, x);
        three.SolveDenseMatrix(A, rhs, 1, x);
        EXPECT_EQ(TheRecord().destroyed, 0);
    }

    EXPECT_EQ(TheRecord().names, (std::vector<std::string>{"", "", ""}));
    EXPECT_EQ(TheRecord().destroyed, 1);
}

// Elimination

TEST_F(DenseElimination, SolvesThreeByThreeByHand) {
    Matrix A({{2, 1, 0}, {4, 3, 1}, {0, 2, 6}});
    double rhs[] = {0.0, 4.0, 13.0, 22.0};
    double x[4] = {};

    EXPECT_EQ(dense.SolveDenseMatrix(A, rhs, 3, x), 0);

    EXPECT_EQ(Doubles(x + 1, x + 4), (Doubles{1.0, 2.0, 3.0}));
    EXPECT_EQ(Doubles(rhs + 1, rhs + 4), (Doubles{4.0, 13.0, 22.0}));
    EXPECT_EQ(A.Row(2), (Doubles{4, 3, 1}));
    EXPECT_EQ(dense.solver, nullptr);
    EXPECT_EQ(dense.tolerance, 1.1e-16);
}

TEST_F(DenseElimination, WorkAreaHoldsTheTriangleAndTheRightHandSide) {
    Matrix A({{2, 1, 0}, {4, 3, 1}, {0, 2, 6}});
    double rhs[] = {0.0, 4.0, 13.0, 22.0};
    double x[4] = {};

    dense.SolveDenseMatrix(A, rhs, 3, x);

    const auto row = [&](int i) {
        return Doubles(dense.gaussMatrix[i] + 1, dense.gaussMatrix[i] + 5);
    };
    EXPECT_EQ(row(1), (Doubles{2, 1, 0, 4}));
    EXPECT_EQ(row(2), (Doubles{0, 1, 1, 5}));
    EXPECT_EQ(row(3), (Doubles{0, 0, 4, 12}));
    EXPECT_EQ(Doubles(dense.gaussSolution + 1, dense.gaussSolution + 4), (Doubles{1, 2, 3}));
}

TEST_F(DenseElimination, ColumnsLeftOfThePivotAreUpdatedToo) {
    Matrix A({{3, 1, 1}, {1, 2, 1}, {1, 1, 2}});
    double rhs[] = {0.0, 1.0, 1.0, 1.0};
    double x[4] = {};

    dense.SolveDenseMatrix(A, rhs, 3, x);

    // The second pivot adds the rounding residue below the first pivot to column 1 of row 3.
    const double third = 1.0 / 3.0;
    const double left2 = 1.0 - third * 3.0;
    const double left3 = 1.0 - third * 3.0;
    const double pivot = 2.0 - third * 1.0;
    const double f = (1.0 - third * 1.0) / pivot;
    EXPECT_EQ(dense.gaussMatrix[2][1], left2);
    EXPECT_EQ(dense.gaussMatrix[3][1], left3 - f * left2);
}

TEST_F(DenseElimination, DoesNotPivot) {
    Matrix A({{0, 1, 0}, {1, 0, 0}, {0, 0, 1}});
    double rhs[] = {0.0, 1.0, 2.0, 3.0};
    double x[4] = {};

    EXPECT_EQ(dense.SolveDenseMatrix(A, rhs, 3, x), 0);

    EXPECT_FALSE(std::isfinite(x[1]));
}

TEST_F(DenseElimination, EighteenIsTheLargestSizeOfTheElimination) {
    Matrix A(19, 19);
    FillDominant(A, 19, 3);
    Doubles rhs(20, 1.0);
    Doubles x(20, 0.0);

    EXPECT_EQ(dense.SolveDenseMatrix(A, rhs.data(), 18, x.data()), 0);
    EXPECT_EQ(dense.solver, nullptr);
    for (int i = 1; i <= 18; ++i) {
        double sum = 0.0;
        for (int j = 1; j <= 18; ++j) {
            sum += A[i][j] * x[j];
        }
        EXPECT_NEAR(sum, 1.0, 1e-14) << i;  // a few rounding errors of numbers near 1
    }

    TheRecord().status = 5;
    EXPECT_EQ(dense.SolveDenseMatrix(A, rhs.data(), 19, x.data()), 5);
    EXPECT_NE(dense.solver, nullptr);
}

TEST_F(DenseElimination, WorkAreaHasRoomForNineteen) {
    Matrix A(19, 19);
    FillDominant(A, 19, 3);
    Doubles rhs(20, 1.0);
    Doubles x(20, 0.0);

    (dense.*MemberOf(TheElimination{}))(19, A, rhs.data(), x.data());

    double sum = 0.0;
    for (int j = 1; j <= 19; ++j) {
        sum += A[19][j] * x[j];
    }
    EXPECT_NEAR(sum, 1.0, 1e-14);
}

TEST_F(DenseElimination, SolutionMayOverwriteTheRightHandSide) {
    Matrix A({{2, 1, 0}, {4, 3, 1}, {0, 2, 6}});
    double rhs[] = {0.0, 4.0, 13.0, 22.0};

    dense.SolveDenseMatrix(A, rhs, 3, rhs);

    EXPECT_EQ(Doubles(rhs + 1, rhs + 4), (Doubles{1.0, 2.0, 3.0}));
}

// External solver

TEST_F(DenseExternalPath, TwoByTwoStartsFromTheClosedForm) {
    Matrix A({{2, 1}, {1, 3}});
    double rhs[] = {0.0, 4.0, 7.0};
    double x[] = {0.0, 9.0, 9.0};
    TheRecord().status = 3;

    EXPECT_EQ(dense.SolveDenseMatrix(A, rhs, 2, x), 3);

    EXPECT_EQ(TheRecord().solves[0].x, (Doubles{1.0, 2.0}));
    EXPECT_EQ(Doubles(x + 1, x + 3), (Doubles{1.0, 2.0}));
}

TEST_F(DenseExternalPath, SingularTwoByTwoStartsFromNonFiniteNumbers) {
    Matrix A({{1, 2}, {2, 4}});
    double rhs[] = {0.0, 1.0, 3.0};
    double x[] = {0.0, 9.0, 9.0};

    dense.SolveDenseMatrix(A, rhs, 2, x);

    EXPECT_FALSE(std::isfinite(TheRecord().solves[0].x[0]));
    EXPECT_FALSE(std::isfinite(TheRecord().solves[0].x[1]));
}

TEST_F(DenseExternalPath, PassesOnEveryElementWithTheDiagonalFirst) {
    Matrix A({{5, 0}, {2, 6}});
    double rhs[] = {0.0, 5.0, 8.0};
    double x[] = {0.0, 0.0, 0.0};

    dense.SolveDenseMatrix(A, rhs, 2, x);

    const RecordedSolve& solve = TheRecord().solves[0];
    EXPECT_EQ(solve.n, 2);
    EXPECT_EQ(solve.nonZeroN, 4);
    EXPECT_EQ(solve.Ia, (Ints{1, 3, 5}));
    EXPECT_EQ(solve.Ja, (Ints{1, 2, 2, 1}));
    EXPECT_EQ(solve.Aa, (Doubles{5, 0, 6, 2}));
    EXPECT_EQ(solve.rhs, (Doubles{5, 8}));
    EXPECT_EQ(solve.xAddress, x + 1);
    EXPECT_NE(solve.rhsAddress, rhs + 1);
    EXPECT_EQ(solve.tolerance, 1.1e-06);
    EXPECT_EQ(solve.maxIterations, 50);
    EXPECT_EQ(solve.mode, 1);
    EXPECT_EQ(TheRecord().directFlags, Ints{0});
    EXPECT_EQ(TheRecord().names, std::vector<std::string>{""});
}

TEST_F(DenseExternalPath, KeepsSolverAndSettings) {
    Matrix A({{5, 0}, {2, 6}});
    double rhs[] = {0.0, 5.0, 8.0};
    double x[] = {0.0, 0.0, 0.0};

    dense.SolveDenseMatrix(A, rhs, 2, x);

    EXPECT_EQ(dense.Ia, nullptr);
    EXPECT_EQ(dense.Ja, nullptr);
    EXPECT_EQ(dense.Aa, nullptr);
    EXPECT_NE(dense.solver, nullptr);
    EXPECT_EQ(dense.tolerance, 1.1e-06);
    EXPECT_EQ(dense.maxIterations, 50);
    EXPECT_EQ(dense.nonZeroN, 4);
    EXPECT_EQ(dense.rowsN, 2);
    EXPECT_EQ(dense.colsN, 2);
}

TEST_F(DenseExternalPath, ANegativeDiagonalIsNegatedWithoutItsRow) {
    Matrix A({{-5, 1}, {-2, 6}});
    double rhs[] = {0.0, 5.0, 8.0};
    double x[] = {0.0, 0.0, 0.0};

    dense.SolveDenseMatrix(A, rhs, 2, x);

    EXPECT_EQ(TheRecord().solves[0].Aa, (Doubles{5, 1, 6, -2}));
    EXPECT_EQ(TheRecord().solves[0].rhs, (Doubles{-5, 8}));
    EXPECT_EQ(Doubles(rhs + 1, rhs + 3), (Doubles{5, 8}));
    EXPECT_EQ(A.Row(1), (Doubles{-5, 1}));
}

TEST_F(DenseExternalPath, ANegativeZeroDiagonalIsNotChanged) {
    Matrix A({Doubles{-0.0}});
    double rhs[] = {0.0, 5.0};
    double x[] = {0.0, 0.0};

    dense.SolveDenseMatrix(A, rhs, 1, x);

    EXPECT_TRUE(std::signbit(TheRecord().solves[0].Aa[0]));
    EXPECT_EQ(TheRecord().solves[0].rhs[0], 5.0);
}

TEST_F(DenseExternalPath, SizesOneAndZeroUseTheExternalSolver) {
    Matrix A({Doubles{4.0}});
    double rhs[] = {0.0, 8.0};
    double x[] = {0.0, 1.5};

    dense.SolveDenseMatrix(A, rhs, 1, x);
    dense.SolveDenseMatrix(A, rhs, 0, x);

    EXPECT_EQ(TheRecord().solves[0].Aa, Doubles{4.0});
    EXPECT_EQ(TheRecord().solves[0].x, Doubles{1.5});
    EXPECT_EQ(TheRecord().solves[1].n, 0);
    EXPECT_EQ(TheRecord().solves[1].nonZeroN, 0);
    EXPECT_EQ(TheRecord().solves[1].Ia, Ints{1});
}

TEST_F(DenseExternalPath, NineteenRowsAreStoredInFull) {
    Matrix A(19, 19);
    FillDominant(A, 19, 4);
    Doubles rhs(20, 2.0);
    Doubles x(20, 0.5);
    TheRecord().answer = Doubles(19, 7.0);

    EXPECT_EQ(dense.SolveDenseMatrix(A, rhs.data(), 19, x.data()), 0);

    const RecordedSolve& solve = TheRecord().solves[0];
    EXPECT_EQ(solve.nonZeroN, 361);
    for (int i = 1; i <= 19; ++i) {
        EXPECT_EQ(solve.Ia[i - 1], (i - 1) * 19 + 1);
        EXPECT_EQ(solve.Ja[solve.Ia[i - 1] - 1], i);
    }
    EXPECT_EQ(x[19], 7.0);
}

TEST_F(DenseExternalPath, TheConversionForPrintingKeepsAllSigns) {
    Matrix A({{-5, 1, 0}, {-2, -6, 3}, {7, 8, -9}});

    EXPECT_TRUE((dense.*MemberOf(TheConversion{}))(A, 3));

    EXPECT_EQ(Ints(dense.Ia, dense.Ia + 5), (Ints{0, 1, 4, 7, 10}));
    EXPECT_EQ(Ints(dense.Ja, dense.Ja + 10), (Ints{0, 1, 2, 3, 2, 1, 3, 3, 1, 2}));
    EXPECT_EQ(Doubles(dense.Aa, dense.Aa + 10), (Doubles{0, -5, 1, 0, -6, -2, 3, -9, 7, 8}));
}

}  // namespace
