#include "reference_host/link/host_contract.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "reference_host/link/host_objects.h"
#include "reference_host/link/nonmatching_interface.h"
#include "tests/reference_host/mesh/mesh_files.h"

namespace {

using host::HostObjects;

const host::Mesh& OversetBox() {
    static const host::Mesh mesh = ReadShipped(boxGeo, {{"n", 5}});
    return mesh;
}

/// One fault put into sound host objects, and words of the line that must tell it.
struct Fault {
    const char* name;
    std::function<void(CKvx3dGV&, CKVX3DFiniteVolumeMesh&)> make;
    std::vector<std::string> words;
};

class ContractFault : public testing::TestWithParam<Fault> {};

TEST_P(ContractFault, IsToldInOneLine) {
    HostObjects objects(OversetBox(), ".");
    GetParam().make(objects.gv, objects.fvm);

    const std::vector<std::string> lines = host::ContractFaults(objects.gv, objects.fvm);

    EXPECT_TRUE(HasLine(lines, GetParam().words)) << testing::PrintToString(lines);
}

// Cells 1..400 are the background, 401..560 component1; wall faces 41..120 lie beside component1.
INSTANTIATE_TEST_SUITE_P(
    Each, ContractFault,
    testing::Values(
        Fault{"CountBelowZero", [](CKvx3dGV&, auto& m) { m.NSymm = -1; }, {"NSymm", "too small"}},
        Fault{"NoCells", [](CKvx3dGV&, auto& m) { m.Nc = 0; }, {"Nc is too small"}},
        Fault{"GhostCount", [](CKvx3dGV&, auto& m) { ++m.NcAll; }, {"NcAll is 1841", "1840"}},
        Fault{"NullNodes", [](CKvx3dGV&, auto& m) { m.xn = nullptr; }, {"\"xn\" is null"}},
        Fault{"NullField",
              [](CKvx3dGV& gv, auto&) { gv.flowVariables[2] = nullptr; },
              {"\"flowVariables[2]\" is null"}},
        Fault{"NullBoundary", [](CKvx3dGV&, auto& m) { m.idWall = nullptr; }, {"\"wall\" is null"}},
        Fault{"NullDirectory",
              [](CKvx3dGV& gv, auto&) { gv.rootDir = nullptr; },
              {"\"rootDir\" is null"}},
        Fault{"Volume",
              [](CKvx3dGV&, auto& m) { m.volume[7] = m.volume[9] = 0.0; },
              {"cell 7 at (", "has volume 0 (and 1 more): volumes must be positive"}},
        Fault{"NodeList",
              [](CKvx3dGV&, auto& m) { m.cellNodes[3][8] = m.Nn + 1; },
              {"cell 3 at (", "no valid node list", "ids from 1 to 1282"}},
        Fault{"OwnerRange",
              [](CKvx3dGV&, auto& m) { m.Ce23[0][5] = 0; },
              {"inner face 5 at (", "between cells 0 and", "two cells from 1 to 560"}},
        Fault{"NeighborIsGhost",
              [](CKvx3dGV&, auto& m) { m.Ce23[1][5] = m.Nc + 1; },
              {"inner face 5 at (", "two cells from 1 to 560"}},
        Fault{"FaceOfTwoCavities",
              [](CKvx3dGV&, auto& m) { m.Ce23[1][1] = 560; },
              {"inner face 1 at (", "between cells 1 and 560", "grids share no face"}},
        Fault{"InnerDirection",
              [](CKvx3dGV&, auto& m) { std::swap(m.Ce23[0][4], m.Ce23[1][4]); },
              {"inner face 4 at (", "from the owner to the neighbor"}},
        Fault{"NonmatchingFlag",
              [](CKvx3dGV&, auto& m) { m.nonmatchingFace[2] = 2; },
              {"inner face 2 at (", "nonmatchingFace must be 0 or 1"}},
        Fault{"BoundaryCell",
              [](CKvx3dGV&, auto& m) { m.CInlet23[2] = 0; },
              {"inlet face 2 at (", "beside cell 0", "one from 1 to 560"}},
        Fault{"GhostRange",
              [](CKvx3dGV&, auto& m) { m.idOutlet[1] = m.Nc; },
              {"outlet face 1 at (", "ghost cell of its own from 561 to 1840"}},
        Fault{"GhostTwice",
              [](CKvx3dGV&, auto& m) { m.idSymm[2] = m.idSymm[1]; },
              {"symmetry face 2 at (", "ghost cell of its own"}},
        Fault{"BoundaryDirection",
              [](CKvx3dGV&, auto& m) { m.nyWall[1] = -m.nyWall[1]; },
              {"wall face 1 at (", "must point out of the domain"}},
        Fault{"CavityZero",
              [](CKvx3dGV& gv, auto& m) {
                  for (int cell = 1; cell <= m.Nc; ++cell) {
                      --gv.cavityId[cell];
                  }
              },
              {"2 cavities with ids from 0 to 1", "number them 1, 2, 3"}},
        Fault{"CavityGap",
              [](CKvx3dGV& gv, auto& m) {
                  for (int cell = 401; cell <= m.Nc; ++cell) {
                      gv.cavityId[cell] = 3;
                  }
              },
              {"2 cavities with ids from 1 to 3", "without a gap"}},
        Fault{"CavityOfTheLastCellAlone",
              [](CKvx3dGV& gv, auto& m) { gv.cavityId[m.Nc] = 3; },
              {"cell 560 at (", "the only one of cavity 3 and the last of all"}},
        Fault{"NoInlet",
              [](CKvx3dGV&, auto& m) {
                  m.NcAll -= m.NInlet;
                  for (int i = 1; i <= m.NOutlet; ++i)
                      m.idOutlet[i] -= m.NInlet;
                  for (int i = 1; i <= m.NWall; ++i)
                      m.idWall[i] -= m.NInlet;
                  for (int i = 1; i <= m.NSymm; ++i)
                      m.idSymm[i] -= m.NInlet;
                  m.NInlet = 0;
              },
              {"there is no inlet face", "which cavity is the background"}},
        Fault{"BackgroundIsNotTheFirst",
              [](CKvx3dGV& gv, auto& m) {
                  for (int cell = 1; cell <= m.Nc; ++cell) {
                      gv.cavityId[cell] = 3 - gv.cavityId[cell];
                  }
              },
              {"inlet face 1 lies in cavity 2"}},
        Fault{"NoGroup",
              [](CKvx3dGV& gv, auto&) { gv.NOversetBCGroup[0] = 0; },
              {"0 overset groups for 1 component grids"}},
        Fault{"EmptyGroup",
              [](CKvx3dGV& gv, auto&) { gv.oversetBCFaceCount[1] = 0; },
              {"overset group 1 has no face"}},
        Fault{"GroupOutOfRange",
              [](CKvx3dGV& gv, auto&) { gv.oversetBCWallFace[1][3] = 121; },
              {"entry 3 of overset group 1, wall face 121", "from 1 to 120"}},
        Fault{"WallTwiceInGroups",
              [](CKvx3dGV& gv, auto&) { gv.oversetBCWallFace[1][2] = gv.oversetBCWallFace[1][1]; },
              {"entry 2 of overset group 1", "one group at most"}},
        Fault{"GroupBesideBackground",
              [](CKvx3dGV& gv, auto&) { gv.oversetBCWallFace[1][1] = 1; },
              {"entry 1 of overset group 1, wall face 1", "group 1 borders component1"}}),
    CaseName<Fault>);

TEST(ContractFaults, SoundObjectsHaveNone) {
    for (const auto& [file, parameters] :
         {std::pair<const char*, host::MeshParameters>{channelGeo, {{"n", 5}, {"two", 1}}},
          {boxGeo, {{"n", 5}, {"kind", 3}}},
          {sphereGeo, {{"n", 4}}}}) {
        const host::Mesh mesh = ReadShipped(file, parameters);
        const HostObjects objects(mesh, ".");

        EXPECT_EQ(host::ContractFaults(objects.gv, objects.fvm), std::vector<std::string>());
    }
}

TEST(ContractFaults, BlocksOfANonmatchingInterfaceShareFlaggedFacesOnly) {
    host::Mesh mesh = ReadShipped("nonmatching_blocks.geo", {{"n", 2}, {"m", 3}});
    host::JoinInterface(mesh, host::WholeFaces::None);
    HostObjects objects(mesh, ".");
    EXPECT_TRUE(host::ContractFaults(objects.gv, objects.fvm).empty());

    objects.fvm.nonmatchingFace[objects.fvm.Ne] = 0;

    EXPECT_TRUE(HasLine(host::ContractFaults(objects.gv, objects.fvm), {"grids share no face"}));
}

}  // namespace
