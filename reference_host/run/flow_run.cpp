#include "reference_host/run/flow_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "reference_host/run/progress.h"

namespace host {

namespace {

constexpr double divergedMass = 1e3;  // mass residual over the inflow; a good run begins near 1

double CpuSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

}  // namespace

FlowRun::FlowRun(const Mesh& mesh, HostObjects& objects_, OversetLink& link,
                 const FlowSettings& flow_, const FlowRunSettings& settings_, Figures figures_)
    : objects(objects_),
      settings(settings_),
      relaxation(flow_.relaxation),
      countsPressure(flow_.pressureSolver == MatrixSolver::Bicgstab),
      figures(std::move(figures_)),
      flow(mesh, objects_, link, flow_),
      results(mesh, objects_, link, settings_.outputDir),
      history((std::filesystem::path(settings_.outputDir) / "history.csv").string()) {}

FlowRun::End FlowRun::Run() {
    const double start = CpuSeconds();
    const Interrupt interrupt;
    Write();
    const End end = Iterate(interrupt);
    seconds = CpuSeconds() - start;
    // Diverged fields are not written: they may contain NaN, which readers of .vtu files refuse.
    if (end != End::Diverged && lastWritten != iteration) {
        Write();
    }
    pvdPath = results.Finish();  // the toolbox prints what it merges
    history.RequireWhole();
    if (end == End::Diverged || end == End::OutOfIterations) {
        Fail(end);
    }
    return end;
}

FlowRun::End FlowRun::Iterate(const Interrupt& interrupt) {
    IterationProgress progress(settings.name, settings.convergedChange, std::cout,
                               StandardOutputIsTerminal());
    while (iteration < settings.maxIterations) {
        const FlowIteration done = flow.Iterate();
        ++iteration;
        pressureIterations += done.pressureIterations;
        mostPressureIterations = std::max(mostPressureIterations, done.pressureIterations);
        const ForceCoefficients now = figures(flow);
        history.Add(iteration, done.change, done.massResidual, now.cd, now.cl,
                    MeasureControl(flow, settings.forceUnit));
        progress.Done(done.change, fmt::format("mass {:.1e}, Cd {:.5f}, Cl {:.5f}",
                                               done.massResidual, now.cd, now.cl));
        // The negation makes NaN count as diverged.
        if (!(done.massResidual < divergedMass) || !std::isfinite(done.change)) {
            return End::Diverged;
        }
        if (done.change < settings.convergedChange) {
            return End::Converged;
        }
        if (iteration % settings.stepsEvery == 0) {
            Write();
        }
        if (interrupt.Requested()) {
            return End::Interrupted;
        }
    }
    return End::OutOfIterations;
}

void FlowRun::Write() {
    flow.Fields().Publish(objects);
    results.Write(iteration, iteration);
    lastWritten = iteration;
}

void FlowRun::Fail(End end) const {
    if (end == End::Diverged) {
        throw std::runtime_error(
            fmt::format("diverged in iteration {}: reduce solver.relaxation, now {:.3g}, or use a "
                        "scheme with more upwinding; the results up to then are kept",
                        iteration, relaxation));
    }
    throw std::runtime_error(
        fmt::format("not converged after {} iterations; the results are kept", iteration));
}

void FlowRun::PrintControl() const {
    host::PrintControl(MeasureControl(flow, settings.forceUnit), figures(flow).cd);
}

void FlowRun::PrintEffort() const {
    std::cout << fmt::format("  {:<20} {:15.2e}\n", "mass defect", flow.MassDefect())
              << fmt::format("  {:<20} {:15}\n", "outer iterations", iteration);
    if (countsPressure) {
        std::cout << fmt::format("  {:<20} {:15.1f}  at most {}\n", "pressure iterations",
                                 static_cast<double>(pressureIterations) / std::max(iteration, 1),
                                 mostPressureIterations);
    }
    std::cout << fmt::format("  {:<20} {:15.1f}\n", "CPU seconds", seconds);
}

int FlowRun::PrintEnd(End end) const {
    std::cout << fmt::format("Results: {} (time is the iteration), residuals: {}\n", pvdPath,
                             history.path);
    if (end != End::Interrupted) {
        return 0;
    }
    std::cout << "Interrupted after iteration " << iteration
              << ": the figures are not converged, but the results are complete.\n";
    return Interrupt::exitCode;
}

}  // namespace host
