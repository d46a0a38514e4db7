#include "reference_host/link/body.h"

#include <stdexcept>

namespace host {

WallRole RoleOf(const Mesh& mesh, const OversetLink& link, int wallFace) {
    const BoundaryFace& wall = mesh.Faces(Boundary::Wall)[wallFace];
    if (wall.oversetGroup > 0) {
        return WallRole::Overset;
    }
    if (mesh.namesBody) {
        return wall.isBody ? WallRole::Body : WallRole::Other;
    }
    return link.IsOverset() && mesh.cavity[wall.cell] == 1 ? WallRole::Other : WallRole::Body;
}

bool IsBody(const Mesh& mesh, const OversetLink& link, Boundary kind, int face) {
    return kind == Boundary::Wall && RoleOf(mesh, link, face) == WallRole::Body;
}

std::vector<int> BodyFaces(const Mesh& mesh, const OversetLink& link) {
    std::vector<int> faces;
    for (int face = 1; face <= mesh.FaceCount(Boundary::Wall); ++face) {
        if (RoleOf(mesh, link, face) == WallRole::Body) {
            faces.push_back(face);
        }
    }
    return faces;
}

void RequireBody(const Mesh& mesh, const OversetLink& link, const std::string& meshFile,
                 const std::string& purpose) {
    if (BodyFaces(mesh, link).empty()) {
        throw std::runtime_error(meshFile + ": " + purpose +
                                 ": no face of the group \"wall\" belongs to " +
                                 (link.IsOverset() ? "a component" : "the grid"));
    }
}

void RequireSeparateBody(const Mesh& mesh, const OversetLink& link, const std::string& meshFile,
                         const std::string& body) {
    if (!link.IsOverset() && !mesh.namesBody) {
        throw std::runtime_error(meshFile + ": no " + body +
                                 ": the mesh has neither a component nor a physical surface group "
                                 "\"body\"");
    }
    RequireBody(mesh, link, meshFile, "no " + body);
}

}  // namespace host
