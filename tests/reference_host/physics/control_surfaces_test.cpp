#include <gtest/gtest.h>

#include "reference_host/physics/hole_balance.h"
#include "reference_host/physics/momentum_balance.h"
#include "tests/reference_host/physics/flow_case.h"

namespace {

using host::Conservation;
using host::FlowSolver;
using host::Vec3;

/// Cylinder in the channel, with an annulus of prisms.
const MeshChoice channelPrisms5 = {
    "ChannelPrisms5", "channel_cylinder_overset.geo", {{"n", 5}, {"prisms", 1}}};

/// The converged flow around the cylinder.
struct CylinderFlow {
    explicit CylinderFlow(const MeshChoice& choice,
                          Conservation conservation = Conservation::MassAndMomentum)
        : c(choice), flow(c.mesh, c.objects, c.link, Settings(conservation)) {
        Converge(flow);
    }

    host::FlowSettings Settings(Conservation conservation) const {
        host::FlowSettings settings = FlowAtRe20(c.mesh);
        settings.conservation = conservation;
        return settings;
    }

    MeshCase c;
    FlowSolver flow;
};

class ControlSurfaces : public testing::TestWithParam<MeshChoice> {
protected:
    static void TearDownTestSuite() { flows.Clear(); }

    const CylinderFlow& run = flows.On(GetParam());

private:
    inline static FlowsSolvedOnce<CylinderFlow> flows;
};

TEST_P(ControlSurfaces, AllGiveTheForceOnTheBody) {
    const host::BodyForces forces = host::ForcesFromMomentumBalance(run.flow);

    ASSERT_TRUE(forces.overset);
    ASSERT_TRUE(forces.hole);
    const double drag = forces.body.x();
    ASSERT_GT(drag, 0.0);
    for (const Vec3& force : {*forces.overset, *forces.hole, forces.outer}) {
        EXPECT_LT((force - forces.body).head<2>().norm() / drag, 1e-5);
    }
}

TEST_P(ControlSurfaces, NoMassIsCreatedAtTheInterface) {
    ASSERT_TRUE(host::InterfaceMassDefect(run.flow));
    EXPECT_LT(std::abs(*host::InterfaceMassDefect(run.flow)), 1e-5);
    EXPECT_LT(std::abs(run.flow.MassDefect()), 1e-6);
    // The mass that the interpolated fluxes alone would create.
    EXPECT_GT(std::abs(run.flow.Hole().Flux()), 1e-4 * run.flow.Inflow());
}

INSTANTIATE_TEST_SUITE_P(Hexahedra, ControlSurfaces, testing::Values(channel5));
INSTANTIATE_TEST_SUITE_P(ReleasePrisms, ControlSurfaces, testing::Values(channelPrisms5));

TEST(ReleaseHoleBoundary, ConservesOnlyWhatTheSettingsAskFor) {
    const OutputCapture quiet;
    const CylinderFlow none(channel5, Conservation::None);
    const CylinderFlow mass(channel5, Conservation::Mass);

    EXPECT_EQ(none.flow.Hole().Flux(), 0.0);
    EXPECT_GT(std::abs(*host::InterfaceMassDefect(none.flow)), 1e-4);
    EXPECT_LT(std::abs(*host::InterfaceMassDefect(mass.flow)), 1e-5);
    for (const CylinderFlow* run : {&none, &mass}) {
        const host::BodyForces forces = host::ForcesFromMomentumBalance(run->flow);
        EXPECT_EQ(run->flow.Hole().Force().norm(), 0.0);
        EXPECT_GT(std::abs(forces.hole->x() / forces.body.x() - 1.0), 1e-3);
        // Each grid alone conserves momentum whatever happens between them.
        EXPECT_NEAR(forces.overset->x() / forces.body.x(), 1.0, 1e-5);
        EXPECT_NEAR(forces.outer.x() / forces.hole->x(), 1.0, 1e-5);
    }
}

TEST(InterfaceMass, IsWhatTheBackgroundReceivesRelativeToTheStreamThroughTheFrontalArea) {
    const OutputCapture quiet;
    MeshCase c(channel5);
    host::FlowSettings settings = FlowAtRe20(c.mesh);
    settings.conservation = Conservation::None;
    FlowSolver flow(c.mesh, c.objects, c.link, settings);
    flow.Iterate();
    // The flow has not converged: the net outflow of the cells is subtracted.
    double received = flow.MassDefect() * flow.Inflow();
    const std::vector<double> net = host::NetOutflow(c.mesh, c.link, flow.Flux());
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        received -= c.mesh.cavity[cell] == 1 ? net[cell] : 0.0;
    }
    ASSERT_GT(std::abs(received), 1e-6);

    // The diameter is 1, and the mean velocity 1.
    EXPECT_NEAR(host::FrontalStream(flow) / c.mesh.Depth(), 1.0, 0.02);
    EXPECT_NEAR(*host::InterfaceMassDefect(flow) * host::FrontalStream(flow), received, 1e-10);
}

TEST(HoleBoundary, CorrectionIsTheSameFluxPerAreaOnEveryFaceOfTheHole) {
    const OutputCapture quiet;
    MeshCase c(channel5);
    const host::StencilBuilder builder(c.mesh, c.objects, c.link, host::GradientSet::Velocity);
    host::StencilRecords records(builder, c.objects, host::FarPoint::LinearUpwind);
    CMAFVMFaceVariableAll flux(&records.gv, /*shared=*/false);
    host::FillConstantFlux(builder, {1.0, 0.5, 0.0}, flux);
    host::HoleBalance hole(c.mesh, c.link);
    ASSERT_GT(hole.Faces().size(), 10u);
    const int size = c.mesh.InnerFaceCount() + 1;
    const std::vector<double> left(flux.left, flux.left + size);
    const std::vector<double> right(flux.right, flux.right + size);
    const double before = hole.NetFlux(flux);

    hole.AddFlux(0.25, flux);

    EXPECT_NEAR(hole.NetFlux(flux) - before, 0.25 * hole.Area(), 1e-12);
    EXPECT_NEAR(hole.Flux(), 0.25 * hole.Area(), 1e-15);
    for (const host::HoleBalance::Face& face : hole.Faces()) {
        const double change = face.activeIsLeft ? flux.left[face.face] - left[face.face]
                                                : right[face.face] - flux.right[face.face];
        EXPECT_NEAR(change, 0.25 * face.area, 1e-14);
    }
}

}  // namespace
