#include "two_grids.h"

#include <cmath>

TwoGrids::TwoGrids(const Shape& shape, std::string resultDirectory)
    : depth(1.0 / shape.n), rootDirectory(std::move(resultDirectory)) {
    Block background{4 * shape.n, 4 * shape.n, false, [&](int i, int j) {
                         return Point{i * depth, j * depth};
                     }};
    background.west = shape.hasInlet ? Side::inlet : Side::outlet;
    background.east = Side::outlet;
    Add(background, 1);

    const double step = 2.0 * std::acos(-1.0) / shape.around;
    Block ring{shape.around, shape.across, true, [&](int i, int j) {
                   const double r = shape.inner + (shape.outer - shape.inner) * j / shape.across;
                   return Point{shape.x + r * std::cos(i * step), shape.y + r * std::sin(i * step)};
               }};
    ring.north = Side::overset;
    Add(ring, 2);

    NumberGhosts();
    Link();
}

void TwoGrids::Add(const Block& block, int cavityOfBlock) {
    const int firstNode = static_cast<int>(xn.size());
    const int firstCell = CellCount() + 1;
    for (int j = 0; j <= block.nj; ++j) {
        for (int i = 0; i < block.ni + (block.isRing ? 0 : 1); ++i) {
            for (int k = 0; k < 2; ++k) {
                xn.push_back(block.node(i, j).x);
                yn.push_back(block.node(i, j).y);
                zn.push_back(k * depth);
            }
        }
    }
    for (int j = 0; j < block.nj; ++j) {
        for (int i = 0; i < block.ni; ++i) {
            AddCell(block, i, j, firstNode);
            cavity.push_back(cavityOfBlock);
        }
    }
    for (int j = 0; j < block.nj; ++j) {
        for (int i = 0; i < block.ni; ++i) {
            const int cell = firstCell + i + block.ni * j;
            const bool isLast = i == block.ni - 1;
            const Point southWest = block.node(i, j), southEast = block.node(i + 1, j);
            const Point northWest = block.node(i, j + 1), northEast = block.node(i + 1, j + 1);
            if (!isLast || block.isRing) {
                AddFace(inner, southEast, northEast, cell, isLast ? cell + 1 - block.ni : cell + 1);
            } else {
                AddBoundaryFace(block.east, southEast, northEast, cell);
            }
            if (j < block.nj - 1) {
                AddFace(inner, northEast, northWest, cell, cell + block.ni);
            } else {
                AddBoundaryFace(block.north, northEast, northWest, cell);
            }
            if (i == 0 && !block.isRing) {
                AddBoundaryFace(block.west, northWest, southWest, cell);
            }
            if (j == 0) {
                AddBoundaryFace(block.south, southWest, southEast, cell);
            }
            AddSymmetryFaces(cell, volume[cell] / depth);
        }
    }
}

/// Adds a hexahedron with its nodes in VTK's order: around the lower side, then around the upper.
void TwoGrids::AddCell(const Block& block, int i, int j, int firstNode) {
    const int nodesPerRow = block.ni + (block.isRing ? 0 : 1);
    const auto nodeAt = [&](int iNode, int jNode, int k) {
        return firstNode + 2 * (iNode % nodesPerRow + nodesPerRow * jNode) + k;
    };
    std::vector<int> row{8};
    for (int k = 0; k < 2; ++k) {
        for (const auto& [di, dj] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
            row.push_back(nodeAt(i + di, j + dj, k));
        }
    }
    const Point a = block.node(i, j), b = block.node(i + 1, j);
    const Point c = block.node(i + 1, j + 1), d = block.node(i, j + 1);
    const double area = 0.5 * std::abs((c.x - a.x) * (d.y - b.y) - (c.y - a.y) * (d.x - b.x));
    xc.push_back(0.25 * (a.x + b.x + c.x + d.x));
    yc.push_back(0.25 * (a.y + b.y + c.y + d.y));
    zc.push_back(0.5 * depth);
    volume.push_back(area * depth);
    cellNodes.push_back(std::move(row));
}

/// Adds a face over the edge from a to b, whose area vector points away from `cell`.
void TwoGrids::AddFace(Faces& faces, Point a, Point b, int cell, int other) {
    const Point center{0.5 * (a.x + b.x), 0.5 * (a.y + b.y)};
    double nx = (b.y - a.y) * depth;
    double ny = (a.x - b.x) * depth;
    if (nx * (center.x - xc[cell]) + ny * (center.y - yc[cell]) < 0.0) {
        nx = -nx;
        ny = -ny;
    }
    faces.x.push_back(center.x);
    faces.y.push_back(center.y);
    faces.z.push_back(0.5 * depth);
    faces.nx.push_back(nx);
    faces.ny.push_back(ny);
    faces.nz.push_back(0.0);
    faces.cell.push_back(cell);
    faces.other.push_back(other);
}

void TwoGrids::AddBoundaryFace(Side side, Point a, Point b, int cell) {
    Faces& faces = side == Side::inlet ? inlet : side == Side::outlet ? outlet : wall;
    AddFace(faces, a, b, cell, 0);
    if (side == Side::overset) {  // outer faces are wall faces that a group lists
        groupFaces.push_back(static_cast<int>(wall.cell.size()) - 1);
        ++groupSizes[1];
    }
}

void TwoGrids::AddSymmetryFaces(int cell, double area) {
    for (const double direction : {-1.0, 1.0}) {
        symmetry.x.push_back(xc[cell]);
        symmetry.y.push_back(yc[cell]);
        symmetry.z.push_back(direction < 0.0 ? 0.0 : depth);
        symmetry.nx.push_back(0.0);
        symmetry.ny.push_back(0.0);
        symmetry.nz.push_back(direction * area);
        symmetry.cell.push_back(cell);
        symmetry.other.push_back(0);
    }
}

/// Gives each boundary face a ghost cell of its own, after the real cells.
void TwoGrids::NumberGhosts() {
    int ghost = CellCount();
    for (Faces* faces : {&inlet, &outlet, &wall, &symmetry}) {
        for (std::size_t face = 1; face < faces->other.size(); ++face) {
            faces->other[face] = ++ghost;
        }
    }
    fvm.NcAll = ghost;
}

void TwoGrids::Link() {
    const auto link = [](Faces& faces, int& count, double*& x, double*& y, double*& z, double*& nx,
                         double*& ny, double*& nz, int*& cell, int*& other) {
        count = static_cast<int>(faces.cell.size()) - 1;
        x = faces.x.data();
        y = faces.y.data();
        z = faces.z.data();
        nx = faces.nx.data();
        ny = faces.ny.data();
        nz = faces.nz.data();
        cell = faces.cell.data();
        other = faces.other.data();
    };
    CKVX3DFiniteVolumeMesh& m = fvm;
    link(inner, m.Ne, m.xe, m.ye, m.ze, m.nxe, m.nye, m.nze, m.Ce23[0], m.Ce23[1]);
    link(inlet, m.NInlet, m.xInlet, m.yInlet, m.zInlet, m.nxInlet, m.nyInlet, m.nzInlet, m.CInlet23,
         m.idInlet);
    link(outlet, m.NOutlet, m.xOutlet, m.yOutlet, m.zOutlet, m.nxOutlet, m.nyOutlet, m.nzOutlet,
         m.COutlet23, m.idOutlet);
    link(wall, m.NWall, m.xWall, m.yWall, m.zWall, m.nxWall, m.nyWall, m.nzWall, m.CWall23,
         m.idWall);
    link(symmetry, m.NSymm, m.xSymm, m.ySymm, m.zSymm, m.nxSymm, m.nySymm, m.nzSymm, m.CSymm23,
         m.idSymm);
    nonmatching.assign(inner.cell.size(), 0);
    m.nonmatchingFace = nonmatching.data();

    m.Nc = CellCount();
    m.Nn = static_cast<int>(xn.size()) - 1;
    m.xn = xn.data();
    m.yn = yn.data();
    m.zn = zn.data();
    m.xc = xc.data();
    m.yc = yc.data();
    m.zc = zc.data();
    m.volume = volume.data();
    for (std::vector<int>& row : cellNodes) {
        cellNodeRows.push_back(row.data());
    }
    m.cellNodes = cellNodeRows.data();

    temperature.assign(m.NcAll + 1, 0.0);
    ones.assign(m.NcAll + 1, 1.0);
    gv.flowVariables[0] = temperature.data();
    for (int axis = 0; axis < 3; ++axis) {
        velocity[axis].assign(m.NcAll + 1, 0.0);
        gv.flowVariables[axis + 1] = velocity[axis].data();
    }
    gv.mu = gv.cp = gv.cellRho = gv.cellK = ones.data();
    gv.rootDir = rootDirectory.data();
    gv.pProcessId = processId.data();
    gv.cavityId = cavity.data();
    groupRows = {nullptr, groupFaces.data()};
    gv.NOversetBCGroup = groupCount.data();
    gv.oversetBCFaceCount = groupSizes.data();
    gv.oversetBCWallFace = groupRows.data();
}
