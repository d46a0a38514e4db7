#ifndef KVX3D_REFERENCE_HOST_PHYSICS_FACE_QUADRATURE_H
#define KVX3D_REFERENCE_HOST_PHYSICS_FACE_QUADRATURE_H

#include "reference_host/mesh/mesh.h"

namespace host {

/// A point of a quadrature rule on a face.
struct FacePoint {
    Vec3 at = Vec3::Zero();
    Vec3 area = Vec3::Zero();  ///< the part of the face's area vector that belongs to the point
};

/// Points whose areas add up to the area vector of a face. The face is divided into triangles about
/// the mean of its nodes, as for its area vector, and each has the rule with seven points, which is
/// exact for polynomials up to degree 5.
///
/// Source of the rule: J. Radon, Monatshefte Math. Phys. 52 (1948) 286-300.
///
/// @param nodes  ids in order around the face
/// @param area   area vector of the face; gives the direction of the points' areas
std::vector<FacePoint> QuadraturePoints(const Mesh& mesh, const std::vector<int>& nodes,
                                        const Vec3& area);

}  // namespace host

#endif
