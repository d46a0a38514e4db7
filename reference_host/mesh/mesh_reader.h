#ifndef KVX3D_REFERENCE_HOST_MESH_MESH_READER_H
#define KVX3D_REFERENCE_HOST_MESH_MESH_READER_H

#include <map>
#include <string>

#include "reference_host/mesh/mesh.h"

namespace host {

/// Values for DefineConstant variables of a .geo file: {{"n", 10}, {"kind", 0}}.
using MeshParameters = std::map<std::string, double>;

/// Reads a mesh through Gmsh: a .msh file of any version, ASCII or binary, or a .geo file, which
/// Gmsh meshes on the spot.
///
/// Physical groups say what is what. Volumes: background, component1, component2. Surfaces: inlet,
/// outlet, wall, symmetry, overset1, overset2. Two grids that meet without matching are the volumes
/// block0 and block1, their faces there the surfaces interface0 and interface1; see JoinInterface()
/// for what makes one mesh of them. Cells are linear tetrahedra, hexahedra, prisms and
/// pyramids, numbered in the order of Gmsh's volumes and elements; an inner face is numbered with
/// its lower cell, which is its owner. Gmsh is started and ended in the call, so two calls must
/// not overlap.
///
/// @param file        path of the mesh; lengths in body units, so that a cell is not far below 1
/// @param parameters  for a .geo only; each must have a Name in the file's DefineConstant
/// @return mesh with its geometry (see ComputeGeometry)
/// @throws std::runtime_error  one line: the file, what is wrong, where, and what to change
Mesh ReadMesh(const std::string& file, const MeshParameters& parameters = {});

/// The same for a case that knows background and components only: refuses block0 and block1.
Mesh ReadGrids(const std::string& file, const MeshParameters& parameters = {});

}  // namespace host

#endif
