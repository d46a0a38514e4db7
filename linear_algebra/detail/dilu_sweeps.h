#ifndef KVX3D_LINEAR_ALGEBRA_DETAIL_DILU_SWEEPS_H
#define KVX3D_LINEAR_ALGEBRA_DETAIL_DILU_SWEEPS_H

#include "linear_algebra/detail/csr_rows.h"

// The two sweeps of the DILU preconditioner, and the matrix product that follows them.
//
// Data layout. The diagonal stands first in each row, and in partitioned rows (see RowShape) the
// lower columns come before the upper ones:
//
//     row i of Ja   | i | columns < i ... | columns > i ... |
//     row i of Aa   | a |   values of L   |   values of U   |
//                     ^ Ia[i]                               ^ Ia[i + 1]
//
//     ForwardSweep        reads L of rows 1..n, writes y[1..n]
//     BackwardSweep       reads U of rows n..1, writes result[n..1]
//     product = A result  reads whole rows; row i + reach follows as soon as result[i] is known
//
// Every sum over a row has one accumulator and is formed in storage order, in every variant, so
// that all variants give the same bits. They differ in how a sweep finds the entries it needs,
// which depends on the order of the columns.
//
// The transcription without these variants is PlainSolveDILU() and RowTimes() in
// plain/plain_bicgstab.h.

namespace kvx3d::detail {

/// What one pass over the column numbers finds out about the order of the rows.
struct RowShape {
    /// After the diagonal, each row stores columns below it, then columns above it up to n, and
    /// nothing else. True after a compression; an inserted entry may end it.
    bool partitioned;
    int reach;  ///< the largest distance from a row number to the smallest column of that row
};

RowShape InspectRows(const CsrRows& A);

/// The operands of the sweeps. All arrays are borrowed.
struct DiluSweeps {
    CsrRows A;        ///< the diagonal first in each row; columns above n are ignored
    RowShape shape;   ///< of A; {false, 0} is valid for rows in any order
    const double* D;  ///< inverted DILU diagonal, 1..n
    double* y;        ///< intermediate vector between the two sweeps, 1..n
};

/// y[i] = (rhs[i] - sum of y[Ja[k]] Aa[k] over columns below i) D[i], for i = first..last.
/// Reads y of the rows before `first`.
void ForwardSweep(const DiluSweeps& sweeps, const double* rhs, int first, int last);

/// result[i] = y[i] - (sum of result[Ja[k]] Aa[k] over columns above i) D[i], for i = n..1.
/// For rows of any shape.
void BackwardSweep(const DiluSweeps& sweeps, double* result);

/// The backward sweep, and product = A result.
///
/// A row of the product is formed as soon as the sweep has passed the smallest column of that row,
/// which is `reach` rows later. The row is then still in the cache, so the matrix is loaded from
/// memory once for both operations. The product also fills the time in which the sweep, a single
/// chain of dependent additions, waits for the result of the previous row.
void BackwardSweepWithProduct(const DiluSweeps& sweeps, double* result, double* product);

}  // namespace kvx3d::detail

#endif
