#include "fvm_operators/mat_operator.h"

#include "tests/fvm_operators/one_face.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

using CentralConvection = OneFace;
using CellUpwind = OneFace;
using StencilUpwind = OneFace;
using LinearUpwind = OneFace;
using Quick = OneFace;
using Hybrid = OneFace;
using Combined = OneFace;

TEST_F(CentralConvection, UsesTheFaceStencilForEveryFlux) {
    InnerFaceOnly();
    host.flux.left[1] = -4.0;
    host.flux.right[1] = 8.0;

    Operator().ConvectionOperatorCD(0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaFace, -2.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{viaFace, -8.0}}));
}

TEST_F(CentralConvection, BoundaryOutflowUsesTheGhostCellToo) {
    WallFaceOnly(4.0);

    Operator().ConvectionOperatorCD(0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{WallGhost(), 2.0}}));
}

TEST_F(CentralConvection, WithoutUpwindTheGhostCellIsUsedToo) {
    WallFaceOnly(4.0);

    Operator().ConvectionOperator(false, 0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{WallGhost(), 2.0}}));
}

TEST_F(CentralConvection, BoundaryRecordsAreNotRead) {
    WallFaceOnly(4.0);
    CMAFVMFaceData* const records = host.gv.faceDataWall;
    host.gv.faceDataWall = nullptr;

    EXPECT_TRUE(Operator().ConvectionOperatorCD(1.0, &host.flux));

    host.gv.faceDataWall = records;
}

TEST_F(CentralConvection, BoundaryKindsAreAddedInTheOrderInletOutletWallSymmetry) {
    host.gv.Ne = 0;

    Operator().ConvectionOperatorCD(1.0, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{host.Ghost(Inlet, 1), 0.0},
                                  {host.Ghost(Outlet, 1), 0.0},
                                  {host.Ghost(Wall, 1), 0.0},
                                  {host.Ghost(Symm, 1), 0.0}}));
}

TEST_F(CellUpwind, PositiveFluxUsesTheFirstCellInBothRows) {
    InnerFaceOnly();
    host.flux.left[1] = 4.0;
    host.flux.right[1] = 6.0;

    Operator().ConvectionOperator(true, 0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, 2.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{1, -3.0}}));
}

TEST_F(CellUpwind, NegativeFluxUsesTheSecondCellInBothRows) {
    InnerFaceOnly();
    host.flux.left[1] = -4.0;
    host.flux.right[1] = -6.0;

    Operator().ConvectionOperator(true, 0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{2, -2.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{2, 3.0}}));
}

TEST_F(CellUpwind, BoundaryOutflowUsesTheInteriorCell) {
    WallFaceOnly(4.0);

    Operator().ConvectionOperator(true, 0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, 2.0}}));
}

TEST_F(CellUpwind, BoundaryInflowUsesTheGhostCell) {
    WallFaceOnly(-4.0);

    Operator().ConvectionOperator(true, 0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{WallGhost(), -2.0}}));
}

TEST_F(CellUpwind, ReadsNoRecordUnlessTheFluxIsNearZero) {
    CMAFVMFaceData* const left = host.gv.faceDataLeft;
    CMAFVMFaceData* const right = host.gv.faceDataRight;
    InnerFaceOnly();
    host.SetFlux(1, 1.0);
    host.gv.faceDataLeft = host.gv.faceDataRight = nullptr;

    EXPECT_TRUE(Operator().ConvectionOperator(true, 1.0, &host.flux));

    host.gv.faceDataLeft = left;
    host.gv.faceDataRight = right;
}

TEST_F(StencilUpwind, PositiveFluxUsesLeftOfTheRecordOfEachSide) {
    InnerFaceOnly();
    host.SetFlux(1, 4.0);

    Operator().ConvectionOperatorFU(0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaLeft, 2.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{viaLeft, -4.0}}));
}

TEST_F(StencilUpwind, NegativeFluxUsesRightOfTheRecordOfEachSide) {
    InnerFaceOnly();
    host.SetFlux(1, -4.0);

    Operator().ConvectionOperatorFU(0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaRight, -2.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{viaRight, 4.0}}));
}

TEST_F(StencilUpwind, BoundaryOutflowUsesTheLeftStencilOfTheBoundaryRecord) {
    WallFaceOnly(4.0);

    Operator().ConvectionOperatorFU(0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaLeft, 2.0}}));
}

TEST_F(StencilUpwind, ADonorInTheCellPairIsTheRowOfTheSecondSide) {
    CKVX_ART_SparseMatrix wide(20, host.gv.NcAll);
    InnerFaceOnly();
    host.SetFlux(1, 4.0);
    host.gv.Ce23[1][1] = 17;

    host.Operator(wide).ConvectionOperatorFU(1.0, &host.flux);

    EXPECT_TRUE(RowOf(wide, 2).empty());
    EXPECT_EQ(RowOf(wide, 17), (Terms{{viaLeft, -8.0}}));
}

TEST_F(LinearUpwind, PositiveFluxUsesLeftThenFarLeft) {
    InnerFaceOnly();
    host.SetFlux(1, 4.0);

    Operator().ConvectionOperatorLUD(1.0, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaLeft, 6.0}, {viaFarLeft, -2.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{viaLeft, -12.0}, {viaFarLeft, 4.0}}));
}

TEST_F(LinearUpwind, NegativeFluxUsesRightThenFarRight) {
    InnerFaceOnly();
    host.SetFlux(1, -4.0);

    Operator().ConvectionOperatorLUD(1.0, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaRight, -6.0}, {viaFarRight, 2.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{viaRight, 12.0}, {viaFarRight, -4.0}}));
}

TEST_F(LinearUpwind, BoundaryOutflowUsesLeftThenFarLeft) {
    WallFaceOnly(4.0);

    Operator().ConvectionOperatorLUD(1.0, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaLeft, 6.0}, {viaFarLeft, -2.0}}));
}

TEST_F(LinearUpwind, AnEmptyFarStencilIsNotCompensated) {
    InnerFaceOnly();
    host.SetFlux(1, 4.0);
    host.Left(1).idFarLeft[0] = 0;

    Operator().ConvectionOperatorLUD(1.0, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaLeft, 6.0}}));
}

TEST_F(LinearUpwind, TheWeightIsMultipliedByTheConstantBeforeTheFlux) {
    const double weight = 0.1;
    const double F = 0.7;
    ASSERT_NE((weight * 1.5) * F, (weight * F) * 1.5)
        << "these numbers must distinguish the two orders";
    InnerFaceOnly();
    host.SetFlux(1, F);

    Operator().ConvectionOperatorLUD(weight, &host.flux);

    EXPECT_EQ(ValueAt(A, 1, viaLeft), (weight * 1.5) * F);
}

TEST_F(Quick, PositiveFluxUsesLeftFarLeftRight) {
    InnerFaceOnly();
    host.SetFlux(1, 8.0);

    Operator().ConvectionOperatorQUICK(1.0, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaLeft, 6.0}, {viaFarLeft, -1.0}, {viaRight, 3.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{viaLeft, -12.0}, {viaFarLeft, 2.0}, {viaRight, -6.0}}));
}

TEST_F(Quick, NegativeFluxUsesRightFarRightLeft) {
    InnerFaceOnly();
    host.SetFlux(1, -8.0);

    Operator().ConvectionOperatorQUICK(1.0, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaRight, -6.0}, {viaFarRight, 1.0}, {viaLeft, -3.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{viaRight, 12.0}, {viaFarRight, -2.0}, {viaLeft, 6.0}}));
}

TEST_F(Quick, BoundaryOutflowUsesTheLinearUpwind) {
    WallFaceOnly(4.0);

    Operator().ConvectionOperatorQUICK(1.0, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaLeft, 6.0}, {viaFarLeft, -2.0}}));
}

TEST_F(Quick, TheFarStencilOfTheOtherFluxIsNeverRead) {
    InnerFaceOnly();
    int* const left = host.Left(1).idFarRight;
    int* const right = host.Right(1).idFarRight;
    host.SetFlux(1, 8.0);
    host.Left(1).idFarRight = host.Right(1).idFarRight = nullptr;

    EXPECT_TRUE(Operator().ConvectionOperatorQUICK(1.0, &host.flux));

    host.Left(1).idFarRight = left;
    host.Right(1).idFarRight = right;
}

TEST_F(Hybrid, TheFarEntryExistsAndIsZero) {
    InnerFaceOnly();
    host.SetFlux(1, 4.0);

    Operator().ConvectionOperatorHybrid(0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaLeft, 2.0}, {viaFarLeft, 0.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{viaLeft, -4.0}, {viaFarLeft, 0.0}}));
}

TEST_F(Hybrid, NegativeFluxCreatesTheFarRightEntry) {
    InnerFaceOnly();
    host.SetFlux(1, -4.0);

    Operator().ConvectionOperatorHybrid(0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaRight, -2.0}, {viaFarRight, 0.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{viaRight, 4.0}, {viaFarRight, 0.0}}));
}

TEST_F(Hybrid, AnInsertedFarEntryKeepsTheSignOfItsZero) {
    InnerFaceOnly();
    host.SetFlux(1, 4.0);

    Operator().ConvectionOperatorHybrid(1.0, &host.flux);

    EXPECT_FALSE(std::signbit(RowOf(A, 1)[1].second));
    EXPECT_TRUE(std::signbit(RowOf(A, 2)[1].second));
}

TEST_F(Hybrid, AnInfiniteFluxTimesTheZeroWeightIsNaN) {
    InnerFaceOnly();
    host.SetFlux(1, infinite);

    Operator().ConvectionOperatorHybrid(1.0, &host.flux);

    EXPECT_EQ(ValueAt(A, 1, viaLeft), infinite);
    EXPECT_TRUE(std::isnan(ValueAt(A, 1, viaFarLeft)));
}

TEST_F(Hybrid, AFarColumnOutsideTheMatrixThrowsAlthoughItsValueIsZero) {
    InnerFaceOnly();
    host.SetFlux(1, 4.0);
    host.Left(1).idFarLeft[1] = host.gv.NcAll + 1;

    EXPECT_THROW(Operator().ConvectionOperatorHybrid(1.0, &host.flux), InvalidDimensionsException);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaLeft, 4.0}}));
    EXPECT_TRUE(RowOf(A, 2).empty());
}

TEST_F(Hybrid, BoundaryOutflowChangesOnlyTheDiagonal) {
    WallFaceOnly(4.0);
    CMAFVMFaceData* const records = host.gv.faceDataWall;
    host.gv.faceDataWall = nullptr;  // no boundary record is read

    Operator().ConvectionOperatorHybrid(0.5, &host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, 2.0}}));
    host.gv.faceDataWall = records;
}

TEST_F(Combined, PositiveFluxUsesTheFirstCellAndDiffusionIsSubtracted) {
    host.flux.left[1] = 4.0;
    host.flux.right[1] = 6.0;
    host.gv.faceMu->left[1] = 3.0;
    host.gv.faceMu->right[1] = 5.0;

    Operator().ConvectionFU_Diffusion_Operator(&host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, 4.0}, {viaNormal, -3.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{1, -6.0}, {viaNormal, 10.0}}));
}

TEST_F(Combined, NegativeFluxUsesTheSecondCell) {
    host.flux.left[1] = -4.0;
    host.flux.right[1] = -6.0;
    host.gv.faceMu->left[1] = 3.0;
    host.gv.faceMu->right[1] = 5.0;

    Operator().ConvectionFU_Diffusion_Operator(&host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{2, -4.0}, {viaNormal, -3.0}}));
    EXPECT_EQ(RowOf(A, 2), (Terms{{2, 6.0}, {viaNormal, 10.0}}));
}

TEST_F(Combined, AFluxEqualToTheToleranceIsPositiveInThisOperatorOnly) {
    InnerFaceOnly();
    CKVX_ART_SparseMatrix B(2, host.gv.NcAll);
    host.SetFlux(1, fluxTolerance);

    Operator().ConvectionFU_Diffusion_Operator(&host.flux);
    host.Operator(B).ConvectionOperatorFU(1.0, &host.flux);

    EXPECT_EQ(ValueAt(A, 1, 1), fluxTolerance);
    EXPECT_EQ(ValueAt(A, 2, 1), -fluxTolerance);
    EXPECT_EQ(RowOf(B, 1), (Terms{{viaFace, fluxTolerance}}));
}

TEST_F(Combined, AFluxWithinTheToleranceAddsNoConvection) {
    for (double F : {std::nextafter(fluxTolerance, 0.0), 0.0, -fluxTolerance, notANumber}) {
        A.Reset();
        host.SetFlux(1, F);
        host.gv.faceMu->left[1] = host.gv.faceMu->right[1] = 1.0;

        Operator().ConvectionFU_Diffusion_Operator(&host.flux);

        EXPECT_EQ(RowOf(A, 1), (Terms{{viaNormal, -1.0}})) << F;
        EXPECT_EQ(RowOf(A, 2), (Terms{{viaNormal, 2.0}})) << F;
    }
}

TEST_F(Combined, ANonmatchingFaceAddsNeitherTermToTheSecondRow) {
    host.SetFlux(1, 4.0);
    host.gv.faceMu->left[1] = host.gv.faceMu->right[1] = 1.0;
    host.gv.nonmatchingFace[1] = 2;

    Operator().ConvectionFU_Diffusion_Operator(&host.flux);

    EXPECT_EQ(RowOf(A, 1), (Terms{{1, 4.0}, {viaNormal, -1.0}}));
    EXPECT_TRUE(RowOf(A, 2).empty());
}

TEST_F(Combined, BoundaryFacesAddNothingWhateverTheSwitch) {
    host.gv.Ne = 0;
    for (bool useBoundaryFaces : {true, false}) {
        host.gv.useBoundaryFaces = useBoundaryFaces;
        for (Kind kind : allKinds) {
            host.Flux(kind, 1) = 4.0;
        }

        EXPECT_TRUE(Operator().ConvectionFU_Diffusion_Operator(&host.flux));

        EXPECT_EQ(EntriesOf(A), 0);
    }
}

}  // namespace
