#ifndef KVX3D_HOST_CHECKS_DETAIL_OVERSET_GROUP_RULES_H
#define KVX3D_HOST_CHECKS_DETAIL_OVERSET_GROUP_RULES_H

#include <vector>

#include "host_checks/fault.h"
#include "host_link/host_interface.h"

namespace kvx3d::checks {

/// True if the cavity ids are 0 and 1 and inner faces are flagged as nonmatching: the ids then
/// number the blocks beside a non-matching interface, and the mesh is no overset mesh.
bool AreInterfaceBlocks(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m);

/// The part of HostFaults() that concerns the inlet of the background and the overset groups.
/// Cells, faces and cavity ids are in order already.
/// @param nGrids  number of cavities
void CheckOversetGroups(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m, int nGrids,
                        std::vector<Fault>& faults);

}  // namespace kvx3d::checks

#endif
