#include "reference_host/physics/wall_driven_flux.h"

#include <algorithm>

namespace host {

namespace {

/// Velocity that the conditions prescribe on a face.
Vec3 PrescribedVelocity(const FlowConditions& conditions, Boundary kind, int face) {
    Vec3 velocity = Vec3::Zero();
    for (int component = 0; component < 3; ++component) {
        const GhostCondition& condition = conditions.velocity[component].At(kind, face);
        if (condition.kind == GhostCondition::Kind::Value) {
            velocity[component] = condition.value;
        }
    }
    return velocity;
}

double CrossSection(const Mesh& mesh) {
    Vec3 low = mesh.nodes[1];
    Vec3 high = low;
    for (int node = 2; node <= mesh.NodeCount(); ++node) {
        low = low.cwiseMin(mesh.nodes[node]);
        high = high.cwiseMax(mesh.nodes[node]);
    }
    const Vec3 edges = high - low;
    return edges.prod() / edges.maxCoeff();
}

}  // namespace

double WallDrivenFlux(const Mesh& mesh, const FlowConditions& conditions) {
    double speed = 0.0;
    for (int face = 1; face <= mesh.FaceCount(Boundary::Wall); ++face) {
        speed = std::max(speed, PrescribedVelocity(conditions, Boundary::Wall, face).stableNorm());
    }
    return speed * CrossSection(mesh);
}

}  // namespace host
