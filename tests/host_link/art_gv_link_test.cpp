#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host_link/art_gv.h"
#include "tests/host_link/expect_failure.h"
#include "tests/support/allocation_recorder.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"
#include "tests/support/private_access.h"

KVX3D_EXPOSE(MeshNumberStep, &CKVX_ACMT_GV::getMeshNumber, bool (CKVX_ACMT_GV::*)());
KVX3D_EXPOSE(MeshPositionStep, &CKVX_ACMT_GV::getMeshPosition, bool (CKVX_ACMT_GV::*)());
KVX3D_EXPOSE(MeshNormalStep, &CKVX_ACMT_GV::getMeshNormal, bool (CKVX_ACMT_GV::*)());
KVX3D_EXPOSE(FaceAreaStep, &CKVX_ACMT_GV::getFaceArea, bool (CKVX_ACMT_GV::*)());
KVX3D_EXPOSE(MeshRelationStep, &CKVX_ACMT_GV::getMeshRelation, bool (CKVX_ACMT_GV::*)());
KVX3D_EXPOSE(PhysicalVarStep, &CKVX_ACMT_GV::getPhysicalVar, bool (CKVX_ACMT_GV::*)());
KVX3D_EXPOSE(DebugDataCheck, &CKVX_ACMT_GV::debugDataCheck, void (CKVX_ACMT_GV::*)());

namespace {

/// Links a host with its partition faces, if any, and expects success without output.
void LinkAll(CKVX_ACMT_GV& gv, BoxHost& host) {
    const OutputCapture capture;
    ASSERT_EQ(gv.getKvx3dGV(&host.gv, &host.fvm), 0);
    ASSERT_EQ(gv.getKvx3dPartFace(&host.partition), 0);
    ASSERT_EQ(gv.getKvx3dData(), 0);
    EXPECT_EQ(capture.Out() + capture.Err(), "");
}

TEST(HostRecordLinking, WithoutHostPrintsOneLineAndChangesNothing) {
    CKVX_ACMT_GV gv;
    CountingPartitionFace partition;
    partition.Resize(2);
    gv.getKvx3dPartFace(&partition);
    AllocationRecorder memory;

    ExpectFailure(-1, "The ACML GV can not get data from global Kelvex3D!",
                  [&] { return gv.getKvx3dData(); });

    EXPECT_EQ(gv.NPart, 0);
    EXPECT_EQ(gv.areaE, nullptr);
    EXPECT_EQ(memory.Sizes().size(), 0u);
    EXPECT_EQ(partition.Calls(PartAccessor::NParInterFace), 0);
}

TEST(HostRecordLinking, CopiesCountsAndPointersOfTheMesh) {
    BoxHost host(4, 3, 2);
    int countsOfFvm = 0;
    int* table[9] = {};
    host.fvm.hostCountTableFvm = &countsOfFvm;
    host.fvm.cellTableA = &table[0];
    host.fvm.cellTableB = &table[1];
    host.fvm.cellTableC = &table[2];
    host.fvm.innerFaceTable = &table[3];
    host.fvm.inletFaceTable = &table[4];
    host.fvm.outletFaceTable = &table[5];
    host.fvm.wallFaceTable = &table[6];
    host.fvm.symmFaceTable = &table[7];
    CKVX_ACMT_GV gv;

    LinkAll(gv, host);

    const CKVX3DFiniteVolumeMesh& m = host.fvm;
#define EXPECT_LINKED(field) EXPECT_EQ(gv.field, m.field)
    EXPECT_LINKED(NcAll);
    EXPECT_LINKED(Nc);
    EXPECT_LINKED(Ne);
    EXPECT_LINKED(NInlet);
    EXPECT_LINKED(NOutlet);
    EXPECT_LINKED(NWall);
    EXPECT_LINKED(NSymm);
    EXPECT_LINKED(Nn);
    EXPECT_LINKED(hostCountTableFvm);
    EXPECT_LINKED(Ce23[0]);
    EXPECT_LINKED(Ce23[1]);
    EXPECT_LINKED(CInlet23);
    EXPECT_LINKED(COutlet23);
    EXPECT_LINKED(CWall23);
    EXPECT_LINKED(CSymm23);
    EXPECT_LINKED(idInlet);
    EXPECT_LINKED(idOutlet);
    EXPECT_LINKED(idWall);
    EXPECT_LINKED(idSymm);
    EXPECT_LINKED(cellTableA);
    EXPECT_LINKED(cellTableB);
    EXPECT_LINKED(cellTableC);
    EXPECT_LINKED(innerFaceTable);
    EXPECT_LINKED(inletFaceTable);
    EXPECT_LINKED(outletFaceTable);
    EXPECT_LINKED(wallFaceTable);
    EXPECT_LINKED(symmFaceTable);
    EXPECT_LINKED(cellNodes);
    EXPECT_LINKED(nonmatchingFace);
    EXPECT_LINKED(volume);
#define EXPECT_LINKED_VECTORS(x, y, z) \
    EXPECT_LINKED(x);                  \
    EXPECT_LINKED(y);                  \
    EXPECT_LINKED(z)
    EXPECT_LINKED_VECTORS(xc, yc, zc);
    EXPECT_LINKED_VECTORS(xn, yn, zn);
    EXPECT_LINKED_VECTORS(xe, ye, ze);
    EXPECT_LINKED_VECTORS(xInlet, yInlet, zInlet);
    EXPECT_LINKED_VECTORS(xOutlet, yOutlet, zOutlet);
    EXPECT_LINKED_VECTORS(xWall, yWall, zWall);
    EXPECT_LINKED_VECTORS(xSymm, ySymm, zSymm);
    EXPECT_LINKED_VECTORS(nxe, nye, nze);
    EXPECT_LINKED_VECTORS(nxInlet, nyInlet, nzInlet);
    EXPECT_LINKED_VECTORS(nxOutlet, nyOutlet, nzOutlet);
    EXPECT_LINKED_VECTORS(nxWall, nyWall, nzWall);
    EXPECT_LINKED_VECTORS(nxSymm, nySymm, nzSymm);
#undef EXPECT_LINKED_VECTORS
#undef EXPECT_LINKED
}

TEST(HostRecordLinking, CopiesThePointersOfTheGlobalVariables) {
    BoxHost host(1, 1, 1);
    double linked[13] = {};
    int counts = 0;
    host.gv.hostCountTableGv = &counts;
    host.gv.linkedVar5 = &linked[5];
    host.gv.linkedVar6 = &linked[6];
    host.gv.linkedVar7 = &linked[7];
    host.gv.linkedVar8 = &linked[8];
    host.gv.linkedVar9 = &linked[9];
    host.gv.linkedVar10 = &linked[10];
    host.gv.linkedVar11 = &linked[11];
    host.gv.linkedVar12 = &linked[12];
    CKVX_ACMT_GV gv;

    LinkAll(gv, host);

    EXPECT_EQ(gv.hostCountTableGv, &counts);
    EXPECT_EQ(gv.cavityId, host.gv.cavityId);
    EXPECT_EQ(gv.pProcessId, host.gv.pProcessId);
    EXPECT_EQ(gv.p, host.gv.flowVariables[0]);
    EXPECT_EQ(gv.u, host.gv.flowVariables[1]);
    EXPECT_EQ(gv.v, host.gv.flowVariables[2]);
    EXPECT_EQ(gv.w, host.gv.flowVariables[3]);
    EXPECT_EQ(gv.mu, host.gv.mu);
    EXPECT_EQ(gv.cp, host.gv.cp);
    const double* const fields[] = {gv.linkedVar5, gv.linkedVar6,  gv.linkedVar7, gv.linkedVar8,
                                    gv.linkedVar9, gv.linkedVar10, gv.linkedVar11};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(fields[i], &linked[5 + i]);
    }
    EXPECT_EQ(gv.linkedVar12, nullptr);  // linked only with partition faces
}

TEST(HostRecordLinking, AreasAreTheLengthsOfTheAreaVectorsWithTheCountInSlotZero) {
    BoxHost host(4, 3, 2, {0, 0, 0}, {4, 6, 6});  // cells of 1 x 2 x 3
    host.fvm.nxe[7] = 0.1;
    host.fvm.nye[7] = 0.2;
    host.fvm.nze[7] = 0.3;
    AllocationRecorder memory;
    CKVX_ACMT_GV gv;

    LinkAll(gv, host);

    EXPECT_EQ(gv.areaE[0], host.fvm.Ne);
    EXPECT_EQ(gv.areaE[7], CKVX_ACMT_GV::CalNorm(0.1, 0.2, 0.3));
    EXPECT_EQ(memory.SizeOf(gv.areaE), sizeof(double) * (host.arrays.owner.size()));
    for (int f = 1; f <= host.fvm.Ne; ++f) {
        EXPECT_EQ(gv.areaE[f], CKVX_ACMT_GV::CalNorm(gv.nxe[f], gv.nye[f], gv.nze[f]));
    }
    EXPECT_EQ(std::vector<double>(gv.areaInlet, gv.areaInlet + 7),
              (std::vector<double>{6, 6, 6, 6, 6, 6, 6}));
    EXPECT_EQ(std::vector<double>(gv.areaOutlet, gv.areaOutlet + 7),
              (std::vector<double>{6, 6, 6, 6, 6, 6, 6}));
    EXPECT_EQ(gv.areaWall[0], 16.0);
    EXPECT_EQ(gv.areaWall[16], 3.0);
    EXPECT_EQ(gv.areaSymm[0], 24.0);
    EXPECT_EQ(gv.areaSymm[24], 2.0);
    EXPECT_EQ(gv.areaPart, nullptr);
}

TEST(HostRecordLinking, AKindWithoutFacesHasAnAreaArrayOfOneSlot) {
    BoxHost host(1, 1, 1);
    host.fvm.NInlet = 0;
    AllocationRecorder memory;
    CKVX_ACMT_GV gv;

    LinkAll(gv, host);

    EXPECT_EQ(memory.SizeOf(gv.areaE), sizeof(double));  // one cell has no inner face
    EXPECT_EQ(gv.areaE[0], 0.0);
    EXPECT_EQ(memory.SizeOf(gv.areaInlet), sizeof(double));
    EXPECT_EQ(gv.areaInlet[0], 0.0);
}

TEST(HostRecordLinking, GhostTablesHoldKindAndFaceOfEveryGhostCell) {
    BoxHost host(3, 2, 2);
    AllocationRecorder memory;
    CKVX_ACMT_GV gv;

    LinkAll(gv, host);

    ASSERT_EQ(gv.ghostBCType[0], host.fvm.NcAll);
    ASSERT_EQ(gv.ghostBCIndex[0], host.fvm.NcAll);
    EXPECT_EQ(memory.SizeOf(gv.ghostBCType), sizeof(int) * (host.arrays.pressure.size()));
    EXPECT_EQ(memory.SizeOf(gv.ghostBCIndex), sizeof(int) * (host.arrays.pressure.size()));
    for (int cell = 1; cell <= gv.Nc; ++cell) {
        EXPECT_EQ(gv.ghostBCType[cell], 0);
        EXPECT_EQ(gv.ghostBCIndex[cell], cell);
    }
    const struct {
        int code;
        int n;
        const int* ghost;
    } kinds[] = {{1, gv.NInlet, gv.idInlet},
                 {2, gv.NOutlet, gv.idOutlet},
                 {3, gv.NWall, gv.idWall},
                 {4, gv.NSymm, gv.idSymm}};
    for (const auto& kind : kinds) {
        for (int i = 1; i <= kind.n; ++i) {
            EXPECT_EQ(gv.ghostBCType[kind.ghost[i]], kind.code);
            EXPECT_EQ(gv.ghostBCIndex[kind.ghost[i]], i);
        }
    }
}

TEST(HostRecordLinking, ALaterKindAndALaterFaceOverwriteASharedGhostCell) {
    BoxHost host(1, 1, 1);
    const int shared = host.fvm.idInlet[1];
    host.fvm.idSymm[1] = shared;
    host.fvm.idSymm[2] = shared;
    host.fvm.idOutlet[1] = shared;
    CKVX_ACMT_GV gv;

    LinkAll(gv, host);

    EXPECT_EQ(gv.ghostBCType[shared], 4);
    EXPECT_EQ(gv.ghostBCIndex[shared], 2);
}

TEST(HostRecordLinking, AnIdWithoutAFaceHasTypeAndIndexZero) {
    BoxHost host(1, 1, 1);
    const int orphan = host.fvm.idOutlet[1];
    host.fvm.NOutlet = 0;
    CKVX_ACMT_GV gv;

    LinkAll(gv, host);

    EXPECT_EQ(gv.ghostBCType[orphan], 0);
    EXPECT_EQ(gv.ghostBCIndex[orphan], 0);
}

TEST(HostRecordLinking, CountsDoNotFollowTheHostButValuesDo) {
    BoxHost host(2, 1, 1);
    CKVX_ACMT_GV gv;
    LinkAll(gv, host);

    host.fvm.Ne = 7;
    host.arrays.pressure[1] = 42;

    EXPECT_EQ(gv.Ne, 1);
    EXPECT_EQ(gv.p[1], 42);
}

TEST(HostRecordLinking, ASecondCallReplacesWhatTheObjectOwns) {
    BoxHost small(1, 1, 1);
    BoxHost large(3, 1, 1);
    AllocationRecorder memory;
    {
        CKVX_ACMT_GV gv;
        LinkAll(gv, small);
        const int blocks = memory.LiveBlocks();

        LinkAll(gv, large);

        EXPECT_EQ(gv.Nc, 3);
        EXPECT_EQ(gv.areaE[0], 2.0);
        EXPECT_EQ(gv.ghostBCType[0], large.fvm.NcAll);
        EXPECT_EQ(gv.xc, large.fvm.xc);
        EXPECT_EQ(memory.LiveBlocks(), blocks);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(HostRecordLinking, AHostWithoutCellsCanBeLinked) {
    CKvx3dGV globals;
    CKVX3DFiniteVolumeMesh mesh;
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&globals, &mesh);

    EXPECT_EQ(gv.getKvx3dData(), 0);

    EXPECT_EQ(gv.areaE[0], 0.0);
    EXPECT_EQ(gv.ghostBCType[0], 0);
}

/// Allocation number n fails. Two steps allocate: one five blocks, the other two.
class FailedAllocation : public testing::TestWithParam<int> {};

TEST_P(FailedAllocation, EndsTheStepWithItsLineAndKeepsWhatWasFilledBefore) {
    BoxHost host(2, 1, 1);
    AllocationRecorder memory;
    {
        CKVX_ACMT_GV gv;
        gv.getKvx3dGV(&host.gv, &host.fvm);
        memory.FailAfter(GetParam());
        const bool inAreas = GetParam() < 5;

        ExpectFailure(
            inAreas ? -5 : -6,
            inAreas ? "Can not get Face Area!" : "Can not get Mesh Relation from global Kelvex3D!",
            [&] { return gv.getKvx3dData(); });

        EXPECT_EQ(gv.Nc, 2);
        EXPECT_EQ(gv.xc, host.fvm.xc);
        EXPECT_EQ(gv.areaInlet != nullptr, GetParam() > 1);
        EXPECT_EQ(gv.Ce23[0] != nullptr, !inAreas);
        EXPECT_EQ(gv.u, nullptr);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

INSTANTIATE_TEST_SUITE_P(Allocations, FailedAllocation, testing::Range(0, 7));

TEST(HostRecordSteps, EachStepLinksItsFieldsOnly) {
    BoxHost host(2, 1, 1);
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);

    EXPECT_TRUE((gv.*MemberOf(MeshNumberStep()))());
    EXPECT_EQ(gv.NcAll, host.fvm.NcAll);
    EXPECT_EQ(gv.xc, nullptr);
    EXPECT_TRUE((gv.*MemberOf(MeshPositionStep()))());
    EXPECT_EQ(gv.zSymm, host.fvm.zSymm);
    EXPECT_EQ(gv.nxe, nullptr);
    EXPECT_TRUE((gv.*MemberOf(MeshNormalStep()))());
    EXPECT_EQ(gv.nzSymm, host.fvm.nzSymm);
    EXPECT_EQ(gv.areaE, nullptr);
    EXPECT_TRUE((gv.*MemberOf(FaceAreaStep()))());
    EXPECT_EQ(gv.areaE[1], 1.0);
    EXPECT_EQ(gv.Ce23[0], nullptr);
    EXPECT_TRUE((gv.*MemberOf(MeshRelationStep()))());
    EXPECT_EQ(gv.ghostBCIndex[2], 2);
    EXPECT_EQ(gv.p, nullptr);
    EXPECT_TRUE((gv.*MemberOf(PhysicalVarStep()))());
    EXPECT_EQ(gv.p, host.gv.flowVariables[0]);
}

TEST(HostRecordSteps, AreasReadTheCountsFromTheMeshAgain) {
    BoxHost host(2, 1, 1);
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    ASSERT_EQ(gv.getKvx3dData(), 0);
    host.fvm.NWall = 2;

    EXPECT_TRUE((gv.*MemberOf(FaceAreaStep()))());

    EXPECT_EQ(gv.NWall, 4);
    EXPECT_EQ(gv.areaWall[0], 2.0);
}

TEST(HostRecordSteps, DebugModeRunsThePrivateDump) {
    CKVX_ACMT_GV gv;
    const OutputCapture viaStep;
    (gv.*MemberOf(DebugDataCheck()))();
    const OutputCapture viaMode;
    gv.debugMode();

    EXPECT_EQ(viaMode.Out(), viaStep.Out());
}

}  // namespace
