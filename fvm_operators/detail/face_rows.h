#ifndef KVX3D_FVM_OPERATORS_DETAIL_FACE_ROWS_H
#define KVX3D_FVM_OPERATORS_DETAIL_FACE_ROWS_H

#include "host_link/art_gv.h"
#include "host_link/face_data.h"
#include "linear_algebra/detail/csr_rows.h"
#include "linear_algebra/sparse_matrix.h"

#include <array>

namespace kvx3d::detail {

/// Calls AddElementValue(), for additions that need a check, a compression or an insertion. It is
/// not inline, so that the loops over the faces keep their variables in registers.
void AddUnstored(CKVX_ART_SparseMatrix& matrix, int row, int col, double value);

/// One matrix row, as one side of a face adds to it.
///
/// The result is that of one AddElementValue() per term; entries that are already stored are found
/// and changed in place.
struct FaceRow {
    CKVX_ART_SparseMatrix& matrix;
    int row;
    bool negate;  ///< true on the second side of an inner face: products change sign at the end

    /// Adds `value` in column `col`.
    void AddCell(int col, double value) const {
        const double finished = negate ? -value : value;
        if (const int k = Stored() ? Position(col) : 0) {
            matrix.Aa[k] += finished;
        } else {
            AddUnstored(matrix, row, col, finished);
        }
    }

    /// Adds factor * coef[j] in column id[j] for j = 1..id[0]; a count below 1 adds nothing.
    void AddStencil(const int* id, const double* coef, double factor) const {
        const int nTerms = id[0];
        int j = 1;
        if (nTerms > 0 && Stored()) {
            const int begin = matrix.Ia[row];
            const int end = matrix.Ia[row + 1];
            for (; j <= nTerms; ++j) {
                const int k = PositionOf(id[j], matrix.Ja, begin, end);
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
    /// True if the row can be searched as it is stored: the row number is valid and the matrix is
    /// compressed.
    bool Stored() const { return matrix.compressed && row >= 1 && row <= matrix.rowsN; }

    int Position(int col) const {
        return PositionOf(col, matrix.Ja, matrix.Ia[row], matrix.Ia[row + 1]);
    }
};

/// The boundary faces of one kind. All arrays are 1-based and borrowed.
///
/// Only pointers are copied here: a mesh may lack an array that its operator does not read.
struct BoundaryFaces {
    int n;                         ///< number of faces
    bool throughflow;              ///< true for inlet and outlet
    const int* cell;               ///< interior cell, which is the matrix row of the face
    const int* ghost;              ///< ghost cell, which is the column of the face's own unknown
    const CMAFVMFaceData* record;  ///< stencils
    const double* flux;            ///< flux out of the domain; null if no flux was given
};

/// The four kinds in the order in which every operator visits them: inlet, outlet, wall, symmetry.
inline std::array<BoundaryFaces, 4> BoundaryKinds(const CKVX_ACMT_GV& gv,
                                                  const CMAFVMFaceVariableAll* flux = nullptr) {
    return {
        {{gv.NInlet, true, gv.CInlet23, gv.idInlet, gv.faceDataInlet, flux ? flux->inlet : nullptr},
         {gv.NOutlet, true, gv.COutlet23, gv.idOutlet, gv.faceDataOutlet,
          flux ? flux->outlet : nullptr},
         {gv.NWall, false, gv.CWall23, gv.idWall, gv.faceDataWall, flux ? flux->wall : nullptr},
         {gv.NSymm, false, gv.CSymm23, gv.idSymm, gv.faceDataSymm, flux ? flux->symm : nullptr}}};
}

}  // namespace kvx3d::detail

#endif
