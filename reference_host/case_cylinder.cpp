#include "reference_host/case_cylinder.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <vector>

#include "reference_host/body.h"
#include "reference_host/cell_size.h"
#include "reference_host/donor_table.h"
#include "reference_host/flow_solver.h"
#include "reference_host/interrupt.h"
#include "reference_host/progress.h"
#include "reference_host/residual_history.h"
#include "reference_host/result_series.h"

namespace host {

namespace {

constexpr double convergedChange = 1e-7;  // of the velocity in one iteration
constexpr double divergedMass = 1e3;      // mass residual in inflows; a sound run starts near one

/// The published values hold for this run.
bool IsPublished(const CylinderCase& run) {
    return run.reynolds == benchmark2d1::reynolds;
}

double CpuSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

enum class End { Converged, Interrupted, Diverged, OutOfIterations };

/// The run: the solver with everything that watches it.
class CylinderRun {
public:
    CylinderRun(const CylinderCase& run_, const Mesh& mesh_, HostObjects& objects_,
                OversetLink& link, double relaxation)
        : run(run_),
          mesh(mesh_),
          objects(objects_),
          flow(mesh_, objects_, link, Settings(run_, mesh_, relaxation)),
          results(mesh_, objects_, link, run_.outputDir),
          history((std::filesystem::path(run_.outputDir) / "history.csv").string()) {}

    /// Iterates up to the end, whichever it is, and completes the files.
    End Run() {
        const double start = CpuSeconds();
        const Interrupt interrupt;
        Write();
        const End end = Iterate(interrupt);
        seconds = CpuSeconds() - start;
        // A diverged field is no result, and not-a-number no entry of a file.
        if (end != End::Diverged && lastWritten != iteration) {
            Write();
        }
        pvdPath = results.Finish();  // the toolbox prints what it merges
        return end;
    }

    benchmark2d1::Result Measure() const {
        benchmark2d1::Result result = benchmark2d1::Measure(flow);
        result.iterations = iteration;
        return result;
    }

    int IterationCount() const { return iteration; }
    void PrintTable() const;
    void PrintFiles() const {
        std::cout << fmt::format("Results: {} (time is the iteration), residuals: {}\n", pvdPath,
                                 history.path);
    }

private:
    static FlowSettings Settings(const CylinderCase& run, const Mesh& mesh, double relaxation) {
        FlowSettings settings;
        settings.inlet = benchmark2d1::Inflow(mesh);
        settings.mu = 1.0 / run.reynolds;
        settings.scheme = run.scheme;
        settings.relaxation = relaxation;
        return settings;
    }

    End Iterate(const Interrupt& interrupt) {
        IterationProgress progress("cylinder", convergedChange, std::cout,
                                   StandardOutputIsTerminal());
        while (iteration < run.maxIterations) {
            const FlowIteration done = flow.Iterate();
            ++iteration;
            pressureIterations += done.pressureIterations;
            mostPressureIterations = std::max(mostPressureIterations, done.pressureIterations);
            const benchmark2d1::Result now = benchmark2d1::Measure(flow);
            history.Add(iteration, done.change, done.massResidual, now.cd, now.cl);
            progress.Done(done.change, fmt::format("mass {:.1e}, Cd {:.5f}, Cl {:.5f}",
                                                   done.massResidual, now.cd, now.cl));
            // Negated, so that not-a-number counts as diverged.
            if (!(done.massResidual < divergedMass) || !std::isfinite(done.change)) {
                return End::Diverged;
            }
            if (done.change < convergedChange) {
                return End::Converged;
            }
            if (iteration % run.stepsEvery == 0) {
                Write();
            }
            if (interrupt.Requested()) {
                return End::Interrupted;
            }
        }
        return End::OutOfIterations;
    }

    void Write() {
        flow.Fields().Publish(objects);
        results.Write(iteration, iteration);
        lastWritten = iteration;
    }

    const CylinderCase& run;
    const Mesh& mesh;
    HostObjects& objects;
    FlowSolver flow;
    ResultSeries results;
    ResidualHistory history;
    std::string pvdPath;
    int iteration = 0;
    int lastWritten = 0;
    int pressureIterations = 0;
    int mostPressureIterations = 0;
    double seconds = 0.0;
};

void PrintRow(const char* name, double value, std::optional<double> published) {
    std::cout << fmt::format("  {:<20} {:15.10f}", name, value);
    if (published) {
        std::cout << fmt::format(" {:15.10f} {:+10.3f} %", *published,
                                 100.0 * (value / *published - 1.0));
    }
    std::cout << '\n';
}

void CylinderRun::PrintTable() const {
    const benchmark2d1::Result result = Measure();
    const bool published = IsPublished(run);
    std::cout << fmt::format("Benchmark 2D-1, {} at {} cells a diameter, {} cells:\n",
                             Name(run.scheme), CellsPerDiameter(mesh), mesh.CellCount());
    if (published) {
        std::cout << fmt::format("  {:<20} {:>15} {:>15} {:>12}\n", "", "computed", "published",
                                 "deviation");
    } else {
        std::cout << fmt::format("  Reynolds number {:g}: nothing published to compare with\n",
                                 run.reynolds);
    }
    const auto reference = [published](double value) {
        return published ? std::optional<double>(value) : std::nullopt;
    };
    PrintRow("Cd", result.cd, reference(benchmark2d1::dragCoefficient));
    PrintRow("Cl", result.cl, reference(benchmark2d1::liftCoefficient));
    PrintRow("pressure difference", result.dp, reference(benchmark2d1::pressureDifference));
    std::cout << fmt::format("  {:<20} {:15.2e}\n", "mass defect", result.massDefect)
              << fmt::format("  {:<20} {:15}\n", "outer iterations", iteration)
              << fmt::format("  {:<20} {:15.1f}  at most {}\n", "pressure iterations",
                             static_cast<double>(pressureIterations) / std::max(iteration, 1),
                             mostPressureIterations)
              << fmt::format("  {:<20} {:15.1f}\n", "CPU seconds", seconds);
}

/// The limits to check against.
std::optional<benchmark2d1::Limits> WantedLimits(const CylinderCase& run, const Mesh& mesh) {
    if (!run.check) {
        return std::nullopt;
    }
    const int n = CellsPerDiameter(mesh);
    const auto limits = benchmark2d1::LimitsOf(run.scheme, n);
    if (!limits || !IsPublished(run)) {
        throw std::runtime_error(fmt::format(
            "--check has limits for {} at Reynolds number {:g}, not for {} at n = {} "
            "and Reynolds number {:g}",
            benchmark2d1::checkable, benchmark2d1::reynolds, Name(run.scheme), n, run.reynolds));
    }
    return limits;
}

void RequireBody(const Mesh& mesh, const OversetLink& link, const std::string& meshFile) {
    if (!link.IsOverset() || BodyFaces(mesh, link).empty()) {
        throw std::runtime_error(meshFile + ": no cylinder: no face of the group \"wall\" lies " +
                                 "beside a component");
    }
}

[[noreturn]] void Fail(End end, int iterations, double relaxation) {
    if (end == End::Diverged) {
        throw std::runtime_error(
            fmt::format("diverged in iteration {}: lower the relaxation, now {:.3g}, or use a "
                        "scheme with more upwinding; results up to then are kept",
                        iterations, relaxation));
    }
    throw std::runtime_error(
        fmt::format("not converged after {} iterations; results are kept", iterations));
}

int CheckLimits(const benchmark2d1::Result& result, const benchmark2d1::Limits& limits) {
    const std::vector<std::string> misses = benchmark2d1::Misses(result, limits);
    for (const std::string& miss : misses) {
        std::cerr << "reference_host: " << miss << '\n';
    }
    std::cout << (misses.empty() ? "All limits reached.\n" : "Limits missed, see above.\n");
    return misses.empty() ? 0 : 1;
}

}  // namespace

int CellsPerDiameter(const Mesh& mesh) {
    const std::vector<double> edges = EdgeLengths(mesh);
    double smallest = std::numeric_limits<double>::max();
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (mesh.cavity[cell] == 1) {
            smallest = std::min(smallest, edges[cell]);
        }
    }
    return static_cast<int>(std::lround(1.0 / smallest));
}

int RunCylinder(const CylinderCase& run) {
    PrepareOutputDirectory(run.outputDir);
    const Mesh mesh = ReadMesh(run.meshFile, run.parameters);
    const auto limits = WantedLimits(run, mesh);
    HostObjects objects(mesh, run.outputDir);
    OversetLink link(mesh, objects);
    RequireBody(mesh, link, run.meshFile);
    WriteDonorTable(mesh, link, run.outputDir);
    const double relaxation = run.relaxation.value_or(DefaultRelaxation(CellsPerDiameter(mesh)));
    CylinderRun cylinder(run, mesh, objects, link, relaxation);
    const End end = cylinder.Run();
    if (end == End::Diverged || end == End::OutOfIterations) {
        Fail(end, cylinder.IterationCount(), relaxation);
    }
    cylinder.PrintTable();
    cylinder.PrintFiles();
    if (end == End::Interrupted) {
        std::cout << "Interrupted after iteration " << cylinder.IterationCount()
                  << ": the figures are not converged, the results up to there are complete.\n";
        return Interrupt::exitCode;
    }
    return limits ? CheckLimits(cylinder.Measure(), *limits) : 0;
}

}  // namespace host
