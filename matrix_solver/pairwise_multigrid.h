#ifndef KVX3D_MATRIX_SOLVER_PAIRWISE_MULTIGRID_H
#define KVX3D_MATRIX_SOLVER_PAIRWISE_MULTIGRID_H

#include <memory>

#include "matrix_solver/preconditioner.h"

namespace kvx3d_solver {

/// One V-cycle of algebraic multigrid over aggregates of up to eight rows.
///
/// Neighbors are matched in pairs three times per level. An ascending Gauss-Seidel sweep precedes
/// the coarse correction and a descending one follows it; the coarsest level has a dense LU. For a
/// symmetric positive definite matrix the cycle is symmetric and positive definite too, as
/// conjugate gradients require; for other matrices it preconditions BiCGSTAB. The levels are kept
/// in single precision: a preconditioner needs few digits, and half the memory takes nearly half
/// the time.
///
/// Source: Y. Notay, Electron. Trans. Numer. Anal. 37 (2010) 123-146.
///
/// @return null if the coarsening stalls before the coarsest level is small enough to factorize,
///         and for a matrix with a diagonal entry that is not positive
std::unique_ptr<Preconditioner> MakePairwiseMultigrid(const CsrSystem& A);

}  // namespace kvx3d_solver

#endif
