#ifndef KVX3D_PLAIN_PLAIN_BICGSTAB_H
#define KVX3D_PLAIN_PLAIN_BICGSTAB_H

#include "linear_algebra/solver_bicgstab.h"

#include <cmath>

namespace plain {

/// BiCGSTAB with DILU in its simplest form: one loop per step, on the members of the solver.
///
/// The tests require the solver to give the same bits, the benchmark measures the ratio of the
/// times. So keep this simple and do not optimize it.
class BiCGSTAB : public CKVX_ART_MatSolver_BiCGSTAB {
public:
    using CKVX_ART_MatSolver_BiCGSTAB::CKVX_ART_MatSolver_BiCGSTAB;

    /// The exits of a solve.
    enum Exit {
        kSolvedAtStart,
        kNoIterations,
        kRhoVanished,
        kBetaVanished,
        kSigmaVanished,
        kAlphaVanished,
        kTtVanished,
        kOmegaVanished,
        kConverged,
        kTimesExhausted,
        kExits
    };
    Exit lastExit = kExits;

    /// Solves A x = b like MatSolve().
    bool PlainMatSolve(const double* b, double* x) {
        if (!compressed) {
            CompressIndex();
        }
        MakeDiagFrontCSR();
        double sum = 0.0;
        for (int i = 1; i <= rowsN; ++i) {
            r[i] = b[i] - RowTimes(i, x);
            rHat[i] = r[i];
            sum += rHat[i] * rHat[i];
        }
        const double norm = std::sqrt(sum);
        if (eps > std::abs(norm)) {
            Rnorm = norm;
            return Leave(kSolvedAtStart);
        }
        double rho = 1.0;
        double omega = 1.0;
        double alpha = 0.0;
        PlainDILU(D);
        if (times < 1) {
            return Leave(kNoIterations);
        }
        for (int iter = 1;; ++iter) {
            double rhoOld = rho;
            rho = 0.0;
            for (int i = 1; i <= rowsN; ++i) {
                rho += r[i] * rHat[i];
            }
            if (eps > std::abs(rho)) {
                return Leave(kRhoVanished);
            }
            if (iter == 1) {
                for (int i = 1; i <= rowsN; ++i) {
                    p[i] = r[i];
                }
            } else {
                rhoOld = rhoOld + eps;
                const double beta = (rho / rhoOld) * (alpha / (omega + eps));
                if (eps > std::abs(beta)) {
                    return Leave(kBetaVanished);
                }
                for (int i = 1; i <= rowsN; ++i) {
                    p[i] = (p[i] - omega * v[i]) * beta + r[i];
                }
            }
            PlainSolveDILU(D, p, pHat);
            double sigma = 0.0;
            for (int i = 1; i <= rowsN; ++i) {
                v[i] = RowTimes(i, pHat);
                sigma += v[i] * rHat[i];
            }
            if (eps > std::abs(sigma)) {
                return Leave(kSigmaVanished);
            }
            sigma = sigma + eps;
            alpha = rho / sigma;
            if (eps > std::abs(alpha)) {
                return Leave(kAlphaVanished);
            }
            for (int i = 1; i <= rowsN; ++i) {
                x[i] = x[i] + alpha * pHat[i];
                s[i] = r[i] - alpha * v[i];
            }
            PlainSolveDILU(D, s, sHat);
            double ts = 0.0;
            double tt = 0.0;
            for (int i = 1; i <= rowsN; ++i) {
                t[i] = RowTimes(i, sHat);
                ts += t[i] * s[i];
                tt += t[i] * t[i];
            }
            if (eps > std::abs(tt)) {
                return Leave(kTtVanished);
            }
            tt = tt + eps;
            omega = ts / tt;
            if (eps > std::abs(omega)) {
                return Leave(kOmegaVanished);
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
            if (Rnorm * tolerance >= rnorm) {
                return Leave(kConverged);
            }
            if (iter >= times) {
                return Leave(kTimesExhausted);
            }
        }
    }

    /// Computes the inverted DILU diagonal like DILU().
    void PlainDILU(double* invD) {
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

    /// Applies the preconditioner like SolveDILU(): a forward and a backward sweep.
    void PlainSolveDILU(double* invD, double* rhs, double* result) {
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

    /// Row times vector, one product after another.
    double RowTimes(int row, const double* vector) const {
        double sum = 0.0;
        for (int k = Ia[row]; k < Ia[row + 1]; ++k) {
            sum += vector[Ja[k]] * Aa[k];
        }
        return sum;
    }

    /// Records the exit and returns true.
    bool Leave(Exit exit) {
        lastExit = exit;
        return true;
    }

    static constexpr double eps = 1e-30;
};

}  // namespace plain

#endif
