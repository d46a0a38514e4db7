#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "host_checks/host_checks.h"
#include "reference_host/link/body.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/output_capture.h"

namespace {

using host::Boundary;
using host::Mesh;
using host::Vec3;
using testing::HasSubstr;

constexpr const char* flowGeo = "sphere_overset.geo";

struct ShellMesh {
    const char* name;
    int shell;
    std::size_t nodesPerCell;
    double smallestVolume;  // of the shell, as a part of that between the two spheres

    friend std::ostream& operator<<(std::ostream& out, const ShellMesh& mesh) {
        return out << mesh.name;
    }
};

class SphereMesh : public testing::TestWithParam<ShellMesh> {
public:
    SphereMesh()
        : mesh(ReadShipped(flowGeo, {{"n", 5},
                                     {"shell", GetParam().shell},
                                     {"sd", 5},
                                     {"up", 5},
                                     {"dn", 5},
                                     {"gr", 1.8}})) {}

    const Mesh mesh;
};

TEST_P(SphereMesh, KeepsAllRulesAndEveryFaceHasADonor) {
    OutputCapture quiet;
    host::HostObjects objects(mesh, ".");
    const auto verdict = kvx3d::checks::MaySetUp(objects.gv, objects.fvm);
    EXPECT_TRUE(verdict) << Report(verdict);
    CKVXOversetMesh overset;
    overset.SetFVM(&objects.gv, &objects.fvm);

    const auto soundness = kvx3d::checks::Assess(objects.gv, objects.fvm, overset);

    EXPECT_TRUE(soundness) << Report(soundness);
}

TEST_P(SphereMesh, HasCellsOfOneShapeInTheShellAndHexahedraElsewhere) {
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        ASSERT_EQ(mesh.cellNodes[cell].size(),
                  mesh.cavity[cell] == 2 ? GetParam().nodesPerCell : 8u);
    }
}

TEST_P(SphereMesh, FillsTheSpaceBetweenTwoSpheres) {
    double volume = 0.0;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        volume += mesh.cavity[cell] == 2 ? mesh.volume[cell] : 0.0;
    }
    const double outer = 1.25;
    const double whole = 4.0 / 3.0 * std::acos(-1.0) * (outer * outer * outer - 0.5 * 0.5 * 0.5);
    EXPECT_LT(volume, whole);  // the flat faces cut off parts of the spheres
    EXPECT_GT(volume, GetParam().smallestVolume * whole);

    for (int face = 1; face <= mesh.FaceCount(Boundary::Wall); ++face) {
        const host::BoundaryFace& wall = mesh.Faces(Boundary::Wall)[face];
        if (mesh.cavity[wall.cell] == 2) {
            for (const int node : wall.nodes) {
                ASSERT_NEAR(mesh.nodes[node].norm(), wall.oversetGroup == 1 ? outer : 0.5, 1e-9);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shells, SphereMesh,
                         testing::Values(ShellMesh{"Hexahedra", 0, 8, 0.98},
                                         ShellMesh{"Prisms", 1, 6, 0.97},
                                         ShellMesh{"Tetrahedra", 2, 4, 0.97}),
                         CaseName<ShellMesh>);

TEST(SphereMeshSides, AreSymmetryPlanesBehindTheFirstLayer) {
    const Mesh mesh = ReadShipped(flowGeo, {{"n", 5}, {"sd", 5}});
    ASSERT_GT(mesh.FaceCount(Boundary::Symmetry), 0);
    double firstEnd = 0.0;  // of the walls along x
    double symmetryBegin = 0.0;
    for (int face = 1; face <= mesh.FaceCount(Boundary::Wall); ++face) {
        const host::BoundaryFace& wall = mesh.Faces(Boundary::Wall)[face];
        if (mesh.cavity[wall.cell] == 1) {
            firstEnd = std::min(firstEnd, wall.centre.x());
            EXPECT_LT(wall.centre.x(), -10.0);
            EXPECT_NEAR(std::max(std::abs(wall.centre.y()), std::abs(wall.centre.z())), 5.0, 1e-9);
        }
    }
    for (int face = 1; face <= mesh.FaceCount(Boundary::Symmetry); ++face) {
        const host::BoundaryFace& side = mesh.Faces(Boundary::Symmetry)[face];
        symmetryBegin = std::min(symmetryBegin, side.centre.x());
        EXPECT_NEAR(std::max(std::abs(side.centre.y()), std::abs(side.centre.z())), 5.0, 1e-9);
    }
    EXPECT_LT(firstEnd, symmetryBegin);
}

TEST(SphereMeshSides, AreWallsIfTheyDoNotSlip) {
    const Mesh mesh = ReadShipped(flowGeo, {{"n", 5}, {"sd", 5}, {"slip", 0}});

    EXPECT_EQ(mesh.FaceCount(Boundary::Symmetry), 0);
}

TEST(SphereMeshParameters, AreRefusedIfTheyGiveNoMesh) {
    const auto error = [](const std::string& name, double value) {
        return ErrorOf([&] { ReadShipped(flowGeo, {{"n", 5}, {name, value}}); });
    };
    EXPECT_THAT(error("shell", 3), HasSubstr("shell must be 0, 1 or 2, not 3"));
    EXPECT_THAT(error("ro", 0.5), HasSubstr("ro must be above the radius 0.5"));
    EXPECT_THAT(error("tb", 0), HasSubstr("must be above 0"));
    EXPECT_THAT(error("to", 5), HasSubstr("no room for layers"));
}

}  // namespace
