#ifndef KVX3D_HOST_CHECKS_DETAIL_BOX_TREE_H
#define KVX3D_HOST_CHECKS_DETAIL_BOX_TREE_H

#include <functional>
#include <vector>

#include "host_checks/point.h"

namespace kvx3d::checks {

/// Nearest points of a fixed set, with all equally near ones.
///
/// A binary tree of tight bounding boxes. It answers fast also far away from the points and between
/// two planes of them, where PointTree, whose regions are not tight, visits thousands of points;
/// but of equally near points it does not know which one the toolbox takes.
class BoxTree {
public:
    /// @param ids       ids of the points; not empty
    /// @param position  coordinates of an id
    BoxTree(const std::vector<int>& ids, const std::function<Point(int)>& position);

    /// All points at the least distance from `query`, up to rounding, with ascending ids. The
    /// result stays valid until the next call.
    const std::vector<int>& Nearest(const Point& query);

private:
    struct Entry {
        Point point;
        int id;
    };
    struct Box {
        Point min, max;
        int first = 0, last = 0;  // range of `entries`
        int child = 0;            // first of two consecutive children, 0 in a leaf
    };

    Box BoxOf(int first, int last) const;
    void Split(const Box& box);
    void Visit(const Box& leaf, const Point& query);

    std::vector<Entry> entries;  // in the order of the leaves
    std::vector<Box> boxes;
    struct Open {
        int box;
        double distanceSquared;
    };
    std::vector<Open> open;              // boxes to visit
    double best = 0.0;                   // least squared distance so far
    int lastBest = 0;                    // its entry; the next query is often close to this one
    std::vector<int> candidates, found;  // entries, ids
};

}  // namespace kvx3d::checks

#endif
