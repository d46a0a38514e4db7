#ifndef KVX3D_HOST_CHECKS_CUT_RULES_H
#define KVX3D_HOST_CHECKS_CUT_RULES_H

#include <vector>

#include "host_checks/donor_search.h"
#include "host_checks/export.h"
#include "host_checks/fault.h"
#include "host_checks/mesh_view.h"

namespace kvx3d::checks {

namespace limit {
/// Tries for a donor on the hole boundary; more are accepted while all of them stay within
/// maxDonorReach. Meshes with 6 to 10 tries had the errors and orders of those with fewer (see
/// docs/host_checks.md).
constexpr int maxDonorTries = 10;
constexpr double maxDonorReach = 0.75;   ///< in edges of the active cell, from the face: the center
                                         ///< of a prism is near its face, so its steps are short
constexpr int minNeighborsInPlane = 8;   ///< active cells around a donor on a mesh one cell thick:
                                         ///< the terms of a quadratic fit and two more
constexpr int minNeighborsInSpace = 12;  ///< the same on other meshes
}  // namespace limit

/// A face that needs a donor, and the result of the search.
struct FaceDonor {
    int face = 0;  ///< inner face or wall face
    DonorRecord search;
};

/// The result of hole cutting and donor search on a mesh.
struct CutMesh {
    std::vector<char> isActive;     ///< by cell, entries 1..Nc: 0 if the cell was cut
    std::vector<FaceDonor> hole;    ///< hole-boundary inner faces, ascending: InnerDonor()
    std::vector<FaceDonor> outers;  ///< outer wall faces, ascending: NearestWallDonor()
};

/// Searches the donors of all faces that need one. Call it before donors are written into Ce23.
KVX3D_CHECKS_API CutMesh FindDonors(const MeshView& mesh, const BoundedDonorSearch& search);

/// Checks the rules for the result of hole cutting and donor search. For meshes of two or three
/// grids. Call it before donors are written into Ce23.
///
/// @return one fault for each broken rule; none if all are kept
KVX3D_CHECKS_API std::vector<Fault> CutFaults(const MeshView& mesh, const CutMesh& cut);

}  // namespace kvx3d::checks

#endif
