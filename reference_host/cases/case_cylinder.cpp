#include "reference_host/cases/case_cylinder.h"

#include <fmt/format.h>

#include <iostream>
#include <stdexcept>

#include "reference_host/link/body.h"
#include "reference_host/link/donor_table.h"
#include "reference_host/mesh/cell_size.h"
#include "reference_host/run/flow_run.h"

namespace host {

namespace {

/// The published values hold for this run.
bool IsPublished(const CylinderCase& run) {
    return run.reynolds == benchmark2d1::reynolds;
}

FlowSettings CylinderFlow(const CylinderCase& run, const Mesh& mesh) {
    FlowSettings settings;
    settings.inlet = benchmark2d1::Inflow(mesh);
    settings.mu = 1.0 / run.reynolds;
    settings.scheme = run.scheme;
    settings.momentumSolver = run.matrixSolver;
    settings.pressureSolver = run.pressureSolver.value_or(run.matrixSolver);
    settings.relaxation = run.relaxation.value_or(DefaultRelaxation(CellsPerUnit(mesh)));
    return settings;
}

FlowRunSettings RunSettings(const CylinderCase& run) {
    FlowRunSettings settings;
    settings.name = "cylinder";
    settings.outputDir = run.outputDir;
    settings.stepsEvery = run.stepsEvery;
    settings.maxIterations = run.maxIterations;
    return settings;
}

/// The limits to check against.
std::optional<benchmark2d1::Limits> WantedLimits(const CylinderCase& run, const Mesh& mesh) {
    if (!run.check) {
        return std::nullopt;
    }
    const int n = CellsPerUnit(mesh);
    const auto limits = benchmark2d1::LimitsOf(run.scheme, n);
    if (!limits || !IsPublished(run)) {
        throw std::runtime_error(fmt::format(
            "--check has limits for {} at Reynolds number {:g}, not for {} at n = {} "
            "and Reynolds number {:g}",
            benchmark2d1::checkable, benchmark2d1::reynolds, Name(run.scheme), n, run.reynolds));
    }
    return limits;
}

void PrintTable(const CylinderCase& run, const Mesh& mesh, const benchmark2d1::Result& result) {
    const bool published = IsPublished(run);
    std::cout << fmt::format("Benchmark 2D-1, {} at {} cells a diameter, {} cells:\n",
                             Name(run.scheme), CellsPerUnit(mesh), mesh.CellCount());
    if (published) {
        PrintComparisonHead();
    } else {
        std::cout << fmt::format("  Reynolds number {:g}: nothing published to compare with\n",
                                 run.reynolds);
    }
    const auto reference = [published](double value) {
        return published ? std::optional<double>(value) : std::nullopt;
    };
    PrintComparison("Cd", result.cd, reference(benchmark2d1::dragCoefficient));
    PrintComparison("Cl", result.cl, reference(benchmark2d1::liftCoefficient));
    PrintComparison("pressure difference", result.dp, reference(benchmark2d1::pressureDifference));
}

}  // namespace

int RunCylinder(const CylinderCase& run) {
    PrepareOutputDirectory(run.outputDir);
    const Mesh mesh = ReadGrids(run.meshFile, run.parameters);
    const auto limits = WantedLimits(run, mesh);
    HostObjects objects(mesh, run.outputDir);
    OversetLink link(mesh, objects);
    RequireBody(mesh, link, run.meshFile, "cylinder");
    WriteDonorTable(mesh, link, run.outputDir);
    FlowRun cylinder(mesh, objects, link, CylinderFlow(run, mesh), RunSettings(run),
                     [](const FlowSolver& flow) -> ForceCoefficients {
                         const benchmark2d1::Result now = benchmark2d1::Measure(flow);
                         return {now.cd, now.cl};
                     });
    const FlowRun::End end = cylinder.Run();
    benchmark2d1::Result result = benchmark2d1::Measure(cylinder.Flow());
    result.iterations = cylinder.IterationCount();
    PrintTable(run, mesh, result);
    cylinder.PrintEffort();
    const int code = cylinder.PrintEnd(end);
    if (code != 0 || !limits) {
        return code;
    }
    return ReportLimitMisses(benchmark2d1::Misses(result, *limits));
}

}  // namespace host
