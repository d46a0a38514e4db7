#include "reference_host/cases/case_cylinder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "reference_host/mesh/cell_size.h"
#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/reference_host/physics/flow_case.h"
#include "tests/support/temp_directory.h"

namespace {

using host::CylinderCase;
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

    for (const char* word :
         {"cylinder 10: change", "Cd ", "Cl ", "pressure difference", "5.5795352338",
          "0.0106189481", "0.1175201670", "mass defect", "Cd, overset boundary",
          "Cd, hole boundary", "Cd, outer boundary", "interface mass", "outer iterations",
          "pressure iterations", "seconds"}) {
        EXPECT_THAT(out, HasSubstr(word));
    }
    const auto history = Lines(ReadFile(results.Path() / "history.csv"));
    ASSERT_GT(history.size(), 80u);
    EXPECT_EQ(history[0],
              "iteration,velocity_change,mass_residual,cd,cl,linear_reduction,"
              "cd_overset,cd_hole,cd_outer,interface_mass");
    EXPECT_THAT(history[40], testing::StartsWith("40,"));
    // The beginning, every 40th iteration and the end.
    const int iterations = static_cast<int>(history.size()) - 1;
    const std::string pvd = ReadFile(results.Path() / "VTK_Overset_Flow_Results.pvd");
    EXPECT_EQ(Count(pvd, "<DataSet "), 1 + iterations / 40 + 1);
    EXPECT_THAT(pvd, HasSubstr("timestep=\"40\""));
}

TEST(CylinderRun, StepsHaveExactlyTheActiveCells) {
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
    // The series of a run that failed is complete and includes its last iteration.
    const std::string pvd = ReadFile(results.Path() / "VTK_Overset_Flow_Results.pvd");
    EXPECT_EQ(Count(pvd, "<DataSet "), 2);
    const std::string step = ReadFile(results.Path() / "VTK_Overset_Flow_Results_0" /
                                      "VTK_Overset_Flow_Results_Itr3_T3_P0_B1.vtu");
    EXPECT_THAT(step, HasSubstr("NumberOfCells=\"" + std::to_string(activeCells) + "\""));
}

TEST(CylinderRun, DivergenceIsReportedAndKeepsTheResultsSoFar) {
    const TempDirectory results;
    CylinderCase run = CoarseCase(results);
    run.scheme = Scheme::Quick;
    run.reynolds = 10000;
    run.relaxation = 0.999;  // almost no relaxation
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

    EXPECT_THAT(
        ErrorOf([&] { host::RunCylinder(run); }),
        HasSubstr("check: there are limits for lud at n = 10, 20 and 40, quick and central at "
                  "n = 20 at Reynolds number 20, but not for lud at n = 5 and Reynolds"));
}

TEST(CylinderRun, MeshWithoutACylinderIsRefused) {
    const TempDirectory results;
    CylinderCase run = CoarseCase(results);
    run.meshFile = ShippedMesh(boxFile);
    run.parameters = {{"n", 5}, {"kind", 1}};

    EXPECT_THAT(ErrorOf([&] { host::RunCylinder(run); }), HasSubstr("no cylinder"));
}

TEST(CellSize, CellsPerDiameterAreThoseOfTheGeometry) {
    for (const int n : {5, 10, 20}) {
        EXPECT_EQ(host::CellsPerUnit(ReadShipped(channelGeo, {{"n", n}})), n);
    }
}

}  // namespace
