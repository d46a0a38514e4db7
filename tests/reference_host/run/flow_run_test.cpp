#include "reference_host/run/flow_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/reference_host/physics/flow_case.h"
#include "tests/support/temp_directory.h"

namespace {

using host::FlowRun;
using host::FlowSettings;
using host::MatrixSolver;
using testing::AllOf;
using testing::HasSubstr;

/// A run of the flow between two parallel plates on a coarse mesh, without a body.
class PlateRun {
public:
    explicit PlateRun(const std::function<void(FlowSettings&, host::FlowRunSettings&)>& change = {})
        : mesh(ReadShipped(boxGeo, {{"n", 5}, {"kind", 1}})),
          objects(mesh, results.Text()),
          link(mesh, objects) {
        FlowSettings flow = FlowAtRe20(mesh);
        host::FlowRunSettings settings;
        settings.name = "plates";
        settings.outputDir = results.Text();
        if (change) {
            change(flow, settings);
        }
        run = std::make_unique<FlowRun>(
            mesh, objects, link, flow, settings,
            [](const host::FlowSolver&) { return host::ForceCoefficients{}; });
    }

    /// The error with which the run ends; empty if it converges.
    std::string Error() {
        const OutputCapture quiet;
        return ErrorOf([this] { run->Run(); });
    }

    /// The columns of the last line of the history.
    std::vector<double> LastOfHistory() const {
        std::istringstream lines(ReadFile(results.Path() / "history.csv"));
        std::string last;
        for (std::string line; std::getline(lines, line);) {
            last = line;
        }
        std::replace(last.begin(), last.end(), ',', ' ');
        std::istringstream columns(last);
        std::vector<double> values;
        for (double value = 0.0; columns >> value;) {
            values.push_back(value);
        }
        return values;
    }

    bool HasSeries() const {
        const std::string pvd = ReadFile(results.Path() / "VTK_Flow_Results.pvd");
        return pvd.find("<DataSet ") != std::string::npos;
    }

    const TempDirectory results;
    const host::Mesh mesh;
    host::HostObjects objects;
    host::OversetLink link;
    std::unique_ptr<FlowRun> run;
};

TEST(FlowRun, ConvergedRunMeetsEveryCriterion) {
    PlateRun plates;

    EXPECT_EQ(plates.Error(), "");

    const std::vector<double> last = plates.LastOfHistory();
    ASSERT_EQ(last.size(), 7u);  // the drag over the outer boundary is last
    EXPECT_EQ(last[0], plates.run->IterationCount());
    EXPECT_LT(last[1], 1e-7);  // change of the velocity
    EXPECT_LT(last[2], 1e-4);  // mass residual
    EXPECT_LT(last[5], 1.0);   // linear reduction
}

TEST(FlowRun, GoesOnUntilTheMassResidualIsSmall) {
    PlateRun loose([](FlowSettings&, host::FlowRunSettings& settings) {
        settings.limits = {1e3, 1e3};
    });
    PlateRun massAlone([](FlowSettings&, host::FlowRunSettings& settings) {
        settings.limits = {1e3, 1e-6};
    });

    EXPECT_EQ(loose.Error(), "");
    EXPECT_EQ(massAlone.Error(), "");

    EXPECT_EQ(loose.run->IterationCount(), 1);
    EXPECT_GT(massAlone.run->IterationCount(), 10);
    EXPECT_LT(massAlone.LastOfHistory()[2], 1e-6);
}

TEST(FlowRun, EndsWithTheReasonWhenTheIterationsAreUsedUp) {
    PlateRun plates([](FlowSettings&, host::FlowRunSettings& settings) {
        settings.limits = {1e3, 1e-30};
        settings.maxIterations = 3;
    });

    EXPECT_THAT(plates.Error(), AllOf(HasSubstr("not converged after 3 iterations: the mass"),
                                      HasSubstr("(limit 1.0e-30); the results are kept")));
}

/// Such a run does not change the velocity, so its change is 0 from the first iteration on.
TEST(FlowRun, SolverThatReturnsTheFirstGuessIsAnErrorAndKeepsTheResults) {
    PlateRun noIterations(
        [](FlowSettings& flow, host::FlowRunSettings&) { flow.maxSolverIterations = 0; });
    PlateRun noTolerance([](FlowSettings& flow, host::FlowRunSettings&) {
        flow.momentumSolver = MatrixSolver::Samg;
        flow.momentumTolerance = 1.0;
    });

    EXPECT_THAT(noIterations.Error(),
                AllOf(HasSubstr("iteration 1: the solver bicgstab returned the first guess of the "
                                "x momentum equation unchanged"),
                      HasSubstr("results up to then are kept")));
    EXPECT_THAT(noTolerance.Error(), HasSubstr("solver samg returned the first guess"));
    for (const PlateRun* plates : {&noIterations, &noTolerance}) {
        EXPECT_EQ(plates->LastOfHistory()[0], 1.0);
        EXPECT_TRUE(plates->HasSeries());
    }
}

}  // namespace
