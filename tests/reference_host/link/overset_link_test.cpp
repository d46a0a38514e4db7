#include "reference_host/link/overset_link.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "overset/overset_mesh.h"
#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/output_capture.h"

namespace {

using host::Boundary;
using host::BoundaryFace;
using host::FaceSide;
using host::HostObjects;
using host::Mesh;
using host::OversetLink;
using host::Vec3;

/// A mesh cut by the toolbox, with what the toolbox printed.
struct Linked {
    Linked(const std::string& file, const host::MeshParameters& parameters)
        : mesh(ReadShipped(file, parameters)),
          objects(mesh, "."),
          link(mesh, objects),
          printed(capture.Out() + capture.Err()) {}

    OutputCapture capture;
    const Mesh mesh;
    HostObjects objects;
    OversetLink link;
    const std::string printed;
};

struct Shipped {
    const char* name;
    const char* file;
    host::MeshParameters parameters;
    int safeWalls;  // overset wall faces where the wall search of the toolbox ends at its first try
};

class LinkedMesh : public testing::TestWithParam<Shipped> {
protected:
    LinkedMesh() : linked(GetParam().file, GetParam().parameters) {}

    Linked linked;
    const Mesh& mesh = linked.mesh;
    OversetLink& link = linked.link;
};

/// Nearest active cell of a cavity by a scan; of equally near cells the one with the lowest id.
int NearestByScan(const Mesh& mesh, const OversetLink& link, int cavity, const Vec3& query) {
    int best = 0;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (mesh.cavity[cell] != cavity || !link.IsActive(cell)) {
            continue;
        }
        if (best == 0 || (mesh.cellCentre[cell] - query).squaredNorm() <
                             (mesh.cellCentre[best] - query).squaredNorm()) {
            best = cell;
        }
    }
    return best;
}

TEST_P(LinkedMesh, CutsBackgroundCellsOnly) {
    int nCut = 0;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (!link.IsActive(cell)) {
            ++nCut;
            ASSERT_EQ(mesh.cavity[cell], 1);
        }
    }

    EXPECT_TRUE(link.IsOverset());
    EXPECT_GT(nCut, 0);
}

TEST_P(LinkedMesh, SidesFollowTheStatesOfTheTwoCells) {
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const bool owner = link.IsActive(mesh.innerFaces[face].owner);
        const bool neighbor = link.IsActive(mesh.innerFaces[face].neighbor);
        const FaceSide expected = owner && neighbor ? FaceSide::Both
                                  : owner           ? FaceSide::DonorIsSecond
                                  : neighbor        ? FaceSide::DonorIsFirst
                                                    : FaceSide::None;
        ASSERT_EQ(link.Side(face), expected) << face;
    }
}

TEST_P(LinkedMesh, DonorsReplaceTheCutCellsInTheHostArraysOnly) {
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const host::InnerFace& inner = mesh.innerFaces[face];
        const int donor = link.Tables().inner[face];
        ASSERT_EQ(linked.objects.fvm.Ce23[0][face], link.First(face));
        ASSERT_EQ(linked.objects.fvm.Ce23[1][face], link.Second(face));
        ASSERT_EQ(link.First(face),
                  link.Side(face) == FaceSide::DonorIsFirst ? donor : inner.owner);
        ASSERT_EQ(link.Second(face),
                  link.Side(face) == FaceSide::DonorIsSecond ? donor : inner.neighbor);
    }
}

TEST_P(LinkedMesh, InnerDonorsAreActiveCellsOfTheComponentAcrossTheFace) {
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const int donor = link.Tables().inner[face];
        if (link.Side(face) == FaceSide::Both || link.Side(face) == FaceSide::None) {
            ASSERT_EQ(donor, 0);
            continue;
        }
        const host::InnerFace& inner = mesh.innerFaces[face];
        const double sign = link.Side(face) == FaceSide::DonorIsSecond ? 1.0 : -1.0;
        ASSERT_EQ(mesh.cavity[donor], 2);
        ASSERT_TRUE(link.IsActive(donor));
        ASSERT_GT(sign * (mesh.cellCentre[donor] - inner.centre).dot(inner.area), 0.0);
        if (link.Tables().tries[face] == 1) {
            const int cell = ActiveCell(mesh, link.Tables(), face);
            const Vec3 query = 2.0 * inner.centre - mesh.cellCentre[cell];
            const int nearest = NearestByScan(mesh, link, 2, query);
            ASSERT_NEAR((mesh.cellCentre[donor] - query).norm(),
                        (mesh.cellCentre[nearest] - query).norm(), 1e-12);
        }
    }
}

TEST_P(LinkedMesh, WallDonorsAreTheNearestActiveBackgroundCells) {
    for (int i = 1; i <= mesh.FaceCount(Boundary::Wall); ++i) {
        const BoundaryFace& face = mesh.Faces(Boundary::Wall)[i];
        if (face.oversetGroup == 0) {
            ASSERT_EQ(link.WallDonor(i), 0);
            continue;
        }
        const Vec3 query = 2.0 * face.centre - mesh.cellCentre[face.cell];
        const int nearest = NearestByScan(mesh, link, 1, query);
        ASSERT_EQ(mesh.cavity[link.WallDonor(i)], 1);
        ASSERT_TRUE(link.IsActive(link.WallDonor(i)));
        ASSERT_NEAR((mesh.cellCentre[link.WallDonor(i)] - query).norm(),
                    (mesh.cellCentre[nearest] - query).norm(), 1e-12);
    }
}

/// Compares only where the donor passes the test of the toolbox with a margin: elsewhere the search
/// of the toolbox goes further out, and on some faces it never ends.
TEST_P(LinkedMesh, WallDonorsEqualThoseOfTheToolboxWhereItsTestHolds) {
    int nSafe = 0;
    for (int i = 1; i <= mesh.FaceCount(Boundary::Wall); ++i) {
        const BoundaryFace& face = mesh.Faces(Boundary::Wall)[i];
        if (face.oversetGroup != 1) {
            continue;
        }
        const Vec3 d = mesh.cellCentre[link.WallDonor(i)] - face.centre;
        if (face.area.x() * (d.x() + d.y() + d.z()) > 1e-7) {
            ++nSafe;
            EXPECT_EQ(link.Toolbox()->GetOversetWallNeighbor(i), link.WallDonor(i)) << i;
        }
    }

    EXPECT_EQ(nSafe, GetParam().safeWalls);
}

INSTANTIATE_TEST_SUITE_P(
    All, LinkedMesh,
    testing::Values(Shipped{"Channel5", channelGeo, {{"n", 5}}, 31},
                    Shipped{"Channel10", channelGeo, {{"n", 10}}, 60},
                    Shipped{"Channel20", channelGeo, {{"n", 20}}, 116},
                    Shipped{"TwoComponents", channelGeo, {{"n", 5}, {"two", 1}}, 31},
                    Shipped{"Box10", boxGeo, {{"n", 10}}, 46},
                    Shipped{"Layers", boxGeo, {{"n", 5}, {"nz", 3}}, 102},
                    Shipped{"Prisms", boxGeo, {{"n", 10}, {"kind", 4}}, 66},
                    Shipped{"Sphere6", sphereGeo, {{"n", 6}}, 1077}),
    CaseName<Shipped>);

TEST(OversetLink, TheToolboxPrintsItsSteps) {
    const Linked linked(boxGeo, {{"n", 5}});

    EXPECT_EQ(linked.printed,
              "Step 1: Link Kelvex FVM Mesh Data.\n"
              "Step 2: Overset Mesh Data Initial Setting.\n"
              "Step 3: Outside Domain Cutting.\n"
              "\t  No Compoenet Cell Ouside Domain.\n"
              "Step 4: Overlap Region Cutting.\n"
              "\t  Non Active Cell Number = 52\n"
              "Step 5: Build Tree for Search Neighbor.\n");
}

TEST(OversetLink, HexahedraFindTheirDonorsAtTheFirstTry) {
    const Linked linked(channelGeo, {{"n", 10}});

    for (int tries : linked.link.Tables().tries) {
        EXPECT_LE(tries, 1);
    }
}

TEST(OversetLink, SecondComponentIsNeverCut) {
    Linked linked(channelGeo, {{"n", 5}, {"two", 1}});

    for (int face = 1; face <= linked.mesh.InnerFaceCount(); ++face) {
        if (linked.mesh.cavity[linked.mesh.innerFaces[face].owner] == 3) {
            ASSERT_EQ(linked.link.Side(face), FaceSide::Both);
        }
    }
    EXPECT_EQ(linked.link.Toolbox()->GetOversetCellType(linked.mesh.CellCount()),
              OversetCell_Active);
}

TEST(OversetLink, SingleGridNeedsNoToolbox) {
    Linked linked(boxGeo, {{"n", 5}, {"kind", 1}});

    EXPECT_FALSE(linked.link.IsOverset());
    EXPECT_EQ(linked.link.Toolbox(), nullptr);
    EXPECT_EQ(linked.printed, "");
    for (int cell = 1; cell <= linked.mesh.CellCount(); ++cell) {
        ASSERT_TRUE(linked.link.IsActive(cell));
    }
    for (int face = 1; face <= linked.mesh.InnerFaceCount(); ++face) {
        ASSERT_EQ(linked.link.Side(face), FaceSide::Both);
        ASSERT_EQ(linked.link.First(face), linked.mesh.innerFaces[face].owner);
        ASSERT_EQ(linked.link.Second(face), linked.mesh.innerFaces[face].neighbor);
    }
    EXPECT_EQ(linked.link.WallDonor(1), 0);
}

TEST(OversetLinkFaults, BrokenMeshRuleStopsBeforeTheToolbox) {
    const Mesh mesh = ReadEdited(boxGeo, {{"n", 10}, {"ri", 0.95}}, {});
    HostObjects objects(mesh, ".");
    const OutputCapture capture;

    const std::string error = ErrorOf([&] { OversetLink link(mesh, objects); });

    EXPECT_THAT(error, testing::HasSubstr("less than 3.5 background cells"));
    EXPECT_EQ(capture.Out(), "");
}

TEST(OversetLinkFaults, BrokenContractStopsBeforeTheToolbox) {
    const Mesh mesh = ReadShipped(boxGeo, {{"n", 5}, {"kind", 1}});
    HostObjects objects(mesh, ".");
    objects.fvm.Ce23[0][1] = -3;

    EXPECT_THAT(ErrorOf([&] { OversetLink link(mesh, objects); }),
                testing::HasSubstr("inner face 1 at ("));
}

TEST(OversetLinkFaults, EachFaultIsReportedOnItsOwnLine) {
    const Mesh mesh =
        ReadEdited(boxGeo, {{"n", 10}, {"ri", 0.95}}, {{"nt = Round(2 * n)", "nt = Round(n)"}});
    HostObjects objects(mesh, ".");

    const std::string error = ErrorOf([&] { OversetLink link(mesh, objects); });

    EXPECT_THAT(error, testing::MatchesRegex("[^\n]*on the body[^\n]*\n[^\n]*has an edge[^\n]*"));
}

TEST(OversetLinkFaults, GroupsMustFitTheNamesOfTheVolumes) {
    Mesh mesh = ReadShipped(channelGeo, {{"n", 5}, {"two", 1}});
    for (BoundaryFace& face : mesh.boundaryFaces[static_cast<int>(Boundary::Wall)]) {
        face.oversetGroup = face.oversetGroup > 0 ? 3 - face.oversetGroup : 0;
    }
    HostObjects objects(mesh, ".");

    EXPECT_THAT(ErrorOf([&] { OversetLink link(mesh, objects); }),
                testing::HasSubstr("of component1 belongs to grid 3 by the inlet and the overset "
                                   "groups"));
}

}  // namespace
