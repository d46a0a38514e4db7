#ifndef KVX3D_REFERENCE_HOST_PHYSICS_FORCES_H
#define KVX3D_REFERENCE_HOST_PHYSICS_FORCES_H

#include <vector>

#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/physics/flow_fields.h"
#include "reference_host/physics/momentum.h"

namespace host {

/// Force of the flow on the body: pressure and the tangential part of the viscous stress, summed
/// over its faces.
Vec3 ForceOnBody(const Momentum& momentum, const FlowFields& fields);

/// Pressure at the front and the back of the body, where its surface meets the line through its
/// centre along x.
struct StagnationPressures {
    double front = 0.0;
    double back = 0.0;
};

/// Extrapolated from the two rings of faces nearest to that line, the pressure taken to change
/// with the square of the distance. Faces at the same distance form a ring.
///
/// @param pressure  entries 1..NcAll; the ghosts of the body's faces are read
/// @throws std::runtime_error  fewer than two rings on a side
StagnationPressures PressuresAtStagnation(const StencilBuilder& builder,
                                          const std::vector<double>& pressure);

}  // namespace host

#endif
