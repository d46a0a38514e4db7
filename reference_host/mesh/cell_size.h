#ifndef KVX3D_REFERENCE_HOST_MESH_CELL_SIZE_H
#define KVX3D_REFERENCE_HOST_MESH_CELL_SIZE_H

#include "reference_host/mesh/mesh.h"

namespace host {

/// Number of background cells per unit length, by the smallest edge length among them: that of the
/// regular cell with the shape and volume of the cell, or on a mesh one cell thick of the regular
/// polygon with the shape and area of its symmetry face.
int CellsPerUnit(const Mesh& mesh);

}  // namespace host

#endif
