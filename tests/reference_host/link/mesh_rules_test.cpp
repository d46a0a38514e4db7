#include "host_checks/mesh_rules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "host_checks/host_checks.h"
#include "host_checks/host_rules.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/mesh/cell_size.h"
#include "reference_host/mesh/messages.h"
#include "tests/reference_host/mesh/mesh_files.h"

namespace {

using host::Mesh;
using Lines = std::vector<std::string>;
using Edits = std::vector<std::pair<std::string, std::string>>;

/// The texts of all faults that the checks find before the toolbox cuts a mesh.
Lines FaultsOf(const Mesh& mesh) {
    const host::HostObjects objects(mesh, ".");
    Lines lines;
    for (const kvx3d::checks::Fault& fault :
         kvx3d::checks::MaySetUp(objects.gv, objects.fvm).faults) {
        lines.push_back(Text(fault));
    }
    return lines;
}

/// The edges of a face, lower node first, in ascending order.
std::vector<std::pair<int, int>> EdgesOf(const std::vector<int>& nodes) {
    std::vector<std::pair<int, int>> edges;
    for (std::size_t k = 0; k < nodes.size(); ++k) {
        edges.push_back(std::minmax(nodes[k], nodes[(k + 1) % nodes.size()]));
    }
    std::sort(edges.begin(), edges.end());
    return edges;
}

struct Shipped {
    const char* name;
    const char* file;
    host::MeshParameters parameters;
};

class RulesOfShippedMesh : public testing::TestWithParam<Shipped> {};

TEST_P(RulesOfShippedMesh, AreKept) {
    const Mesh mesh = ReadShipped(GetParam().file, GetParam().parameters);

    EXPECT_EQ(FaultsOf(mesh), Lines());
}

INSTANTIATE_TEST_SUITE_P(
    All, RulesOfShippedMesh,
    testing::Values(Shipped{"Channel5", channelGeo, {{"n", 5}}},
                    Shipped{"Channel20", channelGeo, {{"n", 20}}},
                    Shipped{"DonorRatio2", channelGeo, {{"n", 10}, {"ratio", 2}}},
                    Shipped{"DonorRatio4", channelGeo, {{"n", 5}, {"ratio", 4}}},
                    Shipped{"DonorRatioThreeQuarters", channelGeo, {{"n", 10}, {"ratio", 0.75}}},
                    Shipped{"ThickAnnulus", channelGeo, {{"n", 20}, {"ro", 1.65}}},
                    Shipped{"ThinAnnulus", channelGeo, {{"n", 10}, {"ro", 1}}},
                    Shipped{"TwoComponents", channelGeo, {{"n", 10}, {"two", 1}}},
                    Shipped{"Box5", boxGeo, {{"n", 5}}}, Shipped{"Box20", boxGeo, {{"n", 20}}},
                    Shipped{"Prisms5", boxGeo, {{"n", 5}, {"kind", 4}}},
                    Shipped{"Prisms20", boxGeo, {{"n", 20}, {"kind", 4}}},
                    Shipped{"Layers", boxGeo, {{"n", 10}, {"nz", 3}}},
                    Shipped{"Sphere5", sphereGeo, {{"n", 5}}},
                    Shipped{"Sphere6", sphereGeo, {{"n", 6}}}),
    CaseName<Shipped>);

/// host_checks derives from the host objects what the mesh knows by its faces.
TEST_P(RulesOfShippedMesh, ViewOfTheHostObjectsFindsTheNodesOfAllBoundaryFaces) {
    const Mesh mesh = ReadShipped(GetParam().file, GetParam().parameters);
    const host::HostObjects objects(mesh, ".");
    const kvx3d::checks::MeshView view(objects.gv, objects.fvm);

    EXPECT_EQ(view.IsOneCellThick(), mesh.IsQuasi2d());
    EXPECT_EQ(view.GridCount(), mesh.GridCount());
    for (host::Boundary kind : host::allBoundaries) {
        for (int i = 1; i <= mesh.FaceCount(kind); ++i) {
            const host::BoundaryFace& face = mesh.Faces(kind)[i];
            const std::vector<int> nodes =
                view.FaceNodes(face.cell, {face.centre.x(), face.centre.y(), face.centre.z()},
                               {face.area.x(), face.area.y(), face.area.z()});
            EXPECT_EQ(EdgesOf(nodes), EdgesOf(face.nodes)) << host::FaceName(kind, 0) << i;
        }
    }
}

/// The box with the annulus with an edited geometry that breaks a rule, and words of its line.
struct Edited {
    const char* name;
    host::MeshParameters parameters;
    Edits edits;
    Lines words;
};

class RuleBrokenByGeometry : public testing::TestWithParam<Edited> {};

TEST_P(RuleBrokenByGeometry, IsReportedInOneLine) {
    const Mesh mesh = ReadEdited(boxGeo, GetParam().parameters, GetParam().edits);

    const Lines lines = FaultsOf(mesh);

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
               {{"nt = Round(2 * n)", "nt = Round(1.4 * n)"}},
               {"overset1 face", "has an edge of 0.14", "more than 1.35 background cells (0.135)"}},
        Edited{"ThinCellsAtTheBoundary",
               {{"n", 10}},
               {{"nr = Round((ro - ri) * n)", "nr = Round(8 * (ro - ri) * n)"}},
               {"at the overset boundary is 0.12", "0.15 to 1.5 cells thick"}},
        Edited{"ThickCellsAtTheBoundary",
               {{"n", 10}},
               {{"nr = Round((ro - ri) * n)", "nr = Round(0.5 * (ro - ri) * n)"}},
               {"at the overset boundary is 1.7", "0.15 to 1.5 cells thick"}},
        Edited{"KiteBoundary",
               {{"n", 10}},
               {{"Circle(111 + i) = {111 + i, 100, 111 + j}", "Line(111 + i) = {111 + i, 111 + j}"},
                {"{cx + ro * Cos(a), cy + ro * Sin(a), 0}",
                 "{cx + (i ? ro : 1.7) * Cos(a), cy + (i ? ro : 1.7) * Sin(a), 0}"}},
               {"meet at 107 degrees: round", "its faces may turn by 91"}},
        Edited{
            "HollowBoundary",
            {{"n", 10}},
            {{"Circle(111 + i) = {111 + i, 100, 111 + j}",
              "Point(131 + i) = {cx + 0.6 * Cos(i * Pi / 2 + 0.1 + Pi / 4), cy + 0.6 * Sin(i * "
              "Pi / 2 + 0.1 + Pi / 4), 0}; Bezier(111 + i) = {111 + i, 131 + i, 111 + j}"}},
            {"overset1 face, wall face", "in front of the plane of wall face", "must be convex"}}),
    CaseName<Edited>);

TEST(RulesOneCellThick, DepthsOfAFifthToEightCellsAreAccepted) {
    for (const char* dz : {"dz = 0.21 * h", "dz = 7.9 * h"}) {
        const Mesh mesh = ReadEdited(boxGeo, {{"n", 20}}, {{"dz = h * nz", dz}});

        EXPECT_FALSE(HasLine(FaultsOf(mesh), {"thick in z"})) << dz;
    }
}

TEST(RuleFaults, NameTheFirstPlaceAndTheNumberOfOthers) {
    const Mesh mesh = ReadEdited(boxGeo, {{"n", 10}}, {{"nt = Round(2 * n)", "nt = Round(n)"}});

    const Lines lines = FaultsOf(mesh);

    EXPECT_TRUE(HasLine(lines, {"overset1 face, wall face ", " at (", "(and 39 more): refine"}))
        << testing::PrintToString(lines);
}

TEST(RuleFaults, SingleGridWithoutInletHasSoundHostObjects) {
    const Mesh annulus = ReadShipped(boxGeo, {{"n", 5}, {"kind", 3}});
    const host::HostObjects objects(annulus, ".");

    EXPECT_TRUE(kvx3d::checks::HostFaults(objects.gv, objects.fvm).empty());
}

TEST(CellsPerUnit, CountsTheSmallestBackgroundCell) {
    EXPECT_EQ(host::CellsPerUnit(ReadShipped(boxGeo, {{"n", 5}})), 5);
    EXPECT_EQ(host::CellsPerUnit(ReadShipped(boxGeo, {{"n", 10}, {"nz", 3}})), 10);
}

/// On a mesh one cell thick the length is taken in the plane.
TEST(CellsPerUnit, DoesNotDependOnTheThicknessOfAMeshOneCellThick) {
    const Mesh mesh = ReadEdited(boxGeo, {{"n", 5}, {"kind", 1}}, {{"dz = h * nz", "dz = 5 * h"}});

    EXPECT_EQ(host::CellsPerUnit(mesh), 5);
}

}  // namespace
