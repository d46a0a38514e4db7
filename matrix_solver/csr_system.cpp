#include "matrix_solver/csr_system.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace kvx3d_solver {
namespace {

constexpr double symmetryMargin = 1e-10;  // relative: sums formed in another order

using Entry = std::pair<int, double>;  // 0-based column, value

/// Row starts begin at 1, never fall and end behind the last entry.
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

/// The row's entries by ascending column; false if a column is outside 1..n or occurs twice, or if
/// a value is not finite.
bool ReadRow(const CallerArrays& in, int row, std::vector<Entry>& entries) {
    entries.clear();
    for (int k = in.Ia[row] - 1; k < in.Ia[row + 1] - 1; ++k) {
        if (in.Ja[k] < 1 || in.Ja[k] > in.n || !std::isfinite(in.Aa[k])) {
            return false;
        }
        entries.emplace_back(in.Ja[k] - 1, in.Aa[k]);
    }
    const auto byColumn = [](const Entry& a, const Entry& b) { return a.first < b.first; };
    std::sort(entries.begin(), entries.end(), byColumn);
    const auto sameColumn = [](const Entry& a, const Entry& b) { return a.first == b.first; };
    return std::adjacent_find(entries.begin(), entries.end(), sameColumn) == entries.end();
}

/// Appends one row, its sign chosen so that the diagonal is not negative: aggregation-based
/// multigrid fails on rows of mixed sign. False without a diagonal entry.
bool AppendRow(const std::vector<Entry>& entries, int row, double rhs, CsrSystem& system) {
    const auto diagonal = std::find_if(entries.begin(), entries.end(),
                                       [row](const Entry& e) { return e.first == row; });
    if (diagonal == entries.end()) {
        return false;
    }
    const double sign = diagonal->second < 0.0 ? -1.0 : 1.0;
    const auto start = static_cast<int>(system.column.size());
    system.diagonal.push_back(start + static_cast<int>(diagonal - entries.begin()));
    for (const auto& [column, value] : entries) {
        system.column.push_back(column);
        system.value.push_back(sign * value);
    }
    system.rhs.push_back(sign * rhs);
    system.rowStart.push_back(static_cast<int>(system.column.size()));
    return true;
}

/// Divides by the power of two that brings the largest magnitude into [1, 2); returns its
/// exponent, 0 for a vector of zeros.
int Normalise(Vector& values) {
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

std::optional<CsrSystem> ReadSystem(const CallerArrays& in) {
    if (in.n < 0 || !in.Ia || !in.Ja || !in.Aa || !in.rhs || !RowStartsAreValid(in)) {
        return std::nullopt;
    }
    CsrSystem system;
    system.n = in.n;
    system.rowStart.reserve(static_cast<std::size_t>(in.n) + 1);
    system.rowStart.push_back(0);
    system.diagonal.reserve(static_cast<std::size_t>(in.n));
    system.rhs.reserve(static_cast<std::size_t>(in.n));
    system.column.reserve(static_cast<std::size_t>(in.nonZeroN));
    system.value.reserve(static_cast<std::size_t>(in.nonZeroN));
    std::vector<Entry> entries;
    for (int row = 0; row < in.n; ++row) {
        if (!std::isfinite(in.rhs[row]) || !ReadRow(in, row, entries) ||
            !AppendRow(entries, row, in.rhs[row], system)) {
            return std::nullopt;
        }
    }
    const int matrixExponent = Normalise(system.value);
    system.solutionExponent = Normalise(system.rhs) - matrixExponent;
    system.rhsNorm = Norm(system.rhs);
    return system;
}

bool IsFixed(const CsrSystem& A, int row) {
    for (int k = A.rowStart[row]; k < A.rowStart[row + 1]; ++k) {
        if (k != A.diagonal[row] && A.value[k] != 0.0) {
            return false;
        }
    }
    return true;
}

bool IsSymmetric(const CsrSystem& A) {
    // The partners of a row's entries are asked for by ascending column, so a place in each row
    // that only moves forwards finds them all.
    std::vector<int> place(A.rowStart.begin(), A.rowStart.end() - 1);
    for (int i = 0; i < A.n; ++i) {
        for (int k = A.rowStart[i]; k < A.rowStart[i + 1]; ++k) {
            const int j = A.column[k];
            while (place[j] < A.rowStart[j + 1] && A.column[place[j]] < i) {
                ++place[j];
            }
            const bool found = place[j] < A.rowStart[j + 1] && A.column[place[j]] == i;
            const double partner = found ? A.value[place[j]] : 0.0;
            const double difference = std::fabs(A.value[k] - partner);
            if (difference > symmetryMargin * std::fabs(A.value[k]) && !IsFixed(A, i) &&
                !IsFixed(A, j)) {
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
