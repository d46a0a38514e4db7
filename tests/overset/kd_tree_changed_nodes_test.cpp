#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>
#include <vector>

#include "overset/kd_tree.h"
#include "overset/overset_grid_data.h"
#include "overset/overset_mesh.h"
#include "overset/overset_mesh_impl.h"
#include "plain/plain_kd_tree.h"
#include "plain/samples/clouds.h"
#include "plain/samples/cylinder_host.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"

// Nodes are public data: a host may detach a leaf or move its point after the tree was built. Each
// search must answer from the nodes as they are at that moment.

namespace {

/// A leaf, the link that holds it, and the part of space that the splits above it leave to it.
struct Leaf {
    KDtreeNode** link;
    std::array<double, 3> min;
    std::array<double, 3> max;
};

std::vector<Leaf> LeavesOf(KDtreeCore& core) {
    std::vector<Leaf> leaves;
    std::vector<Leaf> open;
    const KDtreeRect& rect = *core.rect;
    open.push_back({&core.root,
                    {rect.min[0], rect.min[1], rect.min[2]},
                    {rect.max[0], rect.max[1], rect.max[2]}});
    while (!open.empty()) {
        const Leaf part = open.back();
        open.pop_back();
        KDtreeNode* node = *part.link;
        if (!node->left && !node->right) {
            leaves.push_back(part);
            continue;
        }
        const auto dir = static_cast<std::size_t>(node->dir);
        if (node->left) {
            open.push_back({&node->left, part.min, part.max});
            open.back().max[dir] = node->pos[dir];
        }
        if (node->right) {
            open.push_back({&node->right, part.min, part.max});
            open.back().min[dir] = node->pos[dir];
        }
    }
    return leaves;
}

/// Compares the answer of the tree with that of the plain recursion over the same nodes.
void ExpectAnswerOfTheNodes(KVX_ART_KDtree& tree, const Query& q) {
    const KDtreeCore& core = *tree.tree;
    const KDtreeNode* expected =
        plain::NearestBelow<KDtreeNode>(core.root, core.rect->min, core.rect->max, q.data());
    int* found = nullptr;
    ASSERT_EQ(tree.SearchNearestPoints(q[0], q[1], q[2], found), 1);
    EXPECT_EQ(found[1], *expected->data) << testing::PrintToString(q);
    delete[] found;
}

Query PositionOf(const KDtreeNode& node) {
    return {node.pos[0], node.pos[1], node.pos[2]};
}

/// Every leaf of small trees, some forty of large ones.
std::size_t StepThrough(const std::vector<Leaf>& leaves) {
    return 1 + leaves.size() / 40;
}

/// Detaches leaves one after the other and searches at the place of each.
void ExpectDetachedLeavesToBeGone(KVX_ART_KDtree& tree) {
    const std::vector<Leaf> leaves = LeavesOf(*tree.tree);
    for (std::size_t i = 0; i < leaves.size(); i += StepThrough(leaves)) {
        if (leaves[i].link == &tree.tree->root) {
            continue;
        }
        const Query place = PositionOf(**leaves[i].link);
        *leaves[i].link = nullptr;

        ExpectAnswerOfTheNodes(tree, place);
        ExpectAnswerOfTheNodes(tree, {place[0] + 1e-3, place[1] - 2e-3, place[2] + 1e-3});
    }
}

/// Moves leaves to another place in their part of space and searches at both places.
void ExpectMovedLeavesToBeFound(KVX_ART_KDtree& tree) {
    std::mt19937 random(81);
    std::uniform_real_distribution<double> share(0.1, 0.9);
    const std::vector<Leaf> leaves = LeavesOf(*tree.tree);
    for (std::size_t i = 0; i < leaves.size(); i += StepThrough(leaves)) {
        KDtreeNode& node = **leaves[i].link;
        const Query before = PositionOf(node);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double side = leaves[i].max[axis] - leaves[i].min[axis];
            node.pos[axis] = leaves[i].min[axis] + share(random) * side;
        }

        ExpectAnswerOfTheNodes(tree, before);
        ExpectAnswerOfTheNodes(tree, PositionOf(node));
    }
}

class KdTreeWithChangedNodes : public testing::TestWithParam<int> {
protected:
    /// Runs a check on one tree of each kind of build, over random and over lattice points.
    void ForEachBuild(void (*check)(KVX_ART_KDtree&)) const {
        const int n = GetParam();
        Cloud lattice = LatticeCloud(18);
        for (std::vector<double>* c : {&lattice.x, &lattice.y, &lattice.z}) {
            c->resize(static_cast<std::size_t>(n));
        }
        for (Cloud cloud : {UniformCloud(n, 80), lattice}) {
            KVX_ART_KDtree byArray;
            byArray.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), n);
            check(byArray);

            std::vector<int> blockIds(cloud.x.size(), 3);
            KVX_ART_KDtree byBlock;
            byBlock.BuildTreeByBlockId(cloud.x.data(), cloud.y.data(), cloud.z.data(),
                                       blockIds.data(), 3, n);
            check(byBlock);

            std::vector<int> ids(cloud.x.size());
            KVX_ART_KDtree byPoint;
            for (std::size_t i = 0; i < ids.size(); ++i) {
                ids[i] = static_cast<int>(i) + 1;
                byPoint.BuildTree(cloud.x[i], cloud.y[i], cloud.z[i], &ids[i]);
            }
            check(byPoint);
        }
    }
};

TEST_P(KdTreeWithChangedNodes, ADetachedLeafIsNeverAnswered) {
    ForEachBuild(ExpectDetachedLeavesToBeGone);
}

TEST_P(KdTreeWithChangedNodes, AMovedLeafIsFoundAtItsNewPlaceOnly) {
    ForEachBuild(ExpectMovedLeavesToBeFound);
}

INSTANTIATE_TEST_SUITE_P(Sizes, KdTreeWithChangedNodes,
                         testing::Values(10, 100, 255, 256, 600, 1500, 5000));

/// The component tree of a set-up with n[0] x n[1] x n[2] component cells, all of them active.
class ComponentTreeWithChangedNodes : public testing::TestWithParam<std::array<int, 3>> {
protected:
    ComponentTreeWithChangedNodes()
        : host(BoxHost(12, 12, 2).WithComponentGrid(GetParam()[0], GetParam()[1], GetParam()[2],
                                                    {3, 3, 0}, {6, 6, 2}, sideZMin | sideZMax)) {
        const OutputCapture silent;
        mesh.SetFVM(&host.gv, &host.fvm);
    }
    ~ComponentTreeWithChangedNodes() override { delete mesh.impl->gridData; }

    BoxHost host;
    CKVXOversetMesh mesh;
};

TEST_P(ComponentTreeWithChangedNodes, ADetachedLeafIsNeverAnswered) {
    ExpectDetachedLeavesToBeGone(*mesh.impl->componentTree);
}

TEST_P(ComponentTreeWithChangedNodes, AMovedLeafIsFoundAtItsNewPlaceOnly) {
    ExpectMovedLeavesToBeFound(*mesh.impl->componentTree);
}

INSTANTIATE_TEST_SUITE_P(Grids, ComponentTreeWithChangedNodes,
                         testing::Values(std::array<int, 3>{5, 2, 1}, std::array<int, 3>{8, 4, 8},
                                         std::array<int, 3>{10, 10, 10},
                                         std::array<int, 3>{25, 20, 10}));

TEST(DonorSearchWithChangedNodes, ADetachedCellIsNoLongerADonor) {
    CylinderHost host(4);
    CKVXOversetMesh mesh;
    {
        const OutputCapture silent;
        mesh.SetFVM(&host.gv, &host.fvm);
    }
    const std::vector<Leaf> leaves = LeavesOf(*mesh.impl->componentTree->tree);
    int nDetached = 0;
    for (int face = 1; face <= host.fvm.Ne; ++face) {
        if (mesh.GetInnerFaceType(face) != OversetInnerFace_Overset) {
            continue;
        }
        const int donor = mesh.GetOversetInnerNeighbor(face);
        const auto leaf = std::find_if(leaves.begin(), leaves.end(), [donor](const Leaf& l) {
            return *l.link && *(*l.link)->data == donor;
        });
        if (leaf == leaves.end()) {
            continue;
        }
        *leaf->link = nullptr;

        EXPECT_NE(mesh.GetOversetInnerNeighbor(face), donor);
        ++nDetached;
    }
    EXPECT_GT(nDetached, 0);
    delete mesh.impl->gridData;
}

}  // namespace
