#include "reference_host/run/flow_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "reference_host/run/progress.h"

namespace host {

namespace {

double CpuSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

}  // namespace

FlowRun::FlowRun(const Mesh& mesh, HostObjects& objects_, OversetLink& link,
                 const FlowSettings& flow_, const FlowRunSettings& settings_, Figures figures_)
    : objects(objects_),
      settings(settings_),
      flowSettings(flow_),
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
    if (end != End::Converged && end != End::Interrupted) {
        Fail(end);
    }
    return end;
}

FlowRun::End FlowRun::Iterate(const Interrupt& interrupt) {
    IterationProgress progress(settings.name, settings.limits.change, std::cout,
                               StandardOutputIsTerminal());
    while (iteration < settings.maxIterations) {
        last = flow.Iterate();
        ++iteration;
        pressureIterations += last.pressure.iterations;
        mostPressureIterations = std::max(mostPressureIterations, last.pressure.iterations);
        progress.Done(last.change, Record());
        if (HasDiverged(last)) {
            return End::Diverged;
        }
        if (!IdleSolve(last, flowSettings).empty()) {
            return End::IdleSolver;
        }
        if (HasConverged(last, settings.limits)) {
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

/// Adds the last iteration to the history.
/// @return its figures for the progress line
std::string FlowRun::Record() {
    const double reduction = LargestReduction(last);
    std::string text = fmt::format("mass {:.1e}, linear {:.1e}", last.massResidual, reduction);
    if (!figures) {
        history.Add(iteration, last.change, last.massResidual, std::nullopt, std::nullopt,
                    reduction, {});
        return text;
    }
    const ForceCoefficients now = figures(flow);
    history.Add(iteration, last.change, last.massResidual, now.cd, now.cl, reduction,
                MeasureControl(flow, settings.forceUnit));
    return text + fmt::format(", Cd {:.5f}, Cl {:.5f}", now.cd, now.cl);
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
                        iteration, flowSettings.relaxation));
    }
    if (end == End::IdleSolver) {
        throw std::runtime_error(fmt::format("iteration {}: {}; the results up to then are kept",
                                             iteration, IdleSolve(last, flowSettings)));
    }
    throw std::runtime_error(
        fmt::format("not converged after {} iterations: {}; the results are "
                    "kept",
                    iteration, WhyNotConverged(last, settings.limits)));
}

void FlowRun::PrintControl() const {
    if (figures) {
        host::PrintControl(MeasureControl(flow, settings.forceUnit), figures(flow).cd);
    }
}

std::vector<std::string> FlowRun::ControlMisses() const {
    return figures ? host::ControlMisses(MeasureControl(flow, settings.forceUnit), figures(flow).cd)
                   : std::vector<std::string>();
}

void FlowRun::PrintEffort() const {
    std::cout << fmt::format("  {:<20} {:15.2e}\n", "mass defect", flow.MassDefect())
              << fmt::format("  {:<20} {:15}\n", "outer iterations", iteration);
    if (flowSettings.pressureSolver == MatrixSolver::Bicgstab) {  // SAMG reports no count
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
