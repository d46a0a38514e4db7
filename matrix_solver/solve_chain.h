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
/// system; else BiCGSTAB with ILU(0), given up early if slow, then with multigrid, ILU(0)-GMRES,
/// sparse LU in this order. A method starts from the best iterate so far. Where there is no
/// multigrid, the first of them is not given up early.
///
/// @param[in]     A  a system with n >= 1
/// @param[in,out] x  start vector, then the best iterate; unchanged if it meets the tolerance
///                   already, and on Outcome::Singular
Outcome SolveChain(const CsrSystem& A, const SolveOptions& options, Vector& x);

}  // namespace kvx3d_solver

#endif
