#ifndef KVX3D_REFERENCE_HOST_PHYSICS_FORCES_H
#define KVX3D_REFERENCE_HOST_PHYSICS_FORCES_H

#include <vector>

#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/physics/flow_fields.h"
#include "reference_host/physics/momentum.h"

namespace host {

/// Force of the flow on the body: the sum of pressure and viscous stress mu du/dn over its faces.
///
/// At a wall the normal part of du/dn is zero in the exact flow, but not in the discrete one: on
/// tetrahedra it is 2 to 3 % of the drag of a sphere. It is kept, because the momentum equations of
/// the cells at the wall contain it, and only with it does the force balance the momentum through a
/// control surface around the body.
Vec3 ForceOnBody(const Momentum& momentum, const FlowFields& fields);

/// Pressure at the front and at the back of the body, where its surface meets the line along x
/// through its center.
struct StagnationPressures {
    double front = 0.0;
    double back = 0.0;
};

/// Extrapolates the pressure from the faces nearest to that line, assuming that it changes with the
/// square of the distance from the line. Faces at the same distance form a ring, and two rings are
/// used on each side.
///
/// @param pressure  entries 1..NcAll; only the ghosts of the body's faces are read
/// @throws std::runtime_error  fewer than two rings on a side
StagnationPressures PressuresAtStagnation(const StencilBuilder& builder,
                                          const std::vector<double>& pressure);

}  // namespace host

#endif
