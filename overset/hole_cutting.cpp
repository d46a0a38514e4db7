#include "overset/hole_cutting.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <new>
#include <vector>

#include "host_link/art_gv.h"
#include "host_link/detail/classic_format.h"
#include "overset/detail/cell_order.h"
#include "overset/detail/cell_run.h"
#include "overset/detail/nearest_face.h"
#include "overset/kd_tree.h"
#include "overset/overset_grid_data.h"

// The four cuts differ in the cells they look at, in the faces that judge those cells, and in the
// side that is cut; IsCut() is the one rule of all of them. The cuts of the set-up judge cells in
// runs, because most cells lie far from every face. Each cell is decided alone, so they may take
// the cells in any order. The cuts on hand-linked data judge one by one.
//
// Readable transcription: CutOutside() and CutOverlap() in plain/plain_overset.h.

namespace {

using namespace kvx3d::detail;

constexpr int nonActive = 1;  // value of cellState

constexpr const char* noGridState = "Warning: Can not get the overset grid state.";
constexpr const char* noGridType = "Warning: Can not get the overset grid type.";

/// Which sign of (C - P) . S + |S| layer h marks a cell to be cut.
enum CutSide { CutBehind = -1, CutInFront = 1 };

/// One cutting pass over the cells of a grid.
struct CuttingPass {
    KVX_ART_OVERSET_GRID_DATA& data;  ///< cell states and their count, written
    const CKVX_ACMT_GV& geometry;     ///< cell centers and volumes
    int grid;                         ///< whose cells are judged
    CutSide cutSide;
    int layer;  ///< margin [cell sizes]
    const char* noGridWarning;
};

/// Scalar product, summed from left to right.
double Dot(const double* a, const double* b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// The rule: compares (C - P) . S, the distance of the cell center C from the plane of the face
/// times the area, with the margin |S| layer h on the inner side of that plane.
/// @param h  cell size
/// @param P  face center
/// @param S  area vector
bool IsCut(const CuttingPass& pass, const double* C, double h, const double* P, const double* S) {
    const double CP[3] = {C[0] - P[0], C[1] - P[1], C[2] - P[2]};
    const double measure = Dot(CP, S);
    const double margin = std::sqrt(Dot(S, S)) * pass.layer * h;
    // Not divided by |S|: both sides carry it, and a division would round differently near the
    // margin. A cell exactly on the margin stays in either case.
    return pass.cutSide == CutInFront ? measure > -margin : measure < -margin;
}

void Cut(KVX_ART_OVERSET_GRID_DATA& data, int cell) {
    ++data.NNonActiveCell;
    data.cellState[cell] = nonActive;
}

/// The cells that a pass judges, in an order in which consecutive cells are close to each other.
std::vector<int> CellsInSpatialOrder(const CuttingPass& pass) {
    std::vector<int> cells;
    cells.reserve(static_cast<std::size_t>(std::max(pass.geometry.Nc, 0)));
    GridCells next(pass.data, pass.geometry, pass.grid, pass.noGridWarning);
    while (next.Next()) {
        cells.push_back(next.cell);
    }
    SortByPlace(cells, pass.geometry);
    return cells;
}

/// Cuts cells by their nearest faces, a run of cells at a time. Without faces nothing is cut.
void CutInRuns(const CuttingPass& pass, NearestFace& faces) {
    const std::vector<int> cells = CellsInSpatialOrder(pass);
    const int nCells = static_cast<int>(cells.size());
    CellRun run;
    for (int at = 0; at < nCells;) {
        at = run.Fill(cells, at, pass.geometry);
        run.Judge(faces, pass.layer);
        for (int i = 0; i < run.n; ++i) {
            bool isCut = run.side[i] == pass.cutSide;
            if (run.side[i] == 0) {
                const int r = faces.Find(run.C[i]);
                isCut = r > 0 &&
                        IsCut(pass, run.C[i], run.SizeOf(i), faces.Center(r), faces.AreaVector(r));
            }
            if (isCut) {
                Cut(pass.data, run.cell[i]);
            }
        }
    }
}

/// Points that a caller linked by hand, for the second pair of cuts.
class LinkedPoints {
public:
    /// @param px,py,pz  coordinates 1..n, used until the object is destroyed
    LinkedPoints(double* px, double* py, double* pz, int n) : x(px), y(py), z(pz) {
        if (n > 0 && !tree.BuildTree(&px[1], &py[1], &pz[1], n)) {
            throw std::bad_alloc();
        }
    }
    LinkedPoints(const LinkedPoints&) = delete;
    LinkedPoints& operator=(const LinkedPoints&) = delete;
    ~LinkedPoints() { delete[] found; }

    /// Number of the point nearest to C, from 1; 0 if there is no point.
    int Nearest(const double* C) {
        return tree.SearchNearestPoints(C[0], C[1], C[2], found) == 1 ? found[1] : 0;
    }

    NearestFace::Vector At(int r) const { return {x[r], y[r], z[r]}; }

private:
    const double* const x;
    const double* const y;
    const double* const z;
    KVX_ART_KDtree tree;
    int* found = nullptr;
};

/// Cuts cells by their nearest points, one cell at a time. Without points nothing is cut.
/// @param areaVectorOf  gives the area vector for a point number. It is called for the answers
///                      only: the tables beside the other points may be unset.
template <typename AreaVectorOf>
void CutOneByOne(const CuttingPass& pass, LinkedPoints& points, AreaVectorOf areaVectorOf) {
    GridCells cells(pass.data, pass.geometry, pass.grid, pass.noGridWarning);
    CellSize sizes;
    while (cells.Next()) {
        const int r = points.Nearest(cells.C);
        if (r == 0) {
            continue;
        }
        const NearestFace::Vector P = points.At(r);
        const NearestFace::Vector S = areaVectorOf(r);
        if (IsCut(pass, cells.C, sizes.Of(cells.V), P.data(), S.data())) {
            Cut(pass.data, cells.cell);
        }
    }
}

NearestFace::Vector WallVector(const CKVX_ACMT_GV& geometry, int face) {
    return {geometry.nxWall[face], geometry.nyWall[face], geometry.nzWall[face]};
}

/// Adds the background's physical walls.
void AddBackgroundWalls(NearestFace& walls, const KVX_ART_OVERSET_GRID_DATA& data) {
    for (int i = 1; i <= data.NBackgroundWall; ++i) {
        walls.Add({data.xBackgroundWall[i], data.yBackgroundWall[i], data.zBackgroundWall[i]},
                  WallVector(data, data.backgroundWall[i]));
    }
}

/// Adds the outer faces of component grid 1.
/// @param fixedVector  take the center of the last face in place of every area vector
void AddOuterFaces(NearestFace& faces, const KVX_ART_OVERSET_GRID_DATA& data, bool fixedVector) {
    // A mesh with one grid need not have a first group.
    const bool hasGroup = data.hasOversetGrids || data.NOversetBC > 0;
    const int n = hasGroup ? data.oversetBCFaceCount[1] : 0;
    const auto centerOf = [&data](int i) -> NearestFace::Vector {
        const int face = data.oversetBCWallFace[1][i];
        return {data.xWall[face], data.yWall[face], data.zWall[face]};
    };
    for (int i = 1; i <= n; ++i) {
        faces.Add(centerOf(i),
                  fixedVector ? centerOf(n) : WallVector(data, data.oversetBCWallFace[1][i]));
    }
}

/// Area vector of overlap point r. Before an outside cut, point r is face r of group 1. After one,
/// the first points are the remaining faces of the group, the others inner faces on the new
/// boundary.
NearestFace::Vector VectorOfOverlapPoint(int r, const KVX_ART_OVERSET_GRID_DATA& data,
                                         const CKVX_ACMT_GV& geometry, bool outsideCellsCut) {
    if (outsideCellsCut && r > data.NOverlapWallPoint) {
        const int face = data.overlapInnerFace[r - data.NOverlapWallPoint];
        return {geometry.nxe[face], geometry.nye[face], geometry.nze[face]};
    }
    const int i = outsideCellsCut ? data.overlapWallIndex[r] : r;
    return WallVector(geometry, data.oversetBCWallFace[1][i]);
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
    return Dot(a, b);
}

double CKVX_ART_HoleCutting::Norm(double* const a) {
    return std::sqrt(Dot(a, a));
}

void CKVX_ART_HoleCutting::OutsideDomainCutting(int layer) {
    NearestFace walls;
    AddBackgroundWalls(walls, *gridData);
    // Cells of grid 3 are not judged: a second component may reach through the domain's walls.
    CutInRuns({*gridData, *gridData, OversetGrid_Component1, CutInFront, layer, noGridState},
              walls);
    outsideCellsCut = gridData->NNonActiveCell != 0;
    if (outsideCellsCut) {
        const ClassicFormat format(std::cout);
        std::cout << "\t  Non Active Cell Number = " << gridData->NNonActiveCell << std::endl;
    } else {
        // [sic] the wording is part of the interface and compared as text.
        std::cout << "\t  No Compoenet Cell Ouside Domain." << std::endl;
    }
}

void CKVX_ART_HoleCutting::OverlapRegionCutting(int layer) {
    gridData->NOverlapWallPoint = 0;
    NearestFace outerFaces;
    // After an outside cut no area vector is used: every cell is judged with the center of the
    // group's last face. Which background cells remain, and with them the donors, depends on that
    // vector; the area vectors would move the hole.
    AddOuterFaces(outerFaces, *gridData, outsideCellsCut);
    CutInRuns({*gridData, *gridData, OversetGrid_Background, CutBehind, layer, noGridState},
              outerFaces);
    // Includes the cells of the outside cut: the count is that of the mesh, not of this step.
    const ClassicFormat format(std::cout);
    std::cout << "\t  Non Active Cell Number = " << gridData->NNonActiveCell << std::endl;
}

void CKVX_ART_HoleCutting::CutOutsideDomainComponentCell() {
    KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    LinkedPoints walls(data.xBackgroundWall, data.yBackgroundWall, data.zBackgroundWall,
                       data.NBackgroundWall);
    CutOneByOne({data, *artGv, OversetGrid_Component1, CutInFront, cutGridLayer, noGridType}, walls,
                [this](int r) { return WallVector(*artGv, gridData->backgroundWall[r]); });
    outsideCellsCut = data.NNonActiveCell != 0;
    if (outsideCellsCut) {
        const ClassicFormat format(std::cout);
        std::cout << "\t<Succeed> Non Active Cell Number = " << data.NNonActiveCell << std::endl;
    } else {
        // [sic] the wording is part of the interface and compared as text.
        std::cout << "\tNo Compoenet Cell Ouside Domain." << std::endl;
    }
}

void CKVX_ART_HoleCutting::CutBackgroundCells() {
    KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    LinkedPoints points(data.xOverlapPoint, data.yOverlapPoint, data.zOverlapPoint,
                        data.NOverlapPoint);
    CutOneByOne(
        {data, *artGv, OversetGrid_Background, CutBehind, cutGridLayer, noGridType}, points,
        [this](int r) { return VectorOfOverlapPoint(r, *gridData, *artGv, outsideCellsCut); });
    const ClassicFormat format(std::cout);
    std::cout << "\t<Succeed> Non Active Cell Number = " << data.NNonActiveCell << std::endl;
}
