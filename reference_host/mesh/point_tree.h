#ifndef KVX3D_REFERENCE_HOST_MESH_POINT_TREE_H
#define KVX3D_REFERENCE_HOST_MESH_POINT_TREE_H

#include <functional>
#include <vector>

#include "overset/kd_tree.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Nearest-point queries on a tree of the toolbox, points inserted in the order of `ids`. A tree of
/// a grid's active cells in ascending order equals the one the toolbox donates from, ties included.
class PointTree {
public:
    /// @param ids    ids of the points: positive, as the answer 0 means "none"
    /// @param point  place of an id
    PointTree(std::vector<int> ids, const std::function<const Vec3&(int)>& point);
    PointTree(const PointTree&) = delete;
    PointTree& operator=(const PointTree&) = delete;

    /// Id of the nearest point, 0 if there is none.
    int Nearest(const Vec3& query) const;

private:
    std::vector<int> ids;         // the tree points into it
    mutable KVX_ART_KDtree tree;  // its searches change nothing, but are not declared const
};

/// Largest number of points on a way down from the root of such a tree; stops counting beyond
/// `limit`. Searches and the release of the tree recurse that deep.
int TreeDepth(const std::vector<Vec3>& points, int limit);

}  // namespace host

#endif
