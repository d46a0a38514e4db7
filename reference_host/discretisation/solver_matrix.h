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
    Bicgstab,  ///< BiCGSTAB with DILU, part of the toolbox
    Samg       ///< the front to the external solver library
};

/// Name of a solver on the command line: "bicgstab" or "samg".
const char* Name(MatrixSolver solver);
/// The solver with this name, if there is one.
std::optional<MatrixSolver> MatrixSolverNamed(const std::string& name);

/// A square sparse matrix together with its solver, so that all other code is independent of the
/// choice.
///
/// Neither solver reports whether it converged, and their stopping criteria differ. Compute the
/// true residual to find out.
class SolverMatrix {
public:
    SolverMatrix(int rows, MatrixSolver solver);

    /// The matrix into which the operators assemble.
    CKVX_ART_SparseMatrix& Matrix() { return *matrix; }
    MatrixSolver Solver() const { return samg ? MatrixSolver::Samg : MatrixSolver::Bicgstab; }

    /// Sets the residual reduction of a call: relative to the residual after the first iteration
    /// with BiCGSTAB, relative to that of the first guess with SAMG.
    void SetTolerance(double tolerance);
    /// Sets the largest number of iterations of a call.
    void SetTimes(int times);

    /// Calls the solver once for A x = b. SAMG compares the residual with the right-hand side only
    /// and would return a fair first guess unchanged, so it solves for the correction of x.
    ///
    /// @param[in]     b       right-hand side, entries 1..rows
    /// @param[in,out] x       first guess and result, entries 1..rows
    /// @param         target  2-norm of the residual at which SAMG may stop although the tolerance
    /// is
    ///                        not reached; BiCGSTAB ignores it
    /// @return number of iterations; 0 with SAMG, which reports none
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
