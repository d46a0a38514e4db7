#include "reference_host/cases/case_mms.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <utility>

#include "reference_host/run/comparison.h"
#include "reference_host/run/progress.h"

namespace host {

namespace {

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

/// Creates the directory for the results of one mesh.
/// @return its path; empty if no results are wanted
std::string PrepareResults(const MmsCase& run, std::optional<int> kind, int size) {
    if (run.outputDir.empty()) {
        return {};
    }
    const std::string name = fmt::format("{}n{}", kind ? fmt::format("kind{}_", *kind) : "", size);
    const std::string directory = (std::filesystem::path(run.outputDir) / name).string();
    PrepareOutputDirectory(directory);
    return directory;
}

double MuOf(const MmsCase& run, Scheme scheme) {
    return run.mu.value_or(run.flow ? FlowLevelSolver::defaultMu : DefaultMu(scheme));
}

/// Appends the errors on one mesh to each study.
/// @tparam Solver  LevelSolver or FlowLevelSolver, whose studies these are
template <class Solver, class Study>
void RunLevel(const MmsCase& run, std::optional<int> kind, int size, std::vector<Study>& studies) {
    const std::string directory = PrepareResults(run, kind, size);
    const Mesh mesh = ReadGrids(run.meshFile, ParametersOf(run, kind, size));
    HostObjects objects(mesh, directory);
    OversetLink link(mesh, objects);
    std::unique_ptr<ResultSeries> series;
    if (!directory.empty()) {
        series = std::make_unique<ResultSeries>(mesh, objects, link, directory,
                                                run.flow ? "PressureError" : "Solution",
                                                run.flow ? "VelocityError" : "Error");
    }
    Solver level(StudyMesh{mesh, objects, link, size, fmt::format("{}, n = {}", run.meshFile, size),
                           series.get()});
    for (Study& study : studies) {
        study.levels.push_back(
            level.Solve(study.scheme, MuOf(run, study.scheme), run.matrixSolver));
    }
    if (series) {
        series->Finish();
    }
}

/// The kinds of mesh to run; one without a number if the mesh has no kinds.
std::vector<std::optional<int>> KindsOf(const MmsCase& run) {
    if (run.kinds.empty()) {
        return {std::nullopt};
    }
    return {run.kinds.begin(), run.kinds.end()};
}

/// Runs all kinds of mesh with RunKind() or RunFlowKind().
template <class Study>
std::vector<Study> RunStudies(const MmsCase& run,
                              std::vector<Study> (*runKind)(const MmsCase&, std::optional<int>)) {
    const std::vector<std::optional<int>> kinds = KindsOf(run);
    std::vector<Study> studies;
    Progress progress("mms", static_cast<int>(kinds.size()), std::cout, StandardOutputIsTerminal());
    for (const std::optional<int>& kind : kinds) {
        for (Study& study : runKind(run, kind)) {
            studies.push_back(std::move(study));
        }
        progress.StepDone("kind " + KindText(kind));
    }
    return studies;
}

void PrintPlace(const MmsCase& run) {
    if (run.outputDir.empty()) {
        return;
    }
    std::cout << fmt::format(
        "Results: {}, a series per mesh, one step per scheme ({})\n", run.outputDir,
        run.flow ? "scalar: the error of the pressure; vector: that of the velocity"
                 : "scalar: the solution; x component of the vector: its error");
}

int RunFlowMms(const MmsCase& run) {
    if (run.check && run.sizes.size() < 2) {
        throw std::runtime_error("check: one size has no order: give two sizes in study.n (--n)");
    }
    const std::vector<FlowStudy> studies = RunStudies(run, RunFlowKind);
    PrintTable(studies);
    PrintPlace(run);
    return run.check ? ReportMisses(Misses(studies)) : 0;
}

/// A flow has convection: the default is linear upwind.
void SettleFlow(MmsCase& run, const CaseOptions& options) {
    if (!options.IsGiven("schemes.transport")) {
        run.schemes = {Scheme::LinearUpwind};
    }
    for (const Scheme scheme : run.schemes) {
        if (!Convects(scheme)) {
            throw std::runtime_error(
                fmt::format("schemes.transport (--scheme): a flow has convection, and {} has none",
                            Name(scheme)));
        }
    }
}

/// The default kinds are those of the shipped mesh: another mesh has none unless they are given.
void Settle(MmsCase& run, const CaseOptions& options) {
    if (options.IsGiven("mesh.file") && !options.IsGiven("study.kind")) {
        run.kinds.clear();
    }
    if (run.flow) {
        SettleFlow(run, options);
    }
    options.RefuseParameter("n", "study.n");
    if (!run.kinds.empty()) {
        options.RefuseParameter("kind", "study.kind");
    }
    if (run.depth) {
        options.RefuseParameter("nz", "study.depth");
    }
    std::sort(run.sizes.begin(), run.sizes.end());
    run.sizes.erase(std::unique(run.sizes.begin(), run.sizes.end()), run.sizes.end());
}

}  // namespace

CaseOptions OptionsOf(MmsCase& run) {
    CaseOptions options(
        run.meshFile, run.parameters,
        {
            IntegersOption({"study.kind", "--kind",
                            "values of the variable kind of the .geo; on a mesh of your own it is "
                            "set only if this option is given"},
                           run.kinds, Range::Any()),
            IntegersOption(
                {"study.n", "--n", "values of the variable n of the .geo: cells per unit length"},
                run.sizes, Range::Between(1, 1000)),
            NumberOption({"study.depth", "--depth",
                          "thickness of the mesh, with cells as fine as in the plane; by default "
                          "the mesh is one cell thick"},
                         run.depth, Range::AboveZero()),
            FlagOption({"study.flow", "--flow",
                        "velocity, pressure and force of a flow instead of a scalar; the default "
                        "scheme is then lud"},
                       run.flow),
            SchemesOption(run.schemes),
            NumberOption({"physics.mu", "--mu",
                          "diffusion coefficient; by default 1, with convection 0.01; viscosity of "
                          "a flow; by default 0.05"},
                         run.mu, Range::AboveZero()),
            SolverOption(run.matrixSolver),
            OutputOption(run.outputDir,
                         "directory of the result files; none are written unless it is given"),
            CheckOption(run.check),
        });
    options.settle = [&run](const CaseOptions& given) { Settle(run, given); };
    return options;
}

std::vector<OrderStudy> RunKind(const MmsCase& run, std::optional<int> kind) {
    std::vector<OrderStudy> studies;
    for (const Scheme scheme : run.schemes) {
        studies.push_back({scheme, kind, {}, !run.depth});
    }
    for (const int size : run.sizes) {
        RunLevel<LevelSolver>(run, kind, size, studies);
    }
    return studies;
}

std::vector<FlowStudy> RunFlowKind(const MmsCase& run, std::optional<int> kind) {
    std::vector<FlowStudy> studies;
    for (const Scheme scheme : run.schemes) {
        studies.push_back({scheme, kind, {}});
    }
    for (const int size : run.sizes) {
        RunLevel<FlowLevelSolver>(run, kind, size, studies);
    }
    return studies;
}

int RunMms(const MmsCase& run) {
    if (run.flow) {
        return RunFlowMms(run);
    }
    if (run.check) {
        for (const std::optional<int>& kind : KindsOf(run)) {
            RequireLimits(kind, run.sizes, !run.depth);
        }
    }
    const std::vector<OrderStudy> studies = RunStudies(run, RunKind);
    PrintTable(studies);
    PrintPlace(run);
    return run.check ? ReportMisses(Misses(studies)) : 0;
}

}  // namespace host
