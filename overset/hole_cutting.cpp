#include "overset/hole_cutting.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <new>

#include "host_link/art_gv.h"
#include "host_link/detail/classic_format.h"
#include "overset/detail/nearest_face.h"
#include "overset/kd_tree.h"
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
                V = geometry.volume[cell];
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
    double V = 0.0;  ///< its volume

private:
    const KVX_ART_OVERSET_GRID_DATA& gridData;
    const CKVX_ACMT_GV& geometry;
    const int wanted;
    const char* const warning;
};

/// Up to 8 cells of one grid that follow each other. Neighbours in the mesh, they are judged
/// together as far as possible: a verdict on all of them costs hardly more than one on a single
/// cell.
class CellRun {
public:
    /// Takes the next cells; false if there is none.
    bool Fill(GridCells& cells) {
        n = 0;
        while (n < capacity && cells.Next()) {
            cell[n] = cells.cell;
            std::copy(cells.C, cells.C + 3, C[n]);
            V[n] = cells.V;
            ++n;
        }
        return n > 0;
    }

    /// Sets `side` of each cell to NearestFace::SideOf(), with a depth of `layer` cell sizes.
    void Judge(NearestFace& faces, int layer) {
        if (runsApart > 0) {
            --runsApart;
            for (int i = 0; i < n; ++i) {
                side[i] = SideOfGroup(faces, layer, i, i + 1);
            }
            return;
        }
        nTogether = 0;
        JudgeGroup(faces, layer, 0, n);
        if (nTogether == 0) {
            runsApart = patience;
        }
    }

    double SizeOf(int i) { return sizes.Of(V[i]); }

    static constexpr int capacity = 8;
    static constexpr int parts = 4;     // a group without a common verdict is judged by parts
    static constexpr int patience = 4;  // runs; cells numbered at random never share a verdict

    int n = 0;
    int cell[capacity];
    double C[capacity][3];
    double V[capacity];
    int side[capacity];  ///< 0 where only the nearest face itself can tell

private:
    void JudgeGroup(NearestFace& faces, int layer, int first, int last) {
        const int together = SideOfGroup(faces, layer, first, last);
        if (together != 0 || last - first == 1) {
            std::fill(side + first, side + last, together);
            nTogether += last - first > 1 ? last - first : 0;
            return;
        }
        const int part = (last - first + parts - 1) / parts;
        for (int at = first; at < last; at += part) {
            JudgeGroup(faces, layer, at, std::min(at + part, last));
        }
    }

    int SideOfGroup(NearestFace& faces, int layer, int first, int last) {
        NearestFace::Cells group;
        std::copy(C[first], C[first] + 3, group.min);
        std::copy(C[first], C[first] + 3, group.max);
        double minV = V[first];
        double maxV = V[first];
        double sum = 0.0;
        for (int i = first; i < last; ++i) {
            for (int axis = 0; axis < 3; ++axis) {
                group.min[axis] = std::min(group.min[axis], C[i][axis]);
                group.max[axis] = std::max(group.max[axis], C[i][axis]);
                sum += C[i][axis];
            }
            minV = std::min(minV, V[i]);
            maxV = std::max(maxV, V[i]);
            sum += V[i];
        }
        group.minDepth = layer * sizes.Of(minV);
        group.maxDepth = layer * sizes.Of(maxV);
        // Bounds lose what is no number, sums do not.
        return std::isfinite(sum) ? faces.SideOf(group) : 0;
    }

    CellSize sizes;
    int nTogether = 0;  ///< cells of the run that shared a verdict
    int runsApart = 0;  ///< runs to come whose cells are judged one by one
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
    CellRun run;
    while (run.Fill(cells)) {
        run.Judge(walls, layer);
        for (int i = 0; i < run.n; ++i) {
            bool isCut = run.side[i] > 0;
            const int r = run.side[i] == 0 ? walls.Find(run.C[i]) : 0;
            if (r > 0) {
                Judgement by(run.C[i], walls.Centre(r), walls.AreaVector(r));
                // Not divided by the area: both sides carry it, and a division would round
                // differently near the margin.
                isCut = Innerproduct(by.CP, by.S) > -(Norm(by.S) * layer * run.SizeOf(i));
            }
            if (isCut) {
                Cut(*gridData, run.cell[i]);
            }
        }
    }
    outsideCellsCut = gridData->NNonActiveCell != 0;
    if (outsideCellsCut) {
        const kvx3d::detail::ClassicFormat format(std::cout);
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
    CellRun run;
    while (run.Fill(cells)) {
        run.Judge(outerFaces, layer);
        for (int i = 0; i < run.n; ++i) {
            bool isCut = run.side[i] < 0;
            const int r = run.side[i] == 0 ? outerFaces.Find(run.C[i]) : 0;
            if (r > 0) {
                Judgement by(run.C[i], outerFaces.Centre(r), outerFaces.AreaVector(r));
                isCut = Innerproduct(by.CP, by.S) < -(Norm(by.S) * layer * run.SizeOf(i));
            }
            if (isCut) {
                Cut(*gridData, run.cell[i]);
            }
        }
    }
    // Includes the cells of the outside cut: the count is that of the mesh, not of the step.
    const kvx3d::detail::ClassicFormat format(std::cout);
    std::cout << "\t  Non Active Cell Number = " << gridData->NNonActiveCell << std::endl;
}

void CKVX_ART_HoleCutting::CutOutsideDomainComponentCell() {
    const KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    LinkedPoints walls(data.xBackgroundWall, data.yBackgroundWall, data.zBackgroundWall,
                       data.NBackgroundWall);
    GridCells cells(data, *artGv, OversetGrid_Component1, noGridType);
    CellSize sizes;
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
        if (Innerproduct(by.CP, by.S) > -(Norm(by.S) * cutGridLayer * sizes.Of(cells.V))) {
            Cut(*gridData, cells.cell);
        }
    }
    outsideCellsCut = data.NNonActiveCell != 0;
    if (outsideCellsCut) {
        const kvx3d::detail::ClassicFormat format(std::cout);
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
    CellSize sizes;
    while (cells.Next()) {
        const int r = points.Nearest(cells.C);
        if (r == 0) {
            continue;
        }
        const double P[3] = {data.xOverlapPoint[r], data.yOverlapPoint[r], data.zOverlapPoint[r]};
        const NearestFace::Vector S = VectorOfOverlapPoint(r, data, *artGv, outsideCellsCut);
        Judgement by(cells.C, P, S.data());
        if (Innerproduct(by.CP, by.S) < -(Norm(by.S) * cutGridLayer * sizes.Of(cells.V))) {
            Cut(*gridData, cells.cell);
        }
    }
    const kvx3d::detail::ClassicFormat format(std::cout);
    std::cout << "\t<Succeed> Non Active Cell Number = " << data.NNonActiveCell << std::endl;
}
