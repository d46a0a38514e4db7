#include "overset/detail/cell_run.h"

#include <algorithm>
#include <cmath>
#include <iostream>

#include "host_link/art_gv.h"
#include "overset/overset_grid_data.h"

namespace kvx3d::detail {
namespace {

constexpr int parts = 4;     // a group without a common verdict is judged in four parts
constexpr int patience = 4;  // runs judged cell by cell after one that shared no verdict: the cells
                             // may be numbered at random

}  // namespace

double CellSize::Of(double V) {
    if (V != volume) {
        volume = V;
        size = std::pow(V, 0.3333333333333333);
    }
    return size;
}

GridCells::GridCells(const KVX_ART_OVERSET_GRID_DATA& data, const CKVX_ACMT_GV& mesh,
                     int wantedGrid, const char* noGridWarning)
    : gridData(data), geometry(mesh), wanted(wantedGrid), warning(noGridWarning) {}

bool GridCells::Next() {
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

bool CellRun::Fill(GridCells& cells) {
    n = 0;
    while (n < capacity && cells.Next()) {
        cell[n] = cells.cell;
        std::copy(cells.C, cells.C + 3, C[n]);
        V[n] = cells.V;
        ++n;
    }
    return n > 0;
}

void CellRun::Judge(NearestFace& faces, int layer) {
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

/// Judges the cells first..last - 1 together or, failing that, in parts.
void CellRun::JudgeGroup(NearestFace& faces, int layer, int first, int last) {
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

/// The common side of the cells first..last - 1, or 0.
int CellRun::SideOfGroup(NearestFace& faces, int layer, int first, int last) {
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
    // A NaN coordinate may be missing from the bounds, but it always shows in the sum.
    return std::isfinite(sum) ? faces.SideOf(group) : 0;
}

}  // namespace kvx3d::detail
