#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "host_link/art_gv.h"
#include "tests/support/allocation_recorder.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"

namespace {

/// Any non-null address: the toolbox must not follow it.
template <typename T>
T* Unreadable() {
    return reinterpret_cast<T*>(8);
}

/// Calls `call`, expects `result` and exactly one line on standard output, flushed.
template <typename Call>
void ExpectFailure(int result, const std::string& line, Call call) {
    const OutputCapture capture;
    EXPECT_EQ(call(), result);
    EXPECT_EQ(capture.Out(), line + "\n");
    EXPECT_EQ(capture.FlushedOut(), line + "\n");
    EXPECT_EQ(capture.Err(), "");
}

/// Links a host, partition faces included if it has any, and expects silence and success.
void LinkAll(CKVX_ACMT_GV& gv, BoxHost& host) {
    const OutputCapture capture;
    ASSERT_EQ(gv.getKvx3dGV(&host.gv, &host.fvm), 0);
    ASSERT_EQ(gv.getKvx3dPartFace(&host.partition), 0);
    ASSERT_EQ(gv.getKvx3dData(), 0);
    EXPECT_EQ(capture.Out() + capture.Err(), "");
}

TEST(HostRecord, StartsWithNothing) {
    CKVX_ACMT_GV gv;

    EXPECT_FALSE(gv.isKvxGv());
    EXPECT_FALSE(gv.isKvxPartFace());
    EXPECT_FALSE(gv.isKvxGradient());
    EXPECT_FALSE(gv.isKvxCommunication());
    EXPECT_TRUE(gv.useBoundaryFaces);
    EXPECT_EQ(
        gv.NcAll + gv.Nc + gv.Ne + gv.NInlet + gv.NOutlet + gv.NWall + gv.NSymm + gv.NPart + gv.Nn,
        0);
    EXPECT_EQ(gv.Ce23[0], nullptr);
    EXPECT_EQ(gv.Ce23[1], nullptr);
    EXPECT_EQ(gv.areaE, nullptr);
    EXPECT_EQ(gv.faceDataLeft, nullptr);
    EXPECT_EQ(gv.faceCp, nullptr);
    EXPECT_EQ(gv.ghostBCIndex, nullptr);
}

TEST(HostRecord, NormIsSummedFromLeftToRightWithoutScaling) {
    EXPECT_EQ(CKVX_ACMT_GV::CalNorm(3, 4, 12), 13.0);
    EXPECT_EQ(CKVX_ACMT_GV::CalNorm(1e200, 0, 0), HUGE_VAL);
    EXPECT_EQ(CKVX_ACMT_GV::CalNorm(1e-200, 0, 0), 0.0);
    EXPECT_EQ(CKVX_ACMT_GV::CalNorm(0.1, 0.2, 0.3), std::sqrt((0.1 * 0.1 + 0.2 * 0.2) + 0.3 * 0.3));
}

TEST(HostRecordSetters, StoreThePointersWithoutFollowingThem) {
    CKVX_ACMT_GV gv;
    auto* gradient = Unreadable<COperatorGradient>();
    auto* communication = Unreadable<CCommunication>();
    CountingPartitionFace partition;
    const OutputCapture capture;

    EXPECT_EQ(gv.getKvx3dGradientTool(gradient), 0);
    EXPECT_EQ(gv.getKvx3dCommunication(communication), 0);
    EXPECT_EQ(gv.getKvx3dPartFace(&partition), 0);

    EXPECT_EQ(gv.kvxGradient, gradient);
    EXPECT_EQ(gv.kvxCommunication, communication);
    EXPECT_EQ(gv.kvxPartFace, &partition);
    EXPECT_TRUE(gv.isKvxGradient());
    EXPECT_TRUE(gv.isKvxCommunication());
    EXPECT_TRUE(gv.isKvxPartFace());
    EXPECT_FALSE(gv.isKvxGv());
    EXPECT_EQ(partition.Calls(PartAccessor::NParInterFace), 0);
    EXPECT_EQ(capture.Out(), "");
}

TEST(HostRecordSetters, LinkBothRecordsOrNeither) {
    CKvx3dGV globals;
    CKVX3DFiniteVolumeMesh mesh;
    CKVX_ACMT_GV gv;

    ExpectFailure(-1, "Can not get the object of Global Variables",
                  [&] { return gv.getKvx3dGV(nullptr, &mesh); });
    EXPECT_EQ(gv.kvxFvm, nullptr);
    EXPECT_FALSE(gv.isKvxGv());
    ExpectFailure(-1, "Can not get the object of Global Variables",
                  [&] { return gv.getKvx3dGV(&globals, nullptr); });
    EXPECT_EQ(gv.kvxGv, nullptr);
    EXPECT_FALSE(gv.isKvxGv());

    EXPECT_EQ(gv.getKvx3dGV(&globals, &mesh), 0);
    EXPECT_TRUE(gv.isKvxGv());
    ExpectFailure(-1, "Can not get the object of Global Variables",
                  [&] { return gv.getKvx3dGV(nullptr, nullptr); });
    EXPECT_EQ(gv.kvxGv, &globals);
    EXPECT_EQ(gv.kvxFvm, &mesh);
}

TEST(HostRecordSetters, NullLinksAreReportedAndKeepTheOldLink) {
    CKVX_ACMT_GV gv;
    CountingPartitionFace partition;
    gv.getKvx3dPartFace(&partition);
    gv.getKvx3dGradientTool(Unreadable<COperatorGradient>());
    gv.getKvx3dCommunication(Unreadable<CCommunication>());

    ExpectFailure(-1, "Can not get the object of Part Faces",
                  [&] { return gv.getKvx3dPartFace(nullptr); });
    ExpectFailure(-1, "Can not get the object of Multi-Processor Communication!",
                  [&] { return gv.getKvx3dCommunication(nullptr); });

    EXPECT_EQ(gv.kvxPartFace, &partition);
    EXPECT_TRUE(gv.isKvxCommunication());
}

TEST(HostRecordSetters, ANullGradientIsReportedInTheWordsOfThePartFaces) {
    CKVX_ACMT_GV gv;

    ExpectFailure(-1, "Can not get the object of Part Faces",
                  [&] { return gv.getKvx3dGradientTool(nullptr); });
    EXPECT_FALSE(gv.isKvxGradient());
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

TEST(HostRecordLinking, TakesCountsAndPointersOfTheMesh) {
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

TEST(HostRecordLinking, TakesThePointersOfTheGlobalVariables) {
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
    EXPECT_EQ(gv.linkedVar12, nullptr);  // only with partition faces
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

TEST(HostRecordLinking, GhostTablesNameKindAndFaceOfEveryGhostCell) {
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

TEST(HostRecordLinking, ALaterKindAndALaterFaceOverwriteASharedGhost) {
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

TEST(HostRecordLinking, AnIdNoFaceClaimsHasTypeAndIndexZero) {
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

TEST(HostRecordLinking, RunsAgainOnAFilledObjectAndReplacesWhatItOwns) {
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

TEST(HostRecordLinking, EmptyHostLinks) {
    CKvx3dGV globals;
    CKVX3DFiniteVolumeMesh mesh;
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&globals, &mesh);

    EXPECT_EQ(gv.getKvx3dData(), 0);

    EXPECT_EQ(gv.areaE[0], 0.0);
    EXPECT_EQ(gv.ghostBCType[0], 0);
}

/// The n-th allocation fails: two steps allocate, five blocks and two.
class FailedAllocation : public testing::TestWithParam<int> {};

TEST_P(FailedAllocation, EndsTheStepWithItsLineAndLeavesWhatWasFilled) {
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

}  // namespace
