#include "fvm_operators/detail/face_rows.h"
#include "fvm_operators/detail/prefetch.h"
#include "fvm_operators/mat_operator.h"

namespace KVX_ART_FVM {

namespace {

/// Flux magnitude up to which an inner face counts as near zero; absolute, in the host's units.
constexpr double fluxTolerance = 1e-8;

/// One side of an inner face as a convection scheme sees it.
struct InnerSide {
    FaceRow row;
    int first;   ///< the face's first cell, upstream of a positive flux
    int second;  ///< the face's second cell
    const CMAFVMFaceData* records;
    int face;
    double flux;  ///< positive from the first cell to the second, on either side

    // Not-a-number is neither positive nor negative and goes the way of a near-zero flux.
    bool Positive() const { return flux > fluxTolerance; }
    bool Negative() const { return flux < -fluxTolerance; }

    void AddFace(double factor) const {
        row.AddStencil(records[face].idFace, records[face].coefFace, factor);
    }
    void AddLeft(double factor) const {
        row.AddStencil(records[face].idLeft, records[face].coefLeft, factor);
    }
    void AddRight(double factor) const {
        row.AddStencil(records[face].idRight, records[face].coefRight, factor);
    }
    void AddFarLeft(double factor) const {
        row.AddStencil(records[face].idFarLeft, records[face].coefFarLeft, factor);
    }
    void AddFarRight(double factor) const {
        row.AddStencil(records[face].idFarRight, records[face].coefFarRight, factor);
    }
};

InnerSide FirstSide(CKVX_ART_SparseMatrix& matrix, const CKVX_ACMT_GV& gv,
                    const CMAFVMFaceVariableAll& flux, int face) {
    const int first = gv.Ce23[0][face];
    const int second = gv.Ce23[1][face];
    return {{matrix, first, false}, first, second, gv.faceDataLeft, face, flux.left[face]};
}

InnerSide SecondSide(CKVX_ART_SparseMatrix& matrix, const CKVX_ACMT_GV& gv,
                     const CMAFVMFaceVariableAll& flux, int face) {
    const int first = gv.Ce23[0][face];
    const int second = gv.Ce23[1][face];
    return {{matrix, second, true}, first, second, gv.faceDataRight, face, flux.right[face]};
}

/// One boundary face as a convection scheme sees it.
struct BoundarySide {
    FaceRow row;
    int cell;
    int ghost;
    const CMAFVMFaceData* records;
    int face;
    double flux;  ///< positive out of the domain

    bool Outgoing() const { return flux > fluxTolerance; }

    /// The ghost cell's unknown as face value. A value of 0 is added too: it creates the entry.
    void AddIncoming(double weight) const { row.AddCell(ghost, flux * weight); }

    void AddLeft(double factor) const {
        row.AddStencil(records[face].idLeft, records[face].coefLeft, factor);
    }
    void AddFarLeft(double factor) const {
        row.AddStencil(records[face].idFarLeft, records[face].coefFarLeft, factor);
    }
};

BoundarySide SideOf(CKVX_ART_SparseMatrix& matrix, const BoundaryFaces& kind, int face) {
    const int cell = kind.cell[face];
    return {{matrix, cell, false}, cell, kind.ghost[face], kind.record, face, kind.flux[face]};
}

// In every scheme below the factors are formed as written, (weight * constant) * flux: another
// association rounds differently, and matrices are compared bit for bit.

/// The Face stencil whatever the flux, and the ghost cell on boundary faces, outflow too: the
/// central face value of a boundary face is its ghost unknown.
void AddCentral(const InnerSide& side, double weight) {
    side.AddFace(weight * side.flux);
}

void AddCentral(const BoundarySide& side, double weight) {
    side.row.AddCell(side.ghost, weight * side.flux);
}

/// Upstream cell's own unknown.
void AddCellUpwind(const InnerSide& side, double weight) {
    if (side.Positive()) {
        side.row.AddCell(side.first, side.flux * weight);
    } else if (side.Negative()) {
        side.row.AddCell(side.second, side.flux * weight);
    } else {
        side.AddFace(weight * side.flux);
    }
}

void AddCellUpwind(const BoundarySide& side, double weight) {
    if (side.Outgoing()) {
        side.row.AddCell(side.cell, side.flux * weight);
    } else {
        side.AddIncoming(weight);
    }
}

/// Upstream stencil of the record.
void AddStencilUpwind(const InnerSide& side, double weight) {
    if (side.Positive()) {
        side.AddLeft(weight * side.flux);
    } else if (side.Negative()) {
        side.AddRight(weight * side.flux);
    } else {
        side.AddFace(weight * side.flux);
    }
}

void AddStencilUpwind(const BoundarySide& side, double weight) {
    if (side.Outgoing()) {
        side.AddLeft(weight * side.flux);
    } else {
        side.AddIncoming(weight);
    }
}

/// near * upstream + far * far upstream. A far of zero is multiplied and added like any other: its
/// entries appear in the matrix, and an infinite flux turns them into not-a-number.
void AddTwoPointUpwind(const InnerSide& side, double weight, double near, double far) {
    if (side.Positive()) {
        side.AddLeft(weight * near * side.flux);
        side.AddFarLeft(weight * far * side.flux);
    } else if (side.Negative()) {
        side.AddRight(weight * near * side.flux);
        side.AddFarRight(weight * far * side.flux);
    } else {
        side.AddFace(weight * side.flux);
    }
}

void AddLinearUpwind(const InnerSide& side, double weight) {
    AddTwoPointUpwind(side, weight, 1.5, -0.5);
}

/// Linear upwind on a boundary face. Outflow has the sense of a positive flux, so Left is the
/// interior cell, FarLeft the point behind it, and no boundary record needs a Right stencil.
void AddLinearUpwind(const BoundarySide& side, double weight) {
    if (side.Outgoing()) {
        side.AddLeft(weight * 1.5 * side.flux);
        side.AddFarLeft(weight * -0.5 * side.flux);
    } else {
        side.AddIncoming(weight);
    }
}

/// First-order values in the pattern of the linear upwind: callers may switch between the two on
/// one matrix without an insertion.
void AddHybrid(const InnerSide& side, double weight) {
    AddTwoPointUpwind(side, weight, 1.0, 0.0);
}

/// Quadratic upstream interpolation on a uniform grid: upstream, far upstream, downstream.
void AddQuick(const InnerSide& side, double weight) {
    if (side.Positive()) {
        side.AddLeft(weight * 0.75 * side.flux);
        side.AddFarLeft(weight * -0.125 * side.flux);
        side.AddRight(weight * 0.375 * side.flux);
    } else if (side.Negative()) {
        side.AddRight(weight * 0.75 * side.flux);
        side.AddFarRight(weight * -0.125 * side.flux);
        side.AddLeft(weight * 0.375 * side.flux);
    } else {
        side.AddFace(weight * side.flux);
    }
}

/// The pointers to the upwind stencils lie in two runs of a record, of ids and of coefficients.
void FetchUpwindPointers(const CMAFVMFaceData& record) {
    Fetch(&record.idLeft);
    Fetch(&record.coefAux1);  // between the runs: three lines hold both, wherever they begin
    Fetch(&record.coefFarRight);
}

/// The lists of the first nStencils of upstream, far upstream and downstream.
inline void FetchUpwindLists(const CMAFVMFaceData& r, double flux, int nStencils) {
    const bool positive = flux > fluxTolerance;
    if (!positive && !(flux < -fluxTolerance)) {
        FetchShort(r.idFace, r.coefFace);
        return;
    }
    FetchShort(positive ? r.idLeft : r.idRight, positive ? r.coefLeft : r.coefRight);
    if (nStencils > 1) {
        FetchLong(positive ? r.idFarLeft : r.idFarRight, positive ? r.coefFarLeft : r.coefFarRight);
    }
    if (nStencils > 2) {
        FetchShort(positive ? r.idRight : r.idLeft, positive ? r.coefRight : r.coefLeft);
    }
}

constexpr RecordUse faceUse = {[](const CMAFVMFaceData& record) {
                                   Fetch(&record.idFace);
                                   Fetch(&record.coefFace);
                               },
                               [](const CMAFVMFaceData& record, double /*flux*/) {
                                   FetchShort(record.idFace, record.coefFace);
                               }};
constexpr RecordUse upstreamUse = {
    FetchUpwindPointers,
    [](const CMAFVMFaceData& record, double flux) { FetchUpwindLists(record, flux, 1); }};
constexpr RecordUse twoPointUse = {
    FetchUpwindPointers,
    [](const CMAFVMFaceData& record, double flux) { FetchUpwindLists(record, flux, 2); }};
constexpr RecordUse threePointUse = {
    FetchUpwindPointers,
    [](const CMAFVMFaceData& record, double flux) { FetchUpwindLists(record, flux, 3); }};

/// Nearly all faces use no record at all.
constexpr RecordUse noUse = {[](const CMAFVMFaceData& /*record*/) {},
                             [](const CMAFVMFaceData& /*record*/, double /*flux*/) {}};

using InnerScheme = void (*)(const InnerSide&, double);
using BoundaryScheme = void (*)(const BoundarySide&, double);

/// The walk of every scheme: each inner face seen from both its cells, then the boundary faces.
/// Inline, so that every operator has a walk of its own with the schemes built in.
inline void AddFluxes(CKVX_ART_SparseMatrix& matrix, const CKVX_ACMT_GV& gv, double weight,
                      const CMAFVMFaceVariableAll* flux, InnerScheme addInner,
                      BoundaryScheme addBoundary, const RecordUse& use) {
    for (int i = 1; i <= gv.Ne; ++i) {
        FetchAhead(matrix, gv, i, flux, use);
        addInner(FirstSide(matrix, gv, *flux, i), weight);
        addInner(SecondSide(matrix, gv, *flux, i), weight);
    }
    if (!gv.useBoundaryFaces) {
        return;
    }
    for (const BoundaryFaces& kind : BoundaryKinds(gv, flux)) {
        for (int i = 1; i <= kind.n; ++i) {
            addBoundary(SideOf(matrix, kind, i), weight);
        }
    }
}

}  // namespace

bool CKVX_ART_MatOperator::ConvectionOperator(bool upwind, double weight,
                                              CMAFVMFaceVariableAll* flux) {
    if (upwind) {
        AddFluxes(*sparseMatrix, *artGv, weight, flux, AddCellUpwind, AddCellUpwind, noUse);
    } else {
        AddFluxes(*sparseMatrix, *artGv, weight, flux, AddCentral, AddCentral, faceUse);
    }
    return true;
}

bool CKVX_ART_MatOperator::ConvectionOperatorCD(double weight, CMAFVMFaceVariableAll* flux) {
    AddFluxes(*sparseMatrix, *artGv, weight, flux, AddCentral, AddCentral, faceUse);
    return true;
}

bool CKVX_ART_MatOperator::ConvectionOperatorLUD(double weight, CMAFVMFaceVariableAll* flux) {
    AddFluxes(*sparseMatrix, *artGv, weight, flux, AddLinearUpwind, AddLinearUpwind, twoPointUse);
    return true;
}

bool CKVX_ART_MatOperator::ConvectionOperatorFU(double weight, CMAFVMFaceVariableAll* flux) {
    AddFluxes(*sparseMatrix, *artGv, weight, flux, AddStencilUpwind, AddStencilUpwind, upstreamUse);
    return true;
}

bool CKVX_ART_MatOperator::ConvectionOperatorQUICK(double weight, CMAFVMFaceVariableAll* flux) {
    // No point lies downstream of a boundary face, so the scheme steps down there.
    AddFluxes(*sparseMatrix, *artGv, weight, flux, AddQuick, AddLinearUpwind, threePointUse);
    return true;
}

bool CKVX_ART_MatOperator::ConvectionOperatorHybrid(double weight, CMAFVMFaceVariableAll* flux) {
    // The cell itself and not the record's Left stencil: no boundary record is read here.
    AddFluxes(*sparseMatrix, *artGv, weight, flux, AddHybrid, AddCellUpwind, twoPointUse);
    return true;
}

bool CKVX_ART_MatOperator::ConvectionFU_Diffusion_Operator(CMAFVMFaceVariableAll* flux) {
    for (int i = 1; i <= artGv->Ne; ++i) {
        FetchAhead(*sparseMatrix, *artGv, i, nullptr, normalUse);
        const int L = artGv->Ce23[0][i];
        const int R = artGv->Ce23[1][i];

        // Positive includes the tolerance itself here, and a flux within it adds nothing: the
        // diffusion of the face carries the row. The other schemes fall back to the Face stencil.
        const FaceRow first{*sparseMatrix, L, false};
        double F = flux->left[i];
        if (F >= fluxTolerance) {
            first.AddCell(L, F);
        } else if (F < -fluxTolerance) {
            first.AddCell(R, F);
        }
        const CMAFVMFaceData& left = artGv->faceDataLeft[i];
        first.AddStencil(left.idNormal, left.coefNormal, artGv->faceMu->left[i] * -1.0);

        // On a non-matching face the row of the second cell gets neither term.
        if (artGv->nonmatchingFace[i] != 0) {
            continue;
        }

        const FaceRow second{*sparseMatrix, R, false};
        F = flux->right[i];
        if (F >= fluxTolerance) {
            second.AddCell(L, -F);
        } else if (F < -fluxTolerance) {
            second.AddCell(R, -F);
        }
        const CMAFVMFaceData& right = artGv->faceDataRight[i];
        second.AddStencil(right.idNormal, right.coefNormal, artGv->faceMu->right[i]);
    }
    return true;
}

}  // namespace KVX_ART_FVM
