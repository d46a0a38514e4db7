#include "overset/hole_cutting.h"

#include <cmath>
#include <iostream>
#include <new>

#include "host_link/art_gv.h"
#include "overset/kd_tree.h"
#include "overset/nearest_face.h"
#include "overset/overset_grid_data.h"

namespace {

constexpr int nonActive = 1;  // cellState

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

/// The cells of one grid, in ascending order, with a warning for each cell without a grid.
class GridCells {
public:
    GridCells(const KVX_ART_OVERSET_GRID_DATA& data, const CKVX_ACMT_GV& mesh, int wantedGrid,
              const char* noGridWarning)
        : gridData(data), geometry(mesh), wanted(wantedGrid), warning(noGridWarning) {}

    /// Goes to the next cell; false behind the last.
    bool Next() {
        while (++cell <= geometry.Nc) {
            const int grid = gridData.cavityToGrid[gridData.cavityId[cell]];
            if (grid == wanted) {
                C[0] = geometry.xc[cell];
                C[1] = geometry.yc[cell];
                C[2] = geometry.zc[cell];
                h = sizes.Of(geometry.volume[cell]);
                return true;
            }
            if (grid < OversetGrid_Background || grid > OversetGrid_Component2) {
                std::cout << warning << std::endl;
            }
        }
        return false;
    }

    int cell = 0;
    double C[3];     ///< centre of the cell
    double h = 0.0;  ///< its size

private:
    const KVX_ART_OVERSET_GRID_DATA& gridData;
    const CKVX_ACMT_GV& geometry;
    const int wanted;
    const char* const warning;
    CellSize sizes;
};

/// What a cell is judged by: the way to its centre from that of its nearest face, and the area
/// vector of that face.
struct Judgement {
    Judgement(const double* C, const double* P, const double* areaVector)
        : CP{C[0] - P[0], C[1] - P[1], C[2] - P[2]},
          S{areaVector[0], areaVector[1], areaVector[2]} {}
    double CP[3];
    double S[3];
};

/// Nearest of the points that a caller linked by hand, for the second pair. Only what belongs to
/// an answer is read of the tables beside the points, so the rest of them may be unset.
class LinkedPoints {
public:
    LinkedPoints(double* x, double* y, double* z, int n) {
        if (n > 0 && !tree.BuildTree(&x[1], &y[1], &z[1], n)) {
            throw std::bad_alloc();
        }
    }
    LinkedPoints(const LinkedPoints&) = delete;
    LinkedPoints& operator=(const LinkedPoints&) = delete;
    ~LinkedPoints() { delete[] found; }

    /// Position of the point nearest to C, from 1; 0 if there is none.
    int Nearest(const double* C) {
        return tree.SearchNearestPoints(C[0], C[1], C[2], found) == 1 ? found[1] : 0;
    }

private:
    KVX_ART_KDtree tree;
    int* found = nullptr;
};

/// The background's physical walls.
void AddBackgroundWalls(NearestFace& walls, const KVX_ART_OVERSET_GRID_DATA& data) {
    for (int i = 1; i <= data.NBackgroundWall; ++i) {
        const int face = data.backgroundWall[i];
        walls.Add({data.xBackgroundWall[i], data.yBackgroundWall[i], data.zBackgroundWall[i]},
                  {data.nxWall[face], data.nyWall[face], data.nzWall[face]});
    }
}

/// The outer faces of component grid 1; with a fixed vector in place of the area vectors if that
/// is wanted: the centre of the last face.
void AddOuterFaces(NearestFace& faces, const KVX_ART_OVERSET_GRID_DATA& data, bool fixedVector) {
    // A mesh of one grid need not have a group to read.
    const bool hasGroup = data.hasOversetGrids || data.NOversetBC > 0;
    const int n = hasGroup ? data.oversetBCFaceCount[1] : 0;
    for (int i = 1; i <= n; ++i) {
        const int face = data.oversetBCWallFace[1][i];
        const int last = data.oversetBCWallFace[1][n];
        const NearestFace::Vector P = {data.xWall[face], data.yWall[face], data.zWall[face]};
        if (fixedVector) {
            faces.Add(P, {data.xWall[last], data.yWall[last], data.zWall[last]});
        } else {
            faces.Add(P, {data.nxWall[face], data.nyWall[face], data.nzWall[face]});
        }
    }
}

/// Area vector that belongs to overlap point r. Before an outside cut the point is a face of
/// group 1; after it the first points are what remains of the group, the others inner faces on the
/// new boundary.
NearestFace::Vector VectorOfOverlapPoint(int r, const KVX_ART_OVERSET_GRID_DATA& data,
                                         const CKVX_ACMT_GV& geometry, bool outsideCellsCut) {
    if (outsideCellsCut && r > data.NOverlapWallPoint) {
        const int face = data.overlapInnerFace[r - data.NOverlapWallPoint];
        return {geometry.nxe[face], geometry.nye[face], geometry.nze[face]};
    }
    const int face = data.oversetBCWallFace[1][outsideCellsCut ? data.overlapWallIndex[r] : r];
    return {geometry.nxWall[face], geometry.nyWall[face], geometry.nzWall[face]};
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
    NearestFace walls;
    AddBackgroundWalls(walls, *gridData);
    // Grid 3 is left alone: a second component may reach through the domain's walls.
    GridCells cells(*gridData, *gridData, OversetGrid_Component1, noGridState);
    while (cells.Next()) {
        const int side = walls.SideOf(cells.C, layer * cells.h);
        const int r = side == 0 ? walls.Find(cells.C) : 0;
        bool isCut = side > 0;
        if (r > 0) {
            Judgement by(cells.C, walls.Centre(r), walls.AreaVector(r));
            // Not divided by the area: both sides carry it, and a division would round differently
            // near the margin.
            isCut = Innerproduct(by.CP, by.S) > -(Norm(by.S) * layer * cells.h);
        }
        if (isCut) {
            Cut(*gridData, cells.cell);
        }
    }
    outsideCellsCut = gridData->NNonActiveCell != 0;
    if (outsideCellsCut) {
        std::cout << "\t  Non Active Cell Number = " << gridData->NNonActiveCell << std::endl;
    } else {
        // [sic] the wording is part of the interface and compared as text.
        std::cout << "\t  No Compoenet Cell Ouside Domain." << std::endl;
    }
}

void CKVX_ART_HoleCutting::OverlapRegionCutting(int layer) {
    gridData->NOverlapWallPoint = 0;
    NearestFace outerFaces;
    // After an outside cut no area vector is used: every cell is judged with the centre of the
    // group's last face. Which background cells remain, and with them the donors, depends on that
    // vector; the area vectors would move the hole.
    AddOuterFaces(outerFaces, *gridData, outsideCellsCut);
    GridCells cells(*gridData, *gridData, OversetGrid_Background, noGridState);
    while (cells.Next()) {
        const int side = outerFaces.SideOf(cells.C, layer * cells.h);
        const int r = side == 0 ? outerFaces.Find(cells.C) : 0;
        bool isCut = side < 0;
        if (r > 0) {
            Judgement by(cells.C, outerFaces.Centre(r), outerFaces.AreaVector(r));
            isCut = Innerproduct(by.CP, by.S) < -(Norm(by.S) * layer * cells.h);
        }
        if (isCut) {
            Cut(*gridData, cells.cell);
        }
    }
    // Includes the cells of the outside cut: the count is that of the mesh, not of the step.
    std::cout << "\t  Non Active Cell Number = " << gridData->NNonActiveCell << std::endl;
}

void CKVX_ART_HoleCutting::CutOutsideDomainComponentCell() {
    const KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    LinkedPoints walls(data.xBackgroundWall, data.yBackgroundWall, data.zBackgroundWall,
                       data.NBackgroundWall);
    GridCells cells(data, *artGv, OversetGrid_Component1, noGridType);
    while (cells.Next()) {
        const int r = walls.Nearest(cells.C);
        if (r == 0) {
            continue;
        }
        const int face = data.backgroundWall[r];
        const double P[3] = {data.xBackgroundWall[r], data.yBackgroundWall[r],
                             data.zBackgroundWall[r]};
        const double S[3] = {artGv->nxWall[face], artGv->nyWall[face], artGv->nzWall[face]};
        Judgement by(cells.C, P, S);
        if (Innerproduct(by.CP, by.S) > -(Norm(by.S) * cutGridLayer * cells.h)) {
            Cut(*gridData, cells.cell);
        }
    }
    outsideCellsCut = data.NNonActiveCell != 0;
    if (outsideCellsCut) {
        std::cout << "\t<Succeed> Non Active Cell Number = " << data.NNonActiveCell << std::endl;
    } else {
        // [sic] the wording is part of the interface and compared as text.
        std::cout << "\tNo Compoenet Cell Ouside Domain." << std::endl;
    }
}

void CKVX_ART_HoleCutting::CutBackgroundCells() {
    const KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    LinkedPoints points(data.xOverlapPoint, data.yOverlapPoint, data.zOverlapPoint,
                        data.NOverlapPoint);
    GridCells cells(data, *artGv, OversetGrid_Background, noGridType);
    while (cells.Next()) {
        const int r = points.Nearest(cells.C);
        if (r == 0) {
            continue;
        }
        const double P[3] = {data.xOverlapPoint[r], data.yOverlapPoint[r], data.zOverlapPoint[r]};
        const NearestFace::Vector S = VectorOfOverlapPoint(r, data, *artGv, outsideCellsCut);
        Judgement by(cells.C, P, S.data());
        if (Innerproduct(by.CP, by.S) < -(Norm(by.S) * cutGridLayer * cells.h)) {
            Cut(*gridData, cells.cell);
        }
    }
    std::cout << "\t<Succeed> Non Active Cell Number = " << data.NNonActiveCell << std::endl;
}
