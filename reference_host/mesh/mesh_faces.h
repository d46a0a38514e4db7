#ifndef KVX3D_REFERENCE_HOST_MESH_MESH_FACES_H
#define KVX3D_REFERENCE_HOST_MESH_MESH_FACES_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// A boundary element of the mesh file.
struct NamedFace {
    Boundary kind = Boundary::Wall;
    int oversetGroup = 0;    ///< 1 or 2 on an overset boundary, else 0
    std::vector<int> nodes;  ///< node ids in any order
    /// 0 or 1: where block0 or block1 meets the other without matching it. -1 elsewhere.
    int interfaceSide = -1;
};

/// Fills innerFaces, boundaryFaces and interfaceFaces (cells, groups, node lists; no geometry) by
/// matching the sorted node lists of all cell faces and all named faces. Time grows like the number
/// of cells.
///
/// Inner faces are numbered with their owner, which is the cell of lower id; boundary faces with
/// their cell, each kind on its own. Node lists run counter-clockwise seen from outside the owner.
///
/// @param mesh   nodes, cellNodes and cavity are filled; 4, 5, 6, 8 nodes mean tetrahedron,
///               pyramid, prism, hexahedron
/// @param named  every boundary face once, no face twice
/// @throws std::runtime_error  one line naming the cell or face: a collapsed cell, a node of two
///         cavities, a face of three cells, a name inside a grid, off the mesh, given twice or
///         beside the wrong grid, a boundary face without a name
void BuildFaces(Mesh& mesh, const std::vector<NamedFace>& named);

}  // namespace host

#endif
