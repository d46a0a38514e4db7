#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <sstream>
#include <type_traits>
#include <vector>

#include "host_link/containers.h"
#include "tests/support/allocation_recorder.h"
#include "tests/support/undestroyed.h"

namespace {

using KVX3DART::Container;
using KVX3DART::Vector;

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

TEST(ContainerShape, CopiesShareTheShapeAndCopyTheFlag) {
    Container source;
    source.flag = true;
    Undestroyed<Container> copy(source);
    Undestroyed<Container> assigned;
    const std::size_t* oldShape = (*assigned).shape;

    *assigned = source;

    EXPECT_EQ((*copy).shape, source.shape);
    EXPECT_TRUE((*copy).flag);
    EXPECT_EQ((*assigned).shape, source.shape);
    EXPECT_TRUE((*assigned).flag);
    delete[] oldShape;
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

TYPED_TEST(VectorOf, AVectorOfSizeZeroHasABlockOfOneElementAndPrintsNothing) {
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
        EXPECT_EQ(memory.LiveBlocks(), blocks);  // the virtual base allocates no shape of its own

        EXPECT_EQ((*copy).data, source.data);
        EXPECT_EQ((*copy).shape, source.shape);
        EXPECT_TRUE((*copy).flag);
        EXPECT_EQ((*copy).size(), 2u);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TYPED_TEST(VectorOf, AssignmentSharesArraysAndDoesNotReleaseThoseOfTheTarget) {
    Vector<TypeParam> source(2);
    Undestroyed<Vector<TypeParam>> target(std::size_t{3});
    const TypeParam* oldData = (*target).data;
    const std::size_t* oldShape = (*target).shape;

    *target = source;

    EXPECT_EQ((*target).data, source.data);
    EXPECT_EQ((*target).shape, source.shape);
    delete[] oldData;
    delete[] oldShape;
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

TYPED_TEST(VectorOf, CanBeDeletedThroughItsBase) {
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
