#ifndef KVX3D_MATRIX_SOLVER_PAIRWISE_MULTIGRID_H
#define KVX3D_MATRIX_SOLVER_PAIRWISE_MULTIGRID_H

#include <memory>

#include "matrix_solver/preconditioner.h"

namespace kvx3d_solver {

/// One V-cycle over aggregates of up to eight rows, each found by matching neighbours three times;
/// a Gauss-Seidel sweep forth before and one back after the coarse correction, dense LU on the
/// coarsest level. For a symmetric positive definite matrix the cycle is symmetric and positive
/// definite too, as conjugate gradients need it. Levels are kept in single precision: a
/// preconditioner needs few digits, and half the memory is nearly half the time.
///
/// Null if the coarsening stalls before the coarsest level is small enough to factorise, and for a
/// matrix with a diagonal entry that is not positive.
///
/// Source: Y. Notay, Electron. Trans. Numer. Anal. 37 (2010) 123-146.
std::unique_ptr<Preconditioner> MakePairwiseMultigrid(const CsrSystem& A);

}  // namespace kvx3d_solver

#endif
