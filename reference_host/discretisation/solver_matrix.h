#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_SOLVER_MATRIX_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_SOLVER_MATRIX_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "linear_algebra/solver_bicgstab.h"
#include "linear_algebra/solver_samg.h"

namespace host {

/// The two iterative solvers of the toolbox.
enum class MatrixSolver {
    Bicgstab,  ///< the toolbox's own
    Samg       ///< the external library
};

/// Name on the command line: "bicgstab", "samg".
const char* Name(MatrixSolver solver);
/// The solver of that name, if there is one.
std::optional<MatrixSolver> MatrixSolverNamed(const std::string& name);

/// A square sparse matrix with the solver it was made for: the only place that knows which.
///
/// Neither solver says whether it converged, and each has a stop rule of its own. Judge by the
/// residual.
class SolverMatrix {
public:
    SolverMatrix(int rows, MatrixSolver solver);

    /// What the operators assemble into.
    CKVX_ART_SparseMatrix& Matrix() { return *matrix; }
    MatrixSolver Solver() const { return samg ? MatrixSolver::Samg : MatrixSolver::Bicgstab; }

    /// Residual reduction that a call aims at: by BiCGSTAB against its first iteration, by SAMG
    /// against the first guess.
    void SetTolerance(double tolerance);
    /// Most iterations of a call.
    void SetTimes(int times);

    /// Improves x towards A x = b, once. SAMG measures by the right-hand side alone and would take
    /// a fair first guess for the solution, so it solves for the correction.
    ///
    /// @param[in]     b       entries 1..rows
    /// @param[in,out] x       first guess and result, entries 1..rows
    /// @param         target  2-norm of the residual that is good enough, even if the tolerance
    ///                        asks for less; BiCGSTAB has no use for it
    /// @return iterations; SAMG tells none: 0
    int Solve(const std::vector<double>& b, std::vector<double>& x, double target = 0.0);

private:
    void SolveCorrection(const std::vector<double>& b, std::vector<double>& x, double target);

    std::unique_ptr<CKVX_ART_SparseMatrix> matrix;
    CKVX_ART_MatSolver_BiCGSTAB* bicgstab = nullptr;  // `matrix`, or null
    CKVX_ART_MatSolver_SAMG* samg = nullptr;          // `matrix`, or null
    double samgTolerance = 0.0;
};

}  // namespace host

#endif
