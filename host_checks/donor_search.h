#ifndef KVX3D_HOST_CHECKS_DONOR_SEARCH_H
#define KVX3D_HOST_CHECKS_DONOR_SEARCH_H

#include <memory>
#include <vector>

#include "host_checks/export.h"
#include "host_checks/mesh_view.h"
#include "host_checks/point.h"
#include "host_checks/point_tree.h"
#include "overset/overset_mesh.h"

namespace kvx3d::checks {

/// How a search for a donor ended.
enum class DonorVerdict {
    Found,                 ///< there is a donor
    NotAHoleBoundaryFace,  ///< inner face whose cells are both active or both cut: no search
    NotAnOuterFace,        ///< wall face in no overset group: no search
    NoTreeForGrid,         ///< the active cell lies in component 2, to which no grid donates
    NoActiveCell,          ///< the donating grid has no active cell
    NoCellAcross,          ///< no search up to the bound found a cell across the face
};

/// A few words for a verdict, such as "no cell across the face".
KVX3D_CHECKS_API const char* Name(DonorVerdict verdict);

/// The result of one search for a donor.
struct DonorRecord {
    DonorVerdict verdict = DonorVerdict::NotAHoleBoundaryFace;
    int donor = 0;          ///< donor cell, 0 if there is none
    int cell = 0;           ///< active cell from which the search starts, 0 without a search
    int tries = 0;          ///< number of tree searches made
    Point query;            ///< last point for which the nearest cell was searched
    double distance = 0.0;  ///< from that point to the center of the donor, 0 without a donor
};

/// The donor searches of the toolbox with a bound on the number of tries.
///
/// The toolbox repeats a search until it finds a cell across the face, and never returns where
/// there is none. This class makes the same searches with the same operations in the same order on
/// trees with the same answers, so that every donor it finds is the donor of the toolbox, but gives
/// up after `maxTries`. A face for which it finds no donor must not be given to the toolbox.
///
/// It reads the cell states when it is constructed and the face pairs Ce23 at each call, and so
/// must be used before CKVXOversetMesh::ReplaceDonorIdtoNonActCellId() writes donors into Ce23.
///
/// No grid donates to component 2: the toolbox never cuts it and has no tree for its faces. Its
/// searches end with NoTreeForGrid, and the toolbox must not be called for its faces.
class KVX3D_CHECKS_API BoundedDonorSearch {
public:
    /// Sound meshes need one try; tetrahedral components need up to four.
    static constexpr int defaultMaxTries = 20;

    /// @param mesh      view of the host objects; must outlive this object
    /// @param overset   set up by SetFVM() with the same host objects; read here only
    /// @param tryBound  largest number of tree searches for one face, at least 1
    BoundedDonorSearch(const MeshView& mesh, CKVXOversetMesh& overset,
                       int tryBound = defaultMaxTries);

    /// @param activeCells  by cell, entries 1..Nc: not 0 for an active cell
    BoundedDonorSearch(const MeshView& mesh, std::vector<char> activeCells,
                       int tryBound = defaultMaxTries);
    ~BoundedDonorSearch();
    BoundedDonorSearch(const BoundedDonorSearch&) = delete;
    BoundedDonorSearch& operator=(const BoundedDonorSearch&) = delete;

    bool IsActive(int cell) const { return active[cell] != 0; }
    const std::vector<char>& ActiveCells() const { return active; }

    /// Donor of an inner face 1..Ne on a hole boundary, as GetOversetInnerNeighbor() finds it.
    DonorRecord InnerDonor(int face) const;

    /// Donor of an outer face, a wall face 1..NWall of an overset group, as
    /// GetOversetWallNeighbor() finds it. That search decides which cells lie across the face by
    /// the x component of the area vector alone. On half of a round boundary it therefore finds a
    /// distant cell or does not end.
    DonorRecord ToolboxWallDonor(int wallFace) const;

    /// Donor of an outer face as a host should choose it: the active background cell nearest to
    /// the mirrored center 2 P - C of the cell beside the face, on either side of the face.
    DonorRecord NearestWallDonor(int wallFace) const;

private:
    const PointTree* TreeFor(int cell) const;
    DonorRecord Search(int cell, const Point& face, const Point& across) const;

    const MeshView& view;
    std::vector<char> active;  // by cell
    int maxTries;
    std::unique_ptr<PointTree> backgroundTree, componentTree;
};

}  // namespace kvx3d::checks

#endif
