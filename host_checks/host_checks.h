#ifndef KVX3D_HOST_CHECKS_HOST_CHECKS_H
#define KVX3D_HOST_CHECKS_HOST_CHECKS_H

#include <string>
#include <vector>

#include "host_checks/cut_rules.h"
#include "host_checks/export.h"
#include "host_checks/fault.h"
#include "host_link/host_interface.h"
#include "overset/overset_mesh.h"

/// Checks for every host of the toolbox, on the host objects alone.
///
///     const auto verdict = kvx3d::checks::MaySetUp(gv, fvm);
///     std::cout << kvx3d::checks::Report(verdict);
///     if (!verdict) { return 1; }
///     CKVXOversetMesh overset;
///     overset.SetFVM(&gv, &fvm);
///     const auto soundness = kvx3d::checks::Assess(gv, fvm, overset);
///     std::cout << kvx3d::checks::Report(soundness);
///
/// The toolbox does not check what a host passes to it: wrong ids lead to accesses out of range,
/// and a face without a donor leads to a search that never ends.
namespace kvx3d::checks {

/// Whether the toolbox may set up a mesh, and the reasons if it may not.
struct Verdict {
    std::vector<Fault> faults;

    explicit operator bool() const { return faults.empty(); }
};

/// Checks host objects before CKVXOversetMesh::SetFVM().
///
/// Checks the rules of HostFaults() and then, if these are kept and there is more than one grid,
/// the rules of MeshFaults(). Nothing is read out of range if each array is as long as its count
/// says. A single grid may be set up if it has an inlet face, because the toolbox always reads
/// inlet face 1.
///
/// @param partition  partition faces of a distributed run, null if there are none
KVX3D_CHECKS_API Verdict MaySetUp(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& fvm,
                                  CPartitionFace_DLL* partition = nullptr);

/// The result of hole cutting on one grid.
struct GridCut {
    int grid = 0;           ///< 1 background, 2 component 1, 3 component 2 (never cut)
    int cells = 0;          ///< number of its cells
    int cutCells = 0;       ///< number of those that were cut
    double cutShare = 0.0;  ///< cutCells / cells
    /// Number of cells in each connected piece of the cut region, largest first. Cells are
    /// connected across inner faces. A sound hole is one piece for each body.
    std::vector<int> cutPieces;
};

/// Donors of one kind of face. Distances are measured from the last query point to the center of
/// the donor and divided by MeshView::EdgeLength() of the active cell.
struct DonorSummary {
    int faces = 0;
    int withoutDonor = 0;
    int mostTries = 0;
    double largestDistance = 0.0;
    double meanDistance = 0.0;  ///< over the faces with a donor
};

/// The result of the overset set-up of a mesh.
struct Soundness {
    std::vector<GridCut> grids;  ///< one entry for each grid, the background first
    DonorSummary hole;           ///< hole-boundary inner faces
    DonorSummary outer;          ///< outer wall faces, donor chosen by NearestWallDonor()
    /// Outer faces where GetOversetWallNeighbor() of the toolbox makes more searches than
    /// BoundedDonorSearch::defaultMaxTries, or for which no grid donates: do not call it there.
    int outerFacesWithoutToolboxDonor = 0;
    std::vector<Fault> faults;  ///< broken rules of CutFaults(); none on a single grid

    explicit operator bool() const { return faults.empty(); }
};

/// Assesses a mesh that SetFVM() has set up, before donors are written into Ce23.
///
/// @param overset  set up with these host objects; its states are read, nothing is changed
KVX3D_CHECKS_API Soundness Assess(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& fvm,
                                  CKVXOversetMesh& overset);

/// The faults, one per line, or a line which says that the mesh may be set up. Ends in a newline.
KVX3D_CHECKS_API std::string Report(const Verdict& verdict);

/// A few lines with all figures, then the faults, one per line. Ends in a newline.
KVX3D_CHECKS_API std::string Report(const Soundness& soundness);

}  // namespace kvx3d::checks

#endif
