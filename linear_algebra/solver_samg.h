#ifndef KVX3D_LINEAR_ALGEBRA_SOLVER_SAMG_H
#define KVX3D_LINEAR_ALGEBRA_SOLVER_SAMG_H

#include "host_link/export.h"
#include "linear_algebra/sparse_matrix.h"

class CKVXMatrixSolver;

/// A sparse matrix whose system is solved by the external library KVX3DMatrixSolver.
///
/// It is assembled like any other sparse matrix. A solve passes on a copy of the values, in which
/// the diagonal comes first in every row and is not negative; the values in Aa keep their signs.
///
/// The status of the external solver is ignored, so this class does not report convergence. A
/// caller that needs to know computes the residual. Only one solve at a time may run on an object.
///
/// A copy shares all blocks with its source: only one of the two may be destroyed.
class KVX3D_API CKVX_ART_MatSolver_SAMG : public CKVX_ART_SparseMatrix {
public:
    /// A square system of n rows.
    explicit CKVX_ART_MatSolver_SAMG(int n);

    /// A matrix of any shape; a solve passes on its rowsN rows.
    CKVX_ART_MatSolver_SAMG(int rows, int cols);

    CKVX_ART_MatSolver_SAMG(const CKVX_ART_MatSolver_SAMG&) = default;
    CKVX_ART_MatSolver_SAMG& operator=(const CKVX_ART_MatSolver_SAMG&) = default;
    ~CKVX_ART_MatSolver_SAMG() override;

    /// Solves A x = b. A matrix that was declared but not filled is compressed first.
    ///
    /// @param[in]     b  right-hand side, entries 1..rowsN
    /// @param[in,out] x  first guess on entry, the result of the external solver on return,
    ///                   entries 1..rowsN
    /// @return true, whatever the external solver reports
    /// @throws LinearSolverException  a row stores no diagonal; x is unchanged
    bool MatSolve(const double* b, double* x);

    double GetTolerance() const { return tolerance; }
    void SetTolerance(double value) { tolerance = value; }
    int GetTimes() const { return times; }
    void SetTimes(int value) { times = value; }

    double tolerance;          ///< passed to the external solver; default 1.1e-08
    int times;                 ///< maximum number of iterations, passed on; default 100000
    CKVXMatrixSolver* solver;  ///< owned
    double* rhs;               ///< working copy of b, 1..rowsN, slot 0 rowsN, owned
    /// Working copy of Aa, slot 0 the number of stored entries, owned; null before the first
    /// solve, replaced when the entry count changes.
    double* tempValue;

private:
    void DefaultConstructorProcedure();
    void TempNonZeroValueCopy();

    /// Negates each row of the copies whose diagonal is below zero.
    void MakeDiagPositive();
};

#endif
