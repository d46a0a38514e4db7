#include "host_checks/host_checks.h"

#include <algorithm>
#include <functional>
#include <numeric>

#include "host_checks/detail/overset_group_rules.h"
#include "host_checks/host_rules.h"
#include "host_checks/mesh_rules.h"

namespace kvx3d::checks {
namespace {

/// Sizes of the connected regions of cut cells, by grid 1, 2, 3; largest first.
std::vector<std::vector<int>> CutPieces(const MeshView& mesh, const std::vector<char>& isActive) {
    std::vector<int> leader(mesh.fvm.Nc + 1);
    std::iota(leader.begin(), leader.end(), 0);
    const auto find = [&](int cell) {
        while (leader[cell] != cell) {
            cell = leader[cell] = leader[leader[cell]];
        }
        return cell;
    };
    for (int face = 1; face <= mesh.fvm.Ne; ++face) {
        const int owner = mesh.fvm.Ce23[0][face];
        const int neighbor = mesh.fvm.Ce23[1][face];
        if (isActive[owner] == 0 && isActive[neighbor] == 0) {
            leader[find(owner)] = find(neighbor);
        }
    }
    std::vector<int> size(mesh.fvm.Nc + 1, 0);
    for (int cell = 1; cell <= mesh.fvm.Nc; ++cell) {
        size[find(cell)] += isActive[cell] == 0 ? 1 : 0;
    }
    std::vector<std::vector<int>> pieces(mesh.GridCount() + 1);
    for (int cell = 1; cell <= mesh.fvm.Nc; ++cell) {
        if (size[cell] > 0) {
            pieces[mesh.Grid(cell)].push_back(size[cell]);
        }
    }
    for (std::vector<int>& sizes : pieces) {
        std::sort(sizes.begin(), sizes.end(), std::greater<int>());
    }
    return pieces;
}

std::vector<GridCut> GridCuts(const MeshView& mesh, const std::vector<char>& isActive) {
    std::vector<GridCut> grids(mesh.GridCount());
    const std::vector<std::vector<int>> pieces = CutPieces(mesh, isActive);
    for (int cell = 1; cell <= mesh.fvm.Nc; ++cell) {
        GridCut& grid = grids[mesh.Grid(cell) - 1];
        ++grid.cells;
        grid.cutCells += isActive[cell] == 0 ? 1 : 0;
    }
    for (int number = 1; number <= mesh.GridCount(); ++number) {
        GridCut& grid = grids[number - 1];
        grid.grid = number;
        grid.cutShare = grid.cells > 0 ? static_cast<double>(grid.cutCells) / grid.cells : 0.0;
        grid.cutPieces = pieces[number];
    }
    return grids;
}

DonorSummary Summarize(const MeshView& mesh, const std::vector<FaceDonor>& donors) {
    DonorSummary summary;
    double sum = 0.0;
    for (const FaceDonor& face : donors) {
        ++summary.faces;
        summary.mostTries = std::max(summary.mostTries, face.search.tries);
        if (face.search.donor == 0) {
            ++summary.withoutDonor;
            continue;
        }
        const double distance = face.search.distance / mesh.EdgeLength(face.search.cell);
        summary.largestDistance = std::max(summary.largestDistance, distance);
        sum += distance;
    }
    const int found = summary.faces - summary.withoutDonor;
    summary.meanDistance = found > 0 ? sum / found : 0.0;
    return summary;
}

}  // namespace

Verdict MaySetUp(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& fvm,
                 CPartitionFace_DLL* partition) {
    Verdict verdict{HostFaults(gv, fvm, partition)};
    if (!verdict) {
        return verdict;
    }
    if (AreInterfaceBlocks(gv, fvm)) {
        verdict.faults.push_back({Rule::CavityIds,
                                  "the cavities 0 and 1 are blocks beside a non-matching interface",
                                  0, 1, "number cavities from 1 for an overset setup"});
    } else if (fvm.Nc < 2) {
        verdict.faults.push_back({Rule::LastCell, "the mesh has one cell only", 1, 1,
                                  "the setup does not count the last cell, so give the mesh two "
                                  "cells or more"});
    } else if (fvm.NInlet < 1) {
        verdict.faults.push_back({Rule::BackgroundInlet, "there is no inlet face", 0, 1,
                                  "the setup reads inlet face 1 also of a single grid, so give "
                                  "the grid an inlet"});
    } else {
        verdict.faults = MeshFaults(MeshView(gv, fvm));
    }
    return verdict;
}

Soundness Assess(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& fvm, CKVXOversetMesh& overset) {
    const MeshView mesh(gv, fvm);
    const BoundedDonorSearch search(mesh, overset);
    const CutMesh cut = FindDonors(mesh, search);
    Soundness soundness;
    soundness.grids = GridCuts(mesh, cut.isActive);
    soundness.hole = Summarize(mesh, cut.hole);
    soundness.outer = Summarize(mesh, cut.outers);
    for (const FaceDonor& outer : cut.outers) {
        soundness.outerFacesWithoutToolboxDonor +=
            search.ToolboxWallDonor(outer.face).donor == 0 ? 1 : 0;
    }
    if (mesh.GridCount() > 1) {
        soundness.faults = CutFaults(mesh, cut);
    }
    return soundness;
}

}  // namespace kvx3d::checks
