#ifndef KVX3D_REFERENCE_HOST_LINK_DONOR_TABLE_H
#define KVX3D_REFERENCE_HOST_LINK_DONOR_TABLE_H

#include <string>

#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Writes who donates to whom as `donors.csv`, one line for each face with a donor: the boundary it
/// lies on ("hole" or "overset"), then x, y, z of the face, of its active cell and of the donor.
///
/// @return the path of the file, empty on a single grid, where none is written
/// @throws std::runtime_error  the file cannot be written
std::string WriteDonorTable(const Mesh& mesh, const OversetLink& link,
                            const std::string& directory);

}  // namespace host

#endif
