#ifndef KVX3D_REFERENCE_HOST_FORCES_H
#define KVX3D_REFERENCE_HOST_FORCES_H

#include "reference_host/flow_solver.h"
#include "reference_host/mesh.h"

namespace host {

/// Force of the flow on the body: pressure and the tangential part of the viscous stress, summed
/// over its faces.
Vec3 ForceOnBody(const FlowSolver& flow);

/// Pressure at the front and the back of the body, where its surface meets the line through its
/// centre along x.
struct StagnationPressures {
    double front = 0.0;
    double back = 0.0;
};

/// Extrapolated from the two rings of faces nearest to that line, the pressure taken to change
/// with the square of the distance. Faces at the same distance form a ring.
///
/// @throws std::runtime_error  fewer than two rings on a side
StagnationPressures PressuresAtStagnation(const FlowSolver& flow);

}  // namespace host

#endif
