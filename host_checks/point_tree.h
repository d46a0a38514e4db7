#ifndef KVX3D_HOST_CHECKS_POINT_TREE_H
#define KVX3D_HOST_CHECKS_POINT_TREE_H

#include <functional>
#include <vector>

#include "host_checks/export.h"
#include "host_checks/point.h"
#include "overset/kd_tree.h"

namespace kvx3d::checks {

/// Nearest-point queries on a KVX_ART_KDtree that takes the points in the order of `ids`. A tree
/// over the active cells of a grid in ascending order gives the same answers as the tree from which
/// the toolbox takes donors, ties included.
class KVX3D_CHECKS_API PointTree {
public:
    /// @param pointIds  ids of the points, positive because the answer 0 means "none"
    /// @param position  coordinates of an id; called once for each id
    /// @throws std::bad_alloc  the memory for the tree is not available
    PointTree(std::vector<int> pointIds, const std::function<Point(int)>& position);
    PointTree(const PointTree&) = delete;
    PointTree& operator=(const PointTree&) = delete;
    ~PointTree();

    /// Id of the point nearest to `query`, 0 for a tree without points.
    int Nearest(const Point& query) const;
    bool IsEmpty() const { return ids.empty(); }

private:
    std::vector<int> ids;
    mutable KVX_ART_KDtree tree;  // searches change nothing but are not declared const
};

}  // namespace kvx3d::checks

#endif
