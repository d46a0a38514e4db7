#include "reference_host/link/mesh_rules.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "reference_host/mesh/cell_size.h"
#include "reference_host/mesh/mesh_geometry.h"
#include "tests/reference_host/mesh/mesh_files.h"

namespace {

using host::Boundary;
using host::BoundaryFace;
using host::Mesh;
using Lines = std::vector<std::string>;
using Edits = std::vector<std::pair<std::string, std::string>>;

std::vector<BoundaryFace>& FacesOf(Mesh& mesh, Boundary kind) {
    return mesh.boundaryFaces[static_cast<int>(kind)];
}

struct Shipped {
    const char* name;
    const char* file;
    host::MeshParameters parameters;
};

class RulesOfShippedMesh : public testing::TestWithParam<Shipped> {};

TEST_P(RulesOfShippedMesh, AreKept) {
    const Mesh mesh = ReadShipped(GetParam().file, GetParam().parameters);

    EXPECT_EQ(host::FaultsBeforeCutting(mesh), Lines());
}

INSTANTIATE_TEST_SUITE_P(
    All, RulesOfShippedMesh,
    testing::Values(Shipped{"Channel5", channelGeo, {{"n", 5}}},
                    Shipped{"Channel20", channelGeo, {{"n", 20}}},
                    Shipped{"TwoComponents", channelGeo, {{"n", 10}, {"two", 1}}},
                    Shipped{"Box5", boxGeo, {{"n", 5}}}, Shipped{"Box20", boxGeo, {{"n", 20}}},
                    Shipped{"Prisms5", boxGeo, {{"n", 5}, {"kind", 4}}},
                    Shipped{"Prisms20", boxGeo, {{"n", 20}, {"kind", 4}}},
                    Shipped{"Layers", boxGeo, {{"n", 10}, {"nz", 3}}},
                    Shipped{"Sphere5", sphereGeo, {{"n", 5}}},
                    Shipped{"Sphere6", sphereGeo, {{"n", 6}}}),
    CaseName<Shipped>);

/// The box with the annulus, its geometry edited: what breaks a rule, and words of its line.
struct Edited {
    const char* name;
    host::MeshParameters parameters;
    Edits edits;
    Lines words;
};

class RuleBrokenByGeometry : public testing::TestWithParam<Edited> {};

TEST_P(RuleBrokenByGeometry, IsToldInOneLine) {
    const Mesh mesh = ReadEdited(boxGeo, GetParam().parameters, GetParam().edits);

    const Lines lines = host::FaultsBeforeCutting(mesh);

    EXPECT_TRUE(HasLine(lines, GetParam().words)) << testing::PrintToString(lines);
}

INSTANTIATE_TEST_SUITE_P(
    Each, RuleBrokenByGeometry,
    testing::Values(
        Edited{"ComponentAtTheWall",
               {{"n", 10}, {"ro", 1.9}},
               {},
               {"of component1 lies outside or within 2 of its sizes of wall face",
                "move the component away from the walls"}},
        Edited{"ComponentOutsideTheDomain",
               {{"n", 10}},
               {{"cx = 2;", "cx = 0.5; "}, {"cy = 2;", "cy = 0.5;"}},
               {"of component1 lies outside or within"}},
        Edited{"GapOfThreeCells",
               {{"n", 10}, {"ro", 1.7}},
               {},
               {"overset1 face, wall face", "is 0.3", "from wall face",
                "less than 3.5 background "
                "cells (0.35)"}},
        Edited{"ThicknessOfThreeCells",
               {{"n", 10}, {"ri", 0.95}},
               {},
               {"on the body is", "less than 3.5 background cells (0.35)", "thicker"}},
        Edited{"TooThinInZ",
               {{"n", 10}},
               {{"dz = h * nz", "dz = 0.1 * h"}},
               {"is 0.01 thick in z, 0.1 of its size", "0.2 to 8"}},
        Edited{"TooThickInZ",
               {{"n", 10}},
               {{"dz = h * nz", "dz = 9 * h"}},
               {"is 0.9 thick in z, 9 of its size"}},
        Edited{"LongOversetFaces",
               {{"n", 10}},
               {{"nt = Round(2 * n)", "nt = Round(1.5 * n)"}},
               {"overset1 face", "has an edge of 0.13", "more than 1.25 background cells (0.125)"}},
        Edited{"ThinCellsAtTheBoundary",
               {{"n", 10}},
               {{"nr = Round((ro - ri) * n)", "nr = Round(2 * (ro - ri) * n)"}},
               {"at the overset boundary is 0.4", "0.7 to 1.5 cells thick"}},
        Edited{"ThickCellsAtTheBoundary",
               {{"n", 10}},
               {{"nr = Round((ro - ri) * n)", "nr = Round(0.5 * (ro - ri) * n)"}},
               {"at the overset boundary is 1.7", "0.7 to 1.5 cells thick"}},
        Edited{
            "SquareBoundary",
            {{"n", 10}},
            {{"Circle(111 + i) = {111 + i, 100, 111 + j}", "Line(111 + i) = {111 + i, 111 + j}"}},
            {"meet at 90 degrees (and 3 more)", "its faces may turn by 45"}},
        Edited{
            "HollowBoundary",
            {{"n", 10}},
            {{"Circle(111 + i) = {111 + i, 100, 111 + j}",
              "Point(131 + i) = {cx + 0.6 * Cos(i * Pi / 2 + 0.1 + Pi / 4), cy + 0.6 * Sin(i * "
              "Pi / 2 + 0.1 + Pi / 4), 0}; Bezier(111 + i) = {111 + i, 131 + i, 111 + j}"}},
            {"overset1 face, wall face", "in front of the plane of wall face", "must be convex"}}),
    CaseName<Edited>);

TEST(RulesOneCellThick, DepthsOfAFifthToEightCellsAreTaken) {
    for (const char* dz : {"dz = 0.21 * h", "dz = 7.9 * h"}) {
        const Mesh mesh = ReadEdited(boxGeo, {{"n", 20}}, {{"dz = h * nz", dz}});

        EXPECT_FALSE(HasLine(host::FaultsBeforeCutting(mesh), {"thick in z"})) << dz;
    }
}

/// A fault put into the sound mesh of the box with the annulus.
struct Broken {
    const char* name;
    std::function<void(Mesh&)> make;
    Lines words;
};

class RuleBrokenByGroups : public testing::TestWithParam<Broken> {};

TEST_P(RuleBrokenByGroups, IsToldInOneLine) {
    Mesh mesh = ReadShipped(boxGeo, {{"n", 5}});
    GetParam().make(mesh);

    const Lines lines = host::FaultsBeforeCutting(mesh);

    EXPECT_TRUE(HasLine(lines, GetParam().words)) << testing::PrintToString(lines);
}

// Wall faces 1..40 are the box's, 41..120 inner and outer boundary of the annulus.
INSTANTIATE_TEST_SUITE_P(
    Each, RuleBrokenByGroups,
    testing::Values(
        Broken{"InletOnTheComponent",
               [](Mesh& mesh) {
                   FacesOf(mesh, Boundary::Inlet).push_back(FacesOf(mesh, Boundary::Wall).back());
               },
               {"inlet face 21 at (", "beside component1", "only the background has inlets"}},
        Broken{"NoInlet",
               [](Mesh& mesh) { FacesOf(mesh, Boundary::Inlet).resize(1); },
               {"there is no inlet face"}},
        Broken{"NoWallBesideTheBackground",
               [](Mesh& mesh) {
                   auto& walls = FacesOf(mesh, Boundary::Wall);
                   walls.erase(walls.begin() + 1, walls.begin() + 41);
               },
               {"no physical wall lies beside the background"}},
        Broken{"EmptyGroup",
               [](Mesh& mesh) {
                   for (BoundaryFace& face : FacesOf(mesh, Boundary::Wall)) {
                       face.oversetGroup = 0;
                   }
               },
               {"no overset1 face lies beside component1"}},
        Broken{"OneCellGrid",
               [](Mesh& mesh) { mesh.cavity[mesh.CellCount()] = 3; },
               {"component2 has 1 cell: give each grid two cells"}},
        Broken{"MetresInsteadOfDiameters",
               [](Mesh& mesh) {
                   for (host::Vec3& node : mesh.nodes) {
                       node *= 0.01;
                   }
                   host::ComputeGeometry(mesh);
               },
               {"overset1 face, wall face", "below 1e-6", "so that the body measures 1"}},
        Broken{"CellsSortedOnAllAxes",
               [](Mesh& mesh) {
                   // Many cells more, as on a diagonal: nothing but their centres counts here.
                   for (int i = 0; i < 10001; ++i) {
                       mesh.cellCentre.push_back(host::Vec3::Constant(10.0 + i));
                       mesh.cavity.push_back(1);
                       mesh.volume.push_back(1.0);
                       mesh.cellNodes.push_back(mesh.cellNodes[1]);
                   }
               },
               {"the search tree of the background cells is more than 10000 levels deep"}}),
    CaseName<Broken>);

TEST(RuleFaults, NameThePlaceAndTheNumberOfOthers) {
    const Mesh mesh = ReadEdited(boxGeo, {{"n", 10}}, {{"nt = Round(2 * n)", "nt = Round(n)"}});

    const Lines lines = host::FaultsBeforeCutting(mesh);

    EXPECT_TRUE(HasLine(lines, {"overset1 face, wall face ", " at (", "(and 39 more): refine"}))
        << testing::PrintToString(lines);
}

TEST(EdgeLengths, AreThoseOfRegularCells) {
    EXPECT_NEAR(host::EdgeLengths(ReadShipped(boxGeo, {{"n", 5}, {"kind", 1}}))[1], 0.2, 1e-11);

    MshText msh;
    const double height = std::sqrt(3.0) / 2;
    const int n[] = {msh.Node(0, 0, 0), msh.Node(1, 0, 0), msh.Node(0.5, height, 0),
                     msh.Node(0.5, height / 3, std::sqrt(2.0 / 3.0))};
    msh.Element(4, "background", {n[0], n[1], n[2], n[3]});
    for (int skipped : {0, 1, 2, 3}) {
        std::vector<int> face;
        for (int i : {0, 1, 2, 3}) {
            if (i != skipped) {
                face.push_back(n[i]);
            }
        }
        msh.Element(2, "wall", face);
    }
    EXPECT_NEAR(host::EdgeLengths(msh.Read())[1], 1.0, 1e-14);
}

TEST(EdgeLengths, OfAMeshOneCellThickAreInThePlane) {
    const Mesh mesh = ReadEdited(boxGeo, {{"n", 5}, {"kind", 1}}, {{"dz = h * nz", "dz = 5 * h"}});

    EXPECT_NEAR(host::EdgeLengths(mesh)[1], 0.2, 1e-11);
}

}  // namespace
