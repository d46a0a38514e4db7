#ifndef KVX3D_MATRIX_SOLVER_SPARSE_LU_H
#define KVX3D_MATRIX_SOLVER_SPARSE_LU_H

#include <memory>

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

/// Supernodal LU factorization of a sparse matrix with partial pivoting, columns in the order of
/// COLAMD, which keeps the fill small, and rows scaled by powers of two to a common size. Time and
/// memory grow much faster than n: the caller bounds them by EstimateLuCost() first.
///
/// Sources: Eigen's SparseLU; J. W. Demmel et al., SIAM J. Matrix Anal. Appl. 20 (1999) 720-755,
/// doi:10.1137/S0895479895291765; T. A. Davis et al., ACM Trans. Math. Softw. 30 (2004) 353-376,
/// doi:10.1145/1024074.1024079.
class SparseLu {
public:
    enum class State {
        Ready,
        Singular,    ///< a column has no pivot other than exact zeros
        OutOfMemory  ///< the factors did not fit
    };

    /// Factorizes A.
    explicit SparseLu(const CsrSystem& A);
    ~SparseLu();
    SparseLu(const SparseLu&) = delete;
    SparseLu& operator=(const SparseLu&) = delete;

    State Result() const { return state; }

    /// x = A^-1 b. Only if Result() is Ready.
    void Solve(const Vector& b, Vector& x) const;

private:
    struct Factors;
    std::unique_ptr<Factors> factors;
    Vector rowScale;  ///< n powers of two
    State state;
};

}  // namespace kvx3d_solver

#endif
