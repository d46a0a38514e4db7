#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <vector>

#include "host_link/containers.h"
#include "overset/kd_tree.h"
#include "overset/overset_grid_data.h"
#include "overset/overset_mesh_impl.h"
#include "tests/support/allocation_recorder.h"
#include "tests/support/output_capture.h"
#include "tests/support/private_access.h"

KVX3D_EXPOSE(BuildDonorTrees, &CKVXOversetMesh_Impl::BuildTreeForSearchDonor,
             void (CKVXOversetMesh_Impl::*)());

namespace {

/// One face (inner face 1 or wall face 1) in the plane x = 0 of a hand-made mesh. Cell 1 lies at
/// x = -1, cell 2 at x = 1; the cells from 3 on belong to the other grid.
class DonorSearchByHand : public testing::Test {
protected:
    struct Cell {
        double x, y, z;
        int cavity;
        int state;
    };

    ~DonorSearchByHand() override { delete impl.gridData; }

    /// Cells 1 and 2 are in grid `grid`; their states decide which of them searches.
    void SetUpMesh(int grid, int state1, int state2, const std::vector<Cell>& others) {
        cells = {{0, 0, 0, 0, 0}, {-1, 0, 0, grid, state1}, {1, 0, 0, grid, state2}};
        cells.insert(cells.end(), others.begin(), others.end());
        for (const Cell& cell : cells) {
            x.push_back(cell.x);
            y.push_back(cell.y);
            z.push_back(cell.z);
            cavity.push_back(cell.cavity);
            state.push_back(cell.state);
        }
        auto* data = new KVX_ART_OVERSET_GRID_DATA;
        impl.gridData = data;
        data->kvxGv = &gv;
        data->kvxFvm = &fvm;
        data->Nc = static_cast<int>(cells.size()) - 1;
        data->NWall = 1;
        data->xc = x.data();
        data->yc = y.data();
        data->zc = z.data();
        data->cavityId = cavity.data();
        data->Ce23[0] = &owner[0];
        data->Ce23[1] = &neighbor[0];
        data->CWall23 = &wallCell[0];
        data->xe = data->ye = data->ze = data->xWall = data->yWall = data->zWall = &zero[0];
        data->nxe = data->nxWall = &nx[0];
        data->nye = data->nyWall = &ny[0];
        data->nze = data->nzWall = &nz[0];
        newInt1D(data->cellState, data->Nc);
        newInt1D(data->cavityToGrid, 4);
        newInt1D(data->NCellOfGrid, 4);
        newIntRows(data->cellOfGrid, 5);
        for (int g = 1; g <= 4; ++g) {
            data->cavityToGrid[g] = g <= 3 ? g : 0;
            newInt1D(data->cellOfGrid[g], data->Nc);
        }
        for (int c = 1; c <= data->Nc; ++c) {
            data->cellState[c] = state[static_cast<std::size_t>(c)];
            const int g = cavity[static_cast<std::size_t>(c)];
            data->cellOfGrid[g][++data->NCellOfGrid[g]] = c;
        }
        (impl.*MemberOf(BuildDonorTrees()))();
    }

    CKvx3dGV gv;
    CKVX3DFiniteVolumeMesh fvm;
    std::vector<Cell> cells;
    std::vector<double> x, y, z;
    std::vector<int> cavity, state;
    int owner[2] = {0, 1};
    int neighbor[2] = {0, 2};
    int wallCell[2] = {0, 1};
    double zero[2] = {0.0, 0.0};
    double nx[2] = {0.0, 1.0};
    double ny[2] = {0.0, 0.0};
    double nz[2] = {0.0, 0.0};
    CKVXOversetMesh_Impl impl;
};

TEST_F(DonorSearchByHand, OwnerSearchesAcrossInTheOtherGrid) {
    SetUpMesh(1, 2, 1, {{1.1, 0, 0, 2, 2}, {1, 0, 0, 1, 2}, {-1, 0, 0, 2, 2}});

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 3);
}

TEST_F(DonorSearchByHand, ComponentCellSearchesInTheBackground) {
    SetUpMesh(2, 2, 1, {{1.1, 0, 0, 1, 2}, {1, 0, 0, 2, 2}});

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 3);
}

TEST_F(DonorSearchByHand, NeighborSearchesAgainstTheAreaVector) {
    SetUpMesh(1, 1, 2, {{1.1, 0, 0, 2, 2}, {-1.1, 0, 0, 2, 2}});

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 4);
}

TEST_F(DonorSearchByHand, AFaceWithOwnerAndNeighborSwappedHasTheSameDonor) {
    SetUpMesh(1, 2, 1, {{1.1, 0.3, 0, 2, 2}, {-1.1, 0, 0, 2, 2}});
    const int donor = impl.GetOversetInnerDonorCell(1);

    owner[1] = 2;
    neighbor[1] = 1;
    nx[1] = -1.0;

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), donor);
}

TEST_F(DonorSearchByHand, AFaceOfTwoActiveCellsSearchesFromItsOwner) {
    SetUpMesh(1, 2, 2, {{1.1, 0, 0, 2, 2}, {-1.1, 0, 0, 2, 2}});

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 3);
}

TEST_F(DonorSearchByHand, ACutCellIsNeverADonor) {
    SetUpMesh(1, 2, 1, {{1.0, 0, 0, 2, 1}, {3.0, 0, 0, 2, 2}});

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 4);
    EXPECT_EQ(impl.componentTree->tree->root->data, &impl.gridData->cellOfGrid[2][2]);
}

TEST_F(DonorSearchByHand, ACandidateOnThePlaneIsRejectedAndTheNextTryIsATenthFarther) {
    // At t = 1 the query (1, 0, 0) is nearest to cell 3, which lies on the plane; at t = 1.1 the
    // query is nearest to cell 4.
    SetUpMesh(1, 2, 1, {{0, 0.5, 0, 2, 2}, {2.2, 0, 0, 2, 2}});

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 4);
}

TEST_F(DonorSearchByHand, ACandidateExactlyAtTheLimitIsRejected) {
    SetUpMesh(1, 2, 1, {{1e-8, 0.5, 0, 2, 2}, {2.2, 0, 0, 2, 2}});

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 4);
}

TEST_F(DonorSearchByHand, ACandidateJustBeyondTheLimitIsAccepted) {
    SetUpMesh(1, 2, 1, {{1.0000001e-8, 0.5, 0, 2, 2}, {2.2, 0, 0, 2, 2}});

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 3);
}

TEST_F(DonorSearchByHand, TheTestAddsTheZTermLast) {
    // Cell 3: y term 1, x term 1e16, z term -1e16. With z added last the 1 is lost and the cell is
    // rejected.
    nx[1] = 1e16;
    ny[1] = 1.0;
    nz[1] = -1e16;
    SetUpMesh(1, 2, 1, {{1, 1, 1, 2, 2}, {1.5, 0, -1.5, 2, 2}});

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 4);
}

TEST_F(DonorSearchByHand, AWallUsesTheXAreaInAllThreeDirections) {
    // Cell 3 lies beyond the plane x = 0 but not beyond x + y + z = 0; cell 4 lies beyond both.
    SetUpMesh(1, 2, 2, {{0.5, -0.6, -0.6, 2, 2}, {2.2, 0, 0, 2, 2}});
    ny[1] = -5.0;

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 3);
    EXPECT_EQ(impl.GetOversetWallDonorCell(1), 4);
}

TEST_F(DonorSearchByHand, WallIdsOutOfRangeAreRejected) {
    SetUpMesh(1, 2, 2, {{1, 0, 0, 2, 2}});
    OutputCapture output;

    EXPECT_EQ(impl.GetOversetWallDonorCell(0), -1);
    EXPECT_EQ(impl.GetOversetWallDonorCell(2), -1);
    EXPECT_EQ(impl.GetOversetWallDonorCell(1), 3);

    EXPECT_EQ(output.Out(),
              "<ERROR> Fail to get overset wall donor cell. idWall must within 1~ NWall.\n"
              "<ERROR> Fail to get overset wall donor cell. idWall must within 1~ NWall.\n");
}

TEST_F(DonorSearchByHand, OneAnswerOfTwoIntsIsLeftAllocatedPerCall) {
    SetUpMesh(1, 2, 1, {{0, 0.5, 0, 2, 2}, {2.2, 0, 0, 2, 2}});
    AllocationRecorder recorder;

    EXPECT_EQ(impl.GetOversetInnerDonorCell(1), 4);

    EXPECT_EQ(recorder.LiveBlocks(), 1);
    const std::vector<std::size_t> sizes = recorder.Sizes();
    EXPECT_EQ(std::count(sizes.begin(), sizes.end(), 4 * sizeof(double)), 3);
    EXPECT_EQ(sizes.back(), 2 * sizeof(int));
}

TEST_F(DonorSearchByHand, ReplacementWritesTheDonorOverTheCutCell) {
    SetUpMesh(1, 2, 1, {{1.1, 0, 0, 2, 2}});

    impl.ReplaceCe23_DonorCelltoGhostCell(1);

    EXPECT_EQ(owner[1], 1);
    EXPECT_EQ(neighbor[1], 3);
    EXPECT_EQ(nx[1], 1.0);
}

TEST_F(DonorSearchByHand, ReplacementPrefersACutOwner) {
    SetUpMesh(1, 1, 2, {{-1.1, 0, 0, 2, 2}});

    impl.ReplaceCe23_DonorCelltoGhostCell(1);

    EXPECT_EQ(owner[1], 3);
    EXPECT_EQ(neighbor[1], 2);
}

TEST_F(DonorSearchByHand, SecondReplacementPrintsALineAndChangesNothing) {
    SetUpMesh(1, 2, 1, {{1.1, 0, 0, 2, 2}});
    impl.ReplaceCe23_DonorCelltoGhostCell(1);
    OutputCapture output;

    impl.ReplaceCe23_DonorCelltoGhostCell(1);

    EXPECT_EQ(output.Out(), "This inner face is not Overset Inner , Inner ID=1\n");
    EXPECT_EQ(neighbor[1], 3);
}

using DonorSearchWithoutEnd = DonorSearchByHand;

/// Expects that a call has not returned after a second. Both output streams go to standard error.
#define EXPECT_NO_END(call, text)               \
    EXPECT_EXIT(                                \
        {                                       \
            alarm(1);                           \
            dup2(STDERR_FILENO, STDOUT_FILENO); \
            call;                               \
        },                                      \
        testing::KilledBySignal(SIGALRM), text)

TEST_F(DonorSearchWithoutEnd, NoCandidateLiesAcross) {
    SetUpMesh(1, 2, 1, {{-2, 0, 0, 2, 2}});

    EXPECT_NO_END(impl.GetOversetInnerDonorCell(1), "^$");
}

TEST_F(DonorSearchWithoutEnd, AWallWithoutXArea) {
    SetUpMesh(1, 2, 2, {{1, 0, 0, 2, 2}});
    nx[1] = 0.0;
    ny[1] = 1.0;

    EXPECT_NO_END(impl.GetOversetWallDonorCell(1), "^$");
}

TEST_F(DonorSearchWithoutEnd, AnEmptyTreeHasNoCandidates) {
    SetUpMesh(1, 2, 1, {{1, 0, 0, 2, 1}});

    EXPECT_NO_END(impl.GetOversetInnerDonorCell(1), "^$");
}

TEST_F(DonorSearchWithoutEnd, TheSecondComponentHasNoTreeToSearch) {
    SetUpMesh(3, 2, 1, {{1, 0, 0, 2, 2}});

    EXPECT_NO_END(impl.GetOversetInnerDonorCell(1),
                  "^Fail to search donor cell. Inner Face ID=1\n"
                  "Fail to search donor cell. Inner Face ID=1\n");
}

TEST_F(DonorSearchWithoutEnd, ACellWithoutAGridWarnsTwicePerTry) {
    SetUpMesh(4, 2, 2, {{1, 0, 0, 2, 2}});

    EXPECT_NO_END(impl.GetOversetWallDonorCell(1),
                  "^Warning: Can not get the overset grid state.\n"
                  "Warning: Can not get the overset grid state.\n"
                  "Fail to search donor cell. Inner Face ID=1\n"
                  "Warning");
}

}  // namespace
