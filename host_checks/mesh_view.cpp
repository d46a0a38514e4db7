#include "host_checks/mesh_view.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kvx3d::checks {
namespace {

/// Volume of the regular cell with `nodeCount` nodes and edges of length 1.
double RegularVolume(int nodeCount) {
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

/// Some unit vector perpendicular to `normal`.
Point Perpendicular(const Point& normal) {
    const Point axis = std::abs(normal.x) < 0.5 ? Point{1, 0, 0} : Point{0, 1, 0};
    return Unit(Cross(normal, axis));
}

}  // namespace

std::array<BoundaryFaces, 4> BoundaryKinds(const CKVX3DFiniteVolumeMesh& m) {
    return {{{"inlet", m.NInlet, m.xInlet, m.yInlet, m.zInlet, m.nxInlet, m.nyInlet, m.nzInlet,
              m.CInlet23, m.idInlet},
             {"outlet", m.NOutlet, m.xOutlet, m.yOutlet, m.zOutlet, m.nxOutlet, m.nyOutlet,
              m.nzOutlet, m.COutlet23, m.idOutlet},
             {"wall", m.NWall, m.xWall, m.yWall, m.zWall, m.nxWall, m.nyWall, m.nzWall, m.CWall23,
              m.idWall},
             {"symmetry", m.NSymm, m.xSymm, m.ySymm, m.zSymm, m.nxSymm, m.nySymm, m.nzSymm,
              m.CSymm23, m.idSymm}}};
}

double MarginLength(double volume) {
    return std::pow(volume, 0.3333333333333333);
}

double RegularEdge(double volume, int nodeCount) {
    return std::cbrt(volume / RegularVolume(nodeCount));
}

double RegularEdgeInPlane(double area, int cornerCount) {
    const double regularArea = cornerCount == 3 ? std::sqrt(3.0) / 4.0 : 1.0;
    return std::sqrt(area / regularArea);
}

MeshView::MeshView(const CKvx3dGV& hostVariables, const CKVX3DFiniteVolumeMesh& hostMesh)
    : gv(hostVariables), fvm(hostMesh), kinds(BoundaryKinds(hostMesh)) {
    NumberGrids();
    ReadWallGroups();
    FindThinDirection();
}

void MeshView::NumberGrids() {
    const int largest = *std::max_element(gv.cavityId + 1, gv.cavityId + fvm.Nc + 1);
    gridOfCavity.assign(largest + 1, 0);
    std::vector<char> isUsed(largest + 1, 0);
    for (int cell = 1; cell <= fvm.Nc; ++cell) {
        isUsed[gv.cavityId[cell]] = 1;
    }
    nGrids = static_cast<int>(std::count(isUsed.begin(), isUsed.end(), 1));
    gridOfCavity[fvm.NInlet > 0 ? gv.cavityId[fvm.CInlet23[1]] : std::min(1, largest)] = 1;
    for (int group = 1; group < nGrids && group <= gv.NOversetBCGroup[0]; ++group) {
        if (gv.oversetBCFaceCount[group] > 0) {
            const int first = gv.oversetBCWallFace[group][1];
            gridOfCavity[gv.cavityId[fvm.CWall23[first]]] = group + 1;
        }
    }
}

void MeshView::ReadWallGroups() {
    wallGroup.assign(fvm.NWall + 1, 0);
    for (int group = 1; group <= gv.NOversetBCGroup[0]; ++group) {
        for (int i = 1; i <= gv.oversetBCFaceCount[group]; ++i) {
            wallGroup[gv.oversetBCWallFace[group][i]] = group;
        }
    }
}

void MeshView::FindThinDirection() {
    // Sine of the angle between normals. Far from the origin, coordinates are rounded to some
    // 1e-8 of a cell and normals turn by as much; wedge cells turn by more than 0.01.
    constexpr double parallelTolerance = 1e-4;
    const BoundaryFaces& symmetries = Symmetries();
    if (symmetries.count != 2 * fvm.Nc) {
        return;
    }
    const Point across = Unit(symmetries.Area(1));
    // Per cell: bit 1 for a face along the direction, bit 2 for one against it.
    std::vector<char> marks(fvm.Nc + 1, 0);
    std::vector<double> areas(fvm.Nc + 1, 0.0);
    for (int face = 1; face <= symmetries.count; ++face) {
        const Point area = symmetries.Area(face);
        const int cell = symmetries.cell[face];
        if (!(Norm(Cross(area, across)) <= parallelTolerance * Norm(area))) {
            return;
        }
        const char mark = Dot(area, across) > 0 ? 1 : 2;
        if ((marks[cell] & mark) != 0) {
            return;
        }
        marks[cell] = static_cast<char>(marks[cell] | mark);
        areas[cell] = Norm(area);
    }
    // With two faces a cell in all and no mark twice, every cell now has both marks.
    planeArea = std::move(areas);
    thinDirection = across;
}

std::vector<int> MeshView::CellsOfGrid(int grid) const {
    std::vector<int> cells;
    for (int cell = 1; cell <= fvm.Nc; ++cell) {
        if (Grid(cell) == grid) {
            cells.push_back(cell);
        }
    }
    return cells;
}

Point MeshView::NodeMean(int cell) const {
    const int* row = fvm.cellNodes[cell];
    Point sum;
    for (int i = 1; i <= row[0]; ++i) {
        sum = sum + Node(row[i]);
    }
    return {sum.x / row[0], sum.y / row[0], sum.z / row[0]};
}

std::vector<int> MeshView::WallFaces(int group, int grid) const {
    std::vector<int> faces;
    for (int face = 1; face <= fvm.NWall; ++face) {
        if (wallGroup[face] == group && Grid(fvm.CWall23[face]) == grid) {
            faces.push_back(face);
        }
    }
    return faces;
}

double MeshView::EdgeLength(int cell) const {
    if (IsOneCellThick()) {
        return RegularEdgeInPlane(planeArea[cell], NodeCount(cell) / 2);
    }
    return RegularEdge(fvm.volume[cell], NodeCount(cell));
}

std::vector<int> MeshView::FaceNodes(int cell, const Point& center, const Point& area) const {
    const Point normal = Unit(area);
    const int* row = fvm.cellNodes[cell];
    double largest = 0.0;
    for (int i = 1; i <= row[0]; ++i) {
        largest = std::max(largest, std::abs(Dot(Node(row[i]) - center, normal)));
    }
    const Point u = Perpendicular(normal);
    const Point v = Cross(normal, u);
    std::vector<std::pair<double, int>> byAngle;
    for (int i = 1; i <= row[0]; ++i) {
        const Point offset = Node(row[i]) - center;
        if (std::abs(Dot(offset, normal)) < largest / 3.0) {
            byAngle.emplace_back(std::atan2(Dot(offset, v), Dot(offset, u)), row[i]);
        }
    }
    std::sort(byAngle.begin(), byAngle.end());
    std::vector<int> nodes;
    for (const auto& [angle, node] : byAngle) {
        nodes.push_back(node);
    }
    return nodes;
}

std::vector<int> MeshView::WallFaceNodes(int wallFace) const {
    return FaceNodes(Walls().cell[wallFace], Walls().Center(wallFace), Walls().Area(wallFace));
}

}  // namespace kvx3d::checks
