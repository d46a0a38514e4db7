#include "reference_host/link/host_objects.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_link/art_gv.h"
#include "tests/reference_host/mesh/mesh_files.h"

namespace {

using host::Boundary;
using host::HostObjects;
using host::Mesh;

class HostObjectsOfChannel : public testing::Test {
protected:
    const Mesh mesh = ReadShipped(channelGeo, {{"n", 5}, {"two", 1}});
    HostObjects objects{mesh, "results"};
};

TEST_F(HostObjectsOfChannel, CountsEqualThoseOfTheMesh) {
    const CKVX3DFiniteVolumeMesh& fvm = objects.fvm;

    EXPECT_EQ(fvm.Nc, mesh.CellCount());
    EXPECT_EQ(fvm.Ne, mesh.InnerFaceCount());
    EXPECT_EQ(fvm.Nn, mesh.NodeCount());
    EXPECT_EQ(fvm.NInlet, 21);
    EXPECT_EQ(fvm.NOutlet, 21);
    EXPECT_EQ(fvm.NWall, mesh.FaceCount(Boundary::Wall));
    EXPECT_EQ(fvm.NSymm, 2 * fvm.Nc);
    EXPECT_EQ(fvm.NcAll, fvm.Nc + fvm.NInlet + fvm.NOutlet + fvm.NWall + fvm.NSymm);
    EXPECT_EQ(objects.CellAndGhostCount(), fvm.NcAll);
}

TEST_F(HostObjectsOfChannel, GhostCellsFollowTheCellsKindByKind) {
    const CKVX3DFiniteVolumeMesh& fvm = objects.fvm;
    const int* ghosts[] = {fvm.idInlet, fvm.idOutlet, fvm.idWall, fvm.idSymm};
    int expected = fvm.Nc;

    for (Boundary kind : host::allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            ++expected;
            ASSERT_EQ(ghosts[static_cast<int>(kind)][face], expected);
            ASSERT_EQ(objects.Ghost(kind, face), expected);
        }
    }
    EXPECT_EQ(expected, fvm.NcAll);
}

TEST_F(HostObjectsOfChannel, ArraysHoldEveryEntryOfTheMesh) {
    const CKVX3DFiniteVolumeMesh& fvm = objects.fvm;

    for (int node = 1; node <= fvm.Nn; ++node) {
        ASSERT_EQ(host::Vec3(fvm.xn[node], fvm.yn[node], fvm.zn[node]), mesh.nodes[node]);
    }
    for (int cell = 1; cell <= fvm.Nc; ++cell) {
        ASSERT_EQ(host::Vec3(fvm.xc[cell], fvm.yc[cell], fvm.zc[cell]), mesh.cellCentre[cell]);
        ASSERT_EQ(fvm.volume[cell], mesh.volume[cell]);
        ASSERT_EQ(objects.gv.cavityId[cell], mesh.cavity[cell]);
        const int* row = fvm.cellNodes[cell];
        ASSERT_EQ(std::vector<int>(row + 1, row + 1 + row[0]), mesh.cellNodes[cell]);
    }
    for (int face = 1; face <= fvm.Ne; ++face) {
        const host::InnerFace& inner = mesh.innerFaces[face];
        ASSERT_EQ(host::Vec3(fvm.xe[face], fvm.ye[face], fvm.ze[face]), inner.centre);
        ASSERT_EQ(host::Vec3(fvm.nxe[face], fvm.nye[face], fvm.nze[face]), inner.area);
        ASSERT_EQ(fvm.Ce23[0][face], inner.owner);
        ASSERT_EQ(fvm.Ce23[1][face], inner.neighbor);
        ASSERT_EQ(fvm.nonmatchingFace[face], 0);
    }
}

TEST_F(HostObjectsOfChannel, BoundaryArraysHoldTheFacesOfTheirKind) {
    const CKVX3DFiniteVolumeMesh& fvm = objects.fvm;
    const auto expectKind = [&](Boundary kind, const double* x, const double* y, const double* z,
                                const double* nx, const double* ny, const double* nz,
                                const int* cell) {
        for (int i = 1; i <= mesh.FaceCount(kind); ++i) {
            const host::BoundaryFace& face = mesh.Faces(kind)[i];
            ASSERT_EQ(host::Vec3(x[i], y[i], z[i]), face.centre);
            ASSERT_EQ(host::Vec3(nx[i], ny[i], nz[i]), face.area);
            ASSERT_EQ(cell[i], face.cell);
        }
    };

    expectKind(Boundary::Inlet, fvm.xInlet, fvm.yInlet, fvm.zInlet, fvm.nxInlet, fvm.nyInlet,
               fvm.nzInlet, fvm.CInlet23);
    expectKind(Boundary::Outlet, fvm.xOutlet, fvm.yOutlet, fvm.zOutlet, fvm.nxOutlet, fvm.nyOutlet,
               fvm.nzOutlet, fvm.COutlet23);
    expectKind(Boundary::Wall, fvm.xWall, fvm.yWall, fvm.zWall, fvm.nxWall, fvm.nyWall, fvm.nzWall,
               fvm.CWall23);
    expectKind(Boundary::Symmetry, fvm.xSymm, fvm.ySymm, fvm.zSymm, fvm.nxSymm, fvm.nySymm,
               fvm.nzSymm, fvm.CSymm23);
}

TEST_F(HostObjectsOfChannel, GroupsListTheirWallFacesInAscendingOrder) {
    const CKvx3dGV& gv = objects.gv;

    ASSERT_EQ(gv.NOversetBCGroup[0], 2);
    for (int group = 1; group <= 2; ++group) {
        ASSERT_EQ(gv.oversetBCFaceCount[group], 40);
        const int* row = gv.oversetBCWallFace[group];
        EXPECT_TRUE(std::is_sorted(row + 1, row + 41));
        for (int i = 1; i <= 40; ++i) {
            EXPECT_EQ(mesh.Faces(Boundary::Wall)[row[i]].oversetGroup, group);
        }
    }
}

TEST_F(HostObjectsOfChannel, FieldsStartAtZeroAndCoefficientsAtOne) {
    const int n = objects.fvm.NcAll;

    EXPECT_EQ(objects.gv.flowVariables[0], objects.pressure.data());
    EXPECT_EQ(objects.gv.flowVariables[1], objects.u.data());
    EXPECT_EQ(objects.gv.flowVariables[2], objects.v.data());
    EXPECT_EQ(objects.gv.flowVariables[3], objects.w.data());
    for (const auto* field : {&objects.pressure, &objects.u, &objects.v, &objects.w}) {
        EXPECT_EQ(*field, std::vector<double>(n + 1, 0.0));
    }
    EXPECT_EQ(objects.gv.mu, objects.mu.data());
    EXPECT_EQ(objects.gv.cp, objects.cp.data());
    EXPECT_EQ(objects.gv.cellRho, objects.cellRho.data());
    EXPECT_EQ(objects.gv.cellK, objects.cellK.data());
    for (const auto* field : {&objects.mu, &objects.cp, &objects.cellRho, &objects.cellK}) {
        EXPECT_EQ(*field, std::vector<double>(n + 1, 1.0));
    }
    EXPECT_EQ(objects.gv.rootDir, std::string("results"));
    EXPECT_EQ(objects.gv.pProcessId[0], 0);
}

TEST_F(HostObjectsOfChannel, GhostCellsLieOnTheirFaces) {
    const CKVX3DFiniteVolumeMesh& fvm = objects.fvm;

    for (int i = 1; i <= fvm.NWall; ++i) {
        ASSERT_EQ(fvm.xc[fvm.idWall[i]], fvm.xWall[i]);
        ASSERT_EQ(fvm.yc[fvm.idWall[i]], fvm.yWall[i]);
        ASSERT_EQ(fvm.volume[fvm.idWall[i]], 0.0);
    }
}

TEST_F(HostObjectsOfChannel, CanBeLinkedByTheToolbox) {
    CKVX_ACMT_GV linked;

    ASSERT_EQ(linked.getKvx3dGV(&objects.gv, &objects.fvm), 0);
    ASSERT_EQ(linked.getKvx3dData(), 0);

    for (Boundary kind : host::allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            const int ghost = objects.Ghost(kind, face);
            ASSERT_EQ(linked.ghostBCType[ghost], static_cast<int>(kind) + 1);
            ASSERT_EQ(linked.ghostBCIndex[ghost], face);
        }
    }
}

TEST(HostObjects, SingleGridHasNoOversetGroup) {
    const Mesh mesh = ReadShipped(boxGeo, {{"n", 5}, {"kind", 3}});

    const HostObjects objects(mesh, ".");

    EXPECT_EQ(objects.gv.NOversetBCGroup[0], 0);
    EXPECT_EQ(objects.fvm.NWall, 0);
    EXPECT_NE(objects.fvm.xWall, nullptr);
}

}  // namespace
