#include "reference_host/cases/flow_probe.h"

#include <gtest/gtest.h>

#include "tests/reference_host/physics/flow_case.h"

namespace {

using host::Vec3;

Vec3 Quadratic(const Vec3& at) {
    return {1.0 + at.x() * at.y() - at.y() * at.y(), 0.5 * at.x() * at.x() - 2.0 * at.y(), 0.0};
}

TEST(FlowProbe, ReadsAQuadraticVelocityExactlyInBothGrids) {
    const OutputCapture quiet;
    MeshCase c({"Pair", "cavity.geo", {{"n", 16}, {"kind", 1}}});
    host::FlowSettings settings;
    settings.inlet = Quadratic;
    settings.mu = 1.0;
    const host::FlowSolver flow(c.mesh, c.objects, c.link, settings);
    const host::FlowProbe probe(flow);

    for (const Vec3& at : {Vec3(0.31, 0.42, 0.1), Vec3(2.03, 1.97, 0.1), Vec3(3.9, 2.0, 0.1),
                           Vec3(2.0, 2.85, 0.1)}) {
        EXPECT_LT((probe.Velocity(at) - Quadratic(at)).norm(), 1e-10) << at.transpose();
    }
}

}  // namespace
