#include "reference_host/case_mms.h"

#include <fmt/format.h>

#include <cmath>
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "reference_host/progress.h"
#include "reference_host/result_series.h"

namespace host {

namespace {

const Vec3 carrier(1.0, 0.6, 0.0);

double MuOf(const MmsCase& run, Scheme scheme) {
    return run.mu.value_or(Convects(scheme) ? 0.01 : 1.0);
}

std::string RunName(Scheme scheme, std::optional<int> kind, int size) {
    return fmt::format("{}{}_n{}", Name(scheme), kind ? fmt::format("_kind{}", *kind) : "", size);
}

/// Solution as the scalar, error as the first component of the vector.
void WriteResult(const Mesh& mesh, HostObjects& objects, OversetLink& link,
                 const ManufacturedRun& result, const AnalyticField& exact) {
    ResultSeries series(mesh, objects, link, objects.gv.rootDir, "Solution", "Error");
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        objects.pressure[cell] = result.phi[cell];
        objects.u[cell] = result.phi[cell] - exact.value(mesh.cellCentre[cell]);
    }
    series.Write(0.0, 0);
    series.Finish();
}

MmsLevel RunLevel(const MmsCase& run, Scheme scheme, std::optional<int> kind, int size) {
    const std::string directory =
        run.outputDir.empty()
            ? std::string()
            : (std::filesystem::path(run.outputDir) / RunName(scheme, kind, size)).string();
    if (!directory.empty()) {
        PrepareOutputDirectory(directory);
    }
    MeshParameters parameters = run.parameters;
    parameters["n"] = size;
    if (kind) {
        parameters["kind"] = *kind;
    }
    const Mesh mesh = ReadMesh(run.meshFile, parameters);
    HostObjects objects(mesh, directory);
    OversetLink link(mesh, objects);
    const AnalyticField exact = WaveFor(mesh);
    const ManufacturedRun result =
        SolveManufactured(mesh, objects, link, scheme, exact, MuOf(run, scheme), carrier);
    if (!result.solve.Converged()) {
        throw std::runtime_error(
            fmt::format("{}, {}: residual {:.1e} after {} solver calls, wanted {:.1e}",
                        run.meshFile, RunName(scheme, kind, size), result.solve.finalResidual,
                        result.solve.calls, result.solve.target));
    }
    if (!directory.empty()) {
        WriteResult(mesh, objects, link, result, exact);
    }
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

std::string OrderText(double coarse, double fine, const MmsLevel& from, const MmsLevel& to) {
    return fmt::format("{:6.2f}", Order(coarse, fine, from.size, to.size));
}

/// One row: errors of a grid on a level, and their orders against the level before.
void PrintRow(Scheme scheme, std::optional<int> kind, const char* grid, const MmsLevel& level,
              const ErrorNorms& norms, const MmsLevel* before, const ErrorNorms* normsBefore) {
    std::cout << fmt::format(
        "{:<12} {:>4} {:>4} {:>7}  {:<10} {:9.3e} {:>6}  {:9.3e} {:>6} {:>6}\n", Name(scheme),
        kind ? std::to_string(*kind) : "-", level.size, level.activeCells, grid, norms.l2,
        before ? OrderText(normsBefore->l2, norms.l2, *before, level) : "", norms.max,
        before ? OrderText(normsBefore->max, norms.max, *before, level) : "",
        level.solve.iterations);
}

/// One scheme on one kind of mesh.
struct Study {
    Scheme scheme;
    std::optional<int> kind;
    std::vector<MmsLevel> levels;
};

void PrintTable(const std::vector<Study>& studies) {
    static const char* const gridNames[] = {"background", "component1", "component2"};
    std::cout << fmt::format("{:<12} {:>4} {:>4} {:>7}  {:<10} {:>9} {:>6}  {:>9} {:>6} {:>6}\n",
                             "scheme", "kind", "n", "cells", "grid", "L2 error", "order",
                             "max error", "order", "solver");
    for (const auto& [scheme, kind, levels] : studies) {
        const MmsLevel* before = nullptr;
        for (const MmsLevel& level : levels) {
            PrintRow(scheme, kind, "all", level, level.all, before,
                     before ? &before->all : nullptr);
            for (std::size_t g = 0; g < level.byGrid.size(); ++g) {
                PrintRow(scheme, kind, gridNames[g], level, level.byGrid[g], before,
                         before ? &before->byGrid[g] : nullptr);
            }
            before = &level;
        }
    }
}

/// Runs every scheme on every kind, with a line of progress each.
std::vector<Study> RunStudies(const MmsCase& run) {
    std::vector<std::optional<int>> kinds(run.kinds.begin(), run.kinds.end());
    if (kinds.empty()) {
        kinds.push_back(std::nullopt);
    }
    std::vector<Study> studies;
    Progress progress("mms", static_cast<int>(kinds.size() * run.schemes.size()), std::cout,
                      StandardOutputIsTerminal());
    for (const std::optional<int>& kind : kinds) {
        for (const Scheme scheme : run.schemes) {
            studies.push_back({scheme, kind, RunLevels(run, scheme, kind)});
            progress.StepDone(RunName(scheme, kind, run.sizes.back()));
        }
    }
    return studies;
}

/// L2 errors of kind 1 (single box) and kind 0 (overset pair) at n = 20, as this discretisation
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

void CheckOrder(std::vector<std::string>& misses, const std::string& what, double order,
                double limit) {
    if (!(order >= limit)) {
        misses.push_back(
            fmt::format("{}: order {:.2f}, at least {:.2f} wanted", what, order, limit));
    }
}

}  // namespace

MmsLimits LimitsOf(Scheme scheme, int kind, int size) {
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

std::vector<std::string> Misses(Scheme scheme, int kind, const std::vector<MmsLevel>& levels) {
    std::vector<std::string> misses;
    for (const MmsLevel& level : levels) {
        const MmsLimits limits = LimitsOf(scheme, kind, level.size);
        if (limits.l2 && !(level.all.l2 <= *limits.l2)) {
            misses.push_back(
                fmt::format("{} kind {} n = {}: L2 error {:.3e}, at most {:.3e} wanted",
                            Name(scheme), kind, level.size, level.all.l2, *limits.l2));
        }
    }
    if (levels.size() < 2) {
        return misses;
    }
    const MmsLevel& coarse = levels[levels.size() - 2];
    const MmsLevel& fine = levels.back();
    const MmsLimits limits = LimitsOf(scheme, kind, fine.size);
    const auto check = [&](const char* grid, const ErrorNorms& from, const ErrorNorms& to) {
        const std::string what = fmt::format("{} kind {} {}", Name(scheme), kind, grid);
        CheckOrder(misses, what + " L2", Order(from.l2, to.l2, coarse.size, fine.size),
                   limits.orderL2);
        CheckOrder(misses, what + " max", Order(from.max, to.max, coarse.size, fine.size),
                   limits.orderMax);
    };
    check("all", coarse.all, fine.all);
    for (std::size_t g = 0; g < fine.byGrid.size(); ++g) {
        check(g == 0 ? "background" : "component", coarse.byGrid[g], fine.byGrid[g]);
    }
    return misses;
}

std::vector<MmsLevel> RunLevels(const MmsCase& run, Scheme scheme, std::optional<int> kind) {
    std::vector<MmsLevel> levels;
    for (const int size : run.sizes) {
        levels.push_back(RunLevel(run, scheme, kind, size));
    }
    return levels;
}

int RunMms(const MmsCase& run) {
    const std::vector<Study> studies = RunStudies(run);
    PrintTable(studies);
    if (!run.outputDir.empty()) {
        std::cout << "Results: " << run.outputDir
                  << " (scalar: the solution; x component of the vector: its error)\n";
    }
    if (!run.check) {
        return 0;
    }
    int missCount = 0;
    for (const Study& study : studies) {
        for (const std::string& miss :
             Misses(study.scheme, study.kind.value_or(-1), study.levels)) {
            std::cerr << "reference_host: " << miss << '\n';
            ++missCount;
        }
    }
    std::cout << (missCount == 0 ? "All limits reached.\n" : "Limits missed, see above.\n");
    return missCount == 0 ? 0 : 1;
}

}  // namespace host
