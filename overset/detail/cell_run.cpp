#include "overset/detail/cell_run.h"

#include <algorithm>
#include <cmath>
#include <iostream>

#include "host_link/art_gv.h"
#include "overset/overset_grid_data.h"

namespace kvx3d::detail {
namespace {

/// Starts to load the data of a cell. Cells come in spatial order, which is not that of the memory
/// if they are numbered at random.
inline void Prefetch(const CKVX_ACMT_GV& mesh, int cell) {
#if defined(__GNUC__)
    __builtin_prefetch(mesh.xc + cell);
    __builtin_prefetch(mesh.yc + cell);
    __builtin_prefetch(mesh.zc + cell);
    __builtin_prefetch(mesh.volume + cell);
    // GCC 12 regards a function that only prefetches as one without effect and removes calls to
    // it; the empty assembler statement prevents that.
    asm volatile("");
#else
    static_cast<void>(mesh);
    static_cast<void>(cell);
#endif
}

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

int CellRun::Fill(const std::vector<int>& cells, int first, const CKVX_ACMT_GV& mesh) {
    const int nCells = static_cast<int>(cells.size());
    n = std::min(capacity, nCells - first);
    for (int i = 0; i < n; ++i) {
        const int c = cells[first + i];
        cell[i] = c;
        C[i][0] = mesh.xc[c];
        C[i][1] = mesh.yc[c];
        C[i][2] = mesh.zc[c];
        V[i] = mesh.volume[c];
    }
    const int afterNext = std::min(first + 2 * capacity, nCells);
    for (int i = first + n; i < afterNext; ++i) {
        Prefetch(mesh, cells[i]);
    }
    return first + n;
}

/// Judges the cells first..last - 1 together or, failing that, in halves.
void CellRun::JudgeGroup(NearestFace& faces, int layer, int first, int last) {
    const int together = SideOfGroup(faces, layer, first, last);
    if (together != 0 || last - first == 1) {
        std::fill(side + first, side + last, together);
        return;
    }
    const int half = (first + last) / 2;
    JudgeGroup(faces, layer, first, half);
    JudgeGroup(faces, layer, half, last);
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
