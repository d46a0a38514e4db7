#include "matrix_solver/dense_lu.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace kvx3d_solver {
namespace {

constexpr int panelWidth = 32;  // columns; 32 rows of 2000 doubles stay in a second-level cache

/// target[j] -= factor * source[j] for begin <= j < end.
void SubtractScaled(double* target, const double* source, double factor, int begin, int end) {
    for (int j = begin; j < end; ++j) {
        target[j] -= factor * source[j];
    }
}

}  // namespace

DenseLu::DenseLu(const CsrSystem& A, double zeroPivot)
    : n(A.n), factors(static_cast<std::size_t>(A.n) * A.n, 0.0), rowScale(A.n, 1.0), rowOrder(A.n) {
    std::iota(rowOrder.begin(), rowOrder.end(), 0);
    for (int i = 0; i < n; ++i) {
        double largest = 0.0;
        for (int k = A.rowStart[i]; k < A.rowStart[i + 1]; ++k) {
            largest = std::max(largest, std::fabs(A.value[k]));
        }
        // Rows of very different size would otherwise decide the pivots by their units. The bound
        // keeps the scale of a subnormal row finite.
        rowScale[i] = largest > 0.0 ? std::ldexp(1.0, std::min(-std::ilogb(largest), 1000)) : 1.0;
        for (int k = A.rowStart[i]; k < A.rowStart[i + 1]; ++k) {
            Row(i)[A.column[k]] = A.value[k] * rowScale[i];
        }
    }
    for (int begin = 0; begin < n; begin += panelWidth) {
        const int end = std::min(begin + panelWidth, n);
        FactorPanel(begin, end, zeroPivot);
        UpdateBehind(begin, end);
    }
}

/// Columns begin to end - 1, pivoting whole rows.
void DenseLu::FactorPanel(int begin, int end, double zeroPivot) {
    for (int k = begin; k < end; ++k) {
        int pivot = k;
        for (int i = k + 1; i < n; ++i) {
            if (std::fabs(Row(i)[k]) > std::fabs(Row(pivot)[k])) {
                pivot = i;
            }
        }
        // The negated form also catches a pivot that is not a number.
        if (!(std::fabs(Row(pivot)[k]) > zeroPivot)) {
            ++zeroPivots;
            for (int i = k; i < n; ++i) {
                Row(i)[k] = 0.0;
            }
            continue;
        }
        if (pivot != k) {
            std::swap_ranges(Row(k), Row(k) + n, Row(pivot));
            std::swap(rowOrder[k], rowOrder[pivot]);
        }
        for (int i = k + 1; i < n; ++i) {
            Row(i)[k] /= Row(k)[k];
            SubtractScaled(Row(i), Row(k), Row(i)[k], k + 1, end);
        }
    }
}

/// Carries the panel's eliminations over to the columns behind it. Row by row, so that the row
/// changed stays in the first-level cache while the panel's rows pass.
void DenseLu::UpdateBehind(int begin, int end) {
    for (int i = begin + 1; i < n; ++i) {
        for (int k = begin; k < std::min(i, end); ++k) {
            SubtractScaled(Row(i), Row(k), Row(i)[k], end, n);
        }
    }
}

void DenseLu::Solve(const Vector& b, Vector& x) const {
    for (int i = 0; i < n; ++i) {
        double sum = b[rowOrder[i]] * rowScale[rowOrder[i]];
        for (int j = 0; j < i; ++j) {
            sum -= Row(i)[j] * x[j];
        }
        x[i] = sum;
    }
    for (int i = n - 1; i >= 0; --i) {
        double sum = x[i];
        for (int j = i + 1; j < n; ++j) {
            sum -= Row(i)[j] * x[j];
        }
        x[i] = Row(i)[i] == 0.0 ? 0.0 : sum / Row(i)[i];
    }
}

}  // namespace kvx3d_solver
