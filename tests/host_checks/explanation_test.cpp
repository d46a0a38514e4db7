#include "host_checks/explanation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <stdexcept>

#include "plain/samples/cylinder_host.h"
#include "tests/overset/scatter_host.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"

namespace {

using kvx3d::checks::CellExplanation;
using kvx3d::checks::CuttingStep;
using kvx3d::checks::DonorVerdict;
using kvx3d::checks::Explainer;
using kvx3d::checks::InnerFaceExplanation;
using kvx3d::checks::MeshView;
using kvx3d::checks::WallFaceExplanation;

/// A host set up by the toolbox, with its explainer.
template <class Host>
struct Explained {
    explicit Explained(Host& filled)
        : host(filled),
          view(host.gv, host.fvm),
          explainer((overset.SetFVM(&host.gv, &host.fvm), view), overset) {}

    OutputCapture quiet;
    Host& host;
    CKVXOversetMesh overset;
    MeshView view;
    Explainer explainer;
};

/// A box over the middle of a channel, both of unit cells; the lattices are a quarter cell apart.
BoxHost Pair() {
    return BoxHost(20, 20, 3).WithComponentGrid(10, 10, 3, {5.25, 5.25, 0}, {10, 10, 3},
                                                sideZMin | sideZMax);
}

/// The same with a second component behind the first.
BoxHost ThreeGrids() {
    return Pair().WithComponentGrid(4, 10, 3, {15.5, 5.25, 0}, {4, 10, 3}, sideZMin | sideZMax);
}

/// The component ends half a cell before the wall at y = 0: the outside step cuts there.
BoxHost ComponentAtTheWall() {
    return BoxHost(20, 20, 3).WithComponentGrid(10, 10, 3, {5.25, 0.5, 0}, {10, 10, 3},
                                                sideZMin | sideZMax);
}

struct Counts {
    int outside = 0;  ///< cells cut by the outside step
    int overlap = 0;
    int unjudged = 0;
};

/// Compares the verdict on every cell with the state of the toolbox.
template <class Host>
Counts ExpectVerdictsOfTheToolbox(Host& host) {
    Explained<Host> mesh(host);
    Counts counts;
    for (int cell = 1; cell <= host.fvm.Nc; ++cell) {
        const CellExplanation why = mesh.explainer.ExplainCell(cell);
        const bool isCut = mesh.overset.GetOversetCellType(cell) == OversetCell_NonActive;
        EXPECT_EQ(why.isCut, isCut) << "cell " << cell;
        EXPECT_EQ(why.state, isCut ? OversetCell_NonActive : OversetCell_Active);
        counts.outside += isCut && why.step == CuttingStep::OutsideDomain ? 1 : 0;
        counts.overlap += isCut && why.step == CuttingStep::Overlap ? 1 : 0;
        counts.unjudged += why.step == CuttingStep::None ? 1 : 0;
    }
    return counts;
}

TEST(CellVerdict, ExplainsEveryCellOfTwoBoxes) {
    BoxHost host = Pair();

    const Counts counts = ExpectVerdictsOfTheToolbox(host);

    EXPECT_EQ(counts.outside, 0);
    EXPECT_GT(counts.overlap, 0);
    EXPECT_EQ(counts.unjudged, 0);
}

TEST(CellVerdict, ExplainsEveryCellWhereAllCentersCoincide) {
    BoxHost host = BoxHost(16, 16, 3).WithComponentGrid(10, 10, 3, {3, 3, 0}, {10, 10, 3},
                                                        sideZMin | sideZMax);

    EXPECT_GT(ExpectVerdictsOfTheToolbox(host).overlap, 0);
}

TEST(CellVerdict, ExplainsEveryCellOfACurvedComponent) {
    CylinderHost host(4);

    EXPECT_GT(ExpectVerdictsOfTheToolbox(host).overlap, 0);
}

TEST(CellVerdict, LeavesOutTheSecondComponent) {
    BoxHost host = ThreeGrids();

    const Counts counts = ExpectVerdictsOfTheToolbox(host);

    EXPECT_GT(counts.overlap, 0);
    EXPECT_EQ(counts.unjudged, 4 * 10 * 3);
}

TEST(CellVerdict, ExplainsEveryCellAfterACutOutsideTheDomain) {
    BoxHost host = ComponentAtTheWall();

    const Counts counts = ExpectVerdictsOfTheToolbox(host);

    EXPECT_GT(counts.outside, 0);
    EXPECT_GT(counts.overlap, 0);
}

class CellVerdictOnScatteredCells : public testing::TestWithParam<Scatter> {};

TEST_P(CellVerdictOnScatteredCells, ExplainsEveryCell) {
    Counts sum;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        ScatterHost host(GetParam(), 150, seed);
        SCOPED_TRACE(seed);

        const Counts counts = ExpectVerdictsOfTheToolbox(host);

        sum.outside += counts.outside;
        sum.overlap += counts.overlap;
        sum.unjudged += counts.unjudged;
    }
    EXPECT_GT(sum.outside, 0);
    EXPECT_GT(sum.overlap, 0);
    EXPECT_GT(sum.unjudged, 0);
}

INSTANTIATE_TEST_SUITE_P(Scatters, CellVerdictOnScatteredCells,
                         testing::Values(Scatter::Uniform, Scatter::Lattice, Scatter::Rows,
                                         Scatter::Diagonal, Scatter::NotFinite));

TEST(CellExplanation, HasTheNumbersOfTheOverlapStep) {
    BoxHost host = Pair();
    Explained<BoxHost> mesh(host);

    const int cell = host.CellAt(0, 9, 10, 2);  // center (8.5, 9.5, 1.5)
    const CellExplanation why = mesh.explainer.ExplainCell(cell);

    EXPECT_EQ(why.cell, cell);
    EXPECT_EQ(why.grid, 1);
    EXPECT_EQ(why.step, CuttingStep::Overlap);
    EXPECT_EQ(why.faceCenter.x, 5.25);
    EXPECT_EQ(why.faceCenter.y, 9.75);
    EXPECT_EQ(why.faceCenter.z, 1.5);
    EXPECT_EQ(why.vector.x, -1.0);
    EXPECT_FALSE(why.hasFixedVector);
    EXPECT_EQ(why.measure, -3.25);
    EXPECT_EQ(why.distance, -3.25);
    EXPECT_EQ(why.cellSize, 1.0);
    EXPECT_EQ(why.margin, 2.0);
    EXPECT_EQ(why.marginLength, 2.0);
    EXPECT_TRUE(why.isCut);
    EXPECT_EQ(mesh.host.fvm.xWall[why.wallFace], 5.25);
}

TEST(CellExplanation, HasTheNumbersOfTheOutsideStep) {
    BoxHost host = Pair();
    Explained<BoxHost> mesh(host);

    const CellExplanation why = mesh.explainer.ExplainCell(host.CellAt(1, 1, 1, 2));

    EXPECT_EQ(why.grid, 2);
    EXPECT_EQ(why.step, CuttingStep::OutsideDomain);
    EXPECT_EQ(why.faceCenter.y, 0.0);
    EXPECT_EQ(why.distance, -5.75);  // the cell is centered at y = 5.75
    EXPECT_FALSE(why.isCut);
}

TEST(CellExplanation, DividesByTheAreaForLengths) {
    BoxHost host = BoxHost(10, 10, 2, {0, 0, 0}, {20, 20, 4})
                       .WithComponentGrid(6, 6, 2, {4.5, 4.5, 0}, {12, 12, 4}, sideZMin | sideZMax);
    Explained<BoxHost> mesh(host);

    const CellExplanation why = mesh.explainer.ExplainCell(host.CellAt(0, 4, 5, 1));

    EXPECT_EQ(why.distance, -2.5);
    EXPECT_EQ(why.measure, -10.0);  // faces of area 4
    EXPECT_DOUBLE_EQ(why.cellSize, 2.0);
    EXPECT_DOUBLE_EQ(why.margin, 16.0);
    EXPECT_DOUBLE_EQ(why.marginLength, 4.0);
}

TEST(CellExplanation, NamesTheFixedVectorAfterACutOutsideTheDomain) {
    BoxHost host = ComponentAtTheWall();
    Explained<BoxHost> mesh(host);
    const int last = host.gv.oversetBCWallFace[1][host.gv.oversetBCFaceCount[1]];

    const CellExplanation background = mesh.explainer.ExplainCell(1);
    const CellExplanation component = mesh.explainer.ExplainCell(host.CellAt(1, 1, 1, 1));

    EXPECT_TRUE(background.hasFixedVector);
    EXPECT_EQ(background.vector.x, host.fvm.xWall[last]);
    EXPECT_EQ(background.vector.y, host.fvm.yWall[last]);
    EXPECT_EQ(background.vector.z, host.fvm.zWall[last]);
    EXPECT_FALSE(component.hasFixedVector);
    EXPECT_EQ(
        Text(background),
        "Cell 1 (grid 1, background) at (0.5, 0.5, 0.5) is cut: its nearest outer face of "
        "component 1 is wall face 121 at (5.25, 1, 0.5); component cells were cut outside the "
        "domain, so (14.75, 10.5, 2.5), the center of the last outer face, replaces all area "
        "vectors, and along it the cell lies 4.12053 behind the face, the margin is 2 (2 cell "
        "sizes).");
}

TEST(CellText, SaysWhereTheCellLiesAndWhatTheMarginIs) {
    BoxHost host = Pair();
    Explained<BoxHost> mesh(host);

    EXPECT_EQ(Text(mesh.explainer.ExplainCell(host.CellAt(0, 9, 10, 2))),
              "Cell 589 (grid 1, background) at (8.5, 9.5, 1.5) is cut: its nearest outer face of "
              "component 1 is wall face 135 at (5.25, 9.75, 1.5); it lies 3.25 inside the "
              "component, the margin is 2 (2 cell sizes).");
    EXPECT_EQ(Text(mesh.explainer.ExplainCell(host.CellAt(0, 7, 10, 2))),
              "Cell 587 (grid 1, background) at (6.5, 9.5, 1.5) is active: its nearest outer face "
              "of component 1 is wall face 135 at (5.25, 9.75, 1.5); it lies 1.25 inside the "
              "component, the margin is 2 (2 cell sizes).");
    EXPECT_EQ(Text(mesh.explainer.ExplainCell(host.CellAt(0, 1, 10, 2))),
              "Cell 581 (grid 1, background) at (0.5, 9.5, 1.5) is active: its nearest outer face "
              "of component 1 is wall face 135 at (5.25, 9.75, 1.5); it lies 4.75 outside the "
              "component, the margin is 2 (2 cell sizes).");
    EXPECT_EQ(Text(mesh.explainer.ExplainCell(host.CellAt(1, 5, 1, 2))),
              "Cell 1305 (grid 2, component 1) at (9.75, 5.75, 1.5) is active: its nearest "
              "physical wall of the background is wall face 30 at (9.5, 0, 1.5); it lies 5.75 "
              "inside the domain, the margin is 2 (2 cell sizes).");
}

TEST(CellText, SaysWhyNoStepJudgesACell) {
    BoxHost host = ThreeGrids();
    Explained<BoxHost> mesh(host);

    EXPECT_EQ(Text(mesh.explainer.ExplainCell(host.CellAt(2, 1, 1, 1))),
              "Cell 1501 (grid 3, component 2) at (16, 5.75, 0.5) is active: no cutting step "
              "judges the cells of component 2.");
}

// Faces

TEST(InnerFaceExplanation, HasTypeAndDonorOfTheToolboxOnEveryFace) {
    BoxHost host = Pair();
    Explained<BoxHost> mesh(host);
    int nHole = 0;
    for (int face = 1; face <= host.fvm.Ne; ++face) {
        const InnerFaceExplanation why = mesh.explainer.ExplainInnerFace(face);
        ASSERT_EQ(why.type, mesh.overset.GetInnerFaceType(face)) << "face " << face;
        ASSERT_EQ(why.owner, host.fvm.Ce23[0][face]);
        ASSERT_EQ(why.neighbor, host.fvm.Ce23[1][face]);
        if (why.type != OversetInnerFace_Overset) {
            ASSERT_EQ(why.donor.donor, 0);
            continue;
        }
        ++nHole;
        ASSERT_EQ(why.donor.donor, mesh.overset.GetOversetInnerNeighbor(face)) << "face " << face;
        ASSERT_EQ(why.donorGrid, 2);
        ASSERT_EQ(why.cellSize, 1.0);
        ASSERT_EQ(why.distanceInCells, why.donor.distance);
        ASSERT_LT(why.distanceInCells, 0.7);
    }
    EXPECT_GT(nHole, 0);
}

TEST(InnerFaceExplanation, NoticesADonorThatWasWrittenIntoTheFace) {
    BoxHost host = Pair();
    Explained<BoxHost> mesh(host);
    int face = 1;
    while (mesh.overset.GetInnerFaceType(face) != OversetInnerFace_Overset) {
        ++face;
    }
    EXPECT_FALSE(mesh.explainer.ExplainInnerFace(face).holdsDonor);

    mesh.overset.ReplaceDonorIdtoNonActCellId(face);

    const InnerFaceExplanation why = mesh.explainer.ExplainInnerFace(face);
    EXPECT_TRUE(why.holdsDonor);
    EXPECT_NE(Text(why).find("joins two grids because its donor was already written"),
              std::string::npos)
        << Text(why);
}

TEST(InnerFaceText, DistinguishesRegularFacesHolesAndHoleBoundaries) {
    BoxHost host = Pair();
    Explained<BoxHost> mesh(host);
    const auto text = [&](int i) {
        return Text(mesh.explainer.ExplainInnerFace(
            host.InnerFaceBetween(host.CellAt(0, i, 10, 2), host.CellAt(0, i + 1, 10, 2))));
    };

    EXPECT_EQ(text(1),
              "Inner face 1692 at (1, 9.5, 1.5) is a regular face: owner cell 581 (grid 1, "
              "background) is active, neighbor cell 582 (grid 1, background) is active.");
    EXPECT_EQ(text(9),
              "Inner face 1716 at (9, 9.5, 1.5) lies in a hole: owner cell 589 (grid 1, "
              "background) is cut, neighbor cell 590 (grid 1, background) is cut.");
    EXPECT_EQ(text(7),
              "Inner face 1710 at (7, 9.5, 1.5) lies on a hole boundary: owner cell 587 (grid 1, "
              "background) is active, neighbor cell 588 (grid 1, background) is cut; the search "
              "across the face from cell 587 ends at (7.5, 9.5, 1.5) after 1 try with donor cell "
              "1343, whose center is 0.353553 (0.353553 cell sizes) away from that point.");
}

TEST(WallFaceExplanation, HasKindGroupAndDonor) {
    BoxHost host = Pair();
    Explained<BoxHost> mesh(host);
    int nOuter = 0;
    for (int face = 1; face <= host.fvm.NWall; ++face) {
        const WallFaceExplanation why = mesh.explainer.ExplainWallFace(face);
        ASSERT_EQ(why.kind, mesh.overset.GetBCType(face)) << "wall face " << face;
        ASSERT_EQ(why.cell, host.fvm.CWall23[face]);
        if (why.kind != OversetWallFace_Overset) {
            ASSERT_EQ(why.group, 0);
            ASSERT_EQ(why.donor.verdict, DonorVerdict::NotAnOuterFace);
            continue;
        }
        ++nOuter;
        ASSERT_EQ(why.group, 1);
        ASSERT_EQ(why.donor.verdict, DonorVerdict::Found);
        ASSERT_LT(why.distanceInCells, 0.87);
        if (why.toolboxDonor.verdict == DonorVerdict::Found) {
            ASSERT_EQ(why.toolboxDonor.donor, mesh.overset.GetOversetWallNeighbor(face));
        } else {
            ASSERT_EQ(host.fvm.nxWall[face], 0.0) << "wall face " << face;
        }
    }
    EXPECT_EQ(nOuter, 4 * 10 * 3);
}

TEST(WallFaceText, NamesKindGroupAndBothDonors) {
    BoxHost host = Pair();
    Explained<BoxHost> mesh(host);
    const auto textOfFirst = [&](auto isWanted) {
        int face = 1;
        while (!isWanted(face)) {
            ++face;
        }
        return Text(mesh.explainer.ExplainWallFace(face));
    };

    EXPECT_EQ(textOfFirst([&](int) { return true; }),
              "Wall face 1 at (0.5, 0, 0.5) is a physical wall beside cell 1 (grid 1, "
              "background).");
    EXPECT_EQ(textOfFirst([&](int face) { return host.fvm.xWall[face] == 15.25; }),
              "Wall face 151 at (15.25, 5.75, 0.5) is an outer face, listed in overset group 1, "
              "beside cell 1210 (grid 2, component 1); its donor is cell 116, the active "
              "background cell nearest to the mirrored center (15.75, 5.75, 0.5), 0.353553 "
              "(0.353553 cell sizes) away. GetOversetWallNeighbor returns cell 117 after 7 tries.");
    EXPECT_EQ(textOfFirst([&](int face) { return host.fvm.yWall[face] == 15.25; }),
              "Wall face 211 at (5.75, 15.25, 0.5) is an outer face, listed in overset group 1, "
              "beside cell 1291 (grid 2, component 1); its donor is cell 306, the active "
              "background cell nearest to the mirrored center (5.75, 15.75, 0.5), 0.353553 "
              "(0.353553 cell sizes) away. GetOversetWallNeighbor must not be called for it: no "
              "cell across the face within 20 tries.");
}

TEST(Explainer, RefusesNumbersOutOfRange) {
    BoxHost host = Pair();
    Explained<BoxHost> mesh(host);

    EXPECT_THROW(mesh.explainer.ExplainCell(0), std::out_of_range);
    EXPECT_THROW(mesh.explainer.ExplainCell(host.fvm.Nc + 1), std::out_of_range);
    EXPECT_THROW(mesh.explainer.ExplainInnerFace(host.fvm.Ne + 1), std::out_of_range);
    EXPECT_THROW(mesh.explainer.ExplainWallFace(host.fvm.NWall + 1), std::out_of_range);
}

}  // namespace
