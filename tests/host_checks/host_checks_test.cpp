#include "host_checks/host_checks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "plain/samples/block_host.h"
#include "tests/host_checks/faults.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"

namespace {

using kvx3d::checks::Assess;
using kvx3d::checks::MaySetUp;
using kvx3d::checks::Rule;
using kvx3d::checks::Soundness;
using kvx3d::checks::Verdict;
using testing::HasSubstr;

template <typename Host>
Soundness Assessed(Host& host) {
    const OutputCapture quiet;
    CKVXOversetMesh overset;
    overset.SetFVM(&host.gv, &host.fvm);
    return Assess(host.gv, host.fvm, overset);
}

TEST(MaySetUp, AcceptsASoundHost) {
    const AnnulusHost host;

    const Verdict verdict = MaySetUp(host.gv, host.fvm);

    EXPECT_TRUE(verdict);
    EXPECT_EQ(Report(verdict), "the mesh may be set up\n");
}

TEST(MaySetUp, ReportsABrokenMeshRule) {
    AnnulusShape shape;
    shape.inner = 0.95;
    shape.across = 3;
    const AnnulusHost host(shape);

    const Verdict verdict = MaySetUp(host.gv, host.fvm);

    EXPECT_FALSE(verdict);
    ExpectFault(verdict.faults, Rule::Thickness, {"on the body"});
    EXPECT_EQ(Report(verdict), TextsOf(verdict.faults));
}

/// The mesh rules would read out of range with the ids that the host rules refuse.
TEST(MaySetUp, StopsAtBrokenHostRules) {
    AnnulusShape shape;
    shape.inner = 0.95;
    AnnulusHost host(shape);
    host.fvm.Ce23[0][1] = -3;

    EXPECT_EQ(RulesOf(MaySetUp(host.gv, host.fvm).faults), std::vector<Rule>{Rule::InnerFaceCells});
}

TEST(MaySetUp, AcceptsASingleGridWithAnInletOnly) {
    BoxHost host(3, 3, 2);
    EXPECT_TRUE(MaySetUp(host.gv, host.fvm));

    // Without the inlet faces, their ghost cells are the last ones of a smaller count.
    for (int* ghost : {host.fvm.idOutlet, host.fvm.idWall, host.fvm.idSymm}) {
        const int n = ghost == host.fvm.idOutlet ? host.fvm.NOutlet
                      : ghost == host.fvm.idWall ? host.fvm.NWall
                                                 : host.fvm.NSymm;
        for (int i = 1; i <= n; ++i) {
            ghost[i] -= host.fvm.NInlet;
        }
    }
    host.fvm.NcAll -= host.fvm.NInlet;
    host.fvm.NInlet = 0;

    ExpectFault(MaySetUp(host.gv, host.fvm).faults, Rule::BackgroundInlet,
                {"there is no inlet face", "also of a single grid"});
}

/// The setup counts the cavities of all cells but the last; without any its tables are too short.
TEST(MaySetUp, RefusesAMeshOfOneCell) {
    const BoxHost one(1, 1, 1);
    const BoxHost two(2, 1, 1);

    ExpectFault(MaySetUp(one.gv, one.fvm).faults, Rule::LastCell, {"one cell only"});
    EXPECT_TRUE(MaySetUp(two.gv, two.fvm));
}

TEST(MaySetUp, RefusesBlocksOfANonmatchingInterface) {
    BoxHost host(4, 1, 1);
    for (int cell = 1; cell <= host.fvm.Nc; ++cell) {
        host.gv.cavityId[cell] = host.fvm.xc[cell] > 2.0 ? 1 : 0;
    }
    host.fvm.nonmatchingFace[2] = 1;

    ExpectFault(MaySetUp(host.gv, host.fvm).faults, Rule::CavityIds,
                {"blocks beside a non-matching interface"});
}

TEST(Assess, CountsCellsPiecesAndDonors) {
    AnnulusHost host;

    const Soundness soundness = Assessed(host);

    EXPECT_TRUE(soundness);
    ASSERT_EQ(soundness.grids.size(), 2u);
    const kvx3d::checks::GridCut& background = soundness.grids[0];
    EXPECT_EQ(background.grid, 1);
    EXPECT_EQ(background.cells, 1600);
    EXPECT_GT(background.cutCells, 200);
    EXPECT_EQ(background.cutShare, background.cutCells / 1600.0);
    EXPECT_EQ(background.cutPieces, std::vector<int>{background.cutCells});
    EXPECT_EQ(soundness.grids[1].cells, 640);
    EXPECT_EQ(soundness.grids[1].cutCells, 0);
    EXPECT_TRUE(soundness.grids[1].cutPieces.empty());
    EXPECT_GT(soundness.hole.faces, 50);
    EXPECT_EQ(soundness.hole.withoutDonor, 0);
    EXPECT_EQ(soundness.hole.mostTries, 1);
    EXPECT_GT(soundness.hole.meanDistance, 0.0);
    EXPECT_GT(soundness.hole.largestDistance, soundness.hole.meanDistance);
    EXPECT_LT(soundness.hole.largestDistance, 1.0);
    EXPECT_EQ(soundness.outer.faces, 80);
    EXPECT_GT(soundness.outerFacesWithoutToolboxDonor, 0);
}

/// Distances are given in cell sizes, so the unit of length does not matter.
TEST(Assess, GivesDistancesInCellSizes) {
    AnnulusHost host;
    AnnulusShape large;
    large.scale = 4.0;
    AnnulusHost largeHost(large);

    const Soundness soundness = Assessed(host);
    const Soundness largeSoundness = Assessed(largeHost);

    EXPECT_NEAR(largeSoundness.hole.meanDistance, soundness.hole.meanDistance, 1e-12);
    EXPECT_NEAR(largeSoundness.outer.largestDistance, soundness.outer.largestDistance, 1e-12);
}

/// A component at a wall makes the toolbox cut the background with a meaningless vector.
TEST(Assess, FindsWhatAComponentNearAWallDoesToTheCut) {
    AnnulusShape shape;
    shape.y = 1.35;
    AnnulusHost host(shape);

    const Soundness soundness = Assessed(host);

    EXPECT_FALSE(soundness);
    ExpectFault(soundness.faults, Rule::ComponentUncut, {"of component1 was cut"});
    const std::vector<int>& pieces = soundness.grids[0].cutPieces;
    EXPECT_EQ(std::accumulate(pieces.begin(), pieces.end(), 0), soundness.grids[0].cutCells);
    EXPECT_TRUE(std::is_sorted(pieces.rbegin(), pieces.rend()));
}

TEST(Assess, NeedsNoDonorsOnASingleGrid) {
    BoxHost host(3, 3, 2);

    const Soundness soundness = Assessed(host);

    EXPECT_TRUE(soundness);
    ASSERT_EQ(soundness.grids.size(), 1u);
    EXPECT_EQ(soundness.grids[0].cutCells, 0);
    EXPECT_EQ(Report(soundness), "background: 18 cells, 0 cut (0 %)\n");
}

TEST(Report, GivesEachGridAndEachKindOfFaceALine) {
    AnnulusShape shape = SmallAnnulus();
    shape.width = 8.0;
    shape.hasSecond = true;
    AnnulusHost host(shape);

    const std::string text = Report(Assessed(host));

    EXPECT_THAT(text, HasSubstr("background: 800 cells, 54 cut (6.75 %) in 1 piece of 54 cells\n"));
    EXPECT_THAT(text, HasSubstr("component1: 160 cells, 0 cut (0 %)\n"));
    EXPECT_THAT(text, HasSubstr("component2: 160 cells, 0 cut (0 %); the toolbox never cuts this "
                                "grid and finds no donors for its faces\n"));
    EXPECT_THAT(text, HasSubstr("hole boundary: 32 faces, 0 without a donor, at most 1 search for "
                                "one, distance to the donor "));
    EXPECT_THAT(text, HasSubstr("outer boundary: 80 faces, 0 without a donor"));
    EXPECT_THAT(text, HasSubstr("outer faces for which GetOversetWallNeighbor must not be called"));
}

TEST(Report, ListsAtMostFivePieces) {
    Soundness soundness;
    soundness.grids.push_back({1, 100, 21, 0.21, {6, 5, 4, 3, 2, 1}});

    EXPECT_EQ(Report(soundness),
              "background: 100 cells, 21 cut (21 %) in 6 pieces of 6, 5, 4, 3, 2, ... cells\n");
}

TEST(RuleNames, AreDifferentForAllRules) {
    std::vector<std::string> names;
    for (int rule = 0; rule <= static_cast<int>(Rule::DonorTries); ++rule) {
        names.push_back(Name(static_cast<Rule>(rule)));
        EXPECT_NE(names.back(), "");
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
    EXPECT_EQ(names.size(), 39u);
}

}  // namespace
