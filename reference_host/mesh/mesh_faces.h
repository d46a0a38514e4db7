#ifndef KVX3D_REFERENCE_HOST_MESH_MESH_FACES_H
#define KVX3D_REFERENCE_HOST_MESH_MESH_FACES_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// A boundary element of the mesh file with the meaning of its physical group.
struct NamedFace {
    Boundary kind = Boundary::Wall;
    int oversetGroup = 0;    ///< 1 or 2 on an overset boundary, else 0
    std::vector<int> nodes;  ///< node ids in any order
    /// 0 or 1 where block0 or block1 meets the other block without matching it, -1 elsewhere.
    int interfaceSide = -1;
    bool isBody = false;  ///< wall faces: in the group "body"
};

/// Fills innerFaces, boundaryFaces and interfaceFaces: cells, groups and node lists, no geometry.
/// Two faces are one if their sorted node lists are equal. The time is proportional to the number
/// of cells.
///
/// Faces are numbered in the order of their cells: an inner face in the order of its owner, which
/// is the cell of lower id, and the boundary faces of each kind on their own. Node lists run
/// counter-clockwise seen from outside the owner.
///
/// @param mesh   with nodes, cellNodes and cavity; 4, 5, 6 and 8 nodes stand for a tetrahedron, a
///               pyramid, a prism and a hexahedron
/// @param named  every boundary face, once
/// @throws std::runtime_error  one line that names the cell or the face: a collapsed cell, a node
/// of
///         two cavities, a face of three cells, a boundary face without a name, a named face inside
///         a grid, outside the mesh, beside the wrong grid or named twice
void BuildFaces(Mesh& mesh, const std::vector<NamedFace>& named);

}  // namespace host

#endif
