#include "linear_algebra/solver_bicgstab.h"

#include <algorithm>
#include <cmath>

#include "linear_algebra/dilu_sweeps.h"

namespace {

using KVX3DART::BackwardSweep;
using KVX3DART::BackwardSweepWithProduct;
using KVX3DART::CsrRows;
using KVX3DART::ForwardSweep;
using KVX3DART::InspectRows;
using KVX3DART::RowShape;

constexpr double eps = 1e-30;   // zero test of the recurrence and guard of its denominators
constexpr int blockRows = 512;  // rows updated before they are swept: they stay in the cache

/// True below the zero test, false for not-a-number: that iterates on until `times` ends it.
bool Vanishes(double value) {
    return eps > std::abs(value);
}

/// One accumulator, ascending.
double Dot(int n, const double* a, const double* b) {
    double sum = 0.0;
    for (int i = 1; i <= n; ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

/// p = (p - omega v) beta + r
void UpdateDirection(int first, int last, double omega, double beta, const double* v,
                     const double* r, double* p) {
    for (int i = first; i <= last; ++i) {
        p[i] = (p[i] - omega * v[i]) * beta + r[i];
    }
}

/// x = x + alpha pHat, s = r - alpha v
void AlphaStep(int first, int last, double alpha, const double* pHat, const double* v,
               const double* r, double* x, double* s) {
    for (int i = first; i <= last; ++i) {
        x[i] = x[i] + alpha * pHat[i];
        s[i] = r[i] - alpha * v[i];
    }
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
    double rr = 0.0;
    for (int i = 1; i <= rowsN; ++i) {
        r[i] = b[i] - DotProduct(i, x);
        rHat[i] = r[i];
        rr += rHat[i] * rHat[i];
    }
    const double norm = std::sqrt(rr);
    if (Vanishes(norm)) {
        Rnorm = norm;
        return true;
    }
    DILU(D);
    if (times < 1) {
        return true;
    }
    const CsrRows A{rowsN, Ia, Ja, Aa};
    const RowShape shape = InspectRows(A);
    double rho = 1.0;
    double omega = 1.0;
    double alpha = 0.0;
    double rhoNext = rr;  // r and rHat are still equal
    for (int iter = 1;; ++iter) {
        const double rhoOld = rho + eps;
        rho = rhoNext;
        if (Vanishes(rho)) {
            return true;
        }
        double beta = 0.0;
        if (iter > 1) {
            beta = (rho / rhoOld) * (alpha / (omega + eps));
            if (Vanishes(beta)) {
                return true;
            }
        }
        for (int first = 1; first <= rowsN; first += blockRows) {
            const int last = std::min(first + blockRows - 1, rowsN);
            if (iter == 1) {
                std::copy(r + first, r + last + 1, p + first);
            } else {
                UpdateDirection(first, last, omega, beta, v, r, p);
            }
            ForwardSweep(A, shape.partitioned, D, p, y, first, last);
        }
        BackwardSweepWithProduct(A, shape, D, y, pHat, v);
        const double sigma = Dot(rowsN, v, rHat);
        if (Vanishes(sigma)) {
            return true;
        }
        alpha = rho / (sigma + eps);
        if (Vanishes(alpha)) {
            return true;
        }
        for (int first = 1; first <= rowsN; first += blockRows) {
            const int last = std::min(first + blockRows - 1, rowsN);
            AlphaStep(first, last, alpha, pHat, v, r, x, s);
            ForwardSweep(A, shape.partitioned, D, s, y, first, last);
        }
        BackwardSweepWithProduct(A, shape, D, y, sHat, t);
        double ts = 0.0;
        double tt = 0.0;
        for (int i = 1; i <= rowsN; ++i) {
            ts += t[i] * s[i];
            tt += t[i] * t[i];
        }
        if (Vanishes(tt)) {
            return true;
        }
        omega = ts / (tt + eps);
        if (Vanishes(omega)) {
            return true;
        }
        rr = 0.0;
        rhoNext = 0.0;
        for (int i = 1; i <= rowsN; ++i) {
            x[i] = x[i] + omega * sHat[i];
            r[i] = s[i] - omega * t[i];
            rr += r[i] * r[i];
            rhoNext += r[i] * rHat[i];
        }
        const double rnorm = std::sqrt(rr);
        if (iter == 1) {
            Rnorm = rnorm;
        }
        iterTimes = iter;
        if (Rnorm * tolerance >= rnorm || iter >= times) {
            return true;
        }
    }
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
            for (int m = Ia[j] + 1; m < Ia[j + 1]; ++m) {
                if (Ja[m] == i) {
                    invD[j] = invD[j] - Aa[m] * invD[i] * Aa[k];
                    break;
                }
            }
        }
    }
}

void CKVX_ART_MatSolver_BiCGSTAB::SolveDILU(double* invD, double* rhs, double* result) {
    const CsrRows A{rowsN, Ia, Ja, Aa};
    ForwardSweep(A, false, invD, rhs, y, 1, rowsN);
    BackwardSweep(A, invD, y, result);
}
