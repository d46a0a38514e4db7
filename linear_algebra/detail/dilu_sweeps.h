#ifndef KVX3D_LINEAR_ALGEBRA_DETAIL_DILU_SWEEPS_H
#define KVX3D_LINEAR_ALGEBRA_DETAIL_DILU_SWEEPS_H

#include "linear_algebra/detail/csr_rows.h"

/// The two sweeps of the DILU preconditioner, and the matrix product that follows them.
///
/// Every sum of a row is formed by one accumulator in storage order, whichever kernel runs, so
/// that all of them give the same bits. What differs is how a sweep finds the entries it needs,
/// which depends on how the rows are stored.
namespace KVX3DART {

/// What a pass over the column numbers tells about the order of the rows.
struct RowShape {
    /// Behind the diagonal each row stores columns below it, then columns above it up to n, and
    /// nothing else. True after a compression; an inserted entry ends it.
    bool partitioned;
    int reach;  ///< the largest distance from a row down to its smallest column
};

RowShape InspectRows(const CsrRows& A);

/// What the sweeps work with. Borrowed.
struct DiluSweeps {
    CsrRows A;        ///< the diagonal first in each row; columns above n are left out
    RowShape shape;   ///< of A; {false, 0} serves rows in any order
    const double* D;  ///< inverted DILU diagonal, 1..n
    double* y;        ///< intermediate between the sweeps, 1..n
};

/// y[i] = (rhs[i] - sum of y[Ja[k]] Aa[k] over columns below i) D[i], i = first..last.
/// Needs y of the rows before `first`.
void ForwardSweep(const DiluSweeps& sweeps, const double* rhs, int first, int last);

/// result[i] = y[i] - (sum of result[Ja[k]] Aa[k] over columns above i) D[i], i = n..1.
/// For rows of any shape.
void BackwardSweep(const DiluSweeps& sweeps, double* result);

/// The backward sweep, and product = A result.
///
/// A row of the product is formed once the sweep has passed its smallest column, `reach` rows
/// behind. That row is still in the cache, so the matrix comes from memory once for both; and its
/// products fill the time in which the sweep, one long chain of additions, waits for the row
/// before.
void BackwardSweepWithProduct(const DiluSweeps& sweeps, double* result, double* product);

}  // namespace KVX3DART

#endif
