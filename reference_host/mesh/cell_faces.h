#ifndef KVX3D_REFERENCE_HOST_MESH_CELL_FACES_H
#define KVX3D_REFERENCE_HOST_MESH_CELL_FACES_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

struct BoundaryFaceId {
    Boundary kind = Boundary::Inlet;
    int face = 0;
};

/// The faces around each cell, taken from the mesh's own pairs: Ce23 is no topology any more once
/// donors stand in it.
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
