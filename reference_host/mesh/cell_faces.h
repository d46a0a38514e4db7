#ifndef KVX3D_REFERENCE_HOST_MESH_CELL_FACES_H
#define KVX3D_REFERENCE_HOST_MESH_CELL_FACES_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// A boundary face: its kind and its number among the faces of that kind.
struct BoundaryFaceId {
    Boundary kind = Boundary::Inlet;
    int face = 0;
};

/// The faces around each cell, from the owners and neighbors of the mesh. The toolbox's Ce23 does
/// not serve here: after the donors are written, it no longer holds the topology of the mesh.
class CellFaces {
public:
    explicit CellFaces(const Mesh& mesh);

    const std::vector<int>& InnerFaces(int cell) const { return inner[cell]; }
    const std::vector<BoundaryFaceId>& BoundaryFaces(int cell) const { return boundary[cell]; }

private:
    std::vector<std::vector<int>> inner;                // by cell
    std::vector<std::vector<BoundaryFaceId>> boundary;  // by cell
};

}  // namespace host

#endif
