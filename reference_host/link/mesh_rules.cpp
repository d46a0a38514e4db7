#include "reference_host/link/mesh_rules.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>
#include <optional>
#include <utility>

#include "reference_host/link/fault_count.h"
#include "reference_host/mesh/cell_size.h"
#include "reference_host/mesh/messages.h"
#include "reference_host/mesh/point_tree.h"

namespace host {
namespace {

using Lines = std::vector<std::string>;

const std::vector<BoundaryFace>& Walls(const Mesh& mesh) {
    return mesh.Faces(Boundary::Wall);
}

/// Wall faces of an overset group (0: physical walls) beside a cavity.
std::vector<int> WallFaces(const Mesh& mesh, int group, int cavity) {
    std::vector<int> faces;
    for (int i = 1; i <= mesh.FaceCount(Boundary::Wall); ++i) {
        const BoundaryFace& face = Walls(mesh)[i];
        if (face.oversetGroup == group && mesh.cavity[face.cell] == cavity) {
            faces.push_back(i);
        }
    }
    return faces;
}

std::vector<int> CellsOf(const Mesh& mesh, int cavity) {
    std::vector<int> cells;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (mesh.cavity[cell] == cavity) {
            cells.push_back(cell);
        }
    }
    return cells;
}

/// Both grids around the overset boundary of component1, with what the rules ask of them.
struct Interface {
    explicit Interface(const Mesh& mesh_)
        : mesh(mesh_),
          overset(WallFaces(mesh, 1, 2)),
          walls(WallFaces(mesh, 0, 1)),
          body(WallFaces(mesh, 0, 2)),
          edge(EdgeLengths(mesh)) {}

    /// Trees recurse, so they are grown after their depth has been checked.
    void GrowTrees() {
        const auto wallCentre = [&](int face) -> const Vec3& { return Walls(mesh)[face].centre; };
        backgroundTree.emplace(CellsOf(mesh, 1),
                               [&](int cell) -> const Vec3& { return mesh.cellCentre[cell]; });
        wallTree.emplace(walls, wallCentre);
        oversetTree.emplace(overset, wallCentre);
    }

    /// Background cell at an overset face.
    int CellBeside(int wallFace) const {
        return backgroundTree->Nearest(Walls(mesh)[wallFace].centre);
    }

    const Mesh& mesh;
    std::vector<int> overset, walls, body;  // wall-face numbers
    std::vector<double> edge;               // by cell
    std::optional<PointTree> backgroundTree, wallTree, oversetTree;
};

void CheckGroups(const Interface& face, Lines& lines) {
    const Mesh& mesh = face.mesh;
    FaultCount inlets;
    for (int i = 1; i <= mesh.FaceCount(Boundary::Inlet); ++i) {
        const BoundaryFace& inlet = mesh.Faces(Boundary::Inlet)[i];
        if (mesh.cavity[inlet.cell] != 1) {
            inlets.Add([&] {
                return fmt::format("inlet face {} {} lies beside {}", i, At(inlet.centre),
                                   CavityName(mesh.cavity[inlet.cell]));
            });
        }
    }
    inlets.ReportTo(lines, "only the background has inlets");
    if (mesh.FaceCount(Boundary::Inlet) == 0) {
        lines.push_back(
            "there is no inlet face: give the background one, the toolbox knows it by "
            "its inlet");
    }
    if (face.walls.empty()) {
        lines.push_back(
            "no physical wall lies beside the background: give it at least one wall "
            "face, the cutting at walls searches among them");
    }
    if (face.overset.empty()) {
        lines.push_back(
            "no overset1 face lies beside component1: put its outer boundary into the "
            "group overset1");
    }
    for (int cavity = 1; cavity <= mesh.GridCount(); ++cavity) {
        const std::vector<int> cells = CellsOf(mesh, cavity);
        if (cells.size() < 2) {
            lines.push_back(fmt::format(
                "{} has {} cell{}: give each grid two cells at least, and use component1 before "
                "component2",
                CavityName(cavity), cells.size(), cells.size() == 1 ? "" : "s"));
        }
    }
}

void CheckTreeDepth(const Interface& face, Lines& lines) {
    const Mesh& mesh = face.mesh;
    const auto check = [&](const std::string& what, const std::vector<int>& ids, const auto& at) {
        std::vector<Vec3> points;
        points.reserve(ids.size());
        for (int id : ids) {
            points.push_back(at(id));
        }
        if (TreeDepth(points, rule::maxTreeDepth) > rule::maxTreeDepth) {
            lines.push_back(fmt::format(
                "the search tree of {} is more than {} levels deep, and searches could overflow "
                "the stack: number a thousand scattered ones first, the rest as before",
                what, rule::maxTreeDepth));
        }
    };
    const auto cellCentre = [&](int cell) { return mesh.cellCentre[cell]; };
    const auto faceCentre = [&](int wall) { return Walls(mesh)[wall].centre; };
    check("the background cells", CellsOf(mesh, 1), cellCentre);
    check("the component1 cells", CellsOf(mesh, 2), cellCentre);
    check("the background's wall faces", face.walls, faceCentre);
    check("the overset1 faces", face.overset, faceCentre);
}

/// The toolbox's own test, operation by operation: one cell that passes it, and the cutting under
/// the component goes wrong over the whole background.
void CheckCellsAtWalls(const Interface& face, Lines& lines) {
    const Mesh& mesh = face.mesh;
    FaultCount cells;
    for (int cell : CellsOf(mesh, 2)) {
        const int nearest = face.wallTree->Nearest(mesh.cellCentre[cell]);
        const BoundaryFace& wall = Walls(mesh)[nearest];
        const Vec3 d = mesh.cellCentre[cell] - wall.centre;
        const double measure =
            d.x() * wall.area.x() + d.y() * wall.area.y() + d.z() * wall.area.z();
        const double margin = wall.area.norm() * rule::wallLayer * MarginLength(mesh.volume[cell]);
        if (measure > -margin * (1.0 + 1e-12)) {
            cells.Add([&] {
                return fmt::format(
                    "{} of component1 lies outside or within {:g} of its sizes of {}",
                    CellAt(mesh, cell), rule::wallLayer, WallFaceAt(mesh, nearest));
            });
        }
    }
    cells.ReportTo(lines, "move the component away from the walls of the background");
}

void CheckGap(const Interface& face, Lines& lines) {
    const Mesh& mesh = face.mesh;
    FaultCount gaps;
    for (int i : face.overset) {
        const int nearest = face.wallTree->Nearest(Walls(mesh)[i].centre);
        const BoundaryFace& wall = Walls(mesh)[nearest];
        const double gap = (wall.centre - Walls(mesh)[i].centre).dot(wall.area) / wall.area.norm();
        const double needed = rule::minGap * MarginLength(mesh.volume[face.CellBeside(i)]);
        if (gap < needed) {
            gaps.Add([&] {
                return fmt::format("{} is {:.3g} from {}, less than {:g} background cells ({:.3g})",
                                   WallFaceAt(mesh, i), gap, WallFaceAt(mesh, nearest),
                                   rule::minGap, needed);
            });
        }
    }
    gaps.ReportTo(lines, "make the component smaller or the background cells finer");
}

void CheckThickness(const Interface& face, Lines& lines) {
    const Mesh& mesh = face.mesh;
    FaultCount thin;
    for (int i : face.body) {
        const int nearest = face.oversetTree->Nearest(Walls(mesh)[i].centre);
        const BoundaryFace& overset = Walls(mesh)[nearest];
        const double thickness =
            (overset.centre - Walls(mesh)[i].centre).dot(overset.area) / overset.area.norm();
        const double needed =
            rule::minThickness * MarginLength(mesh.volume[face.CellBeside(nearest)]);
        if (thickness < needed) {
            thin.Add([&] {
                return fmt::format(
                    "{} on the body is {:.3g} from {}, less than {:g} background "
                    "cells ({:.3g})",
                    WallFaceAt(mesh, i), thickness, WallFaceAt(mesh, nearest), rule::minThickness,
                    needed);
            });
        }
    }
    thin.ReportTo(lines, "make the component thicker or the background cells finer");
}

void CheckDepth(const Interface& face, Lines& lines) {
    const Mesh& mesh = face.mesh;
    if (!mesh.IsQuasi2d()) {
        return;
    }
    const BoundaryFace& first = mesh.Faces(Boundary::Symmetry)[1];
    const double dz = mesh.volume[first.cell] / first.area.norm();
    FaultCount depths;
    for (int i : face.overset) {
        const int cell = face.CellBeside(i);
        const double ratio = dz / face.edge[cell];
        if (ratio < rule::minDepth || ratio > rule::maxDepth) {
            depths.Add([&] {
                return fmt::format("{} is {:.3g} thick in z, {:.3g} of its size in the plane",
                                   CellAt(mesh, cell), dz, ratio);
            });
        }
    }
    depths.ReportTo(lines, fmt::format("make the mesh as thick as a background cell is wide ({:g} "
                                       "to {:g} times that)",
                                       rule::minDepth, rule::maxDepth));
}

/// Nearest face by centre must be the nearest face: no overset face larger than the cells around.
void CheckFaceSizes(const Interface& face, Lines& lines) {
    const Mesh& mesh = face.mesh;
    const bool isFlat = mesh.IsQuasi2d();
    FaultCount large;
    for (int i : face.overset) {
        const std::vector<int>& nodes = Walls(mesh)[i].nodes;
        double longest = 0.0;
        for (std::size_t k = 0; k < nodes.size(); ++k) {
            Vec3 along = mesh.nodes[nodes[(k + 1) % nodes.size()]] - mesh.nodes[nodes[k]];
            along.z() = isFlat ? 0.0 : along.z();
            longest = std::max(longest, along.norm());
        }
        const double limit = nodes.size() == 3 ? rule::maxTriangleEdge : rule::maxQuadEdge;
        const double h = face.edge[face.CellBeside(i)];
        if (longest > limit * h) {
            large.Add([&] {
                return fmt::format(
                    "{} has an edge of {:.3g}, more than {:g} background cells "
                    "({:.3g})",
                    WallFaceAt(mesh, i), longest, limit, limit * h);
            });
        }
    }
    large.ReportTo(lines, "refine the overset boundary to the size of the background cells");
}

/// Extent of a cell across one of its faces, for the regular shape.
double LayerThickness(const Mesh& mesh, const BoundaryFace& face) {
    const std::size_t nNodes = mesh.cellNodes[face.cell].size();
    const bool endsInPoint = nNodes < 6;
    const bool endsInEdge = nNodes == 6 && face.nodes.size() == 4;
    const double factor = endsInPoint ? 3.0 : endsInEdge ? 2.0 : 1.0;
    return factor * mesh.volume[face.cell] / face.area.norm();
}

void CheckLayer(const Interface& face, Lines& lines) {
    const Mesh& mesh = face.mesh;
    FaultCount layers;
    for (int i : face.overset) {
        const BoundaryFace& wall = Walls(mesh)[i];
        const std::size_t nNodes = mesh.cellNodes[wall.cell].size();
        const bool isExtruded = nNodes == 8 || (nNodes == 6 && wall.nodes.size() == 3);
        const double limit = isExtruded ? rule::maxLayer : rule::maxLayerOfPoints;
        const double ratio = LayerThickness(mesh, wall) / face.edge[face.CellBeside(i)];
        if (ratio < rule::minLayer || ratio > limit) {
            layers.Add([&] {
                return fmt::format("{} at the overset boundary is {:.3g} background cells thick",
                                   CellAt(mesh, wall.cell), ratio);
            });
        }
    }
    layers.ReportTo(lines, fmt::format("make it {:g} to {:g} cells thick (tetrahedra to {:g})",
                                       rule::minLayer, rule::maxLayer, rule::maxLayerOfPoints));
}

/// Pairs of overset faces that share an edge.
std::vector<std::pair<int, int>> NeighborFaces(const Interface& face) {
    std::map<std::pair<int, int>, int> faceOfEdge;
    std::vector<std::pair<int, int>> pairs;
    for (int i : face.overset) {
        const std::vector<int>& nodes = Walls(face.mesh)[i].nodes;
        for (std::size_t k = 0; k < nodes.size(); ++k) {
            const auto [place, isNew] =
                faceOfEdge.emplace(std::minmax(nodes[k], nodes[(k + 1) % nodes.size()]), i);
            if (!isNew) {
                pairs.emplace_back(place->second, i);
            }
        }
    }
    return pairs;
}

/// The cut follows the plane of the nearest face: it jumps at corners.
void CheckSmooth(const Interface& face, const std::vector<std::pair<int, int>>& neighbors,
                 Lines& lines) {
    const double degree = std::acos(-1.0) / 180.0;
    FaultCount corners;
    for (const auto& [i, k] : neighbors) {
        const Vec3 a = Walls(face.mesh)[i].area.normalized();
        const Vec3 b = Walls(face.mesh)[k].area.normalized();
        const double bend = std::acos(std::clamp(a.dot(b), -1.0, 1.0)) / degree;
        if (bend > rule::maxBend) {
            corners.Add([&, i = i, k = k] {
                return fmt::format("{} and wall face {} meet at {:.3g} degrees",
                                   WallFaceAt(face.mesh, i), k, bend);
            });
        }
    }
    corners.ReportTo(lines, fmt::format("round the overset boundary, its faces may turn by {:g}",
                                        rule::maxBend));
}

/// Overset faces by connected piece: each piece is convex or not on its own.
std::vector<std::vector<int>> Pieces(const Interface& face,
                                     const std::vector<std::pair<int, int>>& neighbors) {
    std::vector<int> leader(Walls(face.mesh).size());
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
    std::map<int, std::vector<int>> pieces;
    for (int i : face.overset) {
        pieces[find(i)].push_back(i);
    }
    std::vector<std::vector<int>> result;
    for (auto& piece : pieces) {
        result.push_back(std::move(piece.second));
    }
    return result;
}

/// In a hollow the nearest face by centre is not the one whose plane bounds the component.
void CheckConvex(const Interface& face, const std::vector<std::vector<int>>& pieces, Lines& lines) {
    const Mesh& mesh = face.mesh;
    FaultCount hollows;
    for (const std::vector<int>& piece : pieces) {
        for (int i : piece) {
            const BoundaryFace& plane = Walls(mesh)[i];
            const Vec3 outward = plane.area.normalized();
            const double limit = rule::maxBulge * face.edge[face.CellBeside(i)];
            for (int k : piece) {
                const double bulge = (Walls(mesh)[k].centre - plane.centre).dot(outward);
                if (bulge > limit) {
                    hollows.Add([&] {
                        return fmt::format(
                            "{} lies {:.3g} in front of the plane of wall face {} {}",
                            WallFaceAt(mesh, k), bulge, i, At(plane.centre));
                    });
                    break;
                }
            }
        }
    }
    hollows.ReportTo(lines, "the overset boundary must be convex, fill the hollow");
}

void CheckScale(const Mesh& mesh, Lines& lines) {
    FaultCount small;
    for (int i = 1; i <= mesh.FaceCount(Boundary::Wall); ++i) {
        const BoundaryFace& face = Walls(mesh)[i];
        if (face.oversetGroup > 0 &&
            IsTooSmallForDonors(face.area, face.centre, mesh.cellCentre[face.cell])) {
            small.Add([&] { return WallFaceAt(mesh, i); });
        }
    }
    small.ReportTo(lines, rule::scaleRemedy);
}

}  // namespace

bool IsTooSmallForDonors(const Vec3& area, const Vec3& faceCentre, const Vec3& cellCentre) {
    return area.norm() * (faceCentre - cellCentre).norm() < rule::minDonorTest;
}

std::vector<std::string> FaultsBeforeCutting(const Mesh& mesh) {
    Lines lines;
    Interface face(mesh);
    CheckGroups(face, lines);
    if (lines.empty()) {
        CheckTreeDepth(face, lines);
    }
    if (!lines.empty()) {
        return lines;  // the rest has nothing to search in, or no stack to search on
    }
    face.GrowTrees();
    CheckScale(mesh, lines);
    CheckCellsAtWalls(face, lines);
    CheckGap(face, lines);
    CheckThickness(face, lines);
    CheckDepth(face, lines);
    CheckFaceSizes(face, lines);
    CheckLayer(face, lines);
    const std::vector<std::pair<int, int>> neighbors = NeighborFaces(face);
    CheckSmooth(face, neighbors, lines);
    CheckConvex(face, Pieces(face, neighbors), lines);
    return lines;
}

}  // namespace host
