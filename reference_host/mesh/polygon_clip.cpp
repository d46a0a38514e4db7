#include "reference_host/mesh/polygon_clip.h"

#include <Eigen/Geometry>
#include <cstddef>

#include "reference_host/mesh/mesh_geometry.h"

namespace host {

namespace {

/// The part of a convex polygon where (x - origin) . inward >= 0.
std::vector<Vec3> ClipAtLine(const std::vector<Vec3>& polygon, const Vec3& origin,
                             const Vec3& inward) {
    std::vector<Vec3> kept;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Vec3& here = polygon[i];
        const Vec3& next = polygon[(i + 1) % polygon.size()];
        const double depthHere = (here - origin).dot(inward);
        const double depthNext = (next - origin).dot(inward);
        if (depthHere >= 0.0) {
            kept.push_back(here);
        }
        if ((depthHere > 0.0 && depthNext < 0.0) || (depthHere < 0.0 && depthNext > 0.0)) {
            kept.push_back(here + depthHere / (depthHere - depthNext) * (next - here));
        }
    }
    return kept;
}

}  // namespace

std::vector<Vec3> ClipConvex(std::vector<Vec3> subject, const std::vector<Vec3>& window) {
    const Vec3 normal = GeometryOf(window).area;
    for (std::size_t i = 0; i < window.size() && !subject.empty(); ++i) {
        const Vec3 edge = window[(i + 1) % window.size()] - window[i];
        subject = ClipAtLine(subject, window[i], normal.cross(edge));
    }
    return subject;
}

}  // namespace host
