#ifndef KVX3D_HOST_CHECKS_DETAIL_PLANE_SEARCH_H
#define KVX3D_HOST_CHECKS_DETAIL_PLANE_SEARCH_H

#include <vector>

#include "host_checks/point.h"

namespace kvx3d::checks {

/// Answers whether any point of a surface lies in front of a plane, in about logarithmic time.
///
/// A binary tree over the points. Each node encloses its points in a disc: a center, an axis, a
/// radius and a half thickness along the axis. On a smooth surface discs are thin, so that a plane
/// along the surface rejects large parts of it at once, which boxes along the coordinate axes do
/// not do on an inclined side.
class PlaneSearch {
public:
    /// @param points   points of the surface
    /// @param normals  unit normals of the surface at the points; they steer the axes of the discs
    PlaneSearch(std::vector<Point> points, const std::vector<Point>& normals);

    /// Whether any point has Dot(point - origin, normal) > limit.
    /// @param normal  unit vector
    bool AnyInFront(const Point& origin, const Point& normal, double limit) const;

private:
    struct Disc {
        Point center;
        Point axis;  // unit vector
        double radius = 0.0;
        double halfThickness = 0.0;
        int first = 0, last = 0;  // range of `points`
        int child = 0;            // first of two consecutive children, 0 in a leaf
    };

    Disc DiscOf(int first, int last, const std::vector<Point>& normals) const;
    void Split(const Disc& disc, std::vector<Point>& normals);
    static double LargestMeasure(const Disc& disc, const Point& origin, const Point& normal);

    std::vector<Point> points;  // in the order of the leaves
    std::vector<Disc> discs;
};

}  // namespace kvx3d::checks

#endif
