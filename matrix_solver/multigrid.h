#ifndef KVX3D_MATRIX_SOLVER_MULTIGRID_H
#define KVX3D_MATRIX_SOLVER_MULTIGRID_H

#include <memory>

#include "matrix_solver/preconditioner.h"

namespace kvx3d_solver {

/// True if the build found DUNE-ISTL; without it MakeMultigrid() has nothing to offer.
bool HasMultigrid();

/// One V-cycle of aggregation-based algebraic multigrid, ILU(0) as smoother, a direct solver on
/// the coarsest level.
///
/// Null if the build has no multigrid, or if the coarsening stalls so early that the coarsest
/// level is too large to factorise.
///
/// Source: M. Blatt, P. Bastian, Applied Parallel Computing, LNCS 4699 (2007) 666-675,
/// doi:10.1007/978-3-540-75755-9_82.
///
/// @throws std::exception  whatever the set-up meets
std::unique_ptr<Preconditioner> MakeMultigrid(const CsrSystem& A);

}  // namespace kvx3d_solver

#endif
