#ifndef KVX3D_MATRIX_SOLVER_DENSE_LU_H
#define KVX3D_MATRIX_SOLVER_DENSE_LU_H

#include <memory>

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

/// LU factorization of the full matrix, its rows scaled by powers of two to a common size first.
///
/// Sources: Eigen's PartialPivLU and FullPivLU; G. H. Golub, C. F. Van Loan, Matrix Computations,
/// 4th ed., algorithms 3.4.1 and 3.4.2.
class DenseLu {
public:
    enum class Pivoting {
        Partial,  ///< fast; serves regular matrices only
        Full      ///< five times slower, finds the rank of a singular matrix
    };

    /// Factorizes A.
    DenseLu(const CsrSystem& A, Pivoting pivoting);
    ~DenseLu();
    DenseLu(const DenseLu&) = delete;
    DenseLu& operator=(const DenseLu&) = delete;

    /// Number of pivots that count as zero: with partial pivoting those that are exactly zero, with
    /// full pivoting those at or below n times the machine epsilon, relative to the largest pivot.
    int ZeroPivots() const { return zeroPivots; }

    /// x = A^-1 b. After full pivoting a singular system gets a solution with a zero for each zero
    /// pivot; the residual shows whether the system was consistent. After partial pivoting with a
    /// zero pivot the result is not finite.
    void Solve(const Vector& b, Vector& x) const;

private:
    struct Factors;
    std::unique_ptr<Factors> factors;
    Vector rowScale;  ///< n powers of two
    int zeroPivots = 0;
};

}  // namespace kvx3d_solver

#endif
