#include "host_checks/cut_rules.h"

#include <algorithm>
#include <string>

#include "host_checks/detail/messages.h"
#include "host_checks/mesh_rules.h"

namespace kvx3d::checks {
namespace {

/// The active cells that share an inner face with each active cell, in one array.
class ActiveNeighbors {
public:
    ActiveNeighbors(const MeshView& mesh, const CutMesh& cut) : start(mesh.fvm.Nc + 2, 0) {
        ForEachPair(mesh, cut, [&](int a, int) { ++start[a + 1]; });
        for (std::size_t i = 1; i < start.size(); ++i) {
            start[i] += start[i - 1];
        }
        neighbor.resize(start.back());
        std::vector<int> next(start.begin(), start.end() - 1);
        ForEachPair(mesh, cut, [&](int a, int b) { neighbor[next[a]++] = b; });
    }

    /// Number of cells among a cell, its neighbors and their neighbors: the points from which a
    /// host can interpolate around the cell.
    int CloudSize(int cell) const {
        std::vector<int> cloud = {cell};
        for (int ring = 0; ring < 2; ++ring) {
            const std::vector<int> inside = cloud;
            for (int member : inside) {
                cloud.insert(cloud.end(), neighbor.begin() + start[member],
                             neighbor.begin() + start[member + 1]);
            }
            std::sort(cloud.begin(), cloud.end());
            cloud.erase(std::unique(cloud.begin(), cloud.end()), cloud.end());
        }
        return static_cast<int>(cloud.size());
    }

private:
    /// Visits both directions of each face between two active cells.
    template <class Visit>
    static void ForEachPair(const MeshView& mesh, const CutMesh& cut, Visit visit) {
        for (int face = 1; face <= mesh.fvm.Ne; ++face) {
            const int owner = mesh.fvm.Ce23[0][face];
            const int other = mesh.fvm.Ce23[1][face];
            if (cut.isActive[owner] != 0 && cut.isActive[other] != 0) {
                visit(owner, other);
                visit(other, owner);
            }
        }
    }

    std::vector<int> start;  // by cell: where its row of `neighbor` starts, cells + 2 entries
    std::vector<int> neighbor;
};

void CheckCutCells(const MeshView& mesh, const CutMesh& cut, std::vector<Fault>& faults) {
    bool hasHole = false;
    FaultCounter cutComponent(Rule::ComponentUncut);
    for (int cell = 1; cell <= mesh.fvm.Nc; ++cell) {
        if (cut.isActive[cell] != 0) {
            continue;
        }
        const int grid = mesh.Grid(cell);
        hasHole = hasHole || grid == 1;
        if (grid != 1) {
            cutComponent.Add(
                cell, [&] { return CellAt(mesh, cell) + " of " + GridName(grid) + " was cut"; });
        }
    }
    if (!hasHole) {
        faults.push_back({Rule::HoleExists, "no background cell was cut", 0, 1,
                          "the component is too thin for a hole under it, make it thicker or the "
                          "background finer"});
    }
    cutComponent.AppendTo(faults, "move the component away from the walls of the background");
}

/// What may be wrong with the donor of any face.
class DonorRules {
public:
    DonorRules(const MeshView& view, const CutMesh& cut)
        : mesh(view),
          neighbors(view, cut),
          touchesWall(view.fvm.Nc + 1, 0),
          cloudNeeded(view.IsOneCellThick() ? limit::minNeighborsInPlane
                                            : limit::minNeighborsInSpace) {
        for (int face = 1; face <= mesh.Walls().count; ++face) {
            touchesWall[mesh.Walls().cell[face]] = 1;
        }
    }

    /// @param where  returns the name of the face
    template <class Where>
    void Check(int face, int donor, Where where) {
        if (donor == 0) {
            missing.Add(face, where);
            return;
        }
        const auto withDonor = [&] {
            return where() + " has as donor " + CellAt(mesh, donor) + " of " +
                   GridName(mesh.Grid(donor));
        };
        if (touchesWall[donor] != 0) {
            touching.Add(face,
                         [&] { return withDonor() + ", which touches a wall or overset face"; });
        }
        const int cloud = neighbors.CloudSize(donor);
        if (cloud < cloudNeeded) {
            small.Add(face, [&] {
                return withDonor() + " with " + std::to_string(cloud) +
                       " active cells around it, " + std::to_string(cloudNeeded) + " are needed";
            });
        }
    }

    void AppendTo(std::vector<Fault>& faults) {
        missing.AppendTo(faults,
                         "no donor was found; make the overlap thicker or both grids finer");
        touching.AppendTo(faults, "make the component thicker or both grids finer");
        small.AppendTo(faults, "make the overlap thicker, or the donating grid finer there");
    }

private:
    const MeshView& mesh;
    ActiveNeighbors neighbors;
    std::vector<char> touchesWall;  // by cell
    int cloudNeeded;
    FaultCounter missing{Rule::DonorExists};
    FaultCounter touching{Rule::DonorAwayFromWall};
    FaultCounter small{Rule::DonorNeighbors};
};

}  // namespace

CutMesh FindDonors(const MeshView& mesh, const BoundedDonorSearch& search) {
    CutMesh cut;
    cut.isActive = search.ActiveCells();
    for (int face = 1; face <= mesh.fvm.Ne; ++face) {
        if (search.IsActive(mesh.fvm.Ce23[0][face]) != search.IsActive(mesh.fvm.Ce23[1][face])) {
            cut.hole.push_back({face, search.InnerDonor(face)});
        }
    }
    for (int face = 1; face <= mesh.fvm.NWall; ++face) {
        if (mesh.WallGroup(face) > 0) {
            cut.outers.push_back({face, search.NearestWallDonor(face)});
        }
    }
    return cut;
}

std::vector<Fault> CutFaults(const MeshView& mesh, const CutMesh& cut) {
    std::vector<Fault> faults;
    CheckCutCells(mesh, cut, faults);
    DonorRules donors(mesh, cut);
    FaultCounter manyTries(Rule::DonorTries);
    FaultCounter smallFaces(Rule::LengthScale);
    for (const FaceDonor& hole : cut.hole) {
        const Point center = mesh.InnerFaceCenter(hole.face);
        const auto where = [&] {
            return "hole-boundary face " + std::to_string(hole.face) + " " + At(center);
        };
        donors.Check(hole.face, hole.search.donor, where);
        const bool ownerIsActive = cut.isActive[mesh.fvm.Ce23[0][hole.face]] != 0;
        const int cell = mesh.fvm.Ce23[ownerIsActive ? 0 : 1][hole.face];
        const int tries = hole.search.tries;
        const double reach = (0.9 + 0.1 * tries) * Norm(center - mesh.CellCenter(cell));
        if (hole.search.donor > 0 && tries > limit::maxDonorTries &&
            reach > limit::maxDonorReach * mesh.EdgeLength(cell)) {
            manyTries.Add(hole.face, [&] {
                return where() + " took " + std::to_string(tries) + " searches for a donor";
            });
        }
        if (IsTooSmallForDonors(mesh.InnerFaceArea(hole.face), center, mesh.CellCenter(cell))) {
            smallFaces.Add(hole.face, where);
        }
    }
    for (const FaceDonor& outer : cut.outers) {
        donors.Check(outer.face, outer.search.donor, [&] { return WallFaceAt(mesh, outer.face); });
    }
    donors.AppendTo(faults);
    manyTries.AppendTo(faults, "more than " + std::to_string(limit::maxDonorTries) +
                                   " mean grids that do not fit: make the component cells as "
                                   "large as the background's");
    smallFaces.AppendTo(faults, scaleRemedy);
    return faults;
}

}  // namespace kvx3d::checks
