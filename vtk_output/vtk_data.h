#ifndef KVX3D_VTK_OUTPUT_VTK_DATA_H
#define KVX3D_VTK_OUTPUT_VTK_DATA_H

#include "host_link/export.h"

#include <string>
#include <vector>

/// What one output step publishes: nodes, cells and named arrays, grouped into blocks.
///
/// No solver data are copied. The records point into arrays that their creator owns and updates, so
/// a block is built once and written at every step with the current values. All views are 0-based:
/// a creator with 1-based arrays passes the address of entry 1. The creator of a record destroys
/// it, after the tool that writes it.

/// One cell: a trivially copyable value.
class KVX3D_API MeshCell {
public:
    /// A volume cell, whatever its node count: 4 nodes are taken as a tetrahedron.
    /// @param nodes  `count` 1-based node ids in VTK's order for the shape; borrowed
    MeshCell(int* nodes, int count);

    /// @param isSurface  true for a flat cell: distinguishes a quadrilateral from a tetrahedron
    MeshCell(int* nodes, int count, bool isSurface);

    MeshCell(const MeshCell&) = default;
    MeshCell& operator=(const MeshCell&) = default;

    /// VTK's cell type number: 5 triangle, 9 quad, 10 tetra, 12 hexahedron, 13 wedge, 14 pyramid,
    /// 1 vertex, and 0 (empty cell) for everything else, including a cell of three nodes that is
    /// not a surface.
    ///
    /// Source: vtkCellType.h of VTK.
    int getVTK_3dMeshType();

    int* nodes;      ///< 1-based node ids, `count` of them from nodes[0], borrowed
    int count;       ///< number of node ids
    bool isSurface;  ///< true for a two-dimensional cell
};

/// The node table.
class VTK_Points {
public:
    double* x = nullptr;  ///< 0-based view x[0..count-1], borrowed; in the host's unit of length
    double* y = nullptr;
    double* z = nullptr;
    int count = 0;  ///< number of points
};

/// The cell list, in output order: `cells.push_back(MeshCell(nodes, count))`.
class VTK_Cells : public std::vector<MeshCell> {};

/// One named array over the points or the cells of a block.
class KVX3D_API VTK_Data {
public:
    /// An array without components; append one 0-based pointer for each.
    /// @param name  as written to the file; special characters are not escaped
    explicit VTK_Data(const std::string& name);

    /// One pointer per component (1 for a scalar, 3 for a vector), each to one entry per point or
    /// per cell; borrowed.
    std::vector<double*> components;
    std::string name;
};

/// One piece of output: points, cells and the arrays over them. All pointers are borrowed.
class KVX3D_API VTK_Block {
public:
    VTK_Block(VTK_Points* points, VTK_Cells* cells);

    /// Copies share all records with their source.
    VTK_Block(const VTK_Block&) = default;
    VTK_Block& operator=(const VTK_Block&) = default;

    /// Deletes none of the records.
    ~VTK_Block();

    /// Appends a point array; its length and name are not checked.
    void addPointsData(VTK_Data* data);

    /// Appends a cell array; its length and name are not checked.
    void addCellsData(VTK_Data* data);

    int blockType;  ///< 0 for an unstructured grid, the only kind that is written
    VTK_Points* points;
    VTK_Cells* cells;
    std::vector<VTK_Data*> pointsData;  ///< point arrays in the order added
    std::vector<VTK_Data*> cellsData;   ///< cell arrays in the order added
};

#endif
