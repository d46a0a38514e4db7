#ifndef KVX3D_OVERSET_OVERSET_GRID_DATA_H
#define KVX3D_OVERSET_OVERSET_GRID_DATA_H

#include "host_link/art_gv.h"
#include "host_link/export.h"
#include "overset/overset_types.h"

/// The data of an overset mesh beyond those of the plain mesh: which cavity is which grid, the
/// cells of each grid, which wall faces are physical walls and which bound a component, and the
/// state of each cell.
///
/// getKvx3dData() fills the base class, OversetGridsInfoSetting() the members below. Arrays are
/// 1-based, made by newInt1D() and newDouble1D(). Hole cutting writes cellState.
///
/// Grid numbers: the cavity beside inlet face 1 is grid 1, the background. If there are two
/// cavities or more, the one beside the first face of overset boundary group 1 is grid 2. If there
/// are three or more, the one beside the first face of group 2 is grid 3. Further cavities have no
/// grid number. A host has at least one inlet face and one group for each component.
///
/// Copies share every array: only one of them may be destroyed.
class KVX3D_API KVX_ART_OVERSET_GRID_DATA : public CKVX_ACMT_GV {
public:
    KVX_ART_OVERSET_GRID_DATA();
    KVX_ART_OVERSET_GRID_DATA(const KVX_ART_OVERSET_GRID_DATA& other) = default;
    KVX_ART_OVERSET_GRID_DATA& operator=(const KVX_ART_OVERSET_GRID_DATA& other) = default;
    ~KVX_ART_OVERSET_GRID_DATA();

    /// Derives grids, wall groups and cell tables. Call it once, after getKvx3dData(). All cells
    /// are active afterward. Two warnings are printed for each wall face beside a cell without a
    /// grid.
    void OversetGridsInfoSetting();

    /// Grid of cell 1..Nc. For a cell without a grid, prints a warning on standard output.
    OversetGridType GetOversetGridType(int cell);
    /// The same with a different warning text.
    OversetGridType GetOversetGridState(int cell);

    /// State of inner face 1..Ne, from its two cells. Sets needChangeInnerNormal if the owner is
    /// cut and the neighbor active; does not change the mesh. If a cell has a state other than 1
    /// and 2, prints a line on standard error and returns 0.
    OversetInnerFaceType GetInnerFaceState(int face);
    /// The same, but does not set the flag: a face with a cut owner and an active neighbor is
    /// reversed in the host's own arrays (cell pair and area vector), so that its area vector
    /// points away from the active cell.
    OversetInnerFaceType GetInnerFaceType(int face);
    /// Kind of wall face 1..NWall. For a negative group number, prints a line on standard error and
    /// returns 0.
    OversetWallFaceType GetWallFaceType(int wallFace);
    /// True if the owner of an inner face is cut and its neighbor is active.
    bool IsNeedChangeInnerNormal(int face);

    /// Stores the pointer, which nothing here reads.
    /// @return false, with a line on standard output, if it is null; the link then stays
    bool LinkARTGv(CKVX_ACMT_GV* gv);

    /// Prints the report on mesh, grids and groups to standard output.
    void PrintOversetGridsInfo();

    bool hasOversetGrids;        ///< false if the mesh has one cavity only
    bool needChangeInnerNormal;  ///< GetInnerFaceState() found a face to reverse; for callers
    int NGrid;                   ///< distinct cavity ids of cells 1..Nc - 1
    int NOversetBC;              ///< overset boundary groups
    int NPhysicalWall;           ///< wall faces in no group
    int NBackgroundWall;         ///< physical walls beside a background cell
    int NActiveCell;             ///< published cells, counted by the set-up of the output
    int NNonActiveCell;          ///< cells cut so far
    int NOverlapPoint;           ///< points for CutBackgroundCells(), set by its caller
    int NOverlapWallPoint;       ///< number of wall points among them; these come first
    int* overlapInnerFace;       ///< inner face of each overlap point after those, owned
    int* overlapWallIndex;       ///< position in group 1 of each overlap wall point, owned
    int* overlapTableC;          ///< never read, owned
    int* NCellOfGrid;            ///< cells in each grid, 1..NGrid, owned
    int* oversetBCFaceCount;     ///< faces of each group, the host's
    int* cavityToGrid;           ///< grid of each cavity id, 0 for none; NGrid entries, owned
    int** oversetBCWallFace;     ///< wall-face numbers of each group, the host's
    int** cellOfGrid;            ///< row g: cell ids of grid g, ascending; owned
    int* wallBCGroup;            ///< group of each wall face, 0 for a physical wall; owned
    int* cellState;              ///< 2 active, 1 cut; 1..Nc, owned
    int* physicalWall;           ///< wall-face numbers, 1..NPhysicalWall, ascending, owned
    int* backgroundWall;         ///< wall-face numbers, 1..NBackgroundWall, ascending, owned
    double* xPhysicalWall;       ///< face centers of physicalWall, owned
    double* yPhysicalWall;
    double* zPhysicalWall;
    double* xBackgroundWall;  ///< face centers of backgroundWall, owned
    double* yBackgroundWall;
    double* zBackgroundWall;
    double* xOverlapPoint;  ///< points of CutBackgroundCells(), 1..NOverlapPoint, owned
    double* yOverlapPoint;
    double* zOverlapPoint;
    double* pActive;  ///< pressure of the published cells, 1..NActiveCell, owned
    double* uActive;  ///< their velocity, owned
    double* vActive;
    double* wActive;
    CKVX_ACMT_GV* linkedArtGv;  ///< not owned, never read

private:
    void GetOversetGridsNumberInfo();
    void DefineOversetWallBCType();
    void CreatCavityMappingTable();
    void CreatOversetCellTypeTable();
    void ChangeInnerFaceNormal(int face);
};

#endif
