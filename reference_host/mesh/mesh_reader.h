#ifndef KVX3D_REFERENCE_HOST_MESH_MESH_READER_H
#define KVX3D_REFERENCE_HOST_MESH_MESH_READER_H

#include <map>
#include <string>

#include "reference_host/mesh/mesh.h"

namespace host {

/// Values for variables in the DefineConstant of a .geo file, for example {{"n", 10}, {"kind", 0}}.
using MeshParameters = std::map<std::string, double>;

/// Reads a mesh through Gmsh: a .msh file of any version, ASCII or binary, or a .geo file, from
/// which Gmsh generates the mesh.
///
/// The names of the physical groups give the meaning. Volumes: background, component1, component2.
/// Surfaces: inlet, outlet, wall, body, symmetry, overset1, overset2; "body" is optional and names
/// the walls of the body in the flow (see RoleOf). Two grids that meet without matching are the
/// volumes block0 and block1, with the surfaces interface0 and interface1 where they meet;
/// JoinInterface() makes one mesh of them. Cells are linear tetrahedra, hexahedra, prisms and
/// pyramids, numbered in the order of Gmsh's volumes and elements. Inner faces are numbered in the
/// order of their owners, the cells of lower id.
///
/// Gmsh is started and ended within the call, so two calls must not overlap.
///
/// @param file        path of the mesh; lengths are in units of the body, so that cells are not
///                    smaller than 1 by many orders of magnitude
/// @param parameters  for a .geo file only; each must have a Name in the DefineConstant of the file
/// @return the mesh with its geometry (see ComputeGeometry)
/// @throws std::runtime_error  one line: the file, what is wrong, where, and what to change
Mesh ReadMesh(const std::string& file, const MeshParameters& parameters = {});

/// The same for cases on a background and components: throws for a mesh of block0 and block1.
Mesh ReadGrids(const std::string& file, const MeshParameters& parameters = {});

}  // namespace host

#endif
