#ifndef KVX3D_REFERENCE_HOST_MESH_MESH_GEOMETRY_H
#define KVX3D_REFERENCE_HOST_MESH_MESH_GEOMETRY_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// Mean of the named nodes.
Vec3 NodeMean(const Mesh& mesh, const std::vector<int>& nodeIds);

/// A plane or warped polygon as the fan of triangles about the mean of its corners.
struct PolygonGeometry {
    Vec3 area = Vec3::Zero();    ///< sum of the triangles' area vectors
    Vec3 centre = Vec3::Zero();  ///< area-weighted mean of their centroids
};

/// @param corners  counter-clockwise seen from where the area vector points
PolygonGeometry GeometryOf(const std::vector<Vec3>& corners);

/// Fills centres and area vectors of all faces, interface faces included, volumes and centroids of
/// all cells, from nodes, cellNodes and the node lists of the faces.
///
/// A face has the geometry of its polygon. A cell is the sum of the tetrahedra from its node mean
/// to those triangles, so neighbors share a warped face without gap or overlap.
///
/// @param mesh  owner's and boundary faces' node lists run counter-clockwise seen from outside
/// @throws std::runtime_error  one line naming the cell: volume not positive, or its area vectors
///         do not add up to zero within 1e-12 of its surface
void ComputeGeometry(Mesh& mesh);

/// Largest sum of the area vectors of a cell, relative to its surface: 0 where all cells are
/// closed by their inner and boundary faces.
double LargestGap(const Mesh& mesh);

}  // namespace host

#endif
