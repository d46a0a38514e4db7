#ifndef KVX3D_OVERSET_DETAIL_KD_TREE_BUILD_H
#define KVX3D_OVERSET_DETAIL_KD_TREE_BUILD_H

#include <algorithm>

#include "overset/detail/kd_tree_node.h"

/// Construction of a tree within one run of node blocks.
///
///     before   |  free blocks           | points in order of arrival |   n points, 32 bytes each
///     after    | root | left subtree    | right subtree              |   n blocks, 64 bytes each
///
/// Readable transcription: KdTree::Insert() in plain/plain_kd_tree.h, called for each point.
namespace kvx3d::detail {

/// Two points fit into one block. n points therefore fit into the second half of n blocks, and
/// nodes that are made from the front, one for each point read, never overwrite a point that is
/// still to be read.
static_assert(sizeof(NodeBlock) >= 2 * sizeof(KDtreePoint), "two points must fit into a block");

/// The points in the second half of n blocks.
inline KDtreePoint* PointsIn(NodeBlock* blocks, int n) {
    return reinterpret_cast<KDtreePoint*>(blocks + n) - n;
}

/// Makes a node. The point is passed by value because the node may overwrite it.
inline KDtreeNode* MakeNode(NodeBlock* at, const KDtreePoint point, int dir) {
    NodeBlock* block = new (at) NodeBlock;
    std::copy(point.xyz, point.xyz + 3, block->xyz);
    block->node = {block->xyz, dir, point.id, nullptr, nullptr};
    return &block->node;
}

/// An empty link of the tree, and the axis on which a node placed there splits.
struct FreePlace {
    KDtreeNode** slot;
    int dir;
};

/// The empty link that insertion reaches for a point, starting from the given link.
inline FreePlace FindFreePlace(FreePlace from, const double* xyz) {
    while (KDtreeNode* node = *from.slot) {
        from.dir = (node->dir + 1) % 3;
        from.slot = GoesRight(*node, xyz) ? &node->right : &node->left;
    }
    return from;
}

/// Turns the points in the second half of n blocks into the tree that results from inserting them
/// below `root` one after the other. The nodes are stored in visiting order: node, left, right.
/// @param root  an empty link
/// @pre no coordinate is NaN
/// @throws std::bad_alloc  the blocks, and the part of the tree made so far, are then unusable
void BuildFromTheTop(KDtreeNode** root, NodeBlock* blocks, int n);

}  // namespace kvx3d::detail

#endif
