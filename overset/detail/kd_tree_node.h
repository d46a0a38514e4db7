#ifndef KVX3D_OVERSET_DETAIL_KD_TREE_NODE_H
#define KVX3D_OVERSET_DETAIL_KD_TREE_NODE_H

#include "overset/kd_tree.h"

/// Memory layout of a tree node, and the comparisons that insertion and searches share.
///
///     NodeBlock, 64 bytes, aligned to a cache line
///     | pos | dir | data | left | right | x | y | z |
///        |                                ^
///        +--------------------------------+      a visit touches one cache line
///
/// Readable transcription of the tree: plain/plain_kd_tree.h.
namespace kvx3d::detail {

/// A point that is to be inserted into a tree.
struct KDtreePoint {
    double xyz[3];
    int* id;  ///< not owned
};

/// A node together with its coordinates.
struct NodeBlock {
    KDtreeNode node;
    double xyz[3];
};

/// True if insertion sends the point to the right of `node`; equal coordinates go right.
inline bool GoesRight(const KDtreeNode& node, const double* xyz) {
    return node.pos[node.dir] <= xyz[node.dir];
}

/// Squared distance between two points, summed in the order x, y, z.
inline double DistanceSq(const double* a, const double* b) {
    const double dx = a[0] - b[0];
    const double dy = a[1] - b[1];
    const double dz = a[2] - b[2];
    return dx * dx + dy * dy + dz * dz;
}

}  // namespace kvx3d::detail

#endif
