#include "overset/overset_grid_data.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/support/allocation_recorder.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"

namespace {

/// Grid data of a host, linked and filled.
struct Linked {
    explicit Linked(BoxHost& host) {
        data.getKvx3dGV(&host.gv, &host.fvm);
        data.getKvx3dData();
        data.OversetGridsInfoSetting();
    }
    KVX_ART_OVERSET_GRID_DATA data;
};

BoxHost TwoGrids() {
    return BoxHost(12, 12, 4).WithComponentGrid(8, 8, 4, {3, 3, 0}, {6, 6, 4}, sideZMin | sideZMax);
}

std::vector<int> Entries(const int* array, int n) {
    return {array + 1, array + 1 + n};
}

TEST(GridDataConstruction, AddedMembersAreEmptyAndFollowTheBaseInOrder) {
    KVX_ART_OVERSET_GRID_DATA data;

    EXPECT_TRUE(data.hasOversetGrids);
    EXPECT_FALSE(data.needChangeInnerNormal);
    for (int count :
         {data.NGrid, data.NOversetBC, data.NPhysicalWall, data.NBackgroundWall, data.NActiveCell,
          data.NNonActiveCell, data.NOverlapPoint, data.NOverlapWallPoint}) {
        EXPECT_EQ(count, 0);
    }
    const std::vector<const void*> places = {&data.hasOversetGrids,
                                             &data.needChangeInnerNormal,
                                             &data.NGrid,
                                             &data.NOversetBC,
                                             &data.NPhysicalWall,
                                             &data.NBackgroundWall,
                                             &data.NActiveCell,
                                             &data.NNonActiveCell,
                                             &data.NOverlapPoint,
                                             &data.NOverlapWallPoint,
                                             &data.overlapInnerFace,
                                             &data.overlapWallIndex,
                                             &data.overlapTableC,
                                             &data.NCellOfGrid,
                                             &data.oversetBCFaceCount,
                                             &data.cavityToGrid,
                                             &data.oversetBCWallFace,
                                             &data.cellOfGrid,
                                             &data.wallBCGroup,
                                             &data.cellState,
                                             &data.physicalWall,
                                             &data.backgroundWall,
                                             &data.xPhysicalWall,
                                             &data.yPhysicalWall,
                                             &data.zPhysicalWall,
                                             &data.xBackgroundWall,
                                             &data.yBackgroundWall,
                                             &data.zBackgroundWall,
                                             &data.xOverlapPoint,
                                             &data.yOverlapPoint,
                                             &data.zOverlapPoint,
                                             &data.pActive,
                                             &data.uActive,
                                             &data.vActive,
                                             &data.wActive,
                                             &data.linkedArtGv};
    for (std::size_t i = 1; i < places.size(); ++i) {
        EXPECT_LT(places[i - 1], places[i]) << i;
    }
}

TEST(GridDataGrids, TwoCavitiesAreBackgroundAndComponent) {
    BoxHost host = TwoGrids();
    Linked linked(host);
    KVX_ART_OVERSET_GRID_DATA& data = linked.data;

    EXPECT_TRUE(data.hasOversetGrids);
    EXPECT_EQ(data.NGrid, 2);
    EXPECT_EQ(data.NOversetBC, 1);
    EXPECT_EQ(data.NCellOfGrid[1], 576);
    EXPECT_EQ(data.NCellOfGrid[2], 256);
    EXPECT_EQ(data.cavityToGrid[0], 2);
    EXPECT_EQ(data.cavityToGrid[1], 1);
    EXPECT_EQ(data.cavityToGrid[2], 2);
    EXPECT_EQ(data.cellOfGrid[1][0], 576);
    EXPECT_EQ(data.cellOfGrid[2][1], 577);
    EXPECT_EQ(data.cellOfGrid[2][256], 832);
    EXPECT_EQ(data.cellState[0], 832);
    EXPECT_EQ(std::set<int>(data.cellState + 1, data.cellState + 833), std::set<int>{2});
    EXPECT_EQ(data.GetOversetGridType(1), OversetGrid_Background);
    EXPECT_EQ(data.GetOversetGridState(832), OversetGrid_Component1);
}

TEST(GridDataGrids, ThirdCavityIsTheGridOfGroupTwo) {
    BoxHost host = TwoGrids().WithComponentGrid(2, 2, 2, {1, 1, 1}, {2, 2, 2});
    Linked linked(host);

    EXPECT_EQ(linked.data.NGrid, 3);
    EXPECT_EQ(linked.data.GetOversetGridType(840), OversetGrid_Component2);
    EXPECT_EQ(linked.data.NCellOfGrid[3], 8);
}

TEST(GridDataGrids, OneCavityIsNotAnOversetMesh) {
    BoxHost host(3, 2, 2);
    Linked linked(host);

    EXPECT_FALSE(linked.data.hasOversetGrids);
    EXPECT_EQ(linked.data.NGrid, 1);
    EXPECT_EQ(linked.data.NCellOfGrid[1], 12);
    EXPECT_EQ(linked.data.cavityToGrid[1], 1);
}

TEST(GridDataGrids, FourthCavityHasNoGridAndWarnsWithTwoTexts) {
    BoxHost host = TwoGrids()
                       .WithComponentGrid(2, 2, 2, {1, 1, 1}, {2, 2, 2})
                       .WithComponentGrid(1, 1, 2, {9, 9, 1}, {2, 2, 2});
    Linked linked(host);
    OutputCapture output;

    EXPECT_EQ(linked.data.GetOversetGridType(841), OversetGrid_Undefined);
    EXPECT_EQ(linked.data.GetOversetGridState(842), OversetGrid_Undefined);

    EXPECT_EQ(linked.data.NGrid, 4);
    EXPECT_EQ(linked.data.NCellOfGrid[4], 0);
    EXPECT_EQ(output.Out(),
              "Warning: Can not get the overset grid type.\n"
              "Warning: Can not get the overset grid state.\n");
}

TEST(GridDataGrids, ACavityThatConsistsOfTheLastCellOnlyDoesNotCount) {
    BoxHost host(4, 1, 1);
    host.arrays.cavity[4] = 0;
    Linked linked(host);

    EXPECT_EQ(linked.data.NGrid, 1);
    EXPECT_FALSE(linked.data.hasOversetGrids);
}

TEST(GridDataWalls, WallsInNoGroupArePhysical) {
    BoxHost host = TwoGrids();
    Linked linked(host);
    KVX_ART_OVERSET_GRID_DATA& data = linked.data;

    // 2 x 48 background walls, 4 x 32 overset faces, 2 x 64 walls of the component.
    EXPECT_EQ(data.NWall, 352);
    EXPECT_EQ(data.NPhysicalWall, 224);
    EXPECT_EQ(data.NBackgroundWall, 96);
    EXPECT_EQ(data.wallBCGroup[96], 0);
    EXPECT_EQ(data.wallBCGroup[97], 1);
    EXPECT_EQ(data.wallBCGroup[224], 1);
    EXPECT_EQ(data.wallBCGroup[225], 0);
    EXPECT_EQ(data.physicalWall[97], 225);
    EXPECT_EQ(data.xPhysicalWall[97], data.xWall[225]);
    EXPECT_EQ(data.zPhysicalWall[224], data.zWall[352]);
    EXPECT_EQ(data.backgroundWall[0], 96);
    EXPECT_EQ(data.backgroundWall[96], 96);
    EXPECT_EQ(data.yBackgroundWall[96], 12.0);
    EXPECT_EQ(data.GetWallFaceType(96), OversetWallFace_Physical);
    EXPECT_EQ(data.GetWallFaceType(97), OversetWallFace_Overset);
    EXPECT_EQ(data.GetWallFaceType(225), OversetWallFace_Physical);
}

TEST(GridDataWalls, WithoutGroupsAllWallsArePhysical) {
    BoxHost host(3, 2, 2);
    Linked linked(host);

    EXPECT_EQ(linked.data.NPhysicalWall, linked.data.NWall);
    EXPECT_EQ(linked.data.NBackgroundWall, linked.data.NWall);
    EXPECT_EQ(Entries(linked.data.wallBCGroup, 12), std::vector<int>(12, 0));
}

TEST(GridDataWalls, AWallBesideACellWithoutAGridWarnsTwice) {
    BoxHost host = TwoGrids()
                       .WithComponentGrid(2, 2, 2, {1, 1, 1}, {2, 2, 2})
                       .WithSeparateBlock(1, 1, 2, {9, 9, 1}, {1, 1, 2});
    OutputCapture output;

    Linked linked(host);

    std::string expected;
    for (int i = 0; i < 2 * 10; ++i) {
        expected += "Warning: Can not get the overset grid state.\n";
    }
    EXPECT_EQ(output.Out(), expected);
    EXPECT_EQ(linked.data.NPhysicalWall, 234);
}

TEST(GridDataWalls, NegativeGroupIsReportedOnStandardError) {
    BoxHost host(3, 2, 2);
    Linked linked(host);
    linked.data.wallBCGroup[5] = -1;
    OutputCapture output;

    EXPECT_EQ(linked.data.GetWallFaceType(5), OversetWallFace_Undefined);

    EXPECT_EQ(output.Err(), "Fail to define Wall Face Type , Wall Face ID = 5\n");
    EXPECT_EQ(output.Out(), "");
}

class GridDataInnerFace : public testing::Test {
protected:
    GridDataInnerFace() : host(3, 1, 1), linked(host), data(linked.data) {}

    void SetStates(int owner, int neighbor) {
        data.cellState[host.arrays.owner[1]] = owner;
        data.cellState[host.arrays.neighbor[1]] = neighbor;
    }

    BoxHost host;
    Linked linked;
    KVX_ART_OVERSET_GRID_DATA& data;
};

TEST_F(GridDataInnerFace, StateFollowsTheTwoCells) {
    SetStates(2, 2);
    EXPECT_EQ(data.GetInnerFaceState(1), OversetInnerFace_Active);
    SetStates(1, 1);
    EXPECT_EQ(data.GetInnerFaceState(1), OversetInnerFace_NonActive);
    SetStates(2, 1);
    EXPECT_EQ(data.GetInnerFaceState(1), OversetInnerFace_Overset);
    EXPECT_FALSE(data.needChangeInnerNormal);
}

TEST_F(GridDataInnerFace, StateOfAFaceToReverseSetsTheFlagAndDoesNotChangeTheMesh) {
    SetStates(1, 2);
    EXPECT_TRUE(data.IsNeedChangeInnerNormal(1));

    EXPECT_EQ(data.GetInnerFaceState(1), OversetInnerFace_Overset);

    EXPECT_TRUE(data.needChangeInnerNormal);
    EXPECT_EQ(host.arrays.owner[1], 1);
    EXPECT_EQ(host.arrays.neighbor[1], 2);
    EXPECT_EQ(host.arrays.faceArea[0][1], 1.0);
}

TEST_F(GridDataInnerFace, TypeOfAFaceToReverseReversesItOnceAndDoesNotSetTheFlag) {
    SetStates(1, 2);

    EXPECT_EQ(data.GetInnerFaceType(1), OversetInnerFace_Overset);
    EXPECT_EQ(data.GetInnerFaceType(1), OversetInnerFace_Overset);

    EXPECT_FALSE(data.needChangeInnerNormal);
    EXPECT_FALSE(data.IsNeedChangeInnerNormal(1));
    EXPECT_EQ(host.arrays.owner[1], 2);
    EXPECT_EQ(host.arrays.neighbor[1], 1);
    EXPECT_EQ(host.arrays.faceArea[0][1], -1.0);
}

TEST_F(GridDataInnerFace, OtherStatesAreReportedOnStandardError) {
    for (const auto& states : {std::pair<int, int>{0, 2}, {2, 3}, {1, 0}, {-1, 1}}) {
        SetStates(states.first, states.second);
        OutputCapture output;

        EXPECT_EQ(data.GetInnerFaceState(1), OversetInnerFace_Undefined);
        EXPECT_EQ(data.GetInnerFaceType(1), OversetInnerFace_Undefined);

        EXPECT_EQ(output.Err(),
                  "Fail to define Inner Face Type , Inner Face ID = 1\n"
                  "Fail to define Inner Face Type , Inner Face ID = 1\n");
    }
}

TEST(GridDataLink, NullIsRejectedWithALine) {
    KVX_ART_OVERSET_GRID_DATA data;
    CKVX_ACMT_GV gv;
    OutputCapture output;

    EXPECT_TRUE(data.LinkARTGv(&gv));
    EXPECT_FALSE(data.LinkARTGv(nullptr));

    EXPECT_EQ(data.linkedArtGv, &gv);
    EXPECT_EQ(output.Out(), "WARNING: Can not get the object of ART global variables!\n");
}

TEST(GridDataRelease, EverythingIsReleasedExceptTheRowOfTheLastGrid) {
    BoxHost host = TwoGrids();
    AllocationRecorder recorder;
    int* lastRow = nullptr;
    {
        Linked linked(host);
        lastRow = linked.data.cellOfGrid[2];
    }

    EXPECT_EQ(recorder.LiveBlocks(), 1);
    EXPECT_TRUE(recorder.IsLive(lastRow));
    delete[] lastRow;
}

TEST(GridDataReport, TwoGridsAndOneGroup) {
    BoxHost host = TwoGrids();
    Linked linked(host);
    OutputCapture output;

    linked.data.PrintOversetGridsInfo();

    EXPECT_EQ(output.Out(),
              "\n"
              "<General_Grids_Information> \n"
              " Total Cells Number=832\n"
              " Total Faces Number=2128\n"
              " Total Nodes Number=1250\n"
              "\n"
              " Face Number of Inlet=48\n"
              " Face Number of Outlet=48\n"
              " Face Number of Wall=352\n"
              " Face Number of Symm=288\n"
              "\n"
              "<Overset_Grids_Information> \n"
              " Group Number of Overset Grid =2\n"
              " Group Number of Overset BC =1\n"
              " Cell Number of Each Overset Grid:\n"
              "  Background Grid=576\n"
              "  Component Grid1=256\n"
              " Face Number of Physical Wall=224\n"
              " Face Number of Each Overset BC:\n"
              "\tOverset BC1=128\n");
}

TEST(GridDataReport, OneGridWithoutGroupsEndsAtTheGroupHeading) {
    BoxHost host(3, 2, 2);
    Linked linked(host);
    OutputCapture output;

    linked.data.PrintOversetGridsInfo();

    const std::string text = output.Out();
    EXPECT_EQ(text.substr(text.find(" Cell Number")),
              " Cell Number of Each Overset Grid:\n"
              "  Background Grid=12\n"
              " Face Number of Physical Wall=12\n"
              " Face Number of Each Overset BC:\n");
}

TEST(GridDataReport, FourCavitiesListThreeGrids) {
    BoxHost host = TwoGrids()
                       .WithComponentGrid(2, 2, 2, {1, 1, 1}, {2, 2, 2})
                       .WithComponentGrid(1, 1, 2, {9, 9, 1}, {2, 2, 2});
    Linked linked(host);
    OutputCapture output;

    linked.data.PrintOversetGridsInfo();

    const std::string text = output.Out();
    EXPECT_EQ(text.substr(text.find(" Group Number of Overset Grid")),
              " Group Number of Overset Grid =4\n"
              " Group Number of Overset BC =3\n"
              " Cell Number of Each Overset Grid:\n"
              "  Background Grid=576\n"
              "  Component Grid1=256\n"
              "  Component Grid2=8\n"
              " Face Number of Physical Wall=224\n"
              " Face Number of Each Overset BC:\n"
              "\tOverset BC1=128\n"
              "\tOverset BC2=24\n"
              "\tOverset BC3=10\n");
}

}  // namespace
