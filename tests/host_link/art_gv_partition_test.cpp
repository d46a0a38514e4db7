#include <gtest/gtest.h>

#include <string>

#include "host_link/art_gv.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"

namespace {

/// A host whose outlet is a partition interface of six faces, and a linked record.
struct PartitionedRun {
    PartitionedRun() : host(4, 3, 2) {
        host.WithPartitionFaces();
        gv.getKvx3dGV(&host.gv, &host.fvm);
        gv.getKvx3dPartFace(&host.partition);
    }
    BoxHost host;
    CKVX_ACMT_GV gv;
};

TEST(PartitionFaces, AreLinkedThroughTheirAccessors) {
    PartitionedRun run;
    double var12 = 0;
    run.host.gv.linkedVar12 = &var12;

    ASSERT_EQ(run.gv.getKvx3dData(), 0);

    CountingPartitionFace& part = run.host.partition;
    EXPECT_EQ(run.gv.NPart, 6);
    EXPECT_EQ(run.gv.NOutlet, 0);
    EXPECT_EQ(run.gv.CPart23, part.cell.data());
    EXPECT_EQ(run.gv.idPart, part.ghost.data());
    EXPECT_EQ(run.gv.FaceType_Partition, part.kind.data());
    EXPECT_EQ(run.gv.IfPartitionFace_InvalidForNonMatching, part.invalid.get());
    EXPECT_EQ(run.gv.xPart, part.centre[0].data());
    EXPECT_EQ(run.gv.yPart, part.centre[1].data());
    EXPECT_EQ(run.gv.zPart, part.centre[2].data());
    EXPECT_EQ(run.gv.nxPart, part.area[0].data());
    EXPECT_EQ(run.gv.nyPart, part.area[1].data());
    EXPECT_EQ(run.gv.nzPart, part.area[2].data());
    EXPECT_EQ(run.gv.linkedVar12, &var12);
}

TEST(PartitionFaces, HaveAreas) {
    PartitionedRun run;
    run.host.partition.area[0][2] = 3;
    run.host.partition.area[1][2] = 4;

    ASSERT_EQ(run.gv.getKvx3dData(), 0);

    EXPECT_EQ(run.gv.areaPart[0], 6.0);
    EXPECT_EQ(run.gv.areaPart[1], 1.0);
    EXPECT_EQ(run.gv.areaPart[2], 5.0);
    EXPECT_EQ(run.gv.areaPart[6], 1.0);
}

TEST(PartitionFaces, GhostCellsAreNotMarked) {
    PartitionedRun run;

    ASSERT_EQ(run.gv.getKvx3dData(), 0);

    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(run.gv.ghostBCType[run.gv.idPart[i]], 0);
        EXPECT_EQ(run.gv.ghostBCIndex[run.gv.idPart[i]], 0);
    }
}

TEST(PartitionFaces, EachAccessorIsCalledOnceAndTheCountOnceMorePerFace) {
    PartitionedRun run;

    ASSERT_EQ(run.gv.getKvx3dData(), 0);

    const CountingPartitionFace& part = run.host.partition;
    EXPECT_EQ(part.Calls(PartAccessor::NParInterFace), 1 + (1 + 6));
    for (std::size_t i = 1; i < CountingPartitionFace::nAccessors; ++i) {
        EXPECT_EQ(part.Calls(static_cast<PartAccessor>(i)), 1) << "accessor " << i;
    }
}

TEST(PartitionFaces, WithoutAnyFaceOnlyTheCountIsCalledOnce) {
    BoxHost host(2, 1, 1);
    double var12 = 0;
    host.gv.linkedVar12 = &var12;
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    gv.getKvx3dPartFace(&host.partition);

    ASSERT_EQ(gv.getKvx3dData(), 0);

    EXPECT_EQ(host.partition.Calls(PartAccessor::NParInterFace), 1);
    EXPECT_EQ(host.partition.CallsOfOthers(), 0);
    EXPECT_EQ(gv.NPart, 0);
    EXPECT_EQ(gv.areaPart, nullptr);
    EXPECT_EQ(gv.CPart23, nullptr);
    EXPECT_EQ(gv.idPart, nullptr);
    EXPECT_EQ(gv.FaceType_Partition, nullptr);
    EXPECT_EQ(gv.IfPartitionFace_InvalidForNonMatching, nullptr);
    EXPECT_EQ(gv.xPart, nullptr);
    EXPECT_EQ(gv.nzPart, nullptr);
    EXPECT_EQ(gv.linkedVar12, nullptr);
}

TEST(PartitionFaces, AreNotReadWithoutTheirObject) {
    BoxHost host(2, 1, 1);
    host.WithPartitionFaces();
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);

    ASSERT_EQ(gv.getKvx3dData(), 0);

    EXPECT_EQ(gv.NPart, 0);
    EXPECT_EQ(gv.idPart, nullptr);
    EXPECT_EQ(gv.areaPart, nullptr);
    EXPECT_EQ(host.partition.Calls(PartAccessor::NParInterFace), 0);
}

TEST(PartitionFaces, AreLinkedByASecondCallIfTheObjectWasSetBeforeIt) {
    BoxHost host(2, 1, 1);
    host.WithPartitionFaces();
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    ASSERT_EQ(gv.getKvx3dData(), 0);
    gv.getKvx3dPartFace(&host.partition);

    ASSERT_EQ(gv.getKvx3dData(), 0);

    EXPECT_EQ(gv.NPart, 1);
    EXPECT_EQ(gv.areaPart[1], 1.0);
}

/// An accessor that throws after a number of calls, and the expected result.
struct FailingAccessor {
    PartAccessor accessor;
    int after;
    int result;
    const char* line;
};

class FailingStep : public testing::TestWithParam<FailingAccessor> {};

TEST_P(FailingStep, ReturnsTheNumberOfTheStepAndPrintsItsLine) {
    PartitionedRun run;
    run.host.partition.failing = GetParam().accessor;
    run.host.partition.failingAfter = GetParam().after;
    const OutputCapture capture;

    EXPECT_EQ(run.gv.getKvx3dData(), GetParam().result);

    EXPECT_EQ(capture.Out(), std::string(GetParam().line) + "\n");
    EXPECT_EQ(capture.FlushedOut(), capture.Out());
    EXPECT_EQ(capture.Err(), "");
    EXPECT_EQ(run.gv.Nc, 24);      // filled before and not reset
    EXPECT_EQ(run.gv.u, nullptr);  // the last step was not reached
}

constexpr const char* number = "Can not get Mesh Number from global Kelvex3D!";
constexpr const char* position = "Can not get Mesh Position from global Kelvex3D!";
constexpr const char* normal = "Can not get Mesh Normal from global Kelvex3D!";
constexpr const char* relation = "Can not get Mesh Relation from global Kelvex3D!";

INSTANTIATE_TEST_SUITE_P(
    Accessors, FailingStep,
    testing::Values(FailingAccessor{PartAccessor::NParInterFace, 0, -2, number},
                    FailingAccessor{PartAccessor::ijParxc, 0, -3, position},
                    FailingAccessor{PartAccessor::ijParyc, 0, -3, position},
                    FailingAccessor{PartAccessor::ijParzc, 0, -3, position},
                    FailingAccessor{PartAccessor::ijParSx, 0, -4, normal},
                    FailingAccessor{PartAccessor::ijParSy, 0, -4, normal},
                    FailingAccessor{PartAccessor::ijParSz, 0, -4, normal},
                    FailingAccessor{PartAccessor::NParInterFace, 1, -5, "Can not get Face Area!"},
                    FailingAccessor{PartAccessor::NParInterFace, 4, -5, "Can not get Face Area!"},
                    FailingAccessor{PartAccessor::ijParCV, 0, -6, relation},
                    FailingAccessor{PartAccessor::ijPar, 0, -6, relation},
                    FailingAccessor{PartAccessor::FaceType_Partition, 0, -6, relation},
                    FailingAccessor{PartAccessor::IfPartitionFace_InvalidForNonMatching, 0, -6,
                                    relation}));

}  // namespace
