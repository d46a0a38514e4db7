#include <gtest/gtest.h>

#include <ios>
#include <iostream>
#include <streambuf>
#include <string>

#include "host_link/art_gv.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"

namespace {

const std::string countsOfNothing =
    "Nc = 0\nNe = 0\nNInlet = 0\nNOutlet = 0\nNWall = 0\nNSymm = 0\n";
const std::string headingsAlone =
    "CInlet23\nCOutlet23\nCWall23\nCSymm23\nidInlet\nidOutlet\nidWall\nidSymm\n"
    "xc\nvolume\nxe\nne\nxInlet\nnInlet\nxOutlet\nnOutlet\nxWall\nnWall\nxSymm\nnSymm\nCe23\n";

/// What debugMode() prints for a host.
std::string Dump(CKVX_ACMT_GV& gv) {
    const OutputCapture capture;
    EXPECT_EQ(gv.debugMode(), 0);
    EXPECT_EQ(capture.Err(), "");
    EXPECT_EQ(capture.FlushedOut(), capture.Out());
    return capture.Out();
}

TEST(DebugDump, AFreshObjectPrintsZeroCountsAndHeadingsOnly) {
    CKVX_ACMT_GV gv;

    EXPECT_EQ(Dump(gv), countsOfNothing + headingsAlone);
}

TEST(DebugDump, PrintsEverySectionOfATwoCellHost) {
    BoxHost host(2, 1, 1, {0, 0, 0}, {1, 0.25, 3});
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    ASSERT_EQ(gv.getKvx3dData(), 0);

    EXPECT_EQ(Dump(gv),
              "Nc = 2\nNe = 1\nNInlet = 1\nNOutlet = 1\nNWall = 4\nNSymm = 4\n"
              "CInlet23\n1\n"
              "COutlet23\n2\n"
              "CWall23\n1\n2\n1\n2\n"
              "CSymm23\n1\n2\n1\n2\n"
              "idInlet\n3\n"
              "idOutlet\n4\n"
              "idWall\n5\n6\n7\n8\n"
              "idSymm\n9\n10\n11\n12\n"
              "xc\n0.25 0.125 1.5\n0.75 0.125 1.5\n"
              "volume\n0.375\n0.375\n"
              "xe\n0.5 0.125 1.5\n"
              "ne\n0.75 0 0\n"
              "xInlet\n0 0.125 1.5\n"
              "nInlet\n-0.75 0 0\n"
              "xOutlet\n1 0.125 1.5\n"
              "nOutlet\n0.75 0 0\n"
              "xWall\n0.25 0 1.5\n0.75 0 1.5\n0.25 0.25 1.5\n0.75 0.25 1.5\n"
              "nWall\n0 -1.5 0\n0 -1.5 0\n0 1.5 0\n0 1.5 0\n"
              "xSymm\n0.25 0.125 0\n0.75 0.125 0\n0.25 0.125 3\n0.75 0.125 3\n"
              "nSymm\n0 0 -0.125\n0 0 -0.125\n0 0 0.125\n0 0 0.125\n"
              "Ce23\n1 2\n");
}

TEST(DebugDump, ContinuesWithPartitionFacesIfThereAreAny) {
    BoxHost host(1, 1, 1);
    host.WithPartitionFaces();
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    gv.getKvx3dPartFace(&host.partition);
    ASSERT_EQ(gv.getKvx3dData(), 0);

    const std::string dump = Dump(gv);

    const std::string tail =
        "Ce23\nNPart = 1\nCPart23\n1\nidPart\n7\nxPart\n1 0.5 0.5\nnPart\n1 0 0\n";
    ASSERT_GT(dump.size(), tail.size());
    EXPECT_EQ(dump.substr(dump.size() - tail.size()), tail);
}

TEST(DebugDump, HasNoPartitionSectionWithoutPartitionFaces) {
    BoxHost host(1, 1, 1);
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    gv.getKvx3dPartFace(&host.partition);
    ASSERT_EQ(gv.getKvx3dData(), 0);

    EXPECT_EQ(Dump(gv).find("NPart"), std::string::npos);
}

TEST(DebugDump, PrintsDoublesWithSixSignificantDigits) {
    BoxHost host(1, 1, 1);
    host.arrays.volume[1] = 1.0 / 3.0;
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    ASSERT_EQ(gv.getKvx3dData(), 0);

    const std::string dump = Dump(gv);

    EXPECT_NE(dump.find("volume\n0.333333\n"), std::string::npos) << dump;
}

TEST(DebugDump, ThrowsNothingIfTheHostEnabledExceptionsOnAFailingStream) {
    struct FailingBuffer : std::streambuf {};  // accepts no character
    BoxHost host(1, 1, 1);
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    ASSERT_EQ(gv.getKvx3dData(), 0);
    FailingBuffer failing;
    std::streambuf* const oldBuffer = std::cout.rdbuf(&failing);
    std::cout.exceptions(std::ios_base::badbit);

    EXPECT_NO_THROW(gv.debugMode());

    std::cout.exceptions(std::ios_base::goodbit);
    std::cout.rdbuf(oldBuffer);
}

TEST(DebugDump, ChangesNothing) {
    BoxHost host(2, 2, 2);
    const BoxHost before(host);
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    ASSERT_EQ(gv.getKvx3dData(), 0);

    const std::string first = Dump(gv);

    EXPECT_EQ(Dump(gv), first);
    EXPECT_EQ(host.arrays.owner, before.arrays.owner);
}

}  // namespace
