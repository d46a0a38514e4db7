#ifndef KVX3D_REFERENCE_HOST_LINK_BODY_H
#define KVX3D_REFERENCE_HOST_LINK_BODY_H

#include <string>
#include <vector>

#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// True for the faces of the body: the physical walls beside a component; on a single grid all
/// walls.
bool IsBody(const Mesh& mesh, const OversetLink& link, Boundary kind, int face);

/// The wall faces of the body, ascending.
std::vector<int> BodyFaces(const Mesh& mesh, const OversetLink& link);

/// Refuses a mesh without a component that has a body.
/// @param body  what the case calls it
/// @throws std::runtime_error  one line
void RequireBody(const Mesh& mesh, const OversetLink& link, const std::string& meshFile,
                 const std::string& body);

}  // namespace host

#endif
