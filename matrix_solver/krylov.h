#ifndef KVX3D_MATRIX_SOLVER_KRYLOV_H
#define KVX3D_MATRIX_SOLVER_KRYLOV_H

#include "matrix_solver/csr_system.h"
#include "matrix_solver/preconditioner.h"

namespace kvx3d_solver {

/// Where an iteration stops.
struct StopRule {
    double residual;  ///< norm of the residual to reach
    int steps;        ///< most steps
};

/// Improves x by BiCGSTAB, preconditioned from the right.
///
/// On return x is the iterate with the smallest recursive residual met, that on entry included. The
/// recursive residual drifts from the true one, which the caller recomputes.
///
/// Source: H. A. van der Vorst, SIAM J. Sci. Stat. Comput. 13 (1992) 631-644,
/// doi:10.1137/0913035.
///
/// @return steps taken; fewer than allowed on success and on breakdown
int BiCgStab(const CsrSystem& A, Preconditioner& M, StopRule stop, Vector& x);

/// Improves x by conjugate gradients, for a matrix and a preconditioner that are symmetric and
/// positive definite. x is the last iterate, not the best one.
///
/// Source: Y. Saad, Iterative Methods for Sparse Linear Systems, 2nd ed., SIAM 2003, algorithm 9.1.
///
/// @return steps taken; fewer than allowed on success, and where A or M proves not to be definite
int ConjugateGradients(const CsrSystem& A, Preconditioner& M, StopRule stop, Vector& x);

/// Improves x by GMRES restarted every 40 steps, preconditioned from the right. x never gets worse.
///
/// Source: Y. Saad, Iterative Methods for Sparse Linear Systems, 2nd ed., SIAM 2003, algorithms
/// 6.11 and 9.5.
///
/// @return steps taken; fewer than allowed on success, and after a cycle without progress
int Gmres(const CsrSystem& A, Preconditioner& M, StopRule stop, Vector& x);

}  // namespace kvx3d_solver

#endif
