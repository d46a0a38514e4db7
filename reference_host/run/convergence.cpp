#include "reference_host/run/convergence.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace host {

namespace {

constexpr double divergedMass = 1e3;  // mass residual; a good run begins near 1

/// A linear solve with what an error line says about it.
struct NamedSolve {
    std::string equation;
    LinearSolve solve;
    MatrixSolver solver;
    const char* option;  // that chooses the solver
};

std::vector<NamedSolve> SolvesOf(const FlowIteration& iteration, const FlowSettings& settings) {
    constexpr std::array<char, 3> axes = {'x', 'y', 'z'};
    std::vector<NamedSolve> solves;
    for (std::size_t component = 0; component < iteration.momentum.size(); ++component) {
        solves.push_back({fmt::format("{} momentum", axes[component]),
                          iteration.momentum[component], settings.momentumSolver, "solver.matrix"});
    }
    solves.push_back({"pressure correction", iteration.pressure, settings.pressureSolver,
                      "solver.pressure_matrix"});
    return solves;
}

/// The linear solves that did not make progress, by equation.
std::vector<std::string> FailedEquations(const FlowIteration& iteration) {
    std::vector<std::string> equations;
    for (const NamedSolve& named : SolvesOf(iteration, {})) {
        if (!named.solve.MadeProgress()) {
            equations.push_back(named.equation);
        }
    }
    return equations;
}

}  // namespace

bool HasConverged(const FlowIteration& iteration, const ConvergenceLimits& limits) {
    return iteration.change < limits.change && iteration.massResidual < limits.mass &&
           FailedEquations(iteration).empty();
}

bool HasDiverged(const FlowIteration& iteration) {
    // The negation makes NaN count as diverged.
    return !(iteration.massResidual < divergedMass) || !std::isfinite(iteration.change);
}

double LargestReduction(const FlowIteration& iteration) {
    double largest = iteration.pressure.Reduction();
    for (const LinearSolve& solve : iteration.momentum) {
        largest = std::max(largest, solve.Reduction());
    }
    return largest;
}

std::string WhyNotConverged(const FlowIteration& iteration, const ConvergenceLimits& limits) {
    std::vector<std::string> reasons;
    if (!(iteration.change < limits.change)) {
        reasons.push_back(fmt::format("the velocity changes by {:.1e} (limit {:.1e})",
                                      iteration.change, limits.change));
    }
    if (!(iteration.massResidual < limits.mass)) {
        reasons.push_back(fmt::format("the mass residual is {:.1e} (limit {:.1e})",
                                      iteration.massResidual, limits.mass));
    }
    const std::vector<std::string> failed = FailedEquations(iteration);
    if (!failed.empty()) {
        reasons.push_back(fmt::format("the linear solver does not lower the residual of {}",
                                      fmt::join(failed, ", ")));
    }
    return fmt::format("{}", fmt::join(reasons, " and "));
}

std::string IdleSolve(const FlowIteration& iteration, const FlowSettings& settings) {
    for (const NamedSolve& named : SolvesOf(iteration, settings)) {
        if (named.solve.IsIdle()) {
            const MatrixSolver other =
                named.solver == MatrixSolver::Samg ? MatrixSolver::Bicgstab : MatrixSolver::Samg;
            return fmt::format(
                "the solver {} returned the first guess of the {} equation unchanged although its "
                "residual is {:.1e} (the level of rounding errors is {:.1e}): try {}={}, a smaller "
                "solver.relaxation or a scheme with more upwinding",
                Name(named.solver), named.equation, named.solve.firstResidual, named.solve.rounding,
                named.option, Name(other));
        }
    }
    return "";
}

}  // namespace host
