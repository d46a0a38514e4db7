#include "host_checks/explanation.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "host_checks/detail/box_tree.h"

namespace kvx3d::checks {
namespace {

constexpr int layers = 2;  // margin of both cutting steps in cell sizes, fixed by the toolbox

void CheckRange(const char* name, int id, int count) {
    if (id < 1 || id > count) {
        throw std::out_of_range("there is no " + std::string(name) + ' ' + std::to_string(id) +
                                ": the mesh has 1 to " + std::to_string(count));
    }
}

/// Outer faces of component 1 in the order of the toolbox, which decides between equally near
/// faces.
std::vector<int> OuterFacesOfGroup1(const CKvx3dGV& gv) {
    if (gv.NOversetBCGroup[0] < 1 || gv.oversetBCFaceCount[1] < 1) {
        return {};
    }
    const int* faces = gv.oversetBCWallFace[1];
    return {faces + 1, faces + 1 + gv.oversetBCFaceCount[1]};
}

bool IsFinite(const Point& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

}  // namespace

Explainer::Explainer(const MeshView& mesh, CKVXOversetMesh& oversetMesh, int tryBound)
    : view(mesh),
      overset(oversetMesh),
      donors(mesh, oversetMesh, tryBound),
      outerFaces(OuterFacesOfGroup1(mesh.gv)),
      walls(mesh, mesh.WallFaces(0, OversetGrid_Background)),
      outers(mesh, outerFaces) {}

Explainer::~Explainer() = default;

Explainer::Judges::Judges(const MeshView& mesh, const std::vector<int>& faces)
    : tree(faces, [&](int face) { return mesh.Walls().Center(face); }) {
    const bool areFinite = std::all_of(
        faces.begin(), faces.end(), [&](int face) { return IsFinite(mesh.Walls().Center(face)); });
    if (areFinite && !faces.empty()) {
        boxes =
            std::make_unique<BoxTree>(faces, [&](int face) { return mesh.Walls().Center(face); });
    }
}

Explainer::Judges::~Judges() = default;

/// The face that the toolbox takes, 0 if there are no faces.
int Explainer::Judges::Nearest(const Point& center) const {
    if (!boxes || !IsFinite(center)) {
        return tree.Nearest(center);
    }
    const std::vector<int>& nearest = boxes->Nearest(center);
    return nearest.size() == 1 ? nearest.front() : tree.Nearest(center);
}

CellExplanation Explainer::ExplainCell(int cell) const {
    CheckRange("cell", cell, view.fvm.Nc);
    CellExplanation result;
    result.cell = cell;
    result.grid = view.Grid(cell);
    result.center = view.CellCenter(cell);
    result.state = overset.GetOversetCellType(cell);
    Judge(result);
    return result;
}

/// Repeats the test of the step for the grid of the cell, each operation in the toolbox's order.
void Explainer::Judge(CellExplanation& cell) const {
    const bool isComponent = cell.grid == OversetGrid_Component1;
    if (!isComponent && cell.grid != OversetGrid_Background) {
        return;
    }
    cell.wallFace = (isComponent ? walls : outers).Nearest(cell.center);
    if (cell.wallFace == 0) {
        return;
    }
    cell.step = isComponent ? CuttingStep::OutsideDomain : CuttingStep::Overlap;
    cell.faceCenter = view.Walls().Center(cell.wallFace);
    cell.hasFixedVector = !isComponent && overset.impl->outsideCellsCut;
    cell.vector = cell.hasFixedVector ? view.Walls().Center(outerFaces.back())
                                      : view.Walls().Area(cell.wallFace);
    const double size = Norm(cell.vector);
    cell.cellSize = MarginLength(view.fvm.volume[cell.cell]);
    cell.measure = Dot(cell.center - cell.faceCenter, cell.vector);
    cell.margin = size * layers * cell.cellSize;
    cell.marginLength = layers * cell.cellSize;
    cell.distance = size > 0.0 ? cell.measure / size : 0.0;
    cell.isCut = isComponent ? cell.measure > -cell.margin : cell.measure < -cell.margin;
}

InnerFaceExplanation Explainer::ExplainInnerFace(int face) const {
    CheckRange("inner face", face, view.fvm.Ne);
    InnerFaceExplanation result;
    result.face = face;
    result.center = view.InnerFaceCenter(face);
    result.type = overset.GetInnerFaceType(face);
    result.owner = view.fvm.Ce23[0][face];
    result.neighbor = view.fvm.Ce23[1][face];
    result.ownerState = overset.GetOversetCellType(result.owner);
    result.neighborState = overset.GetOversetCellType(result.neighbor);
    result.ownerGrid = view.Grid(result.owner);
    result.neighborGrid = view.Grid(result.neighbor);
    result.holdsDonor = result.ownerGrid != result.neighborGrid;
    result.donor = donors.InnerDonor(face);
    result.donorGrid = result.donor.donor > 0 ? view.Grid(result.donor.donor) : 0;
    if (result.donor.cell > 0) {
        result.cellSize = view.EdgeLength(result.donor.cell);
        result.distanceInCells = result.donor.distance / result.cellSize;
    }
    return result;
}

WallFaceExplanation Explainer::ExplainWallFace(int wallFace) const {
    CheckRange("wall face", wallFace, view.fvm.NWall);
    WallFaceExplanation result;
    result.wallFace = wallFace;
    result.center = view.Walls().Center(wallFace);
    result.kind = overset.GetBCType(wallFace);
    result.group = view.WallGroup(wallFace);
    result.cell = view.Walls().cell[wallFace];
    result.grid = view.Grid(result.cell);
    result.donor = donors.NearestWallDonor(wallFace);
    result.toolboxDonor = donors.ToolboxWallDonor(wallFace);
    result.cellSize = view.EdgeLength(result.cell);
    result.distanceInCells = result.donor.distance / result.cellSize;
    return result;
}

}  // namespace kvx3d::checks
