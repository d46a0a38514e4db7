#include "matrix_solver/csr_system.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <tuple>
#include <utility>

namespace kvx3d_solver {
namespace {

constexpr int longRow = 64;               // entries, from where insertion no longer pays
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

/// Sorts the entries begin to end - 1 by column.
void SortRow(CsrSystem& system, int begin, int end) {
    if (end - begin > longRow) {
        std::vector<Entry> entries;
        for (int k = begin; k < end; ++k) {
            entries.emplace_back(system.column[k], system.value[k]);
        }
        std::sort(entries.begin(), entries.end(),
                  [](const Entry& a, const Entry& b) { return a.first < b.first; });
        for (int k = begin; k < end; ++k) {
            std::tie(system.column[k], system.value[k]) = entries[k - begin];
        }
        return;
    }
    SortShortRow(system.column, system.value, begin, end);
}

/// Copies one row, its sign chosen so that the diagonal is not negative: aggregation-based
/// multigrid fails on rows of mixed sign. False if a column is outside 1..n or occurs twice, if a
/// value is not finite, or without a diagonal entry.
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
    SortRow(system, begin, end);
    const auto first = system.column.begin() + begin;
    const auto last = system.column.begin() + end;
    const auto diagonal = std::find(first, last, row);
    if (diagonal == last || std::adjacent_find(first, last) != last ||
        !std::isfinite(in.rhs[row])) {
        return false;
    }
    system.rowStart[row] = begin;
    system.diagonal[row] = static_cast<int>(diagonal - system.column.begin());
    system.rhs[row] = in.rhs[row];
    if (system.value[system.diagonal[row]] < 0.0) {
        for (int k = begin; k < end; ++k) {
            system.value[k] = -system.value[k];
        }
        system.rhs[row] = -system.rhs[row];
    }
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
    system.rowStart.resize(static_cast<std::size_t>(in.n) + 1);
    system.diagonal.resize(static_cast<std::size_t>(in.n));
    system.rhs.resize(static_cast<std::size_t>(in.n));
    system.column.resize(static_cast<std::size_t>(in.nonZeroN));
    system.value.resize(static_cast<std::size_t>(in.nonZeroN));
    for (int row = 0; row < in.n; ++row) {
        if (!ReadRow(in, row, system)) {
            return std::nullopt;
        }
    }
    system.rowStart[in.n] = in.nonZeroN;
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
