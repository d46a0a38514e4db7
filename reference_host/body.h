#ifndef KVX3D_REFERENCE_HOST_BODY_H
#define KVX3D_REFERENCE_HOST_BODY_H

#include <vector>

#include "reference_host/mesh.h"
#include "reference_host/overset_link.h"

namespace host {

/// True for the faces of the body: the physical walls beside a component; on a single grid all
/// walls.
bool IsBody(const Mesh& mesh, const OversetLink& link, Boundary kind, int face);

/// The wall faces of the body, ascending.
std::vector<int> BodyFaces(const Mesh& mesh, const OversetLink& link);

}  // namespace host

#endif
