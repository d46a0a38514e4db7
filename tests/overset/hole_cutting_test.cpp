#include "overset/hole_cutting.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "overset/overset_grid_data.h"
#include "plain/plain_kd_tree.h"
#include "tests/overset/cutting.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"
#include "tests/support/private_access.h"

KVX3D_EXPOSE(CuttingDot, &CKVX_ART_HoleCutting::Innerproduct,
             double (CKVX_ART_HoleCutting::*)(double*, double*));
KVX3D_EXPOSE(CuttingNorm, &CKVX_ART_HoleCutting::Norm, double (CKVX_ART_HoleCutting::*)(double*));

namespace {

TEST(HoleCuttingObject, MembersFollowOnePointerInTheirOrder) {
    CKVX_ART_HoleCutting holes;
    const char* start = reinterpret_cast<const char*>(&holes);

    EXPECT_EQ(reinterpret_cast<const char*>(&holes.outsideCellsCut) - start, 8);
    EXPECT_EQ(reinterpret_cast<const char*>(&holes.gridData) - start, 16);
    EXPECT_EQ(reinterpret_cast<const char*>(&holes.artGv) - start, 24);
    EXPECT_EQ(reinterpret_cast<const char*>(&holes.cutGridLayer) - start, 32);
    EXPECT_FALSE(holes.outsideCellsCut);
}

TEST(HoleCuttingObject, ConstructionWritesOnlyOneMember) {
    alignas(CKVX_ART_HoleCutting) unsigned char place[sizeof(CKVX_ART_HoleCutting)];
    std::memset(place, 0x5a, sizeof place);

    auto* holes = new (place) CKVX_ART_HoleCutting;

    EXPECT_FALSE(holes->outsideCellsCut);
    for (const void* member :
         {static_cast<const void*>(&holes->gridData), static_cast<const void*>(&holes->artGv),
          static_cast<const void*>(&holes->cutGridLayer)}) {
        EXPECT_EQ(*static_cast<const unsigned char*>(member), 0x5a);
    }
}

TEST(HoleCuttingObject, NullLinksAreRejectedWithALine) {
    KVX_ART_OVERSET_GRID_DATA data;
    CKVX_ART_HoleCutting holes;
    ASSERT_TRUE(holes.LinkARTGv(&data));
    ASSERT_TRUE(holes.LinkOversetGridData(&data));
    OutputCapture output;

    EXPECT_FALSE(holes.LinkARTGv(nullptr));
    EXPECT_FALSE(holes.LinkOversetGridData(nullptr));

    EXPECT_EQ(holes.artGv, &data);
    EXPECT_EQ(holes.gridData, &data);
    EXPECT_EQ(output.Out(),
              "WARNING: Can not get the object of ART global variables!\n"
              "WARNING: Can not get the object of Overset Grid Data.\n");
}

TEST(HoleCuttingObject, ProductAndNormAreSummedFromLeftToRight) {
    CKVX_ART_HoleCutting holes;
    double a[3] = {1.0, 2.0, 3.0};
    double b[3] = {4.0, 5.0, 6.0};
    double big[3] = {1e16, 1.0, -1e16};
    double ones[3] = {1.0, 1.0, 1.0};
    double c[3] = {2.0, 3.0, 6.0};

    EXPECT_EQ((holes.*MemberOf(CuttingDot()))(a, b), 32.0);
    EXPECT_EQ((holes.*MemberOf(CuttingDot()))(big, ones), 0.0);
    EXPECT_EQ((holes.*MemberOf(CuttingNorm()))(c), 7.0);
}

TEST(OutsideCut, AComponentInsideTheDomainIsNotCut) {
    BoxHost host = Inside();
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OutsideDomainCutting(2);

    EXPECT_FALSE(cutting.holes.outsideCellsCut);
    EXPECT_TRUE(cutting.CutCells().empty());
    EXPECT_EQ(output.Out(), "\t  No Compoenet Cell Ouside Domain.\n");
}

TEST(OutsideCut, CellsBeyondTheWallAndWithinTheMarginAreCut) {
    BoxHost host = StickingOut();
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OutsideDomainCutting(2);

    // The centers are at y = -1.5 ... 3.5. Those below y = 2 are cut: four rows of 6 x 2 cells.
    EXPECT_TRUE(cutting.holes.outsideCellsCut);
    EXPECT_EQ(cutting.data.NNonActiveCell, 48);
    EXPECT_EQ(cutting.data.cellState[host.CellAt(1, 3, 4, 1)], 1);
    EXPECT_EQ(cutting.data.cellState[host.CellAt(1, 3, 5, 1)], 2);
    EXPECT_EQ(output.Out(), "\t  Non Active Cell Number = 48\n");
}

TEST(OutsideCut, ACellExactlyOnTheMarginStays) {
    BoxHost host =
        BoxHost(12, 12, 2).WithComponentGrid(6, 6, 2, {3, 0.5, 0}, {6, 6, 2}, sideZMin | sideZMax);
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OutsideDomainCutting(2);

    // The centers are at y = 1, 2, ...: the row at 1 is cut, the row at 2 is exactly two sizes
    // away.
    EXPECT_EQ(cutting.data.NNonActiveCell, 12);
}

TEST(OutsideCut, LayerZeroCutsPositiveMeasuresOnly) {
    BoxHost host =
        BoxHost(12, 12, 2).WithComponentGrid(6, 6, 2, {3, -1.5, 0}, {6, 6, 2}, sideZMin | sideZMax);
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OutsideDomainCutting(0);

    // The centers are at y = -1, 0, 1, ...: the row exactly on the wall stays.
    EXPECT_EQ(cutting.data.NNonActiveCell, 12);
}

TEST(OverlapCut, BackgroundCellsDeepUnderTheComponentAreCut) {
    BoxHost host = Inside();
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OutsideDomainCutting(2);
    cutting.holes.OverlapRegionCutting(2);

    // Of the rows between 3 and 9, the two middle ones are 2.5 sizes deep along both axes.
    EXPECT_EQ(
        cutting.CutCells(),
        (std::vector<int>{host.CellAt(0, 6, 6, 1), host.CellAt(0, 7, 6, 1), host.CellAt(0, 6, 7, 1),
                          host.CellAt(0, 7, 7, 1), host.CellAt(0, 6, 6, 2), host.CellAt(0, 7, 6, 2),
                          host.CellAt(0, 6, 7, 2), host.CellAt(0, 7, 7, 2)}));
    EXPECT_EQ(output.Out(),
              "\t  No Compoenet Cell Ouside Domain.\n\t  Non Active Cell Number = 8\n");
}

TEST(OverlapCut, ACellExactlyOnTheMarginStays) {
    BoxHost host = BoxHost(12, 12, 2).WithComponentGrid(5, 5, 2, {3.5, 3.5, 0}, {5, 5, 2},
                                                        sideZMin | sideZMax);
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OverlapRegionCutting(2);

    // The centers at 5.5 and 6.5 are exactly two sizes deep.
    EXPECT_TRUE(cutting.CutCells().empty());
}

TEST(OverlapCut, LayerZeroCutsNegativeMeasuresOnly) {
    BoxHost host = BoxHost(12, 12, 2).WithComponentGrid(5, 5, 2, {3.5, 3.5, 0}, {5, 5, 2},
                                                        sideZMin | sideZMax);
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OverlapRegionCutting(0);

    // The centers at 4.5 ... 7.5 lie inside, those at 3.5 and 8.5 on the component's faces.
    EXPECT_EQ(cutting.data.NNonActiveCell, 4 * 4 * 2);
}

TEST(OverlapCut, AfterAnOutsideCutTheLastFaceCenterReplacesAllAreaVectors) {
    BoxHost host = StickingOut();
    Cutting<BoxHost> cutting(host);
    OutputCapture output;
    cutting.holes.OutsideDomainCutting(2);
    const int outside = cutting.data.NNonActiveCell;

    cutting.holes.OverlapRegionCutting(2);

    KVX_ART_OVERSET_GRID_DATA& data = cutting.data;
    const int last = data.oversetBCWallFace[1][data.oversetBCFaceCount[1]];
    const double S[3] = {data.xWall[last], data.yWall[last], data.zWall[last]};
    plain::KdTree faces;
    for (int i = 1; i <= data.oversetBCFaceCount[1]; ++i) {
        const int w = data.oversetBCWallFace[1][i];
        faces.Insert(data.xWall[w], data.yWall[w], data.zWall[w], w);
    }
    int expected = outside;
    for (int c = 1; c <= 288; ++c) {
        const int w = faces.Nearest(data.xc[c], data.yc[c], data.zc[c]);
        const double measure = (data.xc[c] - data.xWall[w]) * S[0] +
                               (data.yc[c] - data.yWall[w]) * S[1] +
                               (data.zc[c] - data.zWall[w]) * S[2];
        const bool cut = measure < -(std::sqrt(S[0] * S[0] + S[1] * S[1] + S[2] * S[2]) * 2);
        expected += cut ? 1 : 0;
        EXPECT_EQ(data.cellState[c], cut ? 1 : 2) << c;
    }
    EXPECT_EQ(data.NNonActiveCell, expected);
    EXPECT_GE(expected, outside);
    EXPECT_EQ(output.Out(), "\t  Non Active Cell Number = " + std::to_string(outside) +
                                "\n\t  Non Active Cell Number = " + std::to_string(expected) +
                                "\n");
}

TEST(OverlapCut, WallPointCountIsCleared) {
    BoxHost host = Inside();
    Cutting<BoxHost> cutting(host);
    cutting.data.NOverlapWallPoint = 5;
    OutputCapture output;

    cutting.holes.OverlapRegionCutting(2);

    EXPECT_EQ(cutting.data.NOverlapWallPoint, 0);
}

TEST(OverlapCut, AMeshWithOneGridIsNotCut) {
    BoxHost host(4, 4, 2);
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OutsideDomainCutting(2);
    cutting.holes.OverlapRegionCutting(2);

    EXPECT_TRUE(cutting.CutCells().empty());
    EXPECT_EQ(output.Out(),
              "\t  No Compoenet Cell Ouside Domain.\n\t  Non Active Cell Number = 0\n");
}

TEST(OverlapCut, AMeshWithOneGridIsCutIfItHasAGroup) {
    BoxHost host(4, 4, 2);
    int nGroups[1] = {1};
    int nFaces[2] = {0, 1};
    int faces[2] = {0, 1};
    int* rows[2] = {nullptr, faces};
    host.gv.NOversetBCGroup = nGroups;
    host.gv.oversetBCFaceCount = nFaces;
    host.gv.oversetBCWallFace = rows;
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OverlapRegionCutting(2);

    // Two of the four rows inside the one face are deeper than two cells.
    EXPECT_FALSE(cutting.data.hasOversetGrids);
    EXPECT_EQ(cutting.CutCells().size(), 16u);
    EXPECT_EQ(output.Out(), "\t  Non Active Cell Number = 16\n");
}

TEST(BothCuts, TheSecondComponentGridIsNotCutAndCutsNothing) {
    BoxHost host = Inside().WithComponentGrid(6, 6, 2, {20, -3, 0}, {6, 6, 2});
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OutsideDomainCutting(2);
    cutting.holes.OverlapRegionCutting(2);

    EXPECT_EQ(cutting.data.NNonActiveCell, 8);
    EXPECT_EQ(cutting.data.cellState[host.CellAt(2, 1, 1, 1)], 2);
}

TEST(BothCuts, CellsWithoutAGridWarnOncePerPassAndStay) {
    BoxHost host = Inside()
                       .WithComponentGrid(2, 2, 2, {20, 0, 0}, {2, 2, 2})
                       .WithComponentGrid(3, 1, 1, {30, 0, 0}, {3, 1, 1});
    Cutting<BoxHost> cutting(host);
    OutputCapture output;

    cutting.holes.OutsideDomainCutting(2);
    cutting.holes.OverlapRegionCutting(2);

    const std::string warning = "Warning: Can not get the overset grid state.\n";
    EXPECT_EQ(output.Out(), warning + warning + warning + "\t  No Compoenet Cell Ouside Domain.\n" +
                                warning + warning + warning + "\t  Non Active Cell Number = 8\n");
    EXPECT_EQ(cutting.data.cellState[host.CellAt(3, 1, 1, 1)], 2);
}

}  // namespace
