#include <gtest/gtest.h>

#include <tuple>
#include <utility>
#include <vector>

#include "linear_algebra/solver_bicgstab.h"
#include "tests/linear_algebra/filled_systems.h"

namespace {

using Solver = CKVX_ART_MatSolver_BiCGSTAB;
using Vector = std::vector<double>;  // 1-based, entry 0 unused

TEST(DILU, StoredPairsModifyTheDiagonal) {
    Solver A(3);
    Fill(A, {{2, 1, 0}, {4, 3, 5}, {0, 6, 7}});
    Vector D(4);
    Vector x(4);
    Vector b(4);
    A.SetTimes(0);
    A.MatSolve(b.data(), x.data());  // moves the diagonal to the front

    A.DILU(D.data());

    EXPECT_EQ(D[1], 1.0 / 2.0);
    EXPECT_EQ(D[2], 1.0 / (3.0 - 4.0 * 0.5 * 1.0));
    EXPECT_EQ(D[3], 1.0 / (7.0 - 6.0 * 1.0 * 5.0));
}

TEST(DILU, AnEntryWithoutItsTransposeChangesNothing) {
    Solver A(2);
    Fill(A, {{2, 1}, {0, 4}});
    Vector D(3);

    A.DILU(D.data());

    EXPECT_EQ(D[1], 0.5);
    EXPECT_EQ(D[2], 0.25);
}

TEST(DILU, AZeroDiagonalGivesTheInverseOfTheGuard) {
    Solver A(1);
    A.AddElementValue(1, 1, 0.0);
    Vector D(2);

    A.DILU(D.data());

    EXPECT_EQ(D[1], 1.0 / 1e-30);
}

TEST(DILU, ColumnsAboveTheRowsAreIgnored) {
    Solver A(2, 4);
    for (auto [row, col, value] : {std::tuple{1, 1, 2.0},
                                   {1, 2, 1.0},
                                   {1, 3, 50.0},
                                   {2, 2, 3.0},
                                   {2, 1, 4.0},
                                   {2, 4, 60.0}}) {
        A.AddElementValue(row, col, value);
    }
    Vector D(3);
    Vector rhs{0.0, 1.0, 2.0};
    Vector result(3);

    A.DILU(D.data());
    A.SolveDILU(D.data(), rhs.data(), result.data());

    EXPECT_EQ(D[2], 1.0 / (3.0 - 4.0 * 0.5 * 1.0));
    EXPECT_EQ(result[2], (2.0 - 0.5 * 4.0) * 1.0);
    EXPECT_EQ(result[1], 0.5 - result[2] * 0.5);
}

TEST(DILU, SweepsGiveTheValuesComputedByHand) {
    Solver A(3);
    for (auto [row, col, value] : {std::tuple{1, 1, 2.0},
                                   {1, 2, 1.0},
                                   {2, 2, 3.0},
                                   {2, 1, 4.0},
                                   {2, 3, 5.0},
                                   {3, 3, 7.0},
                                   {3, 2, 6.0}}) {
        A.AddElementValue(row, col, value);  // inserted with the diagonal first
    }
    Vector D{0.0, 0.5, 1.0, 0.25};
    Vector rhs{0.0, 1.0, 4.0, 16.0};
    Vector result(4);

    A.SolveDILU(D.data(), rhs.data(), result.data());

    EXPECT_EQ(Vector(A.y + 1, A.y + 4), (Vector{0.5, 2.0, 1.0}));
    EXPECT_EQ(result, (Vector{0.0, 2.0, -3.0, 1.0}));
}

TEST(DILU, ResultMayBeTheRightHandSide) {
    Solver A(3);
    FillPlate(A, -1.0, 4.0, -2.0);
    Vector x(4);
    A.SetTimes(0);
    A.MatSolve(x.data(), x.data());
    Vector D(4);
    A.DILU(D.data());
    Vector rhs{0.0, 1.0, 2.0, 3.0};
    Vector result(4);
    A.SolveDILU(D.data(), rhs.data(), result.data());

    A.SolveDILU(D.data(), rhs.data(), rhs.data());

    EXPECT_EQ(rhs, result);
}

TEST(DILU, SweepsAddInStorageOrder) {
    Solver A(4);
    for (int i = 1; i <= 4; ++i) {
        A.AddElementValue(i, i, 1.0);
    }
    for (auto [col, value] : {std::pair{2, 1.0}, {1, 1e16}, {3, -1e16}}) {
        A.AddElementValue(4, col, value);
    }
    for (auto [col, value] : {std::pair{3, 1.0}, {4, 1e16}, {2, -1e16}}) {
        A.AddElementValue(1, col, value);
    }
    Vector D{0.0, 1.0, 1.0, 1.0, 1.0};
    Vector rhs{0.0, 1.0, 1.0, 1.0, 1.0};
    Vector result(5);

    A.SolveDILU(D.data(), rhs.data(), result.data());

    EXPECT_EQ(
        A.y[4],
        1.0);  // in ascending order of columns the 1 would not be rounded away, and the result be 0
    EXPECT_EQ(result[1], 1.0);
}

}  // namespace
