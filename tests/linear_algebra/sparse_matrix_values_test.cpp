#include <gtest/gtest.h>

#include <map>
#include <random>
#include <utility>

#include "linear_algebra/sparse_matrix.h"
#include "tests/linear_algebra/matrix_rows.h"
#include "tests/support/private_access.h"

KVX3D_EXPOSE(TheFind, &CKVX_ART_SparseMatrix::FindIndexAddValueCSR,
             bool (CKVX_ART_SparseMatrix::*)(const int&, const int&, const double&));
KVX3D_EXPOSE(TheInsertion, &CKVX_ART_SparseMatrix::InsertIndexAndValue2CSR,
             void (CKVX_ART_SparseMatrix::*)(const int&, const int&, const double&));

namespace {

// Values

TEST(SparseMatrixValues, AnUndeclaredMatrixGrowsEntryByEntry) {
    CKVX_ART_SparseMatrix A(3);

    EXPECT_TRUE(A.AddElementValue(2, 3, 5.0));

    EXPECT_TRUE(A.compressed);
    EXPECT_EQ(RowStarts(A), (Ints{0, 1, 1, 2, 2}));
    EXPECT_EQ(A.Ja[0], 0);
    EXPECT_EQ(A.Aa[0], 0.0);
    EXPECT_EQ(A.Ja[1], 3);
    EXPECT_EQ(A.Aa[1], 5.0);
    EXPECT_EQ((*A.indexSets)[2].count(3), 1u);
}

TEST(SparseMatrixValues, AddingTwiceStoresTheSum) {
    CKVX_ART_SparseMatrix A(2);

    A.AddElementValue(1, 2, 0.1);
    A.AddElementValue(1, 2, 0.2);

    EXPECT_EQ(A.Ia[3], 2);
    EXPECT_EQ(A.Aa[1], 0.1 + 0.2);
}

TEST(SparseMatrixValues, InsertionAppendsToTheRowAndCompressionSorts) {
    CKVX_ART_SparseMatrix A(2, 5);
    A.AddElementValue(2, 1, 9.0);
    A.AddElementValue(1, 5, 1.0);
    A.AddElementValue(1, 2, 2.0);
    EXPECT_EQ(Columns(A, 1), (Ints{5, 2}));
    EXPECT_EQ(Values(A, 1), (Doubles{1.0, 2.0}));
    EXPECT_EQ(Columns(A, 2), Ints{1});
    EXPECT_EQ(Values(A, 2), Doubles{9.0});

    A.AddIndex(1, 2);
    A.CompressIndex();

    EXPECT_EQ(Columns(A, 1), (Ints{2, 5}));
    EXPECT_EQ(Values(A, 1), (Doubles{0.0, 0.0}));
}

TEST(SparseMatrixValues, ADeclarationAfterValuesZeroesThemAtTheNextAddition) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 1.0);
    A.AddElementValue(2, 2, 2.0);

    A.AddIndex(1, 1);
    A.AddElementValue(2, 2, 5.0);

    EXPECT_EQ(Values(A, 1), Doubles{0.0});
    EXPECT_EQ(Values(A, 2), Doubles{5.0});
}

TEST(SparseMatrixValues, ArgumentsMayReferToEntriesThatACompressionReleases) {
    CKVX_ART_SparseMatrix A(3);
    A.AddElementValue(1, 3, 7.0);
    A.AddIndex(2, 2);

    A.AddElementValue(2, A.Ja[1], A.Aa[1]);

    EXPECT_EQ(Columns(A, 2), (Ints{2, 3}));
    EXPECT_EQ(Values(A, 2), (Doubles{0.0, 7.0}));
}

TEST(SparseMatrixValues, FindAddsToTheFirstMatchOnly) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 1.0);
    A.AddElementValue(1, 2, 2.0);
    A.Ja[2] = 1;  // two entries at one position, as a host may store them

    EXPECT_TRUE((A.*MemberOf(TheFind{}))(1, 1, 10.0));
    EXPECT_FALSE((A.*MemberOf(TheFind{}))(1, 2, 10.0));
    EXPECT_FALSE((A.*MemberOf(TheFind{}))(2, 1, 10.0));

    EXPECT_EQ(Values(A, 1), (Doubles{11.0, 2.0}));
}

TEST(SparseMatrixValues, InsertionKeepsTheStateAndTheDummies) {
    CKVX_ART_SparseMatrix A(3);
    for (int i = 1; i <= 3; ++i) {
        A.AddElementValue(i, i, 1.0 * i);
    }

    (A.*MemberOf(TheInsertion{}))(2, 1, 0.5);

    EXPECT_TRUE(A.compressed);
    EXPECT_EQ(RowStarts(A), (Ints{0, 1, 2, 4, 5}));
    EXPECT_EQ(Ints(A.Ja, A.Ja + 5), (Ints{0, 1, 2, 1, 3}));
    EXPECT_EQ(Doubles(A.Aa, A.Aa + 5), (Doubles{0.0, 1.0, 2.0, 0.5, 3.0}));
}

TEST(SparseMatrixValues, ClearKeepsThePattern) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 2, 3.0);

    A.Clear();

    EXPECT_EQ(Columns(A, 1), Ints{2});
    EXPECT_EQ(Values(A, 1), Doubles{0.0});
    EXPECT_TRUE(A.compressed);
}

TEST(SparseMatrixValues, ClearOfAnEmptyMatrixChangesNothing) {
    CKVX_ART_SparseMatrix A(2);

    A.Clear();
    A.CompressIndex();
    A.Clear();

    EXPECT_EQ(RowStarts(A), (Ints{0, 1, 1, 1}));
}

TEST(SparseMatrixValues, ResetRemovesThePatternAndTheMatrixCanBeDeclaredAgain) {
    CKVX_ART_SparseMatrix A(2, 3);
    A.AddElementValue(1, 2, 3.0);

    A.Reset();
    EXPECT_EQ(A.GetRowsN(), 2);
    EXPECT_EQ(A.GetColsN(), 3);
    EXPECT_EQ(RowStarts(A), (Ints{0, 1, 1, 1}));
    EXPECT_EQ(A.Ja, nullptr);
    EXPECT_EQ(A.Aa, nullptr);
    EXPECT_FALSE(A.compressed);
    EXPECT_TRUE((*A.indexSets)[1].empty());

    A.AddElementValue(2, 1, 4.0);
    EXPECT_EQ(A.Ia[3], 2);
    EXPECT_EQ(Values(A, 2), Doubles{4.0});
}

TEST(SparseMatrixValues, RowsAndColumnsAreZeroedInPlace) {
    CKVX_ART_SparseMatrix A(2);
    for (auto [row, col] : {std::pair{1, 1}, {1, 2}, {2, 1}, {2, 2}}) {
        A.AddElementValue(row, col, 10.0 * row + col);
    }

    A.SetRowZero(1);
    EXPECT_EQ(Values(A, 1), (Doubles{0.0, 0.0}));
    EXPECT_EQ(Values(A, 2), (Doubles{21.0, 22.0}));

    A.SetColZero(2);
    EXPECT_EQ(Values(A, 2), (Doubles{21.0, 0.0}));
    EXPECT_EQ(A.Ia[3], 5);
}

TEST(SparseMatrixValues, ZeroingAColumnWithoutEntriesChangesNothing) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 3.0);

    A.SetColZero(2);

    EXPECT_EQ(Values(A, 1), Doubles{3.0});
}

// The diagonal

TEST(SparseMatrixDiagonal, AMissingDiagonalReadsAsZero) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 2, 3.0);

    EXPECT_EQ(A.GetDiagonalValue(1), 0.0);
    EXPECT_EQ(A.GetDiagonalValue(2), 0.0);
}

TEST(SparseMatrixDiagonal, AStoredDiagonalIsOverwrittenAndAMissingOneAdded) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 3.0);

    A.SetDiagonalValue(1, 8.0);
    A.SetDiagonalValue(2, 4.0);
    EXPECT_EQ(A.GetDiagonalValue(1), 8.0);
    EXPECT_EQ(A.GetDiagonalValue(2), 4.0);
    EXPECT_EQ(A.Ia[3], 3);

    A.SetDiagonalValue(2, 5.0);
    EXPECT_EQ(A.GetDiagonalValue(2), 5.0);
    EXPECT_EQ(A.Ia[3], 3);
}

TEST(SparseMatrixDiagonal, OverwritingAStaleMatrixDoesNotCompress) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 3.0);
    A.AddElementValue(1, 2, 6.0);
    A.AddIndex(2, 1);

    A.SetDiagonalValue(1, 8.0);

    EXPECT_FALSE(A.compressed);
    EXPECT_EQ(Values(A, 1), (Doubles{8.0, 6.0}));
}

TEST(SparseMatrixDiagonal, ADeclaredDiagonalOfAStaleMatrixIsAddedAfterTheCompression) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 3.0);
    A.AddIndex(2, 2);

    A.SetDiagonalValue(2, 8.0);

    EXPECT_TRUE(A.compressed);
    EXPECT_EQ(A.GetDiagonalValue(1), 0.0);
    EXPECT_EQ(A.GetDiagonalValue(2), 8.0);
}

TEST(SparseMatrixDiagonal, TheAddingPathChecksThePosition) {
    CKVX_ART_SparseMatrix A(3, 2);

    EXPECT_EQ(MessageOf<InvalidDimensionsException>([&] { A.SetDiagonalValue(3, 1.0); }),
              kOutOfRange);
}

// Property: any sequence of operations gives the same values as on a map from positions to values.

TEST(SparseMatrixAgainstMap, RandomOperationsAgree) {
    constexpr int rows = 6;
    constexpr int cols = 9;
    std::mt19937 random(5);
    CKVX_ART_SparseMatrix A(rows, cols);
    std::map<std::pair<int, int>, double> expected;
    bool stale = true;
    const auto draw = [&](int n) { return 1 + static_cast<int>(random() % n); };

    for (int step = 0; step < 20000; ++step) {
        const int row = draw(rows);
        const int col = draw(cols);
        const int kind = draw(100);
        if (kind == 1) {
            A.Reset();
            expected.clear();
            stale = true;
        } else if (kind <= 3) {
            A.AddIndex(row, col);
            expected[{row, col}];
            stale = true;
        } else if (kind == 4 && !stale) {
            A.SetRowZero(row);
            for (int j = 1; j <= cols; ++j) {
                if (expected.count({row, j})) {
                    expected[{row, j}] = 0.0;
                }
            }
        } else if (kind == 5 && !stale) {
            A.SetColZero(col);
            for (int i = 1; i <= rows; ++i) {
                if (expected.count({i, col})) {
                    expected[{i, col}] = 0.0;
                }
            }
        } else {
            if (stale) {
                for (auto& entry : expected) {
                    entry.second = 0.0;
                }
                stale = false;
            }
            A.AddElementValue(row, col, 0.1 * kind);
            expected[{row, col}] += 0.1 * kind;
        }
        if (stale) {
            continue;
        }
        std::map<std::pair<int, int>, double> stored;
        for (int i = 1; i <= rows; ++i) {
            for (int k = A.Ia[i]; k < A.Ia[i + 1]; ++k) {
                stored[{i, A.Ja[k]}] = A.Aa[k];
            }
        }
        ASSERT_EQ(stored, expected) << "step " << step << ", kind " << kind;
        ASSERT_EQ(A.Ia[rows + 1] - 1, static_cast<int>(expected.size())) << "step " << step;
    }
}

}  // namespace
