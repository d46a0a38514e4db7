#include "plain/samples/setup_host.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <random>
#include <utility>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr int component = 2;  // cavity

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

/// Volume of a hexahedron from six tetrahedra around the diagonal from corner 0 to corner 7. The
/// bits of a corner's number are its position along the axes.
double VolumeOf(const std::array<Point, 8>& corners) {
    const Point diagonal = Minus(corners[7], corners[0]);
    double sum = 0.0;
    for (int first = 0; first < 3; ++first) {
        for (int step = 1; step <= 2; ++step) {
            const int a = 1 << first;
            const int b = a | 1 << (first + step) % 3;
            const Point along = Minus(corners[static_cast<std::size_t>(a)], corners[0]);
            const Point across = Minus(corners[static_cast<std::size_t>(b)], corners[0]);
            sum += (step == 1 ? 1.0 : -1.0) * Dot(Cross(along, across), diagonal);
        }
    }
    return std::fabs(sum) / 6.0;
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

/// The nodes of a block.
class SetupHost::Lattice {
public:
    explicit Lattice(const Block& block) : n{block.n[0] + 1, block.n[1] + 1, block.n[2] + 1} {
        ForEachPosition(n, [&](const std::array<int, 3>& at) {
            nodes.push_back(block.node(at[0], at[1], at[2]));
        });
    }

    const Point& At(int i, int j, int k) const {
        return nodes[static_cast<std::size_t>(i + n[0] * (j + n[1] * k))];
    }

    std::array<Point, 8> Corners(const std::array<int, 3>& at) const {
        std::array<Point, 8> corners;
        for (int c = 0; c < 8; ++c) {
            corners[static_cast<std::size_t>(c)] =
                At(at[0] + (c & 1), at[1] + (c >> 1 & 1), at[2] + (c >> 2));
        }
        return corners;
    }

    /// The nodes around the low or high side of a cell.
    std::array<Point, 4> Around(const std::array<int, 3>& at, std::size_t axis, int end) const {
        const std::size_t b = (axis + 1) % 3;
        const std::size_t c = (axis + 2) % 3;
        std::array<Point, 4> around;
        for (std::size_t q = 0; q < 4; ++q) {
            std::array<int, 3> p = at;
            p[axis] += end;
            p[b] += q == 1 || q == 2 ? 1 : 0;
            p[c] += q >= 2 ? 1 : 0;
            around[q] = At(p[0], p[1], p[2]);
        }
        return around;
    }

private:
    std::array<int, 3> n;
    std::vector<Point> nodes;
};

void SetupHost::Add(const Block& block, int cavityOfBlock) {
    const Lattice lattice(block);
    const int firstCell = static_cast<int>(volume.size());
    AddCells(block, lattice, cavityOfBlock);
    AddFaces(block, lattice, firstCell);
}

void SetupHost::AddCells(const Block& block, const Lattice& lattice, int cavityOfBlock) {
    ForEachPosition(block.n, [&](const std::array<int, 3>& at) {
        const std::array<Point, 8> corners = lattice.Corners(at);
        const Point mean = Mean(corners);
        for (std::size_t d = 0; d < 3; ++d) {
            center[d].push_back(mean[d]);
        }
        volume.push_back(VolumeOf(corners));
        cavity.push_back(cavityOfBlock);
    });
}

void SetupHost::AddFace(Faces& faces, const std::array<Point, 4>& nodes, const Point& outward,
                        int cell, int other) {
    const Point mean = Mean(nodes);
    const Point area = Cross(Minus(nodes[2], nodes[0]), Minus(nodes[3], nodes[1]));
    const double half = Dot(area, outward) < 0.0 ? -0.5 : 0.5;
    for (std::size_t d = 0; d < 3; ++d) {
        faces.center[d].push_back(mean[d]);
        faces.area[d].push_back(half * area[d]);
    }
    faces.cell.push_back(cell);
    faces.other.push_back(other);
}

void SetupHost::AddFaces(const Block& block, const Lattice& lattice, int firstCell) {
    const auto cellAt = [&block, firstCell](const std::array<int, 3>& at) {
        return firstCell + at[0] + block.n[0] * (at[1] + block.n[1] * at[2]);
    };
    ForEachPosition(block.n, [&](const std::array<int, 3>& at) {
        const int cell = cellAt(at);
        const auto id = static_cast<std::size_t>(cell);
        const Point C = {center[0][id], center[1][id], center[2][id]};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            for (int end = 0; end < 2; ++end) {
                const bool atEnd = at[axis] == (end ? block.n[axis] - 1 : 0);
                const bool outer = atEnd && !(block.closed && axis == 0);
                const Side side = block.sides[2 * axis + static_cast<std::size_t>(end)];
                if (outer ? side == open : end == 0) {
                    continue;
                }
                const auto nodes = lattice.Around(at, axis, end);
                const Point outward = Minus(Mean(nodes), C);
                if (!outer) {
                    std::array<int, 3> next = at;
                    next[axis] = (at[axis] + 1) % block.n[axis];
                    AddFace(inner, nodes, outward, cell, cellAt(next));
                    continue;
                }
                const int kind = side == inlet ? 0 : side == outlet ? 1 : side == symm ? 3 : 2;
                AddFace(sideFaces[kind], nodes, outward, cell, 0);
                if (side == overset) {
                    groupFaces.push_back(static_cast<int>(sideFaces[2].cell.size()) - 1);
                }
            }
        }
    });
}

void SetupHost::Link() {
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
    link(inner, fvm.Ne, fvm.xe, fvm.ye, fvm.ze, fvm.nxe, fvm.nye, fvm.nze, fvm.Ce23[0],
         fvm.Ce23[1]);
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

std::vector<int> SetupHost::NumberCellsAtRandom(unsigned seed) {
    std::vector<int> number(volume.size());
    std::iota(number.begin(), number.end(), 0);
    std::mt19937 random(seed);
    std::shuffle(number.begin() + 1, number.end(), random);
    const auto renumber = [&number](auto& values) {
        auto moved = values;
        for (std::size_t cell = 1; cell < values.size(); ++cell) {
            moved[static_cast<std::size_t>(number[cell])] = values[cell];
        }
        std::copy(moved.begin(), moved.end(), values.begin());
    };
    for (std::vector<double>& coordinate : center) {
        renumber(coordinate);
    }
    renumber(volume);
    renumber(cavity);
    const auto rename = [&number](std::vector<int>& cells) {
        for (int& cell : cells) {
            cell = number[static_cast<std::size_t>(cell)];
        }
    };
    rename(inner.cell);
    rename(inner.other);
    for (Faces& faces : sideFaces) {
        rename(faces.cell);
    }
    return number;
}

void SetupHost::MoveFaces(Faces& faces, const Point& by) {
    for (std::size_t i = 1; i < faces.cell.size(); ++i) {
        if (cavity[static_cast<std::size_t>(faces.cell[i])] == component) {
            for (std::size_t d = 0; d < 3; ++d) {
                faces.center[d][i] += by[d];
            }
        }
    }
}

void SetupHost::MoveComponent(double dx, double dy, double dz) {
    const Point by = {dx, dy, dz};
    for (std::size_t cell = 1; cell < cavity.size(); ++cell) {
        if (cavity[cell] == component) {
            for (std::size_t d = 0; d < 3; ++d) {
                center[d][cell] += by[d];
            }
        }
    }
    MoveFaces(inner, by);
    for (Faces& faces : sideFaces) {
        MoveFaces(faces, by);
    }
}

SetupHost::Block SetupHost::Channel(int m) {
    const double h = 1.0 / m;
    return {{12 * m, 8 * m, 2 * m},
            false,
            [h](int i, int j, int k) {
                return Point{-4.0 + i * h, -4.0 + j * h, k * h};
            },
            {inlet, outlet, wall, wall, symm, symm}};
}

SetupHost::Block SetupHost::Ring(int m, double start, std::function<double(double)> outline) {
    const int nr = 2 * m;
    const auto node = [m, nr, start, outline = std::move(outline)](int i, int j, int k) {
        const double theta = 2.0 * pi * (i % (12 * m)) / (12 * m);
        const double share = (std::exp(1.5 * j / nr) - 1.0) / (std::exp(1.5) - 1.0);
        const double r = 0.5 + share * (outline(theta) - 0.5);
        return Point{0.0137 + r * std::cos(start + theta), 0.0071 + r * std::sin(start + theta),
                     k * (1.0 / m)};
    };
    return {{12 * m, nr, 2 * m}, true, node, {wall, wall, wall, overset, symm, symm}};
}
