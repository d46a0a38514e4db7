#include "reference_host/physics/flow_fields.h"

#include <algorithm>
#include <vector>

#include "reference_host/discretisation/norm.h"

namespace host {

namespace {

BoundaryConditions VelocityConditions(const Mesh& mesh, const OversetLink& link,
                                      const FlowBoundary& boundary, int component) {
    return {mesh, link, [&](Boundary kind, int face) -> GhostCondition {
                const Vec3& at = mesh.Faces(kind)[face].centre;
                Vec3 velocity = Vec3::Zero();
                if (kind == Boundary::Inlet) {
                    velocity = boundary.inlet(at);
                } else if (kind == Boundary::Wall && boundary.walls) {
                    velocity = boundary.walls(RoleOf(mesh, link, face), at);
                } else if (kind == Boundary::Outlet && boundary.outlet) {
                    velocity = boundary.outlet(at);
                } else if (kind == Boundary::Outlet) {
                    return {GhostCondition::Kind::ZeroGradient, 0.0};
                }
                return {GhostCondition::Kind::Value, velocity[component]};
            }};
}

BoundaryConditions PressureConditions(const Mesh& mesh, const OversetLink& link,
                                      const FlowBoundary& boundary) {
    return {mesh, link, [&](Boundary kind, int) -> GhostCondition {
                const bool isGiven = kind == Boundary::Outlet && !boundary.outlet;
                return {isGiven ? GhostCondition::Kind::Value : GhostCondition::Kind::ZeroGradient,
                        0.0};
            }};
}

}  // namespace

WallVelocity MovingFarWalls(const Vec3& far) {
    return [far](WallRole role, const Vec3&) {
        return role == WallRole::Body ? Vec3(Vec3::Zero()) : far;
    };
}

FlowConditions::FlowConditions(const Mesh& mesh, const OversetLink& link,
                               const FlowBoundary& boundary)
    : isClosed(boundary.outlet || mesh.FaceCount(Boundary::Outlet) == 0),
      velocity{VelocityConditions(mesh, link, boundary, 0),
               VelocityConditions(mesh, link, boundary, 1),
               VelocityConditions(mesh, link, boundary, 2)},
      pressure(PressureConditions(mesh, link, boundary)) {}

FlowFields::FlowFields(int cellAndGhostCount) : pressure(cellAndGhostCount + 1, 0.0) {
    velocity.fill(pressure);
}

void FlowFields::Publish(HostObjects& objects) const {
    std::copy(velocity[0].begin(), velocity[0].end(), objects.u.begin());
    std::copy(velocity[1].begin(), velocity[1].end(), objects.v.begin());
    std::copy(velocity[2].begin(), velocity[2].end(), objects.w.begin());
    std::copy(pressure.begin(), pressure.end(), objects.pressure.begin());
}

double RelativeChange(const FlowFields& before, const FlowFields& now, int nCells) {
    std::vector<double> change(nCells + 1, 0.0);
    std::vector<double> whole(nCells + 1, 0.0);
    for (int cell = 1; cell <= nCells; ++cell) {
        change[cell] = (now.Velocity(cell) - before.Velocity(cell)).stableNorm();
        whole[cell] = now.Velocity(cell).stableNorm();
    }
    return Norm(change) / Norm(whole);
}

}  // namespace host
