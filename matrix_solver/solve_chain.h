#ifndef KVX3D_MATRIX_SOLVER_SOLVE_CHAIN_H
#define KVX3D_MATRIX_SOLVER_SOLVE_CHAIN_H

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

/// The accuracy that the caller requests, and the methods that may be used.
struct SolveOptions {
    double tolerance = 1e-8;   ///< relative to the norm of the right-hand side
    int maxIterations = 1000;  ///< Krylov steps over all methods together
    bool directFirst = false;  ///< sparse LU before any iteration
    bool useSparseLu = true;   ///< tests switch it off to see what the iterations do alone
};

enum class Outcome { Solved, ToleranceMissed, Singular };

/// Solves A x = b by the first method that meets the tolerance.
///
/// A small or full system is solved by the dense LU alone. In any other system the trivial rows are
/// eliminated first (see Reduction). Then follow BiCGSTAB with ILU(0) if few steps are expected,
/// conjugate gradients (for a symmetric matrix) or BiCGSTAB with the pairwise multigrid, GMRES with
/// ILU(0), and the sparse LU. Each method starts from the best iterate so far. Every iterate is
/// judged by the residual of the full system.
///
/// @param[in]     A  a system with n >= 1
/// @param[in,out] x  start vector, then the best iterate; unchanged if it meets the tolerance
///                   already, and on Outcome::Singular
Outcome SolveChain(const CsrSystem& A, const SolveOptions& options, Vector& x);

}  // namespace kvx3d_solver

#endif
