#ifndef KVX3D_HOST_CHECKS_HOST_RULES_H
#define KVX3D_HOST_CHECKS_HOST_RULES_H

#include <vector>

#include "host_checks/export.h"
#include "host_checks/fault.h"
#include "host_link/host_interface.h"

namespace kvx3d::checks {

/// Checks what the toolbox requires of the host objects and never checks itself: a wrong count or
/// id there leads to accesses out of range. To be called before any toolbox object links them and
/// before donors are written into Ce23.
///
/// Checks counts and pointers first and stops there if they are wrong, because all other rules read
/// the arrays. Then coordinates and area vectors, ids of nodes, cells and ghost cells, volumes,
/// node lists and cavity ids; with more than one cavity, once all of these hold, the inlet of the
/// background and the overset groups.
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
