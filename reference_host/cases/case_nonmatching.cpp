#include "reference_host/cases/case_nonmatching.h"

#include <fmt/format.h>

#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "nonmatching/art_nonmatching_tools.h"
#include "reference_host/mesh/mesh_geometry.h"
#include "reference_host/run/result_series.h"

namespace host {

namespace {

const Vec3 carrier(1.0, 0.6, 0.0);

std::string PrepareLevel(const NonmatchingCase& run, std::size_t level) {
    const auto directory =
        std::filesystem::path(run.outputDir) / fmt::format("n{}_m{}", run.n[level], run.m[level]);
    PrepareOutputDirectory(directory.string());
    return directory.string();
}

/// One scheme on one mesh; the solution becomes the next step of the series, with its error as the
/// vector's x component.
MmsLevel SolveOn(BlockPair& pair, const NonmatchingCase& run, Scheme scheme, int size, int step,
                 ResultSeries& series) {
    const AnalyticField exact = WaveFor(pair.mesh);
    const ManufacturedRun result =
        SolveManufactured(pair.mesh, pair.objects, pair.link, scheme, exact, DefaultMu(scheme),
                          carrier, run.matrixSolver);
    RequireConverged(result.solve, fmt::format("{}, n = {}, {}", run.meshFile, size, Name(scheme)));
    for (int cell = 1; cell <= pair.mesh.CellCount(); ++cell) {
        pair.objects.pressure[cell] = result.phi[cell];
        pair.objects.u[cell] = result.phi[cell] - exact.value(pair.mesh.cellCentre[cell]);
    }
    series.Write(step, step);
    MmsLevel level;
    level.size = size;
    level.activeCells = pair.mesh.CellCount();
    level.all = Errors(pair.mesh, pair.link, result.phi, exact);
    level.solve = result.solve;
    return level;
}

/// Appends one level to each study.
void RunLevel(const NonmatchingCase& run, std::size_t level, std::vector<MmsStudy>& studies) {
    const std::string directory = PrepareLevel(run, level);
    MeshParameters parameters = run.parameters;
    parameters["n"] = run.n[level];
    parameters["m"] = run.m[level];
    BlockPair pair(run.meshFile, parameters, run.whole, directory);
    pair.Settle();
    std::cout << fmt::format(
        "n = {}, m = {}: {} interface faces of block0, {} of block1; cells closed to {:.1e}\n",
        run.n[level], run.m[level], pair.sideCounts[0], pair.sideCounts[1], LargestGap(pair.mesh));
    // In a directory of its own, since the merge into a .pvd would take the pictures in.
    const std::string solution = (std::filesystem::path(directory) / "solution").string();
    PrepareOutputDirectory(solution);
    ResultSeries series(pair.mesh, pair.objects, pair.link, solution, "Solution", "Error");
    int step = 0;
    for (MmsStudy& study : studies) {
        study.levels.push_back(SolveOn(pair, run, study.scheme, run.n[level], ++step, series));
    }
    series.Finish();
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

int RunNonmatching(const NonmatchingCase& run) {
    if (run.n.size() != run.m.size()) {
        throw std::runtime_error(fmt::format(
            "--n has {} values and --m has {}: give one m for each n", run.n.size(), run.m.size()));
    }
    std::vector<MmsStudy> studies;
    for (const Scheme scheme : run.schemes) {
        studies.push_back({scheme, std::nullopt, {}});
    }
    for (std::size_t level = 0; level < run.n.size(); ++level) {
        RunLevel(run, level, studies);
    }
    PrintTable(studies);
    std::cout << "Results: " << run.outputDir
              << ", a directory per mesh: the interface before and after, and in solution/ a "
                 "series with one step a scheme\n";
    return run.check ? ReportMisses(studies) : 0;
}

}  // namespace host
