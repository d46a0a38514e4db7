#ifndef KVX3D_HOST_CHECKS_EXPLANATION_H
#define KVX3D_HOST_CHECKS_EXPLANATION_H

#include <memory>
#include <string>
#include <vector>

#include "host_checks/donor_search.h"
#include "host_checks/export.h"
#include "host_checks/mesh_view.h"
#include "host_checks/point.h"
#include "host_checks/point_tree.h"
#include "overset/overset_mesh.h"

namespace kvx3d::checks {

/// The step of the set-up that decides whether a cell is cut.
enum class CuttingStep {
    None,           ///< no step: component 2, a cavity without a grid, or no face to judge by
    OutsideDomain,  ///< component 1 against the physical walls of the background
    Overlap,        ///< the background against the outer faces of component 1
};

/// Why a cell is active or cut.
///
/// A step judges a cell with center C and volume V by its nearest face, with center P and area
/// vector S: the measure (C - P) . S is compared with the margin |S| 2 h, where h = V^(1/3). The
/// outside step cuts a cell if measure > -margin, the overlap step if measure < -margin. Both
/// numbers are computed with the operations of the toolbox and agree with its numbers bit for bit.
struct CellExplanation {
    int cell = 0;
    int grid = 0;  ///< 1 background, 2 component 1, 3 component 2, 0 none
    Point center;
    OversetCellType state = OversetCell_Undefined;  ///< what GetOversetCellType() returns
    CuttingStep step = CuttingStep::None;           ///< the step that judges the cell
    // The rest is zero if no step judges the cell.
    int wallFace = 0;  ///< number of the nearest wall face
    Point faceCenter;
    Point vector;  ///< S: area vector of that face or the fixed vector
    /// Component cells were cut by the outside step. The overlap step then judges every cell with
    /// one fixed vector S, the center of the last face of overset group 1.
    bool hasFixedVector = false;
    double cellSize = 0.0;      ///< h [length]
    double measure = 0.0;       ///< (C - P) . S
    double margin = 0.0;        ///< |S| 2 h
    double distance = 0.0;      ///< measure / |S| [length], 0 if S vanishes
    double marginLength = 0.0;  ///< 2 h [length]
    bool isCut = false;         ///< result of the comparison; agrees with `state`
};

/// The type of an inner face and its donor.
struct InnerFaceExplanation {
    int face = 0;
    Point center;
    OversetInnerFaceType type = OversetInnerFace_Undefined;
    int owner = 0;     ///< current entry of Ce23[0]
    int neighbor = 0;  ///< current entry of Ce23[1]
    OversetCellType ownerState = OversetCell_Undefined;
    OversetCellType neighborState = OversetCell_Undefined;
    int ownerGrid = 0;
    int neighborGrid = 0;
    /// The cells lie in two grids: a donor was written into Ce23, and the cut cell is not known.
    bool holdsDonor = false;
    DonorRecord donor;             ///< of a hole-boundary face
    int donorGrid = 0;             ///< 0 without a donor
    double cellSize = 0.0;         ///< edge length of the active cell, 0 without a search
    double distanceInCells = 0.0;  ///< distance from the query point to the donor / cellSize
};

/// The kind of a wall face and its donor.
struct WallFaceExplanation {
    int wallFace = 0;
    Point center;
    OversetWallFaceType kind = OversetWallFace_Undefined;
    int group = 0;  ///< overset group, 0 for a physical wall
    int cell = 0;   ///< the cell beside the face
    int grid = 0;   ///< its grid
    // Of an outer face:
    DonorRecord donor;             ///< nearest active background cell to the mirrored center
    DonorRecord toolboxDonor;      ///< what GetOversetWallNeighbor() would return
    double cellSize = 0.0;         ///< edge length of `cell`
    double distanceInCells = 0.0;  ///< distance from the query point to the donor / cellSize
};

class BoxTree;

/// Explains the decisions of a set-up CKVXOversetMesh about single cells and faces.
///
/// Nothing is changed, and no search of the toolbox is called that might not end. Donors are
/// searched with the current entries of Ce23, so explain faces before donors are written there.
/// Cells can be explained at any time. One call at a time per object.
class KVX3D_CHECKS_API Explainer {
public:
    /// @param mesh        view of the host objects; must outlive this object
    /// @param oversetMesh set up by SetFVM() with the same host objects; must outlive this object
    /// @param tryBound    largest number of tree searches for a donor
    Explainer(const MeshView& mesh, CKVXOversetMesh& oversetMesh,
              int tryBound = BoundedDonorSearch::defaultMaxTries);
    ~Explainer();
    Explainer(const Explainer&) = delete;
    Explainer& operator=(const Explainer&) = delete;

    /// @param cell  1..Nc
    /// @throws std::out_of_range  there is no such cell
    CellExplanation ExplainCell(int cell) const;
    /// @param face  inner face 1..Ne
    /// @throws std::out_of_range  there is no such face
    InnerFaceExplanation ExplainInnerFace(int face) const;
    /// @param wallFace  1..NWall
    /// @throws std::out_of_range  there is no such face
    WallFaceExplanation ExplainWallFace(int wallFace) const;

    const MeshView& Mesh() const { return view; }
    const BoundedDonorSearch& Donors() const { return donors; }

private:
    /// Faces among which the nearest one judges a cell.
    struct Judges {
        Judges(const MeshView& mesh, const std::vector<int>& faces);
        ~Judges();
        int Nearest(const Point& center) const;

        PointTree tree;                  // takes of equally near faces the one of the toolbox
        std::unique_ptr<BoxTree> boxes;  // fast, but does not decide ties; null without
                                         // faces or if a center is not finite
    };

    void Judge(CellExplanation& cell) const;

    const MeshView& view;
    CKVXOversetMesh& overset;
    BoundedDonorSearch donors;
    std::vector<int> outerFaces;  // of component 1, in the order of the group
    Judges walls;                 // physical walls of the background
    Judges outers;                // outer faces of component 1
};

/// The explanation in full sentences, on one line.
KVX3D_CHECKS_API std::string Text(const CellExplanation& cell);
KVX3D_CHECKS_API std::string Text(const InnerFaceExplanation& face);
KVX3D_CHECKS_API std::string Text(const WallFaceExplanation& face);

}  // namespace kvx3d::checks

#endif
