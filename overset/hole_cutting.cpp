#include "overset/hole_cutting.h"

#include <cmath>
#include <iostream>

#include "host_link/art_gv.h"
#include "overset/nearest_face.h"
#include "overset/overset_grid_data.h"

namespace {

constexpr int nonActive = 1;  // cellState

constexpr const char* noGridState = "Warning: Can not get the overset grid state.";
constexpr const char* noGridType = "Warning: Can not get the overset grid type.";

/// Which side of the shifted plane of its nearest face a cell must lie on to be cut.
enum CutSide { Behind = -1, InFront = 1 };

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

/// One pass over the cells of one grid. Warns of cells without a grid, cuts or leaves those whose
/// case is clear from afar, and stops at each of the others with its nearest face.
class CuttingPass {
public:
    CuttingPass(KVX_ART_OVERSET_GRID_DATA& data, const CKVX_ACMT_GV& mesh, NearestFace& judges,
                int layers)
        : gridData(data), geometry(mesh), faces(judges), layer(layers) {}

    /// Goes to the next cell that needs a test of its own; false behind the last.
    bool Next(int wantedGrid, CutSide cutSide, const char* warning) {
        while (++cell <= geometry.Nc) {
            const int grid = gridData.cavityToGrid[gridData.cavityId[cell]];
            if (grid < OversetGrid_Background || grid > OversetGrid_Component2) {
                std::cout << warning << std::endl;
            }
            if (grid != wantedGrid) {
                continue;
            }
            const double C[3] = {geometry.xc[cell], geometry.yc[cell], geometry.zc[cell]};
            h = sizes.Of(geometry.volume[cell]);
            const int side = faces.SideOf(C, layer * h);
            if (side == cutSide) {
                Cut(gridData, cell);
            }
            if (side == 0 && LoadNearest(C)) {
                return true;
            }
        }
        return false;
    }

    int cell = 0;
    double h = 0.0;  ///< size of the cell
    double CP[3];    ///< from the centre of its nearest face to its own
    double S[3];     ///< area vector of that face

private:
    bool LoadNearest(const double* C) {
        const int r = faces.Find(C);
        if (r == 0) {
            return false;
        }
        const double* P = faces.Centre(r);
        for (int axis = 0; axis < 3; ++axis) {
            CP[axis] = C[axis] - P[axis];
            S[axis] = faces.AreaVector(r)[axis];
        }
        return true;
    }

    KVX_ART_OVERSET_GRID_DATA& gridData;
    const CKVX_ACMT_GV& geometry;
    NearestFace& faces;
    const int layer;
    CellSize sizes;
};

/// The background's physical walls, area vectors from `geometry`.
void AddBackgroundWalls(NearestFace& walls, const KVX_ART_OVERSET_GRID_DATA& data,
                        const CKVX_ACMT_GV& geometry) {
    for (int i = 1; i <= data.NBackgroundWall; ++i) {
        const int face = data.backgroundWall[i];
        walls.Add({data.xBackgroundWall[i], data.yBackgroundWall[i], data.zBackgroundWall[i]},
                  {geometry.nxWall[face], geometry.nyWall[face], geometry.nzWall[face]});
    }
}

/// The outer faces of component grid 1; with a fixed vector in place of the area vectors if that
/// is wanted: the centre of the last face.
void AddOuterFaces(NearestFace& faces, const KVX_ART_OVERSET_GRID_DATA& data, bool fixedVector) {
    // A mesh of one grid has no group to read and nothing that overlaps.
    const int n = data.hasOversetGrids ? data.oversetBCFaceCount[1] : 0;
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

/// The caller's overlap points. Before an outside cut each is a face of group 1; after it the
/// first are what remains of the group, the others inner faces on the new boundary.
void AddOverlapPoints(NearestFace& points, const KVX_ART_OVERSET_GRID_DATA& data,
                      const CKVX_ACMT_GV& geometry, bool outsideCellsCut) {
    for (int r = 1; r <= data.NOverlapPoint; ++r) {
        const NearestFace::Vector P = {data.xOverlapPoint[r], data.yOverlapPoint[r],
                                       data.zOverlapPoint[r]};
        if (outsideCellsCut && r > data.NOverlapWallPoint) {
            const int face = data.overlapInnerFace[r - data.NOverlapWallPoint];
            points.Add(P, {geometry.nxe[face], geometry.nye[face], geometry.nze[face]});
        } else {
            const int i = outsideCellsCut ? data.overlapWallIndex[r] : r;
            const int face = data.oversetBCWallFace[1][i];
            points.Add(P, {geometry.nxWall[face], geometry.nyWall[face], geometry.nzWall[face]});
        }
    }
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
    AddBackgroundWalls(walls, *gridData, *gridData);
    CuttingPass pass(*gridData, *gridData, walls, layer);
    // Grid 3 is left alone: a second component may reach through the domain's walls.
    while (pass.Next(OversetGrid_Component1, InFront, noGridState)) {
        // Not divided by the area: both sides carry it, and a division would round differently
        // near the margin.
        if (Innerproduct(pass.CP, pass.S) > -(Norm(pass.S) * layer * pass.h)) {
            Cut(*gridData, pass.cell);
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
    CuttingPass pass(*gridData, *gridData, outerFaces, layer);
    while (pass.Next(OversetGrid_Background, Behind, noGridState)) {
        if (Innerproduct(pass.CP, pass.S) < -(Norm(pass.S) * layer * pass.h)) {
            Cut(*gridData, pass.cell);
        }
    }
    // Includes the cells of the outside cut: the count is that of the mesh, not of the step.
    std::cout << "\t  Non Active Cell Number = " << gridData->NNonActiveCell << std::endl;
}

void CKVX_ART_HoleCutting::CutOutsideDomainComponentCell() {
    NearestFace walls;
    AddBackgroundWalls(walls, *gridData, *artGv);
    CuttingPass pass(*gridData, *artGv, walls, cutGridLayer);
    while (pass.Next(OversetGrid_Component1, InFront, noGridType)) {
        if (Innerproduct(pass.CP, pass.S) > -(Norm(pass.S) * cutGridLayer * pass.h)) {
            Cut(*gridData, pass.cell);
        }
    }
    outsideCellsCut = gridData->NNonActiveCell != 0;
    if (outsideCellsCut) {
        std::cout << "\t<Succeed> Non Active Cell Number = " << gridData->NNonActiveCell
                  << std::endl;
    } else {
        // [sic] the wording is part of the interface and compared as text.
        std::cout << "\tNo Compoenet Cell Ouside Domain." << std::endl;
    }
}

void CKVX_ART_HoleCutting::CutBackgroundCells() {
    NearestFace points;
    AddOverlapPoints(points, *gridData, *artGv, outsideCellsCut);
    CuttingPass pass(*gridData, *artGv, points, cutGridLayer);
    while (pass.Next(OversetGrid_Background, Behind, noGridType)) {
        if (Innerproduct(pass.CP, pass.S) < -(Norm(pass.S) * cutGridLayer * pass.h)) {
            Cut(*gridData, pass.cell);
        }
    }
    std::cout << "\t<Succeed> Non Active Cell Number = " << gridData->NNonActiveCell << std::endl;
}
