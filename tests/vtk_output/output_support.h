#ifndef KVX3D_TESTS_VTK_OUTPUT_OUTPUT_SUPPORT_H
#define KVX3D_TESTS_VTK_OUTPUT_OUTPUT_SUPPORT_H

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/temp_directory.h"
#include "vtk_output/vtk_data.h"
#include "vtk_output/vtk_tool.h"

/// A text as the `char*` that the interface of the tool needs, for the duration of one call.
class Chars {
public:
    explicit Chars(std::string characters) : text(std::move(characters)) {}
    operator char*() { return text.data(); }

private:
    std::string text;
};

/// The lines of a `.pvd` file around its records.
inline const std::string pvdHead =
    "<?xml version = \"1.0\"?>\n"
    "<VTKFile type = \"Collection\" version = \"0.1\" byte_order = \"LittleEndian\">\n"
    "<Collection>\n";
inline const std::string pvdEnd = "</Collection>\n</VTKFile>\n";

/// One tetrahedron with all four kinds of arrays: a scalar and a vector, over points and over
/// cells. They are not added to the block.
struct Tetrahedron {
    double x[4] = {0, 1, 0, 0};
    double y[4] = {0, 0, 1, 0};
    double z[4] = {0, 0, 0, 0.25};
    int nodes[4] = {1, 2, 3, 4};
    double pointValue[4] = {1, 2.5, -3, 1e-7};
    double cellValue[1] = {42};
    VTK_Points points;
    VTK_Cells cells;
    VTK_Data pointData{"Temperature"};
    VTK_Data cellData{"Pressure"};
    VTK_Block block{&points, &cells};

    Tetrahedron() {
        points.x = x;
        points.y = y;
        points.z = z;
        points.count = 4;
        cells.push_back(MeshCell(nodes, 4));
        pointData.components.push_back(pointValue);
        cellData.components.push_back(cellValue);
    }
    Tetrahedron(const Tetrahedron&) = delete;
    Tetrahedron& operator=(const Tetrahedron&) = delete;
};

/// The names in a directory, sorted.
inline std::vector<std::string> Names(const std::filesystem::path& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

#endif
