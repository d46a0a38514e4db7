#ifndef KVX3D_LINEAR_ALGEBRA_DILU_SWEEPS_H
#define KVX3D_LINEAR_ALGEBRA_DILU_SWEEPS_H

/// Row kernels of the BiCGSTAB solver: the two DILU sweeps and the matrix product, on ranges of
/// rows.
///
/// Every sum of a row is formed by one accumulator in storage order, whichever kernel runs, so
/// that all of them give the same bits. What differs is how a sweep finds the entries it needs,
/// which depends on how the rows are stored.
namespace KVX3DART {

/// Compressed rows as the kernels read them: 1-based, the diagonal first in each row. Borrowed.
struct CsrRows {
    int n;             ///< rows; columns above n are left out of both sweeps
    const int* Ia;     ///< row starts, 1..n + 1
    const int* Ja;     ///< column numbers
    const double* Aa;  ///< values
};

/// What a pass over the column numbers tells about the order of the rows.
struct RowShape {
    /// Behind the diagonal each row stores columns below it, then columns above it up to n, and
    /// nothing else. True after a compression; an inserted entry ends it.
    bool partitioned;
    int reach;  ///< the largest distance from a row down to its smallest column
};

RowShape InspectRows(const CsrRows& A);

/// y[i] = (rhs[i] - sum of y[Ja[k]] Aa[k] over columns below i) D[i], i = first..last.
/// Needs y of the rows before `first`.
void ForwardSweep(const CsrRows& A, bool partitioned, const double* D, const double* rhs, double* y,
                  int first, int last);

/// result[i] = y[i] - (sum of result[Ja[k]] Aa[k] over columns above i) D[i], i = n..1.
/// For rows in any order.
void BackwardSweep(const CsrRows& A, const double* D, const double* y, double* result);

/// The backward sweep, and product = A result.
///
/// A row of the product is formed once the sweep has passed its smallest column, `reach` rows
/// behind. That row is still in the cache, so the matrix comes from memory once for both; and its
/// products fill the time in which the sweep, one long chain of additions, waits for the row
/// before.
void BackwardSweepWithProduct(const CsrRows& A, const RowShape& shape, const double* D,
                              const double* y, double* result, double* product);

}  // namespace KVX3DART

#endif
