#include "reference_host/run/result_series.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "overset/overset_mesh.h"
#include "vtk_output/vtk_data.h"
#include "vtk_output/vtk_tool.h"

namespace host {

namespace {

namespace fs = std::filesystem;

std::string singleGridProject = "VTK_Flow_Results";  // not const: the tool takes char*
constexpr const char* oversetProject = "VTK_Overset_Flow_Results";  // name given by the facade

/// False for a file that a full disk cut short: its closing tag is missing.
bool IsComplete(const fs::path& vtuPath) {
    const std::string end = "</VTKFile>";
    std::ifstream file(vtuPath, std::ios::binary | std::ios::ate);
    const std::streamoff size = file ? static_cast<std::streamoff>(file.tellg()) : 0;
    std::string tail(std::min<std::size_t>(static_cast<std::size_t>(size), end.size() + 2), ' ');
    file.seekg(size - static_cast<std::streamoff>(tail.size()));
    return file.read(tail.data(), static_cast<std::streamsize>(tail.size())) &&
           tail.find(end) != std::string::npos;
}

/// Number of steps of a series whose files are complete.
int CountCompleteSteps(const std::string& pvdPath) {
    const std::string attribute = "file=\"";
    std::ifstream pvd(pvdPath);
    int steps = 0;
    for (std::string line; std::getline(pvd, line);) {
        const std::size_t at = line.find(attribute);
        if (line.find("<DataSet ") == std::string::npos || at == std::string::npos) {
            continue;
        }
        const std::size_t begin = at + attribute.size();
        const std::string name = line.substr(begin, line.find('"', begin) - begin);
        steps += IsComplete(fs::path(pvdPath).parent_path() / name) ? 1 : 0;
    }
    return steps;
}

}  // namespace

void PrepareOutputDirectory(const std::string& directory) {
    std::error_code failure;
    fs::create_directories(directory, failure);
    if (failure) {
        throw std::runtime_error(
            fmt::format("output directory {} cannot be created: {}", directory, failure.message()));
    }
    const fs::path probe = fs::path(directory) / ".reference_host_probe";
    if (!std::ofstream(probe)) {
        throw std::runtime_error(fmt::format("output directory {} cannot be written: {}", directory,
                                             std::strerror(errno)));
    }
    fs::remove(probe, failure);
}

/// The VTK records of a single grid with all its cells, and the tool that writes them.
class ResultSeries::SingleGridTool {
public:
    SingleGridTool(const Mesh& mesh, HostObjects& objects, const std::string& directory,
                   const std::string& scalarName, const std::string& vectorName)
        : block(&points, &cells), scalar(scalarName), vector(vectorName) {
        // The writer counts from 0, so its pointers begin at entry 1 of the host's arrays.
        points.x = &objects.fvm.xn[1];
        points.y = &objects.fvm.yn[1];
        points.z = &objects.fvm.zn[1];
        points.count = mesh.NodeCount();
        for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
            int* row = objects.fvm.cellNodes[cell];
            cells.push_back(MeshCell(&row[1], row[0]));
        }
        scalar.components = {&objects.pressure[1]};
        vector.components = {&objects.u[1], &objects.v[1], &objects.w[1]};
        block.addCellsData(&scalar);
        block.addCellsData(&vector);
        std::string root = directory;
        tool.Initialize(root.data(), singleGridProject.data(), /*processId=*/0);
        tool.newBlockData(&block);
    }

    VTK_Points points;
    VTK_Cells cells;
    VTK_Block block;
    VTK_Data scalar, vector;
    CKVX_ART_VTK_Tool tool;
};

ResultSeries::ResultSeries(const Mesh& mesh, HostObjects& objects, OversetLink& link_,
                           const std::string& directory, const std::string& scalarName,
                           const std::string& vectorName)
    : link(link_),
      pvdPath((fs::path(directory) /
               fmt::format("{}.pvd", link_.IsOverset() ? oversetProject : singleGridProject))
                  .string()) {
    // If this run failed to write its .pvd, that of an earlier run would be taken for it.
    std::error_code ignored;
    fs::remove(pvdPath, ignored);
    if (link.IsOverset()) {
        link.Toolbox()->InitializeVTKTool();
    } else {
        single = std::make_unique<SingleGridTool>(mesh, objects, directory, scalarName, vectorName);
    }
}

ResultSeries::~ResultSeries() = default;

void ResultSeries::Write(double time, int iteration) {
    ++stepCount;
    if (single) {
        single->tool.OutputRun(time, iteration);
    } else {
        link.Toolbox()->OutputVTKDataInEachTimeStep(time, iteration);
    }
}

std::string ResultSeries::Finish() {
    if (single) {
        single->tool.PostRun_Single_SMP(/*processRank=*/0);
    } else {
        link.Toolbox()->PostRunVTKDataSMP();
    }
    const int complete = CountCompleteSteps(pvdPath);
    if (complete < stepCount) {
        throw std::runtime_error(
            fmt::format("{}: only {} of {} steps are complete, some result files could not be "
                        "written",
                        pvdPath, complete, stepCount));
    }
    return pvdPath;
}

}  // namespace host
