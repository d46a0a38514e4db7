// Writes the runs that the checker and the reader of VTK are tested with:
//
//     vtk_write_samples <empty directory>
//
// Shapes.pvd: one cell of each shape with point and cell data in two steps, and a block without
// cells. VTK_Overset_Flow_Results.pvd: an overset run through CKVXOversetMesh.

#include <filesystem>
#include <iostream>
#include <string>

#include "overset/overset_mesh.h"
#include "tests/support/box_host.h"
#include "tests/vtk_output/output_support.h"

namespace {

/// The corners of a unit cube, two levels of four, and a point above it.
struct Shapes {
    double x[9] = {0, 1, 1, 0, 0, 1, 1, 0, 0.5};
    double y[9] = {0, 0, 1, 1, 0, 0, 1, 1, 0.5};
    double z[9] = {0, 0, 0, 0, 1, 1, 1, 1, 2};
    int hexahedron[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    int wedge[6] = {1, 2, 4, 5, 6, 8};
    int pyramid[5] = {5, 6, 7, 8, 9};
    int tetrahedron[4] = {1, 2, 4, 5};
    double height[9] = {0, 0, 0, 0, 1, 1, 1, 1, 2};
    double number[7] = {1, 2, 3, 4, 5, 6, 7};
    VTK_Points points;
    VTK_Cells cells;
    VTK_Cells none;

    Shapes() {
        points.x = x;
        points.y = y;
        points.z = z;
        points.count = 9;
        cells.push_back(MeshCell(hexahedron, 8));
        cells.push_back(MeshCell(wedge, 6));
        cells.push_back(MeshCell(pyramid, 5));
        cells.push_back(MeshCell(tetrahedron, 4));
        cells.push_back(MeshCell(hexahedron, 4, true));
        cells.push_back(MeshCell(wedge, 3, true));
        cells.push_back(MeshCell(pyramid, 1));
    }
};

void WriteShapes(const std::string& directory) {
    Shapes shapes;
    VTK_Data height("Height");
    height.components = {shapes.height};
    VTK_Data number("Number");
    number.components = {shapes.number, shapes.number, shapes.number};
    VTK_Block block(&shapes.points, &shapes.cells);
    block.addPointsData(&height);
    block.addCellsData(&number);
    VTK_Block empty(&shapes.points, &shapes.none);
    CKVX_ART_VTK_Tool tool;
    tool.Initialize(Chars(directory), Chars("Shapes"), 0);
    tool.newBlockData(&block);
    tool.newBlockData(&empty);
    tool.OutputRun(0.5, 10);
    shapes.number[0] = -1e-3;
    tool.OutputRun(1, 20);
    tool.PostRun_Single_SMP(0);
}

void WriteOversetRun(const std::string& directory) {
    BoxHost host(12, 12, 2);
    host.WithComponentGrid(16, 16, 2, {2, 2, 0}, {8, 8, 2}, sideZMin | sideZMax)
        .WithRootDir(directory);
    CKVXOversetMesh mesh;
    mesh.SetFVM(&host.gv, &host.fvm);
    mesh.InitializeVTKTool();
    mesh.OutputVTKDataInEachTimeStep(0.25, 1);
    mesh.PostRunVTKDataSMP();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: vtk_write_samples <directory>\n";
        return 1;
    }
    std::filesystem::remove_all(argv[1]);
    std::filesystem::create_directories(argv[1]);
    WriteShapes(argv[1]);
    WriteOversetRun(argv[1]);
    return 0;
}
