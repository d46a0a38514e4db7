#include "host_checks/donor_search.h"

#include <utility>

namespace kvx3d::checks {
namespace {

std::vector<char> StatesOf(const MeshView& mesh, CKVXOversetMesh& overset) {
    std::vector<char> active(mesh.fvm.Nc + 1, 0);
    for (int cell = 1; cell <= mesh.fvm.Nc; ++cell) {
        active[cell] = overset.GetOversetCellType(cell) == OversetCell_Active ? 1 : 0;
    }
    return active;
}

/// A tree over the active cells of a grid, in ascending order like the tree of the toolbox.
std::unique_ptr<PointTree> TreeOfGrid(const MeshView& mesh, const std::vector<char>& active,
                                      int grid) {
    std::vector<int> cells;
    for (int cell = 1; cell <= mesh.fvm.Nc; ++cell) {
        if (mesh.Grid(cell) == grid && active[cell] != 0) {
            cells.push_back(cell);
        }
    }
    return std::make_unique<PointTree>(std::move(cells),
                                       [&](int cell) { return mesh.CellCenter(cell); });
}

}  // namespace

const char* Name(DonorVerdict verdict) {
    switch (verdict) {
        case DonorVerdict::Found:
            return "found";
        case DonorVerdict::NotAHoleBoundaryFace:
            return "not a hole-boundary face";
        case DonorVerdict::NotAnOuterFace:
            return "not an outer face";
        case DonorVerdict::NoTreeForGrid:
            return "no grid donates to component 2";
        case DonorVerdict::NoActiveCell:
            return "no active cell in the donating grid";
        case DonorVerdict::NoCellAcross:
            return "no cell across the face";
    }
    return "";
}

BoundedDonorSearch::BoundedDonorSearch(const MeshView& mesh, CKVXOversetMesh& overset, int tryBound)
    : BoundedDonorSearch(mesh, StatesOf(mesh, overset), tryBound) {}

BoundedDonorSearch::BoundedDonorSearch(const MeshView& mesh, std::vector<char> activeCells,
                                       int tryBound)
    : view(mesh),
      active(std::move(activeCells)),
      maxTries(tryBound),
      backgroundTree(TreeOfGrid(mesh, active, OversetGrid_Background)),
      componentTree(TreeOfGrid(mesh, active, OversetGrid_Component1)) {}

BoundedDonorSearch::~BoundedDonorSearch() = default;

/// The tree of the grid that donates to `cell`; null if there is none.
const PointTree* BoundedDonorSearch::TreeFor(int cell) const {
    switch (view.Grid(cell)) {
        case OversetGrid_Background:
            return componentTree.get();
        case OversetGrid_Component1:
            return backgroundTree.get();
        default:
            return nullptr;
    }
}

/// The retry loop: mirror the center of the cell through the face, take the nearest cell of the
/// other grid, accept it if it lies across the face, otherwise look a tenth further out. Every
/// operation is that of the toolbox, so that ties and the threshold decide alike.
DonorRecord BoundedDonorSearch::Search(int cell, const Point& face, const Point& across) const {
    constexpr double acrossLimit = 1e-8;  // area times length of the host
    DonorRecord record;
    record.cell = cell;
    const PointTree* tree = TreeFor(cell);
    if (tree == nullptr) {
        record.verdict = DonorVerdict::NoTreeForGrid;
        return record;
    }
    if (tree->IsEmpty()) {
        record.verdict = DonorVerdict::NoActiveCell;
        return record;
    }
    const Point from = view.CellCenter(cell);
    record.verdict = DonorVerdict::NoCellAcross;
    double factor = 1.0;
    while (record.tries < maxTries) {
        ++record.tries;
        record.query = {(face.x - from.x) * factor + face.x, (face.y - from.y) * factor + face.y,
                        (face.z - from.z) * factor + face.z};
        const int nearest = tree->Nearest(record.query);
        factor += 0.1;
        const Point found = view.CellCenter(nearest);
        // Summed in the order y, x, z: at the threshold the order decides.
        const double measure = (found.y - face.y) * across.y + (found.x - face.x) * across.x +
                               (found.z - face.z) * across.z;
        if (measure > acrossLimit) {
            record.verdict = DonorVerdict::Found;
            record.donor = nearest;
            record.distance = Norm(found - record.query);
            break;
        }
    }
    return record;
}

DonorRecord BoundedDonorSearch::InnerDonor(int face) const {
    const int owner = view.fvm.Ce23[0][face];
    const int neighbor = view.fvm.Ce23[1][face];
    if (IsActive(owner) == IsActive(neighbor)) {
        return {};
    }
    const Point center = view.InnerFaceCenter(face);
    const Point area = view.InnerFaceArea(face);
    return IsActive(owner) ? Search(owner, center, area) : Search(neighbor, center, -area);
}

DonorRecord BoundedDonorSearch::ToolboxWallDonor(int wallFace) const {
    if (view.WallGroup(wallFace) == 0) {
        DonorRecord record;
        record.verdict = DonorVerdict::NotAnOuterFace;
        return record;
    }
    const BoundaryFaces& walls = view.Walls();
    // All three components are the x component of the area vector, as in the toolbox.
    const double nx = walls.nx[wallFace];
    return Search(walls.cell[wallFace], walls.Center(wallFace), {nx, nx, nx});
}

DonorRecord BoundedDonorSearch::NearestWallDonor(int wallFace) const {
    DonorRecord record;
    if (view.WallGroup(wallFace) == 0) {
        record.verdict = DonorVerdict::NotAnOuterFace;
        return record;
    }
    const BoundaryFaces& walls = view.Walls();
    record.cell = walls.cell[wallFace];
    if (backgroundTree->IsEmpty()) {
        record.verdict = DonorVerdict::NoActiveCell;
        return record;
    }
    record.verdict = DonorVerdict::Found;
    record.query = 2.0 * walls.Center(wallFace) - view.CellCenter(record.cell);
    record.tries = 1;
    record.donor = backgroundTree->Nearest(record.query);
    record.distance = Norm(view.CellCenter(record.donor) - record.query);
    return record;
}

}  // namespace kvx3d::checks
