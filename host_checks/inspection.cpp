#include "host_checks/inspection.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "host_checks/detail/donor_lines.h"
#include "vtk_output/vtk_data.h"
#include "vtk_output/vtk_tool.h"

namespace kvx3d::checks {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const fs::path& path) {
    throw std::runtime_error("the inspection file " + path.string() +
                             " cannot be written: check that the directory exists, is writable "
                             "and is not full");
}

/// True if the file ends as a .vtu file does; one that a full disk cut short does not.
bool IsComplete(const fs::path& path) {
    const std::string end = "</VTKFile>\n";
    std::ifstream file(path, std::ios::binary);
    file.seekg(-static_cast<std::streamoff>(end.size()), std::ios::end);
    std::string tail(end.size(), ' ');
    return file.read(tail.data(), static_cast<std::streamsize>(tail.size())) && tail == end;
}

/// One array over the cells, as the toolbox's writer takes it.
struct CellArray {
    CellArray(const std::string& name, int nCells) : values(nCells, 0.0), data(name) {
        data.components.push_back(values.data());
    }
    CellArray(const CellArray&) = delete;
    CellArray& operator=(const CellArray&) = delete;

    double& operator[](int cell) { return values[cell - 1]; }

    std::vector<double> values;
    VTK_Data data;
};

/// The cells of a mesh and the arrays over them.
class CellBlock {
public:
    CellBlock(const Explainer& explainer, const std::vector<DonorLine>& donors)
        : mesh(explainer.Mesh()), block(&points, &cells) {
        CopyNodes();
        for (int cell = 1; cell <= mesh.fvm.Nc; ++cell) {
            int* row = mesh.fvm.cellNodes[cell];
            cells.push_back(MeshCell(&row[1], row[0]));
            Add(explainer.ExplainCell(cell));
        }
        for (const DonorLine& line : donors) {
            if (line.search.donor > 0) {
                donorCount[line.search.donor] += 1.0;
            } else {
                missingDonors[line.search.cell] += 1.0;
            }
        }
        for (CellArray* array :
             {&grid, &state, &step, &distance, &margin, &donorCount, &missingDonors}) {
            block.addCellsData(&array->data);
        }
    }
    CellBlock(const CellBlock&) = delete;
    CellBlock& operator=(const CellBlock&) = delete;

    VTK_Block& Block() { return block; }

private:
    void Add(const CellExplanation& why) {
        grid[why.cell] = why.grid;
        state[why.cell] = why.state;
        step[why.cell] = static_cast<int>(why.step);
        distance[why.cell] = Float32Value(why.distance);
        margin[why.cell] = Float32Value(why.marginLength);
    }

    /// The writer takes numbers as they are, and readers of VTK crash on one beyond a Float32.
    void CopyNodes() {
        const double* const from[3] = {mesh.fvm.xn, mesh.fvm.yn, mesh.fvm.zn};
        for (int axis = 0; axis < 3; ++axis) {
            nodes[axis].resize(mesh.fvm.Nn);
            std::transform(from[axis] + 1, from[axis] + 1 + mesh.fvm.Nn, nodes[axis].begin(),
                           Float32Value);
        }
        points.x = nodes[0].data();
        points.y = nodes[1].data();
        points.z = nodes[2].data();
        points.count = mesh.fvm.Nn;
    }

    const MeshView& mesh;
    std::vector<double> nodes[3];  // 0-based
    VTK_Points points;
    VTK_Cells cells;
    VTK_Block block;
    CellArray grid{"grid", mesh.fvm.Nc};
    CellArray state{"state", mesh.fvm.Nc};
    CellArray step{"step", mesh.fvm.Nc};
    CellArray distance{"distance", mesh.fvm.Nc};
    CellArray margin{"margin", mesh.fvm.Nc};
    CellArray donorCount{"donor_count", mesh.fvm.Nc};
    CellArray missingDonors{"missing_donors", mesh.fvm.Nc};
};

/// Writes a block with the writer of the toolbox. The writer makes a step of a time series, in a
/// separate directory beside a record file; the step is moved to `path` and the rest is removed.
void WriteBlock(const fs::path& path, VTK_Block& block) {
    std::string root = path.parent_path().string();
    std::string project = "inspection_" + path.stem().string();
    const fs::path stepDirectory = fs::path(root) / (project + "_0");
    std::error_code ignored;
    fs::remove(path, ignored);
    {
        CKVX_ART_VTK_Tool tool;
        if (tool.Initialize(root.data(), project.data(), /*processId=*/0)) {
            tool.newBlockData(&block);
            tool.OutputRun(/*time=*/0.0, /*iteration=*/0);
        }
    }
    const fs::path step = stepDirectory / (project + "_Itr0_T0_P0_B1.vtu");
    fs::rename(step, path, ignored);
    fs::remove(step, ignored);  // still there if `path` is a directory
    fs::remove(stepDirectory, ignored);
    fs::remove(fs::path(root) / (project + ".vtkcollection_0"), ignored);
    if (!IsComplete(path)) {
        Fail(path);
    }
}

}  // namespace

InspectionFiles WriteInspection(const std::string& directory, const Explainer& explainer) {
    const fs::path root = directory.empty() ? fs::path(".") : fs::path(directory);
    std::error_code ignored;
    fs::create_directories(root, ignored);  // a failure shows when the first file is written
    const fs::path cellPath = root / "cells.vtu";
    const fs::path donorPath = root / "donors.vtu";
    const std::vector<DonorLine> donors = FacesThatNeedDonors(explainer.Mesh(), explainer.Donors());
    CellBlock cells(explainer, donors);
    WriteBlock(cellPath, cells.Block());
    if (!WriteDonorLines(donorPath.string(), explainer.Mesh(), donors)) {
        Fail(donorPath);
    }
    return {cellPath.string(), donorPath.string()};
}

InspectionFiles WriteInspection(const std::string& directory, const CKvx3dGV& gv,
                                const CKVX3DFiniteVolumeMesh& fvm, CKVXOversetMesh& overset) {
    const MeshView mesh(gv, fvm);
    const Explainer explainer(mesh, overset);
    return WriteInspection(directory, explainer);
}

}  // namespace kvx3d::checks
