#include "tests/support/box_host.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace {

constexpr int intPoison = -7777;
constexpr double doublePoison = std::numeric_limits<double>::quiet_NaN();

int Count(const std::vector<int>& array) {
    return static_cast<int>(array.size()) - 1;
}

bool Contains(const CellRange& range, const std::array<int, 3>& at) {
    for (std::size_t d = 0; d < 3; ++d) {
        if (at[d] < range.first[d] || at[d] > range.last[d]) {
            return false;
        }
    }
    return true;
}

/// Visits the lattice positions 1..n of a block, x fastest.
template <typename Visit>
void ForEachPosition(const std::array<int, 3>& n, Visit visit) {
    for (int k = 1; k <= n[2]; ++k) {
        for (int j = 1; j <= n[1]; ++j) {
            for (int i = 1; i <= n[0]; ++i) {
                visit(std::array<int, 3>{i, j, k});
            }
        }
    }
}

std::size_t Index(const std::array<int, 3>& n, const std::array<int, 3>& at) {
    return static_cast<std::size_t>(at[0] - 1 + n[0] * (at[1] - 1 + n[1] * (at[2] - 1)));
}

/// Center of the cell at `at`, shifted by `half` half cells along axis d.
BoxHost::Point CentreAt(const BoxHost::Point& origin, const BoxHost::Point& h,
                        const std::array<int, 3>& at, std::size_t axis, int half) {
    BoxHost::Point centre{};
    for (std::size_t d = 0; d < 3; ++d) {
        const double halves = 2.0 * at[d] - 1.0 + (d == axis ? half : 0);
        centre[d] = origin[d] + 0.5 * halves * h[d];
    }
    return centre;
}

double FaceSize(const BoxHost::Point& h, std::size_t axis) {
    return h[(axis + 1) % 3] * h[(axis + 2) % 3];
}

void Append(std::vector<double> (&arrays)[3], const BoxHost::Point& point) {
    for (std::size_t d = 0; d < 3; ++d) {
        arrays[d].push_back(point[d]);
    }
}

}  // namespace

/// A face with a cell on only one side.
struct BoxHost::OuterFace {
    enum Kind { inlet, outlet, wall, symm, part } kind;
    int group;  ///< overset group, 0 for none
    int block;
    int cell;
    Point centre;
    Point area;
};

BoxHost::BoxHost(int nx, int ny, int nz, Point origin, Point size) {
    if (size == Point{0, 0, 0}) {
        size = {static_cast<double>(nx), static_cast<double>(ny), static_cast<double>(nz)};
    }
    AddBlock(nx, ny, nz, origin, size, 0, 0);
}

BoxHost::BoxHost(const BoxHost& other) {
    *this = other;
}

BoxHost& BoxHost::operator=(const BoxHost& other) {
    if (this == &other) {
        return *this;
    }
    blocks = other.blocks;
    flaggedFaces = other.flaggedFaces;
    partitioned = other.partitioned;
    const Arrays values = other.arrays;  // a test may have changed them
    arrays = values;
    Build();
    arrays = values;
    LinkRecords();
    return *this;
}

BoxHost& BoxHost::AddBlock(int nx, int ny, int nz, Point origin, Point size, int group,
                           unsigned wallSides) {
    const Point h = {size[0] / nx, size[1] / ny, size[2] / nz};
    blocks.push_back({{nx, ny, nz}, origin, h, group, wallSides, {}, {}});
    Build();
    return *this;
}

BoxHost& BoxHost::WithComponentGrid(int nx, int ny, int nz, Point origin, Point size,
                                    unsigned wallSides) {
    int group = 1;
    for (const Block& block : blocks) {
        group = std::max(group, block.group + 1);
    }
    return AddBlock(nx, ny, nz, origin, size, group, wallSides);
}

BoxHost& BoxHost::WithSeparateBlock(int nx, int ny, int nz, Point origin, Point size) {
    return AddBlock(nx, ny, nz, origin, size, 0, 0);
}

BoxHost& BoxHost::WithBody(int block, CellRange cells) {
    blocks.at(static_cast<std::size_t>(block)).body = cells;
    Build();
    return *this;
}

BoxHost& BoxHost::WithNonmatchingFaces(const std::vector<int>& faces) {
    flaggedFaces = faces;
    Build();
    return *this;
}

BoxHost& BoxHost::WithPartitionFaces() {
    partitioned = true;
    Build();
    return *this;
}

BoxHost& BoxHost::WithRootDir(const std::string& directory) {
    arrays.rootDir.assign(directory.begin(), directory.end());
    arrays.rootDir.push_back('\0');
    LinkRecords();
    return *this;
}

BoxHost& BoxHost::WithProcess(int process) {
    arrays.process[0] = process;
    return *this;
}

int BoxHost::CellAt(int block, int i, int j, int k) const {
    const Block& b = blocks.at(static_cast<std::size_t>(block));
    return b.cellAt.at(Index(b.n, {i, j, k}));
}

int BoxHost::InnerFaceBetween(int cellA, int cellB) const {
    for (int face = 1; face <= fvm.Ne; ++face) {
        const int owner = fvm.Ce23[0][face];
        const int neighbor = fvm.Ce23[1][face];
        if ((owner == cellA && neighbor == cellB) || (owner == cellB && neighbor == cellA)) {
            return face;
        }
    }
    return 0;
}

void BoxHost::Build() {
    Arrays fresh;
    fresh.process = arrays.process;
    fresh.rootDir = arrays.rootDir;
    arrays = fresh;
    Boundary* const kinds[] = {&arrays.inlet, &arrays.outlet, &arrays.wall, &arrays.symm};
    for (Boundary* boundary : kinds) {
        Append(boundary->centre, {doublePoison, doublePoison, doublePoison});
        Append(boundary->area, {doublePoison, doublePoison, doublePoison});
        boundary->cell = boundary->ghost = {intPoison};
    }
    for (auto* triple : {&arrays.node, &arrays.cellCentre, &arrays.faceCentre, &arrays.faceArea}) {
        Append(*triple, {doublePoison, doublePoison, doublePoison});
    }
    arrays.volume = {doublePoison};
    arrays.owner = arrays.neighbor = arrays.nonmatching = {intPoison};
    arrays.cavity = arrays.groupFaceCount = {intPoison};
    arrays.cellNodes.resize(1);
    arrays.groupWallFaces.resize(1);

    for (std::size_t b = 0; b < blocks.size(); ++b) {
        AddLattice(blocks[b], static_cast<int>(b) + 1);
    }
    for (const Block& block : blocks) {
        AddInnerFaces(block);
        if (block.group > 0) {
            arrays.groupFaceCount.push_back(0);
            arrays.groupWallFaces.push_back({intPoison});
            ++arrays.groupCount[0];
        }
    }
    for (int face : flaggedFaces) {
        arrays.nonmatching.at(static_cast<std::size_t>(face)) = 1;
    }
    const std::vector<OuterFace> faces = OuterFaces();
    for (const OuterFace& face : faces) {
        if (face.kind != OuterFace::part) {
            AddBoundary(*kinds[face.kind], face);
        }
    }
    AddPartition(faces);
    AddFields(faces);
    LinkRecords();
}

void BoxHost::AddLattice(Block& block, int cavity) {
    const std::array<int, 3> nNodes = {block.n[0] + 1, block.n[1] + 1, block.n[2] + 1};
    const int firstNode = static_cast<int>(arrays.node[0].size());
    ForEachPosition(nNodes, [&](const std::array<int, 3>& at) {
        Point node{};
        for (std::size_t d = 0; d < 3; ++d) {
            node[d] = block.origin[d] + block.h[d] * (at[d] - 1);
        }
        Append(arrays.node, node);
    });
    const auto nodeAt = [&](int i, int j, int k) {
        return firstNode + static_cast<int>(Index(nNodes, {i, j, k}));
    };
    block.cellAt.clear();
    ForEachPosition(block.n, [&](const std::array<int, 3>& at) {
        if (Contains(block.body, at)) {
            block.cellAt.push_back(0);
            return;
        }
        const auto [i, j, k] = at;
        block.cellAt.push_back(static_cast<int>(arrays.volume.size()));
        Append(arrays.cellCentre, CentreAt(block.origin, block.h, at, 0, 0));
        arrays.volume.push_back(block.h[0] * block.h[1] * block.h[2]);
        arrays.cavity.push_back(cavity);
        arrays.cellNodes.push_back({8, nodeAt(i, j, k), nodeAt(i + 1, j, k),
                                    nodeAt(i + 1, j + 1, k), nodeAt(i, j + 1, k),
                                    nodeAt(i, j, k + 1), nodeAt(i + 1, j, k + 1),
                                    nodeAt(i + 1, j + 1, k + 1), nodeAt(i, j + 1, k + 1)});
    });
}

void BoxHost::AddInnerFaces(const Block& block) {
    ForEachPosition(block.n, [&](const std::array<int, 3>& at) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            std::array<int, 3> next = at;
            ++next[axis];
            if (next[axis] > block.n[axis]) {
                continue;
            }
            const int owner = block.cellAt[Index(block.n, at)];
            const int neighbor = block.cellAt[Index(block.n, next)];
            if (owner == 0 || neighbor == 0) {
                continue;
            }
            Point area{};
            area[axis] = FaceSize(block.h, axis);
            Append(arrays.faceCentre, CentreAt(block.origin, block.h, at, axis, 1));
            Append(arrays.faceArea, area);
            arrays.owner.push_back(owner);
            arrays.neighbor.push_back(neighbor);
            arrays.nonmatching.push_back(0);
        }
    });
}

std::vector<BoxHost::OuterFace> BoxHost::OuterFaces() const {
    const OuterFace::Kind backgroundKinds[6] = {
        OuterFace::inlet, partitioned ? OuterFace::part : OuterFace::outlet,
        OuterFace::wall,  OuterFace::wall,
        OuterFace::symm,  OuterFace::symm};
    std::vector<OuterFace> faces;
    std::vector<OuterFace> bodyFaces;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        const Block& block = blocks[b];
        std::vector<OuterFace> plainWalls;
        for (unsigned side = 0; side < 6; ++side) {
            const std::size_t axis = side / 2;
            const int step = side % 2 == 0 ? -1 : 1;
            ForEachPosition(block.n, [&](const std::array<int, 3>& at) {
                const int cell = block.cellAt[Index(block.n, at)];
                std::array<int, 3> next = at;
                next[axis] += step;
                const bool outer = next[axis] < 1 || next[axis] > block.n[axis];
                if (cell == 0 || (!outer && block.cellAt[Index(block.n, next)] != 0)) {
                    return;
                }
                OuterFace face{OuterFace::wall,
                               0,
                               static_cast<int>(b),
                               cell,
                               CentreAt(block.origin, block.h, at, axis, step),
                               {}};
                face.area[axis] = step * FaceSize(block.h, axis);
                const bool plain = block.group == 0 || (block.wallSides & (1u << side)) != 0;
                if (!outer) {
                    bodyFaces.push_back(face);
                } else if (b == 0) {
                    face.kind = backgroundKinds[side];
                    faces.push_back(face);
                } else if (plain) {
                    plainWalls.push_back(face);
                } else {
                    face.group = block.group;
                    faces.push_back(face);
                }
            });
        }
        faces.insert(faces.end(), plainWalls.begin(), plainWalls.end());
    }
    faces.insert(faces.end(), bodyFaces.begin(), bodyFaces.end());
    // Ghost cells are numbered in this order of the kinds.
    std::stable_sort(faces.begin(), faces.end(),
                     [](const OuterFace& a, const OuterFace& b) { return a.kind < b.kind; });
    return faces;
}

void BoxHost::AddBoundary(Boundary& boundary, const OuterFace& face) {
    Append(boundary.centre, face.centre);
    Append(boundary.area, face.area);
    boundary.cell.push_back(face.cell);
    int nGhosts = 0;
    for (const Boundary* kind : {&arrays.inlet, &arrays.outlet, &arrays.wall, &arrays.symm}) {
        nGhosts += Count(kind->ghost);
    }
    boundary.ghost.push_back(Count(arrays.cavity) + nGhosts + 1);
    if (face.group > 0) {
        const std::size_t group = static_cast<std::size_t>(face.group);
        arrays.groupWallFaces[group].push_back(Count(boundary.cell));
        ++arrays.groupFaceCount[group];
    }
}

void BoxHost::AddPartition(const std::vector<OuterFace>& faces) {
    const auto first = std::find_if(faces.begin(), faces.end(), [](const OuterFace& face) {
        return face.kind == OuterFace::part;
    });
    partition.Resize(static_cast<int>(faces.end() - first));
    int ghost = Count(arrays.cavity) + static_cast<int>(first - faces.begin());
    std::size_t i = 0;
    for (auto face = first; face != faces.end(); ++face) {
        ++i;
        partition.cell[i] = face->cell;
        partition.ghost[i] = ++ghost;
        partition.kind[i] = 1;
        for (std::size_t d = 0; d < 3; ++d) {
            partition.centre[d][i] = face->centre[d];
            partition.area[d][i] = face->area[d];
        }
    }
}

void BoxHost::AddFields(const std::vector<OuterFace>& faces) {
    const std::size_t nCells = arrays.volume.size() - 1;
    arrays.pressure = {doublePoison};
    Append(arrays.velocity, {doublePoison, doublePoison, doublePoison});
    for (std::size_t id = 1; id <= nCells + faces.size(); ++id) {
        Point at{};
        for (std::size_t d = 0; d < 3; ++d) {
            at[d] = id <= nCells ? arrays.cellCentre[d][id] : faces[id - nCells - 1].centre[d];
        }
        arrays.pressure.push_back(at[0] + 2 * at[1] + 3 * at[2]);
        Append(arrays.velocity, {1 + at[1], 0.5 * at[2], -at[0]});
    }
    const std::size_t slots = arrays.pressure.size();
    arrays.mu.assign(slots, 0.5);
    arrays.cp.assign(slots, 2.0);
    arrays.rho.assign(slots, 4.0);
    arrays.k.assign(slots, 0.25);
    for (auto* field : {&arrays.mu, &arrays.cp, &arrays.rho, &arrays.k}) {
        (*field)[0] = doublePoison;
    }
}
