#ifndef KVX3D_MATRIX_SOLVER_MATRIX_SOLVER_H
#define KVX3D_MATRIX_SOLVER_MATRIX_SOLVER_H

/// KVX3D_SOLVER_API marks the only class that the library exports.
#if defined(_WIN32) && defined(KVX3DMatrixSolver_EXPORTS)
#define KVX3D_SOLVER_API __declspec(dllexport)
#elif defined(_WIN32)
#define KVX3D_SOLVER_API
#else
#define KVX3D_SOLVER_API __attribute__((visibility("default")))
#endif

/// Solves one square linear system per call, for the toolbox's solver front and its dense solver.
///
/// Small and full systems go through a dense LU. From all others the trivial rows are eliminated;
/// then follow BiCGSTAB with ILU(0) where that is quick, algebraic multigrid under conjugate
/// gradients or BiCGSTAB, GMRES with ILU(0), and a sparse LU if its work is bearable. Every
/// solution is judged by the residual recomputed from the arrays given, not by what a method
/// reports.
///
/// Nothing is printed, no exception leaves the class, and no thread is started. Objects share
/// nothing: two threads may use two objects, but one object runs one solve at a time.
class KVX3D_SOLVER_API CKVXMatrixSolver {
public:
    /// What solveMatrix() returns.
    enum Status {
        Solved = 0,           ///< |b - A x| <= tolerance |b|
        ToleranceMissed = 1,  ///< x is the best iterate found, and better than the start vector
        Singular = 2,         ///< singular matrix or breakdown; x is as on entry
        BadInput = 3          ///< arrays or limits are invalid; x is untouched
    };

    /// Creates a solver. The name is part of the interface but is not read.
    explicit CKVXMatrixSolver(const char* name);
    virtual ~CKVXMatrixSolver();
    CKVXMatrixSolver(const CKVXMatrixSolver&) = delete;
    CKVXMatrixSolver& operator=(const CKVXMatrixSolver&) = delete;

    /// Non-zero: later solves try the sparse LU before any iteration. 0, the default: iterations
    /// first. Systems whose LU would take minutes are iterated in both modes.
    void SetAsDirect(int flag);

    /// Solves A x = rhs.
    ///
    /// The arrays are addressed from 0 and hold 1-based numbers: Ia[0] is 1, and row i (0-based)
    /// occupies positions Ia[i] - 1 to Ia[i+1] - 2 of Ja and Aa. Every row stores its diagonal,
    /// which the callers put first; the order inside a row does not matter, but no column may occur
    /// twice. Only x is written.
    ///
    /// @param[in]     n              rows and columns; 0 is an empty system, solved without
    ///                               touching any array
    /// @param[in]     nonZeroN       stored entries, equal to Ia[n] - 1
    /// @param[in]     Ia             n + 1 row starts, from 1
    /// @param[in]     Ja             nonZeroN column numbers, 1..n
    /// @param[in]     Aa             nonZeroN finite values
    /// @param[in]     rhs            n finite values
    /// @param[in,out] x              n values: start vector, then solution. A start that is not
    ///                               finite, or worse than zero, is replaced by zero. A start that
    ///                               already meets the tolerance stays as it is.
    /// @param[in]     tolerance      of the residual's 2-norm, relative to that of rhs; >= 0
    /// @param[in]     maxIterations  bound on Krylov steps over all methods together, >= 0;
    ///                               factorizations do not count, so 0 leaves only these
    /// @param[in]     mode           not read; the toolbox passes 1
    /// @return a Status
    int solveMatrix(int n, int nonZeroN, int* Ia, int* Ja, double* Aa, double* rhs, double* x,
                    double tolerance, int maxIterations, int mode);

private:
    struct Impl;
    Impl* impl;  ///< owned
};

#endif
