#include "reference_host/physics/symmetry_planes.h"

#include <cmath>

namespace host {

namespace {

/// The unit normal. If it is a coordinate axis up to rounding, it is made exactly that axis, so
/// that the other components of the velocity do not enter the condition.
Vec3 NormalOf(const Vec3& area) {
    constexpr double rounding = 1e-9;
    Vec3 normal = area.normalized();
    for (double& component : normal) {
        if (std::abs(component) < rounding) {
            component = 0.0;
        }
    }
    return normal.normalized();
}

}  // namespace

SymmetryPlanes::SymmetryPlanes(const Mesh& mesh, const HostObjects& objects,
                               const OversetLink& link) {
    for (int face = 1; face <= mesh.FaceCount(Boundary::Symmetry); ++face) {
        const BoundaryFace& plane = mesh.Faces(Boundary::Symmetry)[face];
        if (link.IsActive(plane.cell)) {
            planes.push_back(
                {plane.cell, objects.Ghost(Boundary::Symmetry, face), NormalOf(plane.area)});
        }
    }
}

void SymmetryPlanes::SetGhostMu(HostObjects& objects, double mu) const {
    for (const Plane& plane : planes) {
        objects.mu[plane.ghost] = mu;
    }
}

void SymmetryPlanes::FillRightHandSide(int component,
                                       const std::array<std::vector<double>, 3>& velocity,
                                       const std::vector<double>& scale,
                                       std::vector<double>& rhs) const {
    for (const Plane& plane : planes) {
        double others = 0.0;
        for (int j = 0; j < 3; ++j) {
            others += j == component ? 0.0 : plane.normal[j] * velocity[j][plane.cell];
        }
        rhs[plane.ghost] = -scale[plane.cell] * plane.normal[component] * others;
    }
}

void SymmetryPlanes::FillGhosts(std::array<std::vector<double>, 3>& velocity) const {
    for (const Plane& plane : planes) {
        const Vec3 inside(velocity[0][plane.cell], velocity[1][plane.cell],
                          velocity[2][plane.cell]);
        const Vec3 at = inside - inside.dot(plane.normal) * plane.normal;
        for (int component = 0; component < 3; ++component) {
            velocity[component][plane.ghost] = at[component];
        }
    }
}

}  // namespace host
