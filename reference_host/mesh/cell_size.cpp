#include "reference_host/mesh/cell_size.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace host {
namespace {

/// Volume of the regular cell with `nodeCount` nodes and edges of length 1.
double RegularVolume(std::size_t nodeCount) {
    switch (nodeCount) {
        case 4:
            return 1.0 / (6.0 * std::sqrt(2.0));
        case 5:
            return 1.0 / (3.0 * std::sqrt(2.0));
        case 6:
            return std::sqrt(3.0) / 4.0;
        default:
            return 1.0;
    }
}

}  // namespace

double MarginLength(double volume) {
    return std::pow(volume, 0.3333333333333333);
}

std::vector<double> EdgeLengths(const Mesh& mesh) {
    std::vector<double> lengths(mesh.cellCentre.size(), 0.0);
    if (mesh.IsQuasi2d()) {
        for (int i = 1; i <= mesh.FaceCount(Boundary::Symmetry); ++i) {
            const BoundaryFace& face = mesh.Faces(Boundary::Symmetry)[i];
            const double regularArea = face.nodes.size() == 3 ? std::sqrt(3.0) / 4.0 : 1.0;
            lengths[face.cell] = std::sqrt(face.area.norm() / regularArea);
        }
        return lengths;
    }
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        lengths[cell] = std::cbrt(mesh.volume[cell] / RegularVolume(mesh.cellNodes[cell].size()));
    }
    return lengths;
}

int CellsPerUnit(const Mesh& mesh) {
    const std::vector<double> edges = EdgeLengths(mesh);
    double smallest = std::numeric_limits<double>::max();
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (mesh.cavity[cell] == 1) {
            smallest = std::min(smallest, edges[cell]);
        }
    }
    return static_cast<int>(std::lround(1.0 / smallest));
}

}  // namespace host
