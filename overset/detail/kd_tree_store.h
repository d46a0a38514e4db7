#ifndef KVX3D_OVERSET_DETAIL_KD_TREE_STORE_H
#define KVX3D_OVERSET_DETAIL_KD_TREE_STORE_H

#include <cmath>

#include "overset/kd_tree.h"

class KDtreeIndex;

/// Memory, growth and search of KDtreeCore; internal to the overset folder.
///
/// Nodes lie in chunks, each beside its coordinates, so that a visit costs one cache line. Unless
/// said otherwise nothing here throws: memory that cannot be had is answered by false.

/// A point on its way into a tree.
struct KDtreePoint {
    double xyz[3];
    int* id;  ///< not owned
};

/// An empty tree.
/// @throws std::bad_alloc  no memory for it
KDtreeCore* NewKDtree();

/// Calls the tree's `destructor` for each node, children before parents, and releases all.
void FreeKDtree(KDtreeCore* core);

/// Inserts one point.
bool InsertPoint(KDtreeCore& core, const KDtreePoint& point);

/// Room for n > 0 points on their way into the tree, to be filled in order of arrival and handed
/// over by InsertPoints() before anything else is done to the tree. It is where their nodes will
/// stand, so that points cost no memory of their own. Null if the memory cannot be had.
KDtreePoint* RoomForPoints(KDtreeCore& core, int n);

/// Inserts the points in the room made last. The tree is node for node that of one InsertPoint()
/// each; an empty tree is built from the top down, in memory read from front to end.
bool InsertPoints(KDtreeCore& core);

/// Makes a balanced index for the nearest searches of a tree that has many nodes, all of them from
/// one InsertPoints(). A later insertion drops it, and without memory for it there is none.
void IndexNodes(KDtreeCore& core);

/// The index of a tree, or null. One made for another root or box is no index of this tree.
const KDtreeIndex* IndexOf(const KDtreeCore& core);

inline bool IsFinite(const double* xyz) {
    return std::isfinite(xyz[0]) && std::isfinite(xyz[1]) && std::isfinite(xyz[2]);
}

/// True where the tree sends the point to the right of `node`: equal coordinates go right.
inline bool GoesRight(const KDtreeNode& node, const double* xyz) {
    return node.pos[node.dir] <= xyz[node.dir];
}

/// True where a query descends into the left child first. A query on the splitting plane does,
/// although points on the plane are on the right.
inline bool LeftIsNear(const KDtreeNode& node, const double* query) {
    return query[node.dir] - node.pos[node.dir] <= 0.0;
}

/// Squared distance, summed x, y, z.
inline double DistanceSq(const double* a, const double* b) {
    const double dx = a[0] - b[0];
    const double dy = a[1] - b[1];
    const double dz = a[2] - b[2];
    return dx * dx + dy * dy + dz * dz;
}

/// The node nearest to `query`, ties as told at KVX_ART_KDtree::SearchNearestPoints(); null on an
/// empty tree.
/// @throws std::bad_alloc  a degenerate tree needs a longer list of open branches than memory has
const KDtreeNode* NearestNode(const KDtreeCore& core, const double* query);

/// Adds an entry to a result list.
///
/// With distSq >= 0 entries are kept by ascending distance, the new one before the first that is
/// not nearer; with a negative distSq it goes to the front.
/// @param head  the list's head entry
/// @return false if the memory for the entry cannot be had
bool InsertResult(KDtreeResultNode* head, KDtreeNode* node, double distSq);

/// Releases the entries behind the head entry.
void ClearResults(KDtreeResultNode* head);

#endif
