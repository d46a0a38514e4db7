#include "overset/kd_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <new>
#include <vector>

#include "overset/detail/kd_tree_search.h"
#include "plain/samples/clouds.h"
#include "tests/support/allocation_recorder.h"
#include "tests/support/output_capture.h"

namespace {

using kvx3d::detail::ClearResults;
using kvx3d::detail::InsertResult;

/// The answer of a search; releases it.
struct Answer {
    ~Answer() { delete[] list; }
    std::vector<int> Ids() const { return {list + 1, list + 1 + list[0]}; }
    int* list = nullptr;
};

/// A tree of the given points; their ids start at 1.
struct Points {
    explicit Points(const std::vector<Query>& points) {
        for (const Query& p : points) {
            cloud.Add(p[0], p[1], p[2]);
        }
        tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), cloud.Size());
    }
    int Nearest(double x, double y, double z) {
        tree.SearchNearestPoints(x, y, z, answer.list);
        return answer.list[1];
    }
    std::vector<int> Within(double x, double y, double z, double r) {
        const int count = tree.SearchByRadius(x, y, z, r, answer.list);
        EXPECT_EQ(count, answer.list[0]);
        return answer.Ids();
    }
    Cloud cloud;
    KVX_ART_KDtree tree;
    Answer answer;
};

TEST(KdTreeLayout, FieldsAreInTheirOrderAndThereAreNoOthers) {
    EXPECT_EQ(offsetof(KVX_ART_KDtree, tree), 0u);
    EXPECT_EQ(offsetof(KVX_ART_KDtree, pointCount), 8u);
    EXPECT_EQ(offsetof(KVX_ART_KDtree, ids), 16u);
    EXPECT_EQ(sizeof(KVX_ART_KDtree), 24u);
    EXPECT_EQ(offsetof(KDtreeCore, root), 8u);
    EXPECT_EQ(offsetof(KDtreeCore, rect), 16u);
    EXPECT_EQ(offsetof(KDtreeCore, destructor), 24u);
    EXPECT_EQ(sizeof(KDtreeCore), 32u);
    EXPECT_EQ(offsetof(KDtreeNode, pos), 0u);
    EXPECT_EQ(offsetof(KDtreeNode, dir), 8u);
    EXPECT_EQ(offsetof(KDtreeNode, data), 16u);
    EXPECT_EQ(offsetof(KDtreeNode, left), 24u);
    EXPECT_EQ(offsetof(KDtreeNode, right), 32u);
    EXPECT_EQ(sizeof(KDtreeNode), 40u);
    EXPECT_EQ(offsetof(KDtreeRect, min), 8u);
    EXPECT_EQ(offsetof(KDtreeRect, max), 16u);
    EXPECT_EQ(offsetof(KDtreeResultNode, distSq), 8u);
    EXPECT_EQ(offsetof(KDtreeResultNode, next), 16u);
    EXPECT_EQ(offsetof(KDtreeResultSet, list), 8u);
    EXPECT_EQ(offsetof(KDtreeResultSet, cursor), 16u);
    EXPECT_EQ(offsetof(KDtreeResultSet, size), 24u);
}

TEST(KdTreeBuild, NewTreeIsEmptyAndHasThreeDimensions) {
    KVX_ART_KDtree tree;

    EXPECT_EQ(tree.tree->dim, 3);
    EXPECT_EQ(tree.tree->root, nullptr);
    EXPECT_EQ(tree.tree->rect, nullptr);
    EXPECT_EQ(tree.tree->destructor, nullptr);
    EXPECT_EQ(tree.pointCount, 0);
    EXPECT_EQ(tree.ids, nullptr);
}

TEST(KdTreeBuild, AxesCycleFromXAtTheRoot) {
    Points points({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 1}, {2, 1, 1}});

    const KDtreeNode* node = points.tree.tree->root;
    for (int dir : {0, 1, 2, 0, 1}) {
        ASSERT_NE(node, nullptr);
        EXPECT_EQ(node->dir, dir);
        node = node->right;
    }
    EXPECT_EQ(node, nullptr);
}

TEST(KdTreeBuild, EqualCoordinatesGoRight) {
    Points points({{0, 0, 0}, {0, 5, 0}, {-1, 0, 0}});

    EXPECT_EQ(*points.tree.tree->root->right->data, 2);
    EXPECT_EQ(*points.tree.tree->root->left->data, 3);
}

TEST(KdTreeBuild, IdenticalPointsAreTwoNodesWithTheLaterOneOnTheRight) {
    Points points({{1, 2, 3}, {1, 2, 3}});

    EXPECT_EQ(*points.tree.tree->root->data, 1);
    EXPECT_EQ(*points.tree.tree->root->right->data, 2);
}

TEST(KdTreeBuild, NodesHoldCopiesOfTheCoordinates) {
    double x = 1.0, y = 2.0, z = 3.0;
    int id = 7;
    KVX_ART_KDtree tree;
    ASSERT_TRUE(tree.BuildTree(x, y, z, &id));

    x = y = z = 0.0;

    EXPECT_EQ(tree.tree->root->pos[0], 1.0);
    EXPECT_EQ(tree.tree->root->pos[1], 2.0);
    EXPECT_EQ(tree.tree->root->pos[2], 3.0);
}

TEST(KdTreeBuild, BoxContainsAllPoints) {
    Points points({{1, -2, 3}, {-1, 2, 0}, {0, 0, 5}});

    const KDtreeRect& rect = *points.tree.tree->rect;
    EXPECT_EQ(rect.dim, 3);
    EXPECT_EQ(std::vector<double>(rect.min, rect.min + 3), (std::vector<double>{-1, -2, 0}));
    EXPECT_EQ(std::vector<double>(rect.max, rect.max + 3), (std::vector<double>{1, 2, 5}));
}

TEST(KdTreeBuild, ArrayBuildNumbersFromOneAndPointsIntoItsIds) {
    Points points({{0, 0, 0}, {1, 0, 0}});

    EXPECT_EQ(points.tree.pointCount, 2);
    EXPECT_EQ(points.tree.ids[0], 1);
    EXPECT_EQ(points.tree.ids[1], 2);
    EXPECT_EQ(points.tree.tree->root->data, &points.tree.ids[0]);
    EXPECT_EQ(points.tree.tree->root->right->data, &points.tree.ids[1]);
}

TEST(KdTreeBuild, SinglePointKeepsTheCallersId) {
    int id = 42;
    KVX_ART_KDtree tree;

    ASSERT_TRUE(tree.BuildTree(1.0, 2.0, 3.0, &id));

    EXPECT_EQ(tree.tree->root->data, &id);
    EXPECT_EQ(tree.pointCount, 0);
    EXPECT_EQ(tree.ids, nullptr);
}

TEST(KdTreeBuild, FewerThanOnePointIsNotAFailure) {
    for (int n : {0, -3}) {
        KVX_ART_KDtree tree;

        EXPECT_TRUE(tree.BuildTree(nullptr, nullptr, nullptr, n));

        EXPECT_EQ(tree.tree->root, nullptr);
        EXPECT_EQ(tree.pointCount, n);
    }
}

TEST(KdTreeBuild, BlockIdSelectsPointsAndKeepsTheirNumbers) {
    Cloud cloud = UniformCloud(5, 1);
    int blocks[] = {2, 1, 2, 3, 2};
    KVX_ART_KDtree tree;

    ASSERT_TRUE(
        tree.BuildTreeByBlockId(cloud.x.data(), cloud.y.data(), cloud.z.data(), blocks, 2, 5));

    Answer answer;
    EXPECT_EQ(tree.SearchByRadius(0, 0, 0, 10, answer.list), 3);
    std::vector<int> ids = answer.Ids();
    std::sort(ids.begin(), ids.end());
    EXPECT_EQ(ids, (std::vector<int>{1, 3, 5}));
    EXPECT_EQ(tree.pointCount, 5);
}

TEST(KdTreeBuild, BlockIdThatNeverOccursLeavesTheTreeEmpty) {
    Cloud cloud = UniformCloud(3, 1);
    int blocks[] = {1, 1, 1};
    KVX_ART_KDtree tree;

    EXPECT_TRUE(
        tree.BuildTreeByBlockId(cloud.x.data(), cloud.y.data(), cloud.z.data(), blocks, 9, 3));

    EXPECT_EQ(tree.tree->root, nullptr);
}

TEST(KdTreeBuild, SecondBuildAddsItsPointsAndDoesNotReleaseTheEarlierIds) {
    Points points({{0, 0, 0}, {1, 0, 0}});
    const std::unique_ptr<int[]> earlier(points.tree.ids);
    Cloud more = UniformCloud(30, 2);

    ASSERT_TRUE(points.tree.BuildTree(more.x.data(), more.y.data(), more.z.data(), 30));

    EXPECT_NE(points.tree.ids, earlier.get());
    EXPECT_EQ(points.tree.pointCount, 30);
    EXPECT_EQ(points.tree.tree->root->data, &earlier[0]);
    EXPECT_EQ(points.Within(0, 0, 0, 10).size(), 32u);
}

TEST(KdTreeBuild, CopiesShareTreeAndIds) {
    Points points({{0, 0, 0}});
    alignas(KVX_ART_KDtree) unsigned char place[sizeof(KVX_ART_KDtree)];

    KVX_ART_KDtree* copy = new (place) KVX_ART_KDtree(points.tree);  // never destroyed

    EXPECT_EQ(copy->tree, points.tree.tree);
    EXPECT_EQ(copy->ids, points.tree.ids);
    EXPECT_EQ(copy->pointCount, 1);
}

TEST(KdTreeNearest, OnePointIsTheAnswerToEveryQuery) {
    Points points({{3, 4, 5}});

    EXPECT_EQ(points.Nearest(0, 0, 0), 1);
    EXPECT_EQ(points.Nearest(1e9, -1e9, 0), 1);
    EXPECT_EQ(points.answer.list[0], 1);
}

TEST(KdTreeNearest, EmptyTreeGivesACountOfZeroWithoutAMessage) {
    KVX_ART_KDtree tree;
    Answer answer;
    OutputCapture output;

    EXPECT_EQ(tree.SearchNearestPoints(0, 0, 0, answer.list), 0);

    ASSERT_NE(answer.list, nullptr);
    EXPECT_EQ(answer.list[0], 0);
    EXPECT_EQ(output.Out() + output.Err(), "");
}

TEST(KdTreeNearest, MissingTreeIsReportedAndTheAnswerDoesNotChange) {
    KVX_ART_KDtree tree;
    KDtreeCore* core = tree.tree;
    tree.tree = nullptr;
    Answer answer;
    OutputCapture output;

    EXPECT_EQ(tree.SearchNearestPoints(0, 0, 0, answer.list), -1);
    EXPECT_EQ(tree.SearchByRadius(0, 0, 0, 1, answer.list), -1);

    EXPECT_EQ(answer.list, nullptr);
    EXPECT_EQ(output.Out(), "Must Build Tree First\nMust Build Tree First\n");
    tree.tree = core;
}

TEST(KdTreeNearest, RootWinsEveryTieItTakesPartIn) {
    Points points({{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}});

    EXPECT_EQ(points.Nearest(0, 0, 0), 1);
}

TEST(KdTreeNearest, OfIdenticalPointsTheOneVisitedFirstIsTheAnswer) {
    // Point 2 splits on y; the identical point 3 is on its right.
    Points points({{-9, 0, 0}, {1, 0, 0}, {1, 0, 0}});

    EXPECT_EQ(points.Nearest(1, 0.5, 0), 3);
    EXPECT_EQ(points.Nearest(1, -0.5, 0), 2);
    EXPECT_EQ(points.Nearest(1, 0, 0), 2);
}

TEST(KdTreeNearest, RootWinsAgainstAnIdenticalPoint) {
    Points points({{1, 0, 0}, {1, 0, 0}});

    EXPECT_EQ(points.Nearest(5, 0, 0), 1);
    EXPECT_EQ(points.Nearest(-5, 0, 0), 1);
}

TEST(KdTreeNearest, QueryOnASplittingPlaneGoesLeftFirst) {
    // Point 2 splits at y = 0. Points 3 and 4 mirror each other at that plane.
    Points points({{-9, 0, 0}, {5, 0, 0}, {1, -1, 0}, {1, 1, 0}});

    EXPECT_EQ(points.Nearest(1, 0, 0), 3);
}

TEST(KdTreeNearest, AQueryWithNaNGivesTheRoot) {
    Cloud cloud = UniformCloud(600, 4);
    KVX_ART_KDtree tree;
    tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), 600);
    Answer answer;

    tree.SearchNearestPoints(std::nan(""), 0, 0, answer.list);

    EXPECT_EQ(answer.list[1], 1);
}

TEST(KdTreeRadius, ThePointVisitedLastComesFirst) {
    // The near side of the root is visited before its far side, and the root before both.
    Points points({{0, 0, 0}, {-1, 0, 0}, {1, 0, 0}});

    EXPECT_EQ(points.Within(-0.5, 0, 0, 5), (std::vector<int>{3, 2, 1}));
    EXPECT_EQ(points.Within(0.5, 0, 0, 5), (std::vector<int>{2, 3, 1}));
}

TEST(KdTreeRadius, PointExactlyOnTheSphereIsFound) {
    Points points({{0, 0, 0}, {1, 0, 0}});

    EXPECT_EQ(points.Within(2, 0, 0, 1), (std::vector<int>{2}));
}

TEST(KdTreeRadius, FarSideExactlyOneRadiusAwayIsSkipped) {
    // From x = -1 the root's plane is one radius away; point 2 lies on it, in the right subtree.
    Points points({{0, 5, 0}, {0, 0, 0}});

    EXPECT_TRUE(points.Within(-1, 0, 0, 1).empty());
    EXPECT_EQ(points.Within(-1, 0, 0, 1.001), (std::vector<int>{2}));
}

TEST(KdTreeRadius, ZeroRadiusFindsIdenticalPointsOnTheNearPathOnly) {
    // The query lies on the plane of point 1, so its near side is left. Point 2 is on its right.
    Points points({{0, 0, 0}, {0, 0, 0}});

    EXPECT_EQ(points.Within(0, 0, 0, 0), (std::vector<int>{1}));
}

TEST(KdTreeRadius, EmptyTreeGivesAnEmptyList) {
    KVX_ART_KDtree tree;
    Answer answer;

    EXPECT_EQ(tree.SearchByRadius(0, 0, 0, 1, answer.list), 0);

    ASSERT_NE(answer.list, nullptr);
    EXPECT_EQ(answer.list[0], 0);
}

TEST(KdTreeAnswers, TheEarlierAnswerIsReleased) {
    Points points({{0, 0, 0}, {1, 0, 0}});
    AllocationRecorder recorder;
    Answer answer;
    points.tree.SearchNearestPoints(0, 0, 0, answer.list);

    points.tree.SearchByRadius(0, 0, 0, 5, answer.list);
    points.tree.SearchNearestPoints(0, 0, 0, answer.list);

    EXPECT_EQ(recorder.Sizes(), (std::vector<std::size_t>{8, 12, 8}));
    EXPECT_EQ(recorder.Released().size(), 2u);
    EXPECT_EQ(recorder.LiveBlocks(), 1);
}

TEST(KdTreeResults, UnorderedEntriesGoToTheFront) {
    KDtreeNode nodes[3] = {};
    KDtreeResultNode head = {nullptr, -1.0, nullptr};

    for (KDtreeNode& node : nodes) {
        ASSERT_TRUE(InsertResult(&head, &node, -1.0));
    }

    EXPECT_EQ(head.next->node, &nodes[2]);
    EXPECT_EQ(head.next->distSq, -1.0);
    EXPECT_EQ(head.next->next->node, &nodes[1]);
    EXPECT_EQ(head.next->next->next->node, &nodes[0]);
    ClearResults(&head);
    EXPECT_EQ(head.next, nullptr);
}

TEST(KdTreeResults, OrderedEntriesAscendAndANewOnePrecedesEqualOnes) {
    KDtreeNode nodes[4] = {};
    KDtreeResultNode head = {nullptr, -1.0, nullptr};

    InsertResult(&head, &nodes[0], 4.0);
    InsertResult(&head, &nodes[1], 1.0);
    InsertResult(&head, &nodes[2], 4.0);
    InsertResult(&head, &nodes[3], 9.0);

    std::vector<const KDtreeNode*> order;
    for (const KDtreeResultNode* entry = head.next; entry; entry = entry->next) {
        order.push_back(entry->node);
    }
    EXPECT_EQ(order, (std::vector<const KDtreeNode*>{&nodes[1], &nodes[2], &nodes[0], &nodes[3]}));
    ClearResults(&head);
}

std::vector<int> cleared;

TEST(KdTreeClearing, DestructorIsCalledForChildrenBeforeTheirParent) {
    cleared.clear();
    {
        Points points({{0, 0, 0}, {1, 0, 0}, {-1, 0, 0}, {-1, 1, 0}, {-1, -1, 0}});
        points.tree.tree->destructor = [](int* id) { cleared.push_back(*id); };
    }

    EXPECT_EQ(cleared, (std::vector<int>{5, 4, 3, 2, 1}));
}

}  // namespace
