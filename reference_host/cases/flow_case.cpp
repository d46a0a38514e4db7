#include "reference_host/cases/flow_case.h"

#include <stdexcept>

#include "reference_host/link/body.h"
#include "reference_host/link/donor_table.h"
#include "reference_host/mesh/cell_size.h"
#include "reference_host/physics/forces.h"
#include "reference_host/run/comparison.h"

namespace host {

namespace {

FlowSettings SolverSettings(const FlowCase& run, const FlowProblem& problem, const Mesh& mesh) {
    FlowSettings settings = problem.Flow(mesh);
    settings.scheme = run.scheme;
    settings.conservation = run.conservation;
    settings.momentumSolver = run.matrixSolver;
    settings.pressureSolver = run.pressureSolver.value_or(run.matrixSolver);
    settings.relaxation = run.relaxation.value_or(DefaultRelaxation(CellsPerUnit(mesh)));
    return settings;
}

FlowRunSettings RunSettings(const FlowCase& run, const FlowProblem& problem, const Mesh& mesh) {
    FlowRunSettings settings;
    settings.name = problem.Body();
    settings.outputDir = run.outputDir;
    settings.stepsEvery = run.stepsEvery;
    settings.maxIterations = run.maxIterations;
    settings.limits.change = problem.ConvergedChange();
    settings.forceUnit = problem.ForceUnit(mesh);
    return settings;
}

/// The force coefficients of an iteration; none without a body.
FlowRun::Figures ForceFigures(const Mesh& mesh, const OversetLink& link,
                              const FlowProblem& problem) {
    if (!HasSeparateBody(mesh, link)) {
        return nullptr;
    }
    return [&problem](const FlowSolver& now) { return problem.Coefficients(now); };
}

}  // namespace

std::vector<Option> FlowOptions(FlowCase& run) {
    const Range count = Range::Between(1, 1000000);
    return {
        SchemeOption(run.scheme),
        NumberOption({"solver.relaxation", "--relaxation",
                      "relaxation factor of the momentum equations; by default 0.9 up to 10 cells "
                      "per unit length (a diameter), 0.95 at 20, 0.975 at 40"},
                     run.relaxation, Range::Between(0.01, 0.999)),
        SolverOption(run.matrixSolver),
        PressureSolverOption(run.pressureSolver),
        ConservationOption(run.conservation),
        IntegerOption({"solver.iterations", "--iterations",
                       "maximum number of iterations; a run that has not converged by then fails, "
                       "and it converges when velocity change and mass residual are small and "
                       "every linear solve lowers its residual"},
                      run.maxIterations, count),
        OutputOption(run.outputDir),
        IntegerOption(
            {"output.steps_every", "--steps-every", "iterations between two result files"},
            run.stepsEvery, count),
        CheckOption(run.check),
    };
}

ForceCoefficients FlowProblem::Coefficients(const FlowSolver& flow) const {
    const Momentum& momentum = flow.MomentumPart();
    const Vec3 force = ForceOnBody(momentum, flow.Fields()) / ForceUnit(momentum.builder.mesh);
    return {force.x(), force.y()};
}

void RequireInletAndOutlet(const Mesh& mesh, const std::string& meshFile) {
    if (mesh.FaceCount(Boundary::Inlet) == 0) {
        throw std::runtime_error(meshFile + ": the mesh has no face in the group \"inlet\"");
    }
    if (mesh.FaceCount(Boundary::Outlet) == 0) {
        throw std::runtime_error(meshFile +
                                 ": the mesh has no face in the group \"outlet\", and the fluid "
                                 "that enters could not leave");
    }
}

int RunFlow(const FlowCase& run, FlowProblem& problem) {
    PrepareOutputDirectory(run.outputDir);
    const Mesh mesh = ReadGrids(run.meshFile, run.parameters);
    problem.Require(mesh);
    if (run.check) {
        problem.RequireLimits(mesh);
    }
    HostObjects objects(mesh, run.outputDir);
    OversetLink link(mesh, objects);
    if (problem.NeedsBody()) {
        RequireSeparateBody(mesh, link, run.meshFile, problem.Body());
    }
    WriteDonorTable(mesh, link, run.outputDir);
    FlowRun flow(mesh, objects, link, SolverSettings(run, problem, mesh),
                 RunSettings(run, problem, mesh), ForceFigures(mesh, link, problem));
    const FlowRun::End end = flow.Run();
    problem.Report(flow, mesh);
    flow.PrintControl();
    flow.PrintEffort();
    const int code = flow.PrintEnd(end);
    if (code != 0 || !run.check) {
        return code;
    }
    std::vector<std::string> misses = problem.Misses();
    if (run.conservation == Conservation::MassAndMomentum) {
        const std::vector<std::string> ofControl = flow.ControlMisses();
        misses.insert(misses.end(), ofControl.begin(), ofControl.end());
    }
    return ReportMisses(misses);
}

}  // namespace host
