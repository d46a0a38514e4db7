#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <vector>

#include "overset/kd_tree.h"
#include "tests/overset/clouds.h"

// Every form of new of this program goes through here and can be made to fail.

namespace {

constexpr int never = -1;
int allocationsLeft = never;

void* Allocate(std::size_t bytes) {
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

/// What an array build came to when its n-th allocation failed.
enum class Outcome { Threw, Refused, Built, NothingFailed };

Outcome BuildWithFailure(KVX_ART_KDtree& tree, Cloud& cloud, int nth) {
    allocationsLeft = nth - 1;
    Outcome outcome = Outcome::Threw;
    try {
        const int n = static_cast<int>(cloud.x.size());
        const bool built = tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), n);
        outcome = built ? Outcome::Built : Outcome::Refused;
    } catch (const std::bad_alloc&) {
    }
    const bool failed = allocationsLeft == never;
    allocationsLeft = never;
    return failed ? outcome : Outcome::NothingFailed;
}

class KdTreeOutOfMemory : public testing::TestWithParam<int> {};

TEST_P(KdTreeOutOfMemory, ARefusedBuildLeavesAnEmptyTreeThatCanStillGrow) {
    Cloud cloud = UniformCloud(GetParam(), 5);
    int id = 77;
    Outcome outcome = Outcome::Threw;
    for (int nth = 1; outcome != Outcome::NothingFailed; ++nth) {
        KVX_ART_KDtree tree;

        outcome = BuildWithFailure(tree, cloud, nth);

        ASSERT_EQ(outcome == Outcome::Threw, nth == 1) << nth;  // the ids, and nothing else
        if (outcome != Outcome::Threw && outcome != Outcome::Refused) {
            continue;
        }
        int* found = nullptr;
        EXPECT_EQ(tree.tree->root, nullptr) << nth;
        EXPECT_EQ(tree.tree->rect, nullptr) << nth;
        EXPECT_TRUE(tree.BuildTree(9.0, 9.0, 9.0, &id));
        EXPECT_EQ(tree.SearchNearestPoints(0.0, 0.0, 0.0, found), 1);
        EXPECT_EQ(found[1], 77) << nth;
        delete[] found;
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, KdTreeOutOfMemory, testing::Values(1, 8, 9, 3000));

}  // namespace
