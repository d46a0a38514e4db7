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

/// Velocity at a point of the inlet.
using InletProfile = std::function<Vec3(const Vec3& point)>;

/// What the boundary says about each unknown of a flow: velocity given at inlets and on walls,
/// pressure zero at outlets, zero gradient elsewhere. The body is at rest.
struct FlowConditions {
    /// @param farWalls  velocity of the walls that are not the body, in their planes
    FlowConditions(const Mesh& mesh, const OversetLink& link, const InletProfile& inlet,
                   const Vec3& farWalls = Vec3::Zero());

    std::array<BoundaryConditions, 3> velocity;  ///< components x, y, z
    BoundaryConditions pressure;                 ///< also of the pressure correction
};

/// Velocity and pressure of a flow, in arrays of its own: the output sets small magnitudes in the
/// host's arrays to zero, which must not reach a run that goes on.
struct FlowFields {
    /// At rest. Entries 1..NcAll each.
    explicit FlowFields(int cellAndGhostCount);

    Vec3 Velocity(int id) const { return {velocity[0][id], velocity[1][id], velocity[2][id]}; }

    /// Copies into the arrays that the toolbox sees and writes.
    void Publish(HostObjects& objects) const;

    std::array<std::vector<double>, 3> velocity;  ///< components x, y, z
    std::vector<double> pressure;
};

/// Relative change between two velocity fields in the 2-norm over the cells, entries 1..nCells.
double RelativeChange(const FlowFields& before, const FlowFields& now, int nCells);

}  // namespace host

#endif
