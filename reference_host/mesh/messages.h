#ifndef KVX3D_REFERENCE_HOST_MESH_MESSAGES_H
#define KVX3D_REFERENCE_HOST_MESH_MESSAGES_H

#include <string>
#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// "at (x, y, z)", six digits a number.
std::string At(const Vec3& point);

/// "cell 17 at (x, y, z)", the place being the mean of its nodes.
std::string CellAt(const Mesh& mesh, int cell);

/// Name of the physical group of volumes that becomes cavity 1, 2 or 3.
std::string CavityName(int cavity);

/// Name of the physical group of volumes that `cell` came from.
std::string GridName(const Mesh& mesh, int cell);

/// Name of the physical group of a boundary face: "wall", "overset1", ...
std::string FaceName(Boundary kind, int oversetGroup);

/// "wall face 17 at (x, y, z)", "overset1 face, wall face 17 at (x, y, z)".
std::string WallFaceAt(const Mesh& mesh, int wallFace);

/// Throws std::runtime_error with the lines, one under the other; does nothing without any.
void Refuse(const std::vector<std::string>& faults);

}  // namespace host

#endif
