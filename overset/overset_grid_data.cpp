#include "overset/overset_grid_data.h"

#include <cstddef>
#include <iostream>
#include <set>
#include <vector>

#include "host_link/containers.h"
#include "host_link/detail/classic_format.h"
#include "host_link/detail/last_stores.h"

namespace {

constexpr int nonActive = 1;  // values of cellState
constexpr int active = 2;

bool IsGrid(int grid) {
    return grid == 1 || grid == 2 || grid == 3;
}

void PrintNoGridState() {
    std::cout << "Warning: Can not get the overset grid state." << std::endl;
}

void PrintNoWallType(int wallFace) {
    const kvx3d::detail::ClassicFormat format(std::cerr);
    std::cerr << "Fail to define Wall Face Type , Wall Face ID = " << wallFace << std::endl;
}

/// The classification both inner-face queries share, from the states of owner and neighbor.
OversetInnerFaceType ClassifyInnerFace(int owner, int neighbor, int face) {
    if (owner == active && neighbor == active) {
        return OversetInnerFace_Active;
    }
    if (owner == nonActive && neighbor == nonActive) {
        return OversetInnerFace_NonActive;
    }
    if ((owner == active && neighbor == nonActive) || (owner == nonActive && neighbor == active)) {
        return OversetInnerFace_Overset;
    }
    const kvx3d::detail::ClassicFormat format(std::cerr);
    std::cerr << "Fail to define Inner Face Type , Inner Face ID = " << face << std::endl;
    return OversetInnerFace_Undefined;
}

}  // namespace

KVX_ART_OVERSET_GRID_DATA::KVX_ART_OVERSET_GRID_DATA()
    : hasOversetGrids(true),
      needChangeInnerNormal(false),
      NGrid(0),
      NOversetBC(0),
      NPhysicalWall(0),
      NBackgroundWall(0),
      NActiveCell(0),
      NNonActiveCell(0),
      NOverlapPoint(0),
      NOverlapWallPoint(0),
      overlapInnerFace(nullptr),
      overlapWallIndex(nullptr),
      overlapTableC(nullptr),
      NCellOfGrid(nullptr),
      oversetBCFaceCount(nullptr),
      cavityToGrid(nullptr),
      oversetBCWallFace(nullptr),
      cellOfGrid(nullptr),
      wallBCGroup(nullptr),
      cellState(nullptr),
      physicalWall(nullptr),
      backgroundWall(nullptr),
      xPhysicalWall(nullptr),
      yPhysicalWall(nullptr),
      zPhysicalWall(nullptr),
      xBackgroundWall(nullptr),
      yBackgroundWall(nullptr),
      zBackgroundWall(nullptr),
      xOverlapPoint(nullptr),
      yOverlapPoint(nullptr),
      zOverlapPoint(nullptr),
      pActive(nullptr),
      uActive(nullptr),
      vActive(nullptr),
      wActive(nullptr),
      linkedArtGv(nullptr) {}

KVX_ART_OVERSET_GRID_DATA::~KVX_ART_OVERSET_GRID_DATA() {
    linkedArtGv = nullptr;
    oversetBCWallFace = nullptr;
    oversetBCFaceCount = nullptr;
    delete[] NCellOfGrid;
    delete[] cavityToGrid;
    // Releases all rows but the last: cells of the last grid stay where trees still point to them.
    freeIntRows(cellOfGrid);
    for (int* table : {wallBCGroup, cellState, physicalWall, backgroundWall, overlapInnerFace,
                       overlapWallIndex, overlapTableC}) {
        delete[] table;
    }
    for (double* array : {xPhysicalWall, yPhysicalWall, zPhysicalWall, xBackgroundWall,
                          yBackgroundWall, zBackgroundWall, xOverlapPoint, yOverlapPoint,
                          zOverlapPoint, pActive, uActive, vActive, wActive}) {
        delete[] array;
    }
    kvx3d::detail::KeepLastStores();
}

void KVX_ART_OVERSET_GRID_DATA::OversetGridsInfoSetting() {
    GetOversetGridsNumberInfo();
    DefineOversetWallBCType();
    CreatCavityMappingTable();
    CreatOversetCellTypeTable();
}

void KVX_ART_OVERSET_GRID_DATA::GetOversetGridsNumberInfo() {
    std::set<int> cavities;
    // Stops one cell short: a cavity of the last cell alone makes no grid, and the tables below
    // are sized without it. Tables indexed by cavity elsewhere count the same way.
    for (int c = 1; c <= Nc - 1; ++c) {
        if (c == 1 || cavityId[c] != cavityId[c - 1]) {
            cavities.insert(cavityId[c]);
        }
    }
    NGrid = static_cast<int>(cavities.size());
    if (NGrid == 1) {
        hasOversetGrids = false;
    }
    NOversetBC = kvxGv->NOversetBCGroup[0];
    oversetBCFaceCount = kvxGv->oversetBCFaceCount;
    oversetBCWallFace = kvxGv->oversetBCWallFace;
    NPhysicalWall = NWall;

    newInt1D(cavityToGrid, NGrid);
    cavityToGrid[cavityId[CInlet23[1]]] = OversetGrid_Background;
    if (NGrid > 1) {
        cavityToGrid[cavityId[CWall23[oversetBCWallFace[1][1]]]] = OversetGrid_Component1;
    }
    if (NGrid > 2) {
        cavityToGrid[cavityId[CWall23[oversetBCWallFace[2][1]]]] = OversetGrid_Component2;
    }

    newInt1D(NCellOfGrid, NGrid);
    for (int c = 1; c <= Nc; ++c) {
        const int grid = cavityToGrid[cavityId[c]];
        if (grid >= 1 && grid <= NGrid) {
            ++NCellOfGrid[grid];
        }
    }
}

void KVX_ART_OVERSET_GRID_DATA::DefineOversetWallBCType() {
    newInt1D(wallBCGroup, NWall);
    for (int g = 1; g <= NOversetBC; ++g) {
        NPhysicalWall -= oversetBCFaceCount[g];
        for (int i = 1; i <= oversetBCFaceCount[g]; ++i) {
            wallBCGroup[oversetBCWallFace[g][i]] = g;
        }
    }

    newInt1D(physicalWall, NPhysicalWall);
    newDouble1D(xPhysicalWall, NPhysicalWall);
    newDouble1D(yPhysicalWall, NPhysicalWall);
    newDouble1D(zPhysicalWall, NPhysicalWall);
    int nPhysical = 0;
    for (int face = 1; face <= NWall; ++face) {
        if (wallBCGroup[face] == 0) {
            ++nPhysical;
            physicalWall[nPhysical] = face;
            xPhysicalWall[nPhysical] = xWall[face];
            yPhysicalWall[nPhysical] = yWall[face];
            zPhysicalWall[nPhysical] = zWall[face];
            const int grid = cavityToGrid[cavityId[CWall23[face]]];
            if (grid == OversetGrid_Background) {
                ++NBackgroundWall;
            } else if (!IsGrid(grid)) {
                PrintNoGridState();
            }
        } else if (wallBCGroup[face] < 0) {
            PrintNoWallType(face);
        }
    }

    newInt1D(backgroundWall, NBackgroundWall);
    newDouble1D(xBackgroundWall, NBackgroundWall);
    newDouble1D(yBackgroundWall, NBackgroundWall);
    newDouble1D(zBackgroundWall, NBackgroundWall);
    int nBackground = 0;
    for (int face = 1; face <= NWall; ++face) {
        if (wallBCGroup[face] != 0) {
            continue;
        }
        const int grid = cavityToGrid[cavityId[CWall23[face]]];
        if (grid == OversetGrid_Background) {
            ++nBackground;
            backgroundWall[nBackground] = face;
            xBackgroundWall[nBackground] = xWall[face];
            yBackgroundWall[nBackground] = yWall[face];
            zBackgroundWall[nBackground] = zWall[face];
        } else if (!IsGrid(grid)) {
            // Said once more for the same face: each of the two walks reports what it leaves out.
            PrintNoGridState();
        }
    }
}

void KVX_ART_OVERSET_GRID_DATA::CreatCavityMappingTable() {
    newIntRows(cellOfGrid, NGrid);
    for (int g = 1; g <= NGrid; ++g) {
        newInt1D(cellOfGrid[g], NCellOfGrid[g]);
    }
    std::vector<int> nListed(static_cast<std::size_t>(NGrid) + 1, 0);
    for (int c = 1; c <= Nc; ++c) {
        const int grid = cavityToGrid[cavityId[c]];
        if (grid >= 1 && grid <= NGrid) {
            cellOfGrid[grid][++nListed[grid]] = c;
        }
    }
}

void KVX_ART_OVERSET_GRID_DATA::CreatOversetCellTypeTable() {
    newInt1D(cellState, Nc);
    for (int c = 1; c <= Nc; ++c) {
        cellState[c] = active;
    }
}

OversetGridType KVX_ART_OVERSET_GRID_DATA::GetOversetGridType(int cell) {
    const int grid = cavityToGrid[cavityId[cell]];
    if (IsGrid(grid)) {
        return static_cast<OversetGridType>(grid);
    }
    std::cout << "Warning: Can not get the overset grid type." << std::endl;
    return OversetGrid_Undefined;
}

OversetGridType KVX_ART_OVERSET_GRID_DATA::GetOversetGridState(int cell) {
    const int grid = cavityToGrid[cavityId[cell]];
    if (IsGrid(grid)) {
        return static_cast<OversetGridType>(grid);
    }
    PrintNoGridState();
    return OversetGrid_Undefined;
}

OversetInnerFaceType KVX_ART_OVERSET_GRID_DATA::GetInnerFaceState(int face) {
    if (IsNeedChangeInnerNormal(face)) {
        needChangeInnerNormal = true;
    }
    return ClassifyInnerFace(cellState[Ce23[0][face]], cellState[Ce23[1][face]], face);
}

OversetInnerFaceType KVX_ART_OVERSET_GRID_DATA::GetInnerFaceType(int face) {
    if (IsNeedChangeInnerNormal(face)) {
        ChangeInnerFaceNormal(face);
    }
    return ClassifyInnerFace(cellState[Ce23[0][face]], cellState[Ce23[1][face]], face);
}

OversetWallFaceType KVX_ART_OVERSET_GRID_DATA::GetWallFaceType(int wallFace) {
    const int group = wallBCGroup[wallFace];
    if (group < 0) {
        PrintNoWallType(wallFace);
        return OversetWallFace_Undefined;
    }
    return group == 0 ? OversetWallFace_Physical : OversetWallFace_Overset;
}

bool KVX_ART_OVERSET_GRID_DATA::IsNeedChangeInnerNormal(int face) {
    return cellState[Ce23[0][face]] == nonActive && cellState[Ce23[1][face]] == active;
}

void KVX_ART_OVERSET_GRID_DATA::ChangeInnerFaceNormal(int face) {
    const int owner = Ce23[0][face];
    Ce23[0][face] = Ce23[1][face];
    Ce23[1][face] = owner;
    nxe[face] = -nxe[face];
    nye[face] = -nye[face];
    nze[face] = -nze[face];
}

bool KVX_ART_OVERSET_GRID_DATA::LinkARTGv(CKVX_ACMT_GV* gv) {
    if (!gv) {
        std::cout << "WARNING: Can not get the object of ART global variables!" << std::endl;
        return false;
    }
    linkedArtGv = gv;
    return true;
}

void KVX_ART_OVERSET_GRID_DATA::PrintOversetGridsInfo() {
    const kvx3d::detail::ClassicFormat format(std::cout);
    std::cout << '\n'
              << "<General_Grids_Information> \n"
              << " Total Cells Number=" << Nc << '\n'
              << " Total Faces Number=" << Ne << '\n'
              << " Total Nodes Number=" << Nn << '\n'
              << '\n'
              << " Face Number of Inlet=" << NInlet << '\n'
              << " Face Number of Outlet=" << NOutlet << '\n'
              << " Face Number of Wall=" << NWall << '\n'
              << " Face Number of Symm=" << NSymm << '\n'
              << '\n'
              << "<Overset_Grids_Information> \n"
              << " Group Number of Overset Grid =" << NGrid << '\n'
              << " Group Number of Overset BC =" << NOversetBC << '\n'
              << " Cell Number of Each Overset Grid:\n"
              << "  Background Grid=" << NCellOfGrid[1] << '\n';
    if (NGrid >= 2) {
        std::cout << "  Component Grid1=" << NCellOfGrid[2] << '\n';
    }
    if (NGrid >= 3) {
        std::cout << "  Component Grid2=" << NCellOfGrid[3] << '\n';
    }
    std::cout << " Face Number of Physical Wall=" << NPhysicalWall << '\n'
              << " Face Number of Each Overset BC:\n";
    for (int g = 1; g <= NOversetBC; ++g) {
        std::cout << "\tOverset BC" << g << '=' << oversetBCFaceCount[g] << '\n';
    }
    std::cout.flush();
}
