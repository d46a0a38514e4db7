#include "reference_host/link/body.h"

#include <stdexcept>

namespace host {

bool IsBody(const Mesh& mesh, const OversetLink& link, Boundary kind, int face) {
    if (kind != Boundary::Wall || mesh.Faces(kind)[face].oversetGroup > 0) {
        return false;
    }
    return !link.IsOverset() || mesh.cavity[mesh.Faces(kind)[face].cell] > 1;
}

std::vector<int> BodyFaces(const Mesh& mesh, const OversetLink& link) {
    std::vector<int> faces;
    for (int face = 1; face <= mesh.FaceCount(Boundary::Wall); ++face) {
        if (IsBody(mesh, link, Boundary::Wall, face)) {
            faces.push_back(face);
        }
    }
    return faces;
}

void RequireBody(const Mesh& mesh, const OversetLink& link, const std::string& meshFile,
                 const std::string& body) {
    if (!link.IsOverset() || BodyFaces(mesh, link).empty()) {
        throw std::runtime_error(meshFile + ": no " + body +
                                 ": no face of the group \"wall\" lies beside a component");
    }
}

}  // namespace host
