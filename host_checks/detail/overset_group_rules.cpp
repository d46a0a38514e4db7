#include "host_checks/detail/overset_group_rules.h"

#include <algorithm>
#include <string>
#include <utility>

namespace kvx3d::checks {
namespace {

/// The group tables of a host, entry by entry.
class GroupRules {
public:
    GroupRules(const CKvx3dGV& hostVariables, const CKVX3DFiniteVolumeMesh& mesh)
        : gv(hostVariables),
          m(mesh),
          isClaimed(m.Nc + 1, 0),  // cavity ids are not larger than Nc
          isInGroup(m.NWall + 1, 0) {
        // By the rule of the toolbox. Without an inlet another rule is broken; 1 is a good guess.
        isClaimed[m.NInlet > 0 ? gv.cavityId[m.CInlet23[1]] : 1] = 1;
    }

    void CheckGroup(int group) {
        const int expected = CavityOf(group);
        for (int i = 1; i <= gv.oversetBCFaceCount[group]; ++i) {
            const int wall = gv.oversetBCWallFace[group][i];
            const auto name = [&] {
                return "entry " + std::to_string(i) + " of overset group " + std::to_string(group) +
                       ", wall face " + std::to_string(wall);
            };
            if (!IsWall(wall)) {
                ids.Add(group, name);
                continue;
            }
            if (isInGroup[wall] != 0) {
                twice.Add(wall, name);
            }
            isInGroup[wall] = 1;
            const int cavity = gv.cavityId[m.CWall23[wall]];
            if (cavity != expected) {
                grids.Add(wall, [&] {
                    return name() + ", lies beside cavity " + std::to_string(cavity);
                });
            }
        }
    }

    void AppendTo(std::vector<Fault>& faults) {
        ids.AppendTo(faults, "wall faces are numbered from 1 to " + std::to_string(m.NWall));
        twice.AppendTo(faults, "a wall face is in one group at most, and only once");
        grids.AppendTo(faults,
                       "group 1 borders component1 and group 2 component2, while the background is "
                       "the cavity beside inlet face 1");
    }

private:
    bool IsWall(int wall) const { return wall >= 1 && wall <= m.NWall; }

    /// The cavity that a group should border: the first one among its faces that is not yet the
    /// background or another component; 0 if there is none.
    int CavityOf(int group) {
        for (int i = 1; i <= gv.oversetBCFaceCount[group]; ++i) {
            const int wall = gv.oversetBCWallFace[group][i];
            if (!IsWall(wall)) {
                continue;
            }
            const int cavity = gv.cavityId[m.CWall23[wall]];
            if (isClaimed[cavity] == 0) {
                isClaimed[cavity] = 1;
                return cavity;
            }
        }
        return 0;
    }

    const CKvx3dGV& gv;
    const CKVX3DFiniteVolumeMesh& m;
    std::vector<char> isClaimed;  // by cavity
    std::vector<char> isInGroup;  // by wall face
    FaultCounter ids{Rule::OversetGroupWallFace};
    FaultCounter twice{Rule::OversetGroupOverlap};
    FaultCounter grids{Rule::OversetGroupGrid};
};

/// What is wrong with the tables of all groups; empty if nothing is.
std::string TableFault(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m, int nGrids) {
    const int nGroups = gv.NOversetBCGroup[0];
    const std::string count = "there are " + std::to_string(nGroups) + " overset groups";
    if (nGroups < nGrids - 1) {
        return count + " for " + std::to_string(nGrids - 1) + " component grids";
    }
    if (nGroups > m.NWall) {
        return count + " for " + std::to_string(m.NWall) + " wall faces";
    }
    if (nGroups > 0 && (gv.oversetBCFaceCount == nullptr || gv.oversetBCWallFace == nullptr)) {
        return count + ", but oversetBCFaceCount or oversetBCWallFace is null";
    }
    return "";
}

}  // namespace

bool AreInterfaceBlocks(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m) {
    if (m.Ne < 1) {
        return false;  // the table of flags may be null
    }
    const auto range = std::minmax_element(gv.cavityId + 1, gv.cavityId + m.Nc + 1);
    return *range.first == 0 && *range.second == 1 &&
           std::count(m.nonmatchingFace + 1, m.nonmatchingFace + m.Ne + 1, 1) > 0;
}

void CheckOversetGroups(const CKvx3dGV& gv, const CKVX3DFiniteVolumeMesh& m, int nGrids,
                        std::vector<Fault>& faults) {
    if (nGrids > 1 && m.NInlet < 1) {
        faults.push_back({Rule::BackgroundInlet, "there is no inlet face", 0, 1,
                          "inlet face 1 shows the toolbox which cavity is the background, so give "
                          "the background an inlet"});
    }
    const std::string tableFault = TableFault(gv, m, nGrids);
    if (!tableFault.empty()) {
        faults.push_back(
            {Rule::OversetGroups, tableFault, 0, 1, "give each component a group of its own"});
        return;
    }
    GroupRules rules(gv, m);
    for (int group = 1; group <= gv.NOversetBCGroup[0]; ++group) {
        const int count = gv.oversetBCFaceCount[group];
        if (count == 0 && group >= nGrids) {
            continue;  // no component needs it, and the toolbox reads nothing of it
        }
        if (count < 1 || count > m.NWall || gv.oversetBCWallFace[group] == nullptr) {
            const std::string size =
                count > m.NWall ? "more faces than there are walls" : "no face";
            faults.push_back(
                {Rule::OversetGroupFaces, "overset group " + std::to_string(group) + " has " + size,
                 group, 1,
                 "put the outer boundary of component" + std::to_string(group) + " into it"});
            continue;
        }
        rules.CheckGroup(group);
    }
    rules.AppendTo(faults);
}

}  // namespace kvx3d::checks
