#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "overset/detail/kd_tree_store.h"
#include "overset/kd_tree.h"
#include "plain/samples/clouds.h"

// Every form of new of this program goes through here and can be made to fail.

namespace {

constexpr int never = -1;
int allocationsLeft = never;
std::size_t bytesAsked = 0;  ///< in all; what is released again stays counted

void* Allocate(std::size_t bytes) {
    bytesAsked += bytes;
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

/// What a build came to when its n-th allocation failed.
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

/// The tree takes a point and answers with it.
void ExpectUsable(KVX_ART_KDtree& tree) {
    int id = 77;
    int* found = nullptr;
    EXPECT_TRUE(tree.BuildTree(9.0, 9.0, 9.0, &id));
    EXPECT_EQ(tree.SearchNearestPoints(0.0, 0.0, 0.0, found), 1);
    EXPECT_EQ(found[1], 77);
    delete[] found;
}

/// Fails each allocation of a build in turn. The ids throw; what belongs to the nodes is answered
/// by false, and the box of a tree is done without.
void ExpectRefusalsToLeaveAnEmptyTree(Build build, Cloud& cloud) {
    build(*std::make_unique<KVX_ART_KDtree>(), cloud);  // what the build keeps for itself
    Outcome outcome = Outcome::Threw;
    int nRefused = 0;
    for (int nth = 1; outcome != Outcome::NothingFailed; ++nth) {
        KVX_ART_KDtree tree;

        outcome = BuildWithFailure(build, tree, cloud, nth);

        ASSERT_EQ(outcome == Outcome::Threw, nth == 1) << nth;
        if (outcome == Outcome::Built || outcome == Outcome::NothingFailed) {
            continue;
        }
        nRefused += outcome == Outcome::Refused ? 1 : 0;
        EXPECT_EQ(tree.tree->root, nullptr) << nth;
        EXPECT_EQ(tree.tree->rect, nullptr) << nth;
        ExpectUsable(tree);
    }
    EXPECT_GT(nRefused, 0);
}

/// Answers, on points and between them, as the tree does that had all its memory.
void ExpectAnswersOf(KVX_ART_KDtree& expected, KVX_ART_KDtree& tree, const Cloud& cloud) {
    int* wanted = nullptr;
    int* found = nullptr;
    for (const Query& q : QueriesFor(cloud, 6)) {
        expected.SearchNearestPoints(q[0], q[1], q[2], wanted);
        ASSERT_EQ(tree.SearchNearestPoints(q[0], q[1], q[2], found), 1);
        ASSERT_EQ(found[1], wanted[1]);
    }
    delete[] wanted;
    delete[] found;
}

TEST(KdTreeOutOfMemoryIndex, ABuildWithoutRoomForItsIndexAnswersAllTheSame) {
    Cloud cloud = LatticeCloud(9);
    KVX_ART_KDtree complete;
    ByArray(complete, cloud);
    ASSERT_NE(IndexOf(*complete.tree), nullptr);
    Outcome outcome = Outcome::Threw;
    int nWithout = 0;
    for (int nth = 1; outcome != Outcome::NothingFailed; ++nth) {
        KVX_ART_KDtree tree;
        outcome = BuildWithFailure(ByArray, tree, cloud, nth);
        if (outcome == Outcome::Built && !IndexOf(*tree.tree)) {
            ++nWithout;
            ExpectAnswersOf(complete, tree, cloud);
        }
    }
    EXPECT_GT(nWithout, 3);
}

TEST(KdTreeOutOfMemoryIndex, ABoxThatLeavesOutPointsGetsNone) {
    Cloud cloud = UniformCloud(400, 7);
    cloud.x[0] = 50.0;
    bool boxFailed = false;
    Outcome outcome = Outcome::Threw;
    for (int nth = 1; outcome != Outcome::NothingFailed && !boxFailed; ++nth) {
        KVX_ART_KDtree tree;
        outcome = BuildWithFailure(ByArray, tree, cloud, nth);
        boxFailed = outcome == Outcome::Built && tree.tree->rect && tree.tree->rect->max[0] < 50.0;
        if (boxFailed) {
            EXPECT_EQ(IndexOf(*tree.tree), nullptr);
        }
    }
    EXPECT_TRUE(boxFailed);
}

class KdTreeOutOfMemory : public testing::TestWithParam<int> {};

TEST_P(KdTreeOutOfMemory, ARefusedBuildLeavesAnEmptyTreeThatCanStillGrow) {
    Cloud cloud = UniformCloud(GetParam(), 5);

    ExpectRefusalsToLeaveAnEmptyTree(ByArray, cloud);
    ExpectRefusalsToLeaveAnEmptyTree(ByBlockId, cloud);
}

INSTANTIATE_TEST_SUITE_P(Sizes, KdTreeOutOfMemory, testing::Values(1, 8, 9, 3000));

TEST(KdTreeOutOfMemoryDeep, ABuildAlongPathsIsRefusedAsWell) {
    for (Cloud cloud : {LatticeCloud(12), OutAndBackCloud(1500)}) {
        ExpectRefusalsToLeaveAnEmptyTree(ByArray, cloud);
    }
}

/// Bytes that the build of a tree asks for, by point.
std::size_t BytesAPoint(const Cloud& cloud) {
    const auto n = static_cast<std::size_t>(cloud.Size());
    std::vector<int> ids(n);
    KVX_ART_KDtree tree;
    const std::size_t before = bytesAsked;
    KDtreePoint* points = RoomForPoints(*tree.tree, cloud.Size());
    for (std::size_t i = 0; i < n; ++i) {
        points[i] = {{cloud.x[i], cloud.y[i], cloud.z[i]}, &ids[i]};
    }
    EXPECT_TRUE(InsertPoints(*tree.tree));
    return (bytesAsked - before) / n;
}

TEST(KdTreeMemory, ABuildTakesHardlyMoreThanItsNodes) {
    // A node is 64 bytes, the side of a point 1, the node at which it leaves a path 4.
    EXPECT_LE(BytesAPoint(UniformCloud(50000, 8)), 70u);
    EXPECT_LE(BytesAPoint(LatticeCloud(37)), 72u);
}

TEST(KdTreeMemory, PathsOfAllPointsTakeAsMuchAgain) {
    EXPECT_LE(BytesAPoint(RepeatedCloud(50000, 9)), 100u);  // path after path
    EXPECT_LE(BytesAPoint(DiagonalCloud(50000, true)), 160u);
}

TEST(KdTreeOutOfMemorySinglePoint, ANodeThatCannotBeHadIsAnsweredByFalse) {
    KVX_ART_KDtree tree;
    int id = 1;
    allocationsLeft = 0;

    EXPECT_FALSE(tree.BuildTree(1.0, 2.0, 3.0, &id));

    EXPECT_EQ(tree.tree->root, nullptr);
    ExpectUsable(tree);
}

TEST(KdTreeOutOfMemorySinglePoint, ABoxThatCannotBeHadIsDoneWithout) {
    KVX_ART_KDtree tree;
    int id = 1;
    int* found = nullptr;
    allocationsLeft = 1;  // the node succeeds

    EXPECT_TRUE(tree.BuildTree(1.0, 2.0, 3.0, &id));

    EXPECT_EQ(allocationsLeft, never);
    EXPECT_EQ(tree.tree->rect, nullptr);
    EXPECT_EQ(tree.SearchByRadius(1.0, 2.0, 3.0, 1.0, found), 1);
    delete[] found;
}

TEST(KdTreeOutOfMemoryRadius, AnEntryThatCannotBeHadEndsTheSearchAndTheAnswerStays) {
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
