#include "reference_host/cases/flow_study.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "reference_host/cases/case_mms.h"
#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"

namespace {

using host::FlowStudy;
using host::FlowStudyLevel;
using host::MmsCase;
using host::Scheme;
using testing::ElementsAre;
using testing::HasSubstr;

FlowStudyLevel Level(int size, double velocity, double pressure, double force) {
    FlowStudyLevel level;
    level.size = size;
    level.activeCells = size * size;
    level.all = {{velocity, velocity}, {pressure, pressure}};
    level.force = force;
    level.flux = velocity;
    level.iterations = 100;
    return level;
}

FlowStudy Study(const FlowStudyLevel& coarse, const FlowStudyLevel& fine) {
    return {Scheme::LinearUpwind, 3, {coarse, fine}};
}

TEST(FlowStudyLimits, SecondOrderIsWithinThem) {
    EXPECT_TRUE(
        host::Misses({Study(Level(10, 4e-3, 4e-3, 4e-3), Level(20, 1e-3, 1e-3, 1e-3))}).empty());
}

TEST(FlowStudyLimits, LowOrdersAndNanAreOutside) {
    const auto misses =
        host::Misses({Study(Level(10, 2e-3, 2e-3, 4e-3), Level(20, 1e-3, 1e-3, std::nan("")))});

    EXPECT_THAT(misses, ElementsAre("flow lud kind 3 velocity: order 1.00, the limit is 1.90",
                                    "flow lud kind 3 pressure: order 1.00, the limit is 1.50",
                                    HasSubstr("flow lud kind 3 force: order nan")));
}

TEST(FlowStudyLimits, AreLowerOnTetrahedra) {
    FlowStudyLevel fine = Level(20, 1e-3, 1e-3, 1e-3);
    const FlowStudyLevel coarse = Level(10, 3.3e-3, 2.4e-3, 2.4e-3);
    EXPECT_EQ(host::Misses({Study(coarse, fine)}).size(), 3u);

    fine.hasTetrahedra = true;

    EXPECT_TRUE(host::Misses({Study(coarse, fine)}).empty());
}

TEST(FlowStudyTable, HasTheOrdersFromTheSecondLevelOn) {
    FlowStudyLevel fine = Level(20, 1e-3, 2e-3, 1e-3);
    fine.byGrid = {fine.all};
    FlowStudyLevel coarse = Level(10, 4e-3, 4e-3, 2e-3);
    coarse.byGrid = {coarse.all};
    OutputCapture capture;

    host::PrintTable({Study(coarse, fine)});

    const std::string out = capture.Out();
    EXPECT_THAT(out, HasSubstr("lud             3   20     400  all         1.000e-03  2.00  "
                               "1.000e-03  2.00  2.000e-03  1.00  2.000e-03  1.00  1.000e-03  "
                               "1.00  1.000e-03  2.00    100\n"));
    EXPECT_THAT(out, HasSubstr("background  1.000e-03  2.00"));
}

TEST(FlowLevelSolver, FlowThatDoesNotConvergeEndsInOneLine) {
    const MeshCase c({"Box", boxFile, {{"n", 5}, {"kind", 1}}});
    host::HostObjects objects(c.mesh, ".");
    host::OversetLink link(c.mesh, objects);
    host::FlowLevelSolver level({c.mesh, objects, link, 5, "box", nullptr});

    // Central differences at a cell Reynolds number of 2e5 oscillate.
    EXPECT_THROW(level.Solve(Scheme::Central, 1e-6, host::MatrixSolver::Bicgstab),
                 std::runtime_error);
}

TEST(FlowLevelSolver, FlowThroughABodyOfPrismsConverges) {
    const MeshCase c({"PrismAnnulus", boxFile, {{"n", 5}, {"kind", 5}}});
    host::HostObjects objects(c.mesh, ".");
    host::OversetLink link(c.mesh, objects);
    host::FlowLevelSolver level({c.mesh, objects, link, 5, "box", nullptr});

    // With an extrapolated value in the flow out through the body it does not converge at all.
    EXPECT_LT(level.Solve(Scheme::LinearUpwind, 0.05, host::MatrixSolver::Bicgstab).iterations,
              300);
}

/// What linear upwind with the default viscosity was measured with between two sizes.
struct Measured {
    const char* name;
    const char* file;
    std::optional<int> kind;
    std::vector<int> sizes;
    // Regression limits of the errors on the finer mesh: 1.1 times the measured ones.
    double velocity, pressure, force, flux;
    double forceOrder;  // regression limit where the goal of FlowLimitsOf() is not yet reached

    friend std::ostream& operator<<(std::ostream& out, const Measured& study) {
        return out << study.name;
    }
};

class FlowStudyOn : public testing::TestWithParam<Measured> {};

TEST_P(FlowStudyOn, VelocityAndPressureHaveTheirOrders) {
    const Measured& study = GetParam();
    MmsCase run;
    run.meshFile = ShippedMesh(study.file);
    run.flow = true;
    run.schemes = {Scheme::LinearUpwind};
    run.sizes = study.sizes;
    OutputCapture quiet;

    const FlowStudy result = host::RunFlowKind(run, study.kind).at(0);

    const FlowStudyLevel& coarse = result.levels[0];
    const FlowStudyLevel& fine = result.levels[1];
    const auto order = [&](double before, double now) {
        return host::Order(before, now, coarse.size, fine.size);
    };
    const host::FlowStudyLimits limits = host::FlowLimitsOf(fine.hasTetrahedra);
    EXPECT_GT(order(coarse.all.velocity.l2, fine.all.velocity.l2), limits.velocity);
    EXPECT_GT(order(coarse.all.pressure.l2, fine.all.pressure.l2), limits.pressure);
    EXPECT_GT(order(coarse.force, fine.force), study.forceOrder);
    EXPECT_LT(fine.all.velocity.l2, study.velocity);
    EXPECT_LT(fine.all.pressure.l2, study.pressure);
    EXPECT_LT(fine.force, study.force);
    EXPECT_LT(fine.flux, study.flux);
}

std::string NameOf(const testing::TestParamInfo<Measured>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Quick, FlowStudyOn,
    testing::Values(Measured{
        "AnnulusAlone", boxFile, 3, {5, 10}, 0.00107, 0.00124, 0.00386, 0.000651, 1.5}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    ReleaseQuick, FlowStudyOn,
    testing::Values(
        Measured{"SingleBox", boxFile, 1, {5, 10}, 0.00142, 0.00179, 0.00107, 0.00111, 1.5},
        Measured{"OversetPair", boxFile, 0, {5, 10}, 0.00138, 0.00177, 0.00363, 0.00102, 0.4}),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    FullFlowStudies, FlowStudyOn,
    testing::Values(
        Measured{"SingleBox", boxFile, 1, {10, 20}, 0.00036, 0.000484, 0.000474, 0.000278, 1.1},
        Measured{"AnnulusAlone", boxFile, 3, {10, 20}, 0.000225, 0.000337, 0.00128, 0.000137, 1.5},
        Measured{"OversetPair", boxFile, 0, {10, 20}, 0.000313, 0.000464, 0.00198, 0.00023, 0.8},
        Measured{"Tetrahedra",
                 "box_tetrahedra.geo",
                 std::nullopt,
                 {5, 7},
                 0.00344,
                 0.00457,
                 0.00357,
                 0.00164,
                 1.2}),
    NameOf);

}  // namespace
