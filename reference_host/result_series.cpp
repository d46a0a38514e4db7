#include "reference_host/result_series.h"

#include <fmt/format.h>

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
constexpr const char* oversetProject = "VTK_Overset_Flow_Results";  // the facade's own name

int CountRecords(const std::string& pvdPath) {
    std::ifstream pvd(pvdPath);
    int records = 0;
    for (std::string line; std::getline(pvd, line);) {
        records += line.find("<DataSet ") != std::string::npos ? 1 : 0;
    }
    return records;
}

}  // namespace

void PrepareOutputDirectory(const std::string& directory) {
    std::error_code failure;
    fs::create_directories(directory, failure);
    if (failure) {
        throw std::runtime_error(
            fmt::format("output directory {} cannot be made: {}", directory, failure.message()));
    }
    const fs::path probe = fs::path(directory) / ".reference_host_probe";
    if (!std::ofstream(probe)) {
        throw std::runtime_error(fmt::format("output directory {} cannot be written: {}", directory,
                                             std::strerror(errno)));
    }
    fs::remove(probe, failure);
}

/// The records of a single grid, all cells published, and the tool that writes them.
class ResultSeries::SingleGridTool {
public:
    SingleGridTool(const Mesh& mesh, HostObjects& objects, const std::string& directory,
                   const std::string& scalarName, const std::string& vectorName)
        : block(&points, &cells), scalar(scalarName), vector(vectorName) {
        // The views start at entry 1 of the host's arrays: the writer counts from 0.
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
    // A .pvd of an earlier run would hide that this run could not write its own.
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
    const int records = CountRecords(pvdPath);
    if (records < stepCount) {
        throw std::runtime_error(
            fmt::format("{} lists {} of {} steps: not every result file could be written", pvdPath,
                        records, stepCount));
    }
    return pvdPath;
}

}  // namespace host
