#ifndef OVERSET_HOST_STENCILS_H
#define OVERSET_HOST_STENCILS_H

#include <vector>

#include "host_checks/mesh_view.h"
#include "host_link/art_gv.h"
#include "host_link/face_data.h"
#include "overset/overset_mesh.h"
#include "two_grids.h"

/// The decisions of the toolbox in tables of the host. They are filled once, because the toolbox
/// reports a face as a regular one after its donor was written into Ce23.
struct CutMesh {
    /// Stores the type of each inner face, then lets the toolbox write the donor of each
    /// hole-boundary face into Ce23. Each of these faces must have a donor: see Assess().
    ///
    /// @param view     of the host objects; must outlive this object
    /// @param overset  set up with these objects
    CutMesh(const kvx3d::checks::MeshView& view, CKVXOversetMesh& overset);

    const kvx3d::checks::MeshView& mesh;
    std::vector<char> isActive;               ///< by cell
    std::vector<std::vector<int>> neighbors;  ///< by cell: cells across regular faces
    std::vector<char> isRegular;              ///< by inner face: both cells are active
    std::vector<int> activeCell;              ///< by inner face: on the hole boundary, else 0
    std::vector<int> outerDonor;              ///< by wall face: donor of an outer face, else 0
};

/// The gradient stencils of all faces, in the records that the operators of the toolbox read.
///
/// The operators do not read the geometry: a quantity at a face is a weighted sum over cells. Both
/// grids are orthogonal, so with the vector d between the two points, grad T . S is
/// (T2 - T1) S.S / (S.d), where S is the area vector. A ghost cell has the value at the center of
/// its face. If a cell is missing (cut, or beyond an outer face), the mirrored point takes its
/// place, with a value interpolated around the donor.
class FaceStencils {
public:
    /// @param grids  with the donors in Ce23
    /// @param cut    of these grids; is not kept
    FaceStencils(TwoGrids& grids, const CutMesh& cut);
    FaceStencils(const FaceStencils&) = delete;
    FaceStencils& operator=(const FaceStencils&) = delete;

private:
    CMAFVMFaceData empty;  // before gv: records in gv borrow its arrays

public:
    CKVX_ACMT_GV gv;
};

#endif
