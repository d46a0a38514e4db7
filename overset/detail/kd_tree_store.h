#ifndef KVX3D_OVERSET_DETAIL_KD_TREE_STORE_H
#define KVX3D_OVERSET_DETAIL_KD_TREE_STORE_H

#include "overset/detail/kd_tree_node.h"

/// Memory of trees and insertion of points.
///
/// Nothing here throws unless its comment says so; a lack of memory is reported by false or null.
namespace kvx3d::detail {

/// Makes an empty tree.
/// @throws std::bad_alloc  no memory for it
KDtreeCore* NewKDtree();

/// Calls the tree's `destructor` for each node, children before parents and left before right, and
/// releases the tree. Does not recurse. Null is allowed.
void FreeKDtree(KDtreeCore* core);

/// Inserts one point.
/// @return false if there is not enough memory for its node
bool InsertPoint(KDtreeCore& core, const KDtreePoint& point);

/// Makes room for n > 0 points. The caller fills it in order of arrival and calls InsertPoints()
/// before anything else is done to the tree. The nodes will be made in the same memory, so the
/// points need no further memory.
/// @return null if there is not enough memory
KDtreePoint* RoomForPoints(KDtreeCore& core, int n);

/// Inserts the points in the room that RoomForPoints() made last. The result is node for node that
/// of one InsertPoint() for each; an empty tree is built from the top down.
/// @return false, and the tree is empty, if there is not enough memory
bool InsertPoints(KDtreeCore& core);

}  // namespace kvx3d::detail

#endif
