#ifndef KVX3D_REFERENCE_HOST_MESH_CELL_SIZE_H
#define KVX3D_REFERENCE_HOST_MESH_CELL_SIZE_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// V^(1/3), in the toolbox's own words: its margins are a count of this length.
double MarginLength(double volume);

/// Edge length of the regular cell with each cell's shape and volume, entries 1..Nc. On a mesh one
/// cell thick: of the regular polygon with the shape and area of its symmetry face.
std::vector<double> EdgeLengths(const Mesh& mesh);

/// Background cells per unit length, by the smallest of them.
int CellsPerUnit(const Mesh& mesh);

}  // namespace host

#endif
