#ifndef KVX3D_OVERSET_DETAIL_KD_TREE_INDEX_H
#define KVX3D_OVERSET_DETAIL_KD_TREE_INDEX_H

#include <vector>

#include "overset/detail/kd_tree_build.h"
#include "overset/detail/kd_tree_store.h"

/// A balanced index beside an insertion tree; internal to the overset folder.
///
/// An insertion tree is as deep as the order of its points makes it: a hundred levels on a mesh.
/// The index halves space instead, with a few nodes to a leaf, in 10 bytes a node. It is made when
/// the tree is and never changes, so searches stay independent of each other.
///
/// It finds the very node that a search of the tree finds. Distances are summed alike; a box is
/// never further than a point in it, rounding included; and where several nodes are equally near,
/// the tree tells which of them its search meets first.
class KDtreeIndex {
public:
    /// @param core    a tree, its box and its root set
    /// @param blocks  all its nodes, in any order, all coordinates finite and within the box
    /// @throws std::bad_alloc  no memory for the index
    KDtreeIndex(const KDtreeCore& core, const NodeBlock* blocks, int n);

    /// True while root and box of the tree are those it was made from.
    bool IsFor(const KDtreeCore& core) const;

    /// The node that a search of the tree answers for a finite query; null if so many nodes are
    /// equally near that only the tree can tell.
    const KDtreeNode* Nearest(const double* query) const;

    /// Inner: two halves, the left one stands next. Leaf: a range of `numbers`.
    struct Branch {
        double low;   ///< highest coordinate on the left
        double high;  ///< lowest coordinate on the right
        int axis;     ///< or, in a leaf, minus the number of nodes
        int right;    ///< the right half or, in a leaf, where the range starts
    };

private:
    struct Box {
        double min[3];
        double max[3];
    };

    void FindGaps();
    static void Extend(Box& box, const double* min, const double* max);

    const NodeBlock* blocks;
    const KDtreeNode* root;
    Box bounds;
    std::vector<int> numbers;  ///< of blocks, leaf by leaf
    std::vector<Branch> branches;
};

#endif
