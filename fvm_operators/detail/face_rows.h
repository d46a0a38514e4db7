#ifndef KVX3D_FVM_OPERATORS_DETAIL_FACE_ROWS_H
#define KVX3D_FVM_OPERATORS_DETAIL_FACE_ROWS_H

#include "host_link/art_gv.h"
#include "host_link/face_data.h"
#include "linear_algebra/detail/csr_rows.h"
#include "linear_algebra/sparse_matrix.h"

#include <array>

namespace KVX_ART_FVM {

/// AddElementValue(), for adds that need a check, a compression or an insertion. Out of line, which
/// leaves the walks their registers.
void AddUnstored(CKVX_ART_SparseMatrix& matrix, int row, int col, double value);

/// One matrix row, as one side of a face adds to it.
struct FaceRow {
    CKVX_ART_SparseMatrix& matrix;
    int row;
    bool negate;  ///< on the second side of an inner face, where finished products change sign

    /// Adds `value` on column `col`.
    void AddCell(int col, double value) const {
        const double finished = negate ? -value : value;
        if (const int k = Stored() ? Position(col) : 0) {
            matrix.Aa[k] += finished;
        } else {
            AddUnstored(matrix, row, col, finished);
        }
    }

    /// Adds factor * coef[j] on column id[j], for j from 1 to id[0]; a count below 1 adds nothing.
    void AddStencil(const int* id, const double* coef, double factor) const {
        const int nTerms = id[0];
        int j = 1;
        if (nTerms > 0 && Stored()) {
            const int begin = matrix.Ia[row];
            const int end = matrix.Ia[row + 1];
            for (; j <= nTerms; ++j) {
                const int k = KVX3DART::PositionOf(id[j], matrix.Ja, begin, end);
                if (k == 0) {
                    break;
                }
                const double product = factor * coef[j];
                matrix.Aa[k] += negate ? -product : product;
            }
        }
        for (; j <= nTerms; ++j) {
            const double product = factor * coef[j];
            AddUnstored(matrix, row, id[j], negate ? -product : product);
        }
    }

private:
    /// The row can be searched as it stands: no check fails and nothing is to be compressed.
    bool Stored() const { return matrix.compressed && row >= 1 && row <= matrix.rowsN; }

    int Position(int col) const {
        return KVX3DART::PositionOf(col, matrix.Ja, matrix.Ia[row], matrix.Ia[row + 1]);
    }
};

/// The boundary faces of one kind, 1-based like everything they point at.
///
/// Only pointers are copied: an operator may be given a mesh that lacks an array it does not read.
struct BoundaryFaces {
    int n;
    bool throughflow;              ///< inlet or outlet
    const int* cell;               ///< interior cell, the row of the face
    const int* ghost;              ///< ghost cell, the column of the face's own unknown
    const CMAFVMFaceData* record;  ///< stencils
    const double* flux;            ///< flux out of the domain; null where no flux was given
};

/// The four kinds in the order in which every operator walks them.
inline std::array<BoundaryFaces, 4> BoundaryKinds(const CKVX_ACMT_GV& gv,
                                                  const CMAFVMFaceVariableAll* flux = nullptr) {
    return {
        {{gv.NInlet, true, gv.CInlet23, gv.idInlet, gv.faceDataInlet, flux ? flux->inlet : nullptr},
         {gv.NOutlet, true, gv.COutlet23, gv.idOutlet, gv.faceDataOutlet,
          flux ? flux->outlet : nullptr},
         {gv.NWall, false, gv.CWall23, gv.idWall, gv.faceDataWall, flux ? flux->wall : nullptr},
         {gv.NSymm, false, gv.CSymm23, gv.idSymm, gv.faceDataSymm, flux ? flux->symm : nullptr}}};
}

}  // namespace KVX_ART_FVM

#endif
