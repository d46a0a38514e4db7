#ifndef KVX3D_LINEAR_ALGEBRA_SOLVER_DENSE_H
#define KVX3D_LINEAR_ALGEBRA_SOLVER_DENSE_H

#include "host_link/export.h"

class CKVXMatrixSolver;

/// Solves small dense systems, inverts, multiplies and prints dense matrices.
///
/// Matrices are tables of row pointers, A[i][j] with i and j from 1; vectors are 1-based. Slot 0
/// of the arguments is not read. Sizes are not negative, and n * n fits an int.
///
/// No operation pivots and none looks for a singular matrix: a zero pivot gives infinities or
/// not-a-number, without a message. One operation at a time per object: the work areas are
/// members.
///
/// A copy shares the blocks and the external solver with its source: only one of the two may be
/// destroyed.
class KVX3D_API CKVX_ACMT_MatSolver_Dense {
public:
    CKVX_ACMT_MatSolver_Dense();
    CKVX_ACMT_MatSolver_Dense(const CKVX_ACMT_MatSolver_Dense&) = default;
    CKVX_ACMT_MatSolver_Dense& operator=(const CKVX_ACMT_MatSolver_Dense&) = default;
    virtual ~CKVX_ACMT_MatSolver_Dense();

    /// Solves A x = rhs: n = 3..18 by elimination, any other n by the external solver.
    ///
    /// The external solver starts from x; for n = 2 from the closed-form solution, which is put
    /// into x first. Each call that reaches it creates a new solver object and leaves the one
    /// before behind, unreleased.
    ///
    /// @param[in]     A    n by n; the external path reads negative diagonals as positive ones and
    ///                     negates their right-hand sides, off-diagonals keep their signs
    /// @param[in]     rhs  entries 1..n
    /// @param[in,out] x    entries 1..n
    /// @return 0 after an elimination, else the status of the external solver
    int SolveDenseMatrix(double** A, double* rhs, int n, double* x);

    /// Inverts A by an LU factorisation (Crout's form: U has the unit diagonal).
    ///
    /// Each call leaves its work block of n * n doubles unreleased.
    ///
    /// @param[in]  A        n by n
    /// @param[out] inverse  n by n, may be A; untouched if n is less than 2
    void Inverse(double** A, double** inverse, int n);

    /// C = A B, A being rows by inner and B inner by cols.
    ///
    /// Each call leaves the last row of its work table, cols + 1 doubles, unreleased.
    ///
    /// @param[out] C  rows by cols; may be A or B
    /// @param rows    at most `inner`: the product is formed in a table of inner rows
    void Multiply(double** A, double** B, double** C, int rows, int inner, int cols);

    /// Prints a system, left-hand side and right-hand side.
    void CheckMatrix(double** A, double* rhs, int n);

    /// Prints a matrix.
    void CheckMatrix(double** A, int rows, int cols);

    /// Prints the compressed rows that stand for A.
    void CheckCSR(double** A, int n);

    // Compressed rows of the full matrix, zeros included, diagonal first in each row; 1-based,
    // owned, null between solves.
    int* Ia;            ///< rowsN + 2 row starts, Ia[1] == 1
    int* Ja;            ///< nonZeroN + 1 column numbers
    double* Aa;         ///< nonZeroN + 1 values
    double tolerance;   ///< 1.1e-16, and 1.1e-06 from the first external solve on
    int maxIterations;  ///< 5000, and 50 from the first external solve on
    int nonZeroN;       ///< n * n
    int rowsN;          ///< n
    int colsN;          ///< n

    double gaussMatrix[21][21];  ///< elimination, 1-based, right-hand side in column n + 1
    double gaussSolution[21];    ///< elimination, 1-based

    CKVXMatrixSolver* solver;  ///< external solver of the last use, owned; null before

private:
    /// Elimination without pivoting in the work areas; n is at most 19.
    void GaussElimination(int n, double** A, double* rhs, double* x);

    /// Fills Ia, Ja, Aa. @return true
    bool MatrixToCSR(double** A, int n);

    /// MatrixToCSR() with negative diagonals turned positive, rhs[i] negated with them.
    /// @return true
    bool MatrixToCSR_DiagPositive(double** A, double* rhs, int n);

    /// Allocates Ia, Ja, Aa for n rows and creates a solver. @return true
    bool SetDimension(int n);

    /// Releases Ja, Ia and Aa.
    void ClearData();
};

#endif
