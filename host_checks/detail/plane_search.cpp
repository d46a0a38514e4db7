#include "host_checks/detail/plane_search.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace kvx3d::checks {
namespace {

constexpr int leafSize = 8;
// Bounds are rounded up by this share of the lengths that enter them, far above rounding errors.
constexpr double roundingShare = 1e-12;

/// Coordinate axis (0, 1, 2) along which a range of points extends furthest.
int LongestAxis(const std::vector<Point>& points, int first, int last) {
    Point low = points[first];
    Point high = low;
    for (int i = first; i < last; ++i) {
        low = {std::min(low.x, points[i].x), std::min(low.y, points[i].y),
               std::min(low.z, points[i].z)};
        high = {std::max(high.x, points[i].x), std::max(high.y, points[i].y),
                std::max(high.z, points[i].z)};
    }
    const Point size = high - low;
    const std::array<double, 3> sizes = {size.x, size.y, size.z};
    return static_cast<int>(std::max_element(sizes.begin(), sizes.end()) - sizes.begin());
}

double Coordinate(const Point& point, int axis) {
    return axis == 0 ? point.x : axis == 1 ? point.y : point.z;
}

}  // namespace

PlaneSearch::PlaneSearch(std::vector<Point> surfacePoints, const std::vector<Point>& normals)
    : points(std::move(surfacePoints)) {
    if (points.empty()) {
        return;
    }
    std::vector<Point> sortedNormals = normals;
    discs.push_back(DiscOf(0, static_cast<int>(points.size()), sortedNormals));
    for (std::size_t at = 0; at < discs.size(); ++at) {
        if (discs[at].last - discs[at].first > leafSize) {
            discs[at].child = static_cast<int>(discs.size());
            Split(Disc(discs[at]), sortedNormals);
        }
    }
}

PlaneSearch::Disc PlaneSearch::DiscOf(int first, int last,
                                      const std::vector<Point>& normals) const {
    Disc disc;
    disc.first = first;
    disc.last = last;
    Point sum;
    for (int i = first; i < last; ++i) {
        disc.center = disc.center + points[i];
        sum = sum + normals[i];
    }
    disc.center = (1.0 / (last - first)) * disc.center;
    // Normals that cancel each other leave any axis; the disc is then as thick as a ball.
    disc.axis = Norm(sum) > 0.0 ? Unit(sum) : Point{1.0, 0.0, 0.0};
    for (int i = first; i < last; ++i) {
        const Point offset = points[i] - disc.center;
        disc.radius = std::max(disc.radius, Norm(offset));
        disc.halfThickness = std::max(disc.halfThickness, std::abs(Dot(offset, disc.axis)));
    }
    return disc;
}

/// Halves the points of a disc along their longest axis and appends the discs of both halves.
void PlaneSearch::Split(const Disc& disc, std::vector<Point>& normals) {
    const int n = disc.last - disc.first;
    const int middle = n / 2;
    const int axis = LongestAxis(points, disc.first, disc.last);
    std::vector<int> order(n);
    std::iota(order.begin(), order.end(), disc.first);
    std::nth_element(order.begin(), order.begin() + middle, order.end(), [&](int a, int b) {
        return Coordinate(points[a], axis) < Coordinate(points[b], axis);
    });
    std::vector<Point> oldPoints(points.begin() + disc.first, points.begin() + disc.last);
    std::vector<Point> oldNormals(normals.begin() + disc.first, normals.begin() + disc.last);
    for (int i = 0; i < n; ++i) {
        points[disc.first + i] = oldPoints[order[i] - disc.first];
        normals[disc.first + i] = oldNormals[order[i] - disc.first];
    }
    discs.push_back(DiscOf(disc.first, disc.first + middle, normals));
    discs.push_back(DiscOf(disc.first + middle, disc.last, normals));
}

/// An upper bound of Dot(point - origin, normal) over the points of a disc.
double PlaneSearch::LargestMeasure(const Disc& disc, const Point& origin, const Point& normal) {
    const Point offset = disc.center - origin;
    return Dot(offset, normal) + std::abs(Dot(normal, disc.axis)) * disc.halfThickness +
           Norm(Cross(normal, disc.axis)) * disc.radius +
           roundingShare * (Norm(offset) + Norm(origin) + disc.radius);
}

bool PlaneSearch::AnyInFront(const Point& origin, const Point& normal, double limit) const {
    std::vector<int> open;
    if (!discs.empty()) {
        open.push_back(0);
    }
    while (!open.empty()) {
        const Disc& disc = discs[open.back()];
        open.pop_back();
        if (LargestMeasure(disc, origin, normal) <= limit) {
            continue;
        }
        if (disc.child > 0) {
            open.push_back(disc.child);
            open.push_back(disc.child + 1);
            continue;
        }
        for (int i = disc.first; i < disc.last; ++i) {
            if (Dot(points[i] - origin, normal) > limit) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace kvx3d::checks
