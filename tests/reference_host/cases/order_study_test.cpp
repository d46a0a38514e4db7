#include "reference_host/cases/order_study.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

using host::OrderStudy;
using host::Scheme;
using host::StudyLevel;
using testing::HasSubstr;

StudyLevel Level(int size, double l2, double max) {
    StudyLevel level;
    level.size = size;
    level.all = {l2, max};
    return level;
}

TEST(StudyOrder, IsTheSlopeInLogarithmicScale) {
    EXPECT_NEAR(host::Order(4e-4, 1e-4, 10, 20), 2.0, 1e-12);
    EXPECT_NEAR(host::Order(9e-4, 1e-4, 10, 30), 2.0, 1e-12);
}

TEST(OrderStudyLimits, SecondOrderWithSmallErrorsIsWithinThem) {
    EXPECT_TRUE(
        host::Misses({Scheme::Diffusion, 1, {Level(10, 9e-4, 2e-3), Level(20, 2.25e-4, 5e-4)}})
            .empty());
}

TEST(OrderStudyLimits, LowOrderIsOutside) {
    const auto misses =
        host::Misses({Scheme::Diffusion, 1, {Level(10, 6e-4, 1e-3), Level(20, 2.25e-4, 5e-4)}});

    ASSERT_EQ(misses.size(), 2u);
    EXPECT_EQ(misses[0], "diffusion kind 1 all L2: order 1.42, the limit is 1.75");
    EXPECT_EQ(misses[1], "diffusion kind 1 all max: order 1.00, the limit is 1.50");
}

TEST(OrderStudyLimits, LargeErrorAtSizeTwentyIsOutside) {
    const auto misses =
        host::Misses({Scheme::Diffusion, 1, {Level(10, 4e-3, 2e-2), Level(20, 1e-3, 5e-3)}});

    ASSERT_EQ(misses.size(), 1u);
    EXPECT_EQ(misses[0], "diffusion kind 1 n = 20: L2 error 1.000e-03, the limit is 2.812e-04");
}

TEST(OrderStudyLimits, NanIsOutside) {
    const double nan = std::nan("");

    EXPECT_EQ(
        host::Misses({Scheme::Diffusion, 0, {Level(10, 1e-3, 1e-3), Level(20, nan, nan)}}).size(),
        3u);
}

TEST(OrderStudyLimits, HoldForEachGridOfAPair) {
    StudyLevel coarse = Level(10, 9e-4, 2e-3);
    StudyLevel fine = Level(20, 2.25e-4, 5e-4);
    coarse.byGrid = {coarse.all, {1e-3, 1e-3}};
    fine.byGrid = {fine.all, {9e-4, 9e-4}};

    EXPECT_EQ(host::Misses({Scheme::Diffusion, 0, {coarse, fine}}).size(), 2u);
}

TEST(OrderStudyLimits, DependOnTheScheme) {
    EXPECT_EQ(host::LimitsOf(Scheme::Hybrid, 1, 10).orderL2, 0.8);
    EXPECT_EQ(host::LimitsOf(Scheme::UpwindCells, 1, 10).orderMax, 0.65);
    EXPECT_EQ(host::LimitsOf(Scheme::Quick, 1, 10).orderL2, 1.5);
    EXPECT_EQ(host::LimitsOf(Scheme::LinearUpwind, 1, 10).orderL2, 1.75);
    EXPECT_FALSE(host::LimitsOf(Scheme::Quick, 1, 10).l2.has_value());
    EXPECT_FALSE(host::LimitsOf(Scheme::Quick, 4, 20).l2.has_value());
}

TEST(OrderStudyLimits, OfTheErrorAreForThePlaneSolutionOnly) {
    OrderStudy study{Scheme::Diffusion, 0, {Level(20, 1.0, 1.0)}};
    EXPECT_EQ(host::Misses(study).size(), 1u);

    study.isPlane = false;

    EXPECT_TRUE(host::Misses(study).empty());
}

TEST(OrderStudyLimits, OfSeveralStudiesAreReportedInTheirOrder) {
    const OrderStudy bad{Scheme::Quick, 1, {Level(20, 1.0, 1.0)}};
    const OrderStudy good{Scheme::Diffusion, 1, {Level(20, 1e-5, 1e-5)}};

    const auto misses = host::Misses(std::vector<OrderStudy>{good, bad, bad});

    ASSERT_EQ(misses.size(), 2u);
    EXPECT_THAT(misses[0], HasSubstr("quick kind 1 n = 20"));
}

TEST(OrderStudyTable, HasARowForEachGridAndOrdersFromTheSecondLevelOn) {
    StudyLevel coarse = Level(10, 4e-4, 8e-4);
    StudyLevel fine = Level(20, 1e-4, 4e-4);
    coarse.byGrid = {coarse.all, coarse.all};
    fine.byGrid = {fine.all, fine.all};
    fine.activeCells = 77;
    fine.solve.iterations = 12;
    OutputCapture capture;

    host::PrintTable({{Scheme::Central, 0, {coarse, fine}}});

    EXPECT_EQ(
        capture.Out(),
        "scheme       kind    n   cells  grid        L2 error  order  max error  order solver\n"
        "central         0   10       0  all        4.000e-04         8.000e-04             -\n"
        "central         0   10       0  background 4.000e-04         8.000e-04             -\n"
        "central         0   10       0  component1 4.000e-04         8.000e-04             -\n"
        "central         0   20      77  all        1.000e-04   2.00  4.000e-04   1.00     12\n"
        "central         0   20      77  background 1.000e-04   2.00  4.000e-04   1.00     12\n"
        "central         0   20      77  component1 1.000e-04   2.00  4.000e-04   1.00     12\n");
}

TEST(LevelSolver, MeasuresEachGridAndWritesOneStepPerScheme) {
    const TempDirectory results;
    OutputCapture quiet;
    const host::Mesh mesh = host::ReadMesh(ShippedMesh(boxFile), {{"n", 5}, {"kind", 0}});
    host::HostObjects objects(mesh, results.Text());
    host::OversetLink link(mesh, objects);
    host::ResultSeries series(mesh, objects, link, results.Text());
    host::LevelSolver level({mesh, objects, link, 5, "box", &series});

    const StudyLevel diffusion = level.Solve(Scheme::Diffusion, 1.0, host::MatrixSolver::Bicgstab);
    level.Solve(Scheme::Central, 0.01, host::MatrixSolver::Bicgstab);

    EXPECT_EQ(diffusion.size, 5);
    EXPECT_EQ(diffusion.activeCells, 508);
    EXPECT_NEAR(diffusion.all.l2, 3.79e-3, 0.01e-3);
    ASSERT_EQ(diffusion.byGrid.size(), 2u);
    EXPECT_NE(diffusion.byGrid[0].l2, diffusion.byGrid[1].l2);
    const std::string pvd = ReadFile(series.Finish());
    EXPECT_THAT(pvd, HasSubstr("Itr1_"));
    EXPECT_THAT(pvd, HasSubstr("Itr2_"));
}

TEST(OrderStudyLimits, AreMissingForASingleSizeUnlessItsErrorHasOne) {
    EXPECT_NO_THROW(host::RequireLimits(1, {20}, /*isPlane=*/true));
    EXPECT_NO_THROW(host::RequireLimits(3, {10, 20}, true));
    EXPECT_NO_THROW(host::RequireLimits(std::nullopt, {6, 9}, false));
    EXPECT_THROW(host::RequireLimits(1, {20}, false), std::runtime_error);
    EXPECT_THROW(host::RequireLimits(1, {10}, true), std::runtime_error);
    EXPECT_THROW(host::RequireLimits(3, {20}, true), std::runtime_error);
    EXPECT_THROW(host::RequireLimits(std::nullopt, {20}, true), std::runtime_error);
}

}  // namespace
