#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <string>

#include "host_link/art_gv.h"
#include "linear_algebra/solver_dense.h"
#include "linear_algebra/sparse_matrix.h"
#include "nonmatching/art_nonmatching_tools.h"
#include "overset/hole_cutting.h"
#include "overset/overset_grid_data.h"
#include "overset/overset_mesh.h"
#include "tests/support/box_host.h"
#include "tests/support/hostile_format.h"
#include "tests/support/output_capture.h"

namespace {

/// What a call writes to std::cout and std::cerr.
template <typename Call>
std::string Printed(Call call) {
    const OutputCapture capture;
    call();
    return capture.Out() + capture.Err();
}

/// What a call writes to streams on which every format setting was changed. Fails if the call
/// leaves one of the settings different.
template <typename Call>
std::string PrintedToHostileStreams(Call call) {
    const OutputCapture capture;
    const HostileFormat out(std::cout);
    const HostileFormat err(std::cerr);
    call();
    EXPECT_TRUE(out.IsUnchanged());
    EXPECT_TRUE(err.IsUnchanged());
    return capture.Out() + capture.Err();
}

/// Grid data of a host, with the tools that cut it.
struct OversetGrids {
    explicit OversetGrids(BoxHost& host) {
        data.getKvx3dGV(&host.gv, &host.fvm);
        data.getKvx3dData();
        data.OversetGridsInfoSetting();
        holes.LinkOversetGridData(&data);
        holes.LinkARTGv(&data);
    }
    KVX_ART_OVERSET_GRID_DATA data;
    CKVX_ART_HoleCutting holes;
};

/// A component grid that sticks out of the domain through the wall y = 0, so that both cuts count
/// cells; its group has more than nine faces.
BoxHost StickingOut() {
    return BoxHost(12, 12, 2).WithComponentGrid(6, 6, 2, {3, -2, 0}, {6, 6, 2},
                                                sideZMin | sideZMax);
}

TEST(FormatOfAHostileStreamDoesNotChange, TheLinkedDataDump) {
    BoxHost host(11, 3, 1, {0, 0, 0}, {1.0 / 3.0, 0.25, 3});
    host.WithPartitionFaces();
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    gv.getKvx3dPartFace(&host.partition);
    ASSERT_EQ(gv.getKvx3dData(), 0);
    const auto dump = [&] { gv.debugMode(); };

    EXPECT_EQ(PrintedToHostileStreams(dump), Printed(dump));
}

TEST(FormatOfAHostileStreamDoesNotChange, TheSparseMatrix) {
    CKVX_ART_SparseMatrix A(20);
    for (int row = 1; row <= 20; ++row) {
        A.AddElementValue(row, row, 1000.0 / row);
    }
    const auto dump = [&] { A.DebugRun(); };

    EXPECT_EQ(PrintedToHostileStreams(dump), Printed(dump));
}

TEST(FormatOfAHostileStreamDoesNotChange, TheDenseMatrices) {
    CKVX_ACMT_MatSolver_Dense dense;
    double row1[] = {0, 1.0 / 3.0, 12};
    double row2[] = {0, 1234567, -1e-20};
    double rhs[] = {0, 0.5, 11};
    double* A[] = {nullptr, row1, row2};
    const auto matrix = [&] { dense.CheckMatrix(A, 2, 2); };
    const auto system = [&] { dense.CheckMatrix(A, rhs, 2); };

    EXPECT_EQ(PrintedToHostileStreams(matrix), Printed(matrix));
    EXPECT_EQ(PrintedToHostileStreams(system), Printed(system));
}

TEST(FormatOfAHostileStreamDoesNotChange, TheCompressedRowsOfADenseMatrix) {
    CKVX_ACMT_MatSolver_Dense dense;
    double row[5] = {0, 1.0 / 3.0, 12, 0, 1234567};
    double* A[5] = {nullptr, row, row, row, row};
    const auto rows = [&] { dense.CheckCSR(A, 4); };

    EXPECT_EQ(PrintedToHostileStreams(rows), Printed(rows));
}

TEST(FormatOfAHostileStreamDoesNotChange, TheNonmatchingPreprocess) {
    BoxHost host(14, 1, 1);
    host.WithNonmatchingFaces({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    art_nonmatching_tools tools;
    tools.SetFVM(&host.gv, &host.fvm);

    EXPECT_EQ(PrintedToHostileStreams([&] { tools.NonmatchingPreprocess(); }),
              "Start Non-matching Preprocess:\n"
              "Total Nun-matching Face Number = 12\n"
              "Ineffective Non-matching Face Number = 0\n"
              "Non-matching Preprocess END.\n");
}

TEST(FormatOfAHostileStreamDoesNotChange, TheOversetReport) {
    BoxHost host = StickingOut();
    OversetGrids grids(host);
    const auto report = [&] { grids.data.PrintOversetGridsInfo(); };

    EXPECT_EQ(PrintedToHostileStreams(report), Printed(report));
}

TEST(FormatOfAHostileStreamDoesNotChange, TheCountsOfTheCutCells) {
    BoxHost host = StickingOut();
    OversetGrids grids(host);

    EXPECT_EQ(PrintedToHostileStreams([&] { grids.holes.OutsideDomainCutting(2); }),
              "\t  Non Active Cell Number = 48\n");
    const int cut = grids.data.NNonActiveCell;
    const std::string overlap =
        PrintedToHostileStreams([&] { grids.holes.OverlapRegionCutting(1); });

    EXPECT_GT(grids.data.NNonActiveCell, cut);
    EXPECT_EQ(overlap,
              "\t  Non Active Cell Number = " + std::to_string(grids.data.NNonActiveCell) + '\n');
}

TEST(FormatOfAHostileStreamDoesNotChange, TheCountsOfTheCutsOnLinkedData) {
    BoxHost host = StickingOut();
    OversetGrids grids(host);
    grids.holes.SetCutGridLayer(0);
    const std::string count = "\t<Succeed> Non Active Cell Number = 24\n";

    EXPECT_EQ(PrintedToHostileStreams([&] { grids.holes.CutOutsideDomainComponentCell(); }), count);
    EXPECT_EQ(PrintedToHostileStreams([&] { grids.holes.CutBackgroundCells(); }), count);
}

TEST(FormatOfAHostileStreamDoesNotChange, AFaceWithoutAType) {
    BoxHost host(30, 1, 1);
    OversetGrids grids(host);
    grids.data.wallBCGroup[26] = -1;
    grids.data.cellState[host.arrays.owner[26]] = 0;

    EXPECT_EQ(PrintedToHostileStreams([&] { grids.data.GetWallFaceType(26); }),
              "Fail to define Wall Face Type , Wall Face ID = 26\n");
    EXPECT_EQ(PrintedToHostileStreams([&] { grids.data.GetInnerFaceState(26); }),
              "Fail to define Inner Face Type , Inner Face ID = 26\n");
}

TEST(FormatOfAHostileStreamDoesNotChange, AFaceThatNeedsNoDonor) {
    BoxHost host = StickingOut();
    CKVXOversetMesh mesh;
    Printed([&] { mesh.SetFVM(&host.gv, &host.fvm); });
    int face = host.fvm.Ne;
    while (mesh.GetInnerFaceType(face) == OversetInnerFace_Overset) {
        --face;
    }
    ASSERT_GT(face, 9);

    EXPECT_EQ(PrintedToHostileStreams([&] { mesh.ReplaceDonorIdtoNonActCellId(face); }),
              "This inner face is not Overset Inner , Inner ID=" + std::to_string(face) + '\n');
}

TEST(FormatOfAHostileStreamDoesNotChange, AFailedDonorSearch) {
    BoxHost host(12, 12, 4);
    host.WithComponentGrid(6, 6, 4, {1, 1, 0}, {4, 4, 4}, sideZMin | sideZMax)
        .WithComponentGrid(6, 6, 4, {6, 6, 0}, {4, 4, 4}, sideZMin | sideZMax);
    CKVXOversetMesh mesh;
    Printed([&] { mesh.SetFVM(&host.gv, &host.fvm); });
    const int face = host.InnerFaceBetween(host.CellAt(2, 3, 3, 2), host.CellAt(2, 4, 3, 2));
    ASSERT_GT(face, 9);

    // No tree holds donors for the second component grid, so the search goes on without end.
    EXPECT_EXIT(
        {
            alarm(1);
            const HostileFormat err(std::cerr);
            mesh.GetOversetInnerNeighbor(face);
        },
        testing::KilledBySignal(SIGALRM),
        "^Fail to search donor cell. Inner Face ID=" + std::to_string(face) + "\n");
}

}  // namespace
