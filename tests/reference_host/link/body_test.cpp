#include "reference_host/link/body.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/output_capture.h"

namespace {

using host::Boundary;
using host::WallRole;
using testing::HasSubstr;

/// A mesh with its host objects and donors.
struct Linked {
    explicit Linked(const std::string& file, const host::MeshParameters& parameters)
        : mesh(ReadShipped(file, parameters)), objects(mesh, "."), link(mesh, objects) {}

    OutputCapture quiet;
    const host::Mesh mesh;
    host::HostObjects objects;
    host::OversetLink link;
};

TEST(Body, OfAnOversetMeshIsTheWallInsideTheComponent) {
    const Linked linked(channelGeo, {{"n", 5}});

    for (int face = 1; face <= linked.mesh.FaceCount(Boundary::Wall); ++face) {
        const host::BoundaryFace& wall = linked.mesh.Faces(Boundary::Wall)[face];
        const double radius = std::hypot(wall.centre.x() - 2.0, wall.centre.y() - 2.0);
        const WallRole expected = radius < 0.51   ? WallRole::Body
                                  : radius < 1.26 ? WallRole::Overset
                                                  : WallRole::Other;
        ASSERT_EQ(RoleOf(linked.mesh, linked.link, face), expected) << face;
        ASSERT_EQ(IsBody(linked.mesh, linked.link, Boundary::Wall, face),
                  expected == WallRole::Body);
    }
    EXPECT_EQ(BodyFaces(linked.mesh, linked.link).size(), 40u);  // 8 n faces around the cylinder
}

TEST(Body, OfASingleGridIsEveryWall) {
    const Linked linked(boxGeo, {{"n", 5}, {"kind", 1}});

    EXPECT_EQ(BodyFaces(linked.mesh, linked.link).size(),
              static_cast<std::size_t>(linked.mesh.FaceCount(Boundary::Wall)));
}

TEST(Body, OfASingleGridWithTheGroupBodyIsThatGroup) {
    const Linked linked(fittedGeo, {{"n", 5}});

    for (int face = 1; face <= linked.mesh.FaceCount(Boundary::Wall); ++face) {
        const host::BoundaryFace& wall = linked.mesh.Faces(Boundary::Wall)[face];
        const double radius = std::hypot(wall.centre.x() - 2.0, wall.centre.y() - 2.0);
        ASSERT_EQ(RoleOf(linked.mesh, linked.link, face),
                  radius < 0.51 ? WallRole::Body : WallRole::Other)
            << face;
    }
    EXPECT_EQ(BodyFaces(linked.mesh, linked.link).size(), 52u);
    EXPECT_EQ(ErrorOf([&] { RequireSeparateBody(linked.mesh, linked.link, "a.geo", "cylinder"); }),
              "");
}

TEST(Body, HasOnlyWallFaces) {
    const Linked linked(boxGeo, {{"n", 5}, {"kind", 1}});

    for (const Boundary kind : {Boundary::Inlet, Boundary::Outlet, Boundary::Symmetry}) {
        EXPECT_FALSE(IsBody(linked.mesh, linked.link, kind, 1));
    }
}

TEST(BodyRequirement, RefusesAMeshWithoutWalls) {
    const Linked linked(boxGeo, {{"n", 5}, {"kind", 3}});

    EXPECT_EQ(ErrorOf([&] { RequireBody(linked.mesh, linked.link, "a.geo", "nothing to heat"); }),
              "a.geo: nothing to heat: no face of the group \"wall\" belongs to the grid");
}

TEST(BodyRequirement, OfASeparateBodyRefusesASingleGridWithoutTheGroupBody) {
    const Linked single(boxGeo, {{"n", 5}, {"kind", 1}});
    EXPECT_EQ(ErrorOf([&] { RequireSeparateBody(single.mesh, single.link, "a.geo", "cylinder"); }),
              "a.geo: no cylinder: the mesh has neither a component nor a physical surface group "
              "\"body\"");

    const Linked pair(channelGeo, {{"n", 5}});
    EXPECT_EQ(ErrorOf([&] { RequireSeparateBody(pair.mesh, pair.link, "a.geo", "cylinder"); }), "");
}

}  // namespace
