#ifndef KVX3D_MATRIX_SOLVER_CSR_SYSTEM_H
#define KVX3D_MATRIX_SOLVER_CSR_SYSTEM_H

#include <optional>
#include <vector>

namespace kvx3d_solver {

using Vector = std::vector<double>;

/// The arrays of one call, as CKVXMatrixSolver::solveMatrix() receives them: addressed from 0, with
/// row and column numbers from 1.
struct CallerArrays {
    int n;
    int nonZeroN;
    const int* Ia;      ///< n + 1 row starts
    const int* Ja;      ///< nonZeroN columns
    const double* Aa;   ///< nonZeroN values
    const double* rhs;  ///< n values
};

/// The system that the methods work on: a 0-based copy with sorted rows and without negative
/// diagonals.
///
/// Matrix and right-hand side are each divided by a power of two, so that the squares in the norms
/// neither overflow nor vanish. That is exact and leaves the relative residual unchanged; the
/// solution differs by the factor 2^solutionExponent.
struct CsrSystem {
    int n = 0;
    std::vector<int> rowStart;  ///< n + 1 positions, rowStart[0] == 0
    std::vector<int> column;    ///< ascending within a row
    std::vector<int> diagonal;  ///< n positions in `value`
    Vector value;               ///< largest magnitude in [1, 2), or all zero
    Vector rhs;                 ///< likewise
    double rhsNorm = 0.0;       ///< 2-norm of rhs
    int solutionExponent = 0;   ///< the caller's x is this system's times 2^solutionExponent
};

/// Checks and copies the arrays.
///
/// @return std::nullopt if the arrays are no system: null pointers, row starts that do not begin at
///         1, do not ascend or do not end at nonZeroN + 1, columns outside 1..n or repeated, a row
///         without diagonal, a matrix or right-hand side entry that is not finite
std::optional<CsrSystem> ReadSystem(const CallerArrays& arrays);

/// Sorts the entries begin..end - 1 of a row, one value per column, by column.
template <typename Value>
void SortRow(std::vector<int>& columns, std::vector<Value>& values, int begin, int end);

/// Sizes the arrays that have an entry for each row.
void SetRowCount(CsrSystem& system, int n);

/// Completes a row whose entries stand at begin..end - 1 in any order: sorts them, notes where the
/// diagonal is and where the next row starts, and negates row and right-hand side if the diagonal
/// is negative. Aggregation-based multigrid fails on rows of mixed sign.
///
/// @return false if the row has no diagonal or a column occurs twice
bool FinishRow(CsrSystem& system, int row, int begin, int end);

/// For each row the power of two that brings its largest magnitude into [1, 2), or 1 for a row of
/// zeros. A factorization of unscaled rows would choose its pivots by their units.
Vector RowScales(const CsrSystem& A);

/// True if the matrix is symmetric to rounding.
bool IsSymmetric(const CsrSystem& A);

/// y = A x. The sizes must fit.
void Multiply(const CsrSystem& A, const Vector& x, Vector& y);

/// r = b - A x; returns its 2-norm, which is infinite if x holds a value that is not finite.
double Residual(const CsrSystem& A, const Vector& x, Vector& r);

double Dot(const Vector& a, const Vector& b);
double Norm(const Vector& a);

}  // namespace kvx3d_solver

#endif
