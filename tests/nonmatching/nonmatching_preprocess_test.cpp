#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "nonmatching/art_nonmatching_tools.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"
#include "tests/support/undestroyed.h"

namespace {

static_assert(!std::is_polymorphic_v<art_nonmatching_tools>);
static_assert(sizeof(art_nonmatching_tools) == 2 * sizeof(void*));

/// A row of cells, so that inner face f has owner f and neighbor f + 1.
BoxHost Row(int nCells, const std::vector<int>& flaggedFaces) {
    BoxHost host(nCells, 1, 1);
    host.WithNonmatchingFaces(flaggedFaces);
    return host;
}

/// Runs the preprocess and returns what it prints.
std::string Preprocess(BoxHost& host) {
    art_nonmatching_tools tools;
    tools.SetFVM(&host.gv, &host.fvm);
    OutputCapture capture;
    tools.NonmatchingPreprocess();
    EXPECT_EQ(capture.Err(), "");
    return capture.FlushedOut();
}

std::string Report(int total, int ineffective) {
    return "Start Non-matching Preprocess:\nTotal Nun-matching Face Number = " +
           std::to_string(total) +
           "\nIneffective Non-matching Face Number = " + std::to_string(ineffective) +
           "\nNon-matching Preprocess END.\n";
}

/// Expects all three components of the area vector to be exactly 1e-10 of those in `before`, or
/// unchanged.
void ExpectArea(const BoxHost& host, const BoxHost& before, int face, bool shrunk) {
    const auto f = static_cast<std::size_t>(face);
    for (int i = 0; i < 3; ++i) {
        const double old = before.arrays.faceArea[i][f];
        EXPECT_EQ(host.arrays.faceArea[i][f], shrunk ? old * 1e-10 : old) << "face " << face;
    }
}

TEST(NonmatchingTools, StartWithoutLinks) {
    art_nonmatching_tools tools;

    EXPECT_EQ(tools.kvxGv, nullptr);
    EXPECT_EQ(tools.kvxFvm, nullptr);
}

TEST(NonmatchingTools, StoreTheLinksAndReleaseNothing) {
    BoxHost host = Row(2, {});
    {
        art_nonmatching_tools tools;
        tools.SetFVM(&host.gv, &host.fvm);
        EXPECT_EQ(tools.kvxGv, &host.gv);
        EXPECT_EQ(tools.kvxFvm, &host.fvm);
    }

    EXPECT_EQ(host.fvm.Nc, 2);
}

TEST(NonmatchingTools, HaveNoLinksAfterDestruction) {
    BoxHost host = Row(2, {});
    Undestroyed<art_nonmatching_tools> tools;
    tools->SetFVM(&host.gv, &host.fvm);
    const void* links[2] = {&host, &host};

    tools->~art_nonmatching_tools();

    std::memcpy(links, tools.storage, sizeof(links));
    EXPECT_EQ(links[0], nullptr);
    EXPECT_EQ(links[1], nullptr);
}

TEST(NonmatchingPreprocess, WithoutFlaggedFacesReportsZeros) {
    BoxHost host = Row(4, {});
    const BoxHost before = host;

    EXPECT_EQ(Preprocess(host), Report(0, 0));

    for (int face = 1; face <= 3; ++face) {
        ExpectArea(host, before, face, false);
    }
}

TEST(NonmatchingPreprocess, ShrinksTheSmallerGroup) {
    BoxHost host = Row(11, {1, 2, 3, 5, 6, 7, 8, 9});
    for (std::size_t cell = 5; cell <= 9; ++cell) {
        host.arrays.cavity[cell] = 0;
    }
    const BoxHost before = host;

    EXPECT_EQ(Preprocess(host), Report(8, 3));

    for (int face = 1; face <= 10; ++face) {
        ExpectArea(host, before, face, face <= 3);
        EXPECT_EQ(host.arrays.nonmatching[static_cast<std::size_t>(face)], 0);
    }
}

TEST(NonmatchingPreprocess, WithEqualGroupsTheOutsideFacesAreIneffective) {
    BoxHost host = Row(9, {1, 2, 3, 4, 5, 6, 7, 8});
    for (std::size_t cell = 1; cell <= 4; ++cell) {
        host.arrays.cavity[cell] = 0;
    }
    const BoxHost before = host;

    EXPECT_EQ(Preprocess(host), Report(8, 4));

    for (int face = 1; face <= 8; ++face) {
        ExpectArea(host, before, face, face <= 4);
    }
}

TEST(NonmatchingPreprocess, CavityIdsBelowOneAreOutside) {
    BoxHost host = Row(6, {1, 2, 3, 4, 5});
    host.arrays.cavity = {-7777, 0, -5, 1, 2, 7, 7};
    const BoxHost before = host;

    EXPECT_EQ(Preprocess(host), Report(5, 2));

    for (int face = 1; face <= 5; ++face) {
        ExpectArea(host, before, face, face <= 2);
    }
}

TEST(NonmatchingPreprocess, UsesTheCavityOfTheOwnerAlone) {
    BoxHost host = Row(3, {1, 2});
    host.arrays.cavity = {-7777, 1, 1, 0};
    const BoxHost before = host;

    // Face 2 has an outside neighbor; both owners are cavity cells, so nothing is ineffective.
    EXPECT_EQ(Preprocess(host), Report(2, 0));

    ExpectArea(host, before, 1, false);
    ExpectArea(host, before, 2, false);
}

TEST(NonmatchingPreprocess, ASecondRunFindsNoFlaggedFace) {
    BoxHost host = Row(4, {1, 2});
    host.arrays.cavity[1] = 0;
    Preprocess(host);
    const BoxHost before = host;

    EXPECT_EQ(Preprocess(host), Report(0, 0));

    for (int face = 1; face <= 3; ++face) {
        ExpectArea(host, before, face, false);
    }
}

TEST(NonmatchingPreprocess, OnlyTheValueOneIsAFlag) {
    BoxHost host = Row(5, {});
    host.arrays.nonmatching = {-7777, 2, -1, 1, 0};

    EXPECT_EQ(Preprocess(host), Report(1, 0));

    EXPECT_EQ(host.arrays.nonmatching, (std::vector<int>{-7777, 2, -1, 0, 0}));
}

TEST(NonmatchingPreprocess, AnIneffectiveVectorIsShrunkAndNotZero) {
    BoxHost host = Row(3, {1, 2});
    host.arrays.cavity[1] = 0;
    host.arrays.faceArea[0][1] = 3.0;
    host.arrays.faceArea[1][1] = -7.0;
    host.arrays.faceArea[2][1] = 0.1;

    EXPECT_EQ(Preprocess(host), Report(2, 1));

    EXPECT_EQ(host.arrays.faceArea[0][1], 3.0 * 1e-10);
    EXPECT_EQ(host.arrays.faceArea[1][1], -7.0 * 1e-10);
    EXPECT_EQ(host.arrays.faceArea[2][1], 0.1 * 1e-10);
}

TEST(NonmatchingPreprocess, AMeshWithoutInnerFacesIsAccepted) {
    BoxHost host(1, 1, 1);

    EXPECT_EQ(Preprocess(host), Report(0, 0));
}

TEST(NonmatchingPreprocessOnRandomMeshes, KeepsTheLargerGroupAndClearsAllFlags) {
    std::mt19937 random(21);
    for (int run = 0; run < 50; ++run) {
        SCOPED_TRACE(run);
        BoxHost host(4, 3, 2);
        int outside = 0;
        int total = 0;
        for (int cell = 1; cell <= host.fvm.Nc; ++cell) {
            host.gv.cavityId[cell] = static_cast<int>(random() % 3) - 1;
        }
        for (int face = 1; face <= host.fvm.Ne; ++face) {
            host.fvm.nonmatchingFace[face] = static_cast<int>(random() % 2);
            if (host.fvm.nonmatchingFace[face] == 1) {
                ++total;
                outside += host.gv.cavityId[host.fvm.Ce23[0][face]] < 1;
            }
        }
        const BoxHost before = host;
        const bool cavityShrinks = total - outside < outside;

        EXPECT_EQ(Preprocess(host), Report(total, cavityShrinks ? total - outside : outside));

        for (int face = 1; face <= host.fvm.Ne; ++face) {
            const bool flagged = before.fvm.nonmatchingFace[face] == 1;
            const bool isCavity = before.gv.cavityId[before.fvm.Ce23[0][face]] >= 1;
            ExpectArea(host, before, face, flagged && isCavity == cavityShrinks);
            EXPECT_EQ(host.fvm.nonmatchingFace[face], 0);
        }
    }
}

}  // namespace
