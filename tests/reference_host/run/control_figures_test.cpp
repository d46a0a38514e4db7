#include "reference_host/run/control_figures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "reference_host/physics/momentum_balance.h"
#include "tests/reference_host/physics/flow_case.h"

namespace {

TEST(ControlTable, HasADragWithItsDifferenceFromTheBodyForEachSurface) {
    host::ControlFigures figures;
    figures.cdOverset = 5.005;
    figures.cdHole = 4.95;
    figures.cdOuter = 5.5;
    figures.interfaceMass = -0.0125;
    OutputCapture capture;

    host::PrintControl(figures, 5.0);

    EXPECT_EQ(capture.Out(),
              "  Cd, overset boundary    5.0050000000   from the body     +0.100 %\n"
              "  Cd, hole boundary       4.9500000000   from the body     -1.000 %\n"
              "  Cd, outer boundary      5.5000000000   from the body    +10.000 %\n"
              "  interface mass             -1.25e-02\n");
}

TEST(ControlTable, HasNoRowsOfAnInterfaceOnASingleGrid) {
    host::ControlFigures figures;
    figures.cdOuter = 5.5;
    OutputCapture capture;

    host::PrintControl(figures, 5.0);

    EXPECT_EQ(capture.Out(),
              "  Cd, outer boundary      5.5000000000   from the body    +10.000 %\n");
}

TEST(ControlLimits, ApplyToEachFigureAlone) {
    host::ControlFigures good;
    good.cdOverset = good.cdHole = good.cdOuter = 5.009;
    good.interfaceMass = -0.9e-4;
    EXPECT_TRUE(host::ControlMisses(good, 5.0).empty());
    EXPECT_TRUE(host::ControlMisses({}, 5.0).empty());

    for (auto surface : {&host::ControlFigures::cdOverset, &host::ControlFigures::cdHole,
                         &host::ControlFigures::cdOuter}) {
        host::ControlFigures bad = good;
        bad.*surface = 4.989;
        EXPECT_EQ(host::ControlMisses(bad, 5.0).size(), 1u);
    }
    host::ControlFigures leaking = good;
    leaking.interfaceMass = 1.1e-4;
    EXPECT_THAT(host::ControlMisses(leaking, 5.0),
                testing::ElementsAre("the interface mass is 1.10e-04, the limit is 1.00e-04"));
}

TEST(ControlMeasurement, ReadsTheForcesAlongXInTheGivenUnit) {
    const OutputCapture quiet;
    MeshCase c(channel5);
    host::FlowSolver flow(c.mesh, c.objects, c.link, FlowAtRe20(c.mesh));
    flow.Iterate();

    const host::ControlFigures figures = host::MeasureControl(flow, 0.25);

    const host::BodyForces forces = host::ForcesFromMomentumBalance(flow);
    ASSERT_TRUE(figures.cdOverset && figures.cdHole && figures.interfaceMass);
    EXPECT_DOUBLE_EQ(*figures.cdOverset, 4.0 * forces.overset->x());
    EXPECT_DOUBLE_EQ(*figures.cdHole, 4.0 * forces.hole->x());
    EXPECT_DOUBLE_EQ(*figures.cdOuter, 4.0 * forces.outer.x());
    EXPECT_DOUBLE_EQ(*figures.interfaceMass, *host::InterfaceMassDefect(flow));
}

}  // namespace
