#include "linear_algebra/sparse_matrix.h"

#include <gtest/gtest.h>

#include <new>
#include <type_traits>
#include <utility>

#include "tests/linear_algebra/matrix_rows.h"
#include "tests/support/private_access.h"

KVX3D_EXPOSE(TheDiagonalMove, &CKVX_ART_SparseMatrix::MakeDiagFrontCSR,
             bool (CKVX_ART_SparseMatrix::*)());

namespace {

bool MakeDiagFront(CKVX_ART_SparseMatrix& A) {
    return (A.*MemberOf(TheDiagonalMove{}))();
}

// The object

TEST(SparseMatrixObject, OnlyTheDestructorIsVirtual) {
    EXPECT_TRUE(std::has_virtual_destructor_v<CKVX_ART_SparseMatrix>);
    EXPECT_TRUE((std::is_base_of_v<std::out_of_range, InvalidDimensionsException>));
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, LinearSolverException>));
}

TEST(SparseMatrixObject, MembersAreInTheirOrder) {
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

TEST(SparseMatrixObject, FreshRowsCanBeRead) {
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

TEST(SparseMatrixPositions, ZeroOrNegativeIsReportedFirst) {
    CKVX_ART_SparseMatrix A(2, 3);

    for (auto [row, col] : {std::pair{0, 1}, {1, 0}, {-4, 1}, {0, 4}, {3, 0}}) {
        EXPECT_EQ(MessageOf<InvalidDimensionsException>([&] { A.AddIndex(row, col); }),
                  kNotPositive);
    }
}

TEST(SparseMatrixPositions, AboveTheMatrixIsOutOfRange) {
    CKVX_ART_SparseMatrix A(2, 3);

    for (auto [row, col] : {std::pair{3, 1}, {1, 4}, {3, 4}}) {
        EXPECT_EQ(MessageOf<InvalidDimensionsException>([&] { A.AddIndex(row, col); }),
                  kOutOfRange);
        EXPECT_EQ(MessageOf<InvalidDimensionsException>([&] { A.AddElementValue(row, col, 1.0); }),
                  kOutOfRange);
    }
}

TEST(SparseMatrixPositions, ARejectedAdditionChangesNothing) {
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

TEST(SparseMatrixPattern, WithoutIndicesACompressionGivesTheDummyEntries) {
    CKVX_ART_SparseMatrix A(3);

    EXPECT_TRUE(A.CompressIndex());

    EXPECT_EQ(RowStarts(A), (Ints{0, 1, 1, 1, 1}));
    EXPECT_EQ(A.Ja[0], 0);
    EXPECT_EQ(A.Aa[0], 0.0);
    EXPECT_TRUE(A.compressed);
}

TEST(SparseMatrixPattern, CompressionSortsAndMovingTheDiagonalSwaps) {
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

TEST(SparseMatrixPattern, MovingTheDiagonalKeepsOtherEntriesInPlaceAndIsIdempotent) {
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

TEST(SparseMatrixPattern, AMissingDiagonalThrowsAndEarlierRowsStaySwapped) {
    CKVX_ART_SparseMatrix A(3);
    for (auto [row, col] : {std::pair{1, 1}, {2, 1}, {2, 2}, {3, 1}, {3, 2}}) {
        A.AddIndex(row, col);
    }
    A.CompressIndex();

    EXPECT_EQ(MessageOf<LinearSolverException>([&] { MakeDiagFront(A); }), kNoDiagonal);

    EXPECT_EQ(Columns(A, 2), (Ints{2, 1}));
    EXPECT_EQ(Columns(A, 3), (Ints{1, 2}));
}

TEST(SparseMatrixPattern, AnEmptyRowIsAcceptedIfTheNextRowStartsWithItsColumn) {
    CKVX_ART_SparseMatrix A(3);
    for (auto [row, col] : {std::pair{1, 1}, {3, 2}, {3, 3}}) {
        A.AddIndex(row, col);
    }
    A.CompressIndex();

    EXPECT_TRUE(MakeDiagFront(A));  // row 2 is empty, and the entry at its start has column 2

    EXPECT_EQ(Columns(A, 3), (Ints{3, 2}));
    EXPECT_THROW(MakeDiagFront(A), LinearSolverException);  // now that entry has column 3
}

TEST(SparseMatrixPattern, AnEmptyLastRowHasNoDiagonal) {
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

TEST(SparseMatrixPattern, AStaleMatrixIsReadFromItsOldArrays) {
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

}  // namespace
