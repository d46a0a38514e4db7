// Data layout: the factors share the row starts and columns of A, so that a sweep reads 12 bytes an
// entry. The position of the diagonal separates L from U in each row.

#include "matrix_solver/ilu0.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace kvx3d_solver {
namespace {

constexpr double vanishingPivot = 1e-12;  // relative to the largest entry of the row of A

/// Largest magnitude in a row of A, 1 for a row of zeros.
double RowSize(const CsrSystem& A, int row) {
    double largest = 0.0;
    for (int k = A.rowStart[row]; k < A.rowStart[row + 1]; ++k) {
        largest = std::max(largest, std::fabs(A.value[k]));
    }
    return largest > 0.0 ? largest : 1.0;
}

}  // namespace

Ilu0::Ilu0(const CsrSystem& matrix) : A(matrix), factors(matrix.value), inverseDiagonal(A.n) {
    std::vector<int> place(A.n, -1);  // position of each column in the current row
    for (int i = 0; i < A.n; ++i) {
        for (int k = A.rowStart[i]; k < A.rowStart[i + 1]; ++k) {
            place[A.column[k]] = k;
        }
        for (int k = A.rowStart[i]; k < A.diagonal[i]; ++k) {
            const int above = A.column[k];
            factors[k] *= inverseDiagonal[above];
            for (int m = A.diagonal[above] + 1; m < A.rowStart[above + 1]; ++m) {
                if (place[A.column[m]] >= 0) {
                    factors[place[A.column[m]]] -= factors[k] * factors[m];
                }
            }
        }
        for (int k = A.rowStart[i]; k < A.rowStart[i + 1]; ++k) {
            place[A.column[k]] = -1;
        }
        const double pivot = factors[A.diagonal[i]];
        const double size = RowSize(A, i);
        inverseDiagonal[i] = 1.0 / (std::fabs(pivot) > vanishingPivot * size ? pivot : size);
    }
}

void Ilu0::Apply(const Vector& r, Vector& z) {
    for (int i = 0; i < A.n; ++i) {
        double sum = r[i];
        for (int k = A.rowStart[i]; k < A.diagonal[i]; ++k) {
            sum -= factors[k] * z[A.column[k]];
        }
        z[i] = sum;
    }
    for (int i = A.n - 1; i >= 0; --i) {
        double sum = z[i];
        for (int k = A.diagonal[i] + 1; k < A.rowStart[i + 1]; ++k) {
            sum -= factors[k] * z[A.column[k]];
        }
        z[i] = sum * inverseDiagonal[i];
    }
}

double IluPromise(const CsrSystem& A, Ilu0& ilu) {
    const Vector ones(static_cast<std::size_t>(A.n), 1.0);
    Vector image(ones.size()), back(ones.size());
    Multiply(A, ones, image);
    ilu.Apply(image, back);
    double sum = 0.0;
    for (const double v : back) {
        sum += std::min(1.0, std::fabs(v));
    }
    return sum / A.n;
}

}  // namespace kvx3d_solver
