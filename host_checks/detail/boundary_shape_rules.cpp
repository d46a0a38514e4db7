#include "host_checks/detail/boundary_shape_rules.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "host_checks/detail/messages.h"
#include "host_checks/detail/plane_search.h"
#include "host_checks/mesh_rules.h"

namespace kvx3d::checks {
namespace {

/// Longest edge of a face; on a mesh one cell thick, in the plane of the mesh.
double LongestEdge(const MeshView& mesh, const std::vector<int>& nodes) {
    double longest = 0.0;
    for (std::size_t k = 0; k < nodes.size(); ++k) {
        Point along = mesh.Node(nodes[(k + 1) % nodes.size()]) - mesh.Node(nodes[k]);
        if (mesh.IsOneCellThick()) {
            const Point across = mesh.ThinDirection();
            along = along - Dot(along, across) * across;
        }
        longest = std::max(longest, Norm(along));
    }
    return longest;
}

/// Extent of the cell beside an outer face across that face, if the cell had a regular shape.
double LayerThickness(const MeshView& mesh, int cell, const Point& area, int faceNodes) {
    const int nNodes = mesh.NodeCount(cell);
    const bool endsInPoint = nNodes < 6;
    const bool endsInEdge = nNodes == 6 && faceNodes == 4;
    const double factor = endsInPoint ? 3.0 : endsInEdge ? 2.0 : 1.0;
    return factor * mesh.fvm.volume[cell] / Norm(area);
}

}  // namespace

void CheckFaceSizes(const OuterBoundary& outer, std::vector<Fault>& faults) {
    const MeshView& mesh = outer.mesh;
    FaultCounter shapeless(Rule::CellNodes);
    FaultCounter large(Rule::OuterFaceSize);
    for (int i = 0; i < outer.Count(); ++i) {
        if (outer.nodes[i].size() < 3) {
            shapeless.Add(outer.faces[i], [&] {
                return WallFaceAt(mesh, outer.faces[i]) + " has fewer than three nodes of " +
                       CellAt(mesh, mesh.Walls().cell[outer.faces[i]]) + " in its plane";
            });
            continue;
        }
        const double longest = LongestEdge(mesh, outer.nodes[i]);
        const double factor =
            outer.nodes[i].size() == 3 ? limit::maxTriangleEdge : limit::maxQuadEdge;
        const double allowed = factor * mesh.EdgeLength(outer.cells[i]);
        if (longest > allowed) {
            large.Add(outer.faces[i], [&] {
                return WallFaceAt(mesh, outer.faces[i]) + " has an edge of " + Digits(longest, 3) +
                       ", more than " + Digits(factor) + " background cells (" +
                       Digits(allowed, 3) + ")";
            });
        }
    }
    shapeless.AppendTo(faults, "list the nodes of each cell, and give each face its own center");
    large.AppendTo(faults, "refine the overset boundary to the size of the background cells");
}

void CheckLayer(const OuterBoundary& outer, std::vector<Fault>& faults) {
    const MeshView& mesh = outer.mesh;
    FaultCounter layers(Rule::OuterLayer);
    for (int i = 0; i < outer.Count(); ++i) {
        const int cell = mesh.Walls().cell[outer.faces[i]];
        const int nNodes = mesh.NodeCount(cell);
        const int faceNodes = static_cast<int>(outer.nodes[i].size());
        const bool isExtruded = nNodes == 8 || (nNodes == 6 && faceNodes == 3);
        const double most = isExtruded ? limit::maxLayer : limit::maxTaperedLayer;
        const double ratio =
            LayerThickness(mesh, cell, outer.Area(i), faceNodes) / mesh.EdgeLength(outer.cells[i]);
        if (ratio < limit::minLayer || ratio > most) {
            layers.Add(cell, [&] {
                return CellAt(mesh, cell) + " at the overset boundary is " + Digits(ratio, 3) +
                       " background cells thick";
            });
        }
    }
    layers.AppendTo(faults, "make it " + Digits(limit::minLayer) + " to " +
                                Digits(limit::maxLayer) + " cells thick (tetrahedra to " +
                                Digits(limit::maxTaperedLayer) + ")");
}

void CheckSmooth(const OuterBoundary& outer, std::vector<Fault>& faults) {
    const double degree = std::acos(-1.0) / 180.0;
    FaultCounter corners(Rule::SmoothBoundary);
    for (const auto& [i, k] : outer.neighbors) {
        const double cosine = Dot(Unit(outer.Area(i)), Unit(outer.Area(k)));
        const double bend = std::acos(std::clamp(cosine, -1.0, 1.0)) / degree;
        if (bend > limit::maxBend) {
            corners.Add(outer.faces[i], [&, i = i, k = k] {
                return WallFaceAt(outer.mesh, outer.faces[i]) + " and wall face " +
                       std::to_string(outer.faces[k]) + " meet at " + Digits(bend, 3) + " degrees";
            });
        }
    }
    corners.AppendTo(faults,
                     "round the overset boundary, its faces may turn by " + Digits(limit::maxBend));
}

void CountHollows(const OuterBoundary& outer, FaultCounter& hollows) {
    const MeshView& mesh = outer.mesh;
    for (const std::vector<int>& piece : outer.pieces) {
        std::vector<Point> centers, normals;
        for (int i : piece) {
            centers.push_back(outer.Center(i));
            normals.push_back(Unit(outer.Area(i)));
        }
        const PlaneSearch search(centers, normals);
        for (std::size_t p = 0; p < piece.size(); ++p) {
            const int i = piece[p];
            const double allowed = limit::maxBulge * mesh.EdgeLength(outer.cells[i]);
            if (!search.AnyInFront(centers[p], normals[p], allowed)) {
                continue;
            }
            hollows.Add(outer.faces[i], [&] {
                std::size_t k = 0;
                while (Dot(centers[k] - centers[p], normals[p]) <= allowed) {
                    ++k;
                }
                return WallFaceAt(mesh, outer.faces[piece[k]]) + " lies " +
                       Digits(Dot(centers[k] - centers[p], normals[p]), 3) +
                       " in front of the plane of wall face " + std::to_string(outer.faces[i]) +
                       " " + At(centers[p]);
            });
        }
    }
}

}  // namespace kvx3d::checks
