#ifndef KVX3D_MATRIX_SOLVER_SOLVE_CHAIN_H
#define KVX3D_MATRIX_SOLVER_SOLVE_CHAIN_H

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

/// What the caller asked for, and which methods may serve it.
struct SolveOptions {
    double tolerance = 1e-8;   ///< relative to the norm of the right-hand side
    int maxIterations = 1000;  ///< Krylov steps over all methods together
    bool directFirst = false;  ///< sparse LU before any iteration
    bool useMultigrid = true;  ///< false leaves what a build without DUNE has
    bool useSparseLu = true;   ///< false leaves what a build without SuperLU has
};

enum class Outcome { Solved, ToleranceMissed, Singular };

/// Solves A x = b by the first method that meets the tolerance: dense LU alone for a small or full
/// system; else BiCGSTAB with ILU(0) where that promises to be quick, given up early if it is not;
/// conjugate gradients with the pairwise multigrid for a symmetric matrix; BiCGSTAB with DUNE's
/// multigrid; ILU(0)-GMRES; sparse LU. A method starts from the best iterate so far. Where no
/// multigrid could follow, the first of them runs in any case and is not given up early.
///
/// @param[in]     A  a system with n >= 1
/// @param[in,out] x  start vector, then the best iterate; unchanged if it meets the tolerance
///                   already, and on Outcome::Singular
Outcome SolveChain(const CsrSystem& A, const SolveOptions& options, Vector& x);

}  // namespace kvx3d_solver

#endif
