#include "linear_algebra/detail/dilu_sweeps.h"

#include <algorithm>
#include <cstdint>

namespace {

using KVX3DART::CsrRows;
using KVX3DART::RowProduct;

constexpr int chunkLength = 64;  // entries whose positions are gathered at a time
constexpr int ahead = 256;       // entries asked for before they are needed

/// Asks for what is stored `entries` behind the start of row i, or before it if negative: the
/// hardware's own prefetch ends with each page. Worth 3 to 8 per cent of a sweep.
inline void FetchRow(const CsrRows& A, int i, std::intptr_t entries) {
    KVX3DART::Fetch(A.Ja + A.Ia[i], static_cast<std::uintptr_t>(entries) * sizeof(int));
    KVX3DART::Fetch(A.Aa + A.Ia[i], static_cast<std::uintptr_t>(entries) * sizeof(double));
}

/// Sum of x[Ja[k]] Aa[k] over the columns lowest..highest of a row in any order.
///
/// Where columns come in no order, a branch on them is wrong half of the time: the positions that
/// count are gathered without one, then summed.
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

// In both sums of a partitioned row the neighbour row is the one computed last, and the one that
// the sum waits for: its value comes as `latest`, not through memory.

/// The forward sweep's sum in row i of partitioned rows, the last row excepted: the diagonal of
/// the next row ends the scan. `latest` is y[i - 1].
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

/// The backward sweep's sum in row i of partitioned rows; `latest` is result[i + 1].
inline double UpperSum(const CsrRows& A, int i, double latest, const double* result) {
    const int end = A.Ia[i + 1];
    int k = end;
    while (A.Ja[k - 1] > i) {  // the diagonal ends the scan
        --k;
    }
    if (k == end) {
        return 0.0;
    }
    const auto value = [&](int j) { return j == i + 1 ? latest : result[j]; };
    // The first column is mostly the neighbour, and everything here waits for it: the sum starts
    // with its product, not with 0.0, one addition less in the chain. The two differ only where
    // all products are -0.0.
    double sum = value(A.Ja[k]) * A.Aa[k];
    for (++k; k < end; ++k) {
        sum += value(A.Ja[k]) * A.Aa[k];
    }
    return sum == 0.0 ? ScatteredSum(A, i, i + 1, A.n, result) : sum;
}

/// Rows 1..last of A x.
void RowProducts(const CsrRows& A, const double* x, double* product, int last) {
    for (int i = 1; i <= last; ++i) {
        product[i] = RowProduct(A, i, x);
    }
}

}  // namespace

KVX3DART::RowShape KVX3DART::InspectRows(const CsrRows& A) {
    RowShape shape{true, 0};
    for (int i = 1; i <= A.n; ++i) {
        const int end = A.Ia[i + 1];
        int smallest = i;
        int k = A.Ia[i] + 1;
        // An empty row passes the move of the diagonal if the next row starts with its column.
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

void KVX3DART::ForwardSweep(const DiluSweeps& sweeps, const double* rhs, int first, int last) {
    const auto& [A, shape, D, y] = sweeps;
    if (!shape.partitioned) {
        for (int i = first; i <= last; ++i) {
            y[i] = (rhs[i] - ScatteredSum(A, i, 1, i - 1, y)) * D[i];
        }
        return;
    }
    double latest = first > 1 ? y[first - 1] : 0.0;
    for (int i = first; i <= std::min(last, A.n - 1); ++i) {
        FetchRow(A, i, ahead);
        latest = (rhs[i] - LowerSum(A, i, latest, y)) * D[i];
        y[i] = latest;
    }
    if (last == A.n) {
        y[last] = (rhs[last] - ScatteredSum(A, last, 1, last - 1, y)) * D[last];
    }
}

void KVX3DART::BackwardSweep(const DiluSweeps& sweeps, double* result) {
    const auto& [A, shape, D, y] = sweeps;
    for (int i = A.n; i >= 1; --i) {
        result[i] = y[i] - ScatteredSum(A, i, i + 1, A.n, result) * D[i];
    }
}

void KVX3DART::BackwardSweepWithProduct(const DiluSweeps& sweeps, double* result, double* product) {
    const auto& [A, shape, D, y] = sweeps;
    if (!shape.partitioned) {
        BackwardSweep(sweeps, result);
        RowProducts(A, result, product, A.n);
        return;
    }
    double latest = 0.0;
    for (int i = A.n; i >= 1; --i) {
        FetchRow(A, i, -ahead);
        latest = y[i] - UpperSum(A, i, latest, result) * D[i];
        result[i] = latest;
        if (shape.reach <= A.n - i) {
            product[i + shape.reach] = RowProduct(A, i + shape.reach, result);
        }
    }
    RowProducts(A, result, product, std::min(shape.reach, A.n));
}
