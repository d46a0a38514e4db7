#ifndef KVX3D_REFERENCE_HOST_MESH_MESH_GEOMETRY_H
#define KVX3D_REFERENCE_HOST_MESH_MESH_GEOMETRY_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// Geometry of a plane or warped polygon, split into triangles between its edges and the mean of
/// its corners.
struct PolygonGeometry {
    Vec3 area = Vec3::Zero();    ///< sum of the area vectors of the triangles [length^2]
    Vec3 centre = Vec3::Zero();  ///< area-weighted mean of their centroids [length]
};

/// @param corners  counter-clockwise seen from where the area vector points
PolygonGeometry GeometryOf(const std::vector<Vec3>& corners);

/// Computes centroids and area vectors of all faces, interface faces included, and volumes and
/// centroids of all cells, from nodes, cellNodes and the node lists of the faces.
///
/// A face has the geometry of its polygon. A cell is the sum of the tetrahedra between the mean of
/// its nodes and the triangles of its faces, so that two cells share a warped face without gap or
/// overlap.
///
/// @param mesh  its node lists of faces run counter-clockwise seen from outside the owner
/// @throws std::runtime_error  one line that names the cell: its volume is not positive, or its
/// area
///         vectors do not add up to zero within 1e-12 of its surface
void ComputeGeometry(Mesh& mesh);

/// Largest magnitude of the sum of a cell's area vectors, relative to the surface of the cell: 0 up
/// to rounding if inner and boundary faces close every cell.
double LargestGap(const Mesh& mesh);

}  // namespace host

#endif
