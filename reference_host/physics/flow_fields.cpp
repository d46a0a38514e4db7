#include "reference_host/physics/flow_fields.h"

#include <algorithm>
#include <vector>

#include "reference_host/discretisation/norm.h"
#include "reference_host/link/body.h"

namespace host {

namespace {

BoundaryConditions VelocityConditions(const Mesh& mesh, const OversetLink& link,
                                      const InletProfile& inlet, const Vec3& farWalls,
                                      int component) {
    return {mesh, link, [&](Boundary kind, int face) -> GhostCondition {
                if (kind == Boundary::Outlet) {
                    return {GhostCondition::Kind::ZeroGradient, 0.0};
                }
                if (kind == Boundary::Inlet) {
                    return {GhostCondition::Kind::Value,
                            inlet(mesh.Faces(kind)[face].centre)[component]};
                }
                const bool rests = IsBody(mesh, link, kind, face);
                return {GhostCondition::Kind::Value, rests ? 0.0 : farWalls[component]};
            }};
}

BoundaryConditions PressureConditions(const Mesh& mesh, const OversetLink& link) {
    return {mesh, link, [](Boundary kind, int) -> GhostCondition {
                return {kind == Boundary::Outlet ? GhostCondition::Kind::Value
                                                 : GhostCondition::Kind::ZeroGradient,
                        0.0};
            }};
}

}  // namespace

FlowConditions::FlowConditions(const Mesh& mesh, const OversetLink& link, const InletProfile& inlet,
                               const Vec3& farWalls)
    : velocity{VelocityConditions(mesh, link, inlet, farWalls, 0),
               VelocityConditions(mesh, link, inlet, farWalls, 1),
               VelocityConditions(mesh, link, inlet, farWalls, 2)},
      pressure(PressureConditions(mesh, link)) {}

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
