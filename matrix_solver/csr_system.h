#ifndef KVX3D_MATRIX_SOLVER_CSR_SYSTEM_H
#define KVX3D_MATRIX_SOLVER_CSR_SYSTEM_H

#include <optional>
#include <vector>

namespace kvx3d_solver {

using Vector = std::vector<double>;

/// The arrays of one call, as CKVXMatrixSolver::solveMatrix() receives them: addressed from 0,
/// numbers from 1.
struct CallerArrays {
    int n;
    int nonZeroN;
    const int* Ia;      ///< n + 1 row starts
    const int* Ja;      ///< nonZeroN columns
    const double* Aa;   ///< nonZeroN values
    const double* rhs;  ///< n values
};

/// The system the methods work on: a 0-based copy with sorted rows and no negative diagonal.
///
/// Matrix and right-hand side are each divided by a power of two, so that squares in the norms
/// neither overflow nor vanish. That is exact and leaves the relative residual as it is; the
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

/// Checks and copies; std::nullopt if the arrays are no system: null pointers, row starts that do
/// not begin at 1, do not ascend or do not end at nonZeroN + 1, columns outside 1..n or repeated,
/// a row without diagonal, a matrix or right-hand side entry that is not finite.
std::optional<CsrSystem> ReadSystem(const CallerArrays& arrays);

/// True if a row holds nothing but its diagonal, stored zeros aside: its unknown is known.
bool IsFixed(const CsrSystem& A, int row);

/// True if the matrix is symmetric to rounding, columns of fixed rows aside: with those unknowns
/// set the rest is a symmetric system.
bool IsSymmetric(const CsrSystem& A);

/// Sorts the entries begin..end - 1 of a row by column; for rows that are short and nearly sorted.
template <typename Value>
void SortShortRow(std::vector<int>& columns, std::vector<Value>& values, int begin, int end) {
    for (int k = begin + 1; k < end; ++k) {
        const int column = columns[k];
        const Value value = values[k];
        int place = k;
        for (; place > begin && columns[place - 1] > column; --place) {
            columns[place] = columns[place - 1];
            values[place] = values[place - 1];
        }
        columns[place] = column;
        values[place] = value;
    }
}

/// y = A x. The sizes must fit.
void Multiply(const CsrSystem& A, const Vector& x, Vector& y);

/// r = b - A x, and its 2-norm, infinite as soon as x holds a value that is not finite.
double Residual(const CsrSystem& A, const Vector& x, Vector& r);

double Dot(const Vector& a, const Vector& b);
double Norm(const Vector& a);

}  // namespace kvx3d_solver

#endif
