#include "reference_host/mesh/mesh.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

/// What a symmetry face adds to the marks of its cell: 1 if its normal points along +z, 2 if along
/// -z, 4 if along another direction or along one that the cell has already.
int DirectionMark(const BoundaryFace& face, int marksSoFar) {
    const double tilt = std::hypot(face.area.x(), face.area.y());
    if (tilt > 1e-10 * std::abs(face.area.z())) {
        return 4;
    }
    const int mark = face.area.z() > 0 ? 1 : 2;
    return (marksSoFar & mark) != 0 ? 4 : mark;
}

}  // namespace

int Mesh::GridCount() const {
    return CellCount() == 0 ? 0 : *std::max_element(cavity.begin() + 1, cavity.end());
}

bool Mesh::IsQuasi2d() const {
    std::vector<int> marks(cellCentre.size(), 0);
    for (int i = 1; i <= FaceCount(Boundary::Symmetry); ++i) {
        const BoundaryFace& face = Faces(Boundary::Symmetry)[i];
        marks[face.cell] |= DirectionMark(face, marks[face.cell]);
    }
    return CellCount() > 0 &&
           std::all_of(marks.begin() + 1, marks.end(), [](int mark) { return mark == 3; });
}

double Mesh::Depth() const {
    const auto range = std::minmax_element(
        nodes.begin() + 1, nodes.end(), [](const Vec3& a, const Vec3& b) { return a.z() < b.z(); });
    return range.second->z() - range.first->z();
}

Vec3 NodeMean(const Mesh& mesh, const std::vector<int>& nodeIds) {
    Vec3 sum = Vec3::Zero();
    for (int node : nodeIds) {
        sum += mesh.nodes[node];
    }
    return sum / static_cast<double>(nodeIds.size());
}

}  // namespace host
