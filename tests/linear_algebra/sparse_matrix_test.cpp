#include "linear_algebra/sparse_matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/linear_algebra/private_access.h"

struct TheFind {
    using Type = bool (CKVX_ART_SparseMatrix::*)(const int&, const int&, const double&);
    friend Type Private(TheFind);
};

struct TheInsertion {
    using Type = void (CKVX_ART_SparseMatrix::*)(const int&, const int&, const double&);
    friend Type Private(TheInsertion);
};

struct TheDiagonalMove {
    using Type = bool (CKVX_ART_SparseMatrix::*)();
    friend Type Private(TheDiagonalMove);
};

template struct Expose<TheFind, &CKVX_ART_SparseMatrix::FindIndexAddValueCSR>;
template struct Expose<TheInsertion, &CKVX_ART_SparseMatrix::InsertIndexAndValue2CSR>;
template struct Expose<TheDiagonalMove, &CKVX_ART_SparseMatrix::MakeDiagFrontCSR>;

namespace {

bool MakeDiagFront(CKVX_ART_SparseMatrix& A) {
    return (A.*Private(TheDiagonalMove{}))();
}

std::vector<int> Columns(const CKVX_ART_SparseMatrix& A, int row) {
    return {A.Ja + A.Ia[row], A.Ja + A.Ia[row + 1]};
}

std::vector<double> Values(const CKVX_ART_SparseMatrix& A, int row) {
    return {A.Aa + A.Ia[row], A.Aa + A.Ia[row + 1]};
}

std::vector<int> RowStarts(const CKVX_ART_SparseMatrix& A) {
    return {A.Ia, A.Ia + A.rowsN + 2};
}

/// The message of what `call` throws as an E, or a note that it did not.
template <typename E, typename Call>
std::string MessageOf(Call call) {
    try {
        call();
    } catch (const E& e) {
        return e.what();
    }
    return "nothing thrown";
}

const char* const kNotPositive =
    ">> <ART> SparseMatrixError: Matrix dimensions cannot be zero or negative.";
const char* const kOutOfRange = ">> <ART> SparseMatrixError: Add index out of matrix range.";
const char* const kNoDiagonal = ">> <ART> LinearSolverError: The matrix diagonal must have value.";

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

// The object

TEST(SparseMatrixObject, IsPolymorphicThroughItsDestructorAlone) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CKVX_ART_SparseMatrix>);
    EXPECT_TRUE((std::is_base_of_v<std::out_of_range, InvalidDimensionsException>));
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, LinearSolverException>));
}

TEST(SparseMatrixObject, MembersStandInTheirOrder) {
    CKVX_ART_SparseMatrix A(1);
    const void* members[] = {&A.rowsN, &A.colsN, &A.Ia, &A.Ja, &A.Aa, &A.compressed, &A.indexSets};

    for (int i = 0; i < 6; ++i) {
        EXPECT_LT(members[i], members[i + 1]);
    }
    EXPECT_EQ(sizeof(A), sizeof(void*) * 5 + 2 * sizeof(int) + sizeof(void*));
}

TEST(SparseMatrixObject, StartsWithEmptyRowsAndNoArrays) {
    CKVX_ART_SparseMatrix A(3);

    EXPECT_EQ(A.GetRowsN(), 3);
    EXPECT_EQ(A.GetColsN(), 3);
    EXPECT_EQ(RowStarts(A), (Ints{0, 1, 1, 1, 1}));
    EXPECT_EQ(A.Ja, nullptr);
    EXPECT_EQ(A.Aa, nullptr);
    EXPECT_FALSE(A.compressed);
    EXPECT_EQ(A.indexSets->size(), 4u);
}

TEST(SparseMatrixObject, FreshRowsAnswerReads) {
    CKVX_ART_SparseMatrix A(2);
    double x[] = {0.0, 7.0, 8.0};

    EXPECT_EQ(A.DotProduct(1, x), 0.0);
    EXPECT_EQ(A.GetOffDiagonalValueTimesVectorSum(2, 3.0, x), 0.0);
    EXPECT_EQ(A.GetDiagonalValue(2), 0.0);
    A.SetRowZero(1);
    A.SetColZero(1);
    A.Clear();
    EXPECT_EQ(A.Ja, nullptr);
    EXPECT_FALSE(A.compressed);
}

TEST(SparseMatrixObject, MayHaveMoreColumnsThanRows) {
    CKVX_ART_SparseMatrix A(2, 5);

    A.AddElementValue(2, 5, 1.5);

    EXPECT_EQ(A.GetRowsN(), 2);
    EXPECT_EQ(A.GetColsN(), 5);
    EXPECT_EQ(Columns(A, 2), Ints{5});
}

TEST(SparseMatrixObject, MayHaveNoRows) {
    CKVX_ART_SparseMatrix A(0);

    EXPECT_TRUE(A.CompressIndex());
    EXPECT_TRUE(MakeDiagFront(A));

    EXPECT_EQ(RowStarts(A), (Ints{0, 1}));
    EXPECT_EQ(A.Ja[0], 0);
}

TEST(SparseMatrixObject, CopySharesEveryBlock) {
    alignas(CKVX_ART_SparseMatrix) unsigned char memory[sizeof(CKVX_ART_SparseMatrix)];
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 4.0);

    auto* copy = new (memory) CKVX_ART_SparseMatrix(A);  // never destroyed: A releases the blocks

    EXPECT_EQ(copy->Ia, A.Ia);
    EXPECT_EQ(copy->Ja, A.Ja);
    EXPECT_EQ(copy->Aa, A.Aa);
    EXPECT_EQ(copy->indexSets, A.indexSets);
    EXPECT_TRUE(copy->compressed);
}

// Positions

TEST(SparseMatrixPositions, ZeroOrNegativeIsToldFirst) {
    CKVX_ART_SparseMatrix A(2, 3);

    for (auto [row, col] : {std::pair{0, 1}, {1, 0}, {-4, 1}, {0, 4}, {3, 0}}) {
        EXPECT_EQ(MessageOf<InvalidDimensionsException>([&] { A.AddIndex(row, col); }),
                  kNotPositive);
    }
}

TEST(SparseMatrixPositions, BeyondTheMatrixIsOutOfRange) {
    CKVX_ART_SparseMatrix A(2, 3);

    for (auto [row, col] : {std::pair{3, 1}, {1, 4}, {3, 4}}) {
        EXPECT_EQ(MessageOf<InvalidDimensionsException>([&] { A.AddIndex(row, col); }),
                  kOutOfRange);
        EXPECT_EQ(MessageOf<InvalidDimensionsException>([&] { A.AddElementValue(row, col, 1.0); }),
                  kOutOfRange);
    }
}

TEST(SparseMatrixPositions, ARejectedAddChangesNothing) {
    CKVX_ART_SparseMatrix A(2);
    A.AddIndex(1, 1);

    EXPECT_THROW(A.AddElementValue(3, 1, 1.0), InvalidDimensionsException);

    EXPECT_FALSE(A.compressed);
    EXPECT_EQ(A.Ja, nullptr);
    EXPECT_EQ((*A.indexSets)[1].size(), 1u);
}

// The pattern

TEST(SparseMatrixPattern, RepeatedIndexKeepsTheCountAndMarksThePatternStale) {
    CKVX_ART_SparseMatrix A(3);
    A.AddIndex(2, 2);
    A.CompressIndex();

    A.AddIndex(2, 2);

    EXPECT_FALSE(A.compressed);
    EXPECT_EQ(A.Ia[4], 2);
    A.CompressIndex();
    EXPECT_EQ(A.Ia[4], 2);
}

TEST(SparseMatrixPattern, NoIndicesCompressToTheDummies) {
    CKVX_ART_SparseMatrix A(3);

    EXPECT_TRUE(A.CompressIndex());

    EXPECT_EQ(RowStarts(A), (Ints{0, 1, 1, 1, 1}));
    EXPECT_EQ(A.Ja[0], 0);
    EXPECT_EQ(A.Aa[0], 0.0);
    EXPECT_TRUE(A.compressed);
}

TEST(SparseMatrixPattern, CompressionSortsAndTheDiagonalMoveSwaps) {
    CKVX_ART_SparseMatrix A(3, 7);
    for (auto [row, col] : {std::pair{1, 1}, {2, 2}, {3, 7}, {3, 1}, {3, 3}}) {
        A.AddIndex(row, col);
    }
    A.CompressIndex();
    EXPECT_EQ(Columns(A, 3), (Ints{1, 3, 7}));
    A.AddElementValue(3, 1, 10.0);
    A.AddElementValue(3, 3, 30.0);
    A.AddElementValue(3, 7, 70.0);

    EXPECT_TRUE(MakeDiagFront(A));

    EXPECT_EQ(Columns(A, 3), (Ints{3, 1, 7}));
    EXPECT_EQ(Values(A, 3), (Doubles{30.0, 10.0, 70.0}));
}

TEST(SparseMatrixPattern, DiagonalMoveLeavesTheOthersInPlaceAndIsIdempotent) {
    CKVX_ART_SparseMatrix A(5);
    for (int i = 1; i <= 5; ++i) {
        A.AddElementValue(i, i, 1.0 * i);
    }
    for (int col : {1, 2, 3, 5}) {
        A.AddIndex(4, col);
    }
    A.CompressIndex();

    MakeDiagFront(A);
    EXPECT_EQ(Columns(A, 4), (Ints{4, 2, 3, 1, 5}));

    MakeDiagFront(A);
    EXPECT_EQ(Columns(A, 4), (Ints{4, 2, 3, 1, 5}));
}

TEST(SparseMatrixPattern, MissingDiagonalThrowsAndRowsBeforeStaySwapped) {
    CKVX_ART_SparseMatrix A(3);
    for (auto [row, col] : {std::pair{1, 1}, {2, 1}, {2, 2}, {3, 1}, {3, 2}}) {
        A.AddIndex(row, col);
    }
    A.CompressIndex();

    EXPECT_EQ(MessageOf<LinearSolverException>([&] { MakeDiagFront(A); }), kNoDiagonal);

    EXPECT_EQ(Columns(A, 2), (Ints{2, 1}));
    EXPECT_EQ(Columns(A, 3), (Ints{1, 2}));
}

TEST(SparseMatrixPattern, EmptyRowPassesByTheNextRowsFirstEntry) {
    CKVX_ART_SparseMatrix A(3);
    for (auto [row, col] : {std::pair{1, 1}, {3, 2}, {3, 3}}) {
        A.AddIndex(row, col);
    }
    A.CompressIndex();

    EXPECT_TRUE(MakeDiagFront(A));  // row 2 is empty, and what stands at its start has column 2

    EXPECT_EQ(Columns(A, 3), (Ints{3, 2}));
    EXPECT_THROW(MakeDiagFront(A), LinearSolverException);  // now it has column 3
}

TEST(SparseMatrixPattern, TrailingEmptyRowHasNoDiagonal) {
    CKVX_ART_SparseMatrix A(2);
    A.AddIndex(1, 1);
    A.CompressIndex();

    EXPECT_EQ(MessageOf<LinearSolverException>([&] { MakeDiagFront(A); }), kNoDiagonal);
}

TEST(SparseMatrixPattern, MatrixWithoutEntriesHasNoDiagonal) {
    CKVX_ART_SparseMatrix A(2);

    EXPECT_THROW(MakeDiagFront(A), LinearSolverException);
    A.CompressIndex();
    EXPECT_THROW(MakeDiagFront(A), LinearSolverException);
}

TEST(SparseMatrixPattern, RectangularMatrixNeedsTheDiagonalOfEveryRow) {
    CKVX_ART_SparseMatrix A(2, 4);
    for (auto [row, col] : {std::pair{1, 1}, {1, 4}, {2, 3}}) {
        A.AddIndex(row, col);
    }
    A.CompressIndex();

    EXPECT_THROW(MakeDiagFront(A), LinearSolverException);
}

TEST(SparseMatrixPattern, AStaleMatrixAnswersFromItsOldArrays) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 3.0);
    double x[] = {0.0, 10.0, 100.0};

    A.AddIndex(1, 2);

    EXPECT_FALSE(A.compressed);
    EXPECT_EQ(A.DotProduct(1, x), 30.0);
    EXPECT_EQ(A.GetDiagonalValue(1), 3.0);
    EXPECT_EQ(Columns(A, 1), Ints{1});
    EXPECT_FALSE(A.compressed);
}

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

TEST(SparseMatrixValues, ADeclarationAfterValuesWipesThemAtTheNextAdd) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 1, 1.0);
    A.AddElementValue(2, 2, 2.0);

    A.AddIndex(1, 1);
    A.AddElementValue(2, 2, 5.0);

    EXPECT_EQ(Values(A, 1), Doubles{0.0});
    EXPECT_EQ(Values(A, 2), Doubles{5.0});
}

TEST(SparseMatrixValues, ArgumentsMayReferIntoTheArraysThatACompressionFrees) {
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
    A.Ja[2] = 1;  // two entries of one position, as a host may have put them

    EXPECT_TRUE((A.*Private(TheFind{}))(1, 1, 10.0));
    EXPECT_FALSE((A.*Private(TheFind{}))(1, 2, 10.0));
    EXPECT_FALSE((A.*Private(TheFind{}))(2, 1, 10.0));

    EXPECT_EQ(Values(A, 1), (Doubles{11.0, 2.0}));
}

TEST(SparseMatrixValues, InsertionKeepsTheStateAndTheDummies) {
    CKVX_ART_SparseMatrix A(3);
    for (int i = 1; i <= 3; ++i) {
        A.AddElementValue(i, i, 1.0 * i);
    }

    (A.*Private(TheInsertion{}))(2, 1, 0.5);

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

TEST(SparseMatrixValues, ResetDropsThePatternAndTheMatrixCanBeDeclaredAnew) {
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

TEST(SparseMatrixDiagonal, MissingReadsAsZero) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 2, 3.0);

    EXPECT_EQ(A.GetDiagonalValue(1), 0.0);
    EXPECT_EQ(A.GetDiagonalValue(2), 0.0);
}

TEST(SparseMatrixDiagonal, StoredIsOverwrittenUndeclaredIsAdded) {
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

TEST(SparseMatrixDiagonal, DeclaredButStaleIsAddedAfterTheCompression) {
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

// Products

TEST(SparseMatrixProducts, OffDiagonalSumTakesTheFactorLast) {
    CKVX_ART_SparseMatrix A(3);
    A.AddElementValue(2, 1, 0.1);
    A.AddElementValue(2, 2, 1e9);
    A.AddElementValue(2, 3, 0.7);
    double x[] = {0.0, 0.3, 1.0, 0.9};

    EXPECT_EQ(A.GetOffDiagonalValueTimesVectorSum(2, 0.1, x), (0.3 * 0.1 + 0.9 * 0.7) * 0.1);
}

TEST(SparseMatrixProducts, FactorZeroTimesAnInfiniteSumIsNotANumber) {
    CKVX_ART_SparseMatrix A(2);
    A.AddElementValue(1, 2, 1.0);
    double x[] = {0.0, 1.0, std::numeric_limits<double>::infinity()};

    EXPECT_TRUE(std::isnan(A.GetOffDiagonalValueTimesVectorSum(1, 0.0, x)));
}

TEST(SparseMatrixProducts, SumsRunInStorageOrder) {
    CKVX_ART_SparseMatrix A(1, 5);
    for (auto [col, value] : {std::pair{5, 1.0}, {2, 1e16}, {3, 1.0}, {4, -1e16}, {1, 1.0}}) {
        A.AddElementValue(1, col, value);
    }
    double ones[] = {0.0, 1.0, 1.0, 1.0, 1.0, 1.0};

    // 1 + 1e16 rounds to 1e16, and so does the next; only the last 1 is left.
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

// Property: any sequence of operations leaves what a map from positions to values would hold

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
