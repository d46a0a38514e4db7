#include <gtest/gtest.h>

#include <cmath>

#include "host_link/art_gv.h"
#include "tests/host_link/expect_failure.h"
#include "tests/support/counting_partition_face.h"
#include "tests/support/output_capture.h"

namespace {

/// Any non-null address: the toolbox must not dereference it.
template <typename T>
T* Unreadable() {
    return reinterpret_cast<T*>(8);
}

TEST(HostRecord, StartsWithNullPointersAndZeroCounts) {
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

TEST(HostRecord, TheNormAddsFromLeftToRightWithoutScaling) {
    EXPECT_EQ(CKVX_ACMT_GV::CalNorm(3, 4, 12), 13.0);
    EXPECT_EQ(CKVX_ACMT_GV::CalNorm(1e200, 0, 0), HUGE_VAL);
    EXPECT_EQ(CKVX_ACMT_GV::CalNorm(1e-200, 0, 0), 0.0);
    EXPECT_EQ(CKVX_ACMT_GV::CalNorm(0.1, 0.2, 0.3), std::sqrt((0.1 * 0.1 + 0.2 * 0.2) + 0.3 * 0.3));
}

TEST(HostRecordSetters, StoreThePointersWithoutDereferencingThem) {
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

TEST(HostRecordSetters, ANullGradientIsReportedWithTheTextOfThePartFaces) {
    CKVX_ACMT_GV gv;

    ExpectFailure(-1, "Can not get the object of Part Faces",
                  [&] { return gv.getKvx3dGradientTool(nullptr); });
    EXPECT_FALSE(gv.isKvxGradient());
}

}  // namespace
