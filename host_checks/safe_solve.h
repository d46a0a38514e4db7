#ifndef KVX3D_HOST_CHECKS_SAFE_SOLVE_H
#define KVX3D_HOST_CHECKS_SAFE_SOLVE_H

#include <string>

#include "host_checks/export.h"
#include "linear_algebra/solver_bicgstab.h"
#include "linear_algebra/solver_samg.h"

namespace kvx3d::checks {

/// How a linear solve ended, measured by the true residual b - A x in the 2-norm.
struct SolveReport {
    double firstResidual = 0.0;  ///< |b - A x| of the first guess
    double residual = 0.0;       ///< |b - A x| of the x that was returned
    double target = 0.0;         ///< the requested residual: reduction |b|
    int calls = 0;               ///< calls of MatSolve
    int iterations = 0;          ///< iterations over all calls; 0 for SAMG, which reports none
    bool reached = false;        ///< residual <= target
    bool finite = false;         ///< every entry of x is finite
};

/// Solves A x = b to a true relative residual: |b - A x| <= reduction |b|.
///
/// MatSolve alone does not achieve that. It always returns true, it stops relative to the residual
/// after its first iteration, and its breakdown tests compare with the absolute number 1e-30, so
/// that it stops at once on a system with small entries. Each call here therefore solves for a
/// correction of the best x so far, A d = (b - A x) / |b - A x|, whose right-hand side has the
/// norm 1. The true residual is computed after each call in extended precision, and a correction
/// that does not lower it is dropped: the returned x is never worse than the first guess. Where
/// rounding errors could hide more than the target, their bound is part of the reported residual.
///
/// Scaling helps against small right-hand sides, not against small matrices: MatSolve adds 1e-30
/// to each diagonal entry, so rows whose entries are all below about 1e-28 are not solved.
///
/// A call that does not lower the residual is repeated from other first guesses for d (the residual
/// divided by the diagonal, then a fixed vector of mixed signs), since a breakdown depends on the
/// first guess. If none of them helps, the solve ends early.
///
/// Each call sets the tolerance of `A` to the reduction that is still missing, but not below 1e-13
/// or above 0.5. The host's tolerance is restored at the end, also after an exception. A.SetTimes()
/// limits the iterations of each call.
///
/// A matrix or right-hand side with an entry that is not finite is not solved: no call is made. A
/// first guess that is not finite is replaced by zeros. If b is zero, x becomes zero.
///
/// @param[in,out] A          assembled; each row stores its diagonal, no column is above rowsN.
///                           MatSolve moves the diagonal of each row to its front.
/// @param[in]     b          right-hand side, entries 1..rowsN
/// @param[in,out] x          first guess on entry, the best x found on return, entries 1..rowsN
/// @param         reduction  target of the residual relative to |b|, above 0 and finite
/// @param         maxCalls   largest number of calls of MatSolve, at least 1
/// @throws LinearSolverException  a row stores no diagonal and the first guess misses the target; x
///                                is the first guess, or zeros if that was not finite
/// @throws std::invalid_argument  reduction or maxCalls is out of range, or A stores a column above
///                                rowsN
KVX3D_CHECKS_API SolveReport SafeSolve(CKVX_ART_MatSolver_BiCGSTAB& A, const double* b, double* x,
                                       double reduction, int maxCalls = 10);
/// The same with the external solver library.
KVX3D_CHECKS_API SolveReport SafeSolve(CKVX_ART_MatSolver_SAMG& A, const double* b, double* x,
                                       double reduction, int maxCalls = 10);

/// One line: "residual from 2.5 to 3.1e-11 (target 2.5e-10, reached) in 2 calls, 41 iterations".
KVX3D_CHECKS_API std::string Text(const SolveReport& report);

}  // namespace kvx3d::checks

#endif
