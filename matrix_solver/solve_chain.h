#ifndef KVX3D_MATRIX_SOLVER_SOLVE_CHAIN_H
#define KVX3D_MATRIX_SOLVER_SOLVE_CHAIN_H

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

/// What the caller asked for, and which methods may be used.
struct SolveOptions {
    double tolerance = 1e-8;   ///< relative to the norm of the right-hand side
    int maxIterations = 1000;  ///< Krylov steps over all methods together
    bool directFirst = false;  ///< sparse LU before any iteration
    bool useSparseLu = true;   ///< tests switch it off to see what the iterations do alone
};

enum class Outcome { Solved, ToleranceMissed, Singular };

/// Solves A x = b by the first method that meets the tolerance.
///
/// A small or full system goes through the dense LU alone. Any other loses its trivial rows first
/// (see Reduction); then follow BiCGSTAB with ILU(0) where that promises to be quick, the pairwise
/// multigrid under conjugate gradients for a symmetric matrix or under BiCGSTAB for any other,
/// ILU(0)-GMRES, and the sparse LU. Each method starts from the best iterate so far. Every iterate
/// is judged by the residual of the full system.
///
/// @param[in]     A  a system with n >= 1
/// @param[in,out] x  start vector, then the best iterate; unchanged if it meets the tolerance
///                   already, and on Outcome::Singular
Outcome SolveChain(const CsrSystem& A, const SolveOptions& options, Vector& x);

}  // namespace kvx3d_solver

#endif
