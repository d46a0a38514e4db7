#ifndef KVX3D_FVM_OPERATORS_DETAIL_PREFETCH_H
#define KVX3D_FVM_OPERATORS_DETAIL_PREFETCH_H

#include "host_link/art_gv.h"
#include "host_link/face_data.h"
#include "linear_algebra/detail/csr_rows.h"
#include "linear_algebra/sparse_matrix.h"

// Prefetching for the loops over the inner faces.
//
// Data layout. A face has two records, one for each of its cells, and each record points to the
// stencils, which are separate small arrays; the cells select the matrix rows that are changed:
//
//     faceDataLeft [i] --> idNormal   [0] n  [1] [2] ... [n]   cell numbers, matrix columns
//     faceDataRight[i]     coefNormal        [1] [2] ... [n]   weights
//
//     Ce23[0][i] = row --> Ia[row] .. Ia[row + 1] - 1          positions in
//     Ce23[1][i] = row                                         Ja (columns) and Aa (values)
//
// So a coefficient is three dependent reads away from the face number, and records and stencils
// take far more memory than the caches hold. Each loop therefore prefetches what it will need a
// few faces later:
//
//     face                  assembled now
//     face + listsAhead     the stencils, and the two matrix rows
//     face + pointersAhead  the lines of the records that hold the pointers to the stencils
//
// That reduces the time to assemble a million faces by a quarter. Prefetching reads pointers,
// fluxes and row starts, never the contents of a stencil, and it changes no result: the
// transcription without it in plain/plain_operators.h adds the same values in the same order.

namespace kvx3d::detail {

/// Prefetches the start of both arrays of a stencil, which is usually all of a short one.
inline void PrefetchShortStencil(const int* id, const double* coef) {
    Prefetch(id);
    Prefetch(coef);
}

/// Prefetches both arrays of a stencil of up to 8 terms.
inline void PrefetchLongStencil(const int* id, const double* coef) {
    PrefetchShortStencil(id, coef);
    Prefetch(coef, 7 * sizeof(double));
}

/// Prefetches the columns and values of a matrix row, up to 32 of them. A row number outside the
/// matrix is ignored here; the addition reports it.
inline void PrefetchRow(const CKVX_ART_SparseMatrix& matrix, int row) {
    if (!matrix.compressed || row < 1 || row > matrix.rowsN) {
        return;
    }
    const int* columns = matrix.Ja + matrix.Ia[row];
    const double* values = matrix.Aa + matrix.Ia[row];
    Prefetch(columns);
    Prefetch(values);
    Prefetch(values, 64);
    if (matrix.Ia[row + 1] - matrix.Ia[row] > 8) {
        Prefetch(columns, 64);
        Prefetch(values, 128);
        Prefetch(values, 192);
    }
}

/// How to prefetch what an operator reads of a record. `pointers` prefetches the lines that hold
/// the pointers to the stencils; `lists`, called some faces later, prefetches the stencils that
/// are used with this flux.
struct RecordUse {
    void (*pointers)(const CMAFVMFaceData& record);
    void (*lists)(const CMAFVMFaceData& record, double flux);
};

constexpr int listsAhead = 4;     ///< faces; with more, lines are evicted before they are used
constexpr int pointersAhead = 8;  ///< faces

/// Prefetches what an operator needs on the faces after `face`, grouped by kind of memory.
///
/// @param flux  null for an operator without a flux
inline void PrefetchAhead(const CKVX_ART_SparseMatrix& matrix, const CKVX_ACMT_GV& gv, int face,
                          const CMAFVMFaceVariableAll* flux, const RecordUse& use) {
    // A mesh may lack records that the operator does not read, for example faceDataRight when
    // every face is non-matching.
    if (face + pointersAhead > gv.Ne || !gv.faceDataLeft || !gv.faceDataRight) {
        return;
    }
    use.pointers(gv.faceDataLeft[face + pointersAhead]);
    use.pointers(gv.faceDataRight[face + pointersAhead]);
    const int next = face + listsAhead;
    use.lists(gv.faceDataLeft[next], flux ? flux->left[next] : 0.0);
    use.lists(gv.faceDataRight[next], flux ? flux->right[next] : 0.0);
    PrefetchRow(matrix, gv.Ce23[0][next]);
    PrefetchRow(matrix, gv.Ce23[1][next]);
}

/// Diffusion reads the Normal stencil, whatever the flux.
constexpr RecordUse normalUse = {[](const CMAFVMFaceData& record) {
                                     Prefetch(&record.idNormal);
                                     Prefetch(&record.coefNormal);
                                 },
                                 [](const CMAFVMFaceData& record, double /*flux*/) {
                                     PrefetchShortStencil(record.idNormal, record.coefNormal);
                                 }};

}  // namespace kvx3d::detail

#endif
