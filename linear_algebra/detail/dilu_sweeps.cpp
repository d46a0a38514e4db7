#include "linear_algebra/detail/dilu_sweeps.h"

#include <algorithm>
#include <cstdint>

namespace {

using kvx3d::detail::CsrRows;
using kvx3d::detail::Prefetch;
using kvx3d::detail::RowProduct;

constexpr int chunkLength = 64;        // entries whose positions are collected at a time
constexpr int prefetchDistance = 256;  // entries from the row in use to what is prefetched

/// Prefetches what is stored `entries` after the start of row i, or before it if negative: the
/// prefetcher of the processor stops at each page boundary. Saves 3 to 8 percent of a sweep.
inline void PrefetchRow(const CsrRows& A, int i, std::intptr_t entries) {
    Prefetch(A.Ja + A.Ia[i], static_cast<std::uintptr_t>(entries) * sizeof(int));
    Prefetch(A.Aa + A.Ia[i], static_cast<std::uintptr_t>(entries) * sizeof(double));
}

/// Sum of x[Ja[k]] Aa[k] over the columns lowest..highest of a row whose columns may stand in any
/// order.
///
/// A branch on unordered columns is mispredicted half of the time. So the positions of the wanted
/// columns are collected without a branch first, and summed afterward.
double ScatteredSum(const CsrRows& A, int i, int lowest, int highest, const double* x) {
    const int end = A.Ia[i + 1];
    int positions[chunkLength];
    double sum = 0.0;
    for (int begin = A.Ia[i] + 1; begin < end; begin += chunkLength) {
        const int chunkEnd = std::min(begin + chunkLength, end);
        int count = 0;
        for (int k = begin; k < chunkEnd; ++k) {
            positions[count] = k;
            count += static_cast<int>(A.Ja[k] >= lowest) & static_cast<int>(A.Ja[k] <= highest);
        }
        for (int c = 0; c < count; ++c) {
            sum += x[A.Ja[positions[c]]] * A.Aa[positions[c]];
        }
    }
    return sum;
}

// In a partitioned row, the value of the neighboring row was computed last, and the sum has to wait
// for it. Both functions below take it as the argument `latest`, in a register, instead of reading
// it back from memory.

/// The sum of the forward sweep in row i of partitioned rows. The scan ends at a column of i or
/// more, at the latest at the diagonal of the next row, so it must not be called for the last row.
/// `latest` is y[i - 1].
inline double LowerSum(const CsrRows& A, int i, double latest, const double* y) {
    double sum = 0.0;
    for (int k = A.Ia[i] + 1; A.Ja[k] < i; ++k) {
        const int j = A.Ja[k];
        if (j == i - 1) {
            sum += latest * A.Aa[k];
        } else {
            sum += y[j] * A.Aa[k];
        }
    }
    return sum;
}

/// The sum of the backward sweep in row i of partitioned rows. `latest` is result[i + 1].
inline double UpperSum(const CsrRows& A, int i, double latest, const double* result) {
    const int end = A.Ia[i + 1];
    int k = end;
    while (A.Ja[k - 1] > i) {  // ends at the diagonal at the latest
        --k;
    }
    if (k == end) {
        return 0.0;
    }
    const auto value = [&](int j) { return j == i + 1 ? latest : result[j]; };
    // The first column is usually that of the neighboring row, for which everything here waits. The
    // sum starts with its product and not with 0.0, which saves one addition in the chain. The two
    // differ only if all products are -0.0; a sum of zero is therefore formed again from 0.0.
    double sum = value(A.Ja[k]) * A.Aa[k];
    for (++k; k < end; ++k) {
        sum += value(A.Ja[k]) * A.Aa[k];
    }
    return sum == 0.0 ? ScatteredSum(A, i, i + 1, A.n, result) : sum;
}

/// Rows 1..last of the product A x.
void RowProducts(const CsrRows& A, const double* x, double* product, int last) {
    for (int i = 1; i <= last; ++i) {
        product[i] = RowProduct(A, i, x);
    }
}

}  // namespace

kvx3d::detail::RowShape kvx3d::detail::InspectRows(const CsrRows& A) {
    RowShape shape{true, 0};
    for (int i = 1; i <= A.n; ++i) {
        const int end = A.Ia[i + 1];
        int smallest = i;
        int k = A.Ia[i] + 1;
        // MakeDiagFrontCSR() accepts an empty row if the next row starts with its column.
        shape.partitioned = shape.partitioned && k <= end;
        for (; k < end && A.Ja[k] < i; ++k) {
            smallest = std::min(smallest, A.Ja[k]);
        }
        for (; k < end; ++k) {
            smallest = std::min(smallest, A.Ja[k]);
            shape.partitioned = shape.partitioned && A.Ja[k] > i && A.Ja[k] <= A.n;
        }
        shape.reach = std::max(shape.reach, i - smallest);
    }
    return shape;
}

void kvx3d::detail::ForwardSweep(const DiluSweeps& sweeps, const double* rhs, int first, int last) {
    const auto& [A, shape, D, y] = sweeps;
    if (!shape.partitioned) {
        for (int i = first; i <= last; ++i) {
            y[i] = (rhs[i] - ScatteredSum(A, i, 1, i - 1, y)) * D[i];
        }
        return;
    }
    double latest = first > 1 ? y[first - 1] : 0.0;
    for (int i = first; i <= std::min(last, A.n - 1); ++i) {
        PrefetchRow(A, i, prefetchDistance);
        latest = (rhs[i] - LowerSum(A, i, latest, y)) * D[i];
        y[i] = latest;
    }
    if (last == A.n) {
        y[last] = (rhs[last] - ScatteredSum(A, last, 1, last - 1, y)) * D[last];
    }
}

void kvx3d::detail::BackwardSweep(const DiluSweeps& sweeps, double* result) {
    const auto& [A, shape, D, y] = sweeps;
    for (int i = A.n; i >= 1; --i) {
        result[i] = y[i] - ScatteredSum(A, i, i + 1, A.n, result) * D[i];
    }
}

void kvx3d::detail::BackwardSweepWithProduct(const DiluSweeps& sweeps, double* result,
                                             double* product) {
    const auto& [A, shape, D, y] = sweeps;
    if (!shape.partitioned) {
        BackwardSweep(sweeps, result);
        RowProducts(A, result, product, A.n);
        return;
    }
    double latest = 0.0;
    for (int i = A.n; i >= 1; --i) {
        PrefetchRow(A, i, -prefetchDistance);
        latest = y[i] - UpperSum(A, i, latest, result) * D[i];
        result[i] = latest;
        if (shape.reach <= A.n - i) {
            product[i + shape.reach] = RowProduct(A, i + shape.reach, result);
        }
    }
    RowProducts(A, result, product, std::min(shape.reach, A.n));
}
