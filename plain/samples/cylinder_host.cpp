#include "plain/samples/cylinder_host.h"

#include <cmath>
#include <cstddef>

namespace {

constexpr double pi = 3.14159265358979323846;

using Point = std::array<double, 3>;

Point Minus(const Point& a, const Point& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double Dot(const Point& a, const Point& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Point Cross(const Point& a, const Point& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

template <std::size_t N>
Point Mean(const std::array<Point, N>& points) {
    Point sum{};
    for (const Point& p : points) {
        for (std::size_t d = 0; d < 3; ++d) {
            sum[d] += p[d] / N;
        }
    }
    return sum;
}

/// Calls visit with each 0-based lattice position, axis 0 fastest.
template <typename Visit>
void ForEachPosition(const std::array<int, 3>& n, Visit visit) {
    for (int k = 0; k < n[2]; ++k) {
        for (int j = 0; j < n[1]; ++j) {
            for (int i = 0; i < n[0]; ++i) {
                visit(std::array<int, 3>{i, j, k});
            }
        }
    }
}

}  // namespace

CylinderHost::CylinderHost(int m) {
    const double h = 1.0 / m;
    const int nr = 2 * m;
    const Block background = {{12 * m, 8 * m, 2 * m},
                              false,
                              [h](int i, int j, int k) {
                                  return Point{-4.0 + i * h, -4.0 + j * h, k * h};
                              },
                              {inlet, outlet, wall, wall, symm, symm},
                              0};
    const Block component = {
        {12 * m, nr, 2 * m},
        true,
        [h, m, nr](int i, int j, int k) {
            const double r = 0.5 + (std::exp(1.5 * j / nr) - 1.0) / (std::exp(1.5) - 1.0);
            const double theta = 2.0 * pi * (i % (12 * m)) / (12 * m);
            return Point{0.0137 + r * std::cos(theta), 0.0071 + r * std::sin(theta), k * h};
        },
        {wall, wall, wall, overset, symm, symm},
        background.n[0] * background.n[1] * background.n[2]};
    AddCells(background, 1);
    AddCells(component, 2);
    AddFaces(background);
    AddFaces(component);
    Link();
}

void CylinderHost::AddCells(const Block& block, int cavityOfBlock) {
    ForEachPosition(block.n, [&](const std::array<int, 3>& at) {
        std::array<Point, 8> corners;
        for (int c = 0; c < 8; ++c) {
            corners[static_cast<std::size_t>(c)] =
                block.node(at[0] + (c & 1), at[1] + (c >> 1 & 1), at[2] + (c >> 2));
        }
        const Point diagonals = Cross(Minus(corners[3], corners[0]), Minus(corners[2], corners[1]));
        const Point mean = Mean(corners);
        for (std::size_t d = 0; d < 3; ++d) {
            center[d].push_back(mean[d]);
        }
        volume.push_back(0.5 * std::fabs(diagonals[2]) * (corners[4][2] - corners[0][2]));
        cavity.push_back(cavityOfBlock);
    });
}

void CylinderHost::AddFace(Faces& faces, const std::array<Point, 4>& nodes, const Point& outward,
                           int cell, int other) {
    const Point mean = Mean(nodes);
    Point area = Cross(Minus(nodes[2], nodes[0]), Minus(nodes[3], nodes[1]));
    const double half = Dot(area, outward) < 0.0 ? -0.5 : 0.5;
    for (std::size_t d = 0; d < 3; ++d) {
        faces.center[d].push_back(mean[d]);
        faces.area[d].push_back(half * area[d]);
    }
    faces.cell.push_back(cell);
    faces.other.push_back(other);
}

void CylinderHost::AddFaces(const Block& block) {
    const auto cellAt = [&block](const std::array<int, 3>& at) {
        return block.firstCell + 1 + at[0] + block.n[0] * (at[1] + block.n[1] * at[2]);
    };
    const auto facets = [&block](const std::array<int, 3>& at, std::size_t axis, int end) {
        const std::size_t b = (axis + 1) % 3;
        const std::size_t c = (axis + 2) % 3;
        std::array<Point, 4> nodes;
        for (std::size_t q = 0; q < 4; ++q) {
            std::array<int, 3> p = at;
            p[axis] += end;
            p[b] += q == 1 || q == 2 ? 1 : 0;
            p[c] += q >= 2 ? 1 : 0;
            nodes[q] = block.node(p[0], p[1], p[2]);
        }
        return nodes;
    };
    ForEachPosition(block.n, [&](const std::array<int, 3>& at) {
        const int cell = cellAt(at);
        const auto id = static_cast<std::size_t>(cell);
        const Point C = {center[0][id], center[1][id], center[2][id]};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            for (int end = 0; end < 2; ++end) {
                const bool atEnd = at[axis] == (end ? block.n[axis] - 1 : 0);
                const bool outer = atEnd && !(block.closed && axis == 0);
                if (!outer && end == 0) {
                    continue;
                }
                const auto nodes = facets(at, axis, end);
                const Point outward = Minus(Mean(nodes), C);
                if (!outer) {
                    std::array<int, 3> next = at;
                    next[axis] = (at[axis] + 1) % block.n[axis];
                    AddFace(inner, nodes, outward, cell, cellAt(next));
                    continue;
                }
                const Side side = block.sides[2 * axis + static_cast<std::size_t>(end)];
                const int kind = side == inlet ? 0 : side == outlet ? 1 : side == symm ? 3 : 2;
                AddFace(sideFaces[kind], nodes, outward, cell, 0);
                if (side == overset) {
                    groupFaces.push_back(static_cast<int>(sideFaces[2].cell.size()) - 1);
                }
            }
        }
    });
}

void CylinderHost::Link() {
    fvm.Nc = static_cast<int>(volume.size()) - 1;
    fvm.NcAll = fvm.Nc;
    for (Faces& faces : sideFaces) {
        for (std::size_t i = 1; i < faces.cell.size(); ++i) {
            faces.other[i] = ++fvm.NcAll;
        }
    }
    fvm.xc = center[0].data();
    fvm.yc = center[1].data();
    fvm.zc = center[2].data();
    fvm.volume = volume.data();

    fvm.Ne = static_cast<int>(inner.cell.size()) - 1;
    fvm.xe = inner.center[0].data();
    fvm.ye = inner.center[1].data();
    fvm.ze = inner.center[2].data();
    fvm.nxe = inner.area[0].data();
    fvm.nye = inner.area[1].data();
    fvm.nze = inner.area[2].data();
    fvm.Ce23[0] = inner.cell.data();
    fvm.Ce23[1] = inner.other.data();

    const auto link = [](Faces& from, int& n, double*& x, double*& y, double*& z, double*& nx,
                         double*& ny, double*& nz, int*& cell, int*& ghost) {
        n = static_cast<int>(from.cell.size()) - 1;
        x = from.center[0].data();
        y = from.center[1].data();
        z = from.center[2].data();
        nx = from.area[0].data();
        ny = from.area[1].data();
        nz = from.area[2].data();
        cell = from.cell.data();
        ghost = from.other.data();
    };
    link(sideFaces[0], fvm.NInlet, fvm.xInlet, fvm.yInlet, fvm.zInlet, fvm.nxInlet, fvm.nyInlet,
         fvm.nzInlet, fvm.CInlet23, fvm.idInlet);
    link(sideFaces[1], fvm.NOutlet, fvm.xOutlet, fvm.yOutlet, fvm.zOutlet, fvm.nxOutlet,
         fvm.nyOutlet, fvm.nzOutlet, fvm.COutlet23, fvm.idOutlet);
    link(sideFaces[2], fvm.NWall, fvm.xWall, fvm.yWall, fvm.zWall, fvm.nxWall, fvm.nyWall,
         fvm.nzWall, fvm.CWall23, fvm.idWall);
    link(sideFaces[3], fvm.NSymm, fvm.xSymm, fvm.ySymm, fvm.zSymm, fvm.nxSymm, fvm.nySymm,
         fvm.nzSymm, fvm.CSymm23, fvm.idSymm);

    gv.cavityId = cavity.data();
    gv.pProcessId = process.data();
    gv.NOversetBCGroup = &nGroups;
    groupFaceCount[1] = static_cast<int>(groupFaces.size()) - 1;
    gv.oversetBCFaceCount = groupFaceCount.data();
    groupRows[1] = groupFaces.data();
    gv.oversetBCWallFace = groupRows.data();
}
