#include "host_checks/host_rules.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <string>
#include <utility>

#include "host_checks/detail/messages.h"
#include "host_checks/detail/overset_group_rules.h"
#include "host_checks/mesh_view.h"
#include "host_checks/point.h"

namespace kvx3d::checks {
namespace {

bool IsWithin(int id, int low, int high) {
    return low <= id && id <= high;
}

std::string FromTo(int low, int high) {
    return "from " + std::to_string(low) + " to " + std::to_string(high);
}

Point CellCenter(const CKVX3DFiniteVolumeMesh& m, int cell) {
    return {m.xc[cell], m.yc[cell], m.zc[cell]};
}

using Kinds = std::vector<BoundaryFaces>;

constexpr const char* partitionName = "partition";

/// The four boundary kinds and, if there are any, the partition faces as a fifth one.
Kinds AllKinds(const CKVX3DFiniteVolumeMesh& m, CPartitionFace_DLL* partition) {
    const auto four = BoundaryKinds(m);
    Kinds kinds(four.begin(), four.end());
    const int n = partition != nullptr ? partition->NParInterFace() : 0;
    if (n != 0) {  // without faces no other accessor may be called
        BoundaryFaces faces{};
        faces.name = partitionName;
        faces.count = n;
        if (n > 0) {
            faces = {partitionName,        n,
                     partition->ijParxc(), partition->ijParyc(),
                     partition->ijParzc(), partition->ijParSx(),
                     partition->ijParSy(), partition->ijParSz(),
                     partition->ijParCV(), partition->ijPar()};
        }
        kinds.push_back(faces);
    }
    return kinds;
}

std::vector<Fault> CountFaults(const CKVX3DFiniteVolumeMesh& m, const Kinds& kinds) {
    std::vector<Fault> faults;
    const auto check = [&](const std::string& name, int value, int least) {
        if (value < least) {
            faults.push_back({Rule::Counts, name + " is too small: " + std::to_string(value), 0, 1,
                              "give the true count"});
        }
    };
    check("Nc", m.Nc, 1);
    check("Nn", m.Nn, 0);
    check("Ne", m.Ne, 0);
    long long needed = m.Nc;  // 64 bits: counts that are nonsense may overflow an int
    constexpr const char* names[] = {"NInlet", "NOutlet", "NWall", "NSymm", "NParInterFace()"};
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        check(names[i], kinds[i].count, 0);
        needed += kinds[i].count;
    }
    if (m.NcAll != needed) {
        faults.push_back({Rule::GhostCount,
                          "NcAll is " + std::to_string(m.NcAll) +
                              ", but cells and boundary faces together are " +
                              std::to_string(needed),
                          0, 1,
                          "give each boundary face one ghost cell, and pass the partition faces to "
                          "this check if there are any"});
    }
    return faults;
}

using NamedPointers = std::vector<std::pair<const char*, const void*>>;

NamedPointers RequiredPointers(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m,
                               const Kinds& kinds) {
    NamedPointers pointers = {{"xn", m.xn},
                              {"yn", m.yn},
                              {"zn", m.zn},
                              {"xc", m.xc},
                              {"yc", m.yc},
                              {"zc", m.zc},
                              {"volume", m.volume},
                              {"cellNodes", m.cellNodes},
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
    if (m.Ne > 0) {
        pointers.insert(pointers.end(), {{"xe", m.xe},
                                         {"ye", m.ye},
                                         {"ze", m.ze},
                                         {"nxe", m.nxe},
                                         {"nye", m.nye},
                                         {"nze", m.nze},
                                         {"Ce23[0]", m.Ce23[0]},
                                         {"Ce23[1]", m.Ce23[1]},
                                         {"nonmatchingFace", m.nonmatchingFace}});
    }
    for (const BoundaryFaces& kind : kinds) {
        if (kind.count == 0) {
            continue;
        }
        for (const double* pointer : {kind.x, kind.y, kind.z, kind.nx, kind.ny, kind.nz}) {
            pointers.emplace_back(kind.name, pointer);
        }
        for (const int* pointer : {kind.cell, kind.ghost}) {
            pointers.emplace_back(kind.name, pointer);
        }
    }
    return pointers;
}

std::vector<Fault> PointerFaults(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m,
                                 const Kinds& kinds) {
    std::vector<Fault> faults;
    for (const auto& [name, pointer] : RequiredPointers(gv, m, kinds)) {
        if (pointer == nullptr) {
            faults.push_back({Rule::NullPointer,
                              "an array of \"" + std::string(name) + "\" is null", 0, 1,
                              "fill it before linking"});
        }
    }
    return faults;
}

void CheckCoordinates(const CKVX3DFiniteVolumeMesh& m, const Kinds& kinds,
                      std::vector<Fault>& faults) {
    FaultCounter infinite(Rule::Coordinates);
    const auto check = [&](int id, const Point& p, const std::string& what) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y) || !std::isfinite(p.z)) {
            infinite.Add(id, [&] { return what + " " + std::to_string(id) + " is " + Triple(p); });
        }
    };
    const std::string cellCenter = "the center of cell";
    for (int cell = 1; cell <= m.Nc; ++cell) {
        check(cell, CellCenter(m, cell), cellCenter);
    }
    const std::string nodePosition = "the position of node";
    for (int node = 1; node <= m.Nn; ++node) {
        check(node, {m.xn[node], m.yn[node], m.zn[node]}, nodePosition);
    }
    const std::string faceCenter = "the center of inner face";
    const std::string faceArea = "the area vector of inner face";
    for (int face = 1; face <= m.Ne; ++face) {
        check(face, {m.xe[face], m.ye[face], m.ze[face]}, faceCenter);
        check(face, {m.nxe[face], m.nye[face], m.nze[face]}, faceArea);
    }
    for (const BoundaryFaces& kind : kinds) {
        const std::string center = "the center of " + std::string(kind.name) + " face";
        const std::string area = "the area vector of " + std::string(kind.name) + " face";
        for (int face = 1; face <= kind.count; ++face) {
            check(face, kind.Center(face), center);
            check(face, kind.Area(face), area);
        }
    }
    infinite.AppendTo(faults, "coordinates and area vectors must be finite");
}

void CheckCells(const CKVX3DFiniteVolumeMesh& m, std::vector<Fault>& faults) {
    FaultCounter volumes(Rule::CellVolume);
    FaultCounter nodeLists(Rule::CellNodes);
    constexpr int minNodes = 4;  // of a tetrahedron
    for (int cell = 1; cell <= m.Nc; ++cell) {
        const auto name = [&] {
            return "cell " + std::to_string(cell) + " " + At(CellCenter(m, cell));
        };
        if (!(m.volume[cell] > 0) || !std::isfinite(m.volume[cell])) {  // true for NaN as well
            volumes.Add(cell, [&] { return name() + " has volume " + Digits(m.volume[cell]); });
        }
        const int* row = m.cellNodes[cell];
        const bool isGood = row != nullptr && IsWithin(row[0], minNodes, m.Nn) &&
                            std::all_of(row + 1, row + 1 + row[0],
                                        [&](int node) { return IsWithin(node, 1, m.Nn); });
        if (!isGood) {
            nodeLists.Add(cell, [&] { return name() + " has no valid node list"; });
        }
    }
    volumes.AppendTo(faults, "volumes must be positive and finite");
    nodeLists.AppendTo(faults,
                       "slot 0 holds the count, at least 4, then node ids " + FromTo(1, m.Nn));
}

void CheckInnerFaces(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m,
                     std::vector<Fault>& faults) {
    FaultCounter pairs(Rule::InnerFaceCells);
    FaultCounter cavities(Rule::SeparateCavities);
    FaultCounter directions(Rule::InnerFaceDirection);
    FaultCounter flags(Rule::NonmatchingFlag);
    for (int face = 1; face <= m.Ne; ++face) {
        const int owner = m.Ce23[0][face];
        const int neighbor = m.Ce23[1][face];
        const auto name = [&] {
            return "inner face " + std::to_string(face) + " " +
                   At({m.xe[face], m.ye[face], m.ze[face]}) + " between cells " +
                   std::to_string(owner) + " and " + std::to_string(neighbor);
        };
        if (!IsWithin(owner, 1, m.Nc) || !IsWithin(neighbor, 1, m.Nc) || owner == neighbor) {
            pairs.Add(face, name);
            continue;
        }
        if (gv.cavityId[owner] != gv.cavityId[neighbor] && m.nonmatchingFace[face] != 1) {
            cavities.Add(face, name);
        }
        const Point area = {m.nxe[face], m.nye[face], m.nze[face]};
        if (!(Dot(area, CellCenter(m, neighbor) - CellCenter(m, owner)) > 0)) {
            directions.Add(face, name);
        }
        if (!IsWithin(m.nonmatchingFace[face], 0, 1)) {
            flags.Add(face, name);
        }
    }
    pairs.AppendTo(faults, "owner and neighbor must be two different cells " + FromTo(1, m.Nc));
    cavities.AppendTo(faults, "grids share no face: make each cavity a separate piece");
    directions.AppendTo(faults, "the area vector must point from the owner to the neighbor");
    flags.AppendTo(faults, "nonmatchingFace must be 0 or 1");
}

void CheckBoundaryFaces(const CKVX3DFiniteVolumeMesh& m, const Kinds& kinds,
                        std::vector<Fault>& faults) {
    std::vector<char> isTaken(static_cast<std::size_t>(m.NcAll) + 1, 0);
    FaultCounter cells(Rule::BoundaryFaceCell);
    FaultCounter ghosts(Rule::GhostCell);
    FaultCounter directions(Rule::BoundaryFaceDirection);
    for (const BoundaryFaces& kind : kinds) {
        const bool isPartition = kind.name == partitionName;  // their vectors may point either way
        for (int face = 1; face <= kind.count; ++face) {
            const auto name = [&] {
                return std::string(kind.name) + " face " + std::to_string(face) + " " +
                       At(kind.Center(face)) + " beside cell " + std::to_string(kind.cell[face]) +
                       " with ghost cell " + std::to_string(kind.ghost[face]);
            };
            if (!IsWithin(kind.ghost[face], m.Nc + 1, m.NcAll) || isTaken[kind.ghost[face]] != 0) {
                ghosts.Add(face, name);
            } else {
                isTaken[kind.ghost[face]] = 1;
            }
            if (!IsWithin(kind.cell[face], 1, m.Nc)) {
                cells.Add(face, name);
                continue;
            }
            const Point outward = kind.Center(face) - CellCenter(m, kind.cell[face]);
            if (!isPartition && !(Dot(kind.Area(face), outward) > 0)) {
                directions.Add(face, name);
            }
        }
    }
    cells.AppendTo(faults, "the cell beside a face must be one " + FromTo(1, m.Nc));
    ghosts.AppendTo(faults, "each face needs a ghost cell of its own " + FromTo(m.Nc + 1, m.NcAll));
    directions.AppendTo(faults, "the area vector must point out of the domain");
}

/// @return number of grids that the overset rules apply to; 0 if the cavity ids break a rule
int CheckCavities(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m, std::vector<Fault>& faults) {
    // The toolbox collects the cavities of all cells but the last.
    const std::set<int> ids(gv.cavityId + 1, gv.cavityId + std::max(m.Nc, 2));
    const int nGrids = static_cast<int>(ids.size());
    if (AreInterfaceBlocks(gv, m)) {
        return 1;  // the ids number the blocks beside the interface, and nothing overlaps
    }
    if (ids.count(gv.cavityId[m.Nc]) == 0) {
        faults.push_back({Rule::LastCell,
                          "cell " + std::to_string(m.Nc) + " " + At(CellCenter(m, m.Nc)) +
                              " is the last of all cells and the only one of cavity " +
                              std::to_string(gv.cavityId[m.Nc]),
                          m.Nc, 1, "give the cavity more than one cell"});
        return 0;
    }
    if (*ids.begin() < 1 || *ids.rbegin() > nGrids || nGrids > 3) {
        faults.push_back({Rule::CavityIds,
                          "there are " + std::to_string(nGrids) + " cavities with ids " +
                              FromTo(*ids.begin(), *ids.rbegin()),
                          0, 1, "number them 1, 2, 3 without a gap, and have no more than three"});
        return 0;
    }
    return nGrids;
}

}  // namespace

std::vector<Fault> HostFaults(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& fvm,
                              CPartitionFace_DLL* partition) {
    const Kinds kinds = AllKinds(fvm, partition);
    std::vector<Fault> faults = CountFaults(fvm, kinds);
    if (faults.empty()) {
        faults = PointerFaults(gv, fvm, kinds);
    }
    if (!faults.empty()) {
        return faults;  // the other rules would read out of range
    }
    CheckCoordinates(fvm, kinds, faults);
    CheckCells(fvm, faults);
    CheckInnerFaces(gv, fvm, faults);
    CheckBoundaryFaces(fvm, kinds, faults);
    const int nGrids = CheckCavities(gv, fvm, faults);
    if (nGrids > 0 && faults.empty()) {
        CheckOversetGroups(gv, fvm, nGrids, faults);
    }
    return faults;
}

}  // namespace kvx3d::checks
