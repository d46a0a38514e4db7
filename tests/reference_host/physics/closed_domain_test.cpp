#include <gtest/gtest.h>

#include "reference_host/physics/momentum_balance.h"
#include "tests/reference_host/physics/flow_case.h"

namespace {

using host::Vec3;

/// A flow that only a moving side drives, with the Reynolds number 100.
host::FlowSettings Driven() {
    host::FlowSettings settings;
    settings.inlet = [](const Vec3&) { return Vec3(Vec3::Zero()); };
    settings.walls = [](host::WallRole, const Vec3& at) {
        return Vec3(at.y() > 4.0 - 1e-9 ? 1.0 : 0.0, 0.0, 0.0);
    };
    settings.mu = 0.04;
    return settings;
}

/// The converged flow in a closed domain.
struct DrivenFlow {
    explicit DrivenFlow(const MeshChoice& choice)
        : c(choice), flow(c.mesh, c.objects, c.link, Driven()), iterations(Converge(flow)) {}

    MeshCase c;
    host::FlowSolver flow;
    const int iterations;
};

class ClosedDomain : public testing::TestWithParam<MeshChoice> {
protected:
    static void TearDownTestSuite() { flows.Clear(); }

    const DrivenFlow& run = flows.On(GetParam());
    const MeshCase& c = run.c;
    const host::FlowSolver& flow = run.flow;

private:
    inline static FlowsSolvedOnce<DrivenFlow> flows;
};

TEST_P(ClosedDomain, ConvergesWithAPressureOfMeanZero) {
    EXPECT_LT(run.iterations, 400);  // regression limit

    double sum = 0.0;
    double magnitude = 0.0;
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        if (c.link.IsActive(cell)) {
            sum += c.mesh.volume[cell] * flow.Fields().pressure[cell];
            magnitude += c.mesh.volume[cell] * std::abs(flow.Fields().pressure[cell]);
        }
    }
    EXPECT_LT(std::abs(sum), 1e-12 * magnitude);
}

TEST_P(ClosedDomain, KeepsMassAndMomentumAtTheInterface) {
    const host::BodyForces forces = ForcesFromMomentumBalance(flow);
    const double lid = 0.04 * c.mesh.Depth();  // order of magnitude of the friction on the lid
    EXPECT_LT(std::abs(flow.Hole().NetFlux(flow.Flux())), 1e-7 * flow.MassScale());
    EXPECT_LT(LargestImbalance(c.mesh, c.link, flow.Flux()), 1e-6 * flow.MassScale());
    if (c.link.IsOverset()) {
        EXPECT_LT((*forces.hole - forces.body).norm(), 1e-3 * lid);
        EXPECT_LT((*forces.overset - forces.body).norm(), 1e-3 * lid);
        EXPECT_LT((forces.outer - forces.body).norm(), 1e-3 * lid);
    }
}

TEST(ClosedPair, FirstPressureCorrectionMakesTheNetFluxThroughTheHoleZero) {
    const OutputCapture quiet;
    MeshCase c({"Pair", "cavity.geo", {{"n", 16}, {"kind", 1}}});
    host::FlowSolver flow(c.mesh, c.objects, c.link, Driven());

    flow.Iterate();

    EXPECT_GT(std::abs(flow.Hole().Flux()), 1e-5 * flow.MassScale());  // it was not zero before
    EXPECT_LT(std::abs(flow.Hole().NetFlux(flow.Flux())), 1e-13 * flow.MassScale());
}

INSTANTIATE_TEST_SUITE_P(
    Cavity, ClosedDomain,
    testing::Values(MeshChoice{"OneGrid", "cavity.geo", {{"n", 16}}},
                    MeshChoice{"Prisms", "cavity.geo", {{"n", 16}, {"kind", 2}}},
                    MeshChoice{"Pair", "cavity.geo", {{"n", 16}, {"kind", 1}}},
                    MeshChoice{"PairWithBody", "cavity.geo", {{"n", 24}, {"kind", 1}, {"b", 0.1}}}),
    [](const auto& choice) { return std::string(choice.param.name); });

}  // namespace
