#ifndef KVX3D_REFERENCE_HOST_MESH_MESSAGES_H
#define KVX3D_REFERENCE_HOST_MESH_MESSAGES_H

#include <string>
#include <vector>

#include "host_checks/fault.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// "at (x, y, z)" with six significant digits per coordinate.
std::string At(const Vec3& point);

/// "cell 17 at (x, y, z)", where the point is the mean of its nodes.
std::string CellAt(const Mesh& mesh, int cell);

/// Name of the physical group of volumes that becomes cavity 1, 2 or 3.
std::string CavityName(int cavity);

/// Name of the physical group of volumes to which `cell` belongs.
std::string GridName(const Mesh& mesh, int cell);

/// Name of the physical group of a boundary face: "wall", "overset1", ...
std::string FaceName(Boundary kind, int oversetGroup);

/// Throws std::runtime_error with the text of each fault on a line of its own; does nothing
/// without faults.
void Refuse(const std::vector<kvx3d::checks::Fault>& faults);

}  // namespace host

#endif
