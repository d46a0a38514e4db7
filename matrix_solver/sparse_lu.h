#ifndef KVX3D_MATRIX_SOLVER_SPARSE_LU_H
#define KVX3D_MATRIX_SOLVER_SPARSE_LU_H

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

enum class SparseLuResult {
    Solved,      ///< x was computed; the caller judges it by its residual
    Singular,    ///< an exact zero pivot; x is unchanged
    Unavailable  ///< no sparse LU in this build, or out of memory; x is unchanged
};

/// True if the build found SuperLU.
bool HasSparseLu();

/// Factorises A with a fill-reducing column order, equilibration and partial pivoting, and solves
/// with iterative refinement. Time and memory grow much faster than n: the caller bounds n.
///
/// Source: J. W. Demmel et al., SIAM J. Matrix Anal. Appl. 20 (1999) 720-755,
/// doi:10.1137/S0895479895291765.
SparseLuResult SolveBySparseLu(const CsrSystem& A, Vector& x);

}  // namespace kvx3d_solver

#endif
