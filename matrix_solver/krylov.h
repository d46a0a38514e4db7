#ifndef KVX3D_MATRIX_SOLVER_KRYLOV_H
#define KVX3D_MATRIX_SOLVER_KRYLOV_H

#include "matrix_solver/csr_system.h"
#include "matrix_solver/preconditioner.h"

namespace kvx3d_solver {

/// Where an iteration may stop: at a residual norm, after a number of steps, or when it is slow:
/// after `trialSteps`, unless the residual is down to `trialResidual` by then.
struct StopRule {
    double residual;
    int steps;
    int trialSteps = 0;  ///< 0: no trial
    double trialResidual = 0.0;
};

/// Improves x by BiCGSTAB, preconditioned from the right. On return x is the iterate with the
/// smallest recursive residual met, the one on entry included; the caller recomputes the true one.
///
/// Source: H. A. van der Vorst, SIAM J. Sci. Stat. Comput. 13 (1992) 631-644,
/// doi:10.1137/0913035.
///
/// @return steps taken; fewer than allowed on success, and on breakdown
int BiCgStab(const CsrSystem& A, Preconditioner& M, StopRule stop, Vector& x);

/// Improves x by conjugate gradients, for a matrix as IsSymmetric() takes it that is positive
/// definite, and M alike. The unknowns of fixed rows are set first, so that no residual is left
/// that would couple one way only. x is the last iterate, not the best one. Knows no trial.
///
/// Source: Y. Saad, Iterative Methods for Sparse Linear Systems, 2nd ed., SIAM 2003, algorithm 9.1.
///
/// @return steps taken; fewer than allowed on success, and where A or M proves to be not definite
int ConjugateGradients(const CsrSystem& A, Preconditioner& M, StopRule stop, Vector& x);

/// Improves x by GMRES restarted every 40 steps, preconditioned from the right. Knows no trial.
/// x never gets worse.
///
/// Source: Y. Saad, Iterative Methods for Sparse Linear Systems, 2nd ed., SIAM 2003, algorithms
/// 6.11 and 9.5.
///
/// @return steps taken; fewer than allowed on success, and when a whole cycle brought nothing
int Gmres(const CsrSystem& A, Preconditioner& M, StopRule stop, Vector& x);

}  // namespace kvx3d_solver

#endif
