#include "reference_host/cases/case_heat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

using host::HeatBalance;
using host::HeatCase;
using host::HeatProblem;

const MeshChoice channel = {"Channel", "channel_cylinder_overset.geo", {{"n", 10}}};

TEST(HeatSteady, HeatOfTheCylinderIsThatOfTheCollocation) {
    OutputCapture quiet;
    MeshCase c(channel);
    HeatProblem heat(c.mesh, c.objects, c.link);

    const host::SolveReport solve = heat.Advance(0.0);

    const HeatBalance balance = heat.Balance();
    EXPECT_TRUE(solve.Converged());
    // The deviation is -0.16 %, of second order in the cell size.
    EXPECT_NEAR(balance.body, host::heatOfTheCylinder, 2e-3 * host::heatOfTheCylinder);
    EXPECT_EQ(balance.outlet, 0.0);
    EXPECT_GT(balance.inlet, 0.0);
    EXPECT_GT(balance.walls, balance.inlet);
}

/// With cells of half the size in the annulus the deviation is -0.04 %.
TEST(HeatSteady, HeatOfTheCylinderApproachesTheCollocationWithAFinerAnnulus) {
    OutputCapture quiet;
    MeshCase c({"Ratio2", "channel_cylinder_overset.geo", {{"n", 10}, {"ratio", 2}}});
    HeatProblem heat(c.mesh, c.objects, c.link);
    heat.Advance(0.0);

    EXPECT_NEAR(heat.Balance().body, host::heatOfTheCylinder, 7e-4 * host::heatOfTheCylinder);
}

TEST(HeatSteady, OversetBalanceHoldsUpToTheInterpolationError) {
    OutputCapture quiet;
    MeshCase c(channel);
    HeatProblem heat(c.mesh, c.objects, c.link);
    heat.Advance(0.0);

    EXPECT_LT(std::abs(heat.Balance().Defect()), 2e-3);  // of second order in the cell size
}

TEST(HeatSteady, SingleGridBalanceHoldsUpToTheSolverTolerance) {
    MeshCase c(boxPrisms);
    HeatProblem heat(c.mesh, c.objects, c.link);
    heat.Advance(0.0);

    EXPECT_LT(std::abs(heat.Balance().Defect()), 1e-8);
}

TEST(HeatSteady, TemperatureStaysBetweenColdAndHot) {
    OutputCapture quiet;
    MeshCase c(channel);
    HeatProblem heat(c.mesh, c.objects, c.link);
    heat.Advance(0.0);
    heat.Publish();

    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        ASSERT_GE(c.objects.pressure[cell], -1e-6);
        ASSERT_LE(c.objects.pressure[cell], 1.0 + 1e-6);
    }
}

TEST(HeatTransient, ManyStepsReachTheSteadyState) {
    MeshCase c(boxHexahedra);
    HeatProblem marched(c.mesh, c.objects, c.link);
    for (int i = 0; i < 8; ++i) {
        marched.Advance(10.0);
    }
    HeatProblem steady(c.mesh, c.objects, c.link);
    steady.Advance(0.0);

    EXPECT_NEAR(marched.Balance().body, steady.Balance().body, 1e-6);
}

TEST(HeatTransient, FirstStepTakesMoreHeatThanTheSteadyState) {
    MeshCase c(boxHexahedra);
    HeatProblem heat(c.mesh, c.objects, c.link);
    heat.Advance(0.01);
    const double early = heat.Balance().body;
    heat.Advance(0.0);

    EXPECT_GT(early, 2.0 * heat.Balance().body);
}

TEST(HeatRun, SeriesHasEveryStepAndExactlyTheActiveCells) {
    TempDirectory results;
    HeatCase run;
    run.meshFile = ShippedMesh(channel.file);
    run.parameters = {{"n", 5}};
    run.outputDir = results.Text();
    run.steps = 3;
    std::string out;
    {
        OutputCapture capture;
        EXPECT_EQ(host::RunHeat(run), 0);
        out = capture.Out();
    }

    EXPECT_NE(out.find("in - out, relative"), std::string::npos) << out;
    const std::string pvd = ReadFile(results.Path() / "VTK_Overset_Flow_Results.pvd");
    std::size_t steps = 0;
    for (std::size_t at = pvd.find("<DataSet "); at != std::string::npos;
         at = pvd.find("<DataSet ", at + 1)) {
        ++steps;
    }
    EXPECT_EQ(steps, 4u);
    OutputCapture quiet;
    const MeshCase c({"Channel5", channel.file, {{"n", 5}}});
    int activeCells = 0;
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        activeCells += c.link.IsActive(cell) ? 1 : 0;
    }
    EXPECT_LT(activeCells, c.mesh.CellCount());
    const std::string step = ReadFile(results.Path() / "VTK_Overset_Flow_Results_0" /
                                      "VTK_Overset_Flow_Results_Itr1_T0.01_P0_B1.vtu");
    EXPECT_NE(step.find("NumberOfCells=\"" + std::to_string(activeCells) + "\""),
              std::string::npos);
}

TEST(HeatRun, MeshWithoutAWallIsRefused) {
    TempDirectory results;
    HeatCase run;
    run.meshFile = ShippedMesh(boxFile);
    run.parameters = {{"n", 5}, {"kind", 3}};
    run.outputDir = results.Text();
    try {
        host::RunHeat(run);
        FAIL() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find("nothing to heat"), std::string::npos)
            << error.what();
    }
}

}  // namespace
