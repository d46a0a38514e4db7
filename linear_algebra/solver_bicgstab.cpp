#include "linear_algebra/solver_bicgstab.h"

#include <cmath>

namespace {

constexpr double eps = 1e-30;  // zero test of the recurrence and guard of its denominators

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
    double sum = 0.0;
    for (int i = 1; i <= rowsN; ++i) {
        r[i] = b[i] - DotProduct(i, x);
        rHat[i] = r[i];
        sum += rHat[i] * rHat[i];
    }
    const double norm = std::sqrt(sum);
    if (eps > std::abs(norm)) {
        Rnorm = norm;
        return true;
    }
    double rho = 1.0;
    double omega = 1.0;
    double alpha = 0.0;
    DILU(D);
    if (times < 1) {
        return true;
    }
    for (int iter = 1;; ++iter) {
        double rhoOld = rho;
        rho = 0.0;
        for (int i = 1; i <= rowsN; ++i) {
            rho += r[i] * rHat[i];
        }
        if (eps > std::abs(rho)) {
            return true;
        }
        if (iter == 1) {
            for (int i = 1; i <= rowsN; ++i) {
                p[i] = r[i];
            }
        } else {
            rhoOld = rhoOld + eps;
            const double beta = (rho / rhoOld) * (alpha / (omega + eps));
            if (eps > std::abs(beta)) {
                return true;
            }
            for (int i = 1; i <= rowsN; ++i) {
                p[i] = (p[i] - omega * v[i]) * beta + r[i];
            }
        }
        SolveDILU(D, p, pHat);
        double sigma = 0.0;
        for (int i = 1; i <= rowsN; ++i) {
            v[i] = DotProduct(i, pHat);
            sigma += v[i] * rHat[i];
        }
        if (eps > std::abs(sigma)) {
            return true;
        }
        sigma = sigma + eps;
        alpha = rho / sigma;
        if (eps > std::abs(alpha)) {
            return true;
        }
        for (int i = 1; i <= rowsN; ++i) {
            x[i] = x[i] + alpha * pHat[i];
            s[i] = r[i] - alpha * v[i];
        }
        SolveDILU(D, s, sHat);
        double ts = 0.0;
        double tt = 0.0;
        for (int i = 1; i <= rowsN; ++i) {
            t[i] = DotProduct(i, sHat);
            ts += t[i] * s[i];
            tt += t[i] * t[i];
        }
        if (eps > std::abs(tt)) {
            return true;
        }
        tt = tt + eps;
        omega = ts / tt;
        if (eps > std::abs(omega)) {
            return true;
        }
        double rr = 0.0;
        for (int i = 1; i <= rowsN; ++i) {
            x[i] = x[i] + omega * sHat[i];
            r[i] = s[i] - omega * t[i];
            rr += r[i] * r[i];
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
    for (int i = 1; i <= rowsN; ++i) {
        double sum = 0.0;
        for (int k = Ia[i] + 1; k < Ia[i + 1]; ++k) {
            if (Ja[k] < i) {
                sum += y[Ja[k]] * Aa[k];
            }
        }
        y[i] = (rhs[i] - sum) * invD[i];
    }
    for (int i = rowsN; i >= 1; --i) {
        double sum = 0.0;
        for (int k = Ia[i] + 1; k < Ia[i + 1]; ++k) {
            if (Ja[k] > i && Ja[k] <= rowsN) {
                sum += result[Ja[k]] * Aa[k];
            }
        }
        result[i] = y[i] - sum * invD[i];
    }
}
