#include "host_checks/host_rules.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "plain/samples/block_host.h"
#include "tests/host_checks/faults.h"
#include "tests/support/box_host.h"

namespace {

using kvx3d::checks::Fault;
using kvx3d::checks::HostFaults;
using kvx3d::checks::Rule;

/// One fault put into sound host objects, and words of the text that must report it.
struct Broken {
    const char* name;
    Rule rule;
    std::function<void(CKvx3dGV&, CKVX3DFiniteVolumeMesh&)> make;
    std::vector<std::string> words;
};

class HostRule : public testing::TestWithParam<Broken> {};

TEST_P(HostRule, IsReportedOnceWhenBroken) {
    AnnulusHost host(SmallAnnulus());
    GetParam().make(host.gv, host.fvm);

    ExpectFault(HostFaults(host.gv, host.fvm), GetParam().rule, GetParam().words);
}

void RemoveInlets(CKVX3DFiniteVolumeMesh& m) {
    m.NcAll -= m.NInlet;
    for (int i = 1; i <= m.NOutlet; ++i) {
        m.idOutlet[i] -= m.NInlet;
    }
    for (int i = 1; i <= m.NWall; ++i) {
        m.idWall[i] -= m.NInlet;
    }
    for (int i = 1; i <= m.NSymm; ++i) {
        m.idSymm[i] -= m.NInlet;
    }
    m.NInlet = 0;
}

INSTANTIATE_TEST_SUITE_P(
    OfCounts, HostRule,
    testing::Values(Broken{"NegativeCount",
                           Rule::Counts,
                           [](CKvx3dGV&, auto& m) { m.NSymm = -1; },
                           {"NSymm is too small: -1"}},
                    Broken{"NoCells",
                           Rule::Counts,
                           [](CKvx3dGV&, auto& m) { m.Nc = 0; },
                           {"Nc is too small: 0"}},
                    Broken{"LeastInt",
                           Rule::Counts,
                           [](CKvx3dGV&, auto& m) { m.Nc = std::numeric_limits<int>::min(); },
                           {"Nc is too small: -2147483648"}},
                    Broken{"GhostCount",
                           Rule::GhostCount,
                           [](CKvx3dGV&, auto& m) { ++m.NcAll; },
                           {"NcAll is 1841", "together are 1840"}},
                    Broken{"NullNodes",
                           Rule::NullPointer,
                           [](CKvx3dGV&, auto& m) { m.xn = nullptr; },
                           {"\"xn\" is null"}},
                    Broken{"NullField",
                           Rule::NullPointer,
                           [](CKvx3dGV& gv, auto&) { gv.flowVariables[2] = nullptr; },
                           {"\"flowVariables[2]\" is null"}},
                    Broken{"NullBoundary",
                           Rule::NullPointer,
                           [](CKvx3dGV&, auto& m) { m.idWall = nullptr; },
                           {"\"wall\" is null"}},
                    Broken{"NullDirectory",
                           Rule::NullPointer,
                           [](CKvx3dGV& gv, auto&) { gv.rootDir = nullptr; },
                           {"\"rootDir\" is null"}}),
    NameOfCase<Broken>);

INSTANTIATE_TEST_SUITE_P(
    OfCellsAndFaces, HostRule,
    testing::Values(
        Broken{"NodeCoordinate",
               Rule::Coordinates,
               [](CKvx3dGV&, auto& m) { m.yn[30] = std::nan(""); },
               {"the position of node 30 is (1.6, nan, 0)", "must be finite"}},
        Broken{"CellCenter",
               Rule::Coordinates,
               [](CKvx3dGV&, auto& m) { m.zc[30] = INFINITY; },
               {"the center of cell 30 is (", "inf)"}},
        Broken{"InnerFaceCenter",
               Rule::Coordinates,
               [](CKvx3dGV&, auto& m) { m.xe[7] = std::nan(""); },
               {"the center of inner face 7 is (nan, "}},
        Broken{"InnerFaceArea",
               Rule::Coordinates,
               [](CKvx3dGV&, auto& m) { m.nxe[1] = INFINITY; },
               {"the area vector of inner face 1 is (inf, ",
                "coordinates and area vectors must be finite"}},
        Broken{"BoundaryFaceCenter",
               Rule::Coordinates,
               [](CKvx3dGV&, auto& m) { m.xOutlet[2] = INFINITY; },
               {"the center of outlet face 2 is (inf, "}},
        Broken{"BoundaryFaceArea",
               Rule::Coordinates,
               [](CKvx3dGV&, auto& m) { m.nxWall[100] = std::nan(""); },
               {"the area vector of wall face 100 is (nan, "}},
        Broken{"VolumeInfinite",
               Rule::CellVolume,
               [](CKvx3dGV&, auto& m) { m.volume[3] = INFINITY; },
               {"cell 3 at (", "has volume inf: volumes must be positive and finite"}},
        Broken{"ThreeNodes",
               Rule::CellNodes,
               [](CKvx3dGV&, auto& m) { m.cellNodes[3][0] = 3; },
               {"cell 3 at (", "no valid node list: slot 0 holds the count, at least 4"}},
        Broken{"Volume",
               Rule::CellVolume,
               [](CKvx3dGV&, auto& m) { m.volume[7] = m.volume[9] = 0.0; },
               {"cell 7 at (", "has volume 0 (and 1 more): volumes must be positive"}},
        Broken{"VolumeNaN",
               Rule::CellVolume,
               [](CKvx3dGV&, auto& m) { m.volume[3] = std::nan(""); },
               {"cell 3 at (", "has volume nan"}},
        Broken{"NodeOutOfRange",
               Rule::CellNodes,
               [](CKvx3dGV&, auto& m) { m.cellNodes[3][8] = m.Nn + 1; },
               {"cell 3 at (", "no valid node list", "ids from 1 to 1282"}},
        Broken{"NodeCountTooLarge",
               Rule::CellNodes,
               [](CKvx3dGV&, auto& m) { m.cellNodes[3][0] = m.Nn + 1; },
               {"cell 3 at (", "no valid node list"}},
        Broken{"NoNodeList",
               Rule::CellNodes,
               [](CKvx3dGV&, auto& m) { m.cellNodes[5] = nullptr; },
               {"cell 5 at ("}},
        Broken{"OwnerOutOfRange",
               Rule::InnerFaceCells,
               [](CKvx3dGV&, auto& m) { m.Ce23[0][5] = 0; },
               {"inner face 5 at (", "between cells 0 and", "different cells from 1 to 560"}},
        Broken{"OwnerIsTheNeighbor",
               Rule::InnerFaceCells,
               [](CKvx3dGV&, auto& m) { m.Ce23[1][5] = m.Ce23[0][5]; },
               {"inner face 5 at ("}},
        Broken{"NeighborIsAGhost",
               Rule::InnerFaceCells,
               [](CKvx3dGV&, auto& m) { m.Ce23[1][5] = m.Nc + 1; },
               {"inner face 5 at ("}},
        Broken{"FaceOfTwoCavities",
               Rule::SeparateCavities,
               [](CKvx3dGV&, auto& m) { m.Ce23[1][1] = 560; },
               {"inner face 1 at (", "between cells 1 and 560", "grids share no face"}},
        Broken{"InnerDirection",
               Rule::InnerFaceDirection,
               [](CKvx3dGV&, auto& m) { std::swap(m.Ce23[0][4], m.Ce23[1][4]); },
               {"inner face 4 at (", "from the owner to the neighbor"}},
        Broken{"NonmatchingFlag",
               Rule::NonmatchingFlag,
               [](CKvx3dGV&, auto& m) { m.nonmatchingFace[2] = 2; },
               {"inner face 2 at (", "nonmatchingFace must be 0 or 1"}},
        Broken{"BoundaryCell",
               Rule::BoundaryFaceCell,
               [](CKvx3dGV&, auto& m) { m.CInlet23[2] = 0; },
               {"inlet face 2 at (", "beside cell 0", "one from 1 to 560"}},
        Broken{"GhostOutOfRange",
               Rule::GhostCell,
               [](CKvx3dGV&, auto& m) { m.idOutlet[1] = m.Nc; },
               {"outlet face 1 at (", "ghost cell of its own from 561 to 1840"}},
        Broken{"GhostUsedTwice",
               Rule::GhostCell,
               [](CKvx3dGV&, auto& m) { m.idSymm[2] = m.idSymm[1]; },
               {"symmetry face 2 at (", "ghost cell of its own"}},
        Broken{"BoundaryDirection",
               Rule::BoundaryFaceDirection,
               [](CKvx3dGV&, auto& m) { m.nyWall[1] = -m.nyWall[1]; },
               {"wall face 1 at (", "must point out of the domain"}}),
    NameOfCase<Broken>);

INSTANTIATE_TEST_SUITE_P(
    OfGrids, HostRule,
    testing::Values(
        Broken{"CavityZero",
               Rule::CavityIds,
               [](CKvx3dGV& gv, auto& m) {
                   for (int cell = 1; cell <= m.Nc; ++cell) {
                       --gv.cavityId[cell];
                   }
               },
               {"2 cavities with ids from 0 to 1", "number them 1, 2, 3"}},
        Broken{"CavityGap",
               Rule::CavityIds,
               [](CKvx3dGV& gv, auto& m) {
                   for (int cell = 401; cell <= m.Nc; ++cell) {
                       gv.cavityId[cell] = 3;
                   }
               },
               {"2 cavities with ids from 1 to 3", "without a gap"}},
        Broken{"CavityOfTheLastCellAlone",
               Rule::LastCell,
               [](CKvx3dGV& gv, auto& m) { gv.cavityId[m.Nc] = 3; },
               {"cell 560 at (", "the only one of cavity 3"}},
        Broken{"NoInlet",
               Rule::BackgroundInlet,
               [](CKvx3dGV&, auto& m) { RemoveInlets(m); },
               {"there is no inlet face", "which cavity is the background"}},
        Broken{"InletBesideTheComponent",
               Rule::OversetGroupGrid,
               [](CKvx3dGV&, auto& m) {
                   m.CInlet23[1] = 401;  // where the face lies is another rule
                   m.xInlet[1] = m.xc[401];
                   m.yInlet[1] = m.yc[401];
                   m.zInlet[1] = m.zc[401];
                   m.xInlet[1] += m.nxInlet[1];
               },
               {"entry 1 of overset group 1", "beside cavity 2 (and 39 more)",
                "the background is the cavity beside inlet face 1"}},
        Broken{"NoGroup",
               Rule::OversetGroups,
               [](CKvx3dGV& gv, auto&) { gv.NOversetBCGroup[0] = 0; },
               {"0 overset groups for 1 component grids"}},
        Broken{"GroupCountOutOfRange",
               Rule::OversetGroups,
               [](CKvx3dGV& gv, auto&) { gv.NOversetBCGroup[0] = 1000000; },
               {"1000000 overset groups for 120 wall faces"}},
        Broken{"NullGroupTable",
               Rule::OversetGroups,
               [](CKvx3dGV& gv, auto&) { gv.oversetBCWallFace = nullptr; },
               {"oversetBCWallFace is null"}},
        Broken{"EmptyGroup",
               Rule::OversetGroupFaces,
               [](CKvx3dGV& gv, auto&) { gv.oversetBCFaceCount[1] = 0; },
               {"overset group 1 has no face"}},
        Broken{"GroupSizeOutOfRange",
               Rule::OversetGroupFaces,
               [](CKvx3dGV& gv, auto&) { gv.oversetBCFaceCount[1] = 121; },
               {"overset group 1 has more faces than there are walls"}},
        Broken{"WallFaceOutOfRange",
               Rule::OversetGroupWallFace,
               [](CKvx3dGV& gv, auto&) { gv.oversetBCWallFace[1][3] = 121; },
               {"entry 3 of overset group 1, wall face 121", "from 1 to 120"}},
        Broken{"WallFaceTwiceInGroups",
               Rule::OversetGroupOverlap,
               [](CKvx3dGV& gv, auto&) { gv.oversetBCWallFace[1][2] = gv.oversetBCWallFace[1][1]; },
               {"entry 2 of overset group 1", "one group at most"}},
        Broken{"FirstFaceOfGroupBesideBackground",
               Rule::OversetGroupGrid,
               [](CKvx3dGV& gv, auto&) { gv.oversetBCWallFace[1][1] = 1; },
               {"entry 1 of overset group 1, wall face 1, lies beside cavity 1: group 1 borders "
                "component1"}},
        Broken{"LaterFaceOfGroupBesideBackground",
               Rule::OversetGroupGrid,
               [](CKvx3dGV& gv, auto&) { gv.oversetBCWallFace[1][7] = 1; },
               {"entry 7 of overset group 1, wall face 1, lies beside cavity 1: group 1"}}),
    NameOfCase<Broken>);

TEST(HostFaults, SoundObjectsHaveNone) {
    const AnnulusHost annulus(SmallAnnulus());
    AnnulusShape two = SmallAnnulus();
    two.width = 8.0;
    two.hasSecond = true;
    const AnnulusHost components(two);
    const BoxHost box(4, 3, 2);

    EXPECT_EQ(TextsOf(HostFaults(annulus.gv, annulus.fvm)), "");
    EXPECT_EQ(TextsOf(HostFaults(components.gv, components.fvm)), "");
    EXPECT_EQ(TextsOf(HostFaults(box.gv, box.fvm)), "");
}

/// Ghost cells of partition faces are above those of the boundary faces.
TEST(HostFaults, PartitionFacesHaveGhostCellsOfTheirOwn) {
    BoxHost host(4, 3, 2);
    host.WithPartitionFaces();
    ASSERT_EQ(host.partition.count, 6);

    EXPECT_EQ(TextsOf(HostFaults(host.gv, host.fvm, &host.partition)), "");
    ExpectFault(HostFaults(host.gv, host.fvm), Rule::GhostCount, {"pass the partition faces"});

    host.partition.ijPar()[2] = host.partition.ijPar()[1];
    host.partition.ijParCV()[1] = host.fvm.Nc + 1;

    const std::vector<Fault> faults = HostFaults(host.gv, host.fvm, &host.partition);
    ExpectFault(faults, Rule::GhostCell, {"partition face 2 at ("});
    ExpectFault(faults, Rule::BoundaryFaceCell, {"partition face 1 at (", "beside cell 25"});
}

TEST(HostFaults, PartitionWithoutFacesIsAskedForItsCountOnly) {
    BoxHost host(4, 3, 2);
    host.partition.ResetCalls();

    EXPECT_EQ(TextsOf(HostFaults(host.gv, host.fvm, &host.partition)), "");

    EXPECT_EQ(host.partition.CallsOfOthers(), 0);
}

/// The toolbox reads the first face of a group for each component only.
TEST(HostFaults, GroupWithoutAComponentMayBeEmpty) {
    AnnulusHost host(SmallAnnulus());
    int count = 2;
    int sizes[] = {0, host.gv.oversetBCFaceCount[1], 0};
    int* rows[] = {nullptr, host.gv.oversetBCWallFace[1], nullptr};
    host.gv.NOversetBCGroup = &count;
    host.gv.oversetBCFaceCount = sizes;
    host.gv.oversetBCWallFace = rows;
    EXPECT_EQ(TextsOf(HostFaults(host.gv, host.fvm)), "");

    sizes[2] = -1;
    ExpectFault(HostFaults(host.gv, host.fvm), Rule::OversetGroupFaces, {"group 2 has no face"});
}

TEST(HostFaults, MeshWithoutInnerFacesMayLeaveTheirArraysNull) {
    BoxHost host(1, 1, 1);
    CKVX3DFiniteVolumeMesh& m = host.fvm;
    ASSERT_EQ(m.Ne, 0);
    for (double** array : {&m.xe, &m.ye, &m.ze, &m.nxe, &m.nye, &m.nze}) {
        *array = nullptr;
    }
    m.Ce23[0] = m.Ce23[1] = m.nonmatchingFace = nullptr;

    EXPECT_EQ(TextsOf(HostFaults(host.gv, host.fvm)), "");
}

TEST(HostFaults, FaultNamesTheFirstPlaceAndCountsTheOthers) {
    AnnulusHost host(SmallAnnulus());
    host.fvm.volume[12] = host.fvm.volume[40] = host.fvm.volume[41] = -1.0;

    const std::vector<Fault> faults = HostFaults(host.gv, host.fvm);

    ASSERT_EQ(faults.size(), 1u);
    EXPECT_EQ(faults[0].rule, Rule::CellVolume);
    EXPECT_EQ(faults[0].firstId, 12);
    EXPECT_EQ(faults[0].count, 3);
    EXPECT_EQ(Text(faults[0]),
              "cell 12 at (2.3, 0.1, 0.1) has volume -1 (and 2 more): volumes must "
              "be positive and finite");
}

/// The group rules read the cavity of the cells beside wall faces.
TEST(HostFaults, GroupsAreCheckedOnlyWhenAllIdsAreValid) {
    AnnulusHost host(SmallAnnulus());
    host.fvm.CWall23[host.gv.oversetBCWallFace[1][5]] = 0;

    EXPECT_EQ(RulesOf(HostFaults(host.gv, host.fvm)), std::vector<Rule>{Rule::BoundaryFaceCell});
}

/// The toolbox numbers grids by inlet and groups, so a host may number its cavities otherwise.
TEST(HostFaults, BackgroundMayHaveAnyCavityId) {
    AnnulusHost host(SmallAnnulus());
    for (int cell = 1; cell <= host.fvm.Nc; ++cell) {
        host.gv.cavityId[cell] = 3 - host.gv.cavityId[cell];
    }

    EXPECT_EQ(TextsOf(HostFaults(host.gv, host.fvm)), "");
}

TEST(HostFaults, GroupOfTheSecondComponentMayNotBorderTheFirst) {
    AnnulusShape shape = SmallAnnulus();
    shape.width = 8.0;
    shape.hasSecond = true;
    AnnulusHost host(shape);
    std::swap(host.gv.oversetBCWallFace[1][4], host.gv.oversetBCWallFace[2][4]);

    const std::vector<Fault> faults = HostFaults(host.gv, host.fvm);

    ASSERT_EQ(RulesOf(faults), std::vector<Rule>{Rule::OversetGroupGrid}) << TextsOf(faults);
    EXPECT_EQ(faults[0].count, 2);
}

TEST(HostFaults, BlocksOfANonmatchingInterfaceShareFlaggedFacesOnly) {
    BoxHost host(4, 2, 1);
    for (int cell = 1; cell <= host.fvm.Nc; ++cell) {
        host.gv.cavityId[cell] = host.fvm.xc[cell] > 2.0 ? 1 : 0;
    }
    const int first = host.InnerFaceBetween(host.CellAt(0, 2, 1, 1), host.CellAt(0, 3, 1, 1));
    const int second = host.InnerFaceBetween(host.CellAt(0, 2, 2, 1), host.CellAt(0, 3, 2, 1));
    host.fvm.nonmatchingFace[first] = host.fvm.nonmatchingFace[second] = 1;
    EXPECT_EQ(TextsOf(HostFaults(host.gv, host.fvm)), "");

    host.fvm.nonmatchingFace[second] = 0;

    ExpectFault(HostFaults(host.gv, host.fvm), Rule::SeparateCavities, {"grids share no face"});
}

}  // namespace
