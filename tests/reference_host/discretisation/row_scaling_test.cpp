#include "reference_host/discretisation/row_scaling.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using host::RowScaling;

/// Two rows with entries of the given sizes.
void Fill(CKVX_ART_SparseMatrix& A, double first, double second) {
    A.AddElementValue(1, 1, 3.0 * first);
    A.AddElementValue(1, 2, -1.1 * first);
    A.AddElementValue(2, 1, 0.7 * second);
    A.AddElementValue(2, 2, 5.0 * second);
}

std::vector<double> Values(const CKVX_ART_SparseMatrix& A) {
    return {A.Aa + 1, A.Aa + A.Ia[A.GetRowsN() + 1]};
}

TEST(RowScaling, LeavesRowsOfOrdinarySizeAlone) {
    for (const double size : {1e-23, 1.0, 1e23}) {
        CKVX_ART_SparseMatrix A(2);
        Fill(A, 1.0, size);
        const std::vector<double> before = Values(A);

        const RowScaling scaling(A);

        EXPECT_EQ(Values(A), before) << size;
        EXPECT_EQ(scaling.Exponent(1), 0) << size;
        EXPECT_EQ(scaling.Exponent(2), 0) << size;
    }
}

TEST(RowScaling, BringsTheLargestEntryOfEachRowBetweenOneAndTwoAndRestoresIt) {
    for (const double size : {1e-150, 1e-26, 1e26, 1e150}) {
        CKVX_ART_SparseMatrix A(2);
        Fill(A, 1.0, size);
        const std::vector<double> before = Values(A);
        {
            const RowScaling scaling(A);
            for (int row = 1; row <= 2; ++row) {
                const double diagonal = std::abs(A.GetDiagonalValue(row));
                EXPECT_GE(diagonal, 1.0) << size;
                EXPECT_LT(diagonal, 2.0) << size;
                EXPECT_EQ(std::ldexp(diagonal, -scaling.Exponent(row)), before[3 * (row - 1)])
                    << size;
            }
        }
        EXPECT_EQ(Values(A), before) << size;
    }
}

TEST(RowScaling, RowOfZerosIsNotScaled) {
    CKVX_ART_SparseMatrix A(2);
    Fill(A, 1e-150, 0.0);

    const RowScaling scaling(A);

    EXPECT_EQ(scaling.Exponent(2), 0);
    EXPECT_GE(A.GetDiagonalValue(1), 1.0);
}

}  // namespace
