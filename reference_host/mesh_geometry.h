#ifndef KVX3D_REFERENCE_HOST_MESH_GEOMETRY_H
#define KVX3D_REFERENCE_HOST_MESH_GEOMETRY_H

#include <vector>

#include "reference_host/mesh.h"

namespace host {

/// Mean of the named nodes.
Vec3 NodeMean(const Mesh& mesh, const std::vector<int>& nodeIds);

/// Fills centres and area vectors of all faces, volumes and centroids of all cells, from nodes,
/// cellNodes and the node lists of the faces.
///
/// A face is the fan of triangles about the mean of its nodes: its area vector is their sum, its
/// centre their area-weighted centroid. A cell is the sum of the tetrahedra from its node mean to
/// those triangles, so neighbors share a warped face without gap or overlap.
///
/// @param mesh  owner's and boundary faces' node lists run counter-clockwise seen from outside
/// @throws std::runtime_error  one line naming the cell: volume not positive, or its area vectors
///         do not add up to zero within 1e-12 of its surface
void ComputeGeometry(Mesh& mesh);

}  // namespace host

#endif
