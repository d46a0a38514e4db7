#include "plain/samples/block_host.h"

#include <cmath>
#include <utility>

namespace {

using Point = kvx3d::checks::Point;

void Append(std::vector<double> (&arrays)[3], const Point& point) {
    arrays[0].push_back(point.x);
    arrays[1].push_back(point.y);
    arrays[2].push_back(point.z);
}

template <typename Visit>
void ForEachPosition(const std::array<int, 3>& n, Visit visit) {
    for (int k = 0; k < n[2]; ++k) {
        for (int j = 0; j < n[1]; ++j) {
            for (int i = 0; i < n[0]; ++i) {
                visit(i, j, k);
            }
        }
    }
}

}  // namespace

void BlockHost::Add(const Block& block) {
    firstNode = static_cast<int>(nodes[0].size());
    firstCell = static_cast<int>(volumes.size());
    while (static_cast<int>(groups.size()) <= block.group) {
        groups.push_back({0});
    }
    AddNodes(block);
    AddCells(block);
    AddFaces(block);
    Link();
}

void BlockHost::AddNodes(const Block& block) {
    const std::array<int, 3> n = {block.n[0] + (block.closed ? 0 : 1), block.n[1] + 1,
                                  block.n[2] + 1};
    ForEachPosition(n, [&](int i, int j, int k) { Append(nodes, block.node(i, j, k)); });
}

void BlockHost::AddCells(const Block& block) {
    const int nx = block.n[0] + (block.closed ? 0 : 1);
    const int ny = block.n[1] + 1;
    const auto id = [&](int i, int j, int k) { return firstNode + (i % nx) + nx * (j + ny * k); };
    const int cavity = cavities.back() + 1;
    ForEachPosition(block.n, [&](int i, int j, int k) {
        cellNodes.push_back({8, id(i, j, k), id(i + 1, j, k), id(i + 1, j + 1, k), id(i, j + 1, k),
                             id(i, j, k + 1), id(i + 1, j, k + 1), id(i + 1, j + 1, k + 1),
                             id(i, j + 1, k + 1)});
        const int cell = static_cast<int>(volumes.size());
        Point center;
        for (int corner = 1; corner <= 8; ++corner) {
            center = center + NodeAt(cellNodes[cell][corner]);
        }
        Append(centers, 0.125 * center);
        volumes.push_back(0.0);
        cavities.push_back(cavity);
    });
}

/// Nodes around a side of a cell: low and high end of each axis.
std::array<int, 4> BlockHost::SideNodes(int cell, int side) const {
    static constexpr int corners[6][4] = {{1, 4, 8, 5}, {2, 3, 7, 6}, {1, 2, 6, 5},
                                          {4, 3, 7, 8}, {1, 2, 3, 4}, {5, 6, 7, 8}};
    std::array<int, 4> ids{};
    for (int i = 0; i < 4; ++i) {
        ids[i] = cellNodes[cell][corners[side][i]];
    }
    return ids;
}

BlockHost::Point BlockHost::CellCenter(int cell) const {
    return {centers[0][cell], centers[1][cell], centers[2][cell]};
}

/// Adds a face whose area vector points out of `cell`, and its share of the cell's volume, and of
/// that of `other` if it is a cell.
void BlockHost::AddFace(Faces& faces, int cell, int side, int other) {
    const std::array<int, 4> ids = SideNodes(cell, side);
    const Point a = NodeAt(ids[0]), b = NodeAt(ids[1]), c = NodeAt(ids[2]), d = NodeAt(ids[3]);
    const Point center = 0.25 * (a + b + c + d);
    Point area = 0.5 * Cross(c - a, d - b);
    if (Dot(area, center - CellCenter(cell)) < 0) {
        area = -area;
    }
    Append(faces.center, center);
    Append(faces.area, area);
    faces.cell.push_back(cell);
    faces.other.push_back(other);
    volumes[cell] += Dot(area, center - CellCenter(cell)) / 3.0;
    if (&faces == &inner) {
        volumes[other] -= Dot(area, center - CellCenter(other)) / 3.0;
    }
}

void BlockHost::AddFaces(const Block& block) {
    const std::array<int, 3> stride = {1, block.n[0], block.n[0] * block.n[1]};
    ForEachPosition(block.n, [&](int i, int j, int k) {
        const std::array<int, 3> at = {i, j, k};
        const int cell = firstCell + i + stride[1] * j + stride[2] * k;
        for (int axis = 0; axis < 3; ++axis) {
            const bool wraps = axis == 0 && block.closed;
            if (at[axis] + 1 < block.n[axis]) {
                AddFace(inner, cell, 2 * axis + 1, cell + stride[axis]);
            } else if (wraps) {
                AddFace(inner, cell, 1, cell - (block.n[0] - 1));
            }
            for (int end = 0; end < 2 && !wraps; ++end) {
                if (at[axis] != (end == 0 ? 0 : block.n[axis] - 1)) {
                    continue;
                }
                const Side side = block.sides[2 * axis + end];
                AddFace(boundary[side == overset ? wall : side], cell, 2 * axis + end, 0);
                if (side == overset) {
                    groups[block.group].push_back(static_cast<int>(boundary[wall].cell.size()) - 1);
                }
            }
        }
    });
}

void BlockHost::Link() {
    const auto count = [](const std::vector<int>& array) {
        return static_cast<int>(array.size()) - 1;
    };
    const auto link = [](double*& x, double*& y, double*& z, std::vector<double>(&from)[3]) {
        x = from[0].data();
        y = from[1].data();
        z = from[2].data();
    };
    fvm.Nn = static_cast<int>(nodes[0].size()) - 1;
    fvm.Nc = count(cavities);
    fvm.Ne = count(inner.cell);
    int ghost = fvm.Nc;
    for (Faces& faces : boundary) {
        for (std::size_t face = 1; face < faces.other.size(); ++face) {
            faces.other[face] = ++ghost;
        }
    }
    fvm.NcAll = ghost;
    cellNodeRows.assign(1, nullptr);
    for (int cell = 1; cell <= fvm.Nc; ++cell) {
        cellNodeRows.push_back(cellNodes[cell].data());
    }
    nonmatching.assign(fvm.Ne + 1, 0);
    link(fvm.xn, fvm.yn, fvm.zn, nodes);
    link(fvm.xc, fvm.yc, fvm.zc, centers);
    link(fvm.xe, fvm.ye, fvm.ze, inner.center);
    link(fvm.nxe, fvm.nye, fvm.nze, inner.area);
    fvm.volume = volumes.data();
    fvm.cellNodes = cellNodeRows.data();
    fvm.Ce23[0] = inner.cell.data();
    fvm.Ce23[1] = inner.other.data();
    fvm.nonmatchingFace = nonmatching.data();
    const auto linkKind = [&](Side kind, int& n, double*& x, double*& y, double*& z, double*& nx,
                              double*& ny, double*& nz, int*& cell, int*& ghosts) {
        n = count(boundary[kind].cell);
        link(x, y, z, boundary[kind].center);
        link(nx, ny, nz, boundary[kind].area);
        cell = boundary[kind].cell.data();
        ghosts = boundary[kind].other.data();
    };
    linkKind(inlet, fvm.NInlet, fvm.xInlet, fvm.yInlet, fvm.zInlet, fvm.nxInlet, fvm.nyInlet,
             fvm.nzInlet, fvm.CInlet23, fvm.idInlet);
    linkKind(outlet, fvm.NOutlet, fvm.xOutlet, fvm.yOutlet, fvm.zOutlet, fvm.nxOutlet, fvm.nyOutlet,
             fvm.nzOutlet, fvm.COutlet23, fvm.idOutlet);
    linkKind(wall, fvm.NWall, fvm.xWall, fvm.yWall, fvm.zWall, fvm.nxWall, fvm.nyWall, fvm.nzWall,
             fvm.CWall23, fvm.idWall);
    linkKind(symmetry, fvm.NSymm, fvm.xSymm, fvm.ySymm, fvm.zSymm, fvm.nxSymm, fvm.nySymm,
             fvm.nzSymm, fvm.CSymm23, fvm.idSymm);
    LinkGroups();
}

void BlockHost::LinkGroups() {
    groupCount.assign(1, static_cast<int>(groups.size()) - 1);
    groupSizes.assign(1, 0);
    groupRows.assign(1, nullptr);
    for (std::size_t group = 1; group < groups.size(); ++group) {
        groupSizes.push_back(static_cast<int>(groups[group].size()) - 1);
        groupRows.push_back(groups[group].data());
    }
    gv.NOversetBCGroup = groupCount.data();
    gv.oversetBCFaceCount = groupSizes.data();
    gv.oversetBCWallFace = groupRows.data();
    gv.cavityId = cavities.data();
    gv.rootDir = rootDir.data();
    gv.pProcessId = process.data();
    fields.assign(8, std::vector<double>(fvm.NcAll + 1, 1.0));
    for (int i = 0; i < 4; ++i) {
        gv.flowVariables[i] = fields[i].data();
    }
    gv.mu = fields[4].data();
    gv.cp = fields[5].data();
    gv.cellRho = fields[6].data();
    gv.cellK = fields[7].data();
}

AnnulusHost::AnnulusHost(const AnnulusShape& shape) {
    const double h = 1.0 / shape.n;
    const double dz = shape.depth / shape.layers;
    Block box;
    box.n = {static_cast<int>(std::lround(shape.width * shape.n)), 4 * shape.n, shape.layers};
    box.node = [=](int i, int j, int k) { return shape.scale * Point{i * h, j * h, k * dz}; };
    box.sides = {inlet, outlet, wall, wall, symmetry, symmetry};
    Add(box);
    AddAnnulus(shape, shape.x, 1, shape.outerRadius);
    if (shape.hasSecond) {
        AddAnnulus(shape, shape.x + 4.0, 2, shape.secondRadius);
    }
}

void AnnulusHost::AddAnnulus(const AnnulusShape& shape, double x, int group,
                             const std::function<double(double)>& outerRadius) {
    const double turn = 2.0 * std::acos(-1.0) / shape.around;
    const double dz = shape.depth / shape.layers;
    Block annulus;
    annulus.n = {shape.around, shape.across, shape.layers};
    annulus.closed = true;
    annulus.group = group;
    annulus.node = [=](int i, int j, int k) {
        const double angle = i * turn;
        const double outer = outerRadius ? outerRadius(angle) : shape.outer;
        const double r = shape.inner + (outer - shape.inner) * j / shape.across;
        return shape.scale * Point{x + r * std::cos(angle), shape.y + r * std::sin(angle), k * dz};
    };
    annulus.sides = {wall, wall, wall, overset, symmetry, symmetry};
    Add(annulus);
}
