#include <gtest/gtest.h>

#include <new>
#include <vector>

#include "linear_algebra/solver_bicgstab.h"
#include "tests/linear_algebra/filled_systems.h"
#include "tests/support/allocation_recorder.h"

// The allocations of the matrices: their lengths, and the state after a failed one.

namespace {

using Bytes = std::vector<std::size_t>;

TEST(SparseMatrixBlocks, HaveTheLengthsGivenByTheRowStarts) {
    AllocationRecorder blocks;
    CKVX_ART_SparseMatrix A(3, 5);
    A.AddIndex(1, 2);
    A.AddIndex(3, 3);

    A.CompressIndex();
    EXPECT_EQ(blocks.SizeOf(A.Ia), 5 * sizeof(int));
    EXPECT_EQ(blocks.SizeOf(A.Ja), 3 * sizeof(int));
    EXPECT_EQ(blocks.SizeOf(A.Aa), 3 * sizeof(double));

    A.AddElementValue(2, 5, 1.0);
    EXPECT_EQ(blocks.SizeOf(A.Ja), 4 * sizeof(int));
    EXPECT_EQ(blocks.SizeOf(A.Aa), 4 * sizeof(double));
    EXPECT_EQ(blocks.LiveBlocks(), 3);
    EXPECT_EQ(blocks.Sizes().size(), 5u);  // two arrays per compression, two per insertion
}

TEST(SparseMatrixBlocks, AllAreReleasedWithTheObject) {
    AllocationRecorder blocks;
    {
        CKVX_ART_SparseMatrix A(2);
        A.AddElementValue(1, 1, 1.0);
        A.Reset();
        EXPECT_EQ(blocks.LiveBlocks(), 1);  // the row starts
        A.AddElementValue(2, 1, 1.0);
    }

    EXPECT_EQ(blocks.LiveBlocks(), 0);
}

TEST(SparseMatrixBlocks, AFailedInsertionKeepsTheArraysAndThePositionInTheSet) {
    AllocationRecorder blocks;
    for (int succeed : {0, 1}) {
        CKVX_ART_SparseMatrix A(2);
        A.AddElementValue(1, 1, 3.0);
        blocks.FailAfter(succeed);

        EXPECT_THROW(A.AddElementValue(1, 2, 4.0), std::bad_alloc);

        EXPECT_EQ((*A.indexSets)[1].count(2), 1u);
        EXPECT_EQ(A.Ia[3], 2);
        EXPECT_EQ(A.GetDiagonalValue(1), 3.0);
    }
    EXPECT_EQ(blocks.LiveBlocks(), 0);
}

TEST(SparseMatrixBlocks, AFailedCompressionCanBeDestroyed) {
    AllocationRecorder blocks;
    for (int succeed : {0, 1}) {
        CKVX_ART_SparseMatrix A(2);
        A.AddElementValue(1, 1, 3.0);
        blocks.FailAfter(succeed);

        EXPECT_THROW(A.CompressIndex(), std::bad_alloc);
    }
    EXPECT_EQ(blocks.LiveBlocks(), 0);
}

TEST(BiCGSTABBlocks, AreTheTenVectorsAfterTheRowStarts) {
    AllocationRecorder blocks;
    {
        CKVX_ART_MatSolver_BiCGSTAB A(3, 7);

        Bytes expected(11, 4 * sizeof(double));
        expected[0] = 5 * sizeof(int);
        EXPECT_EQ(blocks.Sizes(), expected);
    }
    EXPECT_EQ(blocks.LiveBlocks(), 0);
}

TEST(BiCGSTABBlocks, ASolveAllocatesNothing) {
    CKVX_ART_MatSolver_BiCGSTAB A(50);
    FillPlate(A, -1.0, 4.0, -0.9);
    std::vector<double> b(51, 1.0);
    std::vector<double> x(51);
    AllocationRecorder blocks;

    A.MatSolve(b.data(), x.data());

    EXPECT_GT(A.GetIterTimes(), 1.0);
    EXPECT_TRUE(blocks.Sizes().empty());
}

}  // namespace
