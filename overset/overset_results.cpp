#include "overset/overset_mesh_impl.h"

#include <cmath>

#include "host_link/containers.h"
#include "host_link/host_interface.h"
#include "overset/overset_grid_data.h"
#include "vtk_output/vtk_data.h"
#include "vtk_output/vtk_tool.h"

namespace {

constexpr int nonActive = 1;      // cellState of a cut cell, whose values have no meaning
constexpr double tiny = 1e-10;    // smaller magnitudes are rounding noise of the solver
constexpr int singleMachine = 0;  // the rank that merges the records

bool IsPublished(const KVX_ART_OVERSET_GRID_DATA& grid, int cell) {
    return grid.cellState[cell] != nonActive;
}

/// Sets a host value to zero if its magnitude is below `tiny`.
void FlushToZero(double& value) {
    if (std::fabs(value) < tiny) {
        value = 0.0;
    }
}

/// Copies the solution of `cell` to entry j of the compressed arrays that are written.
void Publish(KVX_ART_OVERSET_GRID_DATA& grid, int cell, int j) {
    grid.pActive[j] = grid.p[cell];
    grid.uActive[j] = grid.u[cell];
    grid.vActive[j] = grid.v[cell];
    grid.wActive[j] = grid.w[cell];
}

/// Lists the published cells, allocates the arrays for their values and fills them once.
void ListPublishedCells(KVX_ART_OVERSET_GRID_DATA& grid, VTK_Cells& cells) {
    for (int cell = 1; cell <= grid.Nc; ++cell) {
        if (IsPublished(grid, cell)) {
            int* row = grid.cellNodes[cell];
            cells.push_back(MeshCell(&row[1], row[0]));
            ++grid.NActiveCell;
        }
    }
    newDouble1D(grid.pActive, grid.NActiveCell);
    newDouble1D(grid.uActive, grid.NActiveCell);
    newDouble1D(grid.vActive, grid.NActiveCell);
    newDouble1D(grid.wActive, grid.NActiveCell);
    int j = 0;
    for (int cell = 1; cell <= grid.Nc; ++cell) {
        if (IsPublished(grid, cell)) {
            Publish(grid, cell, ++j);
        }
    }
}

}  // namespace

// The result output of the overset mesh: the solution of the active cells as a time series. The
// cutting is finished before InitVTKTool(), so the published cells are listed there once.

void CKVXOversetMesh_Impl::InitVTKTool() {
    KVX_ART_OVERSET_GRID_DATA& grid = *gridData;

    // All nodes, also those used by cut cells only: the node ids are the host's.
    vtkPoints = new VTK_Points;
    vtkPoints->x = &grid.xn[1];
    vtkPoints->y = &grid.yn[1];
    vtkPoints->z = &grid.zn[1];
    vtkPoints->count = grid.Nn;
    vtkCells = new VTK_Cells;
    ListPublishedCells(grid, *vtkCells);

    pressureData = new VTK_Data("Pressure");
    velocityData = new VTK_Data("Velocity");
    pressureData->components.push_back(&grid.pActive[1]);
    velocityData->components.push_back(&grid.uActive[1]);
    velocityData->components.push_back(&grid.vActive[1]);
    velocityData->components.push_back(&grid.wActive[1]);

    vtkBlock = new VTK_Block(vtkPoints, vtkCells);
    vtkBlock->addCellsData(pressureData);
    vtkBlock->addCellsData(velocityData);

    char project[] = "VTK_Overset_Flow_Results";
    vtkTool = new CKVX_ART_VTK_Tool;
    vtkTool->Initialize(grid.kvxGv->rootDir, project, grid.pProcessId[0]);
    vtkTool->newBlockData(vtkBlock);
}

void CKVXOversetMesh_Impl::OutputEachTimeStepVTKData(double time, int iteration) {
    KVX_ART_OVERSET_GRID_DATA& grid = *gridData;
    int j = 0;
    for (int cell = 1; cell <= grid.Nc; ++cell) {
        if (!IsPublished(grid, cell)) {
            continue;
        }
        // In the solver's own arrays, not only in the copy: a value shown as zero is zero in the
        // run that continues from it.
        FlushToZero(grid.p[cell]);
        FlushToZero(grid.u[cell]);
        FlushToZero(grid.v[cell]);
        FlushToZero(grid.w[cell]);
        Publish(grid, cell, ++j);
    }
    vtkTool->OutputRun(time, iteration);
}

void CKVXOversetMesh_Impl::PostRunVTKData_SMP() {
    // Independent of the rank: every process that calls this merges the records.
    vtkTool->PostRun_Single_SMP(singleMachine);
}
