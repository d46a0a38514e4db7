#ifndef KVX3D_OVERSET_DETAIL_KD_TREE_BUILD_H
#define KVX3D_OVERSET_DETAIL_KD_TREE_BUILD_H

#include <algorithm>

#include "overset/detail/kd_tree_store.h"

/// Growth of a tree within one block of memory; internal to the store.

/// A node and its coordinates: one cache line.
struct NodeBlock {
    KDtreeNode node;
    double xyz[3];
};

/// A block has room for two points that are on their way into the tree. So n of them fit into the
/// far half of n blocks, and nodes that replace them from the front, one for one, never meet a
/// point that has still to be read.
static_assert(sizeof(NodeBlock) >= 2 * sizeof(KDtreePoint), "points outgrow the half of a block");

/// The points in the far half of n blocks.
inline KDtreePoint* PointsIn(NodeBlock* blocks, int n) {
    return reinterpret_cast<KDtreePoint*>(blocks + n) - n;
}

/// Makes a node. The point is a copy: it may have stood where the node is made.
inline KDtreeNode* MakeNode(NodeBlock* at, const KDtreePoint point, int dir) {
    NodeBlock* block = new (at) NodeBlock;
    std::copy(point.xyz, point.xyz + 3, block->xyz);
    block->node = {block->xyz, dir, point.id, nullptr, nullptr};
    return &block->node;
}

/// The empty place of the tree that a point falls to, and the axis a node there splits on.
struct FreePlace {
    KDtreeNode** slot;
    int dir;
};

inline FreePlace FallTo(FreePlace from, const double* xyz) {
    while (KDtreeNode* node = *from.slot) {
        from.dir = (node->dir + 1) % 3;
        from.slot = GoesRight(*node, xyz) ? &node->right : &node->left;
    }
    return from;
}

/// Turns the points in the far half of n blocks into the tree that inserting them one after the
/// other below `root` grows, nodes in visiting order. No coordinate may be "no number".
/// @throws std::bad_alloc  the blocks are then lost, and what hangs below `root` with them
void BuildFromTheTop(KDtreeNode** root, NodeBlock* blocks, int n);

#endif
