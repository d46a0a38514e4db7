#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_ROW_SCALING_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_ROW_SCALING_H

#include <vector>

#include "linear_algebra/sparse_matrix.h"

namespace host {

/// Multiplies the rows of a matrix by powers of two as long as the object lives, if their entries
/// are very large or very small, and restores them at the end.
///
/// BiCGSTAB adds 1e-30 to every pivot of its preconditioner, which spoils the pivots of rows whose
/// entries are smaller than that, and products of several entries of 1e150 overflow. A power of two
/// changes no digit of a number, so the scaled system has the same solution. A matrix in which the
/// largest entry of every row is between 2^-80 and 2^80 (8e-25 and 1e24) in magnitude is left as it
/// is: scaling its rows would weight them differently in the norm of the residual, and its solves
/// would stop at other iterates. Smaller limits would be wrong, since central differences leave a
/// rounding error of 1e-17 on some diagonals, and the rows of ghost cells have the same scale.
class RowScaling {
public:
    /// @param matrix  compressed; borrowed
    explicit RowScaling(CKVX_ART_SparseMatrix& matrix);
    /// Multiplies the rows by the inverse powers. The values are those from before, except that
    /// entries more than 1e300 times smaller than the largest one of their row may have become 0.
    ~RowScaling();
    RowScaling(const RowScaling&) = delete;
    RowScaling& operator=(const RowScaling&) = delete;

    /// Row `row` is multiplied by 2 to this power, 1-based.
    int Exponent(int row) const { return exponents[row]; }

private:
    void Multiply(int sign);

    CKVX_ART_SparseMatrix& matrix;
    std::vector<int> exponents;  // by row
    bool active = false;
};

}  // namespace host

#endif
