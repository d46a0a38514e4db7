#ifndef KVX3D_REFERENCE_HOST_LINK_HOST_CONTRACT_H
#define KVX3D_REFERENCE_HOST_LINK_HOST_CONTRACT_H

#include <string>
#include <vector>

#include "host_link/host_interface.h"

namespace host {

/// Everything that the toolbox takes for granted in the objects of a host and never checks: a
/// wrong count or id there leads to accesses out of range. To be called before any toolbox object
/// links them, since the toolbox writes donors into Ce23.
///
/// Counts and pointers, ids of nodes, cells and ghosts (each ghost cell of one face), volumes,
/// node lists, area vectors (inner ones from owner to neighbor, boundary ones outwards), and with
/// more than one cavity the cavity ids, the background's inlet and the overset groups.
///
/// @return one line for each rule broken, with the first cell or face that breaks it
std::vector<std::string> ContractFaults(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& fvm);

}  // namespace host

#endif
