#include "host_link/containers.h"

#include <gtest/gtest.h>

#include <climits>
#include <new>
#include <sstream>
#include <type_traits>
#include <vector>

#include "tests/support/allocation_recorder.h"
#include "tests/support/undestroyed.h"

namespace {

using KVX3DART::Container;
using KVX3DART::Vector;

TEST(NewDouble1D, HoldsItsSizeInSlotZeroAndZerosBehind) {
    AllocationRecorder memory;
    double* a = nullptr;

    newDouble1D(a, 3);

    EXPECT_EQ(memory.SizeOf(a), 4 * sizeof(double));
    EXPECT_EQ(std::vector<double>(a, a + 4), (std::vector<double>{3, 0, 0, 0}));
    delete[] a;
}

TEST(NewDouble1D, NoEntriesGiveABlockOfOneElement) {
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

TEST(NewDouble1D, AFailedAllocationThrowsAndLeavesNothingToReleaseTwice) {
    double* a = nullptr;
    newDouble1D(a, 2);
    AllocationRecorder memory;
    memory.FailAfter(0);

    EXPECT_THROW(newDouble1D(a, 3), std::bad_alloc);

    EXPECT_EQ(a, nullptr);
}

TEST(NewDouble1D, ASizeBelowMinusOneIsLeftToTheAllocation) {
    double* a = nullptr;

    EXPECT_THROW(newDouble1D(a, -2), std::bad_alloc);
    EXPECT_THROW(newDouble1D(a, INT_MIN), std::bad_alloc);
}

TEST(NewInt1D, HoldsItsSizeInSlotZeroAndZerosBehind) {
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

TEST(NewDouble2D, IsATableWithAHeadAndRowsThatHoldTheColumnCount) {
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

TEST(NewDouble2D, NoRowsGiveAHeadAlone) {
    AllocationRecorder memory;
    double** a = nullptr;

    newDouble2D(a, 0, 4);

    EXPECT_EQ(memory.SizeOf(a), sizeof(double*));
    EXPECT_EQ(a[0][0], 0.0);
    freeDouble2D(a);
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(NewDouble2D, ReplacesAnOldTableButForItsLastRow) {
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

/// Releases of freeDouble2D and freeIntRows on a table of so many rows.
class LastRowStays : public testing::TestWithParam<int> {};

TEST_P(LastRowStays, InATableOfDoubles) {
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

TEST_P(LastRowStays, InATableOfInts) {
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

INSTANTIATE_TEST_SUITE_P(Rows, LastRowStays, testing::Values(1, 2, 3, 10));

TEST(FreeTables, ANullPointerStaysNull) {
    double** doubles = nullptr;
    int** ints = nullptr;

    freeDouble2D(doubles);
    freeIntRows(ints);

    EXPECT_EQ(doubles, nullptr);
    EXPECT_EQ(ints, nullptr);
}

TEST(FreeTables, NullRowsArePassedOver) {
    AllocationRecorder memory;
    int** a = nullptr;
    newIntRows(a, 3);
    newInt1D(a[2], 1);

    freeIntRows(a);

    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(NewIntRows, IsATableOfNullRowsWithAHead) {
    AllocationRecorder memory;
    int** a = nullptr;

    newIntRows(a, 3);

    EXPECT_EQ(memory.SizeOf(a), 4 * sizeof(int*));
    EXPECT_EQ(memory.SizeOf(a[0]), sizeof(int));
    EXPECT_EQ(a[0][0], 3);
    EXPECT_EQ(std::vector<int*>(a + 1, a + 4), (std::vector<int*>(3, nullptr)));
    freeIntRows(a);
}

TEST(NewIntRows, ReplacesAnOldTableButForItsLastRow) {
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

/// The n-th allocation of newDouble2D fails, n = 0, 1, 2 ...: what is there can be released.
TEST(NewDouble2D, AfterAFailedAllocationTheRestCanBeReleased) {
    for (int n = 0;; ++n) {
        AllocationRecorder memory;
        memory.FailAfter(n);
        double** a = nullptr;
        try {
            newDouble2D(a, 3, 2);
            const double* last = a[3];
            freeDouble2D(a);
            delete[] last;
            EXPECT_EQ(n, 5);  // table, head, three rows
            break;
        } catch (const std::bad_alloc&) {
            freeDouble2D(a);
            EXPECT_EQ(memory.LiveBlocks(), 0) << "failed allocation " << n;
        }
    }
}

TEST(ContainerShape, IsPolymorphicAndStartsEmpty) {
    static_assert(std::has_virtual_destructor_v<Container>);
    AllocationRecorder memory;
    {
        const Container container;

        EXPECT_EQ(memory.SizeOf(container.shape), 2 * sizeof(std::size_t));
        EXPECT_EQ(container.shape[1], 0u);
        EXPECT_FALSE(container.flag);
        EXPECT_LT(static_cast<const void*>(&container.shape),
                  static_cast<const void*>(&container.flag));
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(ContainerShape, CopiesShareTheShapeAndTakeTheFlag) {
    Container source;
    source.flag = true;
    Undestroyed<Container> copy(source);
    Undestroyed<Container> assigned;
    const std::size_t* givenUp = (*assigned).shape;

    *assigned = source;

    EXPECT_EQ((*copy).shape, source.shape);
    EXPECT_TRUE((*copy).flag);
    EXPECT_EQ((*assigned).shape, source.shape);
    EXPECT_TRUE((*assigned).flag);
    delete[] givenUp;
}

template <typename T>
class VectorOf : public testing::Test {};
using ElementTypes = testing::Types<int, double>;
TYPED_TEST_SUITE(VectorOf, ElementTypes, );

TYPED_TEST(VectorOf, DerivesFromContainer) {
    static_assert(std::is_base_of_v<Container, Vector<TypeParam>>);
    static_assert(std::is_convertible_v<std::size_t, Vector<TypeParam>>);
    Vector<TypeParam> vector(2);
    Container& container = vector;  // a virtual base: no static downcast

    EXPECT_EQ(dynamic_cast<Vector<TypeParam>*>(&container), &vector);
}

TYPED_TEST(VectorOf, HoldsItsSizeInShapeAndInSlotZero) {
    AllocationRecorder memory;
    const Vector<TypeParam> vector(5);

    EXPECT_EQ(vector.size(), 5u);
    EXPECT_EQ(vector.shape[0], 1u);
    EXPECT_EQ(vector.shape[1], 5u);
    EXPECT_FALSE(vector.flag);
    EXPECT_EQ(memory.SizeOf(vector.data), 6 * sizeof(TypeParam));
    EXPECT_EQ(std::vector<TypeParam>(vector.data, vector.data + 6),
              (std::vector<TypeParam>{5, 0, 0, 0, 0, 0}));
}

TYPED_TEST(VectorOf, DefaultIsEmptyAndPrintsNothing) {
    const Vector<TypeParam> vector;
    std::ostringstream out;

    vector.print(out);

    EXPECT_EQ(vector.size(), 0u);
    EXPECT_EQ(vector.shape[0], 1u);
    EXPECT_EQ(vector.data, nullptr);
    EXPECT_EQ(out.str(), "");
}

TYPED_TEST(VectorOf, SizeZeroHasABlockOfOneElementAndPrintsNothing) {
    AllocationRecorder memory;
    const Vector<TypeParam> vector(0);
    std::ostringstream out;

    vector.print(out);

    EXPECT_EQ(memory.SizeOf(vector.data), sizeof(TypeParam));
    EXPECT_EQ(vector.data[0], TypeParam(0));
    EXPECT_EQ(out.str(), "");
}

TYPED_TEST(VectorOf, PrintRepeatsTheFirstElementOnEveryLine) {
    Vector<TypeParam> vector(3);
    vector.data[1] = 4;
    vector.data[2] = 5;
    vector.data[3] = 6;
    std::ostringstream out;

    vector.print(out);

    EXPECT_EQ(out.str(), "4\n4\n4\n");
}

TYPED_TEST(VectorOf, CopiesShareDataAndShape) {
    AllocationRecorder memory;
    {
        Vector<TypeParam> source(2);
        source.flag = true;
        const int blocks = memory.LiveBlocks();
        Undestroyed<Vector<TypeParam>> copy(source);
        EXPECT_EQ(memory.LiveBlocks(), blocks);  // the virtual base makes no shape of its own

        EXPECT_EQ((*copy).data, source.data);
        EXPECT_EQ((*copy).shape, source.shape);
        EXPECT_TRUE((*copy).flag);
        EXPECT_EQ((*copy).size(), 2u);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TYPED_TEST(VectorOf, AssignmentSharesAndGivesUpWhatTheTargetHeld) {
    Vector<TypeParam> source(2);
    Undestroyed<Vector<TypeParam>> target(std::size_t{3});
    const TypeParam* givenUpData = (*target).data;
    const std::size_t* givenUpShape = (*target).shape;

    *target = source;

    EXPECT_EQ((*target).data, source.data);
    EXPECT_EQ((*target).shape, source.shape);
    delete[] givenUpData;
    delete[] givenUpShape;
}

TYPED_TEST(VectorOf, DestructorReleasesDataThenShape) {
    AllocationRecorder memory;
    const void* data = nullptr;
    const void* shape = nullptr;
    {
        const Vector<TypeParam> vector(1);
        data = vector.data;
        shape = vector.shape;
    }
    EXPECT_EQ(memory.Released(), (std::vector<const void*>{data, shape}));
}

TYPED_TEST(VectorOf, DeletesThroughItsBase) {
    AllocationRecorder memory;
    const Container* container = new Vector<TypeParam>(4);

    delete container;

    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TYPED_TEST(VectorOf, AFailedAllocationReleasesTheShape) {
    AllocationRecorder memory;
    memory.FailAfter(1);

    EXPECT_THROW(Vector<TypeParam>(3), std::bad_alloc);

    EXPECT_EQ(memory.LiveBlocks(), 0);
}

}  // namespace
