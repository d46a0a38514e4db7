#include "vtk_output/vtk_data.h"

#include <type_traits>

#include "host_link/detail/last_stores.h"

static_assert(std::is_trivially_copyable_v<MeshCell>, "a cell is a plain value");

MeshCell::MeshCell(int* nodeIds, int nodeCount) : MeshCell(nodeIds, nodeCount, false) {}

MeshCell::MeshCell(int* nodeIds, int nodeCount, bool surface)
    : nodes(nodeIds), count(nodeCount), isSurface(surface) {}

int MeshCell::getVTK_3dMeshType() {
    switch (count) {
        case 1:
            return 1;  // VTK_VERTEX
        case 3:
            // Three nodes are a triangle only if the flag is set: a volume cell of three nodes has
            // no VTK shape, and readers ignore an empty cell.
            return isSurface ? 5 : 0;  // VTK_TRIANGLE
        case 4:
            return isSurface ? 9 : 10;  // VTK_QUAD, VTK_TETRA
        case 5:
            return 14;  // VTK_PYRAMID
        case 6:
            return 13;  // VTK_WEDGE
        case 8:
            return 12;  // VTK_HEXAHEDRON
        default:
            return 0;  // VTK_EMPTY_CELL
    }
}

VTK_Data::VTK_Data(const std::string& arrayName) : name(arrayName) {}

VTK_Block::VTK_Block(VTK_Points* blockPoints, VTK_Cells* blockCells)
    : blockType(0), points(blockPoints), cells(blockCells) {}

VTK_Block::~VTK_Block() {
    points = nullptr;
    cells = nullptr;
    kvx3d::detail::KeepLastStores();
}

void VTK_Block::addPointsData(VTK_Data* data) {
    pointsData.push_back(data);
}

void VTK_Block::addCellsData(VTK_Data* data) {
    cellsData.push_back(data);
}
