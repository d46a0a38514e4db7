#include "host_link/containers.h"

#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <vector>

#include "tests/support/allocation_recorder.h"

namespace {

TEST(NewDouble1D, HoldsItsSizeInSlotZeroAndZerosAfterIt) {
    AllocationRecorder memory;
    double* a = nullptr;

    newDouble1D(a, 3);

    EXPECT_EQ(memory.SizeOf(a), 4 * sizeof(double));
    EXPECT_EQ(std::vector<double>(a, a + 4), (std::vector<double>{3, 0, 0, 0}));
    delete[] a;
}

TEST(NewDouble1D, AnArrayWithoutEntriesIsABlockOfOneElement) {
    AllocationRecorder memory;
    double* a = nullptr;

    newDouble1D(a, 0);

    EXPECT_EQ(memory.SizeOf(a), sizeof(double));
    EXPECT_EQ(a[0], 0.0);
    delete[] a;
}

TEST(NewDouble1D, ReplacesAFilledBlock) {
    double* a = nullptr;
    newDouble1D(a, 2);
    a[1] = a[2] = 7.0;
    const double* old = a;
    AllocationRecorder memory;

    newDouble1D(a, 3);

    ASSERT_EQ(memory.Released().size(), 1u);
    EXPECT_EQ(memory.Released()[0], old);
    EXPECT_EQ(std::vector<double>(a, a + 4), (std::vector<double>{3, 0, 0, 0}));
    delete[] a;
}

TEST(NewDouble1D, AFailedAllocationThrowsAndLeavesANullPointer) {
    double* a = nullptr;
    newDouble1D(a, 2);
    AllocationRecorder memory;
    memory.FailAfter(0);

    EXPECT_THROW(newDouble1D(a, 3), std::bad_alloc);

    EXPECT_EQ(a, nullptr);
}

TEST(NewDouble1D, ASizeBelowMinusOneFailsInTheAllocation) {
    double* a = nullptr;

    EXPECT_THROW(newDouble1D(a, -2), std::bad_alloc);
    EXPECT_THROW(newDouble1D(a, INT_MIN), std::bad_alloc);
}

TEST(NewInt1D, HoldsItsSizeInSlotZeroAndZerosAfterIt) {
    AllocationRecorder memory;
    int* a = nullptr;

    newInt1D(a, 2);

    EXPECT_EQ(memory.SizeOf(a), 3 * sizeof(int));
    EXPECT_EQ(std::vector<int>(a, a + 3), (std::vector<int>{2, 0, 0}));
    delete[] a;
}

TEST(NewInt1D, ReplacesAFilledBlock) {
    int* a = nullptr;
    newInt1D(a, 2);
    a[1] = 5;
    const int* old = a;
    AllocationRecorder memory;

    newInt1D(a, 1);

    ASSERT_EQ(memory.Released().size(), 1u);
    EXPECT_EQ(memory.Released()[0], old);
    EXPECT_EQ(std::vector<int>(a, a + 2), (std::vector<int>{1, 0}));
    delete[] a;
}

TEST(NewDouble2D, IsATableWithTheRowCountInSlotZeroAndTheColumnCountInEachRow) {
    AllocationRecorder memory;
    double** a = nullptr;

    newDouble2D(a, 3, 4);

    EXPECT_EQ(memory.SizeOf(a), 4 * sizeof(double*));
    EXPECT_EQ(memory.SizeOf(a[0]), sizeof(double));
    EXPECT_EQ(a[0][0], 3.0);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(memory.SizeOf(a[i]), 5 * sizeof(double));
        EXPECT_EQ(std::vector<double>(a[i], a[i] + 5), (std::vector<double>{4, 0, 0, 0, 0}));
    }
    const double* last = a[3];
    freeDouble2D(a);
    delete[] last;
}

TEST(NewDouble2D, ATableWithoutRowsHasSlotZeroOnly) {
    AllocationRecorder memory;
    double** a = nullptr;

    newDouble2D(a, 0, 4);

    EXPECT_EQ(memory.SizeOf(a), sizeof(double*));
    EXPECT_EQ(a[0][0], 0.0);
    freeDouble2D(a);
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(NewDouble2D, ReplacesAnOldTableExceptItsLastRow) {
    AllocationRecorder memory;
    double** a = nullptr;
    newDouble2D(a, 2, 1);
    double* const first = a[1];
    double* const last = a[2];
    last[1] = 6.0;

    newDouble2D(a, 1, 1);

    EXPECT_TRUE(memory.IsLive(last));
    EXPECT_EQ(last[1], 6.0);
    EXPECT_EQ(memory.Released()[0], first);
    const double* row = a[1];
    freeDouble2D(a);
    delete[] row;
    delete[] last;
}

/// freeDouble2D() and freeIntRows() on a table whose number of rows is the parameter.
class LastRowIsNotReleased : public testing::TestWithParam<int> {};

TEST_P(LastRowIsNotReleased, FromATableOfDoubles) {
    AllocationRecorder memory;
    double** a = nullptr;
    newDouble2D(a, GetParam(), 2);
    const double* last = a[GetParam()];

    freeDouble2D(a);

    EXPECT_EQ(a, nullptr);
    EXPECT_EQ(memory.LiveBlocks(), 1);
    EXPECT_TRUE(memory.IsLive(last));
    delete[] last;
}

TEST_P(LastRowIsNotReleased, FromATableOfInts) {
    AllocationRecorder memory;
    int** a = nullptr;
    newIntRows(a, GetParam());
    for (int i = 1; i <= GetParam(); ++i) {
        newInt1D(a[i], i);
    }
    const int* last = a[GetParam()];

    freeIntRows(a);

    EXPECT_EQ(a, nullptr);
    EXPECT_EQ(memory.LiveBlocks(), 1);
    EXPECT_TRUE(memory.IsLive(last));
    delete[] last;
}

INSTANTIATE_TEST_SUITE_P(Rows, LastRowIsNotReleased, testing::Values(1, 2, 3, 10));

TEST(FreeTables, ANullPointerStaysNull) {
    double** doubles = nullptr;
    int** ints = nullptr;

    freeDouble2D(doubles);
    freeIntRows(ints);

    EXPECT_EQ(doubles, nullptr);
    EXPECT_EQ(ints, nullptr);
}

TEST(FreeTables, NullRowsAreSkipped) {
    AllocationRecorder memory;
    int** a = nullptr;
    newIntRows(a, 3);
    newInt1D(a[2], 1);

    freeIntRows(a);

    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(NewIntRows, IsATableOfNullRowsWithTheRowCountInSlotZero) {
    AllocationRecorder memory;
    int** a = nullptr;

    newIntRows(a, 3);

    EXPECT_EQ(memory.SizeOf(a), 4 * sizeof(int*));
    EXPECT_EQ(memory.SizeOf(a[0]), sizeof(int));
    EXPECT_EQ(a[0][0], 3);
    EXPECT_EQ(std::vector<int*>(a + 1, a + 4), (std::vector<int*>(3, nullptr)));
    freeIntRows(a);
}

TEST(NewIntRows, ReplacesAnOldTableExceptItsLastRow) {
    AllocationRecorder memory;
    int** a = nullptr;
    newIntRows(a, 2);
    newInt1D(a[1], 1);
    newInt1D(a[2], 1);
    const int* last = a[2];

    newIntRows(a, 1);

    EXPECT_TRUE(memory.IsLive(last));
    EXPECT_EQ(a[1], nullptr);
    freeIntRows(a);
    delete[] last;
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

/// Allocation number n of newDouble2D() fails, for n = 0, 1, 2, ...
TEST(NewDouble2D, WhatAFailedAllocationLeavesCanBeReleased) {
    for (int n = 0;; ++n) {
        AllocationRecorder memory;
        memory.FailAfter(n);
        double** a = nullptr;
        try {
            newDouble2D(a, 3, 2);
            const double* last = a[3];
            freeDouble2D(a);
            delete[] last;
            EXPECT_EQ(n, 5);  // table, slot 0, three rows
            break;
        } catch (const std::bad_alloc&) {
            freeDouble2D(a);
            EXPECT_EQ(memory.LiveBlocks(), 0) << "failed allocation " << n;
        }
    }
}

}  // namespace
