#ifndef KVX3D_MATRIX_SOLVER_LU_COST_H
#define KVX3D_MATRIX_SOLVER_LU_COST_H

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

/// What a sparse LU factorization may need at most.
struct LuCost {
    double work = 0.0;     ///< multiplications and additions
    double entries = 0.0;  ///< values in the two factors together
};

/// Estimates the cost of a sparse LU from the graph alone, in linear time.
///
/// Numbers the rows in breadth-first levels from a row at the rim of the graph, which makes the
/// matrix block tridiagonal, and counts a banded elimination over the levels. On the meshes
/// measured in docs/matrix_solver.md the factors have a half to a fifth of the entries.
///
/// Source: A. George, J. W. H. Liu, Computer Solution of Large Sparse Positive Definite Systems,
/// Prentice-Hall 1981, chapter 4.
LuCost EstimateLuCost(const CsrSystem& A);

}  // namespace kvx3d_solver

#endif
