// FaultsAfterCutting; the rules before the cut are in mesh_rules.cpp.
#include "reference_host/link/mesh_rules.h"

#include <fmt/format.h>

#include <algorithm>

#include "reference_host/link/fault_count.h"
#include "reference_host/mesh/cell_size.h"
#include "reference_host/mesh/messages.h"

namespace host {
namespace {

using Lines = std::vector<std::string>;

/// Cells and their neighbors across faces with two live sides, in one array.
class LiveNeighbors {
public:
    LiveNeighbors(const Mesh& mesh, const Donors& donors) : start(mesh.cellCentre.size() + 1, 0) {
        ForEachPair(mesh, donors, [&](int a, int) { ++start[a + 1]; });
        for (std::size_t i = 1; i < start.size(); ++i) {
            start[i] += start[i - 1];
        }
        neighbor.resize(start.back());
        std::vector<int> next(start.begin(), start.end() - 1);
        ForEachPair(mesh, donors, [&](int a, int b) { neighbor[next[a]++] = b; });
    }

    /// A cell, its neighbors and theirs, each once: the cloud of the interpolation around it.
    std::size_t CloudSize(int cell) const {
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
        return cloud.size();
    }

private:
    /// Visits both directions of each face with two live sides.
    template <class Visit>
    static void ForEachPair(const Mesh& mesh, const Donors& donors, Visit visit) {
        for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
            if (donors.side[face] == FaceSide::Both) {
                visit(mesh.innerFaces[face].owner, mesh.innerFaces[face].neighbor);
                visit(mesh.innerFaces[face].neighbor, mesh.innerFaces[face].owner);
            }
        }
    }

    std::vector<int> start;  // by cell, one more behind the last
    std::vector<int> neighbor;
};

void CheckCut(const Mesh& mesh, const Donors& donors, Lines& lines) {
    int nCut = 0;
    FaultCount cutComponent;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (donors.active[cell] != 0) {
            continue;
        }
        nCut += mesh.cavity[cell] == 1 ? 1 : 0;
        if (mesh.cavity[cell] != 1) {
            cutComponent.Add([&] {
                return fmt::format("{} of {} was cut", CellAt(mesh, cell),
                                   CavityName(mesh.cavity[cell]));
            });
        }
    }
    if (nCut == 0) {
        lines.push_back(
            "no background cell was cut: the component is too thin for a hole under it, "
            "make it thicker or the background finer");
    }
    cutComponent.ReportTo(lines, "move the component away from the walls of the background");
}

/// What may be wrong with the donor of any face.
class DonorCheck {
public:
    DonorCheck(const Mesh& mesh_, const Donors& donors)
        : mesh(mesh_),
          neighbors(mesh_, donors),
          touchesWall(mesh_.cellCentre.size(), 0),
          cloudNeeded(mesh_.IsQuasi2d() ? 8 : 12) {
        for (const BoundaryFace& wall : mesh.Faces(Boundary::Wall)) {
            touchesWall[wall.cell] = 1;
        }
    }

    template <class Where>
    void Check(int donor, Where where) {
        if (donor == 0) {
            missing.Add(where);
            return;
        }
        const auto withDonor = [&] {
            return fmt::format("{} has as donor {} of {}", where(), CellAt(mesh, donor),
                               CavityName(mesh.cavity[donor]));
        };
        if (touchesWall[donor] != 0) {
            touching.Add([&] { return withDonor() + ", which touches a wall or overset face"; });
        }
        const std::size_t cloud = neighbors.CloudSize(donor);
        if (cloud < cloudNeeded) {
            small.Add([&] {
                return fmt::format("{} with {} active cells around it, {} are needed", withDonor(),
                                   cloud, cloudNeeded);
            });
        }
    }

    void ReportTo(Lines& lines) const {
        missing.ReportTo(lines, "no donor was found; make the overlap thicker or both grids finer");
        touching.ReportTo(lines, "make the component thicker or both grids finer");
        small.ReportTo(lines, "make the overlap thicker, or the donating grid finer there");
    }

private:
    const Mesh& mesh;
    LiveNeighbors neighbors;
    std::vector<char> touchesWall;  // by cell
    std::size_t cloudNeeded;        // terms of the quadratic fit, and two more
    FaultCount missing, touching, small;
};

}  // namespace

std::vector<std::string> FaultsAfterCutting(const Mesh& mesh, const Donors& donors) {
    Lines lines;
    CheckCut(mesh, donors, lines);

    DonorCheck check(mesh, donors);
    const std::vector<double> edge = EdgeLengths(mesh);
    FaultCount manyTries;
    FaultCount smallFaces;
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        if (donors.side[face] == FaceSide::Both || donors.side[face] == FaceSide::None) {
            continue;
        }
        const InnerFace& inner = mesh.innerFaces[face];
        const auto where = [&] {
            return fmt::format("hole-boundary face {} {}", face, At(inner.centre));
        };
        check.Check(donors.inner[face], where);
        const int cell = ActiveCell(mesh, donors, face);
        const double distance = (inner.centre - mesh.cellCentre[cell]).norm();
        const double reach = (0.9 + 0.1 * donors.tries[face]) * distance;
        if (donors.inner[face] > 0 && donors.tries[face] > rule::maxDonorTries &&
            reach > rule::maxDonorReach * edge[cell]) {
            manyTries.Add([&] {
                return fmt::format("{} took {} searches for a donor", where(), donors.tries[face]);
            });
        }
        if (IsTooSmallForDonors(inner.area, inner.centre, mesh.cellCentre[cell])) {
            smallFaces.Add(where);
        }
    }
    for (int i = 1; i <= mesh.FaceCount(Boundary::Wall); ++i) {
        if (mesh.Faces(Boundary::Wall)[i].oversetGroup > 0) {
            check.Check(donors.wall[i], [&] { return WallFaceAt(mesh, i); });
        }
    }
    check.ReportTo(lines);
    manyTries.ReportTo(lines, fmt::format("more than {} mean grids that do not fit: make the "
                                          "component cells as large as the background's",
                                          rule::maxDonorTries));
    smallFaces.ReportTo(lines, rule::scaleRemedy);
    return lines;
}

}  // namespace host
