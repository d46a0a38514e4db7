#include "host_checks/detail/outer_boundary.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <tuple>

namespace kvx3d::checks {

OuterBoundary::OuterBoundary(const MeshView& view, std::vector<int> overset, BoxTree& backgrounds)
    : mesh(view), faces(std::move(overset)) {
    for (int face : faces) {
        cells.push_back(backgrounds.Nearest(mesh.Walls().Center(face)).front());
        nodes.push_back(mesh.WallFaceNodes(face));
    }
    FindNeighbors();
    FindPieces();
}

/// Sorts all edges by their nodes, so that an edge of two faces occurs twice in succession.
void OuterBoundary::FindNeighbors() {
    std::vector<std::tuple<int, int, int>> edges;  // lower node, higher node, face
    for (int i = 0; i < Count(); ++i) {
        for (std::size_t k = 0; k < nodes[i].size(); ++k) {
            const auto [low, high] = std::minmax(nodes[i][k], nodes[i][(k + 1) % nodes[i].size()]);
            edges.emplace_back(low, high, i);
        }
    }
    std::sort(edges.begin(), edges.end());
    for (std::size_t e = 1; e < edges.size(); ++e) {
        const auto& [low, high, face] = edges[e - 1];
        const auto& [nextLow, nextHigh, nextFace] = edges[e];
        if (low == nextLow && high == nextHigh) {
            neighbors.emplace_back(face, nextFace);
        }
    }
    std::sort(neighbors.begin(), neighbors.end());
}

/// Joins neighbors with a union-find structure.
void OuterBoundary::FindPieces() {
    std::vector<int> leader(faces.size());
    std::iota(leader.begin(), leader.end(), 0);
    const auto find = [&](int i) {
        while (leader[i] != i) {
            i = leader[i] = leader[leader[i]];
        }
        return i;
    };
    for (const auto& [i, k] : neighbors) {
        leader[find(i)] = find(k);
    }
    std::map<int, std::vector<int>> byLeader;
    for (int i = 0; i < Count(); ++i) {
        byLeader[find(i)].push_back(i);
    }
    for (auto& piece : byLeader) {
        pieces.push_back(std::move(piece.second));
    }
}

}  // namespace kvx3d::checks
