#include "reference_host/mesh/cell_faces.h"

namespace host {

CellFaces::CellFaces(const Mesh& mesh)
    : inner(mesh.CellCount() + 1), boundary(mesh.CellCount() + 1) {
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        inner[mesh.innerFaces[face].owner].push_back(face);
        inner[mesh.innerFaces[face].neighbor].push_back(face);
    }
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            boundary[mesh.Faces(kind)[face].cell].push_back({kind, face});
        }
    }
}

}  // namespace host
