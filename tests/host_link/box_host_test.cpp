#include "tests/support/box_host.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <vector>

namespace {

/// Adds sign * area to the sum of a cell.
void AddTo(std::vector<BoxHost::Point>& sums, int cell, const double* nx, const double* ny,
           const double* nz, int face, double sign) {
    BoxHost::Point& sum = sums.at(static_cast<std::size_t>(cell));
    sum[0] += sign * nx[face];
    sum[1] += sign * ny[face];
    sum[2] += sign * nz[face];
}

/// Sum of the outward area vectors of each cell, 1-based.
std::vector<BoxHost::Point> SurfaceSums(const BoxHost& host) {
    const CKVX3DFiniteVolumeMesh& m = host.fvm;
    std::vector<BoxHost::Point> sums(static_cast<std::size_t>(m.Nc) + 1, {0, 0, 0});
    for (int f = 1; f <= m.Ne; ++f) {
        AddTo(sums, m.Ce23[0][f], m.nxe, m.nye, m.nze, f, 1);
        AddTo(sums, m.Ce23[1][f], m.nxe, m.nye, m.nze, f, -1);
    }
    for (int f = 1; f <= m.NInlet; ++f) {
        AddTo(sums, m.CInlet23[f], m.nxInlet, m.nyInlet, m.nzInlet, f, 1);
    }
    for (int f = 1; f <= m.NOutlet; ++f) {
        AddTo(sums, m.COutlet23[f], m.nxOutlet, m.nyOutlet, m.nzOutlet, f, 1);
    }
    for (int f = 1; f <= m.NWall; ++f) {
        AddTo(sums, m.CWall23[f], m.nxWall, m.nyWall, m.nzWall, f, 1);
    }
    for (int f = 1; f <= m.NSymm; ++f) {
        AddTo(sums, m.CSymm23[f], m.nxSymm, m.nySymm, m.nzSymm, f, 1);
    }
    for (int f = 1; f <= host.partition.count; ++f) {
        AddTo(sums, host.partition.cell[static_cast<std::size_t>(f)], host.partition.area[0].data(),
              host.partition.area[1].data(), host.partition.area[2].data(), f, 1);
    }
    return sums;
}

void ExpectClosedCells(const BoxHost& host) {
    const std::vector<BoxHost::Point> sums = SurfaceSums(host);
    for (std::size_t cell = 1; cell < sums.size(); ++cell) {
        EXPECT_EQ(sums[cell], (BoxHost::Point{0, 0, 0})) << "cell " << cell;
    }
}

/// Every id from Nc + 1 to NcAll is the ghost cell of exactly one boundary face.
void ExpectGhostsOnce(const BoxHost& host) {
    std::multiset<int> ghosts;
    for (const BoxHost::Boundary* kind :
         {&host.arrays.inlet, &host.arrays.outlet, &host.arrays.wall, &host.arrays.symm}) {
        ghosts.insert(kind->ghost.begin() + 1, kind->ghost.end());
    }
    ghosts.insert(host.partition.ghost.begin() + 1, host.partition.ghost.end());
    std::multiset<int> expected;
    for (int id = host.fvm.Nc + 1; id <= host.fvm.NcAll; ++id) {
        expected.insert(id);
    }
    EXPECT_EQ(ghosts, expected);
}

BoxHost OversetHost() {
    BoxHost host(8, 8, 4);
    host.WithComponentGrid(6, 6, 4, {2, 2, 0}, {4, 4, 4}, sideZMin | sideZMax);
    host.WithComponentGrid(2, 2, 2, {5, 5, 1}, {2, 2, 2});
    host.WithSeparateBlock(1, 1, 1, {20, 20, 20}, {1, 1, 1});
    host.WithBody(1, {{3, 3, 1}, {4, 4, 4}});
    return host;
}

TEST(BoxHostMesh, CountsOfAPlainBox) {
    const BoxHost host(4, 3, 2);

    EXPECT_EQ(host.fvm.Nc, 24);
    EXPECT_EQ(host.fvm.Nn, 60);
    EXPECT_EQ(host.fvm.Ne, 3 * 3 * 2 + 4 * 2 * 2 + 4 * 3 * 1);
    EXPECT_EQ(host.fvm.NInlet, 6);
    EXPECT_EQ(host.fvm.NOutlet, 6);
    EXPECT_EQ(host.fvm.NWall, 16);
    EXPECT_EQ(host.fvm.NSymm, 24);
    EXPECT_EQ(host.fvm.NcAll, 24 + 6 + 6 + 16 + 24);
    EXPECT_EQ(host.gv.NOversetBCGroup[0], 0);
}

TEST(BoxHostMesh, CellsAreClosedAndGhostsUniqueInEveryVariant) {
    for (const BoxHost& host : {BoxHost(1, 1, 1), BoxHost(4, 3, 2, {-1, 0, 2}, {2, 3, 4}),
                                BoxHost(3, 3, 3).WithPartitionFaces(), OversetHost()}) {
        ExpectClosedCells(host);
        ExpectGhostsOnce(host);
    }
}

TEST(BoxHostMesh, InnerFacesPointFromOwnerToNeighbor) {
    const BoxHost host = OversetHost();
    const CKVX3DFiniteVolumeMesh& m = host.fvm;

    for (int f = 1; f <= m.Ne; ++f) {
        const int a = m.Ce23[0][f];
        const int b = m.Ce23[1][f];
        EXPECT_LT(a, b);
        EXPECT_GT((m.xc[b] - m.xc[a]) * m.nxe[f] + (m.yc[b] - m.yc[a]) * m.nye[f] +
                      (m.zc[b] - m.zc[a]) * m.nze[f],
                  0.0);
        EXPECT_EQ(host.gv.cavityId[a], host.gv.cavityId[b]);
    }
}

TEST(BoxHostMesh, NodesOfACellSurroundItsCenter) {
    const BoxHost host(2, 2, 2, {1, 2, 3}, {2, 4, 8});
    const int* row = host.fvm.cellNodes[8];

    ASSERT_EQ(row[0], 8);
    const double x[] = {2, 3, 3, 2, 2, 3, 3, 2};
    const double y[] = {4, 4, 6, 6, 4, 4, 6, 6};
    const double z[] = {7, 7, 7, 7, 11, 11, 11, 11};
    for (int i = 1; i <= 8; ++i) {
        EXPECT_EQ(host.fvm.xn[row[i]], x[i - 1]);
        EXPECT_EQ(host.fvm.yn[row[i]], y[i - 1]);
        EXPECT_EQ(host.fvm.zn[row[i]], z[i - 1]);
    }
    EXPECT_EQ(host.fvm.xc[8], 2.5);
    EXPECT_EQ(host.fvm.yc[8], 5.0);
    EXPECT_EQ(host.fvm.zc[8], 9.0);
    EXPECT_EQ(host.fvm.volume[8], 8.0);
}

TEST(BoxHostMesh, OversetGroupsListTheOuterFacesOfTheirBlock) {
    const BoxHost host = OversetHost();

    ASSERT_EQ(host.gv.NOversetBCGroup[0], 2);
    EXPECT_EQ(host.gv.oversetBCFaceCount[1], 4 * 6 * 4);  // two of the six sides are physical walls
    EXPECT_EQ(host.gv.oversetBCFaceCount[2], 6 * 2 * 2);
    for (int group = 1; group <= 2; ++group) {
        for (int i = 1; i <= host.gv.oversetBCFaceCount[group]; ++i) {
            const int wall = host.gv.oversetBCWallFace[group][i];
            EXPECT_EQ(host.gv.cavityId[host.fvm.CWall23[wall]], group + 1);
        }
    }
    EXPECT_EQ(host.gv.cavityId[host.fvm.Nc], 4);
}

TEST(BoxHostMesh, BodyCellsAreMissingAndTheirNeighborsHaveWalls) {
    BoxHost host(3, 3, 1);
    host.WithBody(0, {{2, 2, 1}, {2, 2, 1}});

    EXPECT_EQ(host.fvm.Nc, 8);
    EXPECT_EQ(host.CellAt(0, 2, 2, 1), 0);
    EXPECT_EQ(host.CellAt(0, 3, 3, 1), 8);
    EXPECT_EQ(host.fvm.NWall, 6 + 4);
    EXPECT_EQ(host.fvm.Ne, 8);
}

TEST(BoxHostMesh, FlagsNonmatchingFacesAndFindsFaces) {
    BoxHost host(2, 2, 1);
    const int face = host.InnerFaceBetween(3, 4);
    host.WithNonmatchingFaces({face});

    EXPECT_EQ(host.fvm.nonmatchingFace[face], 1);
    EXPECT_EQ(host.InnerFaceBetween(4, 3), face);
    EXPECT_EQ(host.InnerFaceBetween(1, 4), 0);
}

TEST(BoxHostMesh, CopiesOwnTheirArraysAndKeepChangedValues) {
    BoxHost host(2, 1, 1);
    host.arrays.pressure[1] = 99;

    const BoxHost copy(host);

    EXPECT_NE(copy.fvm.xc, host.fvm.xc);
    EXPECT_NE(copy.fvm.cellNodes[1], host.fvm.cellNodes[1]);
    EXPECT_EQ(copy.gv.flowVariables[0][1], 99);
    EXPECT_EQ(copy.fvm.Ne, 1);
}

TEST(BoxHostMesh, SlotZeroIsPoisoned) {
    const BoxHost host(2, 1, 1);

    EXPECT_TRUE(std::isnan(host.fvm.xc[0]));
    EXPECT_TRUE(std::isnan(host.gv.mu[0]));
    EXPECT_EQ(host.fvm.Ce23[0][0], -7777);
    EXPECT_EQ(host.fvm.cellNodes[0], nullptr);
}

}  // namespace
