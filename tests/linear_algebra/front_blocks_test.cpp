#include <gtest/gtest.h>

#include <vector>

#include "linear_algebra/solver_dense.h"
#include "linear_algebra/solver_samg.h"
#include "tests/linear_algebra/dense_matrix.h"
#include "tests/linear_algebra/recording_matrix_solver.h"
#include "tests/support/allocation_recorder.h"

// The allocations of the classes in front of the external solver, and what they do not release.

namespace {

using Bytes = std::vector<std::size_t>;
using Doubles = std::vector<double>;

TEST(SAMGBlocks, TheCopyOfTheValuesHasTheNumberOfEntries) {
    AllocationRecorder blocks;
    {
        CKVX_ART_MatSolver_SAMG A(3);
        for (int i = 1; i <= 3; ++i) {
            A.AddElementValue(i, i, 1.0 * i);
        }
        Doubles b(4, 1.0);
        Doubles x(4);
        EXPECT_EQ(blocks.SizeOf(A.rhs), 4 * sizeof(double));

        A.MatSolve(b.data(), x.data());
        EXPECT_EQ(blocks.SizeOf(A.tempValue), 4 * sizeof(double));

        const std::size_t before = blocks.Sizes().size();
        A.MatSolve(b.data(), x.data());
        EXPECT_EQ(blocks.Sizes().size(), before);

        A.Reset();
        for (int i = 1; i <= 3; ++i) {
            A.AddIndex(i, i);
        }
        A.AddIndex(1, 3);
        A.AddIndex(2, 3);
        A.MatSolve(b.data(), x.data());
        EXPECT_EQ(blocks.SizeOf(A.tempValue), 6 * sizeof(double));
        EXPECT_EQ(A.tempValue[0], 5.0);
    }
    EXPECT_EQ(blocks.LiveBlocks(), 0);
}

TEST(DenseBlocks, AnExternalSolveAllocatesFourAndReleasesThem) {
    for (int n : {0, 1, 2, 19}) {
        Matrix A(n, n);
        FillDominant(A, n, 8);
        Doubles rhs(n + 1, 1.0);
        Doubles x(n + 1);
        CKVX_ACMT_MatSolver_Dense dense;
        AllocationRecorder blocks;

        dense.SolveDenseMatrix(A, rhs.data(), n, x.data());

        EXPECT_EQ(blocks.Sizes(), (Bytes{(n + 1) * sizeof(double), (n * n + 1) * sizeof(int),
                                         (n + 2) * sizeof(int), (n * n + 1) * sizeof(double)}));
        EXPECT_EQ(blocks.LiveBlocks(), 0);
    }
}

TEST(DenseBlocks, AnEliminationAllocatesNone) {
    Matrix A(18, 18);
    FillDominant(A, 18, 8);
    Doubles rhs(19, 1.0);
    CKVX_ACMT_MatSolver_Dense dense;
    AllocationRecorder blocks;

    dense.SolveDenseMatrix(A, rhs.data(), 18, rhs.data());

    EXPECT_TRUE(blocks.Sizes().empty());
}

TEST(DenseBlocks, AnInversionDoesNotReleaseItsWorkBlock) {
    for (int n : {1, 2, 5}) {
        Matrix A(n, n);
        FillDominant(A, n, 8);
        CKVX_ACMT_MatSolver_Dense dense;
        AllocationRecorder blocks;

        dense.Inverse(A, A, n);

        EXPECT_EQ(blocks.Sizes(), Bytes{n * n * sizeof(double)});
        EXPECT_EQ(blocks.LiveBlocks(), 1);
    }
}

TEST(DenseBlocks, AProductDoesNotReleaseTheLastRowOfItsTable) {
    Matrix A(2, 3);
    Matrix B(3, 4);
    Matrix C(2, 4);
    CKVX_ACMT_MatSolver_Dense dense;
    AllocationRecorder blocks;

    dense.Multiply(A, B, C, 2, 3, 4);

    EXPECT_EQ(blocks.LiveBlocks(), 1);
    EXPECT_EQ(blocks.Sizes().back(), 5 * sizeof(double));
}

}  // namespace
