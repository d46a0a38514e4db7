#ifndef KVX3D_MATRIX_SOLVER_ILU0_H
#define KVX3D_MATRIX_SOLVER_ILU0_H

#include "matrix_solver/preconditioner.h"

namespace kvx3d_solver {

/// Incomplete LU factorization without fill.
///
/// A pivot that is negligible relative to its row is replaced by the row's largest entry. The
/// factors then approximate the matrix less well, but they can always be applied.
///
/// Source: Y. Saad, Iterative Methods for Sparse Linear Systems, 2nd ed., SIAM 2003, algorithm
/// 10.4.
class Ilu0 : public Preconditioner {
public:
    /// Keeps a reference to A for its pattern; A must outlive the object.
    explicit Ilu0(const CsrSystem& A);

    void Apply(const Vector& r, Vector& z) override;

private:
    const CsrSystem& A;
    Vector factors;          ///< L and U on A's pattern, L without its unit diagonal
    Vector inverseDiagonal;  ///< of U
};

}  // namespace kvx3d_solver

#endif
