#include "host_checks/mesh_rules.h"

#include <cmath>
#include <string>

#include "host_checks/detail/boundary_shape_rules.h"
#include "host_checks/detail/box_tree.h"
#include "host_checks/detail/messages.h"
#include "host_checks/detail/outer_boundary.h"

namespace kvx3d::checks {
namespace {

BoxTree TreeOfWallFaces(const MeshView& mesh, const std::vector<int>& faces) {
    return {faces, [&](int face) { return mesh.Walls().Center(face); }};
}

/// The rules that must hold before any other rule can be checked.
std::vector<Fault> GridFaults(const MeshView& mesh, const std::vector<int>& backgroundWalls) {
    std::vector<Fault> faults;
    FaultCounter inlets(Rule::InletGrid);
    const BoundaryFaces& inlet = mesh.Inlets();
    for (int face = 1; face <= inlet.count; ++face) {
        const int grid = mesh.Grid(inlet.cell[face]);
        if (grid != 1) {
            inlets.Add(face, [&] {
                return "inlet face " + std::to_string(face) + " " + At(inlet.Center(face)) +
                       " lies beside " + GridName(grid);
            });
        }
    }
    inlets.AppendTo(faults, "only the background has inlets");
    if (backgroundWalls.empty()) {
        faults.push_back({Rule::BackgroundWall, "no physical wall lies beside the background", 0, 1,
                          "give it at least one wall face, because the toolbox cuts component "
                          "cells by the nearest of them"});
    }
    FaultCounter grids(Rule::GridCells);
    for (int grid = 1; grid <= mesh.GridCount(); ++grid) {
        const std::size_t nCells = mesh.CellsOfGrid(grid).size();
        if (nCells < 2) {
            grids.Add(grid, [&] {
                return GridName(grid) + " has " + std::to_string(nCells) +
                       (nCells == 1 ? " cell" : " cells");
            });
        }
    }
    grids.AppendTo(faults, "give each grid two cells at least");
    return faults;
}

/// Repeats the test of the toolbox with the same operations. If it cuts even one cell, the cut of
/// the whole background is wrong. The toolbox tests one of several equally near walls; here none of
/// them may cut the cell.
void CheckCellsAtWalls(const MeshView& mesh, BoxTree& walls, std::vector<Fault>& faults) {
    FaultCounter cells(Rule::WallDistance);
    for (int cell : mesh.CellsOfGrid(2)) {
        const Point center = mesh.CellCenter(cell);
        const double size = MarginLength(mesh.fvm.volume[cell]);
        for (int wall : walls.Nearest(center)) {
            const Point area = mesh.Walls().Area(wall);
            const double measure = Dot(center - mesh.Walls().Center(wall), area);
            const double margin = Norm(area) * limit::wallLayer * size;
            // Slightly stricter than the toolbox, so that rounding cannot let a cell through.
            if (measure > -margin * (1.0 + 1e-12)) {
                cells.Add(cell, [&] {
                    return CellAt(mesh, cell) + " of component1 lies outside or within " +
                           Digits(limit::wallLayer) + " of its sizes of " + WallFaceAt(mesh, wall);
                });
                break;
            }
        }
    }
    cells.AppendTo(faults, "move the component away from the walls of the background");
}

void CheckGap(const OuterBoundary& outer, BoxTree& walls, std::vector<Fault>& faults) {
    const MeshView& mesh = outer.mesh;
    FaultCounter gaps(Rule::Gap);
    for (int i = 0; i < outer.Count(); ++i) {
        const double needed = limit::minGap * MarginLength(mesh.fvm.volume[outer.cells[i]]);
        for (int wall : walls.Nearest(outer.Center(i))) {
            const Point area = mesh.Walls().Area(wall);
            const double gap = Dot(mesh.Walls().Center(wall) - outer.Center(i), area) / Norm(area);
            if (gap < needed) {
                gaps.Add(outer.faces[i], [&] {
                    return WallFaceAt(mesh, outer.faces[i]) + " is " + Digits(gap, 3) + " from " +
                           WallFaceAt(mesh, wall) + ", less than " + Digits(limit::minGap) +
                           " background cells (" + Digits(needed, 3) + ")";
                });
                break;
            }
        }
    }
    gaps.AppendTo(faults, "make the component smaller or the background cells finer");
}

void CheckThickness(const OuterBoundary& outer, std::vector<Fault>& faults) {
    const MeshView& mesh = outer.mesh;
    std::vector<int> position(mesh.fvm.NWall + 1, 0);  // in `outer`, by wall face
    for (int i = 0; i < outer.Count(); ++i) {
        position[outer.faces[i]] = i;
    }
    BoxTree outerTree = TreeOfWallFaces(mesh, outer.faces);
    FaultCounter thin(Rule::Thickness);
    for (int face : mesh.WallFaces(0, 2)) {
        const Point center = mesh.Walls().Center(face);
        for (int nearest : outerTree.Nearest(center)) {
            const int i = position[nearest];
            const Point area = outer.Area(i);
            const double thickness = Dot(outer.Center(i) - center, area) / Norm(area);
            const double needed =
                limit::minThickness * MarginLength(mesh.fvm.volume[outer.cells[i]]);
            if (thickness < needed) {
                thin.Add(face, [&] {
                    return WallFaceAt(mesh, face) + " on the body is " + Digits(thickness, 3) +
                           " from " + WallFaceAt(mesh, nearest) + ", less than " +
                           Digits(limit::minThickness) + " background cells (" + Digits(needed, 3) +
                           ")";
                });
                break;
            }
        }
    }
    thin.AppendTo(faults, "make the component thicker or the background cells finer");
}

/// "in z" for a direction along a coordinate axis, "across" for any other.
std::string Along(const Point& direction) {
    constexpr double nearlyOne = 1.0 - 1e-9;
    if (std::abs(direction.x) > nearlyOne) {
        return "in x";
    }
    if (std::abs(direction.y) > nearlyOne) {
        return "in y";
    }
    return std::abs(direction.z) > nearlyOne ? "in z" : "across";
}

void CheckDepth(const OuterBoundary& outer, std::vector<Fault>& faults) {
    const MeshView& mesh = outer.mesh;
    if (!mesh.IsOneCellThick()) {
        return;
    }
    const BoundaryFaces& symmetries = mesh.Symmetries();
    const double depth = mesh.fvm.volume[symmetries.cell[1]] / Norm(symmetries.Area(1));
    FaultCounter depths(Rule::Depth);
    for (int cell : outer.cells) {
        const double ratio = depth / mesh.EdgeLength(cell);
        if (ratio < limit::minDepth || ratio > limit::maxDepth) {
            depths.Add(cell, [&] {
                return CellAt(mesh, cell) + " is " + Digits(depth, 3) + " thick " +
                       Along(mesh.ThinDirection()) + ", " + Digits(ratio, 3) +
                       " of its size in the plane";
            });
        }
    }
    depths.AppendTo(faults, "make the mesh as thick as a background cell is wide (" +
                                Digits(limit::minDepth) + " to " + Digits(limit::maxDepth) +
                                " times that)");
}

void CheckScale(const MeshView& mesh, std::vector<Fault>& faults) {
    const BoundaryFaces& walls = mesh.Walls();
    FaultCounter small(Rule::LengthScale);
    for (int face = 1; face <= walls.count; ++face) {
        if (mesh.WallGroup(face) > 0 && IsTooSmallForDonors(walls.Area(face), walls.Center(face),
                                                            mesh.CellCenter(walls.cell[face]))) {
            small.Add(face, [&] { return WallFaceAt(mesh, face); });
        }
    }
    small.AppendTo(faults, scaleRemedy);
}

}  // namespace

bool IsTooSmallForDonors(const Point& area, const Point& faceCenter, const Point& cellCenter) {
    return Norm(area) * Norm(faceCenter - cellCenter) < limit::minDonorTest;
}

std::vector<Fault> MeshFaults(const MeshView& mesh) {
    if (mesh.GridCount() < 2) {
        return {};
    }
    const std::vector<int> backgroundWalls = mesh.WallFaces(0, 1);
    std::vector<Fault> faults = GridFaults(mesh, backgroundWalls);
    if (!faults.empty()) {
        return faults;  // the other rules cannot be checked
    }
    CheckScale(mesh, faults);
    BoxTree walls = TreeOfWallFaces(mesh, backgroundWalls);
    BoxTree backgrounds(mesh.CellsOfGrid(1), [&](int cell) { return mesh.CellCenter(cell); });
    CheckCellsAtWalls(mesh, walls, faults);
    const OuterBoundary outer(mesh, mesh.WallFaces(1, 2), backgrounds);
    CheckGap(outer, walls, faults);
    CheckThickness(outer, faults);
    CheckDepth(outer, faults);
    CheckFaceSizes(outer, faults);
    CheckLayer(outer, faults);
    CheckSmooth(outer, faults);
    FaultCounter hollows(Rule::ConvexBoundary);
    CountHollows(outer, hollows);
    if (mesh.GridCount() > 2) {
        CountHollows(OuterBoundary(mesh, mesh.WallFaces(2, 3), backgrounds), hollows);
    }
    hollows.AppendTo(faults, "the overset boundary must be convex, fill the hollow");
    return faults;
}

}  // namespace kvx3d::checks
