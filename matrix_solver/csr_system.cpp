// Data layout: compressed rows in four arrays. 12 bytes an entry (8 of value, 4 of column) pass
// through the cache in each product; the position of each diagonal splits a row into its parts
// below and above it, for sweeps without a search.

#include "matrix_solver/csr_system.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <tuple>
#include <utility>

namespace kvx3d_solver {
namespace {

constexpr int longRow = 64;               // entries, from where insertion sort is the slower one
constexpr double symmetryMargin = 1e-10;  // relative: sums formed in another order

/// The row starts begin at 1, never fall and end one beyond the last entry.
bool RowStartsAreValid(const CallerArrays& in) {
    if (in.Ia[0] != 1 || in.nonZeroN < 0) {
        return false;
    }
    for (int i = 0; i < in.n; ++i) {
        if (in.Ia[i + 1] < in.Ia[i]) {
            return false;
        }
    }
    return in.Ia[in.n] - 1 == in.nonZeroN;
}

/// Copies one row; false if it is not valid.
bool ReadRow(const CallerArrays& in, int row, CsrSystem& system) {
    const int begin = in.Ia[row] - 1;
    const int end = in.Ia[row + 1] - 1;
    for (int k = begin; k < end; ++k) {
        if (in.Ja[k] < 1 || in.Ja[k] > in.n || !std::isfinite(in.Aa[k])) {
            return false;
        }
        system.column[k] = in.Ja[k] - 1;
        system.value[k] = in.Aa[k];
    }
    system.rhs[row] = in.rhs[row];
    return std::isfinite(in.rhs[row]) && FinishRow(system, row, begin, end);
}

/// Divides by the power of two that brings the largest magnitude into [1, 2). Returns its exponent,
/// or 0 for a vector of zeros.
int Normalize(Vector& values) {
    double largest = 0.0;
    for (const double v : values) {
        largest = std::max(largest, std::fabs(v));
    }
    if (largest == 0.0) {
        return 0;
    }
    const int exponent = std::ilogb(largest);
    const double factor = std::ldexp(1.0, -exponent);
    for (double& v : values) {
        v = std::isfinite(factor) ? v * factor : std::ldexp(v, -exponent);
    }
    return exponent;
}

}  // namespace

template <typename Value>
void SortRow(std::vector<int>& columns, std::vector<Value>& values, int begin, int end) {
    if (end - begin > longRow) {
        std::vector<std::pair<int, Value>> entries;
        for (int k = begin; k < end; ++k) {
            entries.emplace_back(columns[k], values[k]);
        }
        std::sort(entries.begin(), entries.end(),
                  [](const auto& a, const auto& b) { return a.first < b.first; });
        for (int k = begin; k < end; ++k) {
            std::tie(columns[k], values[k]) = entries[static_cast<std::size_t>(k - begin)];
        }
        return;
    }
    for (int k = begin + 1; k < end; ++k) {
        const int column = columns[k];
        const Value value = values[k];
        int place = k;
        for (; place > begin && columns[place - 1] > column; --place) {
            columns[place] = columns[place - 1];
            values[place] = values[place - 1];
        }
        columns[place] = column;
        values[place] = value;
    }
}

template void SortRow(std::vector<int>&, std::vector<double>&, int, int);
template void SortRow(std::vector<int>&, std::vector<float>&, int, int);

bool FinishRow(CsrSystem& system, int row, int begin, int end) {
    SortRow(system.column, system.value, begin, end);
    int diagonal = -1;
    for (int k = begin; k < end; ++k) {
        if (k > begin && system.column[k] == system.column[k - 1]) {
            return false;
        }
        if (system.column[k] == row) {
            diagonal = k;
        }
    }
    if (diagonal < 0) {
        return false;
    }
    system.diagonal[row] = diagonal;
    system.rowStart[row + 1] = end;
    if (system.value[diagonal] < 0.0) {
        for (int k = begin; k < end; ++k) {
            system.value[k] = -system.value[k];
        }
        system.rhs[row] = -system.rhs[row];
    }
    return true;
}

void SetRowCount(CsrSystem& system, int n) {
    system.n = n;
    system.rowStart.assign(static_cast<std::size_t>(n) + 1, 0);
    system.diagonal.resize(static_cast<std::size_t>(n));
    system.rhs.resize(static_cast<std::size_t>(n));
}

std::optional<CsrSystem> ReadSystem(const CallerArrays& in) {
    if (in.n < 0 || !in.Ia || !in.Ja || !in.Aa || !in.rhs || !RowStartsAreValid(in)) {
        return std::nullopt;
    }
    CsrSystem system;
    SetRowCount(system, in.n);
    system.column.resize(static_cast<std::size_t>(in.nonZeroN));
    system.value.resize(static_cast<std::size_t>(in.nonZeroN));
    for (int row = 0; row < in.n; ++row) {
        if (!ReadRow(in, row, system)) {
            return std::nullopt;
        }
    }
    const int matrixExponent = Normalize(system.value);
    system.solutionExponent = Normalize(system.rhs) - matrixExponent;
    system.rhsNorm = Norm(system.rhs);
    return system;
}

Vector RowScales(const CsrSystem& A) {
    constexpr int largestExponent = 1000;  // keeps the scale of a subnormal row finite
    Vector scales(static_cast<std::size_t>(A.n), 1.0);
    for (int i = 0; i < A.n; ++i) {
        double largest = 0.0;
        for (int k = A.rowStart[i]; k < A.rowStart[i + 1]; ++k) {
            largest = std::max(largest, std::fabs(A.value[k]));
        }
        if (largest > 0.0) {
            scales[i] = std::ldexp(1.0, std::min(-std::ilogb(largest), largestExponent));
        }
    }
    return scales;
}

bool IsSymmetric(const CsrSystem& A) {
    // The partners of a row's entries are looked up by ascending column, so a position in each row
    // that only moves forward finds them all.
    std::vector<int> place(A.rowStart.begin(), A.rowStart.end() - 1);
    for (int i = 0; i < A.n; ++i) {
        for (int k = A.rowStart[i]; k < A.rowStart[i + 1]; ++k) {
            const int j = A.column[k];
            while (place[j] < A.rowStart[j + 1] && A.column[place[j]] < i) {
                ++place[j];
            }
            const bool found = place[j] < A.rowStart[j + 1] && A.column[place[j]] == i;
            const double partner = found ? A.value[place[j]] : 0.0;
            if (std::fabs(A.value[k] - partner) > symmetryMargin * std::fabs(A.value[k])) {
                return false;
            }
        }
    }
    return true;
}

void Multiply(const CsrSystem& A, const Vector& x, Vector& y) {
    for (int i = 0; i < A.n; ++i) {
        double sum = 0.0;
        for (int k = A.rowStart[i]; k < A.rowStart[i + 1]; ++k) {
            sum += A.value[k] * x[A.column[k]];
        }
        y[i] = sum;
    }
}

double Residual(const CsrSystem& A, const Vector& x, Vector& r) {
    Multiply(A, x, r);
    for (int i = 0; i < A.n; ++i) {
        r[i] = A.rhs[i] - r[i];
    }
    const double norm = Norm(r);
    return std::isfinite(norm) ? norm : std::numeric_limits<double>::infinity();
}

double Dot(const Vector& a, const Vector& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

double Norm(const Vector& a) {
    return std::sqrt(Dot(a, a));
}

}  // namespace kvx3d_solver
