#ifndef KVX3D_REFERENCE_HOST_MESH_POLYGON_CLIP_H
#define KVX3D_REFERENCE_HOST_MESH_POLYGON_CLIP_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// The part of `subject` that lies in `window`, two convex polygons in one plane: at most as many
/// corners as both together, in the subject's sense of rotation, the window's sense not mattering.
///
/// Polygons that share an edge or a corner only give a polygon without area, or none: judge by
/// the area.
///
/// Source: I. E. Sutherland, G. W. Hodgman, Reentrant polygon clipping, Commun. ACM 17 (1974)
/// 32-42, doi:10.1145/360767.360802.
std::vector<Vec3> ClipConvex(std::vector<Vec3> subject, const std::vector<Vec3>& window);

}  // namespace host

#endif
