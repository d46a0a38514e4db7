#include "reference_host/cases/case_mms.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "reference_host/run/progress.h"
#include "reference_host/run/result_series.h"

namespace host {

namespace {

const Vec3 carrier(1.0, 0.6, 0.0);

std::string KindText(std::optional<int> kind) {
    return kind ? std::to_string(*kind) : "-";
}

/// Name of cavity `grid` + 1, as the mesh files have it.
const char* GridName(std::size_t grid) {
    static const char* const names[] = {"background", "component1", "component2"};
    return names[grid];
}

MeshParameters ParametersOf(const MmsCase& run, std::optional<int> kind, int size) {
    MeshParameters parameters = run.parameters;
    parameters["n"] = size;
    if (run.depth) {
        parameters["nz"] = std::max(1.0, std::round(*run.depth * size));
    }
    if (kind) {
        parameters["kind"] = *kind;
    }
    return parameters;
}

/// Directory of the results of one mesh, made; empty if none are wanted.
std::string PrepareResults(const MmsCase& run, std::optional<int> kind, int size) {
    if (run.outputDir.empty()) {
        return {};
    }
    const std::string name = fmt::format("{}n{}", kind ? fmt::format("kind{}_", *kind) : "", size);
    const std::string directory = (std::filesystem::path(run.outputDir) / name).string();
    PrepareOutputDirectory(directory);
    return directory;
}

/// One mesh of the study, read and cut once for all schemes.
class MmsMesh {
public:
    MmsMesh(const MmsCase& run_, std::optional<int> kind, int size_)
        : run(run_),
          size(size_),
          directory(PrepareResults(run_, kind, size_)),
          mesh(ReadGrids(run_.meshFile, ParametersOf(run_, kind, size_))),
          objects(mesh, directory),
          link(mesh, objects),
          exact(WaveFor(mesh)) {
        if (!directory.empty()) {
            series =
                std::make_unique<ResultSeries>(mesh, objects, link, directory, "Solution", "Error");
        }
    }

    MmsLevel Solve(Scheme scheme) {
        const ManufacturedRun result =
            SolveManufactured(mesh, objects, link, scheme, exact,
                              run.mu.value_or(DefaultMu(scheme)), carrier, run.matrixSolver);
        RequireConverged(result.solve,
                         fmt::format("{}, n = {}, {}", run.meshFile, size, Name(scheme)));
        if (series) {
            Publish(result.phi);
        }
        return Measure(result);
    }

    /// Closes the result series, if there is one.
    void Finish() {
        if (series) {
            series->Finish();
        }
    }

private:
    /// The next step of the series: the solution, and its error as the vector's x component.
    void Publish(const std::vector<double>& phi) {
        for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
            objects.pressure[cell] = phi[cell];
            objects.u[cell] = phi[cell] - exact.value(mesh.cellCentre[cell]);
        }
        ++stepCount;
        series->Write(stepCount, stepCount);
    }

    MmsLevel Measure(const ManufacturedRun& result) const {
        MmsLevel level;
        level.size = size;
        for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
            level.activeCells += link.IsActive(cell) ? 1 : 0;
        }
        level.all = Errors(mesh, link, result.phi, exact);
        for (int cavity = 1; link.IsOverset() && cavity <= mesh.GridCount(); ++cavity) {
            level.byGrid.push_back(Errors(mesh, link, result.phi, exact, cavity));
        }
        level.solve = result.solve;
        return level;
    }

    const MmsCase& run;
    const int size;
    const std::string directory;
    const Mesh mesh;
    HostObjects objects;
    OversetLink link;
    const AnalyticField exact;
    std::unique_ptr<ResultSeries> series;  // null if no results are wanted
    int stepCount = 0;
};

std::string IterationText(const SolveReport& solve) {
    return solve.iterations > 0 ? std::to_string(solve.iterations) : "-";  // SAMG tells none
}

/// One row: errors of a grid on a level, and their orders against the level before.
void PrintRow(const MmsStudy& study, const char* grid, const MmsLevel& level,
              const ErrorNorms& norms, const MmsLevel* before, const ErrorNorms* normsBefore) {
    const auto order = [&](double ErrorNorms::*norm) {
        return before ? fmt::format("{:6.2f}", Order(normsBefore->*norm, norms.*norm, before->size,
                                                     level.size))
                      : std::string();
    };
    std::cout << fmt::format(
        "{:<12} {:>4} {:>4} {:>7}  {:<10} {:9.3e} {:>6}  {:9.3e} {:>6} {:>6}\n", Name(study.scheme),
        KindText(study.kind), level.size, level.activeCells, grid, norms.l2, order(&ErrorNorms::l2),
        norms.max, order(&ErrorNorms::max), IterationText(level.solve));
}

/// L2 errors at n = 20 on kind 1 (single box) and kind 0 (overset pair), as this discretisation
/// gave them when it was designed.
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

/// Both orders of one grid between two levels.
void CheckOrders(const std::string& grid, const ErrorNorms& coarse, const ErrorNorms& fine,
                 int coarseSize, int fineSize, const MmsLimits& limits,
                 std::vector<std::string>& misses) {
    const auto check = [&](const char* norm, double coarseError, double fineError, double limit) {
        const double order = Order(coarseError, fineError, coarseSize, fineSize);
        if (!(order >= limit)) {  // true for not-a-number as well
            misses.push_back(fmt::format("{} {}: order {:.2f}, at least {:.2f} wanted", grid, norm,
                                         order, limit));
        }
    };
    check("L2", coarse.l2, fine.l2, limits.orderL2);
    check("max", coarse.max, fine.max, limits.orderMax);
}

std::vector<MmsStudy> RunStudies(const MmsCase& run) {
    std::vector<std::optional<int>> kinds(run.kinds.begin(), run.kinds.end());
    if (kinds.empty()) {
        kinds.push_back(std::nullopt);
    }
    std::vector<MmsStudy> studies;
    Progress progress("mms", static_cast<int>(kinds.size()), std::cout, StandardOutputIsTerminal());
    for (const std::optional<int>& kind : kinds) {
        for (MmsStudy& study : RunKind(run, kind)) {
            studies.push_back(std::move(study));
        }
        progress.StepDone("kind " + KindText(kind));
    }
    return studies;
}

}  // namespace

MmsLimits LimitsOf(Scheme scheme, std::optional<int> kind, int size) {
    MmsLimits limits{1.75, 1.5, std::nullopt};
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

double Order(double coarseError, double fineError, int coarseSize, int fineSize) {
    return std::log(coarseError / fineError) / std::log(static_cast<double>(fineSize) / coarseSize);
}

std::vector<std::string> Misses(const MmsStudy& study) {
    std::vector<std::string> misses;
    const std::string name = fmt::format("{} kind {}", Name(study.scheme), KindText(study.kind));
    for (const MmsLevel& level : study.levels) {
        const MmsLimits limits = LimitsOf(study.scheme, study.kind, level.size);
        if (study.isPlane && limits.l2 && !(level.all.l2 <= *limits.l2)) {
            misses.push_back(fmt::format("{} n = {}: L2 error {:.3e}, at most {:.3e} wanted", name,
                                         level.size, level.all.l2, *limits.l2));
        }
    }
    if (study.levels.size() < 2) {
        return misses;
    }
    const MmsLevel& coarse = study.levels[study.levels.size() - 2];
    const MmsLevel& fine = study.levels.back();
    const MmsLimits limits = LimitsOf(study.scheme, study.kind, fine.size);
    CheckOrders(name + " all", coarse.all, fine.all, coarse.size, fine.size, limits, misses);
    for (std::size_t g = 0; g < fine.byGrid.size(); ++g) {
        CheckOrders(name + " " + GridName(g), coarse.byGrid[g], fine.byGrid[g], coarse.size,
                    fine.size, limits, misses);
    }
    return misses;
}

double DefaultMu(Scheme scheme) {
    return Convects(scheme) ? 0.01 : 1.0;
}

void RequireConverged(const SolveReport& solve, const std::string& what) {
    if (!solve.Converged()) {
        throw std::runtime_error(
            fmt::format("{}: residual {:.1e} after {} solver calls, wanted {:.1e}", what,
                        solve.finalResidual, solve.calls, solve.target));
    }
}

void PrintTable(const std::vector<MmsStudy>& studies) {
    std::cout << fmt::format("{:<12} {:>4} {:>4} {:>7}  {:<10} {:>9} {:>6}  {:>9} {:>6} {:>6}\n",
                             "scheme", "kind", "n", "cells", "grid", "L2 error", "order",
                             "max error", "order", "solver");
    for (const MmsStudy& study : studies) {
        const MmsLevel* before = nullptr;
        for (const MmsLevel& level : study.levels) {
            PrintRow(study, "all", level, level.all, before, before ? &before->all : nullptr);
            for (std::size_t g = 0; g < level.byGrid.size(); ++g) {
                PrintRow(study, GridName(g), level, level.byGrid[g], before,
                         before ? &before->byGrid[g] : nullptr);
            }
            before = &level;
        }
    }
}

int ReportMisses(const std::vector<MmsStudy>& studies) {
    int missCount = 0;
    for (const MmsStudy& study : studies) {
        for (const std::string& miss : Misses(study)) {
            std::cerr << "reference_host: " << miss << '\n';
            ++missCount;
        }
    }
    std::cout << (missCount == 0 ? "All limits reached.\n" : "Limits missed, see above.\n");
    return missCount == 0 ? 0 : 1;
}

std::vector<MmsStudy> RunKind(const MmsCase& run, std::optional<int> kind) {
    std::vector<MmsStudy> studies;
    for (const Scheme scheme : run.schemes) {
        studies.push_back({scheme, kind, {}, !run.depth});
    }
    for (const int size : run.sizes) {
        MmsMesh mesh(run, kind, size);
        for (MmsStudy& study : studies) {
            study.levels.push_back(mesh.Solve(study.scheme));
        }
        mesh.Finish();
    }
    return studies;
}

int RunMms(const MmsCase& run) {
    const std::vector<MmsStudy> studies = RunStudies(run);
    PrintTable(studies);
    if (!run.outputDir.empty()) {
        std::cout << "Results: " << run.outputDir
                  << ", a series per mesh, one step a scheme (scalar: the solution; x component "
                     "of the vector: its error)\n";
    }
    if (!run.check) {
        return 0;
    }
    return ReportMisses(studies);
}

}  // namespace host
