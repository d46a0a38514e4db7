#include "overset/hole_cutting.h"

#include <cmath>
#include <iostream>

#include "host_link/art_gv.h"
#include "overset/nearest_face.h"
#include "overset/overset_grid_data.h"

namespace {

constexpr int nonActive = 1;  // cellState

/// The cells of one grid in ascending order; the walk warns of cells without a grid on its way.
class GridCells {
public:
    GridCells(const KVX_ART_OVERSET_GRID_DATA& data, int cells, int wantedGrid, const char* text)
        : gridData(data), Nc(cells), wanted(wantedGrid), warning(text) {}

    /// The next cell, or 0 behind the last.
    int Next() {
        while (++cell <= Nc) {
            const int grid = gridData.cavityToGrid[gridData.cavityId[cell]];
            if (grid == wanted) {
                return cell;
            }
            if (grid < OversetGrid_Background || grid > OversetGrid_Component2) {
                std::cout << warning << std::endl;
            }
        }
        return 0;
    }

private:
    const KVX_ART_OVERSET_GRID_DATA& gridData;
    const int Nc;
    const int wanted;
    const char* const warning;
    int cell = 0;
};

constexpr const char* noGridState = "Warning: Can not get the overset grid state.";
constexpr const char* noGridType = "Warning: Can not get the overset grid type.";

/// Edge length of a cell from its volume. Neighbouring cells of a mesh often have the same volume,
/// and the power costs more than the rest of the test.
class CellSize {
public:
    double Of(double V) {
        if (V != volume) {
            volume = V;
            size = std::pow(V, 0.3333333333333333);
        }
        return size;
    }

private:
    double volume = 1.0;
    double size = 1.0;
};

void Cut(KVX_ART_OVERSET_GRID_DATA& gridData, int cell) {
    ++gridData.NNonActiveCell;
    gridData.cellState[cell] = nonActive;
}

void Load(double* v, double x, double y, double z) {
    v[0] = x;
    v[1] = y;
    v[2] = z;
}

}  // namespace

CKVX_ART_HoleCutting::CKVX_ART_HoleCutting() : outsideCellsCut(false) {}

CKVX_ART_HoleCutting::~CKVX_ART_HoleCutting() = default;

bool CKVX_ART_HoleCutting::LinkARTGv(CKVX_ACMT_GV* gv) {
    if (!gv) {
        std::cout << "WARNING: Can not get the object of ART global variables!" << std::endl;
        return false;
    }
    artGv = gv;
    return true;
}

bool CKVX_ART_HoleCutting::LinkOversetGridData(KVX_ART_OVERSET_GRID_DATA* data) {
    if (!data) {
        std::cout << "WARNING: Can not get the object of Overset Grid Data." << std::endl;
        return false;
    }
    gridData = data;
    return true;
}

void CKVX_ART_HoleCutting::SetCutGridLayer(int layer) {
    cutGridLayer = layer;
}

double CKVX_ART_HoleCutting::Innerproduct(double* const a, double* const b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double CKVX_ART_HoleCutting::Norm(double* const a) {
    return std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
}

void CKVX_ART_HoleCutting::OutsideDomainCutting(int layer) {
    KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    NearestFace walls;
    for (int r = 1; r <= data.NBackgroundWall; ++r) {
        walls.Add(data.xBackgroundWall[r], data.yBackgroundWall[r], data.zBackgroundWall[r]);
    }
    CellSize h;
    // Grid 3 is left alone: a second component may reach through the domain's walls.
    GridCells cells(data, data.Nc, OversetGrid_Component1, noGridState);
    while (const int c = cells.Next()) {
        const double C[3] = {data.xc[c], data.yc[c], data.zc[c]};
        const int r = walls.Find(C);
        if (r == 0) {
            continue;
        }
        const int face = data.backgroundWall[r];
        double S[3] = {data.nxWall[face], data.nyWall[face], data.nzWall[face]};
        double CP[3] = {C[0] - data.xBackgroundWall[r], C[1] - data.yBackgroundWall[r],
                        C[2] - data.zBackgroundWall[r]};
        // Not divided by the area: both sides carry it, and a division would round differently
        // near the margin.
        if (Innerproduct(CP, S) > -(Norm(S) * layer * h.Of(data.volume[c]))) {
            Cut(data, c);
        }
    }
    if (data.NNonActiveCell == 0) {
        // [sic] the wording is part of the interface and compared as text.
        std::cout << "\t  No Compoenet Cell Ouside Domain." << std::endl;
    } else {
        std::cout << "\t  Non Active Cell Number = " << data.NNonActiveCell << std::endl;
    }
    outsideCellsCut = data.NNonActiveCell != 0;
}

void CKVX_ART_HoleCutting::OverlapRegionCutting(int layer) {
    KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    NearestFace outerFaces;
    double S[3] = {0.0, 0.0, 0.0};
    data.NOverlapWallPoint = 0;
    // A mesh of one grid has no group to read and nothing that overlaps.
    const int nFaces = data.hasOversetGrids ? data.oversetBCFaceCount[1] : 0;
    for (int i = 1; i <= nFaces; ++i) {
        const int face = data.oversetBCWallFace[1][i];
        Load(S, data.xWall[face], data.yWall[face], data.zWall[face]);
        outerFaces.Add(S[0], S[1], S[2]);
    }
    CellSize h;
    GridCells cells(data, data.Nc, OversetGrid_Background, noGridState);
    while (const int c = cells.Next()) {
        const double C[3] = {data.xc[c], data.yc[c], data.zc[c]};
        const int r = outerFaces.Find(C);
        if (r == 0) {
            continue;
        }
        const int face = data.oversetBCWallFace[1][r];
        double CP[3] = {C[0] - data.xWall[face], C[1] - data.yWall[face], C[2] - data.zWall[face]};
        // After an outside cut no area vector is loaded: S stays the centre of the last face of
        // the group, for every cell of the pass. Which background cells remain, and with them the
        // donors, depends on that vector; loading S here would move the hole.
        if (!outsideCellsCut) {
            Load(S, data.nxWall[face], data.nyWall[face], data.nzWall[face]);
        }
        if (Innerproduct(CP, S) < -(Norm(S) * layer * h.Of(data.volume[c]))) {
            Cut(data, c);
        }
    }
    // Includes the cells of the outside cut: the count is that of the mesh, not of the step.
    std::cout << "\t  Non Active Cell Number = " << data.NNonActiveCell << std::endl;
}

void CKVX_ART_HoleCutting::CutOutsideDomainComponentCell() {
    KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    NearestFace walls;
    for (int r = 1; r <= data.NBackgroundWall; ++r) {
        walls.Add(data.xBackgroundWall[r], data.yBackgroundWall[r], data.zBackgroundWall[r]);
    }
    CellSize h;
    GridCells cells(data, artGv->Nc, OversetGrid_Component1, noGridType);
    while (const int c = cells.Next()) {
        const double C[3] = {artGv->xc[c], artGv->yc[c], artGv->zc[c]};
        const int r = walls.Find(C);
        if (r == 0) {
            continue;
        }
        const int face = data.backgroundWall[r];
        double S[3] = {artGv->nxWall[face], artGv->nyWall[face], artGv->nzWall[face]};
        double CP[3] = {C[0] - data.xBackgroundWall[r], C[1] - data.yBackgroundWall[r],
                        C[2] - data.zBackgroundWall[r]};
        if (Innerproduct(CP, S) > -(Norm(S) * cutGridLayer * h.Of(artGv->volume[c]))) {
            Cut(data, c);
        }
    }
    if (data.NNonActiveCell == 0) {
        // [sic] the wording is part of the interface and compared as text.
        std::cout << "\tNo Compoenet Cell Ouside Domain." << std::endl;
    } else {
        std::cout << "\t<Succeed> Non Active Cell Number = " << data.NNonActiveCell << std::endl;
    }
    outsideCellsCut = data.NNonActiveCell != 0;
}

void CKVX_ART_HoleCutting::CutBackgroundCells() {
    KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    NearestFace points;
    for (int r = 1; r <= data.NOverlapPoint; ++r) {
        points.Add(data.xOverlapPoint[r], data.yOverlapPoint[r], data.zOverlapPoint[r]);
    }
    CellSize h;
    GridCells cells(data, artGv->Nc, OversetGrid_Background, noGridType);
    while (const int c = cells.Next()) {
        const double C[3] = {artGv->xc[c], artGv->yc[c], artGv->zc[c]};
        const int r = points.Find(C);
        if (r == 0) {
            continue;
        }
        double S[3];
        if (outsideCellsCut && r > data.NOverlapWallPoint) {
            const int face = data.overlapInnerFace[r - data.NOverlapWallPoint];
            Load(S, artGv->nxe[face], artGv->nye[face], artGv->nze[face]);
        } else {
            const int i = outsideCellsCut ? data.overlapWallIndex[r] : r;
            const int face = data.oversetBCWallFace[1][i];
            Load(S, artGv->nxWall[face], artGv->nyWall[face], artGv->nzWall[face]);
        }
        double CP[3] = {C[0] - data.xOverlapPoint[r], C[1] - data.yOverlapPoint[r],
                        C[2] - data.zOverlapPoint[r]};
        if (Innerproduct(CP, S) < -(Norm(S) * cutGridLayer * h.Of(artGv->volume[c]))) {
            Cut(data, c);
        }
    }
    std::cout << "\t<Succeed> Non Active Cell Number = " << data.NNonActiveCell << std::endl;
}
