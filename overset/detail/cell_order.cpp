#include "overset/detail/cell_order.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "host_link/art_gv.h"

namespace kvx3d::detail {

Bricks::Bricks(const std::vector<int>& cells, const CKVX_ACMT_GV& mesh) {
    const double* const centers[3] = {mesh.xc, mesh.yc, mesh.zc};
    double length[3];  // of a brick
    for (int axis = 0; axis < 3; ++axis) {
        min[axis] = std::numeric_limits<double>::infinity();
        double max = -min[axis];
        for (int cell : cells) {
            min[axis] = std::min(min[axis], centers[axis][cell]);
            max = std::max(max, centers[axis][cell]);
        }
        length[axis] = max - min[axis];
    }
    const std::size_t most = cells.size() / cellsPerBrick;
    for (std::size_t count = 2; count <= most; count *= 2) {
        const auto axis = std::max_element(length, length + 3) - length;
        n[axis] *= 2;
        length[axis] *= 0.5;
    }
    for (int axis = 0; axis < 3; ++axis) {
        perLength[axis] = 1.0 / length[axis];
    }
}

int Bricks::At(double x, double y, double z) const {
    return Along(0, x) + n[0] * (Along(1, y) + n[1] * Along(2, z));
}

int Bricks::Along(int axis, double at) const {
    const double brick = (at - min[axis]) * perLength[axis];
    if (brick >= n[axis]) {
        return n[axis] - 1;
    }
    return brick > 0.0 ? static_cast<int>(brick) : 0;  // 0 also for NaN
}

void SortByPlace(std::vector<int>& cells, const CKVX_ACMT_GV& mesh) {
    const Bricks bricks(cells, mesh);
    std::vector<int> brickOf(cells.size());
    std::vector<int> start(static_cast<std::size_t>(bricks.Count()) + 1, 0);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const int cell = cells[i];
        brickOf[i] = bricks.At(mesh.xc[cell], mesh.yc[cell], mesh.zc[cell]);
        ++start[static_cast<std::size_t>(brickOf[i]) + 1];
    }
    for (std::size_t brick = 1; brick < start.size(); ++brick) {
        start[brick] += start[brick - 1];
    }
    std::vector<int> sorted(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        sorted[static_cast<std::size_t>(start[static_cast<std::size_t>(brickOf[i])]++)] = cells[i];
    }
    cells = std::move(sorted);
}

}  // namespace kvx3d::detail
