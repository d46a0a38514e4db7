#ifndef KVX3D_HOST_CHECKS_DETAIL_OUTER_BOUNDARY_H
#define KVX3D_HOST_CHECKS_DETAIL_OUTER_BOUNDARY_H

#include <utility>
#include <vector>

#include "host_checks/detail/box_tree.h"
#include "host_checks/mesh_view.h"

namespace kvx3d::checks {

/// The outer boundary of one component, and what the mesh rules need to know of the grids around.
struct OuterBoundary {
    /// @param overset      its wall faces, ascending; at least one
    /// @param backgrounds  tree over the centers of all background cells
    OuterBoundary(const MeshView& view, std::vector<int> overset, BoxTree& backgrounds);

    const MeshView& mesh;
    std::vector<int> faces;               ///< its wall faces
    std::vector<int> cells;               ///< nearest background cell, by position in `faces`
    std::vector<std::vector<int>> nodes;  ///< nodes of each face, by position in `faces`
    /// Pairs of faces that share an edge, by position in `faces`.
    std::vector<std::pair<int, int>> neighbors;
    /// Faces of each connected piece, by position in `faces`, ascending.
    std::vector<std::vector<int>> pieces;

    Point Center(int i) const { return mesh.Walls().Center(faces[i]); }
    Point Area(int i) const { return mesh.Walls().Area(faces[i]); }
    int Count() const { return static_cast<int>(faces.size()); }

private:
    void FindNeighbors();
    void FindPieces();
};

}  // namespace kvx3d::checks

#endif
