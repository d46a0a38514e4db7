#include "reference_host/physics/face_quadrature.h"

#include <Eigen/Geometry>
#include <cmath>

namespace host {

namespace {

/// Adds the points of the triangle a, b, c.
void AddTriangle(const Vec3& a, const Vec3& b, const Vec3& c, std::vector<FacePoint>& points) {
    const Vec3 area = 0.5 * (b - a).cross(c - a);
    const Vec3 middle = (a + b + c) / 3.0;
    points.push_back({middle, 9.0 / 40.0 * area});
    const double root = std::sqrt(15.0);
    for (const double sign : {-1.0, 1.0}) {
        const double share = (6.0 + sign * root) / 21.0;  // barycentric, of both other corners
        const Vec3 weighted = (155.0 + sign * root) / 1200.0 * area;
        for (const Vec3& corner : {a, b, c}) {
            points.push_back({share * 3.0 * middle + (1.0 - 3.0 * share) * corner, weighted});
        }
    }
}

}  // namespace

std::vector<FacePoint> QuadraturePoints(const Mesh& mesh, const std::vector<int>& nodes,
                                        const Vec3& area) {
    std::vector<FacePoint> points;
    const Vec3 mean = NodeMean(mesh, nodes);
    Vec3 sum = Vec3::Zero();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        AddTriangle(mean, mesh.nodes[nodes[i]], mesh.nodes[nodes[(i + 1) % nodes.size()]], points);
    }
    for (const FacePoint& point : points) {
        sum += point.area;
    }
    if (sum.dot(area) < 0.0) {
        for (FacePoint& point : points) {
            point.area = -point.area;
        }
    }
    return points;
}

}  // namespace host
