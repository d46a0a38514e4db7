#include "stencils.h"

#include <array>

#include "host_checks/donor_search.h"

using kvx3d::checks::BoundaryFaces;
using kvx3d::checks::MeshView;
using kvx3d::checks::Point;

CutMesh::CutMesh(const MeshView& view, CKVXOversetMesh& overset)
    : mesh(view),
      neighbors(view.fvm.Nc + 1),
      isRegular(view.fvm.Ne + 1, 0),
      activeCell(view.fvm.Ne + 1, 0),
      outerDonor(view.fvm.NWall + 1, 0) {
    const kvx3d::checks::BoundedDonorSearch search(mesh, overset);
    isActive = search.ActiveCells();
    for (int face = 1; face <= mesh.fvm.Ne; ++face) {
        const int owner = mesh.fvm.Ce23[0][face];
        const int neighbor = mesh.fvm.Ce23[1][face];
        const OversetInnerFaceType type = overset.GetInnerFaceType(face);
        if (type == OversetInnerFace_Active) {
            isRegular[face] = 1;
            neighbors[owner].push_back(neighbor);
            neighbors[neighbor].push_back(owner);
        } else if (type == OversetInnerFace_Overset) {
            activeCell[face] = isActive[owner] ? owner : neighbor;
            overset.ReplaceDonorIdtoNonActCellId(face);  // Assess() made sure that there is one
        }
    }
    for (int face = 1; face <= mesh.fvm.NWall; ++face) {
        outerDonor[face] = search.NearestWallDonor(face).donor;
    }
}

namespace {

/// A value as a weighted sum over cells.
struct Term {
    int cell;
    double weight;
};
using Stencil = std::vector<Term>;

/// Writes the stencil of the gradient: the count in slot 0, the terms from 1.
void Put(const Stencil& stencil, CMAFVMFaceData& record) {
    record.idNormal = new int[stencil.size() + 1];  // the record owns both arrays
    record.coefNormal = new double[stencil.size() + 1];
    record.idNormal[0] = static_cast<int>(stencil.size());
    for (std::size_t k = 0; k < stencil.size(); ++k) {
        record.idNormal[k + 1] = stencil[k].cell;
        record.coefNormal[k + 1] = stencil[k].weight;
    }
}

/// Adds factor times the value at `point`, from the donor's value and its least-squares gradient
/// over the neighbors. Exact for linear fields; a quadratic fit would be more accurate.
void AddValueAt(Stencil& stencil, double factor, const Point& point, int donor,
                const CutMesh& cut) {
    const Point center = cut.mesh.CellCenter(donor);
    const Point to = point - center;
    double xx = 0.0, xy = 0.0, yy = 0.0;
    for (int cell : cut.neighbors[donor]) {
        const Point d = cut.mesh.CellCenter(cell) - center;
        xx += d.x * d.x;
        xy += d.x * d.y;
        yy += d.y * d.y;
    }
    stencil.push_back({donor, factor});
    for (int cell : cut.neighbors[donor]) {
        const Point d = cut.mesh.CellCenter(cell) - center;
        const double weight = factor *
                              ((yy * d.x - xy * d.y) * to.x + (xx * d.y - xy * d.x) * to.y) /
                              (xx * yy - xy * xy);
        stencil.push_back({cell, weight});
        stencil.push_back({donor, -weight});
    }
}

/// Fills the sides of active cells. The donor's side of a face adds nothing to the donor's row.
void FillInnerFaces(CKVX_ACMT_GV& gv, const CMAFVMFaceData& empty, const CutMesh& cut) {
    gv.faceDataLeft = new CMAFVMFaceData[gv.Ne + 1];
    gv.faceDataRight = new CMAFVMFaceData[gv.Ne + 1];
    for (int face = 1; face <= gv.Ne; ++face) {
        CMAFVMFaceData& left = gv.faceDataLeft[face];
        CMAFVMFaceData& right = gv.faceDataRight[face];
        const Point S = cut.mesh.InnerFaceArea(face);
        const int owner = gv.Ce23[0][face], neighbor = gv.Ce23[1][face];
        if (cut.isRegular[face]) {
            const Point d = cut.mesh.CellCenter(neighbor) - cut.mesh.CellCenter(owner);
            const double factor = Dot(S, S) / Dot(S, d);
            Put({{neighbor, factor}, {owner, -factor}}, left);
            right.LinkedDataForAll(left);
            continue;
        }
        const int cell = cut.activeCell[face];
        (cell == owner ? right : left).LinkedDataForAll(empty);
        if (cell == 0) {
            right.LinkedDataForAll(empty);  // between two cut cells
            continue;
        }
        // The cut cell is replaced by the mirrored point, whose value the donor gives.
        const Point center = cut.mesh.CellCenter(cell);
        const Point d = 2.0 * (cut.mesh.InnerFaceCenter(face) - center);
        const double factor = Dot(S, S) / Dot(S, d);  // negative on the right side
        Stencil gradient{{cell, -factor}};
        AddValueAt(gradient, factor, center + d, cell == owner ? neighbor : owner, cut);
        Put(gradient, cell == owner ? left : right);
    }
}

void FillBoundary(const BoundaryFaces& faces, CMAFVMFaceData* records, const CMAFVMFaceData& empty,
                  const CutMesh& cut) {
    for (int face = 1; face <= faces.count; ++face) {
        const int cell = faces.cell[face];
        const bool isOuter = faces.x == cut.mesh.Walls().x && cut.outerDonor[face] > 0;
        const Point S = faces.Area(face);
        const Point d = faces.Center(face) - cut.mesh.CellCenter(cell);
        const double factor = Dot(S, S) / Dot(S, d);
        if (faces.x == cut.mesh.Symmetries().x || !cut.isActive[cell]) {
            records[face].LinkedDataForAll(empty);
        } else if (isOuter) {
            Stencil gradient{{cell, -0.5 * factor}};
            AddValueAt(gradient, 0.5 * factor, faces.Center(face) + d, cut.outerDonor[face], cut);
            Put(gradient, records[face]);
        } else {
            Put({{faces.ghost[face], factor}, {cell, -factor}}, records[face]);
        }
    }
}

}  // namespace

FaceStencils::FaceStencils(TwoGrids& grids, const CutMesh& cut) {
    gv.getKvx3dGV(&grids.gv, &grids.fvm);
    gv.getKvx3dData();
    Put({}, empty);
    FillInnerFaces(gv, empty, cut);
    const std::array<BoundaryFaces, 4> kinds = kvx3d::checks::BoundaryKinds(grids.fvm);
    CMAFVMFaceData** const records[] = {&gv.faceDataInlet, &gv.faceDataOutlet, &gv.faceDataWall,
                                        &gv.faceDataSymm};
    for (int kind = 0; kind < 4; ++kind) {
        *records[kind] = new CMAFVMFaceData[kinds[kind].count + 1];  // released with gv
        FillBoundary(kinds[kind], *records[kind], empty, cut);
    }
}
