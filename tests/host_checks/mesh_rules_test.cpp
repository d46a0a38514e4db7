#include "host_checks/mesh_rules.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "host_checks/host_rules.h"
#include "plain/samples/block_host.h"
#include "tests/host_checks/faults.h"

namespace {

using kvx3d::checks::Fault;
using kvx3d::checks::MeshFaults;
using kvx3d::checks::MeshView;
using kvx3d::checks::Rule;

std::vector<Fault> FaultsOf(const BlockHost& host) {
    EXPECT_EQ(TextsOf(kvx3d::checks::HostFaults(host.gv, host.fvm)), "");
    return MeshFaults(MeshView(host.gv, host.fvm));
}

/// A sound mesh with one of its measures changed, and the rule that this breaks.
struct Shape {
    const char* name;
    Rule rule;
    std::function<void(AnnulusShape&)> change;
    std::vector<std::string> words;
};

class MeshRuleOfShape : public testing::TestWithParam<Shape> {};

TEST_P(MeshRuleOfShape, IsReportedOnceWhenBroken) {
    AnnulusShape shape;
    GetParam().change(shape);
    const AnnulusHost host(shape);

    ExpectFault(FaultsOf(host), GetParam().rule, GetParam().words);
}

/// Radius of an equilateral triangle with the inner radius 0.65 and a corner at the angle 0.
double TriangleRadius(double angle) {
    const double third = 2.0 * std::acos(-1.0) / 3.0;
    return 0.65 / std::cos(std::remainder(angle - third / 2.0, third));
}

INSTANTIATE_TEST_SUITE_P(
    Each, MeshRuleOfShape,
    testing::Values(
        Shape{"ComponentNearAWall",
              Rule::WallDistance,
              [](AnnulusShape& s) {
                  s.outer = 1.9;
                  s.across = 14;
              },
              {"of component1 lies outside or within 2 of its sizes of wall face",
               "move the component away from the walls"}},
        Shape{"ComponentThroughAWall",
              Rule::WallDistance,
              [](AnnulusShape& s) { s.y = 0.6; },
              {"of component1 lies outside or within"}},
        Shape{"GapOfThreeCells",
              Rule::Gap,
              [](AnnulusShape& s) {
                  s.outer = 1.7;
                  s.around = 110;
                  s.across = 12;
              },
              {"overset1 face, wall face ", " is 0.3", " from wall face ",
               "less than 3.5 background cells (0.35)"}},
        Shape{"ThicknessOfThreeCells",
              Rule::Thickness,
              [](AnnulusShape& s) {
                  s.inner = 0.95;
                  s.across = 3;
              },
              {"on the body is 0.3 from overset1 face", "less than 3.5 background cells (0.35)",
               "make the component thicker"}},
        Shape{"TooThinInZ",
              Rule::Depth,
              [](AnnulusShape& s) { s.depth = 0.01; },
              {"is 0.01 thick in z, 0.1 of its size in the plane", "0.2 to 8 times"}},
        Shape{"TooThickInZ",
              Rule::Depth,
              [](AnnulusShape& s) { s.depth = 0.9; },
              {"is 0.9 thick in z, 9 of its size"}},
        Shape{"LongOuterFaces",
              Rule::OuterFaceSize,
              [](AnnulusShape& s) { s.around = 55; },
              {"overset1 face", "has an edge of 0.14", "more than 1.35 background cells (0.135)"}},
        Shape{"ThinOuterLayer",
              Rule::OuterLayer,
              [](AnnulusShape& s) { s.across = 60; },
              {"at the overset boundary is 0.12", "0.15 to 1.5 cells thick"}},
        Shape{"ThickOuterLayer",
              Rule::OuterLayer,
              [](AnnulusShape& s) { s.across = 4; },
              {"at the overset boundary is 1.7", "0.15 to 1.5 cells thick"}},
        Shape{"TriangularBoundary",
              Rule::SmoothBoundary,
              [](AnnulusShape& s) {
                  s.around = 81;  // with a node at each corner
                  s.outerRadius = TriangleRadius;
              },
              {" meet at 120 degrees (and 2 more)", "its faces may turn by 91"}},
        Shape{"HollowBoundary",
              Rule::ConvexBoundary,
              [](AnnulusShape& s) {
                  s.outerRadius = [](double angle) { return 1.25 + 0.25 * std::cos(3.0 * angle); };
              },
              {"overset1 face, wall face ", " in front of the plane of wall face ",
               "must be convex"}},
        Shape{"HollowBoundaryOfTheSecondComponent",
              Rule::ConvexBoundary,
              [](AnnulusShape& s) {
                  s.width = 8.0;
                  s.hasSecond = true;
                  s.secondRadius = [](double angle) { return 1.25 + 0.25 * std::cos(3.0 * angle); };
              },
              {"overset2 face, wall face ", " in front of the plane of wall face "}},
        Shape{"MetersInsteadOfDiameters",
              Rule::LengthScale,
              [](AnnulusShape& s) { s.scale = 0.01; },
              {"overset1 face, wall face ", "below 1e-6", "so that the body measures 1"}}),
    NameOfCase<Shape>);

/// One fault put into the arrays of a sound mesh.
struct Edit {
    const char* name;
    Rule rule;
    std::function<void(CKvx3dGV&, CKVX3DFiniteVolumeMesh&)> make;
    std::vector<std::string> words;
};

class MeshRuleOfArrays : public testing::TestWithParam<Edit> {};

TEST_P(MeshRuleOfArrays, IsReportedOnceWhenBroken) {
    AnnulusShape shape = SmallAnnulus();
    shape.width = 8.0;
    shape.hasSecond = true;
    AnnulusHost host(shape);
    GetParam().make(host.gv, host.fvm);

    ExpectFault(MeshFaults(MeshView(host.gv, host.fvm)), GetParam().rule, GetParam().words);
}

// Cells 1..800 are the background, 801..960 component1; wall faces 1..80 border the background.
INSTANTIATE_TEST_SUITE_P(
    Each, MeshRuleOfArrays,
    testing::Values(Edit{"InletOfTheComponent",
                         Rule::InletGrid,
                         [](CKvx3dGV&, auto& m) { m.CInlet23[2] = 801; },
                         {"inlet face 2 at (", "lies beside component1",
                          "only the background has inlets"}},
                    Edit{"NoWallBesideTheBackground",
                         Rule::BackgroundWall,
                         [](CKvx3dGV&, auto& m) {
                             for (int wall = 1; wall <= 80; ++wall) {
                                 m.CWall23[wall] = 801;
                             }
                         },
                         {"no physical wall lies beside the background"}},
                    Edit{"GridOfOneCell",
                         Rule::GridCells,
                         [](CKvx3dGV& gv, auto& m) {
                             for (int cell = 961; cell < m.Nc; ++cell) {
                                 gv.cavityId[cell] = 2;
                             }
                             gv.oversetBCWallFace[2][1] = gv.oversetBCWallFace[2][40];
                             m.CWall23[gv.oversetBCWallFace[2][1]] = m.Nc;
                         },
                         {"component2 has 1 cell: give each grid two cells"}},
                    Edit{"NodesOfAnotherCell",
                         Rule::CellNodes,
                         [](CKvx3dGV& gv, auto& m) {
                             m.cellNodes[m.CWall23[gv.oversetBCWallFace[1][1]]] = m.cellNodes[1];
                         },
                         {"overset1 face, wall face ", "has fewer than three nodes of cell "}}),
    NameOfCase<Edit>);

TEST(MeshFaults, SoundMeshesHaveNone) {
    std::vector<AnnulusShape> shapes(5);
    shapes[1] = SmallAnnulus();
    shapes[2].layers = 3;
    shapes[2].depth = 0.3;
    shapes[3].width = 8.0;
    shapes[3].hasSecond = true;
    shapes[4].outerRadius = [](double angle) { return 1.25 + 0.1 * std::cos(2.0 * angle); };
    for (const AnnulusShape& shape : shapes) {
        const AnnulusHost host(shape);

        EXPECT_EQ(TextsOf(FaultsOf(host)), "") << &shape - shapes.data();
    }
}

TEST(MeshFaults, SingleGridHasNone) {
    BlockHost host;
    host.Add({{2, 2, 2},
              false,
              [](int i, int j, int k) {
                  return kvx3d::checks::Point{1.0 * i, 1.0 * j, 1.0 * k};
              },
              {BlockHost::inlet, BlockHost::outlet, BlockHost::wall, BlockHost::wall,
               BlockHost::symmetry, BlockHost::symmetry},
              0});

    EXPECT_EQ(TextsOf(FaultsOf(host)), "");
}

TEST(MeshFaults, DepthsOfAFifthToEightCellsAreAccepted) {
    for (const double depth : {0.021, 0.79}) {
        AnnulusShape shape;
        shape.depth = depth;
        const AnnulusHost host(shape);

        for (const Fault& fault : FaultsOf(host)) {
            EXPECT_NE(fault.rule, Rule::Depth) << depth << Text(fault);
            EXPECT_NE(fault.rule, Rule::OuterFaceSize) << depth << Text(fault);
        }
    }
}

/// The orientation of the mesh must not matter: the thin direction is found from the faces.
TEST(MeshFaults, MeshOneCellThickMayLieInAnyPlane) {
    AnnulusShape shape;
    shape.depth = 0.9;
    AnnulusHost host(shape);
    const auto swapAxes = [](double* x, double* z, int n) {
        for (int i = 1; i <= n; ++i) {
            std::swap(x[i], z[i]);
        }
    };
    CKVX3DFiniteVolumeMesh& m = host.fvm;
    swapAxes(m.xn, m.zn, m.Nn);
    swapAxes(m.xc, m.zc, m.Nc);
    swapAxes(m.xe, m.ze, m.Ne);
    swapAxes(m.nxe, m.nze, m.Ne);
    swapAxes(m.xInlet, m.zInlet, m.NInlet);
    swapAxes(m.nxInlet, m.nzInlet, m.NInlet);
    swapAxes(m.xOutlet, m.zOutlet, m.NOutlet);
    swapAxes(m.nxOutlet, m.nzOutlet, m.NOutlet);
    swapAxes(m.xWall, m.zWall, m.NWall);
    swapAxes(m.nxWall, m.nzWall, m.NWall);
    swapAxes(m.xSymm, m.zSymm, m.NSymm);
    swapAxes(m.nxSymm, m.nzSymm, m.NSymm);

    ExpectFault(FaultsOf(host), Rule::Depth, {"is 0.9 thick in x, 9 of its size"});
}

}  // namespace
