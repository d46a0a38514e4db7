#include "linear_algebra/solver_bicgstab.h"

#include <algorithm>
#include <cmath>

#include "linear_algebra/detail/dilu_sweeps.h"

// Data layout: the matrix is compressed rows with the diagonal first (detail/dilu_sweeps.h), the
// ten vectors are 1-based arrays of rowsN entries. One iteration passes over them like this:
//
//     p, y <- r, v       new direction and forward sweep, in blocks of rows that fit the cache
//     pHat, v            backward sweep, and v = A pHat in the same pass over the matrix
//     s, y <- r, v       half residual and forward sweep, in blocks
//     sHat, t            backward sweep, and t = A sHat in the same pass
//     r                  new residual, with both of its dot products
//
// The update x += omega sHat is delayed until the next x += alpha pHat, so that x is read and
// written once per iteration. The transcription step by step, with the same bits, is
// plain/plain_bicgstab.h.

namespace {

using kvx3d::detail::BackwardSweep;
using kvx3d::detail::BackwardSweepWithProduct;
using kvx3d::detail::CsrRows;
using kvx3d::detail::DiluSweeps;
using kvx3d::detail::ForwardSweep;
using kvx3d::detail::InspectRows;
using kvx3d::detail::PositionOf;
using kvx3d::detail::RowProduct;

constexpr double eps = 1e-30;   // zero test of the recurrence and guard of its denominators
constexpr int blockRows = 512;  // rows that are updated, then swept while they are in the cache

// Every sum over the rows has one accumulator and adds in ascending order, because results are
// compared bit for bit.

/// True if the magnitude is below the zero test. False for NaN, which therefore iterates until
/// `times` ends the solve.
bool Vanishes(double value) {
    return eps > std::abs(value);
}

/// r = b - A x, rHat = r
/// @return r . r
double FirstResidual(const CsrRows& A, const double* b, const double* x, double* r, double* rHat) {
    double rr = 0.0;
    for (int i = 1; i <= A.n; ++i) {
        r[i] = b[i] - RowProduct(A, i, x);
        rHat[i] = r[i];
        rr += rHat[i] * rHat[i];
    }
    return rr;
}

double Dot(int n, const double* a, const double* b) {
    double sum = 0.0;
    for (int i = 1; i <= n; ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

/// Two dot products formed in one pass, because reading the vectors takes most of the time.
struct DotPair {
    double withOther;
    double withItself;
};

/// a . b and a . a
DotPair DotBoth(int n, const double* a, const double* b) {
    DotPair dots{0.0, 0.0};
    for (int i = 1; i <= n; ++i) {
        dots.withOther += a[i] * b[i];
        dots.withItself += a[i] * a[i];
    }
    return dots;
}

/// p = (p - omega v) beta + r, then the forward sweep of p.
void SweepNextDirection(const DiluSweeps& sweeps, double omega, double beta, const double* v,
                        const double* r, double* p) {
    const int n = sweeps.A.n;
    for (int first = 1; first <= n; first += blockRows) {
        const int last = std::min(first + blockRows - 1, n);
        for (int i = first; i <= last; ++i) {
            p[i] = (p[i] - omega * v[i]) * beta + r[i];
        }
        ForwardSweep(sweeps, p, first, last);
    }
}

/// x = x + factor direction
void AddTo(int n, double factor, const double* direction, double* x) {
    for (int i = 1; i <= n; ++i) {
        x[i] = x[i] + factor * direction[i];
    }
}

/// s = r - alpha v, then the forward sweep of s.
void SweepHalfResidual(const DiluSweeps& sweeps, double alpha, const double* v, const double* r,
                       double* s) {
    const int n = sweeps.A.n;
    for (int first = 1; first <= n; first += blockRows) {
        const int last = std::min(first + blockRows - 1, n);
        for (int i = first; i <= last; ++i) {
            s[i] = r[i] - alpha * v[i];
        }
        ForwardSweep(sweeps, s, first, last);
    }
}

/// x = x + omega sHat, then x = x + alpha pHat, in one pass over x.
void AddBoth(int n, double omega, const double* sHat, double alpha, const double* pHat, double* x) {
    for (int i = 1; i <= n; ++i) {
        x[i] = x[i] + omega * sHat[i] + alpha * pHat[i];
    }
}

/// r = s - omega t
/// @return r . rHat and r . r
DotPair NextResidual(int n, double omega, const double* s, const double* t, const double* rHat,
                     double* r) {
    DotPair dots{0.0, 0.0};
    for (int i = 1; i <= n; ++i) {
        r[i] = s[i] - omega * t[i];
        dots.withOther += r[i] * rHat[i];
        dots.withItself += r[i] * r[i];
    }
    return dots;
}

}  // namespace

CKVX_ART_MatSolver_BiCGSTAB::CKVX_ART_MatSolver_BiCGSTAB(int n) : CKVX_ART_SparseMatrix(n) {
    DefaultConstructorProcedure();
}

CKVX_ART_MatSolver_BiCGSTAB::CKVX_ART_MatSolver_BiCGSTAB(int rows, int cols)
    : CKVX_ART_SparseMatrix(rows, cols) {
    DefaultConstructorProcedure();
}

CKVX_ART_MatSolver_BiCGSTAB::~CKVX_ART_MatSolver_BiCGSTAB() {
    for (double* vector : {r, rHat, D, p, pHat, v, y, s, sHat, t}) {
        delete[] vector;
    }
}

void CKVX_ART_MatSolver_BiCGSTAB::DefaultConstructorProcedure() {
    tolerance = 1.1e-08;
    times = 100000;
    for (double** vector : {&r, &rHat, &D, &p, &pHat, &v, &y, &s, &sHat, &t}) {
        *vector = new double[rowsN + 1]();
    }
    // p is listed twice and pHat not at all, so slot 0 of pHat stays 0.0. No vector operation reads
    // slot 0; only code that takes the length of a vector from there sees the difference.
    for (double* vector : {r, rHat, D, p, p, v, y, s, sHat, t}) {
        vector[0] = rowsN;
    }
    Rnorm = 0.0;
    iterTimes = 0;
}

bool CKVX_ART_MatSolver_BiCGSTAB::MatSolve(const double* b, double* x) {
    if (!compressed) {
        CompressIndex();
    }
    MakeDiagFrontCSR();
    const CsrRows A{rowsN, Ia, Ja, Aa};
    const double rr = FirstResidual(A, b, x, r, rHat);
    const double norm = std::sqrt(rr);
    if (Vanishes(norm)) {
        Rnorm = norm;
        return true;
    }
    DILU(D);
    if (times < 1) {
        return true;
    }
    const DiluSweeps sweeps{A, InspectRows(A), D, y};
    double rho = 1.0;
    double omega = 1.0;
    double alpha = 0.0;
    DotPair residual{rr, rr};       // with rHat and with itself, which are equal at the start
    bool omegaStepPending = false;  // x += omega sHat is done with the next alpha step
    for (int iter = 1;; ++iter) {
        const double rhoOld = rho + eps;
        rho = residual.withOther;
        if (Vanishes(rho)) {
            break;
        }
        if (iter == 1) {
            std::copy(r + 1, r + rowsN + 1, p + 1);
            ForwardSweep(sweeps, p, 1, rowsN);
        } else {
            const double beta = (rho / rhoOld) * (alpha / (omega + eps));
            if (Vanishes(beta)) {
                break;
            }
            SweepNextDirection(sweeps, omega, beta, v, r, p);
        }
        BackwardSweepWithProduct(sweeps, pHat, v);
        const double sigma = Dot(rowsN, v, rHat);
        if (Vanishes(sigma)) {
            break;
        }
        alpha = rho / (sigma + eps);
        if (Vanishes(alpha)) {
            break;
        }
        SweepHalfResidual(sweeps, alpha, v, r, s);
        if (omegaStepPending) {
            AddBoth(rowsN, omega, sHat, alpha, pHat, x);
        } else {
            AddTo(rowsN, alpha, pHat, x);
        }
        omegaStepPending = false;
        BackwardSweepWithProduct(sweeps, sHat, t);
        const auto [ts, tt] = DotBoth(rowsN, t, s);
        if (Vanishes(tt)) {
            break;
        }
        omega = ts / (tt + eps);
        if (Vanishes(omega)) {
            break;
        }
        omegaStepPending = true;
        residual = NextResidual(rowsN, omega, s, t, rHat, r);
        const double rnorm = std::sqrt(residual.withItself);
        if (iter == 1) {
            Rnorm = rnorm;
        }
        iterTimes = iter;
        if (Rnorm * tolerance >= rnorm || iter >= times) {
            break;
        }
    }
    if (omegaStepPending) {
        AddTo(rowsN, omega, sHat, x);
    }
    return true;
}

void CKVX_ART_MatSolver_BiCGSTAB::DILU(double* invD) {
    for (int i = 1; i <= rowsN; ++i) {
        invD[i] = Aa[Ia[i]];
    }
    for (int i = 1; i <= rowsN; ++i) {
        invD[i] = 1.0 / (invD[i] + eps);
        for (int k = Ia[i] + 1; k < Ia[i + 1]; ++k) {
            const int j = Ja[k];
            if (j <= i || j > rowsN) {
                continue;
            }
            if (const int m = PositionOf(i, Ja, Ia[j] + 1, Ia[j + 1])) {
                invD[j] = invD[j] - Aa[m] * invD[i] * Aa[k];
            }
        }
    }
}

void CKVX_ART_MatSolver_BiCGSTAB::SolveDILU(double* invD, double* rhs, double* result) {
    const DiluSweeps sweeps{{rowsN, Ia, Ja, Aa}, {false, 0}, invD, y};
    ForwardSweep(sweeps, rhs, 1, rowsN);
    BackwardSweep(sweeps, result);
}
