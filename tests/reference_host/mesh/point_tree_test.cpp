#include "reference_host/mesh/point_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

using host::PointTree;
using host::Vec3;

/// Points in the unit cube; on a lattice of 8 values an axis, so that coordinates repeat.
std::vector<Vec3> LatticeCloud(int n, unsigned seed) {
    std::mt19937 random(seed);
    const auto coordinate = [&] { return static_cast<double>(random() % 8) / 8.0; };
    std::vector<Vec3> cloud;
    for (int i = 0; i < n; ++i) {
        const double x = coordinate();
        const double y = coordinate();
        cloud.emplace_back(x, y, coordinate());
    }
    return cloud;
}

int DepthBelow(const KDtreeNode* node) {
    return node == nullptr ? 0 : 1 + std::max(DepthBelow(node->left), DepthBelow(node->right));
}

/// Depth of the tree that the toolbox really builds.
int RealDepth(const std::vector<Vec3>& points) {
    KVX_ART_KDtree tree;
    std::vector<int> ids(points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        tree.BuildTree(points[i].x(), points[i].y(), points[i].z(), &ids[i]);
    }
    return DepthBelow(tree.tree->root);
}

class TreeDepthOfCloud : public testing::TestWithParam<int> {};

TEST_P(TreeDepthOfCloud, IsThatOfTheToolboxsTree) {
    const std::vector<Vec3> cloud = LatticeCloud(GetParam(), /*seed=*/5);

    EXPECT_EQ(host::TreeDepth(cloud, GetParam()), RealDepth(cloud));
}

INSTANTIATE_TEST_SUITE_P(Sizes, TreeDepthOfCloud, testing::Values(1, 2, 3, 17, 1000, 5000));

TEST(TreeDepth, PointsSortedOnAllAxesMakeAChain) {
    std::vector<Vec3> points;
    for (int i = 0; i < 200; ++i) {
        points.push_back(Vec3::Constant(i));
    }

    EXPECT_EQ(host::TreeDepth(points, 1000), 200);
    EXPECT_EQ(RealDepth(points), 200);
}

TEST(TreeDepth, StopsOnceTheLimitIsPassed) {
    std::vector<Vec3> points(100000, Vec3::Zero());

    EXPECT_EQ(host::TreeDepth(points, 50), 51);
}

TEST(TreeDepth, OfNothingIsZero) {
    EXPECT_EQ(host::TreeDepth({}, 10), 0);
}

TEST(PointTree, AnswersTheIdOfTheNearestPoint) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    std::vector<Vec3> cloud(501);
    std::vector<int> ids;
    for (int id = 500; id >= 1; id -= 2) {
        cloud[id] = Vec3(uniform(random), uniform(random), uniform(random));
        ids.push_back(id);
    }
    const PointTree tree(ids, [&](int id) -> const Vec3& { return cloud[id]; });

    for (int i = 0; i < 200; ++i) {
        const Vec3 query(uniform(random), uniform(random), uniform(random));
        const int expected = *std::min_element(ids.begin(), ids.end(), [&](int a, int b) {
            return (cloud[a] - query).squaredNorm() < (cloud[b] - query).squaredNorm();
        });
        EXPECT_EQ(tree.Nearest(query), expected) << query.transpose();
    }
}

TEST(PointTree, WithoutPointsAnswersZero) {
    const std::vector<Vec3> none(1);
    const PointTree tree({}, [&](int id) -> const Vec3& { return none[id]; });

    EXPECT_EQ(tree.Nearest(Vec3::Zero()), 0);
}

}  // namespace
