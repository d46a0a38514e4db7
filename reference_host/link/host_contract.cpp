#include "reference_host/link/host_contract.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>

#include "reference_host/link/fault_count.h"
#include "reference_host/mesh/messages.h"

namespace host {
namespace {

/// The arrays of one boundary kind under common names.
struct BoundarySet {
    const char* name;
    int count;
    const double *x, *y, *z, *nx, *ny, *nz;
    const int *cell, *ghost;
};

std::array<BoundarySet, 4> BoundarySets(const CKVX3DFiniteVolumeMesh& m) {
    return {{{"inlet", m.NInlet, m.xInlet, m.yInlet, m.zInlet, m.nxInlet, m.nyInlet, m.nzInlet,
              m.CInlet23, m.idInlet},
             {"outlet", m.NOutlet, m.xOutlet, m.yOutlet, m.zOutlet, m.nxOutlet, m.nyOutlet,
              m.nzOutlet, m.COutlet23, m.idOutlet},
             {"wall", m.NWall, m.xWall, m.yWall, m.zWall, m.nxWall, m.nyWall, m.nzWall, m.CWall23,
              m.idWall},
             {"symmetry", m.NSymm, m.xSymm, m.ySymm, m.zSymm, m.nxSymm, m.nySymm, m.nzSymm,
              m.CSymm23, m.idSymm}}};
}

bool IsWithin(int id, int low, int high) {
    return low <= id && id <= high;
}

Vec3 CellCentre(const CKVX3DFiniteVolumeMesh& m, int cell) {
    return {m.xc[cell], m.yc[cell], m.zc[cell]};
}

std::vector<std::string> CountFaults(const CKVX3DFiniteVolumeMesh& m) {
    std::vector<std::string> lines;
    const std::array<std::pair<const char*, int>, 7> counts = {{{"Nn", m.Nn},
                                                                {"Ne", m.Ne},
                                                                {"NInlet", m.NInlet},
                                                                {"NOutlet", m.NOutlet},
                                                                {"NWall", m.NWall},
                                                                {"NSymm", m.NSymm},
                                                                {"Nc", m.Nc - 1}}};
    for (const auto& [name, value] : counts) {
        if (value < 0) {
            lines.push_back(fmt::format("{} is too small: give the true count", name));
        }
    }
    const int needed = m.Nc + m.NInlet + m.NOutlet + m.NWall + m.NSymm;
    if (m.NcAll != needed) {
        lines.push_back(fmt::format(
            "NcAll is {}, but cells and boundary faces together are {}: give each boundary face "
            "one ghost cell",
            m.NcAll, needed));
    }
    return lines;
}

std::vector<std::string> PointerFaults(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m) {
    std::vector<std::pair<const char*, const void*>> pointers = {
        {"xn", m.xn},
        {"yn", m.yn},
        {"zn", m.zn},
        {"xc", m.xc},
        {"yc", m.yc},
        {"zc", m.zc},
        {"volume", m.volume},
        {"cellNodes", m.cellNodes},
        {"xe", m.xe},
        {"ye", m.ye},
        {"ze", m.ze},
        {"nxe", m.nxe},
        {"nye", m.nye},
        {"nze", m.nze},
        {"Ce23[0]", m.Ce23[0]},
        {"Ce23[1]", m.Ce23[1]},
        {"nonmatchingFace", m.nonmatchingFace},
        {"flowVariables[0]", gv.flowVariables[0]},
        {"flowVariables[1]", gv.flowVariables[1]},
        {"flowVariables[2]", gv.flowVariables[2]},
        {"flowVariables[3]", gv.flowVariables[3]},
        {"mu", gv.mu},
        {"cp", gv.cp},
        {"cellRho", gv.cellRho},
        {"cellK", gv.cellK},
        {"rootDir", gv.rootDir},
        {"pProcessId", gv.pProcessId},
        {"cavityId", gv.cavityId},
        {"NOversetBCGroup", gv.NOversetBCGroup}};
    for (const BoundarySet& set : BoundarySets(m)) {
        for (const void* pointer :
             {static_cast<const void*>(set.x), static_cast<const void*>(set.y),
              static_cast<const void*>(set.z), static_cast<const void*>(set.nx),
              static_cast<const void*>(set.ny), static_cast<const void*>(set.nz),
              static_cast<const void*>(set.cell), static_cast<const void*>(set.ghost)}) {
            if (set.count > 0) {
                pointers.emplace_back(set.name, pointer);
            }
        }
    }
    std::vector<std::string> lines;
    for (const auto& [name, pointer] : pointers) {
        if (pointer == nullptr) {
            lines.push_back(
                fmt::format("an array of \"{}\" is null: fill it before linking", name));
        }
    }
    return lines;
}

void CheckCells(const CKVX3DFiniteVolumeMesh& m, std::vector<std::string>& lines) {
    FaultCount volumes;
    FaultCount nodeLists;
    for (int cell = 1; cell <= m.Nc; ++cell) {
        const auto name = [&] { return fmt::format("cell {} {}", cell, At(CellCentre(m, cell))); };
        if (!(m.volume[cell] > 0)) {
            volumes.Add([&] { return fmt::format("{} has volume {}", name(), m.volume[cell]); });
        }
        const int* row = m.cellNodes[cell];
        const bool isGood = row != nullptr && row[0] > 0 &&
                            std::all_of(row + 1, row + 1 + row[0],
                                        [&](int node) { return IsWithin(node, 1, m.Nn); });
        if (!isGood) {
            nodeLists.Add([&] { return name() + " has no valid node list"; });
        }
    }
    volumes.ReportTo(lines, "volumes must be positive");
    nodeLists.ReportTo(lines, fmt::format("slot 0 holds the count, then ids from 1 to {}", m.Nn));
}

void CheckInnerFaces(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m,
                     std::vector<std::string>& lines) {
    FaultCount pairs;
    FaultCount cavities;
    FaultCount directions;
    FaultCount flags;
    for (int face = 1; face <= m.Ne; ++face) {
        const int owner = m.Ce23[0][face];
        const int neighbor = m.Ce23[1][face];
        const auto name = [&] {
            return fmt::format("inner face {} {} between cells {} and {}", face,
                               At(Vec3(m.xe[face], m.ye[face], m.ze[face])), owner, neighbor);
        };
        if (!IsWithin(owner, 1, m.Nc) || !IsWithin(neighbor, 1, m.Nc) || owner == neighbor) {
            pairs.Add(name);
            continue;
        }
        if (gv.cavityId[owner] != gv.cavityId[neighbor] && m.nonmatchingFace[face] != 1) {
            cavities.Add(name);
        }
        const Vec3 area(m.nxe[face], m.nye[face], m.nze[face]);
        if (!(area.dot(CellCentre(m, neighbor) - CellCentre(m, owner)) > 0)) {
            directions.Add(name);
        }
        if (!IsWithin(m.nonmatchingFace[face], 0, 1)) {
            flags.Add(name);
        }
    }
    pairs.ReportTo(lines, fmt::format("owner and neighbor are two cells from 1 to {}", m.Nc));
    cavities.ReportTo(lines, "grids share no face, keep each cavity in one piece of its own");
    directions.ReportTo(lines, "the area vector must point from the owner to the neighbor");
    flags.ReportTo(lines, "nonmatchingFace must be 0 or 1");
}

void CheckBoundaryFaces(const CKVX3DFiniteVolumeMesh& m, std::vector<std::string>& lines) {
    std::vector<char> isTaken(m.NcAll + 1, 0);
    FaultCount cells;
    FaultCount ghosts;
    FaultCount directions;
    for (const BoundarySet& set : BoundarySets(m)) {
        for (int face = 1; face <= set.count; ++face) {
            const Vec3 centre(set.x[face], set.y[face], set.z[face]);
            const auto name = [&] {
                return fmt::format("{} face {} {} beside cell {} with ghost cell {}", set.name,
                                   face, At(centre), set.cell[face], set.ghost[face]);
            };
            if (!IsWithin(set.ghost[face], m.Nc + 1, m.NcAll) || isTaken[set.ghost[face]] != 0) {
                ghosts.Add(name);
            } else {
                isTaken[set.ghost[face]] = 1;
            }
            if (!IsWithin(set.cell[face], 1, m.Nc)) {
                cells.Add(name);
                continue;
            }
            const Vec3 area(set.nx[face], set.ny[face], set.nz[face]);
            if (!(area.dot(centre - CellCentre(m, set.cell[face])) > 0)) {
                directions.Add(name);
            }
        }
    }
    cells.ReportTo(lines, fmt::format("the cell beside a face is one from 1 to {}", m.Nc));
    ghosts.ReportTo(lines, fmt::format("each face has a ghost cell of its own from {} to {}",
                                       m.Nc + 1, m.NcAll));
    directions.ReportTo(lines, "the area vector must point out of the domain");
}

/// @return number of cavities; 0 if their ids break the rules, with a line
int CheckCavities(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m,
                  std::vector<std::string>& lines) {
    // The toolbox counts the cavities of all cells but the last.
    const std::set<int> ids(gv.cavityId + 1, gv.cavityId + std::max(m.Nc, 2));
    const int nGrids = static_cast<int>(ids.size());
    const bool hasInterface =
        std::count(m.nonmatchingFace + 1, m.nonmatchingFace + m.Ne + 1, 1) > 0;
    if (hasInterface && *ids.begin() == 0 && *ids.rbegin() == 1) {
        return 1;  // the ids say the side of the interface, there is nothing to cut
    }
    if (ids.count(gv.cavityId[m.Nc]) == 0) {
        lines.push_back(
            fmt::format("cell {} {} is the only one of cavity {} and the last of all: give the "
                        "cavity more than one cell",
                        m.Nc, At(CellCentre(m, m.Nc)), gv.cavityId[m.Nc]));
        return 0;
    }
    if (*ids.begin() < 1 || *ids.rbegin() > nGrids || nGrids > 3) {
        lines.push_back(
            fmt::format("there are {} cavities with ids from {} to {}: number them 1, 2, 3 without "
                        "a gap, and have no more than three",
                        nGrids, *ids.begin(), *ids.rbegin()));
        return 0;
    }
    return nGrids;
}

/// Background and groups of a mesh of several cavities, whose ids and cells are in order.
void CheckOversetGroups(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m, int nGrids,
                        std::vector<std::string>& lines) {
    if (m.NInlet < 1) {
        lines.push_back(
            "there is no inlet face: the one of number 1 tells the toolbox which cavity "
            "is the background, so give the background an inlet");
    } else if (gv.cavityId[m.CInlet23[1]] != 1) {
        lines.push_back(
            fmt::format("inlet face 1 lies in cavity {}: it must lie in the background, "
                        "cavity 1",
                        gv.cavityId[m.CInlet23[1]]));
    }
    if (gv.NOversetBCGroup[0] < nGrids - 1 || gv.oversetBCFaceCount == nullptr ||
        gv.oversetBCWallFace == nullptr) {
        lines.push_back(
            fmt::format("there are {} overset groups for {} component grids: give each "
                        "component a group of its own",
                        gv.NOversetBCGroup[0], nGrids - 1));
        return;
    }
    std::vector<int> groupOfWall(m.NWall + 1, 0);
    FaultCount ids;
    FaultCount twice;
    FaultCount sides;
    for (int group = 1; group <= gv.NOversetBCGroup[0]; ++group) {
        if (gv.oversetBCFaceCount[group] < 1 || gv.oversetBCWallFace[group] == nullptr) {
            lines.push_back(
                fmt::format("overset group {} has no face: put the outer boundary of "
                            "component{} into it",
                            group, group));
            continue;
        }
        for (int i = 1; i <= gv.oversetBCFaceCount[group]; ++i) {
            const int wall = gv.oversetBCWallFace[group][i];
            const auto name = [&] {
                return fmt::format("entry {} of overset group {}, wall face {}", i, group, wall);
            };
            if (!IsWithin(wall, 1, m.NWall)) {
                ids.Add(name);
                continue;
            }
            if (groupOfWall[wall] != 0) {
                twice.Add(name);
            }
            groupOfWall[wall] = group;
            if (gv.cavityId[m.CWall23[wall]] != group + 1) {
                sides.Add(name);
            }
        }
    }
    ids.ReportTo(lines, fmt::format("wall faces are numbered from 1 to {}", m.NWall));
    twice.ReportTo(lines, "a wall face is in one group at most, and once");
    sides.ReportTo(lines, "group 1 borders component1 (cavity 2), group 2 component2 (cavity 3)");
}

}  // namespace

std::vector<std::string> ContractFaults(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& fvm) {
    std::vector<std::string> lines = CountFaults(fvm);
    if (lines.empty()) {
        lines = PointerFaults(gv, fvm);
    }
    if (!lines.empty()) {
        return lines;  // the rest would read out of range
    }
    CheckCells(fvm, lines);
    CheckInnerFaces(gv, fvm, lines);
    CheckBoundaryFaces(fvm, lines);
    const int nGrids = CheckCavities(gv, fvm, lines);
    if (nGrids > 1 && lines.empty()) {
        CheckOversetGroups(gv, fvm, nGrids, lines);
    }
    return lines;
}

}  // namespace host
