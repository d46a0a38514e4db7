#ifndef KVX3D_OVERSET_OVERSET_GRID_DATA_H
#define KVX3D_OVERSET_OVERSET_GRID_DATA_H

#include "host_link/art_gv.h"
#include "host_link/export.h"
#include "overset/overset_types.h"

/// What the overset mesh knows beyond the plain mesh: which cavity is which grid, the cells of
/// each grid, which wall faces are true walls and which bound a component, the state of each cell.
///
/// The base class is filled by getKvx3dData(), the members below by OversetGridsInfoSetting().
/// Arrays are 1-based, made by newInt1D() and newDouble1D(). Hole cutting writes cellState.
///
/// The grid rule: the cavity beside inlet face 1 is grid 1, the background; with two cavities or
/// more the one beside the first face of overset boundary group 1 is grid 2; with three or more
/// that of group 2 is grid 3. Further cavities have no grid number. A host has one inlet face at
/// least and a group for each component.
///
/// Copies share every array: only one of them may be destroyed.
class KVX3D_API KVX_ART_OVERSET_GRID_DATA : public CKVX_ACMT_GV {
public:
    KVX_ART_OVERSET_GRID_DATA();
    KVX_ART_OVERSET_GRID_DATA(const KVX_ART_OVERSET_GRID_DATA& other) = default;
    KVX_ART_OVERSET_GRID_DATA& operator=(const KVX_ART_OVERSET_GRID_DATA& other) = default;
    ~KVX_ART_OVERSET_GRID_DATA();

    /// Derives grids, wall groups and cell tables; once, after getKvx3dData(). All cells start
    /// active. Wall faces beside a cell without a grid bring two warnings each.
    void OversetGridsInfoSetting();

    /// Grid of a cell 1..Nc; a cell without one brings a warning on standard output.
    OversetGridType GetOversetGridType(int cell);
    /// The same with other words in the warning.
    OversetGridType GetOversetGridState(int cell);

    /// State of an inner face 1..Ne, from its two cells. Sets needChangeInnerNormal when the owner
    /// is cut and the neighbor active; the mesh stays as it is. Cell states other than 1 and 2
    /// bring a line on standard error and the result 0.
    OversetInnerFaceType GetInnerFaceState(int face);
    /// The same, but turns a face with a cut owner and an active neighbor around in the host's own
    /// arrays instead of setting the flag: afterwards its area vector points away from the active
    /// cell.
    OversetInnerFaceType GetInnerFaceType(int face);
    /// Kind of a wall face 1..NWall; a negative group brings a line on standard error and 0.
    OversetWallFaceType GetWallFaceType(int wallFace);
    /// True when the owner of an inner face is cut and its neighbor active.
    bool IsNeedChangeInnerNormal(int face);

    /// Stores the pointer, which nothing here reads.
    /// @return false with a line on standard output if it is null; the link then stays
    bool LinkARTGv(CKVX_ACMT_GV* gv);

    /// Prints the report on mesh, grids and groups to standard output.
    void PrintOversetGridsInfo();

    bool hasOversetGrids;        ///< false once the mesh turned out to have one cavity
    bool needChangeInnerNormal;  ///< GetInnerFaceState() met a face to turn; kept for callers
    int NGrid;                   ///< distinct cavity ids of cells 1..Nc - 1
    int NOversetBC;              ///< overset boundary groups
    int NPhysicalWall;           ///< wall faces in no group
    int NBackgroundWall;         ///< of these, faces beside a background cell
    int NActiveCell;             ///< published cells, counted when the output is set up
    int NNonActiveCell;          ///< cells cut so far
    int NOverlapPoint;           ///< points for CutBackgroundCells(), set by its caller
    int NOverlapWallPoint;       ///< how many of them, the first ones, are wall points
    int* overlapInnerFace;       ///< inner face of each further overlap point, owned
    int* overlapWallIndex;       ///< position in group 1 of each overlap wall point, owned
    int* overlapTableC;          ///< not read, owned
    int* NCellOfGrid;            ///< cells in each grid, 1..NGrid, owned
    int* oversetBCFaceCount;     ///< faces of each group, the host's
    int* cavityToGrid;           ///< grid of each cavity id, 0 for none; NGrid entries, owned
    int** oversetBCWallFace;     ///< wall-face numbers of each group, the host's
    int** cellOfGrid;            ///< row g: cell ids of grid g, ascending; owned
    int* wallBCGroup;            ///< group of each wall face, 0 for a physical wall; owned
    int* cellState;              ///< 2 active, 1 cut; 1..Nc, owned
    int* physicalWall;           ///< wall-face numbers, 1..NPhysicalWall, ascending, owned
    int* backgroundWall;         ///< wall-face numbers, 1..NBackgroundWall, ascending, owned
    double* xPhysicalWall;       ///< face centres of physicalWall, owned
    double* yPhysicalWall;
    double* zPhysicalWall;
    double* xBackgroundWall;  ///< face centres of backgroundWall, owned
    double* yBackgroundWall;
    double* zBackgroundWall;
    double* xOverlapPoint;  ///< points of CutBackgroundCells(), 1..NOverlapPoint, owned
    double* yOverlapPoint;
    double* zOverlapPoint;
    double* pActive;  ///< pressure of the published cells, 1..NActiveCell, owned
    double* uActive;  ///< their velocity, owned
    double* vActive;
    double* wActive;
    CKVX_ACMT_GV* linkedArtGv;  ///< not owned, not read

private:
    void GetOversetGridsNumberInfo();
    void DefineOversetWallBCType();
    void CreatCavityMappingTable();
    void CreatOversetCellTypeTable();
    void ChangeInnerFaceNormal(int face);
};

#endif
