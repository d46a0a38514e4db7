#ifndef KVX3D_LINEAR_ALGEBRA_SOLVER_BICGSTAB_H
#define KVX3D_LINEAR_ALGEBRA_SOLVER_BICGSTAB_H

#include "host_link/export.h"
#include "linear_algebra/sparse_matrix.h"

/// A sparse matrix that solves itself: BiCGSTAB, preconditioned with DILU.
///
/// The operators assemble into the object, then MatSolve() works on what they left:
///
///     CKVX_ART_MatSolver_BiCGSTAB A(n);
///     ...                                   // AddIndex, then the operators
///     A.SetTolerance(1e-10);
///     A.MatSolve(b, x);
///     if (A.GetIterTimes() >= A.GetTimes()) ...
///
/// All vectors are 1-based with rowsN entries. Nothing is allocated after construction. One solve
/// at a time per object: the work vectors are members. The matrix must store the diagonal of every
/// row and no column above rowsN; the second is not checked.
///
/// A copy shares all blocks with its source: only one of the two may be destroyed.
///
/// Source: H. A. van der Vorst, SIAM J. Sci. Stat. Comput. 13 (1992) 631-644,
/// doi:10.1137/0913035; D-ILU: Barrett et al., Templates, SIAM 1994, section 3.4.2.
class KVX3D_API CKVX_ART_MatSolver_BiCGSTAB : public CKVX_ART_SparseMatrix {
public:
    /// A square system of n rows.
    explicit CKVX_ART_MatSolver_BiCGSTAB(int n);

    /// A matrix of any shape. DILU() and SolveDILU() leave columns above rowsN out; MatSolve()
    /// needs a matrix without such entries.
    CKVX_ART_MatSolver_BiCGSTAB(int rows, int cols);

    CKVX_ART_MatSolver_BiCGSTAB(const CKVX_ART_MatSolver_BiCGSTAB&) = default;
    CKVX_ART_MatSolver_BiCGSTAB& operator=(const CKVX_ART_MatSolver_BiCGSTAB&) = default;
    ~CKVX_ART_MatSolver_BiCGSTAB() override;

    /// Sets the defaults and allocates the ten vectors. The constructors have done this: a second
    /// run drops the old vectors without releasing them.
    void DefaultConstructorProcedure();

    /// Solves A x = b.
    ///
    /// The iteration ends when the residual norm has fallen to `tolerance` times the norm after
    /// the first iteration, when `times` iterations are done, or at a breakdown (a scalar of the
    /// recurrence below 1e-30 in magnitude). A breakdown leaves in x what was reached by then.
    /// A matrix that was declared but not filled is compressed first, which leaves it all zero.
    ///
    /// @param[in]     b  right-hand side, entries 1..rowsN
    /// @param[in,out] x  first guess on entry, solution on return, entries 1..rowsN
    /// @return true on every path, breakdown and exhausted `times` included; the caller judges
    ///         by GetIterTimes() and GetRnorm()
    /// @throws LinearSolverException  a row stores no diagonal; x is untouched
    bool MatSolve(const double* b, double* x);

    /// Computes the inverted DILU diagonal of the compressed matrix; each row's diagonal must
    /// stand first.
    ///
    /// @param[out] D  entries 1..rowsN
    void DILU(double* D);

    /// Applies the preconditioner: result = ((D^-1 + L) D (D^-1 + U))^-1 rhs, with L and U the
    /// strict triangles of the matrix and `y` as intermediate.
    ///
    /// @param[in]  D       what DILU() computed, entries 1..rowsN
    /// @param[in]  rhs     entries 1..rowsN
    /// @param[out] result  entries 1..rowsN; may be rhs
    void SolveDILU(double* D, double* rhs, double* result);

    double GetTolerance() const { return tolerance; }
    void SetTolerance(double value) { tolerance = value; }
    int GetTimes() const { return times; }
    void SetTimes(int value) { times = value; }

    /// The residual norm after the first iteration of the last solve, which is what its stop
    /// criterion is relative to; not the final norm. The initial norm if the first guess was the
    /// solution, and the figure of the solve before if the first iteration broke down.
    double GetRnorm() const { return Rnorm; }

    /// Iterations completed by the last solve; the figure of the solve before if it completed
    /// none.
    double GetIterTimes() const { return iterTimes; }

    double tolerance;  ///< stop at this reduction of the first iteration's norm, 1.1e-08
    int times;         ///< most iterations, 100000

    // Ten vectors of rowsN + 1 entries, owned. Slot 0 holds rowsN, but 0.0 in pHat.
    double* r;     ///< residual
    double* rHat;  ///< shadow residual: the first residual, fixed during a solve
    double* D;     ///< inverted DILU diagonal
    double* p;     ///< search direction
    double* pHat;  ///< preconditioned p
    double* v;     ///< A pHat
    double* y;     ///< intermediate between the two sweeps of the preconditioner
    double* s;     ///< residual after the alpha step
    double* sHat;  ///< preconditioned s
    double* t;     ///< A sHat

    double Rnorm;   ///< reference residual norm
    int iterTimes;  ///< iterations done
};

#endif
