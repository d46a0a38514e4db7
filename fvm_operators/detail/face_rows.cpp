#include "fvm_operators/detail/face_rows.h"

void kvx3d::detail::AddUnstored(CKVX_ART_SparseMatrix& matrix, int row, int col, double value) {
    matrix.AddElementValue(row, col, value);
}
