#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "overset/detail/kd_tree_store.h"
#include "overset/kd_tree.h"
#include "plain/samples/clouds.h"

// Every form of new in this program ends up in Allocate(), which can be made to fail.

using kvx3d::detail::InsertPoints;
using kvx3d::detail::KDtreePoint;
using kvx3d::detail::RoomForPoints;

namespace {

constexpr int never = -1;
int allocationsLeft = never;
std::size_t bytesAllocated = 0;  ///< in total; a release does not lower it

void* Allocate(std::size_t bytes) {
    bytesAllocated += bytes;
    if (allocationsLeft == 0) {
        allocationsLeft = never;
        throw std::bad_alloc();
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    if (void* memory = std::malloc(bytes > 0 ? bytes : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t bytes) {
    return Allocate(bytes);
}
void* operator new[](std::size_t bytes) {
    return Allocate(bytes);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

/// How a build ended when its n-th allocation failed.
enum class Outcome { Threw, Refused, Built, NothingFailed };

using Build = bool (*)(KVX_ART_KDtree& tree, Cloud& cloud);

bool ByArray(KVX_ART_KDtree& tree, Cloud& cloud) {
    return tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), cloud.Size());
}

bool ByBlockId(KVX_ART_KDtree& tree, Cloud& cloud) {
    static std::vector<int> blockIds;
    blockIds.assign(cloud.x.size(), 4);
    return tree.BuildTreeByBlockId(cloud.x.data(), cloud.y.data(), cloud.z.data(), blockIds.data(),
                                   4, cloud.Size());
}

Outcome BuildWithFailure(Build build, KVX_ART_KDtree& tree, Cloud& cloud, int nth) {
    allocationsLeft = nth - 1;
    Outcome outcome = Outcome::Threw;
    try {
        outcome = build(tree, cloud) ? Outcome::Built : Outcome::Refused;
    } catch (const std::bad_alloc&) {
    }
    const bool failed = allocationsLeft == never;
    allocationsLeft = never;
    return failed ? outcome : Outcome::NothingFailed;
}

/// Expects that the tree accepts a point and finds it.
void ExpectUsable(KVX_ART_KDtree& tree) {
    int id = 77;
    int* found = nullptr;
    EXPECT_TRUE(tree.BuildTree(9.0, 9.0, 9.0, &id));
    EXPECT_EQ(tree.SearchNearestPoints(0.0, 0.0, 0.0, found), 1);
    EXPECT_EQ(found[1], 77);
    delete[] found;
}

/// Fails each allocation of a build in turn. A failure for the ids throws; any other failure makes
/// the build return false.
void ExpectFailuresToLeaveAnEmptyTree(Build build, Cloud& cloud) {
    build(*std::make_unique<KVX_ART_KDtree>(), cloud);  // allocates the static block ids
    Outcome outcome = Outcome::Threw;
    int nRefused = 0;
    for (int nth = 1; outcome != Outcome::NothingFailed; ++nth) {
        KVX_ART_KDtree tree;

        outcome = BuildWithFailure(build, tree, cloud, nth);

        ASSERT_EQ(outcome == Outcome::Threw, nth == 1) << nth;
        ASSERT_NE(outcome, Outcome::Built) << nth;
        if (outcome == Outcome::NothingFailed) {
            break;
        }
        nRefused += outcome == Outcome::Refused ? 1 : 0;
        EXPECT_EQ(tree.tree->root, nullptr) << nth;
        EXPECT_EQ(tree.tree->rect, nullptr) << nth;
        ExpectUsable(tree);
    }
    EXPECT_GT(nRefused, 0);
}

class KdTreeOutOfMemory : public testing::TestWithParam<int> {};

TEST_P(KdTreeOutOfMemory, AFailedBuildLeavesAnEmptyTreeThatCanStillGrow) {
    Cloud cloud = UniformCloud(GetParam(), 5);

    ExpectFailuresToLeaveAnEmptyTree(ByArray, cloud);
    ExpectFailuresToLeaveAnEmptyTree(ByBlockId, cloud);
}

INSTANTIATE_TEST_SUITE_P(Sizes, KdTreeOutOfMemory, testing::Values(1, 8, 9, 3000));

TEST(KdTreeOutOfMemoryDeep, AFailedBuildAlongPathsLeavesAnEmptyTreeAsWell) {
    for (Cloud cloud : {LatticeCloud(12), OutAndBackCloud(1500)}) {
        ExpectFailuresToLeaveAnEmptyTree(ByArray, cloud);
    }
}

/// Bytes per point that the build of a tree allocates.
std::size_t BytesPerPoint(const Cloud& cloud) {
    const auto n = static_cast<std::size_t>(cloud.Size());
    std::vector<int> ids(n);
    KVX_ART_KDtree tree;
    const std::size_t before = bytesAllocated;
    KDtreePoint* points = RoomForPoints(*tree.tree, cloud.Size());
    for (std::size_t i = 0; i < n; ++i) {
        points[i] = {{cloud.x[i], cloud.y[i], cloud.z[i]}, &ids[i]};
    }
    EXPECT_TRUE(InsertPoints(*tree.tree));
    return (bytesAllocated - before) / n;
}

TEST(KdTreeMemory, ABuildAllocatesLittleMoreThanItsNodes) {
    // 64 bytes for a node, 1 for the side of a point, 4 for the node at which it leaves a path.
    EXPECT_LE(BytesPerPoint(UniformCloud(50000, 8)), 70u);
    EXPECT_LE(BytesPerPoint(LatticeCloud(37)), 72u);
}

TEST(KdTreeMemory, LongPathsAllocateAtMostTwoAndAHalfTimesTheNodes) {
    EXPECT_LE(BytesPerPoint(RepeatedCloud(50000, 9)), 100u);  // one path after the other
    EXPECT_LE(BytesPerPoint(DiagonalCloud(50000, true)), 160u);
}

TEST(KdTreeOutOfMemorySinglePoint, WithoutMemoryForItsNodeTheInsertionReturnsFalse) {
    KVX_ART_KDtree tree;
    int id = 1;
    allocationsLeft = 0;

    EXPECT_FALSE(tree.BuildTree(1.0, 2.0, 3.0, &id));

    EXPECT_EQ(tree.tree->root, nullptr);
    ExpectUsable(tree);
}

TEST(KdTreeOutOfMemorySinglePoint, TheFirstPointAllocatesOnceAndHasABox) {
    KVX_ART_KDtree tree;
    int id = 1;
    allocationsLeft = 1;

    EXPECT_TRUE(tree.BuildTree(1.0, 2.0, 3.0, &id));

    EXPECT_EQ(allocationsLeft, 0);
    allocationsLeft = never;
    ASSERT_NE(tree.tree->rect, nullptr);
    EXPECT_EQ(tree.tree->rect->max[2], 3.0);
}

TEST(KdTreeOutOfMemoryRadius, WithoutMemoryForAnEntryTheSearchFailsAndKeepsTheAnswer) {
    Cloud cloud = UniformCloud(3, 5);
    KVX_ART_KDtree tree;
    ByArray(tree, cloud);
    int* found = new int[1]{0};
    for (int nth : {1, 2, 3}) {
        allocationsLeft = nth - 1;

        EXPECT_EQ(tree.SearchByRadius(0.0, 0.0, 0.0, 1e9, found), -1) << nth;

        EXPECT_EQ(found[0], 0);
    }
    EXPECT_EQ(tree.SearchByRadius(0.0, 0.0, 0.0, 1e9, found), 3);
    delete[] found;
}

}  // namespace
