#include "overset/overset_mesh.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "overset/kd_tree.h"
#include "overset/overset_grid_data.h"
#include "overset/overset_mesh_impl.h"
#include "plain/plain_overset.h"
#include "plain/samples/cylinder_host.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"

namespace {

BoxHost TwoGrids(double y = 3) {
    return BoxHost(12, 12, 2).WithComponentGrid(7, 7, 2, {3, y, 0}, {6, 6, 2}, sideZMin | sideZMax);
}

TEST(OversetTypes, NumbersAreThoseAHostComparesAgainst) {
    EXPECT_EQ(OversetCell_Undefined, 0);
    EXPECT_EQ(OversetCell_NonActive, 1);
    EXPECT_EQ(OversetCell_Active, 2);
    EXPECT_EQ(OversetInnerFace_Undefined, 0);
    EXPECT_EQ(OversetInnerFace_NonActive, 1);
    EXPECT_EQ(OversetInnerFace_Active, 2);
    EXPECT_EQ(OversetInnerFace_Overset, 3);
    EXPECT_EQ(OversetWallFace_Undefined, 0);
    EXPECT_EQ(OversetWallFace_Physical, 1);
    EXPECT_EQ(OversetWallFace_Overset, 2);
    EXPECT_EQ(OversetGrid_Undefined, 0);
    EXPECT_EQ(OversetGrid_Background, 1);
    EXPECT_EQ(OversetGrid_Component1, 2);
    EXPECT_EQ(OversetGrid_Component2, 3);
}

TEST(OversetMoveRecord, TenSlotsStartAtZeroAndTheOuterTwoAreOwned) {
    COversetMoveCellData record;
    EXPECT_EQ(sizeof record, 80u);
    EXPECT_EQ(record.firstArray, nullptr);
    EXPECT_EQ(record.lastArray, nullptr);
    for (std::int64_t slot : record.reserved) {
        EXPECT_EQ(slot, 0);
    }

    record.firstArray = new double[3];  // released with the record, as a leak check shows
    record.lastArray = new double[3];
    record.reserved[7] = 5;
    alignas(COversetMoveCellData) unsigned char place[sizeof(COversetMoveCellData)];
    auto* copy = new (place) COversetMoveCellData;
    *copy = record;

    EXPECT_EQ(copy->firstArray, record.firstArray);
    EXPECT_EQ(copy->lastArray, record.lastArray);
    EXPECT_EQ(copy->reserved[7], 5);
}

TEST(OversetFacade, HasOnePointerAndUpdatingChangesNothing) {
    CKVXOversetMesh mesh;
    OutputCapture output;

    EXPECT_EQ(mesh.UpdateOverSetMesh(), 0);

    EXPECT_EQ(sizeof mesh, sizeof(void*));
    EXPECT_EQ(output.Out(), "Not yet ready for Updating Overset Mesh\n");
}

TEST(OversetFacade, AssignmentSharesTheImplementation) {
    CKVXOversetMesh mesh;
    alignas(CKVXOversetMesh) unsigned char place[sizeof(CKVXOversetMesh)];
    auto* other = new (place) CKVXOversetMesh(mesh);  // never destroyed

    *other = mesh;

    EXPECT_EQ(other->impl, mesh.impl);
}

TEST(OversetImplementation, StartsWithEveryLinkNullInOrder) {
    CKVXOversetMesh_Impl impl;
    const std::vector<const void*> places = {
        &impl.outsideCellsCut, &impl.gridData,      &impl.artGv,        &impl.cutGridLayer,
        &impl.backgroundTree,  &impl.componentTree, &impl.vtkTool,      &impl.vtkPoints,
        &impl.vtkCells,        &impl.vtkBlock,      &impl.velocityData, &impl.pressureData};

    for (std::size_t i = 1; i < places.size(); ++i) {
        EXPECT_LT(places[i - 1], places[i]) << i;
    }
    EXPECT_FALSE(impl.outsideCellsCut);
    EXPECT_EQ(impl.gridData, nullptr);
    EXPECT_EQ(impl.artGv, nullptr);
    EXPECT_EQ(impl.cutGridLayer, 0);
    EXPECT_EQ(impl.backgroundTree, nullptr);
    EXPECT_EQ(impl.componentTree, nullptr);
    EXPECT_EQ(impl.vtkTool, nullptr);
    EXPECT_EQ(impl.vtkPoints, nullptr);
    EXPECT_EQ(impl.vtkCells, nullptr);
    EXPECT_EQ(impl.vtkBlock, nullptr);
    EXPECT_EQ(impl.velocityData, nullptr);
    EXPECT_EQ(impl.pressureData, nullptr);
}

TEST(OversetSetup, PrintsFiveStepLinesEachBeforeTheOutputOfItsStep) {
    BoxHost host = TwoGrids();
    CKVXOversetMesh mesh;
    OutputCapture output;

    EXPECT_EQ(mesh.SetFVM(&host.gv, &host.fvm), 0);

    EXPECT_EQ(output.Out(),
              "Step 1: Link Kelvex FVM Mesh Data.\n"
              "Step 2: Overset Mesh Data Initial Setting.\n"
              "Step 3: Outside Domain Cutting.\n"
              "\t  No Compoenet Cell Ouside Domain.\n"
              "Step 4: Overlap Region Cutting.\n"
              "\t  Non Active Cell Number = 8\n"
              "Step 5: Build Tree for Search Neighbor.\n");
    EXPECT_EQ(output.Err(), "");
}

TEST(OversetSetup, ANullHostIsReportedAndFaultsWhenItIsFirstRead) {
    CKVXOversetMesh mesh;

    EXPECT_DEATH(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            mesh.SetFVM(nullptr, nullptr);
        },
        "^Step 1: Link Kelvex FVM Mesh Data.\n"
        "Can not get the object of Global Variables\n"
        "The ACML GV can not get data from global Kelvex3D!\n"
        "Step 2: Overset Mesh Data Initial Setting.\n");
}

TEST(OversetSetup, AMeshWithASingleGridStaysActive) {
    BoxHost host(4, 4, 2);
    CKVXOversetMesh mesh;
    OutputCapture output;

    EXPECT_EQ(mesh.SetFVM(&host.gv, &host.fvm), 0);

    EXPECT_EQ(mesh.GetOversetCellType(32), OversetCell_Active);
    EXPECT_EQ(mesh.impl->componentTree->tree->root, nullptr);
}

TEST(OversetSetup, TheSecondSetupStartsFromTheBeginning) {
    BoxHost host = TwoGrids();
    CKVXOversetMesh mesh;
    OutputCapture output;
    mesh.SetFVM(&host.gv, &host.fvm);
    KVX_ART_OVERSET_GRID_DATA* first = mesh.impl->gridData;
    KVX_ART_KDtree* firstTree = mesh.impl->backgroundTree;

    EXPECT_EQ(mesh.SetFVM(&host.gv, &host.fvm), 0);

    EXPECT_NE(mesh.impl->gridData, first);
    EXPECT_NE(mesh.impl->backgroundTree, firstTree);
    EXPECT_EQ(mesh.impl->gridData->NNonActiveCell, 8);
    EXPECT_EQ(first->cellState[1], 2);
    EXPECT_NE(firstTree->tree->root, nullptr);
}

TEST(OversetQueries, CellsAreActiveOrNot) {
    BoxHost host = TwoGrids();
    CKVXOversetMesh mesh;
    OutputCapture output;
    mesh.SetFVM(&host.gv, &host.fvm);

    std::map<OversetCellType, int> count;
    for (int c = 1; c <= host.fvm.Nc; ++c) {
        ++count[mesh.GetOversetCellType(c)];
    }
    EXPECT_EQ(count[OversetCell_NonActive], 8);
    EXPECT_EQ(count[OversetCell_Active], host.fvm.Nc - 8);
    EXPECT_EQ(mesh.GetOversetCellType(host.CellAt(0, 6, 6, 1)), OversetCell_NonActive);
    mesh.impl->gridData->cellState[1] = 3;
    EXPECT_EQ(mesh.GetOversetCellType(1), OversetCell_Undefined);
}

TEST(OversetQueries, AHoleBoundaryFaceIsOversetWhicheverCellIsItsOwner) {
    BoxHost host = TwoGrids();
    CKVXOversetMesh mesh;
    OutputCapture output;
    mesh.SetFVM(&host.gv, &host.fvm);
    const int in = host.CellAt(0, 6, 6, 1);
    const int lower = host.InnerFaceBetween(host.CellAt(0, 5, 6, 1), in);
    const int upper = host.InnerFaceBetween(host.CellAt(0, 7, 6, 1), host.CellAt(0, 8, 6, 1));

    EXPECT_EQ(mesh.GetInnerFaceType(lower), OversetInnerFace_Overset);
    EXPECT_EQ(mesh.GetInnerFaceType(upper), OversetInnerFace_Overset);
    EXPECT_EQ(mesh.GetInnerFaceType(host.InnerFaceBetween(in, host.CellAt(0, 7, 6, 1))),
              OversetInnerFace_NonActive);
    EXPECT_EQ(mesh.GetInnerFaceType(1), OversetInnerFace_Active);
    EXPECT_EQ(host.arrays.owner[static_cast<std::size_t>(upper)], host.CellAt(0, 7, 6, 1));
}

TEST(OversetQueries, WallsArePhysicalOrOverset) {
    BoxHost host = TwoGrids();
    CKVXOversetMesh mesh;
    OutputCapture output;
    mesh.SetFVM(&host.gv, &host.fvm);
    mesh.impl->gridData->wallBCGroup[2] = -1;

    EXPECT_EQ(mesh.GetBCType(1), OversetWallFace_Physical);
    EXPECT_EQ(mesh.GetBCType(host.arrays.groupWallFaces[1][1]), OversetWallFace_Overset);
    EXPECT_EQ(mesh.GetBCType(2), OversetWallFace_Undefined);
    EXPECT_EQ(output.Err(), "Fail to define Wall Face Type , Wall Face ID = 2\n");
}

TEST(OversetQueries, TheFacadePrintsTheReportOfTheGridData) {
    BoxHost host = TwoGrids();
    CKVXOversetMesh mesh;
    OutputCapture ofSetup;
    mesh.SetFVM(&host.gv, &host.fvm);
    OutputCapture byFacade;
    mesh.OversetDebugMode();
    OutputCapture byData;
    mesh.impl->gridData->PrintOversetGridsInfo();

    EXPECT_EQ(byFacade.Out(), byData.Out());
    EXPECT_NE(byFacade.Out().find(" Total Cells Number=386\n"), std::string::npos);
}

TEST(OversetQueries, DonorTreesContainTheActiveCellsOfTheirGrids) {
    BoxHost host = TwoGrids(-2);
    CKVXOversetMesh mesh;
    OutputCapture output;
    mesh.SetFVM(&host.gv, &host.fvm);
    KVX_ART_OVERSET_GRID_DATA& data = *mesh.impl->gridData;
    ASSERT_TRUE(mesh.impl->outsideCellsCut);

    int* found = nullptr;
    const KVX_ART_KDtree* trees[] = {mesh.impl->backgroundTree, mesh.impl->componentTree};
    for (int grid : {1, 2}) {
        KVX_ART_KDtree tree = *trees[grid - 1];
        const int n = tree.SearchByRadius(6, 6, 1, 100, found);
        tree.tree = nullptr;
        std::set<int> expected;
        for (int i = 1; i <= data.NCellOfGrid[grid]; ++i) {
            if (data.cellState[data.cellOfGrid[grid][i]] == 2) {
                expected.insert(data.cellOfGrid[grid][i]);
            }
        }
        EXPECT_EQ(std::set<int>(found + 1, found + 1 + n), expected);
    }
    delete[] found;
}

/// Runs the facade and the plain set-up on a host and compares the states and all donors.
template <typename Host>
void ExpectDonorsOfThePlainOverset(Host& host, const std::vector<int>& wallFaces) {
    CKVXOversetMesh mesh;
    OutputCapture output;
    mesh.SetFVM(&host.gv, &host.fvm);
    KVX_ART_OVERSET_GRID_DATA data;
    data.getKvx3dGV(&host.gv, &host.fvm);
    data.getKvx3dData();
    data.OversetGridsInfoSetting();
    plain::Overset overset(data);
    overset.Setup(2);
    int nDonors = 0;
    for (int c = 1; c <= data.Nc; ++c) {
        ASSERT_EQ(static_cast<int>(mesh.GetOversetCellType(c)), data.cellState[c]) << c;
    }
    for (int face = 1; face <= data.Ne; ++face) {
        if (mesh.GetInnerFaceType(face) == OversetInnerFace_Overset) {
            ++nDonors;
            ASSERT_EQ(mesh.GetOversetInnerNeighbor(face), overset.InnerDonor(face)) << face;
        }
    }
    for (int face : wallFaces) {
        ASSERT_EQ(mesh.GetOversetWallNeighbor(face), overset.WallDonor(face)) << face;
    }
    EXPECT_GT(nDonors, 0);
}

TEST(OversetFlow, CylinderInAChannelHasTheDonorsOfThePlainOverset) {
    for (int m : {2, 3}) {
        CylinderHost host(m);
        std::vector<int> walls;
        for (int i = 1; i <= host.gv.oversetBCFaceCount[1]; ++i) {
            const int face = host.gv.oversetBCWallFace[1][i];
            // Only faces for which a cell lies across in the sense of the wall search.
            if (host.fvm.nxWall[face] > 0 && host.fvm.yWall[face] > -0.3) {
                walls.push_back(face);
            }
        }
        ExpectDonorsOfThePlainOverset(host, walls);
    }
}

TEST(OversetFlow, AlignedLatticesHaveTheDonorsOfThePlainOverset) {
    BoxHost host =
        BoxHost(14, 14, 4).WithComponentGrid(8, 8, 4, {3, 3, 0}, {8, 8, 4}, sideZMin | sideZMax);
    std::vector<int> walls;
    for (int i = 1; i <= host.gv.oversetBCFaceCount[1]; ++i) {
        const int face = host.gv.oversetBCWallFace[1][i];
        if (host.fvm.nxWall[face] > 0) {
            walls.push_back(face);
        }
    }
    ExpectDonorsOfThePlainOverset(host, walls);
}

TEST(OversetFlow, ReplacedFacesJoinAnActiveCellWithADonorOfTheOtherGrid) {
    BoxHost host = TwoGrids();
    CKVXOversetMesh mesh;
    OutputCapture output;
    mesh.SetFVM(&host.gv, &host.fvm);
    std::vector<int> faces;
    for (int face = 1; face <= host.fvm.Ne; ++face) {
        if (mesh.GetInnerFaceType(face) == OversetInnerFace_Overset) {
            faces.push_back(face);
        }
    }
    ASSERT_EQ(faces.size(), 16u);

    for (int face : faces) {
        mesh.ReplaceDonorIdtoNonActCellId(face);

        const auto at = static_cast<std::size_t>(face);
        const int a = host.arrays.owner[at];
        const int b = host.arrays.neighbor[at];
        EXPECT_EQ(mesh.GetOversetCellType(a), OversetCell_Active);
        EXPECT_EQ(mesh.GetOversetCellType(b), OversetCell_Active);
        EXPECT_NE(host.arrays.cavity[static_cast<std::size_t>(a)],
                  host.arrays.cavity[static_cast<std::size_t>(b)]);
        EXPECT_EQ(mesh.GetInnerFaceType(face), OversetInnerFace_Active);
    }
}

TEST(OversetFlow, WallIdsAreCheckedThroughTheFacade) {
    BoxHost host = TwoGrids();
    CKVXOversetMesh mesh;
    OutputCapture output;
    mesh.SetFVM(&host.gv, &host.fvm);

    EXPECT_EQ(mesh.GetOversetWallNeighbor(host.fvm.NWall + 1), -1);
    EXPECT_EQ(mesh.GetOversetWallNeighbor(0), -1);
}

}  // namespace
