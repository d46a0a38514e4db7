#include "blocks.h"

#include <cmath>
#include <utility>

Blocks::Blocks(const Shape& shape, std::string resultDirectory)
    : depth(1.0 / shape.n), directory(std::move(resultDirectory)) {
    AddBlock({2.0, 2.0}, 0.0, 4.0, 4 * shape.n, shape.hasInlet ? inlet : wall);
    const int cells = static_cast<int>(std::lround(2.0 * shape.n / shape.cellRatio));
    const int wallsBefore = wall.center.Count();
    AddBlock({shape.x, shape.y}, shape.angle, 2.0, cells, wall);
    for (int face = wallsBefore + 1; face <= wall.center.Count(); ++face) {
        groupFaces.push_back(face);  // outer faces are wall faces that a group lists
    }
    LinkMesh();
    LinkVariables();
}

void Blocks::Points::Add(const Point& point) {
    x.push_back(point.x);
    y.push_back(point.y);
    z.push_back(point.z);
}

void Blocks::Points::Link(double*& toX, double*& toY, double*& toZ) {
    toX = x.data();
    toY = y.data();
    toZ = z.data();
}

void Blocks::Faces::Add(const Point& at, const Point& areaVector, int cellId, int otherId) {
    center.Add(at);
    area.Add(areaVector);
    cell.push_back(cellId);
    other.push_back(otherId);
}

void Blocks::Faces::Link(int& count, int*& cells, int*& others) {
    count = center.Count();
    cells = cell.data();
    others = other.data();
}

/// Adds a square block in the next cavity, turned about its middle by `angle` degrees.
/// @param perRow  cells along each side
/// @param west    takes the boundary faces of the low end along i; the other sides are walls
void Blocks::AddBlock(const Point& middle, double angle, double side, int perRow, Faces& west) {
    const double h = side / perRow, turn = angle * std::acos(-1.0) / 180.0;
    const Point alongI{h * std::cos(turn), h * std::sin(turn)}, alongJ{-alongI.y, alongI.x};
    const Point corner = middle - 0.5 * perRow * (alongI + alongJ), across{0.0, 0.0, depth};
    const int firstNode = nodes.Count() + 1, firstCell = centers.Count() + 1;
    const int nodesPerRow = perRow + 1;
    for (int node = 0; node < nodesPerRow * nodesPerRow; ++node) {
        const int i = node % nodesPerRow, j = node / nodesPerRow;
        nodes.Add(corner + i * alongI + j * alongJ);
        nodes.Add(corner + i * alongI + j * alongJ + across);
    }
    cellsPerRow.push_back(perRow);
    for (int index = 0; index < perRow * perRow; ++index) {
        const int i = index % perRow, j = index / perRow;
        centers.Add(corner + (i + 0.5) * alongI + (j + 0.5) * alongJ + 0.5 * across);
        volume.push_back(h * h * depth);
        cavity.push_back(static_cast<int>(cellsPerRow.size()) - 1);
        // VTK's order of the nodes: around the lower side, then around the upper one.
        const int a = firstNode + 2 * (i + nodesPerRow * j), d = a + 2 * nodesPerRow;
        cellNodes.push_back({8, a, a + 2, d + 2, d, a + 1, a + 3, d + 3, d + 1});
        cellNodeRows.push_back(cellNodes.back().data());
    }
    for (int index = 0; index < perRow * perRow; ++index) {
        const int i = index % perRow, j = index / perRow;
        const std::array<bool, 4> isAtEnd{i == 0, i == perRow - 1, j == 0, j == perRow - 1};
        AddFaces(firstCell + index, {-alongI, alongI, -alongJ, alongJ}, isAtEnd, west);
    }
}

/// Adds the faces of a cell, each inner face with its owner only.
/// @param steps    to the centers of the cells beside it: low and high end along i, then along j
/// @param isAtEnd  whether the block ends there
void Blocks::AddFaces(int cell, const std::array<Point, 4>& steps,
                      const std::array<bool, 4>& isAtEnd, Faces& west) {
    const int row = CellsPerRow(cell);
    const std::array<int, 4> beside{cell - 1, cell + 1, cell - row, cell + row};
    const Point center{centers.x[cell], centers.y[cell], centers.z[cell]};
    for (int side = 0; side < 4; ++side) {
        const Point at = center + 0.5 * steps[side], area = depth * steps[side];
        if (isAtEnd[side]) {
            (side == 0 ? west : wall).Add(at, area, cell);
        } else if (beside[side] > cell) {
            inner.Add(at, area, cell, beside[side]);
        }
    }
    for (const double end : {-1.0, 1.0}) {
        symmetry.Add(center + Point{0.0, 0.0, 0.5 * end * depth},
                     {0.0, 0.0, end * volume[cell] / depth}, cell);
    }
}

/// Gives each boundary face a ghost cell of its own and fills the record of the mesh.
void Blocks::LinkMesh() {
    CKVX3DFiniteVolumeMesh& m = fvm;
    m.Nc = centers.Count();
    m.NcAll = m.Nc;
    for (Faces* faces : {&inlet, &wall, &symmetry}) {
        for (int face = 1; face <= faces->center.Count(); ++face) {
            faces->other[face] = ++m.NcAll;
        }
    }
    m.Nn = nodes.Count();
    nodes.Link(m.xn, m.yn, m.zn);
    centers.Link(m.xc, m.yc, m.zc);
    m.volume = volume.data();
    m.cellNodes = cellNodeRows.data();
    inner.Link(m.Ne, m.Ce23[0], m.Ce23[1]);
    inner.center.Link(m.xe, m.ye, m.ze);
    inner.area.Link(m.nxe, m.nye, m.nze);
    nonmatching.assign(m.Ne + 1, 0);
    m.nonmatchingFace = nonmatching.data();
    inlet.Link(m.NInlet, m.CInlet23, m.idInlet);
    inlet.center.Link(m.xInlet, m.yInlet, m.zInlet);
    inlet.area.Link(m.nxInlet, m.nyInlet, m.nzInlet);
    wall.Link(m.NWall, m.CWall23, m.idWall);
    wall.center.Link(m.xWall, m.yWall, m.zWall);
    wall.area.Link(m.nxWall, m.nyWall, m.nzWall);
    symmetry.Link(m.NSymm, m.CSymm23, m.idSymm);
    symmetry.center.Link(m.xSymm, m.ySymm, m.zSymm);
    symmetry.area.Link(m.nxSymm, m.nySymm, m.nzSymm);
}

/// Fills the record of the fields, the cavities and the overset group.
void Blocks::LinkVariables() {
    temperature.assign(fvm.NcAll + 1, 0.0);
    zeros.assign(fvm.NcAll + 1, 0.0);
    ones.assign(fvm.NcAll + 1, 1.0);
    gv.flowVariables[0] = temperature.data();
    gv.flowVariables[1] = gv.flowVariables[2] = gv.flowVariables[3] = zeros.data();
    gv.mu = gv.cp = gv.cellRho = gv.cellK = ones.data();
    gv.rootDir = directory.data();
    gv.pProcessId = processId.data();
    gv.cavityId = cavity.data();
    groupSizes = {0, static_cast<int>(groupFaces.size()) - 1};
    groupRows = {nullptr, groupFaces.data()};
    gv.NOversetBCGroup = groupCount.data();
    gv.oversetBCFaceCount = groupSizes.data();
    gv.oversetBCWallFace = groupRows.data();
}
