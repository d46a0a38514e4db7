#include "host_checks/donor_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "plain/samples/block_host.h"
#include "plain/samples/cylinder_host.h"
#include "tests/host_checks/faults.h"
#include "tests/support/box_host.h"
#include "tests/support/output_capture.h"

namespace {

using kvx3d::checks::BoundedDonorSearch;
using kvx3d::checks::DonorRecord;
using kvx3d::checks::DonorVerdict;
using kvx3d::checks::MeshView;
using kvx3d::checks::Point;

/// A host set up by the toolbox, with the search under test.
template <typename Host>
struct CutHost {
    explicit CutHost(Host& host_) : host(host_) { overset.SetFVM(&host.gv, &host.fvm); }

    OutputCapture quiet;
    Host& host;
    CKVXOversetMesh overset;
};

/// A box over the middle of a box, both of unit cells with shared centers: every search meets ties.
BoxHost NestedBoxes() {
    return BoxHost(16, 16, 3).WithComponentGrid(10, 10, 3, {3, 3, 0}, {10, 10, 3},
                                                sideZMin | sideZMax);
}

template <typename Host>
int ExpectDonorsOfTheToolbox(Host& host) {
    CutHost<Host> cut(host);
    const MeshView view(host.gv, host.fvm);
    const BoundedDonorSearch search(view, cut.overset);
    int nHole = 0;
    for (int face = 1; face <= host.fvm.Ne; ++face) {
        const DonorRecord record = search.InnerDonor(face);
        if (cut.overset.GetInnerFaceType(face) != OversetInnerFace_Overset) {
            EXPECT_EQ(record.verdict, DonorVerdict::NotAHoleBoundaryFace) << face;
            continue;
        }
        ++nHole;
        EXPECT_EQ(record.verdict, DonorVerdict::Found) << face;
        if (record.verdict == DonorVerdict::Found) {
            EXPECT_EQ(record.donor, cut.overset.GetOversetInnerNeighbor(face)) << face;
        }
    }
    return nHole;
}

TEST(BoundedDonorSearch, FindsTheDonorsOfTheToolboxOnACurvedComponent) {
    CylinderHost host(6);

    EXPECT_GT(ExpectDonorsOfTheToolbox(host), 0);
}

TEST(BoundedDonorSearch, FindsTheDonorsOfTheToolboxWhereAllCentersCoincide) {
    BoxHost host = NestedBoxes();

    EXPECT_GT(ExpectDonorsOfTheToolbox(host), 0);
}

TEST(BoundedDonorSearch, FindsTheDonorsOfTheToolboxWithAnotherCavityOrder) {
    AnnulusHost host(SmallAnnulus());
    for (int cell = 1; cell <= host.fvm.Nc; ++cell) {
        host.gv.cavityId[cell] = 3 - host.gv.cavityId[cell];
    }

    EXPECT_GT(ExpectDonorsOfTheToolbox(host), 0);
}

/// The toolbox is asked only where the search found a donor: elsewhere it may never return.
TEST(ToolboxWallDonor, IsTheDonorOfTheToolboxWhereverTheSearchEnds) {
    AnnulusHost host;
    CutHost<AnnulusHost> cut(host);
    const MeshView view(host.gv, host.fvm);
    const BoundedDonorSearch search(view, cut.overset);
    int nFound = 0;
    int nFar = 0;
    for (int wall = 1; wall <= host.fvm.NWall; ++wall) {
        const DonorRecord record = search.ToolboxWallDonor(wall);
        if (record.verdict == DonorVerdict::Found) {
            ++nFound;
            nFar += record.tries > 1 ? 1 : 0;
            EXPECT_EQ(record.donor, cut.overset.GetOversetWallNeighbor(wall)) << wall;
        }
    }

    EXPECT_GT(nFound, 40);
    EXPECT_LT(nFound, 80);
    EXPECT_GT(nFar, 0);
}

/// The factor is a sum of tenths: ten times 0.1 is not 1, and the last bit decides ties.
TEST(ToolboxWallDonor, EachTryLooksATenthFurtherOut) {
    AnnulusHost host;
    CutHost<AnnulusHost> cut(host);
    const MeshView view(host.gv, host.fvm);
    const BoundedDonorSearch search(view, cut.overset);
    int nRetried = 0;
    for (int wall : view.WallFaces(1, 2)) {
        const DonorRecord record = search.ToolboxWallDonor(wall);
        double factor = 1.0;
        for (int retry = 1; retry < record.tries; ++retry) {
            factor += 0.1;
            ++nRetried;
        }
        const Point face = view.Walls().Center(wall);
        const Point step = face - view.CellCenter(record.cell);
        EXPECT_EQ(record.query.x, step.x * factor + face.x) << wall;
        EXPECT_EQ(record.query.y, step.y * factor + face.y) << wall;
        EXPECT_EQ(record.query.z, step.z * factor + face.z) << wall;
    }

    EXPECT_GT(nRetried, 0);
}

TEST(ToolboxWallDonor, EndsWhereTheAreaVectorHasNoXComponent) {
    BoxHost host = NestedBoxes();
    CutHost<BoxHost> cut(host);
    const MeshView view(host.gv, host.fvm);
    const BoundedDonorSearch search(view, cut.overset, 7);
    int nInY = 0;
    for (int wall : view.WallFaces(1, 2)) {
        if (host.fvm.nxWall[wall] == 0.0) {
            ++nInY;
            const DonorRecord record = search.ToolboxWallDonor(wall);
            EXPECT_EQ(record.verdict, DonorVerdict::NoCellAcross);
            EXPECT_EQ(record.donor, 0);
            EXPECT_EQ(record.tries, 7);
        }
    }

    EXPECT_EQ(nInY, 60);
}

TEST(NearestWallDonor, IsTheNearestActiveBackgroundCellToTheMirroredCenter) {
    AnnulusHost host;
    CutHost<AnnulusHost> cut(host);
    const MeshView view(host.gv, host.fvm);
    const BoundedDonorSearch search(view, cut.overset);
    for (int wall : view.WallFaces(1, 2)) {
        const DonorRecord record = search.NearestWallDonor(wall);
        const Point mirrored =
            2.0 * view.Walls().Center(wall) - view.CellCenter(host.fvm.CWall23[wall]);
        double nearest = 1e300;
        for (int cell : view.CellsOfGrid(1)) {
            if (search.IsActive(cell)) {
                nearest = std::min(nearest, Norm(view.CellCenter(cell) - mirrored));
            }
        }
        ASSERT_EQ(record.verdict, DonorVerdict::Found);
        ASSERT_TRUE(search.IsActive(record.donor));
        ASSERT_EQ(view.Grid(record.donor), 1);
        ASSERT_EQ(record.distance, nearest);
    }
}

TEST(BoundedDonorSearch, RecordsCellQueryAndDistanceOfASearch) {
    AnnulusHost host;
    CutHost<AnnulusHost> cut(host);
    const MeshView view(host.gv, host.fvm);
    const BoundedDonorSearch search(view, cut.overset);
    int face = 1;
    while (search.InnerDonor(face).donor == 0) {
        ++face;
    }

    const DonorRecord record = search.InnerDonor(face);

    EXPECT_EQ(record.tries, 1);
    EXPECT_TRUE(search.IsActive(record.cell));
    const Point mirrored = 2.0 * view.InnerFaceCenter(face) - view.CellCenter(record.cell);
    EXPECT_NEAR(Norm(record.query - mirrored), 0.0, 1e-15);
    EXPECT_EQ(record.distance, Norm(view.CellCenter(record.donor) - record.query));
}

/// With the component cut but for the layer at the body, the nearest cells lie on the far side of
/// the hole only, and a search without a bound would go far or never end.
TEST(BoundedDonorSearch, GivesUpAfterItsTriesAndSaysWhy) {
    AnnulusHost host;
    CutHost<AnnulusHost> cut(host);
    const MeshView view(host.gv, host.fvm);
    const BoundedDonorSearch sound(view, cut.overset);
    std::vector<char> active = sound.ActiveCells();
    for (int cell : view.CellsOfGrid(2)) {
        active[cell] = 0;
    }
    const BoundedDonorSearch nothing(view, active);
    active[view.CellsOfGrid(2).front()] = 1;
    const BoundedDonorSearch oneCell(view, active, 12);
    int nGivenUp = 0;

    for (int face = 1; face <= host.fvm.Ne; ++face) {
        if (sound.InnerDonor(face).donor == 0) {
            continue;
        }
        EXPECT_EQ(nothing.InnerDonor(face).verdict, DonorVerdict::NoActiveCell);
        EXPECT_EQ(nothing.InnerDonor(face).tries, 0);
        const DonorRecord record = oneCell.InnerDonor(face);
        if (record.verdict == DonorVerdict::NoCellAcross) {
            ++nGivenUp;
            EXPECT_EQ(record.donor, 0);
            EXPECT_EQ(record.tries, 12);
        }
    }
    EXPECT_GT(nGivenUp, 0);
}

TEST(BoundedDonorSearch, HasNoTreeForTheSecondComponent) {
    AnnulusShape shape = SmallAnnulus();
    shape.width = 8.0;
    shape.hasSecond = true;
    AnnulusHost host(shape);
    CutHost<AnnulusHost> cut(host);
    const MeshView view(host.gv, host.fvm);
    std::vector<char> active = BoundedDonorSearch(view, cut.overset).ActiveCells();
    active[host.fvm.Nc] = 0;
    const BoundedDonorSearch search(view, active);
    int nSearched = 0;

    for (int face = 1; face <= host.fvm.Ne; ++face) {
        if (host.fvm.Ce23[0][face] == host.fvm.Nc || host.fvm.Ce23[1][face] == host.fvm.Nc) {
            ++nSearched;
            EXPECT_EQ(search.InnerDonor(face).verdict, DonorVerdict::NoTreeForGrid);
        }
    }
    EXPECT_EQ(nSearched, 3);
    const int outer = view.WallFaces(2, 3).front();
    EXPECT_EQ(search.ToolboxWallDonor(outer).verdict, DonorVerdict::NoTreeForGrid);
    EXPECT_EQ(search.NearestWallDonor(outer).verdict, DonorVerdict::Found);
}

TEST(BoundedDonorSearch, LeavesPhysicalWallsAlone) {
    AnnulusHost host(SmallAnnulus());
    CutHost<AnnulusHost> cut(host);
    const MeshView view(host.gv, host.fvm);
    const BoundedDonorSearch search(view, cut.overset);

    EXPECT_EQ(search.ToolboxWallDonor(1).verdict, DonorVerdict::NotAnOuterFace);
    EXPECT_EQ(search.NearestWallDonor(1).verdict, DonorVerdict::NotAnOuterFace);
}

}  // namespace
