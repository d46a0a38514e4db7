#ifndef KVX3D_FVM_OPERATORS_DETAIL_PREFETCH_H
#define KVX3D_FVM_OPERATORS_DETAIL_PREFETCH_H

#include "host_link/art_gv.h"
#include "host_link/face_data.h"
#include "linear_algebra/detail/csr_rows.h"
#include "linear_algebra/sparse_matrix.h"

namespace KVX_ART_FVM {

// A walk over faces waits for memory: a coefficient is three dependent reads away (record, list,
// row), and records and lists take far more room than the caches have. So each walk asks for what
// it will need a few faces before its turn. That takes a quarter off the assembly of a million
// faces. It reads pointers, fluxes and row starts, never what a list holds, and nothing that is
// added depends on it.

using KVX3DART::Fetch;

/// Asks for the start of both lists of a stencil: as a rule all of a short one.
inline void FetchShort(const int* id, const double* coef) {
    Fetch(id);
    Fetch(coef);
}

/// The same for a stencil of up to 8 terms.
inline void FetchLong(const int* id, const double* coef) {
    FetchShort(id, coef);
    Fetch(coef, 7 * sizeof(double));
}

/// Asks for the columns and values of a row, up to 32 of them. A row number outside the matrix is
/// left to the add.
inline void FetchRow(const CKVX_ART_SparseMatrix& matrix, int row) {
    if (!matrix.compressed || row < 1 || row > matrix.rowsN) {
        return;
    }
    const int* columns = matrix.Ja + matrix.Ia[row];
    const double* values = matrix.Aa + matrix.Ia[row];
    Fetch(columns);
    Fetch(values);
    Fetch(values, 64);
    if (matrix.Ia[row + 1] - matrix.Ia[row] > 8) {
        Fetch(columns, 64);
        Fetch(values, 128);
        Fetch(values, 192);
    }
}

/// What a walk reads of a record: `pointers` asks for the lines that hold the pointers to the
/// lists; `lists`, some faces later, for the lists that are used with this flux.
struct RecordUse {
    void (*pointers)(const CMAFVMFaceData& record);
    void (*lists)(const CMAFVMFaceData& record, double flux);
};

constexpr int listsAhead = 4;     ///< faces; further ahead, lines are gone before they are used
constexpr int pointersAhead = 8;  ///< faces

/// Asks for what a walk needs on the faces ahead of `face`, like kinds of memory together.
///
/// @param flux  null in a walk without
inline void FetchAhead(const CKVX_ART_SparseMatrix& matrix, const CKVX_ACMT_GV& gv, int face,
                       const CMAFVMFaceVariableAll* flux, const RecordUse& use) {
    // A mesh may lack the records that its walk does not read, those of non-matching faces say.
    if (face + pointersAhead > gv.Ne || !gv.faceDataLeft || !gv.faceDataRight) {
        return;
    }
    use.pointers(gv.faceDataLeft[face + pointersAhead]);
    use.pointers(gv.faceDataRight[face + pointersAhead]);
    const int next = face + listsAhead;
    use.lists(gv.faceDataLeft[next], flux ? flux->left[next] : 0.0);
    use.lists(gv.faceDataRight[next], flux ? flux->right[next] : 0.0);
    FetchRow(matrix, gv.Ce23[0][next]);
    FetchRow(matrix, gv.Ce23[1][next]);
}

/// Diffusion reads the Normal stencil, whatever the flux.
constexpr RecordUse normalUse = {[](const CMAFVMFaceData& record) {
                                     Fetch(&record.idNormal);
                                     Fetch(&record.coefNormal);
                                 },
                                 [](const CMAFVMFaceData& record, double /*flux*/) {
                                     FetchShort(record.idNormal, record.coefNormal);
                                 }};

}  // namespace KVX_ART_FVM

#endif
