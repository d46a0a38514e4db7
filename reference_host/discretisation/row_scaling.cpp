#include "reference_host/discretisation/row_scaling.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr int ordinaryExponent = 80;  // of the largest entry of a row

/// The exponent of the largest entry of a row; 0 for a row of zeros or with a value that is not
/// finite.
int ExponentOf(const CKVX_ART_SparseMatrix& matrix, int row) {
    double largest = 0.0;
    for (int k = matrix.Ia[row]; k < matrix.Ia[row + 1]; ++k) {
        largest = std::max(largest, std::abs(matrix.Aa[k]));
    }
    return largest > 0.0 && std::isfinite(largest) ? std::ilogb(largest) : 0;
}

}  // namespace

RowScaling::RowScaling(CKVX_ART_SparseMatrix& matrix_)
    : matrix(matrix_), exponents(matrix_.GetRowsN() + 1, 0) {
    for (int row = 1; row <= matrix.GetRowsN(); ++row) {
        exponents[row] = -ExponentOf(matrix, row);
        active = active || std::abs(exponents[row]) > ordinaryExponent;
    }
    if (active) {
        Multiply(1);
    } else {
        std::fill(exponents.begin(), exponents.end(), 0);
    }
}

RowScaling::~RowScaling() {
    if (active) {
        Multiply(-1);
    }
}

void RowScaling::Multiply(int sign) {
    for (int row = 1; row <= matrix.GetRowsN(); ++row) {
        for (int k = matrix.Ia[row]; k < matrix.Ia[row + 1]; ++k) {
            matrix.Aa[k] = std::ldexp(matrix.Aa[k], sign * exponents[row]);
        }
    }
}

}  // namespace host
