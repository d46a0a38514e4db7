#ifndef KVX3D_MATRIX_SOLVER_DENSE_LU_H
#define KVX3D_MATRIX_SOLVER_DENSE_LU_H

#include <vector>

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

/// LU factorisation of the full matrix with partial pivoting on equilibrated rows.
///
/// A pivot at or below the threshold counts as zero: its column is passed over and its unknown
/// becomes 0. A consistent singular system so still gets a solution; whether it is one, the
/// caller's residual tells.
///
/// Source: G. H. Golub, C. F. Van Loan, Matrix Computations, 4th ed., algorithms 3.4.1 and 3.2.3.
class DenseLu {
public:
    /// Factorises. `zeroPivot` is relative to the largest entry of a row, 0 for exact zeros only.
    DenseLu(const CsrSystem& A, double zeroPivot);

    /// x = A^-1 b. x and b may not be the same vector.
    void Solve(const Vector& b, Vector& x) const;

    int ZeroPivots() const { return zeroPivots; }

private:
    void FactorPanel(int begin, int end, double zeroPivot);
    void UpdateBehind(int begin, int end);
    double* Row(int i) { return &factors[static_cast<std::size_t>(i) * n]; }
    const double* Row(int i) const { return &factors[static_cast<std::size_t>(i) * n]; }

    int n;
    int zeroPivots = 0;
    Vector factors;             ///< n x n by rows: L below the diagonal, U on and above it
    Vector rowScale;            ///< powers of two, by original row
    std::vector<int> rowOrder;  ///< original row now standing at each place
};

}  // namespace kvx3d_solver

#endif
