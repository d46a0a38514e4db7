#include "host_checks/donor_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "plain/samples/cylinder_host.h"
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
struct SetUp {
    explicit SetUp(Host& host_) : host(host_) { overset.SetFVM(&host.gv, &host.fvm); }

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
    SetUp<Host> setUp(host);
    const MeshView view(host.gv, host.fvm);
    const BoundedDonorSearch search(view, setUp.overset);
    int nHole = 0;
    for (int face = 1; face <= host.fvm.Ne; ++face) {
        const DonorRecord record = search.InnerDonor(face);
        if (setUp.overset.GetInnerFaceType(face) != OversetInnerFace_Overset) {
            EXPECT_EQ(record.verdict, DonorVerdict::NotAHoleBoundaryFace) << face;
            continue;
        }
        ++nHole;
        EXPECT_EQ(record.verdict, DonorVerdict::Found) << face;
        if (record.verdict == DonorVerdict::Found) {
            EXPECT_EQ(record.donor, setUp.overset.GetOversetInnerNeighbor(face)) << face;
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

}  // namespace
