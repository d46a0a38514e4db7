// The rules for the flux tolerance and for boundary faces that all upwind schemes share.

#include "fvm_operators/mat_operator.h"
#include "tests/fvm_operators/one_face.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

const double justAbove = std::nextafter(fluxTolerance, 1.0);
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// The schemes that depend on the sign of the flux.
class EveryUpwind : public OneFace, public testing::WithParamInterface<NamedOperator> {
protected:
    void Run(double weight) {
        auto op = Operator();
        ASSERT_TRUE(GetParam().run(op, weight, &host.flux));
    }
};

TEST_P(EveryUpwind, AFluxWithinTheToleranceUsesTheFaceStencil) {
    InnerFaceOnly();
    for (double F : {fluxTolerance, -fluxTolerance, 0.5e-8, 0.0, -0.0}) {
        A.Reset();
        host.SetFlux(1, F);

        Run(3.0);

        EXPECT_EQ(RowOf(A, 1), (Terms{{viaFace, 3.0 * F}})) << F;
        EXPECT_EQ(RowOf(A, 2), (Terms{{viaFace, -(3.0 * F * 2.0)}})) << F;
    }
}

TEST_P(EveryUpwind, NaNAsFluxCountsAsNearZero) {
    InnerFaceOnly();
    host.SetFlux(1, notANumber);

    Run(1.0);

    ASSERT_EQ(EntriesOf(A), 2);
    EXPECT_EQ(A.Ja[1], viaFace);
    EXPECT_TRUE(std::isnan(A.Aa[1]));
    EXPECT_EQ(A.Ja[2], viaFace);
}

TEST_P(EveryUpwind, AFluxJustAboveTheToleranceDoesNotUseTheFaceStencil) {
    InnerFaceOnly();
    for (double F : {justAbove, -justAbove}) {
        A.Reset();
        host.SetFlux(1, F);

        Run(1.0);

        EXPECT_EQ(ValueAt(A, 1, viaFace), 0.0);
        EXPECT_EQ(ValueAt(A, 2, viaFace), 0.0);
        EXPECT_GE(EntriesOf(A), 2);
    }
}

TEST_P(EveryUpwind, TheToleranceAppliesToTheFluxWithoutItsWeight) {
    InnerFaceOnly();
    host.SetFlux(1, 0.5e-8);

    Run(1e12);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaFace, 1e12 * 0.5e-8}}));
}

TEST_P(EveryUpwind, EachSideUsesItsOwnFlux) {
    InnerFaceOnly();
    host.flux.left[1] = 0.0;
    host.flux.right[1] = 4.0;

    Run(1.0);

    EXPECT_EQ(RowOf(A, 1), (Terms{{viaFace, 0.0}}));
    EXPECT_EQ(ValueAt(A, 2, viaFace), 0.0);
    EXPECT_GE(RowOf(A, 2).size(), 1u);
}

TEST_P(EveryUpwind, ASharedFluxIsUsedOnBothSides) {
    InnerFaceOnly();
    host.flux.left[1] = 0.5e-8;
    host.flux.right[1] = 4.0;
    host.flux.LinkInner();

    Run(1.0);

    EXPECT_EQ(RowOf(A, 1).front().first, viaFace);
    EXPECT_EQ(RowOf(A, 2).front().first, viaFace);
}

TEST_P(EveryUpwind, SmallOutflowAndNaNCountAsInflow) {
    for (double F : {fluxTolerance, 0.5e-8, -fluxTolerance, -4.0, notANumber}) {
        A.Reset();
        WallFaceOnly(F);

        Run(1.0);

        ASSERT_EQ(EntriesOf(A), 1) << F;
        EXPECT_EQ(A.Ja[1], WallGhost()) << F;
    }
}

TEST_P(EveryUpwind, OutflowJustAboveTheToleranceDoesNotUseTheGhostCell) {
    WallFaceOnly(justAbove);

    Run(1.0);

    EXPECT_GE(EntriesOf(A), 1);
    EXPECT_EQ(ValueAt(A, 1, WallGhost()), 0.0);
}

TEST_P(EveryUpwind, AZeroBoundaryFluxCreatesTheGhostEntry) {
    WallFaceOnly(0.0);

    Run(1.0);

    EXPECT_EQ(RowOf(A, 1), (Terms{{WallGhost(), 0.0}}));
}

TEST_P(EveryUpwind, InflowReadsNoBoundaryStencil) {
    WallFaceOnly(-4.0);
    CMAFVMFaceData* const records = host.gv.faceDataWall;
    host.gv.faceDataWall = nullptr;

    Run(0.5);

    EXPECT_EQ(RowOf(A, 1), (Terms{{WallGhost(), -2.0}}));
    host.gv.faceDataWall = records;
}

TEST_P(EveryUpwind, EachBoundaryKindReadsItsOwnFlux) {
    host.gv.Ne = 0;
    for (Kind kind : allKinds) {
        host.Flux(kind, 1) = -1.0 - kind;
    }

    Run(1.0);

    for (Kind kind : allKinds) {
        EXPECT_EQ(ValueAt(A, 1, host.Ghost(kind, 1)), -1.0 - kind);
    }
}

std::vector<NamedOperator> Upwinds() {
    std::vector<NamedOperator> upwinds;
    for (const NamedOperator& named : AllOperators()) {
        for (const char* name : {"CellUpwind", "FU", "LUD", "QUICK", "Hybrid"}) {
            if (std::string(named.name) == name) {
                upwinds.push_back(named);
            }
        }
    }
    return upwinds;
}

INSTANTIATE_TEST_SUITE_P(Convection, EveryUpwind, testing::ValuesIn(Upwinds()), NameOf);

}  // namespace
