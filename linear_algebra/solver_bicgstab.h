#ifndef KVX3D_LINEAR_ALGEBRA_SOLVER_BICGSTAB_H
#define KVX3D_LINEAR_ALGEBRA_SOLVER_BICGSTAB_H

#include "host_link/export.h"
#include "linear_algebra/sparse_matrix.h"

/// A sparse matrix that solves its own system: BiCGSTAB, preconditioned with DILU.
///
/// The operators assemble into the object, then MatSolve() solves the assembled system:
///
///     CKVX_ART_MatSolver_BiCGSTAB A(n);
///     ...                                   // AddIndex, then the operators
///     A.SetTolerance(1e-10);
///     A.MatSolve(b, x);
///     if (A.GetIterTimes() >= A.GetTimes()) ...
///
/// All vectors are 1-based with rowsN entries. A solve allocates nothing. Only one solve at a time
/// may run on an object, because the work vectors are members. The matrix must store the diagonal
/// of every row and no column above rowsN; the second condition is not checked.
///
/// A copy shares all blocks with its source: only one of the two may be destroyed.
///
/// Source: H. A. van der Vorst, SIAM J. Sci. Stat. Comput. 13 (1992) 631-644,
/// doi:10.1137/0913035; D-ILU: Barrett et al., Templates, SIAM 1994, section 3.4.2.
class KVX3D_API CKVX_ART_MatSolver_BiCGSTAB : public CKVX_ART_SparseMatrix {
public:
    /// A square system of n rows.
    explicit CKVX_ART_MatSolver_BiCGSTAB(int n);

    /// A matrix of any shape. DILU() and SolveDILU() ignore columns above rowsN; MatSolve() needs a
    /// matrix without such entries.
    CKVX_ART_MatSolver_BiCGSTAB(int rows, int cols);

    CKVX_ART_MatSolver_BiCGSTAB(const CKVX_ART_MatSolver_BiCGSTAB&) = default;
    CKVX_ART_MatSolver_BiCGSTAB& operator=(const CKVX_ART_MatSolver_BiCGSTAB&) = default;
    ~CKVX_ART_MatSolver_BiCGSTAB() override;

    /// Sets the defaults and allocates the ten vectors. The constructors call this; a second call
    /// loses the old vectors without releasing them.
    void DefaultConstructorProcedure();

    /// Solves A x = b.
    ///
    /// The iteration ends when the residual norm has fallen to `tolerance` times the norm after
    /// the first iteration, after `times` iterations, or at a breakdown (a scalar of the
    /// recurrence is below 1e-30 in magnitude). After a breakdown x holds the last iterate.
    /// A matrix that was declared but not filled is compressed first, with all values zero.
    ///
    /// @param[in]     b  right-hand side, entries 1..rowsN
    /// @param[in,out] x  first guess on entry, solution on return, entries 1..rowsN
    /// @return true always, also after a breakdown or `times` iterations; the caller judges
    ///         convergence by GetIterTimes() and GetRnorm()
    /// @throws LinearSolverException  a row stores no diagonal; x is unchanged
    bool MatSolve(const double* b, double* x);

    /// Computes the inverted DILU diagonal of the compressed matrix. The diagonal must be the first
    /// entry of each row.
    ///
    /// @param[out] D  entries 1..rowsN
    void DILU(double* D);

    /// Applies the preconditioner: result = ((D^-1 + L) D (D^-1 + U))^-1 rhs, where L and U are the
    /// strict triangles of the matrix. Overwrites `y`.
    ///
    /// @param[in]  D       the result of DILU(), entries 1..rowsN
    /// @param[in]  rhs     entries 1..rowsN
    /// @param[out] result  entries 1..rowsN; may be the same array as rhs
    void SolveDILU(double* D, double* rhs, double* result);

    double GetTolerance() const { return tolerance; }
    void SetTolerance(double value) { tolerance = value; }
    int GetTimes() const { return times; }
    void SetTimes(int value) { times = value; }

    /// The residual norm after the first iteration of the last solve, to which the stopping
    /// criterion is relative; not the final norm. It is the initial norm if the first guess was the
    /// solution, and the value of an earlier solve if the first iteration broke down.
    double GetRnorm() const { return Rnorm; }

    /// Iterations completed by the last solve, or the value of an earlier solve if it completed
    /// none.
    double GetIterTimes() const { return iterTimes; }

    double tolerance;  ///< residual norm to reach / norm after iteration 1; default 1.1e-08
    int times;         ///< maximum number of iterations; default 100000

    // Ten vectors of rowsN + 1 entries, owned. Slot 0 holds rowsN, except in pHat, where it is 0.0.
    double* r;     ///< residual
    double* rHat;  ///< shadow residual: the first residual, fixed during a solve
    double* D;     ///< inverted DILU diagonal
    double* p;     ///< search direction
    double* pHat;  ///< preconditioned p
    double* v;     ///< A pHat
    double* y;     ///< intermediate vector between the two sweeps of the preconditioner
    double* s;     ///< residual after the step by alpha
    double* sHat;  ///< preconditioned s
    double* t;     ///< A sHat

    double Rnorm;   ///< reference residual norm
    int iterTimes;  ///< iterations completed
};

#endif
