#ifndef KVX3D_REFERENCE_HOST_LINK_BODY_H
#define KVX3D_REFERENCE_HOST_LINK_BODY_H

#include <string>
#include <vector>

#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// What a face of the kind Boundary::Wall stands for.
enum class WallRole {
    Overset,  ///< on the overset boundary of a component: no wall in the flow
    Body,     ///< physical wall of the body in the flow, see RoleOf()
    Other     ///< any other physical wall
};

/// The role of a wall face. This is the only rule for which faces are the body: those of the group
/// "body" if the mesh has this group, otherwise the physical walls beside a component, and on a
/// single grid every physical wall.
WallRole RoleOf(const Mesh& mesh, const OversetLink& link, int wallFace);

/// True for the faces of the body; false for all faces that are not of the kind wall.
bool IsBody(const Mesh& mesh, const OversetLink& link, Boundary kind, int face);

/// The wall faces of the body in ascending order.
std::vector<int> BodyFaces(const Mesh& mesh, const OversetLink& link);

/// Refuses a mesh without a body, on a single grid or an overset mesh.
/// @param purpose  beginning of the message: "nothing to heat"
/// @throws std::runtime_error  one line
void RequireBody(const Mesh& mesh, const OversetLink& link, const std::string& meshFile,
                 const std::string& purpose);

/// Whether the faces of the body are distinguished from all other walls, by the group "body" or as
/// the physical walls of a component.
bool HasSeparateBody(const Mesh& mesh, const OversetLink& link);

/// Refuses a single grid without the group "body" as well: its walls may be sides of a channel.
/// @param body  what the case calls it: "cylinder"
/// @throws std::runtime_error  one line
void RequireSeparateBody(const Mesh& mesh, const OversetLink& link, const std::string& meshFile,
                         const std::string& body);

}  // namespace host

#endif
