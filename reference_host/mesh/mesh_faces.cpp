#include "reference_host/mesh/mesh_faces.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

#include "reference_host/mesh/mesh_geometry.h"
#include "reference_host/mesh/messages.h"

namespace host {
namespace {

using FaceKey = std::array<int, 4>;  // node ids in ascending order; a triangle begins with 0

/// Faces of a cell shape as positions in its node list, counter-clockwise seen from outside. A
/// triangle ends with -1. Positions are those of VTK's linear cells.
using ShapeFaces = std::vector<std::array<int, 4>>;

const ShapeFaces& FacesOfShape(std::size_t nodeCount) {
    static const ShapeFaces tetrahedron = {
        {0, 2, 1, -1}, {0, 1, 3, -1}, {1, 2, 3, -1}, {0, 3, 2, -1}};
    static const ShapeFaces pyramid = {
        {0, 3, 2, 1}, {0, 1, 4, -1}, {1, 2, 4, -1}, {2, 3, 4, -1}, {3, 0, 4, -1}};
    static const ShapeFaces prism = {
        {0, 2, 1, -1}, {3, 4, 5, -1}, {0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}};
    static const ShapeFaces hexahedron = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4},
                                          {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}};
    switch (nodeCount) {
        case 4:
            return tetrahedron;
        case 5:
            return pyramid;
        case 6:
            return prism;
        case 8:
            return hexahedron;
        default:
            throw std::runtime_error(fmt::format(
                "a cell of {} nodes is no tetrahedron, pyramid, prism or hexahedron", nodeCount));
    }
}

FaceKey KeyOf(const std::vector<int>& nodes) {
    FaceKey key = {0, 0, 0, 0};
    std::copy(nodes.begin(), nodes.end(), key.begin());
    std::sort(key.begin(), key.end());
    return key;
}

/// A face on the side of one of its cells.
struct HalfFace {
    FaceKey key;
    int cell = 0;
    int local = 0;    // position in FacesOfShape
    int partner = 0;  // half face of the other cell, 0 on the boundary
    int name = 0;     // position in the list of named faces + 1, 0 without a name
};

std::vector<int> NodesOf(const Mesh& mesh, int cell, int local) {
    const std::vector<int>& cellNodes = mesh.cellNodes[cell];
    std::vector<int> nodes;
    for (int position : FacesOfShape(cellNodes.size())[local]) {
        if (position >= 0) {
            nodes.push_back(cellNodes[position]);
        }
    }
    return nodes;
}

/// Half faces in the order of their cells, 1-based, with a search by key. Half faces with the same
/// smallest node form a linked list: its length does not grow with the mesh, because a node is the
/// smallest one of a dozen faces only.
class FaceTable {
public:
    explicit FaceTable(int nodeCount) : halves(1), next(1), head(nodeCount + 1, 0) {}

    /// Position of the first half face with the key, or 0.
    int Find(const FaceKey& key) const {
        int position = head[SmallestNode(key)];
        while (position > 0 && halves[position].key != key) {
            position = next[position];
        }
        return position;
    }

    /// Appends a half face. One with a partner enters no list, as nothing searches for it again.
    void Add(const HalfFace& half) {
        const int position = static_cast<int>(halves.size());
        halves.push_back(half);
        if (half.partner > 0) {
            next.push_back(0);
            halves[half.partner].partner = position;
        } else {
            next.push_back(head[SmallestNode(half.key)]);
            head[SmallestNode(half.key)] = position;
        }
    }

    std::vector<HalfFace> halves;

private:
    static int SmallestNode(const FaceKey& key) { return key[0] > 0 ? key[0] : key[1]; }

    std::vector<int> next;  // by half face
    std::vector<int> head;  // by node
};

void RefuseCollapsedCell(const Mesh& mesh, int cell) {
    std::vector<int> nodes = mesh.cellNodes[cell];
    std::sort(nodes.begin(), nodes.end());
    if (std::adjacent_find(nodes.begin(), nodes.end()) != nodes.end()) {
        throw std::runtime_error(
            fmt::format("{} has a node twice: use a prism, pyramid or tetrahedron in its place",
                        CellAt(mesh, cell)));
    }
}

/// Two grids that share nodes would be one grid with walls inside it, without an overlap in which
/// holes could be cut or values interpolated.
void RefuseSharedNodes(const Mesh& mesh) {
    std::vector<int> cellOfNode(mesh.nodes.size(), 0);
    for (int cell = 1; cell < static_cast<int>(mesh.cellNodes.size()); ++cell) {
        for (int node : mesh.cellNodes[cell]) {
            const int other = cellOfNode[node];
            cellOfNode[node] = cell;
            if (other == 0 || mesh.cavity[other] == mesh.cavity[cell]) {
                continue;
            }
            throw std::runtime_error(fmt::format(
                "node {} {} belongs to {} (cell {}) and to {} (cell {}): give each volume its own "
                "points, curves and surfaces, and merge nothing",
                node, At(mesh.nodes[node]), GridName(mesh, other), other, GridName(mesh, cell),
                cell));
        }
    }
}

FaceTable MatchCells(const Mesh& mesh) {
    FaceTable table(mesh.NodeCount());
    for (int cell = 1; cell < static_cast<int>(mesh.cellNodes.size()); ++cell) {
        RefuseCollapsedCell(mesh, cell);
        const int nFaces = static_cast<int>(FacesOfShape(mesh.cellNodes[cell].size()).size());
        for (int local = 0; local < nFaces; ++local) {
            const std::vector<int> nodes = NodesOf(mesh, cell, local);
            HalfFace half;
            half.key = KeyOf(nodes);
            half.cell = cell;
            half.local = local;
            half.partner = table.Find(half.key);
            const HalfFace& first = table.halves[half.partner];
            if (half.partner > 0 && first.partner > 0) {
                throw std::runtime_error(fmt::format(
                    "the face {} belongs to three cells ({}, {} and {}): remove the "
                    "volumes that overlap or are listed twice",
                    At(NodeMean(mesh, nodes)), first.cell, table.halves[first.partner].cell, cell));
            }
            table.Add(half);
        }
    }
    return table;
}

std::string NameOf(const NamedFace& face) {
    if (face.isBody) {
        return "body";
    }
    return face.interfaceSide < 0 ? FaceName(face.kind, face.oversetGroup)
                                  : fmt::format("interface{}", face.interfaceSide);
}

/// The reason why a named face cannot be the boundary face `half`, as the end of a sentence; empty
/// if there is none.
std::string NameFault(const Mesh& mesh, const std::vector<NamedFace>& named, const NamedFace& face,
                      const FaceTable& table, const HalfFace& half) {
    if (half.cell == 0) {
        return "bounds no cell: take its surface out of the group, or mesh its volume";
    }
    if (half.partner > 0) {
        return fmt::format(
            "lies inside a grid, between cells {} and {}: take its surface out of the group",
            half.cell, table.halves[half.partner].cell);
    }
    if (half.name > 0) {
        const NamedFace& other = named[half.name - 1];
        return fmt::format("beside cell {} is in \"{}\" already: keep it in one group", half.cell,
                           NameOf(other));
    }
    if (face.interfaceSide >= 0 && mesh.cavity[half.cell] != face.interfaceSide) {
        return fmt::format("lies beside {} (cell {}): {} is where block{} meets the other",
                           GridName(mesh, half.cell), half.cell, NameOf(face), face.interfaceSide);
    }
    if (face.oversetGroup > 0 && mesh.cavity[half.cell] != face.oversetGroup + 1) {
        return fmt::format("lies beside {} (cell {}): overset{} is the outer boundary of {}",
                           GridName(mesh, half.cell), half.cell, face.oversetGroup,
                           CavityName(face.oversetGroup + 1));
    }
    return "";
}

/// Gives each named face to the half face with the same nodes.
void MatchNames(const Mesh& mesh, const std::vector<NamedFace>& named, FaceTable& table) {
    for (std::size_t i = 0; i < named.size(); ++i) {
        const NamedFace& face = named[i];
        HalfFace& half = table.halves[table.Find(KeyOf(face.nodes))];
        const std::string fault = NameFault(mesh, named, face, table, half);
        if (!fault.empty()) {
            throw std::runtime_error(fmt::format("the \"{}\" face {} {}", NameOf(face),
                                                 At(NodeMean(mesh, face.nodes)), fault));
        }
        half.name = static_cast<int>(i) + 1;
    }
}

void RefuseNamelessFaces(const Mesh& mesh, const FaceTable& table) {
    int count = 0;
    const HalfFace* first = nullptr;
    for (std::size_t i = 1; i < table.halves.size(); ++i) {
        const HalfFace& half = table.halves[i];
        if (half.partner > 0 || half.name > 0) {
            continue;
        }
        first = count++ == 0 ? &half : first;
    }
    if (first != nullptr) {
        throw std::runtime_error(fmt::format(
            "boundary faces without a name: {}, the first {} beside cell {} of {}: put their "
            "surfaces into a group (inlet, outlet, wall, body, symmetry, overset1, overset2), or "
            "join the volumes that should meet there",
            count, At(NodeMean(mesh, NodesOf(mesh, first->cell, first->local))), first->cell,
            GridName(mesh, first->cell)));
    }
}

}  // namespace

void BuildFaces(Mesh& mesh, const std::vector<NamedFace>& named) {
    RefuseSharedNodes(mesh);
    FaceTable table = MatchCells(mesh);
    MatchNames(mesh, named, table);
    RefuseNamelessFaces(mesh, table);

    mesh.namesBody = false;
    mesh.innerFaces.assign(1, {});
    mesh.boundaryFaces.fill(std::vector<BoundaryFace>(1));
    mesh.interfaceFaces.fill(std::vector<BoundaryFace>(1));
    for (std::size_t i = 1; i < table.halves.size(); ++i) {
        const HalfFace& half = table.halves[i];
        if (half.partner > static_cast<int>(i)) {
            InnerFace face;
            face.owner = half.cell;
            face.neighbor = table.halves[half.partner].cell;
            face.nodes = NodesOf(mesh, half.cell, half.local);
            mesh.innerFaces.push_back(std::move(face));
        } else if (half.partner == 0) {
            const NamedFace& name = named[half.name - 1];
            BoundaryFace face;
            face.cell = half.cell;
            face.oversetGroup = name.oversetGroup;
            face.isBody = name.isBody;
            mesh.namesBody = mesh.namesBody || name.isBody;
            face.nodes = NodesOf(mesh, half.cell, half.local);
            auto& faces = name.interfaceSide < 0 ? mesh.boundaryFaces[static_cast<int>(name.kind)]
                                                 : mesh.interfaceFaces[name.interfaceSide];
            faces.push_back(std::move(face));
        }
    }
}

}  // namespace host
