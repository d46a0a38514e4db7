#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <utility>

#include "linear_algebra/sparse_matrix.h"
#include "tests/linear_algebra/matrix_rows.h"

namespace {

// Products

TEST(SparseMatrixProducts, OffDiagonalSumIsMultipliedByTheFactorLast) {
    CKVX_ART_SparseMatrix A(3);
    A.AddElementValue(2, 1, 0.1);
    A.AddElementValue(2, 2, 1e9);
    A.AddElementValue(2, 3, 0.7);
    double x[] = {0.0, 0.3, 1.0, 0.9};

    EXPECT_EQ(A.GetOffDiagonalValueTimesVectorSum(2, 0.1, x), (0.3 * 0.1 + 0.9 * 0.7) * 0.1);
}

TEST(SparseMatrixProducts, FactorZeroTimesAnInfiniteSumIsNaN) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 2, 1.0);
    double x[] = {0.0, 1.0, std::numeric_limits<double>::infinity()};

    EXPECT_TRUE(std::isnan(A.GetOffDiagonalValueTimesVectorSum(1, 0.0, x)));
}

TEST(SparseMatrixProducts, SumsAddInStorageOrder) {
    CKVX_ART_SparseMatrix A(1, 5);
    for (auto [col, value] : {std::pair{5, 1.0}, {2, 1e16}, {3, 1.0}, {4, -1e16}, {1, 1.0}}) {
        A.AddElementValue(1, col, value);
    }
    double ones[] = {0.0, 1.0, 1.0, 1.0, 1.0, 1.0};

    // 1 + 1e16 rounds to 1e16, and so does the next sum; only the last 1 remains.
    EXPECT_EQ(A.DotProduct(1, ones), 1.0);
    EXPECT_EQ(A.GetOffDiagonalValueTimesVectorSum(1, 1.0, ones), 0.0);
}

class SparseMatrixRowLength : public testing::TestWithParam<int> {};

TEST_P(SparseMatrixRowLength, ProductEqualsTheSimpleLoopBitForBit) {
    const int n = GetParam();
    std::mt19937 random(17);
    std::uniform_real_distribution<double> number(-1.0, 1.0);
    CKVX_ART_SparseMatrix A(2, n + 1);
    Doubles x(n + 2);
    for (int j = 1; j <= n; ++j) {
        A.AddIndex(2, j);
    }
    A.AddIndex(1, 1);
    for (int j = 1; j <= n; ++j) {
        A.AddElementValue(2, j, number(random));
        x[j] = number(random);
    }

    double sum = 0.0;
    for (int k = A.Ia[2]; k < A.Ia[3]; ++k) {
        sum += x[A.Ja[k]] * A.Aa[k];
    }

    EXPECT_EQ(A.DotProduct(2, x.data()), sum);
}
INSTANTIATE_TEST_SUITE_P(Lengths, SparseMatrixRowLength,
                         testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 100));

// The dump

TEST(SparseMatrixDump, PrintsTheThreeArraysOneItemALine) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 1.0 / 3.0);
    A.AddElementValue(2, 1, -2.5e-10);

    testing::internal::CaptureStdout();
    A.DebugRun();

    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Ia:\n1\n2\n3\nJa:\n1\n1\nAa:\n0.333333\n-2.5e-10\n");
}

TEST(SparseMatrixDump, FreshMatrixPrintsItsRowStarts) {
    CKVX_ART_SparseMatrix A(1);

    testing::internal::CaptureStdout();
    A.DebugRun();

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Ia:\n1\n1\nJa:\nAa:\n");
}

}  // namespace
