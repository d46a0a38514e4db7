#ifndef KVX3D_REFERENCE_HOST_LINK_DONOR_TABLE_H
#define KVX3D_REFERENCE_HOST_LINK_DONOR_TABLE_H

#include <string>

#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Writes `donors.csv` with one line for each face that has a donor: the boundary on which the face
/// lies ("hole" or "overset"), then x, y, z of the face, of its active cell and of the donor.
///
/// @return path of the file; empty on a single grid, where no file is written
/// @throws std::runtime_error  the file cannot be written
std::string WriteDonorTable(const Mesh& mesh, const OversetLink& link,
                            const std::string& directory);

}  // namespace host

#endif
