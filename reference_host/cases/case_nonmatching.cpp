#include "reference_host/cases/case_nonmatching.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "nonmatching/art_nonmatching_tools.h"
#include "reference_host/cases/order_study.h"
#include "reference_host/mesh/mesh_geometry.h"
#include "reference_host/run/comparison.h"

namespace host {

namespace {

const Choices<WholeFaces> wholeFaces = {
    {"none", WholeFaces::None}, {"block0", WholeFaces::Block0}, {"block1", WholeFaces::Block1}};

/// Creates the directory for the results of one mesh.
std::string PrepareLevel(const NonmatchingCase& run, std::size_t level) {
    const auto directory =
        std::filesystem::path(run.outputDir) / fmt::format("n{}_m{}", run.n[level], run.m[level]);
    PrepareOutputDirectory(directory.string());
    return directory.string();
}

/// Appends the errors on one mesh to each study.
void RunLevel(const NonmatchingCase& run, std::size_t level, std::vector<OrderStudy>& studies) {
    const std::string directory = PrepareLevel(run, level);
    MeshParameters parameters = run.parameters;
    parameters["n"] = run.n[level];
    parameters["m"] = run.m[level];
    BlockPair pair(run.meshFile, parameters, run.whole, directory);
    pair.Settle();
    std::cout << fmt::format(
        "n = {}, m = {}: {} interface faces of block0, {} of block1; cells closed to {:.1e}\n",
        run.n[level], run.m[level], pair.sideCounts[0], pair.sideCounts[1], LargestGap(pair.mesh));
    // The merge into a .pvd takes every record of its directory, so the solution has one without
    // the records of the pictures.
    const std::string solution = (std::filesystem::path(directory) / "solution").string();
    PrepareOutputDirectory(solution);
    ResultSeries series(pair.mesh, pair.objects, pair.link, solution, "Solution", "Error");
    LevelSolver solver(StudyMesh{pair.mesh, pair.objects, pair.link, run.n[level],
                                 fmt::format("{}, n = {}", run.meshFile, run.n[level]), &series});
    for (OrderStudy& study : studies) {
        study.levels.push_back(
            solver.Solve(study.scheme, DefaultMu(study.scheme), run.matrixSolver));
    }
    series.Finish();
}

void RequireSizes(const NonmatchingCase& run) {
    if (run.n.size() != run.m.size()) {
        throw std::runtime_error(
            fmt::format("study.n (--n) has {} values and study.m (--m) has {}: give one m for "
                        "each n",
                        run.n.size(), run.m.size()));
    }
    // Equal sizes have no order: the logarithm of their ratio is 0.
    if (std::adjacent_find(run.n.begin(), run.n.end(), std::greater_equal<>()) != run.n.end()) {
        throw std::runtime_error(fmt::format(
            "study.n (--n) must ascend from coarse to fine, not {}", fmt::join(run.n, ",")));
    }
    if (run.check) {
        RequireLimits(std::nullopt, run.n, /*isPlane=*/true);
    }
}

}  // namespace

BlockPair::BlockPair(const std::string& meshFile, const MeshParameters& parameters,
                     WholeFaces whole, const std::string& resultDir)
    : BlockPair(ReadMesh(meshFile, parameters), whole, resultDir) {}

BlockPair::BlockPair(Mesh&& read, WholeFaces whole, const std::string& resultDir)
    : mesh(std::move(read)),
      sideCounts(JoinInterface(mesh, whole)),
      objects(mesh, resultDir),
      link(mesh, objects) {}

void BlockPair::Settle() {
    art_nonmatching_tools tools;
    tools.SetFVM(&objects.gv, &objects.fvm);
    tools.CheckNonmatchingFaceVTKData(/*beforePreprocess=*/true);
    tools.NonmatchingPreprocess();
    tools.CheckNonmatchingFaceVTKData(/*beforePreprocess=*/false);
    TakeAreas(objects, mesh);
}

CaseOptions OptionsOf(NonmatchingCase& run) {
    const Range cells = Range::Between(1, 1000);
    CaseOptions options(
        run.meshFile, run.parameters,
        {
            IntegersOption({"study.n", "--n",
                            "values of the variable n of the .geo: cells of block0 per unit "
                            "length, coarse to fine"},
                           run.n, cells),
            IntegersOption({"study.m", "--m",
                            "values of the variable m of the .geo: cells of block1 per unit "
                            "length, one for each n"},
                           run.m, cells),
            ChoiceOption<WholeFaces>(
                {"study.whole", "--whole", "block whose interface faces are not cut"}, run.whole,
                wholeFaces, "none"),
            SchemesOption(run.schemes),
            SolverOption(run.matrixSolver),
            OutputOption(run.outputDir),
            CheckOption(run.check),
        });
    options.settle = [](const CaseOptions& given) {
        given.RefuseParameter("n", "study.n");
        given.RefuseParameter("m", "study.m");
    };
    return options;
}

int RunNonmatching(const NonmatchingCase& run) {
    RequireSizes(run);
    std::vector<OrderStudy> studies;
    for (const Scheme scheme : run.schemes) {
        studies.push_back({scheme, std::nullopt, {}});
    }
    for (std::size_t level = 0; level < run.n.size(); ++level) {
        RunLevel(run, level, studies);
    }
    PrintTable(studies);
    std::cout << "Results: " << run.outputDir
              << ", a directory per mesh: the interface before and after, and in solution/ a "
                 "series with one step per scheme\n";
    return run.check ? ReportMisses(Misses(studies)) : 0;
}

}  // namespace host
