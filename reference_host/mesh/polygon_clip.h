#ifndef KVX3D_REFERENCE_HOST_MESH_POLYGON_CLIP_H
#define KVX3D_REFERENCE_HOST_MESH_POLYGON_CLIP_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// The intersection of two convex polygons in one plane. It has at most as many corners as both
/// together, in the sense of rotation of `subject`; that of `window` has no effect.
///
/// Two polygons that only share an edge or a corner give a polygon without area or none at all, so
/// a caller should decide by the area.
///
/// Source: I. E. Sutherland, G. W. Hodgman, Reentrant polygon clipping, Commun. ACM 17 (1974)
/// 32-42, doi:10.1145/360767.360802.
std::vector<Vec3> ClipConvex(std::vector<Vec3> subject, const std::vector<Vec3>& window);

}  // namespace host

#endif
