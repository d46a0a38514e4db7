#ifndef KVX3D_REFERENCE_HOST_PHYSICS_FLOW_FIELDS_H
#define KVX3D_REFERENCE_HOST_PHYSICS_FLOW_FIELDS_H

#include <array>
#include <functional>
#include <vector>

#include "reference_host/discretisation/boundary_conditions.h"
#include "reference_host/link/body.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Velocity as a function of a point of the inlet.
using InletProfile = std::function<Vec3(const Vec3& point)>;

/// Velocity of a wall at one of its points, by what the wall stands for.
using WallVelocity = std::function<Vec3(WallRole role, const Vec3& point)>;

/// The velocities at the boundaries of a flow.
struct FlowBoundary {
    InletProfile inlet;
    WallVelocity walls;   ///< none: all walls are at rest
    InletProfile outlet;  ///< given velocity at outlets; none: zero pressure and no gradient there
};

/// Velocity `far` on all walls except those of the body, which is at rest.
WallVelocity MovingFarWalls(const Vec3& far);

/// The boundary conditions of a flow: given velocity at inlets, walls and outlets, or zero pressure
/// at outlets; zero gradient elsewhere.
struct FlowConditions {
    FlowConditions(const Mesh& mesh, const OversetLink& link, const FlowBoundary& boundary);

    /// Whether the velocity is given on the whole boundary. The pressure is then determined up to a
    /// constant only, and the net flux through the boundary must be zero.
    bool isClosed;
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
