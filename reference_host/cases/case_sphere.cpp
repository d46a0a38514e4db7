#include "reference_host/cases/case_sphere.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "reference_host/cases/benchmark_sphere.h"
#include "reference_host/link/body.h"
#include "reference_host/link/donor_table.h"
#include "reference_host/mesh/cell_size.h"
#include "reference_host/run/flow_run.h"

namespace host {

namespace {

FlowSettings SphereFlow(const SphereCase& run, const Mesh& mesh) {
    FlowSettings settings;
    settings.inlet = [](const Vec3&) { return benchmarksphere::Stream(); };
    settings.farWalls = benchmarksphere::Stream();
    settings.mu = benchmarksphere::viscosity;
    settings.scheme = run.scheme;
    settings.momentumSolver = run.matrixSolver;
    settings.pressureSolver = run.pressureSolver.value_or(run.matrixSolver);
    settings.relaxation = run.relaxation.value_or(DefaultRelaxation(CellsPerUnit(mesh)));
    return settings;
}

FlowRunSettings RunSettings(const SphereCase& run) {
    FlowRunSettings settings;
    settings.name = "sphere";
    settings.outputDir = run.outputDir;
    settings.stepsEvery = run.stepsEvery;
    settings.maxIterations = run.maxIterations;
    settings.convergedChange = 1e-6;  // the drag moves by less than 1e-5 from there on
    return settings;
}

std::optional<benchmarksphere::Limits> WantedLimits(const SphereCase& run, const Mesh& mesh) {
    if (!run.check) {
        return std::nullopt;
    }
    const int n = CellsPerUnit(mesh);
    const auto limits = benchmarksphere::LimitsOf(run.scheme, n);
    if (!limits) {
        throw std::runtime_error(fmt::format("--check has limits for {}, not for {} at n = {}",
                                             benchmarksphere::checkable, Name(run.scheme), n));
    }
    return limits;
}

void RequireSphere(const Mesh& mesh, const OversetLink& link, const std::string& meshFile) {
    if (mesh.IsQuasi2d()) {
        throw std::runtime_error(meshFile + ": one cell thick: a sphere needs three dimensions");
    }
    RequireBody(mesh, link, meshFile, "sphere");
}

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

void PrintTable(const SphereCase& run, const Mesh& mesh, const benchmarksphere::Result& result) {
    std::cout << fmt::format(
        "Sphere at Reynolds number 100, {} at {} background cells a "
        "diameter, {} cells:\n",
        Name(run.scheme), CellsPerUnit(mesh), mesh.CellCount());
    PrintComparisonHead();
    PrintComparison("Cd", result.cd, benchmarksphere::dragCoefficient);
    PrintComparison("recirculation length", result.recirculation,
                    benchmarksphere::recirculationLength);
    std::cout << fmt::format("  {:<20} {:15.2e}\n", "side force", result.sideForce);
}

}  // namespace

int RunSphere(const SphereCase& run) {
    PrepareOutputDirectory(run.outputDir);
    const Mesh mesh = ReadGrids(run.meshFile, run.parameters);
    const auto limits = WantedLimits(run, mesh);
    HostObjects objects(mesh, run.outputDir);
    OversetLink link(mesh, objects);
    RequireSphere(mesh, link, run.meshFile);
    WriteDonorTable(mesh, link, run.outputDir);
    FlowRun sphere(mesh, objects, link, SphereFlow(run, mesh), RunSettings(run),
                   [](const FlowSolver& flow) -> ForceCoefficients {
                       const Vec3 force = benchmarksphere::ForceCoefficient(flow);
                       return {force.x(), force.y()};
                   });
    const FlowRun::End end = sphere.Run();
    WriteWakeAxis(sphere.Flow(), run.outputDir);
    const benchmarksphere::Result result = benchmarksphere::Measure(sphere.Flow());
    PrintTable(run, mesh, result);
    sphere.PrintEffort();
    const int code = sphere.PrintEnd(end);
    if (code != 0 || !limits) {
        return code;
    }
    return ReportLimitMisses(benchmarksphere::Misses(result, *limits));
}

}  // namespace host
