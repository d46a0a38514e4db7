#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "plain/plain_overset.h"
#include "plain/samples/cylinder_host.h"
#include "tests/overset/cutting.h"
#include "tests/support/output_capture.h"

// The two cuts on hand-linked data, and the two cuts of the set-up against the plain ones.

namespace {

TEST(SecondPair, OutsideCutReadsTheLinkedGeometryAndMargin) {
    BoxHost host = StickingOut();
    Cutting<BoxHost> cutting(host);
    cutting.holes.SetCutGridLayer(0);
    OutputCapture output;

    cutting.holes.CutOutsideDomainComponentCell();

    EXPECT_EQ(cutting.data.NNonActiveCell, 24);
    EXPECT_TRUE(cutting.holes.outsideCellsCut);
    EXPECT_EQ(output.Out(), "\t<Succeed> Non Active Cell Number = 24\n");
}

TEST(SecondPair, OutsideCutReportsThatNothingIsCutAndWarnsAboutTheGridType) {
    BoxHost host = Inside()
                       .WithComponentGrid(2, 2, 2, {20, 0, 0}, {2, 2, 2})
                       .WithComponentGrid(2, 1, 1, {30, 0, 0}, {2, 1, 1});
    Cutting<BoxHost> cutting(host);
    cutting.holes.SetCutGridLayer(2);
    OutputCapture output;

    cutting.holes.CutOutsideDomainComponentCell();

    EXPECT_EQ(output.Out(),
              "Warning: Can not get the overset grid type.\n"
              "Warning: Can not get the overset grid type.\n"
              "\tNo Compoenet Cell Ouside Domain.\n");
}

TEST(SecondPair, WithoutOverlapPointsNoBackgroundCellIsCut) {
    BoxHost host = Inside();
    Cutting<BoxHost> cutting(host);
    cutting.holes.SetCutGridLayer(2);
    OutputCapture output;

    cutting.holes.CutBackgroundCells();

    EXPECT_TRUE(cutting.CutCells().empty());
    EXPECT_EQ(output.Out(), "\t<Succeed> Non Active Cell Number = 0\n");
}

/// Sets the overlap points to faces of group 1, followed by inner faces.
void FillOverlapPoints(KVX_ART_OVERSET_GRID_DATA& data, int nWall, std::vector<int> innerFaces) {
    data.NOverlapPoint = nWall + static_cast<int>(innerFaces.size());
    data.NOverlapWallPoint = nWall;
    const auto n = static_cast<std::size_t>(data.NOverlapPoint) + 1;
    data.xOverlapPoint = new double[n]();
    data.yOverlapPoint = new double[n]();
    data.zOverlapPoint = new double[n]();
    data.overlapWallIndex = new int[n]();
    data.overlapInnerFace = new int[n]();
    for (int r = 1; r <= nWall; ++r) {
        const int i =
            data.oversetBCFaceCount[1] + 1 - r;  // in reverse, so that index and position differ
        const int face = data.oversetBCWallFace[1][i];
        data.overlapWallIndex[r] = i;
        data.xOverlapPoint[r] = data.xWall[face];
        data.yOverlapPoint[r] = data.yWall[face];
        data.zOverlapPoint[r] = data.zWall[face];
    }
    for (std::size_t i = 0; i < innerFaces.size(); ++i) {
        const auto r = static_cast<std::size_t>(nWall) + 1 + i;
        data.overlapInnerFace[1 + i] = innerFaces[i];
        if (innerFaces[i] > data.Ne) {
            continue;
        }
        data.xOverlapPoint[r] = data.xe[innerFaces[i]];
        data.yOverlapPoint[r] = data.ye[innerFaces[i]];
        data.zOverlapPoint[r] = data.ze[innerFaces[i]];
    }
}

TEST(SecondPair, BackgroundCutAfterAnOutsideCutUsesWallAndInnerFaces) {
    BoxHost host = Inside();
    Cutting<BoxHost> cutting(host);
    FillOverlapPoints(cutting.data, cutting.data.oversetBCFaceCount[1],
                      {host.InnerFaceBetween(host.CellAt(0, 1, 1, 1), host.CellAt(0, 2, 1, 1))});
    cutting.holes.SetCutGridLayer(2);
    cutting.holes.outsideCellsCut = true;
    OutputCapture output;

    cutting.holes.CutBackgroundCells();

    EXPECT_EQ(cutting.data.NNonActiveCell, 8);
    EXPECT_TRUE(cutting.holes.outsideCellsCut);
}

TEST(SecondPair, BackgroundCutWithAnInnerFaceUsesItsAreaVector) {
    BoxHost host = Inside();
    Cutting<BoxHost> cutting(host);
    const int face = host.InnerFaceBetween(host.CellAt(0, 6, 1, 1), host.CellAt(0, 7, 1, 1));
    FillOverlapPoints(cutting.data, 0, {face});
    cutting.holes.SetCutGridLayer(2);
    cutting.holes.outsideCellsCut = true;
    OutputCapture output;

    cutting.holes.CutBackgroundCells();

    // The area vector at x = 6 points to +x. Centers at 0.5 ... 3.5 are more than two sizes inside.
    EXPECT_EQ(cutting.data.NNonActiveCell, 4 * 12 * 2);
    EXPECT_EQ(cutting.data.cellState[host.CellAt(0, 4, 12, 2)], 1);
    EXPECT_EQ(cutting.data.cellState[host.CellAt(0, 5, 12, 2)], 2);
}

TEST(SecondPair, BackgroundCutWithoutAnOutsideCutUsesGroupFacesByPosition) {
    BoxHost host = Inside();
    Cutting<BoxHost> cutting(host);
    FillOverlapPoints(cutting.data, 1, {});
    cutting.holes.SetCutGridLayer(0);
    OutputCapture output;

    cutting.holes.CutBackgroundCells();

    // Point 1 lies on the last face (y = 9); its vector is that of the first face (x = 3, to -x).
    EXPECT_EQ(cutting.data.cellState[host.CellAt(0, 12, 1, 1)], 1);
    EXPECT_EQ(cutting.data.cellState[host.CellAt(0, 1, 1, 1)], 2);
}

TEST(SecondPair, TableEntriesOfPointsThatAreNotNearestAreNotRead) {
    const int noSuchEntry = 1 << 28;
    BoxHost host = StickingOut();
    Cutting<BoxHost> cutting(host);
    KVX_ART_OVERSET_GRID_DATA& data = cutting.data;
    FillOverlapPoints(data, 1, {1, noSuchEntry});
    data.xOverlapPoint[3] = data.xBackgroundWall[1] = 1e6;
    data.yOverlapPoint[3] = data.yBackgroundWall[1] = 1e6;
    data.backgroundWall[1] = noSuchEntry;
    cutting.holes.SetCutGridLayer(0);
    OutputCapture output;

    cutting.holes.CutOutsideDomainComponentCell();
    cutting.holes.CutBackgroundCells();

    EXPECT_TRUE(cutting.holes.outsideCellsCut);
    EXPECT_GE(data.NNonActiveCell, 24);
}

template <typename Host>
void ExpectCutsOfThePlainOverset(Host& host) {
    Cutting<Host> cutting(host);
    KVX_ART_OVERSET_GRID_DATA expected;
    expected.getKvx3dGV(&host.gv, &host.fvm);
    expected.getKvx3dData();
    expected.OversetGridsInfoSetting();
    plain::Overset overset(expected);
    OutputCapture output;

    cutting.holes.OutsideDomainCutting(2);
    cutting.holes.OverlapRegionCutting(2);

    overset.CutOutside(2);
    overset.CutOverlap(2);
    EXPECT_EQ(cutting.holes.outsideCellsCut, overset.outsideCellsCut);
    EXPECT_EQ(cutting.data.NNonActiveCell, expected.NNonActiveCell);
    for (int c = 1; c <= expected.Nc; ++c) {
        ASSERT_EQ(cutting.data.cellState[c], expected.cellState[c]) << c;
    }
}

TEST(CutsAreThoseOfPlain, ForACylinderInAChannel) {
    for (int m : {1, 2, 3, 4}) {
        CylinderHost host(m);
        ExpectCutsOfThePlainOverset(host);
    }
}

TEST(CutsAreThoseOfPlain, ForAlignedLatticesWithManyTies) {
    for (double shift : {0.0, 0.5, 0.25, -2.0, -4.5}) {
        BoxHost host = BoxHost(16, 16, 4).WithComponentGrid(8, 8, 4, {4, 4 + shift, 0}, {8, 8, 4},
                                                            sideZMin | sideZMax);
        ExpectCutsOfThePlainOverset(host);
        BoxHost closed =
            BoxHost(16, 16, 8).WithComponentGrid(8, 8, 4, {4, 4 + shift, 2}, {8, 8, 4});
        ExpectCutsOfThePlainOverset(closed);
    }
}

}  // namespace
