#ifndef KVX3D_REFERENCE_HOST_LINK_BODY_H
#define KVX3D_REFERENCE_HOST_LINK_BODY_H

#include <string>
#include <vector>

#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// True for the faces of the body: the physical walls beside a component, or all walls of a single
/// grid.
bool IsBody(const Mesh& mesh, const OversetLink& link, Boundary kind, int face);

/// The wall faces of the body in ascending order.
std::vector<int> BodyFaces(const Mesh& mesh, const OversetLink& link);

/// Refuses a mesh without a component that has a body.
/// @param meshFile  named in the message
/// @param body      what the case calls the body
/// @throws std::runtime_error  one line: no physical wall lies beside a component
void RequireBody(const Mesh& mesh, const OversetLink& link, const std::string& meshFile,
                 const std::string& body);

}  // namespace host

#endif
