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

/// The mean of (LU)^-1 A 1, for a vector of ones, each entry limited to 1 in magnitude. Near 1 the
/// factors carry information across the mesh as far as the inverse does, and a Krylov method needs
/// few steps. A Poisson problem of m cells a side has 4 / m. n must be at least 1.
double IluPromise(const CsrSystem& A, Ilu0& ilu);

}  // namespace kvx3d_solver

#endif
