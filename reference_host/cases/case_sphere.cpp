#include "reference_host/cases/case_sphere.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "reference_host/cases/benchmark_sphere.h"
#include "reference_host/mesh/cell_size.h"
#include "reference_host/run/comparison.h"

namespace host {

namespace {

void WriteWakeAxis(const FlowSolver& flow, const std::string& directory) {
    const std::string path = (std::filesystem::path(directory) / "wake_axis.csv").string();
    std::ofstream file(path);
    file << "x,u\n";
    for (const auto& [x, u] : benchmarksphere::WakeAxis(flow, 6.0, 0.02)) {
        file << fmt::format("{:.3f},{:.8g}\n", x, u);
    }
    if (!file.flush()) {
        throw std::runtime_error(path + ": cannot be written");
    }
}

class Sphere : public FlowProblem {
public:
    explicit Sphere(const SphereCase& run_) : run(run_) {}

    std::string Body() const override { return "sphere"; }

    void Require(const Mesh& mesh) override {
        if (mesh.IsQuasi2d()) {
            throw std::runtime_error(run.meshFile +
                                     ": one cell thick, but a sphere needs three dimensions");
        }
        RequireInletAndOutlet(mesh, run.meshFile);
    }

    void RequireLimits(const Mesh& mesh) override {
        const int n = CellsPerUnit(mesh);
        const benchmarksphere::Shell shell = benchmarksphere::ShellOf(mesh);
        limits = benchmarksphere::LimitsOf(run.scheme, shell, n);
        if (!limits) {
            throw std::runtime_error(
                fmt::format("check: there are limits for {}, but not for {} with {} at n = {}",
                            benchmarksphere::checkable, Name(run.scheme), Name(shell), n));
        }
    }

    FlowSettings Flow(const Mesh&) const override {
        FlowSettings settings;
        settings.inlet = [](const Vec3&) { return benchmarksphere::Stream(); };
        settings.walls = MovingFarWalls(benchmarksphere::Stream());
        settings.mu = benchmarksphere::viscosity;
        return settings;
    }

    /// The drag changes by less than 1e-5 from there on.
    double ConvergedChange() const override { return 1e-6; }

    double ForceUnit(const Mesh&) const override { return benchmarksphere::ForceUnit(); }

    void Report(const FlowRun& flowRun, const Mesh& mesh) override {
        WriteWakeAxis(flowRun.Flow(), run.outputDir);
        result = benchmarksphere::Measure(flowRun.Flow());
        PrintTable(mesh);
    }

    std::vector<std::string> Misses() const override {
        return benchmarksphere::Misses(result, *limits);
    }

private:
    void PrintTable(const Mesh& mesh) const {
        std::cout << fmt::format(
            "Sphere at Reynolds number 100, {} in a shell of {} at {} background cells per "
            "diameter, "
            "{} cells:\n",
            Name(run.scheme), Name(benchmarksphere::ShellOf(mesh)), CellsPerUnit(mesh),
            mesh.CellCount());
        PrintComparisonHead();
        PrintComparison("Cd", result.cd, benchmarksphere::dragCoefficient);
        PrintComparison("recirculation length", result.recirculation,
                        benchmarksphere::recirculationLength);
        std::cout << fmt::format("  {:<20} {:15.2e}\n", "side force", result.sideForce);
    }

    const SphereCase& run;
    std::optional<benchmarksphere::Limits> limits;  // only if they are to be checked
    benchmarksphere::Result result;
};

}  // namespace

SphereCase::SphereCase() {
    meshFile = ShippedMesh("sphere_overset.geo");
    outputDir = "sphere_results";
    maxIterations = 1000;
}

CaseOptions OptionsOf(SphereCase& run) {
    return {run.meshFile, run.parameters, FlowOptions(run)};
}

int RunSphere(const SphereCase& run) {
    Sphere sphere(run);
    return RunFlow(run, sphere);
}

}  // namespace host
