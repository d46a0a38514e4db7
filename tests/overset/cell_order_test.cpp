#include "overset/detail/cell_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "overset/overset_grid_data.h"
#include "plain/samples/cylinder_host.h"
#include "tests/support/output_capture.h"

namespace {

using kvx3d::detail::Bricks;
using kvx3d::detail::SortByPlace;

/// A mesh with cells numbered at random, and the list of its cells.
struct ScatteredCells {
    ScatteredCells() : host(6) {
        host.NumberCellsAtRandom(5);
        mesh.getKvx3dGV(&host.gv, &host.fvm);
        mesh.getKvx3dData();
        for (int cell = 1; cell <= mesh.Nc; ++cell) {
            cells.push_back(cell);
        }
    }

    /// Mean distance between the centers of consecutive cells.
    double MeanStep() const {
        double sum = 0.0;
        for (std::size_t i = 1; i < cells.size(); ++i) {
            const int a = cells[i - 1];
            const int b = cells[i];
            sum += std::hypot(mesh.xc[a] - mesh.xc[b], mesh.yc[a] - mesh.yc[b],
                              mesh.zc[a] - mesh.zc[b]);
        }
        return sum / static_cast<double>(cells.size() - 1);
    }

    CylinderHost host;
    CKVX_ACMT_GV mesh;
    std::vector<int> cells;
};

TEST(CellsSortedByPlace, AreNeighborsInSpaceWhateverTheirNumbersAre) {
    ScatteredCells scattered;
    ASSERT_GT(scattered.MeanStep(), 3.0);

    SortByPlace(scattered.cells, scattered.mesh);

    EXPECT_LT(scattered.MeanStep(), 0.4);  // the cell size is 0.17
}

TEST(CellsSortedByPlace, OccurOnceEach) {
    ScatteredCells scattered;
    std::vector<int> before = scattered.cells;

    SortByPlace(scattered.cells, scattered.mesh);

    EXPECT_NE(scattered.cells, before);
    std::sort(scattered.cells.begin(), scattered.cells.end());
    EXPECT_EQ(scattered.cells, before);
}

TEST(CellsSortedByPlace, MayHaveCentersThatAreNotFinite) {
    ScatteredCells scattered;
    scattered.mesh.xc[3] = std::nan("");
    scattered.mesh.yc[4] = std::numeric_limits<double>::infinity();
    scattered.mesh.zc[5] = -std::numeric_limits<double>::infinity();
    std::vector<int> before = scattered.cells;

    SortByPlace(scattered.cells, scattered.mesh);

    std::sort(scattered.cells.begin(), scattered.cells.end());
    EXPECT_EQ(scattered.cells, before);
}

TEST(CellsSortedByPlace, MayBeNone) {
    ScatteredCells scattered;
    scattered.cells.clear();

    SortByPlace(scattered.cells, scattered.mesh);

    EXPECT_TRUE(scattered.cells.empty());
}

TEST(BricksOverCells, HoldEveryPointInsideAndOutside) {
    const ScatteredCells scattered;
    const Bricks bricks(scattered.cells, scattered.mesh);

    EXPECT_GT(bricks.Count(), scattered.mesh.Nc / 16);
    for (double x : {-1e300, -4.0, 0.1, 8.0, 1e300, std::nan("")}) {
        const int brick = bricks.At(x, 0.1, 0.1);
        EXPECT_GE(brick, 0) << x;
        EXPECT_LT(brick, bricks.Count()) << x;
    }
}

}  // namespace
