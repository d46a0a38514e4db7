#ifndef KVX3D_REFERENCE_HOST_PHYSICS_FLOW_FIELDS_H
#define KVX3D_REFERENCE_HOST_PHYSICS_FLOW_FIELDS_H

#include <array>
#include <functional>
#include <vector>

#include "reference_host/discretisation/boundary_conditions.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Velocity as a function of a point of the inlet.
using InletProfile = std::function<Vec3(const Vec3& point)>;

/// The boundary conditions of a flow: given velocity at inlets and on walls, zero pressure at
/// outlets, zero gradient elsewhere. The body is at rest.
struct FlowConditions {
    /// @param farWalls  velocity of all walls except those of the body, parallel to them
    FlowConditions(const Mesh& mesh, const OversetLink& link, const InletProfile& inlet,
                   const Vec3& farWalls = Vec3::Zero());

    std::array<BoundaryConditions, 3> velocity;  ///< components x, y, z
    BoundaryConditions pressure;                 ///< of the pressure and of the pressure correction
};

/// Velocity and pressure of a flow. They have arrays of their own, because the output sets small
/// magnitudes in the host's arrays to zero and a run must continue from unchanged values.
struct FlowFields {
    /// A flow at rest without pressure. All arrays have entries 1..NcAll.
    explicit FlowFields(int cellAndGhostCount);

    Vec3 Velocity(int id) const { return {velocity[0][id], velocity[1][id], velocity[2][id]}; }

    /// Copies the fields into the host's arrays, which the toolbox writes to files.
    void Publish(HostObjects& objects) const;

    std::array<std::vector<double>, 3> velocity;  ///< components x, y, z
    std::vector<double> pressure;
};

/// 2-norm of the difference between two velocity fields over the cells 1..nCells, divided by the
/// 2-norm of the second field.
double RelativeChange(const FlowFields& before, const FlowFields& now, int nCells);

}  // namespace host

#endif
