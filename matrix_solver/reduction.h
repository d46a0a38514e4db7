#ifndef KVX3D_MATRIX_SOLVER_REDUCTION_H
#define KVX3D_MATRIX_SOLVER_REDUCTION_H

#include <vector>

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

/// Elimination of the trivial rows of a system.
///
/// A row is trivial if, apart from stored zeros, it holds nothing but its diagonal, or its diagonal
/// and one other entry that is not larger in magnitude. Blanked cells and ghost cells have such
/// rows. The row gives its unknown as
///
///     x[row] = offset + factor * x[root]
///
/// where the row `root` is not trivial, or without the second term. The reduced system consists of
/// the rows that are not trivial, with these expressions substituted. It has the same residual as
/// the full system, because the trivial rows hold up to rounding.
///
/// Source: Gaussian elimination with these diagonals as pivots; the bound on the other entry keeps
/// it stable.
class Reduction {
public:
    /// Finds the trivial rows of A, which must outlive the object.
    explicit Reduction(const CsrSystem& A);

    /// True if there is a trivial row.
    bool Removes() const { return reducedRows < full.n; }

    /// The rows that are not trivial, in their order, without stored zeros. Matrix and right-hand
    /// side keep the scale of the full system.
    CsrSystem ReducedSystem() const;

    /// The entries of a full vector that belong to the reduced system.
    Vector Restrict(const Vector& x) const;

    /// Computes the full vector x, of n entries, from a solution of the reduced system.
    void Expand(const Vector& reduced, Vector& x) const;

private:
    /// The expression that a trivial row gives.
    struct Tie {
        int root = none;  ///< row of the full system, or none
        double factor = 0.0;
        double offset = 0.0;
    };
    static constexpr int none = -1;

    bool IsTrivial(int row) const { return reducedRow[row] == none; }
    bool MakeTie(int row, Tie& found) const;
    void ResolveChains();
    void ResolveChain(int row, std::vector<int>& chain, std::vector<char>& resolved);
    void NumberRows();
    void AppendRow(int row, std::vector<int>& place, CsrSystem& reduced) const;

    const CsrSystem& full;
    std::vector<int> reducedRow;  ///< n rows of the reduced system; `none` for a trivial row
    std::vector<Tie> tie;         ///< n, of trivial rows; empty if there is none
    int reducedRows = 0;
};

}  // namespace kvx3d_solver

#endif
