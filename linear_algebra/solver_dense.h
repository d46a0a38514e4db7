#ifndef KVX3D_LINEAR_ALGEBRA_SOLVER_DENSE_H
#define KVX3D_LINEAR_ALGEBRA_SOLVER_DENSE_H

#include "host_link/export.h"

class CKVXMatrixSolver;

/// Solves small dense systems, inverts, multiplies and prints dense matrices.
///
/// Matrices are tables of row pointers, A[i][j] with i and j from 1; vectors are 1-based. Slot 0
/// of the arguments is not read. Sizes must not be negative, and n * n must fit an int.
///
/// No operation uses pivoting or detects a singular matrix: a zero pivot gives infinities or NaN
/// without a message. Only one operation at a time may run on an object, because the work areas
/// are members.
///
/// A copy shares the blocks and the external solver with its source: only one of the two may be
/// destroyed.
///
/// Everything is printed on standard output with a field width of 10, and otherwise always in the
/// default number format: the format settings of std::cout have no effect.
class KVX3D_API CKVX_ACMT_MatSolver_Dense {
public:
    CKVX_ACMT_MatSolver_Dense();
    CKVX_ACMT_MatSolver_Dense(const CKVX_ACMT_MatSolver_Dense&) = default;
    CKVX_ACMT_MatSolver_Dense& operator=(const CKVX_ACMT_MatSolver_Dense&) = default;
    virtual ~CKVX_ACMT_MatSolver_Dense();

    /// Solves A x = rhs: n = 3..18 by elimination, any other n by the external solver.
    ///
    /// The external solver starts from x. For n = 2 the closed-form solution is stored in x before
    /// that. Each call that uses the external solver creates a new solver object and does not
    /// release the previous one.
    ///
    /// @param[in]     A    n by n; for the external solver, negative diagonals are negated together
    ///                     with their right-hand sides, but off-diagonals keep their signs
    /// @param[in]     rhs  entries 1..n
    /// @param[in,out] x    entries 1..n
    /// @return 0 after an elimination, else the status of the external solver
    int SolveDenseMatrix(double** A, double* rhs, int n, double* x);

    /// Inverts A by an LU factorization (Crout's form: U has the unit diagonal).
    ///
    /// Each call leaves its work block of n * n doubles allocated.
    ///
    /// @param[in]  A        n by n
    /// @param[out] inverse  n by n, may be A; unchanged if n is less than 2
    void Inverse(double** A, double** inverse, int n);

    /// C = A B, where A has `rows` by `inner` and B `inner` by `cols` entries.
    ///
    /// Each call leaves the last row of its work table, cols + 1 doubles, allocated.
    ///
    /// @param[out] C  rows by cols; may be A or B
    /// @param rows    at most `inner`: the product is formed in a table of inner rows
    void Multiply(double** A, double** B, double** C, int rows, int inner, int cols);

    /// Prints a system, left-hand side and right-hand side.
    void CheckMatrix(double** A, double* rhs, int n);

    /// Prints a matrix.
    void CheckMatrix(double** A, int rows, int cols);

    /// Prints A as compressed rows.
    void CheckCSR(double** A, int n);

    // Compressed rows of the full matrix, zeros included, diagonal first in each row; 1-based,
    // owned, null between solves.
    int* Ia;            ///< rowsN + 2 row starts, Ia[1] == 1
    int* Ja;            ///< nonZeroN + 1 column numbers
    double* Aa;         ///< nonZeroN + 1 values
    double tolerance;   ///< 1.1e-16; the first external solve sets it to 1.1e-06
    int maxIterations;  ///< 5000; the first external solve sets it to 50
    int nonZeroN;       ///< n * n
    int rowsN;          ///< n
    int colsN;          ///< n

    double gaussMatrix[21][21];  ///< elimination, 1-based, right-hand side in column n + 1
    double gaussSolution[21];    ///< elimination, 1-based

    CKVXMatrixSolver* solver;  ///< of the last external solve, owned; null before the first one

private:
    /// Elimination without pivoting in the work areas; n is at most 19.
    void GaussElimination(int n, double** A, double* rhs, double* x);

    /// Fills Ia, Ja, Aa. @return true
    bool MatrixToCSR(double** A, int n);

    /// The same, but negates each negative diagonal together with its rhs[i].
    /// @return true
    bool MatrixToCSR_DiagPositive(double** A, double* rhs, int n);

    /// Allocates Ia, Ja, Aa for n rows and creates a solver. @return true
    bool SetDimension(int n);

    /// Releases Ja, Ia and Aa.
    void ClearData();
};

#endif
