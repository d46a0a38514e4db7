#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "overset/kd_tree.h"
#include "plain/plain_kd_tree.h"
#include "plain/samples/clouds.h"

namespace {

class KdTreeAgainstPlain : public testing::TestWithParam<NamedCloud> {
protected:
    KdTreeAgainstPlain() : cloud(GetParam().cloud) {
        for (int i = 0; i < cloud.Size(); ++i) {
            const auto at = static_cast<std::size_t>(i);
            plainTree.Insert(cloud.x[at], cloud.y[at], cloud.z[at], i + 1);
        }
    }

    Cloud cloud;
    plain::KdTree plainTree;
};

void ExpectSameShape(const KVX_ART_KDtree& tree, const plain::KdTree& expected) {
    std::vector<std::pair<const KDtreeNode*, const plain::KdTree::Node*>> open;
    open.push_back({tree.tree->root, expected.root});
    while (!open.empty()) {
        const auto [node, other] = open.back();
        open.pop_back();
        ASSERT_EQ(node == nullptr, other == nullptr);
        if (!node) {
            continue;
        }
        ASSERT_EQ(*node->data, other->id);
        ASSERT_EQ(node->dir, other->dir);
        for (int axis = 0; axis < 3; ++axis) {
            ASSERT_EQ(node->pos[axis], other->pos[axis]);
        }
        open.push_back({node->left, other->left});
        open.push_back({node->right, other->right});
    }
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(tree.tree->rect->min[axis], expected.min[axis]);
        EXPECT_EQ(tree.tree->rect->max[axis], expected.max[axis]);
    }
}

TEST_P(KdTreeAgainstPlain, ArrayBuildIsTheInsertionTreeNodeForNode) {
    KVX_ART_KDtree tree;

    ASSERT_TRUE(tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), cloud.Size()));

    ExpectSameShape(tree, plainTree);
}

TEST_P(KdTreeAgainstPlain, PointByPointIsTheInsertionTreeNodeForNode) {
    KVX_ART_KDtree tree;
    std::vector<int> ids(cloud.x.size());

    for (std::size_t i = 0; i < ids.size(); ++i) {
        ids[i] = static_cast<int>(i) + 1;
        ASSERT_TRUE(tree.BuildTree(cloud.x[i], cloud.y[i], cloud.z[i], &ids[i]));
    }

    ExpectSameShape(tree, plainTree);
}

TEST_P(KdTreeAgainstPlain, NearestIsTheSamePointTiesIncluded) {
    KVX_ART_KDtree tree;
    tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), cloud.Size());
    int* found = nullptr;

    for (const Query& q : QueriesFor(cloud, 21)) {
        ASSERT_EQ(tree.SearchNearestPoints(q[0], q[1], q[2], found), 1);
        EXPECT_EQ(found[1], plainTree.Nearest(q[0], q[1], q[2]))
            << q[0] << ' ' << q[1] << ' ' << q[2];
    }
    delete[] found;
}

TEST_P(KdTreeAgainstPlain, RadiusListsTheSamePointsInTheSameOrder) {
    KVX_ART_KDtree tree;
    tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), cloud.Size());
    int* found = nullptr;

    for (const Query& q : QueriesFor(cloud, 22)) {
        for (double radius : {0.0, 0.125, 0.5, 1.0, -0.5}) {
            const int n = tree.SearchByRadius(q[0], q[1], q[2], radius, found);
            EXPECT_EQ(std::vector<int>(found + 1, found + 1 + n),
                      plainTree.Within(q[0], q[1], q[2], radius))
                << q[0] << ' ' << q[1] << ' ' << q[2] << " r " << radius;
        }
    }
    delete[] found;
}

INSTANTIATE_TEST_SUITE_P(Clouds, KdTreeAgainstPlain, testing::ValuesIn(AllClouds()),
                         [](const auto& param) { return param.param.name; });

TEST(KdTreeDegenerate, ATreeAsDeepAsItsNumberOfPointsIsBuiltSearchedAndCleared) {
    for (Cloud cloud :
         {DiagonalCloud(300000, true), DiagonalCloud(300000, false), OutAndBackCloud(300000)}) {
        const int n = cloud.Size();
        KVX_ART_KDtree tree;
        ASSERT_TRUE(tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), n));
        int* found = nullptr;

        EXPECT_EQ(tree.SearchNearestPoints(cloud.x[77], cloud.y[77], cloud.z[77], found), 1);
        EXPECT_EQ(found[1], 78);
        EXPECT_EQ(tree.SearchByRadius(0, 0, 0, 10, found), n);
        delete[] found;
    }
}

}  // namespace
