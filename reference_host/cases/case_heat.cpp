#include "reference_host/cases/case_heat.h"

#include <fmt/format.h>

#include <algorithm>
#include <iostream>
#include <stdexcept>

#include "reference_host/cases/common_options.h"
#include "reference_host/link/body.h"
#include "reference_host/link/donor_table.h"
#include "reference_host/run/interrupt.h"
#include "reference_host/run/progress.h"
#include "reference_host/run/result_series.h"

namespace host {

namespace {

constexpr double reduction = 1e-10;  // of the true residual, in every step
constexpr double stepGrowth = 1.5;   // the temperature changes more slowly as it spreads
constexpr int maxSteps = 1000;  // the time stays finite: the last step is 1e176 times the first

/// Temperature 1 on the body, 0 on inlet and other walls, no heat through the outlet.
BoundaryConditions HeatConditions(const Mesh& mesh, const OversetLink& link) {
    return {mesh, link, [&](Boundary kind, int face) -> GhostCondition {
                if (kind == Boundary::Outlet) {
                    return {GhostCondition::Kind::ZeroGradient, 0.0};
                }
                return {GhostCondition::Kind::Value, IsBody(mesh, link, kind, face) ? 1.0 : 0.0};
            }};
}

std::string StatusLine(double time, const SolveReport& solve, const HeatBalance& balance) {
    return fmt::format("t = {:.4g}, heat from the body {:.4g}, residual {:.1e}, {} iterations",
                       time, balance.body, solve.finalResidual, solve.iterations);
}

void PrintBalance(const HeatBalance& balance, bool perDepth) {
    std::cout << fmt::format(
        "Heat balance of the steady state ({}):\n"
        "  in  through the body    {:12.6f}\n"
        "  out through the inlet   {:12.6f}\n"
        "  out through the walls   {:12.6f}\n"
        "  out through the outlet  {:12.6f}\n"
        "  in - out, relative      {:12.2e}\n",
        perDepth ? "per unit time and depth" : "per unit time", balance.body, balance.inlet,
        balance.walls, balance.outlet, balance.Defect());
}

struct MarchEnd {
    double time = 0.0;
    bool interrupted = false;
    std::string miss;  // the first step that did not converge, as a sentence; empty if all did
};

std::string MissText(int step, bool steady, const SolveReport& solve) {
    return fmt::format("{} did not converge: residual {:.1e}, the target is {:.1e}",
                       steady ? "the steady state" : fmt::format("time step {}", step),
                       solve.finalResidual, solve.target);
}

/// Makes the time steps, then solves the steady state, and publishes each of them.
MarchEnd March(const HeatCase& run, HeatProblem& heat, ResultSeries& results) {
    const Interrupt interrupt;
    Progress progress("heat", run.steps + 1, std::cout, StandardOutputIsTerminal());
    MarchEnd end;
    double step = run.firstStep;
    for (int i = 1; i <= run.steps + 1 && !end.interrupted; ++i, step *= stepGrowth) {
        const bool steady = i > run.steps;
        end.time += step;
        const SolveReport solve = heat.Advance(steady ? 0.0 : step);
        if (!solve.Converged() && end.miss.empty()) {
            end.miss = MissText(i, steady, solve);
        }
        heat.Publish();
        results.Write(end.time, i);
        progress.StepDone((steady ? "steady, " : "") + StatusLine(end.time, solve, heat.Balance()));
        end.interrupted = !steady && interrupt.Requested();
    }
    return end;
}

}  // namespace

HeatProblem::HeatProblem(const Mesh& mesh_, HostObjects& objects_, const OversetLink& link,
                         MatrixSolver matrixSolver)
    : mesh(mesh_),
      objects(objects_),
      conditions(HeatConditions(mesh_, link)),
      solver(mesh_, objects_, link, Scheme::Diffusion, matrixSolver),
      temperature(objects_.CellAndGhostCount() + 1, 0.0) {}

SolveReport HeatProblem::Advance(double step) {
    const double storage = step > 0.0 ? 1.0 / step : 0.0;
    solver.Assemble(conditions, /*mu=*/1.0, Vec3::Zero(), storage);
    std::vector<double> source(mesh.CellCount() + 1, 0.0);
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        source[cell] = storage * mesh.volume[cell] * temperature[cell];
    }
    return solver.Solve(conditions, source, temperature, reduction);
}

void HeatProblem::Publish() {
    std::copy(temperature.begin(), temperature.end(), objects.pressure.begin());
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        const Vec3 flux = -solver.builder.Gradient(cell).Apply(temperature);
        objects.u[cell] = flux[0];
        objects.v[cell] = flux[1];
        objects.w[cell] = flux[2];
    }
}

HeatBalance HeatProblem::Balance() const {
    const StencilBuilder& builder = solver.builder;
    HeatBalance balance;
    const auto conductedOut = [&](Boundary kind, int face) {
        return builder.IsSilent(kind, face)
                   ? 0.0
                   : -builder.AtBoundary(kind, face).normal.Apply(temperature);
    };
    for (int face = 1; face <= mesh.FaceCount(Boundary::Inlet); ++face) {
        balance.inlet += conductedOut(Boundary::Inlet, face);
    }
    for (int face = 1; face <= mesh.FaceCount(Boundary::Wall); ++face) {
        switch (RoleOf(mesh, builder.link, face)) {
            case WallRole::Body:
                balance.body -= conductedOut(Boundary::Wall, face);
                break;
            case WallRole::Other:
                balance.walls += conductedOut(Boundary::Wall, face);
                break;
            case WallRole::Overset:
                break;
        }
    }
    // The outlet stays 0: its coefficient is 0 in the matrix as well.
    const double depth = mesh.IsQuasi2d() ? mesh.Depth() : 1.0;
    for (double* part : {&balance.body, &balance.inlet, &balance.walls}) {
        *part /= depth;
    }
    return balance;
}

CaseOptions OptionsOf(HeatCase& run) {
    return {run.meshFile,
            run.parameters,
            {
                IntegerOption({"solver.steps", "--steps", "time steps before the steady state"},
                              run.steps, Range::Between(0, maxSteps)),
                NumberOption({"solver.first_step", "--first-step", "size of the first time step"},
                             run.firstStep, Range::Between(1e-9, 1e3)),
                SolverOption(run.matrixSolver),
                OutputOption(run.outputDir),
            }};
}

int RunHeat(const HeatCase& run) {
    PrepareOutputDirectory(run.outputDir);
    const Mesh mesh = ReadGrids(run.meshFile, run.parameters);
    HostObjects objects(mesh, run.outputDir);
    OversetLink link(mesh, objects);
    RequireBody(mesh, link, run.meshFile, "nothing to heat");
    WriteDonorTable(mesh, link, run.outputDir);
    HeatProblem heat(mesh, objects, link, run.matrixSolver);
    ResultSeries results(mesh, objects, link, run.outputDir, "Temperature", "HeatFlux");
    const MarchEnd end = March(run, heat, results);
    if (!end.interrupted) {
        PrintBalance(heat.Balance(), mesh.IsQuasi2d());
    }
    const std::string series = results.Finish();  // the toolbox prints what it merges
    std::cout << "Results: " << series
              << (link.IsOverset() ? " (Pressure is the temperature, Velocity the heat flux)\n"
                                   : "\n");
    if (end.interrupted) {
        std::cout << fmt::format(
            "Interrupted at t = {:.4g}: the results up to this time are complete.\n", end.time);
        return Interrupt::exitCode;
    }
    if (!end.miss.empty()) {
        throw std::runtime_error(run.meshFile + ": " + end.miss);
    }
    return 0;
}

}  // namespace host
