#ifndef KVX3D_TESTS_LINEAR_ALGEBRA_FILLED_SYSTEMS_H
#define KVX3D_TESTS_LINEAR_ALGEBRA_FILLED_SYSTEMS_H

#include <cstddef>
#include <vector>

#include "linear_algebra/sparse_matrix.h"

/// Fills a square matrix from rows of values. Zeros are stored only on the diagonal.
inline void Fill(CKVX_ART_SparseMatrix& A, const std::vector<std::vector<double>>& rows) {
    for (std::size_t i = 1; i <= rows.size(); ++i) {
        for (std::size_t j = 1; j <= rows.size(); ++j) {
            const double value = rows[i - 1][j - 1];
            if (value != 0.0 || i == j) {
                A.AddElementValue(static_cast<int>(i), static_cast<int>(j), value);
            }
        }
    }
}

/// Couples each row with its neighbors at distances 1 and 7, as on a plate 7 cells wide. DILU is
/// not exact for it, so a solve takes several iterations.
inline void FillPlate(CKVX_ART_SparseMatrix& A, double lower, double diagonal, double upper) {
    const int n = A.GetRowsN();
    for (int i = 1; i <= n; ++i) {
        A.AddElementValue(i, i, diagonal);
        for (int distance : {1, 7}) {
            if (i > distance) {
                A.AddElementValue(i, i - distance, lower);
            }
            if (i + distance <= n) {
                A.AddElementValue(i, i + distance, upper);
            }
        }
    }
}

#endif
