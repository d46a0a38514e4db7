#include "fvm_operators/mat_operator.h"

#include "tests/fvm_operators/operator_host.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

/// Cells 1 | 2 | 3 with one inner face between neighbors. Cell 1 has the inlet, cell 3 the outlet,
/// cell 2 a wall and a symmetry face. The Normal stencil is R - L on inner faces and ghost - cell
/// on boundary faces.
class LineOfThree : public testing::Test {
protected:
    LineOfThree() : host(3, {{1, 2}, {2, 3}}, {{{1}, {3}, {2}, {2}}}), A(3, host.gv.NcAll) {
        for (int i = 1; i <= 2; ++i) {
            const Terms difference = {{i, -1.0}, {i + 1, 1.0}};
            SetStencil(host.Left(i), Pair::Normal, difference);
            SetStencil(host.Right(i), Pair::Normal, difference);
        }
        for (Kind kind : allKinds) {
            SetStencil(host.Record(kind, 1), Pair::Normal,
                       {{host.Cell(kind, 1), -1.0}, {host.Ghost(kind, 1), 1.0}});
        }
    }

    static void Fill(CMAFVMFaceVariable* property, double left, double right) {
        for (int i = 1; i <= 2; ++i) {
            property->left[i] = left;
            property->right[i] = right;
        }
    }

    void FillThermal(double k, double cp, double rho) {
        Fill(host.gv.faceK, k, k);
        Fill(host.gv.faceCp, cp, cp);
        Fill(host.gv.faceRho, rho, rho);
        host.cellK.assign(host.cellK.size(), k);
        host.cp.assign(host.cp.size(), cp);
        host.cellRho.assign(host.cellRho.size(), rho);
    }

    OperatorHost host;
    CKVX_ART_SparseMatrix A;
};

using Laplace = LineOfThree;
using Diffusion = LineOfThree;
using ThermalDiffusion = LineOfThree;

TEST_F(Laplace, TheFirstRowGetsTheStencilAndTheSecondRowItsNegative) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;

    host.Operator(A).PureLaplaceOperator(3.0);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, -3.0}, {2, 3.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{1, 3.0}, {2, -3.0}}));
}

TEST_F(Laplace, BoundaryRowsGetTheStencilTimesTheWeight) {
    host.gv.Ne = 0;
    host.gv.mu = nullptr;  // must not be read

    host.Operator(A).PureLaplaceOperator(3.0);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, -3.0}, {host.Ghost(Inlet, 1), 3.0}}));
    EXPECT_EQ(RowOf(A, 2),
              (Terms{{2, -6.0}, {host.Ghost(Wall, 1), 3.0}, {host.Ghost(Symm, 1), 3.0}}));
    EXPECT_EQ(RowOf(A, 3), (Terms{{3, -3.0}, {host.Ghost(Outlet, 1), 3.0}}));
}

TEST_F(Laplace, GhostTablesAreNotRead) {
    host.gv.idInlet = host.gv.idOutlet = host.gv.idWall = host.gv.idSymm = nullptr;

    EXPECT_TRUE(host.Operator(A).PureLaplaceOperator(1.0));
}

TEST_F(Laplace, ANonmatchingFaceAddsNothingToTheSecondRow) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;
    host.gv.nonmatchingFace[1] = 1;

    host.Operator(A).PureLaplaceOperator(1.0);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, -1.0}, {2, 1.0}}));
    EXPECT_TRUE(RowOf(A, 2).empty());
}

TEST_F(Laplace, AnyNonzeroFlagMarksANonmatchingFace) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;
    host.gv.nonmatchingFace[1] = -7;

    host.Operator(A).PureLaplaceOperator(1.0);

    EXPECT_TRUE(RowOf(A, 2).empty());
}

// The two tests below have enough faces for the operators to prefetch.

TEST(Prefetching, NonmatchingFacesNeedNoSecondRecords) {
    const std::vector<std::pair<int, int>> faces(20, {1, 2});
    OperatorHost host(2, faces);
    host.gv.useBoundaryFaces = false;
    for (int i = 1; i <= host.gv.Ne; ++i) {
        SetStencil(host.Left(i), Pair::Normal, {{1, -1.0}, {2, 1.0}});
        host.gv.nonmatchingFace[i] = 1;
        host.gv.faceMu->left[i] = -1.0;
    }
    CKVX_ART_SparseMatrix A(2);
    CMAFVMFaceData* const second = host.gv.faceDataRight;
    host.gv.faceDataRight = nullptr;

    host.Operator(A).PureLaplaceOperator(1.0);
    host.Operator(A).ConvectionFU_Diffusion_Operator(&host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, -40.0}, {2, 40.0}}));
    host.gv.faceDataRight = second;
}

TEST(Prefetching, CellUpwindNeedsNoRecords) {
    const std::vector<std::pair<int, int>> faces(20, {1, 2});
    OperatorHost host(2, faces);
    host.gv.useBoundaryFaces = false;
    for (int i = 1; i <= host.gv.Ne; ++i) {
        host.SetFlux(i, 1.0);
    }
    CKVX_ART_SparseMatrix A(2);
    CMAFVMFaceData* const first = host.gv.faceDataLeft;
    CMAFVMFaceData* const second = host.gv.faceDataRight;
    host.gv.faceDataLeft = host.gv.faceDataRight = nullptr;

    host.Operator(A).ConvectionOperator(true, 1.0, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, 20.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{1, -20.0}}));
    host.gv.faceDataLeft = first;
    host.gv.faceDataRight = second;
}

TEST_F(Diffusion, EachSideUsesItsOwnCoefficient) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;
    Fill(host.gv.faceMu, 5.0, 7.0);

    host.Operator(A).DiffusionOperator(2.0);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, -10.0}, {2, 10.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{1, 14.0}, {2, -14.0}}));
}

TEST_F(Diffusion, BoundaryFacesReadTheCoefficientAtTheirGhostCell) {
    host.gv.Ne = 0;
    for (Kind kind : allKinds) {
        host.mu[host.Ghost(kind, 1)] = 2.0 + kind;
    }

    host.Operator(A).DiffusionOperator(1.0);

    EXPECT_EQ(ValueAt(A, 1, host.Ghost(Inlet, 1)), 2.0);
    EXPECT_EQ(ValueAt(A, 3, host.Ghost(Outlet, 1)), 3.0);
    EXPECT_EQ(ValueAt(A, 2, host.Ghost(Wall, 1)), 4.0);
    EXPECT_EQ(ValueAt(A, 2, host.Ghost(Symm, 1)), 5.0);
    EXPECT_EQ(ValueAt(A, 2, 2), -9.0);
}

TEST_F(Diffusion, UnitCoefficientsGiveTheLaplaceOperator) {
    CKVX_ART_SparseMatrix B(3, host.gv.NcAll);
    Fill(host.gv.faceMu, 1.0, 1.0);
    host.mu.assign(host.mu.size(), 1.0);

    host.Operator(A).DiffusionOperator(1.0);
    host.Operator(B).PureLaplaceOperator(1.0);

    for (int row = 1; row <= 3; ++row) {
        EXPECT_EQ(RowOf(A, row), RowOf(B, row));
    }
}

TEST_F(Diffusion, FillsTheSecondRowOfANonmatchingFace) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;
    host.gv.nonmatchingFace[1] = 1;
    Fill(host.gv.faceMu, 1.0, 1.0);

    host.Operator(A).DiffusionOperator(1.0);

    EXPECT_EQ(RowOf(A, 2), (Terms{{1, 1.0}, {2, -1.0}}));
}

TEST_F(Diffusion, ASharedCoefficientIsUsedOnBothSides) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;
    Fill(host.gv.faceMu, 5.0, 7.0);
    host.gv.faceMu->LinkInner();

    host.Operator(A).DiffusionOperator(1.0);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, -5.0}, {2, 5.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{1, 5.0}, {2, -5.0}}));
}

TEST_F(Diffusion, AnEmptyStencilOnOneSideDoesNotAffectTheOther) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;
    Fill(host.gv.faceMu, 1.0, 1.0);
    host.Left(1).idNormal[0] = 0;

    host.Operator(A).DiffusionOperator(1.0);

    EXPECT_TRUE(RowOf(A, 1).empty());
    EXPECT_EQ(RowOf(A, 2), (Terms{{1, 1.0}, {2, -1.0}}));
}

TEST_F(Diffusion, TheFactorIsFormedBeforeTheCoefficient) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;
    Fill(host.gv.faceMu, 0.7, 0.7);
    SetStencil(host.Left(1), Pair::Normal, {{1, 0.3}});
    ASSERT_NE((0.1 * 0.7) * 0.3, 0.1 * (0.7 * 0.3))
        << "these numbers must distinguish the two orders";

    host.Operator(A).DiffusionOperator(0.1);

    EXPECT_EQ(ValueAt(A, 1, 1), (0.1 * 0.7) * 0.3);
}

TEST_F(ThermalDiffusion, InnerFacesUseTheDiffusivityOfTheirSide) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;
    Fill(host.gv.faceK, 12.0, 20.0);
    Fill(host.gv.faceCp, 2.0, 5.0);
    Fill(host.gv.faceRho, 3.0, 2.0);

    host.Operator(A).ThermalDiffusionOperator(0.5);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, -1.0}, {2, 1.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{1, 1.0}, {2, -1.0}}));
}

TEST_F(ThermalDiffusion, InletAndOutletDivideByTheHeatCapacity) {
    host.gv.Ne = 0;
    FillThermal(/*k=*/24.0, /*cp=*/2.0, /*rho=*/3.0);

    host.Operator(A).ThermalDiffusionOperator(0.5);

    EXPECT_EQ(ValueAt(A, 1, host.Ghost(Inlet, 1)), 2.0);
    EXPECT_EQ(ValueAt(A, 3, host.Ghost(Outlet, 1)), 2.0);
}

TEST_F(ThermalDiffusion, WallAndSymmetryRowsScaleWithTheConductivityAlone) {
    host.gv.Ne = 0;
    FillThermal(/*k=*/24.0, /*cp=*/2.0, /*rho=*/3.0);

    host.Operator(A).ThermalDiffusionOperator(0.5);

    EXPECT_EQ(ValueAt(A, 2, host.Ghost(Wall, 1)), 12.0);
    EXPECT_EQ(ValueAt(A, 2, host.Ghost(Symm, 1)), 12.0);
}

TEST_F(ThermalDiffusion, WallAndSymmetryFacesAloneNeedNoHeatCapacity) {
    host.gv.Ne = host.gv.NInlet = host.gv.NOutlet = 0;
    FillThermal(/*k=*/24.0, /*cp=*/2.0, /*rho=*/3.0);
    host.gv.cp = nullptr;
    host.globals.cellRho = nullptr;

    EXPECT_TRUE(host.Operator(A).ThermalDiffusionOperator(1.0));

    EXPECT_EQ(ValueAt(A, 2, host.Ghost(Wall, 1)), 24.0);
}

TEST_F(ThermalDiffusion, HostArraysAreReadWhenTheOperatorRuns) {
    host.gv.Ne = 0;
    FillThermal(/*k=*/1.0, /*cp=*/1.0, /*rho=*/1.0);
    auto op = host.Operator(A);
    std::vector<double> replaced(host.cellK.size(), 8.0);

    host.globals.cellK = replaced.data();
    op.ThermalDiffusionOperator(1.0);

    EXPECT_EQ(ValueAt(A, 1, host.Ghost(Inlet, 1)), 8.0);
}

TEST_F(ThermalDiffusion, WithoutBoundaryFacesTheHostIsNotRead) {
    FillThermal(/*k=*/1.0, /*cp=*/1.0, /*rho=*/1.0);
    host.gv.useBoundaryFaces = false;
    auto op = host.Operator(A);
    host.gv.kvxGv = nullptr;

    EXPECT_TRUE(op.ThermalDiffusionOperator(1.0));

    host.gv.kvxGv = &host.globals;
}

TEST_F(ThermalDiffusion, FillsTheSecondRowOfANonmatchingFace) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;
    host.gv.nonmatchingFace[1] = 1;
    FillThermal(/*k=*/6.0, /*cp=*/2.0, /*rho=*/3.0);

    host.Operator(A).ThermalDiffusionOperator(1.0);

    EXPECT_EQ(RowOf(A, 2), (Terms{{1, 1.0}, {2, -1.0}}));
}

TEST_F(ThermalDiffusion, AZeroHeatCapacityPutsAnInfinityIntoTheMatrix) {
    host.gv.useBoundaryFaces = false;
    FillThermal(/*k=*/1.0, /*cp=*/0.0, /*rho=*/1.0);

    EXPECT_TRUE(host.Operator(A).ThermalDiffusionOperator(1.0));

    EXPECT_EQ(ValueAt(A, 1, 2), std::numeric_limits<double>::infinity());
}

TEST_F(ThermalDiffusion, ZeroConductivityOverZeroHeatCapacityIsNaN) {
    host.gv.useBoundaryFaces = false;
    FillThermal(/*k=*/0.0, /*cp=*/0.0, /*rho=*/1.0);

    EXPECT_TRUE(host.Operator(A).ThermalDiffusionOperator(1.0));

    EXPECT_TRUE(std::isnan(ValueAt(A, 1, 2)));
}

TEST_F(ThermalDiffusion, AZeroHeatCapacityWithAnEmptyStencilAddsNothing) {
    host.gv.useBoundaryFaces = false;
    host.gv.Ne = 1;
    FillThermal(/*k=*/1.0, /*cp=*/0.0, /*rho=*/1.0);
    host.Left(1).idNormal[0] = 0;
    host.Right(1).idNormal[0] = 0;

    EXPECT_TRUE(host.Operator(A).ThermalDiffusionOperator(1.0));

    EXPECT_EQ(EntriesOf(A), 0);
}

}  // namespace
