#include "reference_host/cases/order_study.h"

#include <fmt/format.h>

#include <iostream>
#include <stdexcept>

namespace host {

namespace {

const Vec3 convectionVelocity(1.0, 0.6, 0.0);

/// Column "solver" of the table. SAMG does not report its iterations.
std::string IterationText(const SolveReport& solve) {
    return solve.iterations > 0 ? std::to_string(solve.iterations) : "-";
}

/// Prints one row: errors over a grid on a level, and their orders against the level before.
void PrintRow(const OrderStudy& study, const char* grid, const StudyLevel& level,
              const ErrorNorms& norms, const StudyLevel* before, const ErrorNorms* normsBefore) {
    const auto order = [&](double ErrorNorms::*norm) {
        return before ? fmt::format("{:6.2f}", Order(normsBefore->*norm, norms.*norm, before->size,
                                                     level.size))
                      : std::string();
    };
    PrintRowBeginning(study.scheme, study.kind, level.size, level.activeCells, grid);
    std::cout << fmt::format(" {:9.3e} {:>6}  {:9.3e} {:>6} {:>6}\n", norms.l2,
                             order(&ErrorNorms::l2), norms.max, order(&ErrorNorms::max),
                             IterationText(level.solve));
}

/// Measured L2 errors at n = 20 on kind 1 (single box) and kind 0 (overset pair).
struct Reference {
    double single, overset;
};

Reference ReferenceAt20(Scheme scheme) {
    switch (scheme) {
        case Scheme::Laplace:
        case Scheme::Diffusion:
            return {2.25e-4, 2.44e-4};
        case Scheme::UpwindCells:
            return {3.80e-2, 3.55e-2};
        case Scheme::UpwindStencils:
        case Scheme::Hybrid:
            return {3.80e-2, 3.53e-2};
        case Scheme::Central:
            return {3.38e-4, 3.96e-4};
        case Scheme::LinearUpwind:
            return {7.08e-4, 1.15e-3};
        default:
            return {8.79e-5, 2.03e-4};
    }
}

/// Both orders over one grid between two levels.
void CheckOrders(const std::string& grid, const ErrorNorms& coarse, const ErrorNorms& fine,
                 int coarseSize, int fineSize, const StudyLimits& limits,
                 std::vector<std::string>& misses) {
    const auto check = [&](const char* norm, double coarseError, double fineError, double limit) {
        CheckOrder(fmt::format("{} {}", grid, norm),
                   Order(coarseError, fineError, coarseSize, fineSize), limit, misses);
    };
    check("L2", coarse.l2, fine.l2, limits.orderL2);
    check("max", coarse.max, fine.max, limits.orderMax);
}

void CheckErrors(const std::string& name, const OrderStudy& study,
                 std::vector<std::string>& misses) {
    for (const StudyLevel& level : study.levels) {
        const StudyLimits limits = LimitsOf(study.scheme, study.kind, level.size);
        if (study.isPlane && limits.l2 && !(level.all.l2 <= *limits.l2)) {
            misses.push_back(fmt::format("{} n = {}: L2 error {:.3e}, the limit is {:.3e}", name,
                                         level.size, level.all.l2, *limits.l2));
        }
    }
}

}  // namespace

StudyLimits LimitsOf(Scheme scheme, std::optional<int> kind, int size) {
    StudyLimits limits{1.75, 1.5, std::nullopt};
    if (scheme == Scheme::Quick) {
        limits.orderL2 = 1.5;
    } else if (scheme == Scheme::UpwindCells || scheme == Scheme::UpwindStencils ||
               scheme == Scheme::Hybrid) {
        limits.orderL2 = 0.8;
        limits.orderMax = 0.65;
    }
    const Reference reference = ReferenceAt20(scheme);
    if (size == 20 && (kind == 0 || kind == 1)) {
        limits.l2 = 1.25 * (kind == 0 ? reference.overset : reference.single);
    }
    return limits;
}

void RequireLimits(std::optional<int> kind, const std::vector<int>& sizes, bool isPlane) {
    // Whether the error has a limit does not depend on the scheme.
    const bool hasErrorLimit =
        isPlane && !sizes.empty() && LimitsOf(Scheme::Diffusion, kind, sizes[0]).l2;
    if (sizes.size() < 2 && !hasErrorLimit) {
        throw std::runtime_error(
            "check: one size has no order, and the error has limits only on plane meshes of kind 0 "
            "and 1 at n = 20: give two sizes in study.n (--n)");
    }
}

double DefaultMu(Scheme scheme) {
    return Convects(scheme) ? 0.01 : 1.0;
}

LevelSolver::LevelSolver(const StudyMesh& level_) : level(level_), exact(WaveFor(level_.mesh)) {}

StudyLevel LevelSolver::Solve(Scheme scheme, double mu, MatrixSolver matrixSolver) {
    const ManufacturedRun result = SolveManufactured(level.mesh, level.objects, level.link, scheme,
                                                     exact, mu, convectionVelocity, matrixSolver);
    if (!result.solve.Converged()) {
        throw std::runtime_error(fmt::format(
            "{}, {}: not converged: residual {:.1e} after {} solver calls, the target is {:.1e}",
            level.place, Name(scheme), result.solve.finalResidual, result.solve.calls,
            result.solve.target));
    }
    if (level.series) {
        Publish(result.phi);
    }
    return Measure(result);
}

void LevelSolver::Publish(const std::vector<double>& phi) {
    for (int cell = 1; cell <= level.mesh.CellCount(); ++cell) {
        level.objects.pressure[cell] = phi[cell];
        level.objects.u[cell] = phi[cell] - exact.value(level.mesh.cellCentre[cell]);
    }
    ++stepCount;
    level.series->Write(stepCount, stepCount);
}

StudyLevel LevelSolver::Measure(const ManufacturedRun& result) const {
    StudyLevel measured;
    measured.size = level.size;
    measured.activeCells = level.ActiveCells();
    measured.all = Errors(level.mesh, level.link, result.phi, exact);
    for (const int grid : level.Grids()) {
        measured.byGrid.push_back(Errors(level.mesh, level.link, result.phi, exact, grid));
    }
    measured.solve = result.solve;
    return measured;
}

std::vector<std::string> Misses(const OrderStudy& study) {
    std::vector<std::string> misses;
    const std::string name = fmt::format("{} kind {}", Name(study.scheme), KindText(study.kind));
    CheckErrors(name, study, misses);
    if (study.levels.size() < 2) {
        return misses;
    }
    const StudyLevel& coarse = study.levels[study.levels.size() - 2];
    const StudyLevel& fine = study.levels.back();
    const StudyLimits limits = LimitsOf(study.scheme, study.kind, fine.size);
    CheckOrders(name + " all", coarse.all, fine.all, coarse.size, fine.size, limits, misses);
    for (std::size_t g = 0; g < fine.byGrid.size(); ++g) {
        CheckOrders(name + " " + GridName(g), coarse.byGrid[g], fine.byGrid[g], coarse.size,
                    fine.size, limits, misses);
    }
    return misses;
}

std::vector<std::string> Misses(const std::vector<OrderStudy>& studies) {
    std::vector<std::string> misses;
    for (const OrderStudy& study : studies) {
        const std::vector<std::string> own = Misses(study);
        misses.insert(misses.end(), own.begin(), own.end());
    }
    return misses;
}

void PrintTable(const std::vector<OrderStudy>& studies) {
    PrintRowHeading();
    std::cout << fmt::format(" {:>9} {:>6}  {:>9} {:>6} {:>6}\n", "L2 error", "order", "max error",
                             "order", "solver");
    for (const OrderStudy& study : studies) {
        const StudyLevel* before = nullptr;
        for (const StudyLevel& level : study.levels) {
            PrintRow(study, "all", level, level.all, before, before ? &before->all : nullptr);
            for (std::size_t g = 0; g < level.byGrid.size(); ++g) {
                PrintRow(study, GridName(g), level, level.byGrid[g], before,
                         before ? &before->byGrid[g] : nullptr);
            }
            before = &level;
        }
    }
}

}  // namespace host
