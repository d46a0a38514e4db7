#include "reference_host/cases/case_cylinder.h"

#include <fmt/format.h>

#include <iostream>
#include <stdexcept>

#include "reference_host/mesh/cell_size.h"
#include "reference_host/run/comparison.h"

namespace host {

namespace {

class Cylinder : public FlowProblem {
public:
    explicit Cylinder(const CylinderCase& run_) : run(run_) {}

    std::string Body() const override { return "cylinder"; }

    void Require(const Mesh& mesh) override { RequireInletAndOutlet(mesh, run.meshFile); }

    void RequireLimits(const Mesh& mesh) override {
        if (mesh.GridCount() == 1) {
            throw std::runtime_error("check: the limits are for an overset pair, not for one grid");
        }
        const int n = CellsPerUnit(mesh);
        limits = benchmark2d1::LimitsOf(run.scheme, n);
        if (!limits || !IsPublished()) {
            throw std::runtime_error(fmt::format(
                "check: there are limits for {} at Reynolds number {:g}, but not for {} at n = {} "
                "and Reynolds number {:g}",
                benchmark2d1::checkable, benchmark2d1::reynolds, Name(run.scheme), n,
                run.reynolds));
        }
    }

    FlowSettings Flow(const Mesh& mesh) const override {
        FlowSettings settings;
        settings.inlet = benchmark2d1::Inflow(mesh);
        settings.mu = 1.0 / run.reynolds;
        return settings;
    }

    double ConvergedChange() const override { return 1e-7; }

    double ForceUnit(const Mesh& mesh) const override { return benchmark2d1::ForceUnit(mesh); }

    void Report(const FlowRun& flowRun, const Mesh& mesh) override {
        result = benchmark2d1::Measure(flowRun.Flow());
        result.iterations = flowRun.IterationCount();
        PrintTable(mesh);
    }

    std::vector<std::string> Misses() const override {
        return benchmark2d1::Misses(result, *limits);
    }

private:
    /// True if the published values hold for this run.
    bool IsPublished() const { return run.reynolds == benchmark2d1::reynolds; }

    void PrintTable(const Mesh& mesh) const {
        std::cout << fmt::format("Benchmark 2D-1, {} at {} cells per diameter, {} cells:\n",
                                 Name(run.scheme), CellsPerUnit(mesh), mesh.CellCount());
        if (IsPublished()) {
            PrintComparisonHead();
        } else {
            std::cout << fmt::format(
                "  Reynolds number {:g}: there are no published values to compare with\n",
                run.reynolds);
        }
        const auto print = [this](const char* name, double value, double published) {
            PrintComparison(name, value,
                            IsPublished() ? std::optional<double>(published) : std::nullopt);
        };
        print("Cd", result.cd, benchmark2d1::dragCoefficient);
        print("Cl", result.cl, benchmark2d1::liftCoefficient);
        print("pressure difference", result.dp, benchmark2d1::pressureDifference);
    }

    const CylinderCase& run;
    std::optional<benchmark2d1::Limits> limits;  // only if they are to be checked
    benchmark2d1::Result result;
};

}  // namespace

CylinderCase::CylinderCase() {
    meshFile = ShippedMesh("channel_cylinder_overset.geo");
    outputDir = "cylinder_results";
}

CaseOptions OptionsOf(CylinderCase& run) {
    std::vector<Option> list = FlowOptions(run);
    list.push_back(NumberOption({"physics.reynolds", "--reynolds",
                                 "Reynolds number; the published values and the limits are for 20"},
                                run.reynolds, Range::AboveZero()));
    return {run.meshFile, run.parameters, std::move(list)};
}

int RunCylinder(const CylinderCase& run) {
    Cylinder cylinder(run);
    return RunFlow(run, cylinder);
}

}  // namespace host
