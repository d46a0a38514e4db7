#include "linear_algebra/solver_bicgstab.h"

#include <algorithm>
#include <cmath>

#include "linear_algebra/detail/dilu_sweeps.h"

namespace {

using KVX3DART::BackwardSweep;
using KVX3DART::BackwardSweepWithProduct;
using KVX3DART::CsrRows;
using KVX3DART::DiluSweeps;
using KVX3DART::ForwardSweep;
using KVX3DART::InspectRows;
using KVX3DART::PositionOf;
using KVX3DART::RowProduct;

constexpr double eps = 1e-30;   // zero test of the recurrence and guard of its denominators
constexpr int blockRows = 512;  // rows updated before they are swept: they stay in the cache

// Sums over rows have one accumulator each and run upwards: results are compared bit for bit.

/// True below the zero test, false for not-a-number: that iterates on until `times` ends it.
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

/// Two products of one vector: the passes over the vectors are what they cost.
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

/// p = (p - omega v) beta + r, swept forward.
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

/// s = r - alpha v, swept forward.
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

/// x = x + omega sHat, then x = x + alpha pHat: both in one pass over x.
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
    // p stands twice and pHat not at all: slot 0 of pHat stays 0.0. No vector operation reads a
    // slot 0, so only code that takes lengths from the heads sees it.
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
    DotPair residual{rr, rr};    // with rHat and with itself: the two are still equal
    bool owesOmegaStep = false;  // x gets omega sHat with the next alpha step: one pass less
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
        if (owesOmegaStep) {
            AddBoth(rowsN, omega, sHat, alpha, pHat, x);
        } else {
            AddTo(rowsN, alpha, pHat, x);
        }
        owesOmegaStep = false;
        BackwardSweepWithProduct(sweeps, sHat, t);
        const auto [ts, tt] = DotBoth(rowsN, t, s);
        if (Vanishes(tt)) {
            break;
        }
        omega = ts / (tt + eps);
        if (Vanishes(omega)) {
            break;
        }
        owesOmegaStep = true;
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
    if (owesOmegaStep) {
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
