#ifndef KVX3D_HOST_CHECKS_HOST_RULES_H
#define KVX3D_HOST_CHECKS_HOST_RULES_H

#include <vector>

#include "host_checks/export.h"
#include "host_checks/fault.h"
#include "host_link/host_interface.h"

namespace kvx3d::checks {

/// Checks the requirements of the toolbox on the host objects. The toolbox itself does not check
/// them: a wrong count or id leads to accesses out of range. Call it before any toolbox object
/// links the host objects and before donors are written into Ce23.
///
/// Counts and pointers come first. If they are wrong, nothing else is checked, because all other
/// rules read the arrays. Then come coordinates, ids of nodes, cells and ghost cells, volumes, node
/// lists, area vectors and cavity ids. If all of these are right and there is more than one cavity,
/// the inlet of the background and the overset groups follow.
///
/// Array lengths cannot be checked: each array must have one slot more than its count.
///
/// @param partition  partition faces of a distributed run, null if there are none: they have ghost
///                   cells too. The direction of their area vectors is not checked.
/// @return one fault for each broken rule; none if the objects are sound
KVX3D_CHECKS_API std::vector<Fault> HostFaults(const CKvx3dGV& gv,
                                               const CKVX3DFiniteVolumeMesh& fvm,
                                               CPartitionFace_DLL* partition = nullptr);

}  // namespace kvx3d::checks

#endif
