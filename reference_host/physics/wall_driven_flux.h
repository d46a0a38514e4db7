#ifndef KVX3D_REFERENCE_HOST_PHYSICS_WALL_DRIVEN_FLUX_H
#define KVX3D_REFERENCE_HOST_PHYSICS_WALL_DRIVEN_FLUX_H

#include "reference_host/mesh/mesh.h"
#include "reference_host/physics/flow_fields.h"

namespace host {

/// Scale of the volume flux in a domain without inlet, which only its moving walls drive: their
/// largest speed times the cross-section of the domain. The cross-section is the product of the two
/// shorter edges of the box that bounds the mesh; in a cavity of unit sides and depth h, whose lid
/// has the speed 1, the scale is h.
///
/// @return [length^3 / time]; 0 if all walls are at rest
double WallDrivenFlux(const Mesh& mesh, const FlowConditions& conditions);

}  // namespace host

#endif
