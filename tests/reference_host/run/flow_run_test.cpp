#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <limits>
#include <sstream>

#include "reference_host/cases/benchmark_2d1.h"
#include "reference_host/cases/case_cylinder.h"
#include "reference_host/mesh/cell_size.h"
#include "reference_host/run/interrupt.h"
#include "reference_host/run/residual_history.h"
#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/reference_host/physics/flow_case.h"
#include "tests/support/temp_directory.h"

namespace {

namespace benchmark = host::benchmark2d1;
using host::CylinderCase;
using host::Interrupt;
using host::Scheme;
using testing::HasSubstr;

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

int Count(const std::string& text, const std::string& word) {
    int count = 0;
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) {
        ++count;
    }
    return count;
}

CylinderCase CoarseCase(const TempDirectory& results) {
    CylinderCase run;
    run.meshFile = ShippedMesh("channel_cylinder_overset.geo");
    run.parameters = {{"n", 5}};
    run.outputDir = results.Text();
    return run;
}

TEST(CylinderRun, WritesSeriesHistoryAndTable) {
    const TempDirectory results;
    CylinderCase run = CoarseCase(results);
    run.stepsEvery = 40;
    std::string out;
    {
        OutputCapture capture;
        EXPECT_EQ(host::RunCylinder(run), 0);
        out = capture.Out();
    }

    for (const char* word : {"cylinder 10: change", "Cd ", "Cl ", "pressure difference",
                             "5.5795352338", "0.0106189481", "0.1175201670", "mass defect",
                             "outer iterations", "pressure iterations", "seconds"}) {
        EXPECT_THAT(out, HasSubstr(word));
    }
    const auto history = Lines(ReadFile(results.Path() / "history.csv"));
    ASSERT_GT(history.size(), 80u);
    EXPECT_EQ(history[0], "iteration,velocity_change,mass_residual,cd,cl");
    EXPECT_THAT(history[40], testing::StartsWith("40,"));
    // Start, every 40th iteration and the end.
    const int iterations = static_cast<int>(history.size()) - 1;
    const std::string pvd = ReadFile(results.Path() / "VTK_Overset_Flow_Results.pvd");
    EXPECT_EQ(Count(pvd, "<DataSet "), 1 + iterations / 40 + 1);
    EXPECT_THAT(pvd, HasSubstr("timestep=\"40\""));
}

TEST(CylinderRun, StepsHoldExactlyTheActiveCells) {
    const TempDirectory results;
    CylinderCase run = CoarseCase(results);
    run.maxIterations = 3;
    OutputCapture quiet;
    EXPECT_THAT(ErrorOf([&] { host::RunCylinder(run); }), HasSubstr("not converged after 3"));

    const MeshCase c(channel5);
    int activeCells = 0;
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        activeCells += c.link.IsActive(cell) ? 1 : 0;
    }
    ASSERT_LT(activeCells, c.mesh.CellCount());
    // The series of a run that failed is complete, its last iteration included.
    const std::string pvd = ReadFile(results.Path() / "VTK_Overset_Flow_Results.pvd");
    EXPECT_EQ(Count(pvd, "<DataSet "), 2);
    const std::string step = ReadFile(results.Path() / "VTK_Overset_Flow_Results_0" /
                                      "VTK_Overset_Flow_Results_Itr3_T3_P0_B1.vtu");
    EXPECT_THAT(step, HasSubstr("NumberOfCells=\"" + std::to_string(activeCells) + "\""));
}

TEST(CylinderRun, DivergenceIsToldAndKeepsWhatWasWritten) {
    const TempDirectory results;
    CylinderCase run = CoarseCase(results);
    run.scheme = Scheme::Quick;
    run.reynolds = 10000;
    run.relaxation = 0.999;  // next to none
    OutputCapture quiet;

    const std::string error = ErrorOf([&] { host::RunCylinder(run); });

    EXPECT_THAT(error, HasSubstr("diverged in iteration"));
    EXPECT_EQ(Lines(error).size(), 1u);
    const std::string pvd = ReadFile(results.Path() / "VTK_Overset_Flow_Results.pvd");
    EXPECT_GE(Count(pvd, "<DataSet "), 1);
    EXPECT_THAT(pvd, testing::Not(HasSubstr("nan")));
}

TEST(CylinderRun, CheckWithoutLimitsIsRefusedBeforeTheRun) {
    const TempDirectory results;
    CylinderCase run = CoarseCase(results);
    run.check = true;

    EXPECT_THAT(ErrorOf([&] { host::RunCylinder(run); }),
                HasSubstr("--check has limits for lud at n = 10, 20 and 40, quick and central at "
                          "n = 20 at Reynolds number 20, not for lud at n = 5 and Reynolds"));
}

TEST(CylinderRun, MeshWithoutACylinderIsRefused) {
    const TempDirectory results;
    CylinderCase run = CoarseCase(results);
    run.meshFile = ShippedMesh(boxFile);
    run.parameters = {{"n", 5}, {"kind", 1}};

    EXPECT_THAT(ErrorOf([&] { host::RunCylinder(run); }), HasSubstr("no cylinder"));
}

TEST(CellSize, CellsADiameterAreThoseOfTheGeometry) {
    for (const int n : {5, 10, 20}) {
        EXPECT_EQ(host::CellsPerUnit(ReadShipped(channelGeo, {{"n", n}})), n);
    }
}

TEST(Benchmark2d1, InflowIsTheParabolaOfMeanOne) {
    const host::InletProfile inflow = benchmark::Inflow(ReadShipped(channelGeo, {{"n", 5}}));

    EXPECT_NEAR(inflow({0.0, 2.05, 0.1}).x(), 1.5, 1e-12);
    EXPECT_NEAR(inflow({3.0, 4.1, 0.0}).x(), 0.0, 1e-12);
    EXPECT_NEAR(inflow({0.0, 1.0, 0.0}).x(), 6.0 * 3.1 / (4.1 * 4.1), 1e-12);
}

benchmark::Result Published() {
    benchmark::Result result;
    result.cd = benchmark::dragCoefficient;
    result.cl = benchmark::liftCoefficient;
    result.dp = benchmark::pressureDifference;
    result.iterations = 160;
    return result;
}

TEST(Benchmark2d1, PublishedValuesMissNothing) {
    EXPECT_TRUE(
        benchmark::Misses(Published(), *benchmark::LimitsOf(Scheme::LinearUpwind, 10)).empty());
}

TEST(Benchmark2d1, EachFigureCanMissItsLimit) {
    const benchmark::Limits limits = *benchmark::LimitsOf(Scheme::LinearUpwind, 10);
    benchmark::Result result = Published();
    result.cd *= 1.0061;
    result.cl *= 0.89;
    result.dp *= 1.0041;
    result.massDefect = -5.1e-3;
    result.iterations = 161;

    const auto misses = benchmark::Misses(result, limits);

    ASSERT_EQ(misses.size(), 5u);
    EXPECT_EQ(misses[0], "Cd is off by 6.10e-03, at most 6.00e-03 wanted");
    EXPECT_EQ(misses[1], "pressure difference is off by 4.10e-03, at most 4.00e-03 wanted");
    EXPECT_EQ(misses[2], "Cl is off by -1.10e-01, at most 1.00e-01 wanted");
    EXPECT_EQ(misses[3], "mass balance is off by -5.10e-03, at most 5.00e-03 wanted");
    EXPECT_EQ(misses[4], "161 iterations, at most 160 wanted");
}

TEST(Benchmark2d1, NotANumberMissesItsLimit) {
    benchmark::Result result = Published();
    result.cd = std::numeric_limits<double>::quiet_NaN();

    EXPECT_EQ(benchmark::Misses(result, *benchmark::LimitsOf(Scheme::Quick, 20)).size(), 1u);
}

TEST(Benchmark2d1, OtherCombinationsHaveNoLimits) {
    EXPECT_FALSE(benchmark::LimitsOf(Scheme::LinearUpwind, 5).has_value());
    EXPECT_FALSE(benchmark::LimitsOf(Scheme::Quick, 10).has_value());
    EXPECT_FALSE(benchmark::LimitsOf(Scheme::UpwindStencils, 20).has_value());
}

TEST(InterruptSignal, FirstIsNotedOnly) {
    const Interrupt interrupt;
    EXPECT_FALSE(interrupt.Requested());

    std::raise(SIGINT);

    EXPECT_TRUE(interrupt.Requested());
}

TEST(InterruptSignal, SecondEndsTheProgram) {
    EXPECT_EXIT(
        {
            const Interrupt interrupt;
            std::raise(SIGINT);
            std::raise(SIGINT);
        },
        testing::KilledBySignal(SIGINT), "");
}

TEST(InterruptSignal, LeavesTheSignalAsItWas) {
    { const Interrupt interrupt; }

    EXPECT_EXIT(std::raise(SIGINT), testing::KilledBySignal(SIGINT), "");
}

TEST(InterruptSignal, NextRunStartsWithoutTheLastOnesRequest) {
    {
        const Interrupt interrupt;
        std::raise(SIGINT);
    }

    EXPECT_FALSE(Interrupt().Requested());
}

TEST(ResidualHistory, HasAHeadingAndALineAnIteration) {
    const TempDirectory directory;
    const auto path = directory.Path() / "history.csv";
    host::ResidualHistory history(path.string());

    history.Add(1, 0.5, 1.25, 5.5, -0.01);

    // Without closing: a run in progress can be plotted.
    EXPECT_EQ(
        ReadFile(path),
        "iteration,velocity_change,mass_residual,cd,cl\n1,5.000000e-01,1.250000e+00,5.5,-0.01\n");
}

TEST(ResidualHistory, LineLostOnAFullDiskIsTold) {
    host::ResidualHistory history("/dev/full");
    EXPECT_EQ(ErrorOf([&] { history.RequireWhole(); }), "");

    history.Add(1, 0.5, 0.25, 1.0, 0.0);

    EXPECT_EQ(ErrorOf([&] { history.RequireWhole(); }),
              "/dev/full: not every iteration could be written");
}

TEST(ResidualHistory, FileThatCannotBeOpenedIsNamed) {
    EXPECT_THAT(ErrorOf([] { host::ResidualHistory("/proc/history.csv"); }),
                HasSubstr("/proc/history.csv cannot be written"));
}

}  // namespace
