#include "host_checks/safe_solve.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace kvx3d::checks {
namespace {

// Limits of the reduction in one call. Below the first, the recurrence of BiCGSTAB no longer
// follows the true residual, and another call achieves more. Above the second, a call might stop at
// once.
constexpr double smallestTolerance = 1e-13;
constexpr double largestTolerance = 0.5;

/// 1-based, as the toolbox's vectors: entry 0 is not data.
using Vector = std::vector<double>;

/// True if entries 1..n are finite.
bool IsFinite(const double* v, int n) {
    return std::all_of(v + 1, v + 1 + n, [](double value) { return std::isfinite(value); });
}

/// 2-norm of entries 1..n, scaled by the largest entry so that no square overflows or vanishes;
/// infinity if an entry is not finite.
double Norm(const double* v, int n) {
    if (!IsFinite(v, n)) {
        return std::numeric_limits<double>::infinity();
    }
    double largest = 0.0;
    for (int i = 1; i <= n; ++i) {
        largest = std::max(largest, std::abs(v[i]));
    }
    if (largest == 0.0) {
        return 0.0;
    }
    double sum = 0.0;
    for (int i = 1; i <= n; ++i) {
        const double ratio = v[i] / largest;
        sum += ratio * ratio;
    }
    return largest * std::sqrt(sum);
}

/// Sets the tolerance of a solver and restores the host's at the end.
template <class Solver>
class ToleranceGuard {
public:
    explicit ToleranceGuard(Solver& guarded) : solver(guarded), before(guarded.GetTolerance()) {}
    ToleranceGuard(const ToleranceGuard&) = delete;
    ToleranceGuard& operator=(const ToleranceGuard&) = delete;
    ~ToleranceGuard() { solver.SetTolerance(before); }

private:
    Solver& solver;
    const double before;
};

/// One call of MatSolve.
/// @return iterations of the call
int Call(CKVX_ART_MatSolver_BiCGSTAB& A, const double* b, double* x) {
    A.iterTimes = 0;  // a call that stops before its first iteration leaves the count as it was
    A.MatSolve(b, x);
    return A.iterTimes;
}

int Call(CKVX_ART_MatSolver_SAMG& A, const double* b, double* x) {
    A.MatSolve(b, x);
    return 0;
}

/// The state of a solve, with its best x.
class Solve {
public:
    Solve(CKVX_ART_SparseMatrix& matrix, const double* rightHandSide, double* solution)
        : A(matrix),
          b(rightHandSide),
          x(solution),
          n(matrix.GetRowsN()),
          defect(n + 1, 0.0),
          rounding(n + 1, 0.0) {}

    /// Norm of b - A v; the entries stay in `defect`.
    ///
    /// Summed in extended precision. Where the entries of v are huge, for example after a call on
    /// a singular matrix, A v may cancel by chance in rounded numbers. If the bound of all rounding
    /// errors is above `target` it is therefore added to the norm.
    double Defect(const double* v, double target) {
        constexpr long double epsilon = std::numeric_limits<long double>::epsilon();
        for (int row = 1; row <= n; ++row) {
            long double sum = b[row];
            long double size = std::abs(sum);
            for (int k = A.Ia[row]; k < A.Ia[row + 1]; ++k) {
                const long double term = static_cast<long double>(A.Aa[k]) * v[A.Ja[k]];
                sum -= term;
                size += std::abs(term);
            }
            const int nTerms = A.Ia[row + 1] - A.Ia[row] + 1;
            defect[row] = static_cast<double>(sum);
            rounding[row] = static_cast<double>(nTerms * epsilon * size);
        }
        const double norm = Norm(defect.data(), n);
        const double bound = Norm(rounding.data(), n);
        return bound > target ? norm + bound : norm;
    }

    /// First guess of the correction after `failures` calls without success: zeros, the scaled
    /// residual over the diagonal, numbers of mixed sign.
    Vector Start(int failures) const {
        Vector start(n + 1, 0.0);
        std::uint32_t state = 1;
        for (int row = 1; row <= n && failures > 0; ++row) {
            const double diagonal = A.GetDiagonalValue(row);
            const double scaled = diagonal != 0.0 ? 1.0 / diagonal : 1.0;
            state = state * 1664525u + 1013904223u;  // linear congruence: the same on every machine
            const double mixed = static_cast<double>(state >> 8) / (1u << 23) - 1.0;
            start[row] = scaled * (failures == 1 ? right[row] : mixed / std::sqrt(n));
        }
        return start;
    }

    CKVX_ART_SparseMatrix& A;
    const double* b;
    double* x;
    int n;
    Vector defect;    ///< of the vector measured last
    Vector rounding;  ///< bound of the rounding error of each entry of `defect`
    Vector right;     ///< defect of the best x, divided by its norm
};

constexpr int startCount = 3;  // of Solve::Start()

void CheckArguments(const CKVX_ART_SparseMatrix& A, double reduction, int maxCalls) {
    if (!(reduction > 0.0) || !std::isfinite(reduction) || maxCalls < 1) {
        throw std::invalid_argument(
            "SafeSolve: the reduction must be above 0 and finite, and the calls at least 1");
    }
    const int n = A.GetRowsN();
    for (int k = 1; k < A.Ia[n + 1]; ++k) {
        if (A.Ja[k] > n) {
            throw std::invalid_argument("SafeSolve: the matrix stores column " +
                                        std::to_string(A.Ja[k]) + " but has " + std::to_string(n) +
                                        " rows only");
        }
    }
}

/// Calls the solver until the residual is at the target, the calls are used up, or every start
/// has failed.
template <class Solver>
void Iterate(Solver& A, Solve& solve, int maxCalls, SolveReport& report) {
    const ToleranceGuard<Solver> guard(A);
    int failures = 0;
    Vector candidate(solve.n + 1, 0.0);
    while (report.residual > report.target && report.calls < maxCalls && failures < startCount) {
        if (failures == 0) {
            solve.right = solve.defect;
            for (double& value : solve.right) {
                value /= report.residual;
            }
        }
        Vector correction = solve.Start(failures);
        A.SetTolerance(
            std::clamp(0.5 * report.target / report.residual, smallestTolerance, largestTolerance));
        report.iterations += Call(A, solve.right.data(), correction.data());
        ++report.calls;
        for (int row = 1; row <= solve.n; ++row) {
            candidate[row] = solve.x[row] + report.residual * correction[row];
        }
        const double residual = solve.Defect(candidate.data(), report.target);
        if (residual < report.residual && IsFinite(candidate.data(), solve.n)) {
            std::copy(candidate.begin() + 1, candidate.end(), solve.x + 1);
            report.residual = residual;
            failures = 0;
        } else {
            ++failures;
        }
    }
}

template <class Solver>
SolveReport SolveWith(Solver& A, const double* b, double* x, double reduction, int maxCalls) {
    if (!A.compressed) {
        A.CompressIndex();
    }
    CheckArguments(A, reduction, maxCalls);
    const int n = A.GetRowsN();
    const double normB = Norm(b, n);
    const bool canBeSolved = std::isfinite(normB) && IsFinite(A.Aa, A.Ia[n + 1] - 1);
    SolveReport report;
    report.target = reduction * normB;
    Solve solve(A, b, x);
    report.firstResidual = solve.Defect(x, report.target);
    report.residual = report.firstResidual;
    if (canBeSolved && (normB == 0.0 || !std::isfinite(report.firstResidual))) {
        std::fill(x + 1, x + 1 + n, 0.0);
        report.residual = solve.Defect(x, report.target);
    }
    if (canBeSolved) {
        Iterate(A, solve, maxCalls, report);
    }
    report.finite = IsFinite(x, n);
    report.reached = canBeSolved && report.finite && report.residual <= report.target;
    return report;
}

}  // namespace

SolveReport SafeSolve(CKVX_ART_MatSolver_BiCGSTAB& A, const double* b, double* x, double reduction,
                      int maxCalls) {
    return SolveWith(A, b, x, reduction, maxCalls);
}

SolveReport SafeSolve(CKVX_ART_MatSolver_SAMG& A, const double* b, double* x, double reduction,
                      int maxCalls) {
    return SolveWith(A, b, x, reduction, maxCalls);
}

std::string Text(const SolveReport& report) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << "residual from " << report.firstResidual << " to " << report.residual << " (target "
         << report.target << (report.reached ? ", reached" : ", not reached") << ") in "
         << report.calls << (report.calls == 1 ? " call" : " calls");
    if (report.iterations > 0) {
        text << ", " << report.iterations << " iterations";
    }
    if (!report.finite) {
        text << "; the solution holds numbers that are not finite";
    }
    return text.str();
}

}  // namespace kvx3d::checks
