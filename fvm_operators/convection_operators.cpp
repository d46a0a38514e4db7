#include "fvm_operators/detail/face_rows.h"
#include "fvm_operators/detail/prefetch.h"
#include "fvm_operators/mat_operator.h"

// The data layout and the prefetching are drawn in detail/prefetch.h; the transcription of all
// schemes, addition by addition, is plain/plain_operators.h.

namespace KVX_ART_FVM {

namespace {

using kvx3d::detail::BoundaryFaces;
using kvx3d::detail::BoundaryKinds;
using kvx3d::detail::FaceRow;
using kvx3d::detail::normalUse;
using kvx3d::detail::Prefetch;
using kvx3d::detail::PrefetchAhead;
using kvx3d::detail::PrefetchLongStencil;
using kvx3d::detail::PrefetchShortStencil;
using kvx3d::detail::RecordUse;

/// Magnitude up to which a flux counts as near zero; absolute, in the host's units.
constexpr double fluxTolerance = 1e-8;

/// One side of an inner face, as a convection scheme reads it.
struct InnerSide {
    FaceRow row;
    int first;   ///< the face's first cell, upstream of a positive flux
    int second;  ///< the face's second cell
    const CMAFVMFaceData* records;
    int face;
    double flux;  ///< positive from the first cell to the second, on both sides

    // NaN is neither positive nor negative and is treated like a near-zero flux.
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

/// One boundary face, as a convection scheme reads it.
struct BoundarySide {
    FaceRow row;
    int cell;
    int ghost;
    const CMAFVMFaceData* records;
    int face;
    double flux;  ///< positive out of the domain

    bool Outgoing() const { return flux > fluxTolerance; }

    /// The unknown of the ghost cell as face value. A value of 0 is added too, which creates the
    /// matrix entry.
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

// In every scheme below the factors are formed as written, (weight * constant) * flux. Another
// grouping of the factors rounds differently, and matrices are compared bit for bit.

/// Central differences: the Face stencil for every flux. On boundary faces the face value is the
/// unknown of the ghost cell, also for outflow.
void AddCentral(const InnerSide& side, double weight) {
    side.AddFace(weight * side.flux);
}

void AddCentral(const BoundarySide& side, double weight) {
    side.row.AddCell(side.ghost, weight * side.flux);
}

/// First-order upwind: the unknown of the upstream cell.
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

/// First-order upwind: the upstream stencil of the record.
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

/// near * upstream + far * far upstream. The far stencil is multiplied and added even if `far` is
/// zero: its entries appear in the matrix, and an infinite flux turns them into NaN.
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

/// Linear upwind on a boundary face. Outflow has the direction of a positive flux, so Left is the
/// interior cell and FarLeft the point upstream of it; no boundary record needs a Right stencil.
void AddLinearUpwind(const BoundarySide& side, double weight) {
    if (side.Outgoing()) {
        side.AddLeft(weight * 1.5 * side.flux);
        side.AddFarLeft(weight * -0.5 * side.flux);
    } else {
        side.AddIncoming(weight);
    }
}

/// First-order values in the pattern of the linear upwind, so that callers can switch between the
/// two schemes on one matrix without insertions.
void AddHybrid(const InnerSide& side, double weight) {
    AddTwoPointUpwind(side, weight, 1.0, 0.0);
}

/// Quadratic upstream interpolation on a uniform grid, in the order upstream, far upstream,
/// downstream.
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

/// Prefetches the pointers to the upwind stencils, which lie in two parts of a record: ids and
/// coefficients.
void PrefetchUpwindPointers(const CMAFVMFaceData& record) {
    Prefetch(&record.idLeft);
    Prefetch(&record.coefAux1);  // lies between the two: three lines hold both at any alignment
    Prefetch(&record.coefFarRight);
}

/// Prefetches the first `nStencils` of these: upstream, far upstream, downstream stencil.
inline void PrefetchUpwindLists(const CMAFVMFaceData& r, double flux, int nStencils) {
    const bool positive = flux > fluxTolerance;
    if (!positive && !(flux < -fluxTolerance)) {
        PrefetchShortStencil(r.idFace, r.coefFace);
        return;
    }
    PrefetchShortStencil(positive ? r.idLeft : r.idRight, positive ? r.coefLeft : r.coefRight);
    if (nStencils > 1) {
        PrefetchLongStencil(positive ? r.idFarLeft : r.idFarRight,
                            positive ? r.coefFarLeft : r.coefFarRight);
    }
    if (nStencils > 2) {
        PrefetchShortStencil(positive ? r.idRight : r.idLeft, positive ? r.coefRight : r.coefLeft);
    }
}

constexpr RecordUse faceUse = {[](const CMAFVMFaceData& record) {
                                   Prefetch(&record.idFace);
                                   Prefetch(&record.coefFace);
                               },
                               [](const CMAFVMFaceData& record, double /*flux*/) {
                                   PrefetchShortStencil(record.idFace, record.coefFace);
                               }};
constexpr RecordUse upstreamUse = {
    PrefetchUpwindPointers,
    [](const CMAFVMFaceData& record, double flux) { PrefetchUpwindLists(record, flux, 1); }};
constexpr RecordUse twoPointUse = {
    PrefetchUpwindPointers,
    [](const CMAFVMFaceData& record, double flux) { PrefetchUpwindLists(record, flux, 2); }};
constexpr RecordUse threePointUse = {
    PrefetchUpwindPointers,
    [](const CMAFVMFaceData& record, double flux) { PrefetchUpwindLists(record, flux, 3); }};

/// For the upwind by cell unknowns, which uses a record only where the flux is near zero.
constexpr RecordUse noUse = {[](const CMAFVMFaceData& /*record*/) {},
                             [](const CMAFVMFaceData& /*record*/, double /*flux*/) {}};

using InnerScheme = void (*)(const InnerSide&, double);
using BoundaryScheme = void (*)(const BoundarySide&, double);

/// The loops of every scheme: each inner face seen from both its cells, then the boundary faces.
/// Inline, so that the compiler makes a copy per operator with the scheme expanded in it.
inline void AddFluxes(CKVX_ART_SparseMatrix& matrix, const CKVX_ACMT_GV& gv, double weight,
                      const CMAFVMFaceVariableAll* flux, InnerScheme addInner,
                      BoundaryScheme addBoundary, const RecordUse& use) {
    for (int i = 1; i <= gv.Ne; ++i) {
        PrefetchAhead(matrix, gv, i, flux, use);
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
    // There is no point downstream of a boundary face, so the scheme falls back to linear upwind.
    AddFluxes(*sparseMatrix, *artGv, weight, flux, AddQuick, AddLinearUpwind, threePointUse);
    return true;
}

bool CKVX_ART_MatOperator::ConvectionOperatorHybrid(double weight, CMAFVMFaceVariableAll* flux) {
    // The interior cell itself and not the Left stencil: a host of this scheme need not fill the
    // boundary records.
    AddFluxes(*sparseMatrix, *artGv, weight, flux, AddHybrid, AddCellUpwind, twoPointUse);
    return true;
}

bool CKVX_ART_MatOperator::ConvectionFU_Diffusion_Operator(CMAFVMFaceVariableAll* flux) {
    for (int i = 1; i <= artGv->Ne; ++i) {
        PrefetchAhead(*sparseMatrix, *artGv, i, nullptr, normalUse);
        const int L = artGv->Ce23[0][i];
        const int R = artGv->Ce23[1][i];

        // Here a flux equal to the tolerance counts as positive, and a near-zero flux adds no
        // convection: the diffusion term already fills the row. The other schemes use the Face
        // stencil for a near-zero flux.
        const FaceRow first{*sparseMatrix, L, false};
        double F = flux->left[i];
        if (F >= fluxTolerance) {
            first.AddCell(L, F);
        } else if (F < -fluxTolerance) {
            first.AddCell(R, F);
        }
        const CMAFVMFaceData& left = artGv->faceDataLeft[i];
        first.AddStencil(left.idNormal, left.coefNormal, artGv->faceMu->left[i] * -1.0);

        // On a non-matching face neither term is added to the row of the second cell.
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
