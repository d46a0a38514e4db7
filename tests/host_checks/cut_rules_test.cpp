#include "host_checks/cut_rules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "plain/samples/block_host.h"
#include "tests/host_checks/faults.h"
#include "tests/support/output_capture.h"

namespace {

using kvx3d::checks::BoundedDonorSearch;
using kvx3d::checks::CutFaults;
using kvx3d::checks::CutMesh;
using kvx3d::checks::Fault;
using kvx3d::checks::MeshView;
using kvx3d::checks::Rule;

/// What the toolbox made of a sound mesh, to be spoiled by the tests.
class CutRule : public testing::Test {
protected:
    CutRule() : view(host.gv, host.fvm) {
        const OutputCapture quiet;
        overset.SetFVM(&host.gv, &host.fvm);
        cut = FindDonors(view, BoundedDonorSearch(view, overset));
    }

    std::vector<Fault> Faults() const { return CutFaults(view, cut); }
    int FirstFace() const { return cut.hole[0].face; }
    std::string FirstHoleFace() const {
        return "hole-boundary face " + std::to_string(FirstFace()) + " at (";
    }

    AnnulusHost host;
    MeshView view;
    CKVXOversetMesh overset;
    CutMesh cut;
};

TEST_F(CutRule, IsKeptByASoundMesh) {
    ASSERT_FALSE(cut.hole.empty());
    ASSERT_EQ(cut.outers.size(), 80u);
    EXPECT_EQ(TextsOf(Faults()), "");
}

TEST_F(CutRule, HoleExistsNeedsACutBackgroundCell) {
    std::fill(cut.isActive.begin(), cut.isActive.end(), char{1});

    ExpectFault(Faults(), Rule::HoleExists, {"no background cell was cut"});
}

TEST_F(CutRule, ComponentUncutNamesACutComponentCell) {
    cut.isActive[host.fvm.Nc] = 0;

    ExpectFault(Faults(), Rule::ComponentUncut, {"cell 2240 at (", "of component1 was cut"});
}

TEST_F(CutRule, DonorExistsOnTheHoleBoundary) {
    cut.hole[0].search.donor = 0;

    const std::vector<Fault> faults = Faults();

    EXPECT_EQ(faults.size(), 1u);
    ExpectFault(faults, Rule::DonorExists, {FirstHoleFace(), "no donor was found"});
}

TEST_F(CutRule, DonorExistsOnTheOuterBoundary) {
    cut.outers[3].search.donor = 0;

    const std::vector<Fault> faults = Faults();

    EXPECT_EQ(faults.size(), 1u);
    ExpectFault(faults, Rule::DonorExists, {"overset1 face, wall face ", "no donor was found"});
}

TEST_F(CutRule, DonorAwayFromWallNamesADonorAtTheBody) {
    const int body = host.fvm.CWall23[view.WallFaces(0, 2).front()];
    cut.hole[0].search.donor = body;

    ExpectFault(Faults(), Rule::DonorAwayFromWall,
                {FirstHoleFace(), "has as donor cell " + std::to_string(body),
                 "of component1, which touches a wall or overset face"});
}

TEST_F(CutRule, DonorTriesAllowTenOfAHexahedron) {
    cut.hole[0].search.tries = 10;
    EXPECT_EQ(TextsOf(Faults()), "");

    cut.hole[0].search.tries = 11;
    ExpectFault(Faults(), Rule::DonorTries,
                {FirstHoleFace(), "took 11 searches for a donor", "more than 10"});
}

/// Many tries are sound while all of them stay near the face, as in a flat cell.
TEST_F(CutRule, DonorTriesMayBeManyInShortSteps) {
    cut.hole[0].search.tries = 12;
    const int face = FirstFace();
    for (int side : {0, 1}) {
        const int cell = host.fvm.Ce23[side][face];
        host.fvm.xc[cell] = 0.9 * host.fvm.xe[face] + 0.1 * host.fvm.xc[cell];
        host.fvm.yc[cell] = 0.9 * host.fvm.ye[face] + 0.1 * host.fvm.yc[cell];
    }

    for (const Fault& fault : Faults()) {
        EXPECT_NE(fault.rule, Rule::DonorTries) << Text(fault);
    }
}

TEST_F(CutRule, DonorNeighborsCountsActiveCellsAroundTheDonor) {
    const int donor = cut.hole[0].search.donor;
    for (int face = 1; face <= host.fvm.Ne; ++face) {
        for (int side : {0, 1}) {
            if (host.fvm.Ce23[side][face] == donor) {
                cut.isActive[host.fvm.Ce23[1 - side][face]] = 0;
            }
        }
    }

    ExpectFault(Faults(), Rule::DonorNeighbors,
                {"has as donor cell " + std::to_string(donor),
                 "with 1 active cells around it, 8 are needed"});
}

/// In a single ring of active cells, a donor has two neighbors on either side within two steps.
TEST_F(CutRule, DonorNeighborsReachesTwoCellsFar) {
    const int around = AnnulusShape().around;
    const int first = view.CellsOfGrid(2).front();
    const int donor = cut.hole[0].search.donor;
    for (int cell : view.CellsOfGrid(2)) {
        if ((cell - first) / around != (donor - first) / around) {
            cut.isActive[cell] = 0;
        }
    }

    ExpectFault(Faults(), Rule::DonorNeighbors, {"with 5 active cells around it"});
}

TEST_F(CutRule, LengthScaleHoldsForHoleBoundaryFaces) {
    const int face = FirstFace();
    host.fvm.nxe[face] *= 1e-4;
    host.fvm.nye[face] *= 1e-4;

    ExpectFault(Faults(), Rule::LengthScale, {FirstHoleFace(), "below 1e-6"});
}

}  // namespace
