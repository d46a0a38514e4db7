#include "reference_host/physics/wall_driven_flux.h"

#include <gtest/gtest.h>

#include "tests/reference_host/physics/flow_case.h"

namespace {

using host::FlowConditions;
using host::Vec3;

host::InletProfile AtRest() {
    return [](const Vec3&) -> Vec3 { return Vec3::Zero(); };
}

/// The channel is longer than high and one cell thick; its walls are at the top and at the bottom.
TEST(WallDrivenFlux, IsTheWallSpeedTimesTheShorterEdgesOfTheDomain) {
    const MeshCase c(channel5);
    Vec3 low = c.mesh.nodes[1];
    Vec3 high = low;
    for (int node = 2; node <= c.mesh.NodeCount(); ++node) {
        low = low.cwiseMin(c.mesh.nodes[node]);
        high = high.cwiseMax(c.mesh.nodes[node]);
    }
    const Vec3 edges = high - low;
    ASSERT_LT(edges.z(), edges.x());
    ASSERT_LT(edges.y(), edges.x());
    const FlowConditions moving(c.mesh, c.link,
                                {AtRest(), host::MovingFarWalls({0.3, 0.0, 0.4}), {}});
    const FlowConditions resting(c.mesh, c.link, {AtRest(), {}, {}});

    EXPECT_NEAR(host::WallDrivenFlux(c.mesh, moving), 0.5 * edges.y() * edges.z(), 1e-12);
    EXPECT_EQ(host::WallDrivenFlux(c.mesh, resting), 0.0);
}

TEST(MassScale, IsTheInflowOrElseTheFluxOfTheWalls) {
    for (const bool hasInflow : {true, false}) {
        MeshCase c(channel5);
        host::FlowSettings settings = FlowAtRe20(c.mesh);
        settings.walls = host::MovingFarWalls({0.5, 0.0, 0.0});
        if (!hasInflow) {
            settings.inlet = AtRest();
        }
        const host::FlowSolver flow(c.mesh, c.objects, c.link, settings);
        const FlowConditions conditions(c.mesh, c.link, settings);

        EXPECT_EQ(flow.MassScale(),
                  hasInflow ? flow.Inflow() : host::WallDrivenFlux(c.mesh, conditions));
        EXPECT_GT(flow.MassScale(), 0.0);
    }
}

TEST(RelativeChange, VelocitiesOfAnySizeAreCompared) {
    for (const double size : {1e-200, 1.0, 1e200}) {
        host::FlowFields before(2);
        host::FlowFields now(2);
        now.velocity[0] = {0.0, 3.0 * size, 0.0};
        now.velocity[1] = {0.0, 0.0, 4.0 * size};
        before.velocity[0] = now.velocity[0];
        before.velocity[1] = {0.0, 0.0, 4.5 * size};

        EXPECT_DOUBLE_EQ(host::RelativeChange(before, now, 2), 0.1) << size;
    }
}

}  // namespace
