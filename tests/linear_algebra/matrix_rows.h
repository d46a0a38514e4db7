#ifndef KVX3D_TESTS_LINEAR_ALGEBRA_MATRIX_ROWS_H
#define KVX3D_TESTS_LINEAR_ALGEBRA_MATRIX_ROWS_H

#include <string>
#include <vector>

#include "linear_algebra/sparse_matrix.h"

// Helpers for the tests of the sparse matrix: stored rows, and messages of exceptions.

using Ints = std::vector<int>;
using Doubles = std::vector<double>;

inline Ints Columns(const CKVX_ART_SparseMatrix& A, int row) {
    return {A.Ja + A.Ia[row], A.Ja + A.Ia[row + 1]};
}

inline Doubles Values(const CKVX_ART_SparseMatrix& A, int row) {
    return {A.Aa + A.Ia[row], A.Aa + A.Ia[row + 1]};
}

inline Ints RowStarts(const CKVX_ART_SparseMatrix& A) {
    return {A.Ia, A.Ia + A.rowsN + 2};
}

/// The message of the exception of type E that `call` throws, or a note that it throws none.
template <typename E, typename Call>
std::string MessageOf(Call call) {
    try {
        call();
    } catch (const E& e) {
        return e.what();
    }
    return "nothing thrown";
}

constexpr const char* kNotPositive =
    ">> <ART> SparseMatrixError: Matrix dimensions cannot be zero or negative.";
constexpr const char* kOutOfRange = ">> <ART> SparseMatrixError: Add index out of matrix range.";
constexpr const char* kNoDiagonal =
    ">> <ART> LinearSolverError: The matrix diagonal must have value.";

#endif
