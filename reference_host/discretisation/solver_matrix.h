#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_SOLVER_MATRIX_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_SOLVER_MATRIX_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "linear_algebra/solver_bicgstab.h"
#include "linear_algebra/solver_samg.h"
#include "reference_host/discretisation/linear_solve.h"

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
/// Neither solver reports whether it converged, and their stopping criteria differ. Each call is
/// therefore measured by the true residual.
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
    /// BiCGSTAB stops without notice where one of its scalar products is below 1e-30. Where the
    /// residual of the first guess is below 2^-44 or above 2^44, the solver is therefore given the
    /// system multiplied by a power of two, with a residual near 1, and x is scaled back. Rows of
    /// very large or very small entries are multiplied as well (see RowScaling). Between these
    /// limits the system is passed on as it is, and every iterate keeps its bits.
    ///
    /// @param[in]     b       right-hand side, entries 1..rows
    /// @param[in,out] x       first guess and result, entries 1..rows; unchanged without a call of
    ///                        the solver if the residual is exactly 0
    /// @param         target  2-norm of the residual at which SAMG may stop although the tolerance
    ///                        is not reached; BiCGSTAB ignores it
    LinearSolve Solve(const std::vector<double>& b, std::vector<double>& x, double target = 0.0);

    /// 2-norm of b - A x.
    double Residual(const std::vector<double>& b, std::vector<double>& x);

private:
    std::vector<double> Defect(const std::vector<double>& b, std::vector<double>& x);
    double RoundingLevel(const std::vector<double>& b, const std::vector<double>& x) const;
    void Call(const std::vector<double>& b, const std::vector<double>& defect,
              std::vector<double>& x, double target, LinearSolve& report);

    std::unique_ptr<CKVX_ART_SparseMatrix> matrix;
    CKVX_ART_MatSolver_BiCGSTAB* bicgstab = nullptr;  // `matrix`, or null
    CKVX_ART_MatSolver_SAMG* samg = nullptr;          // `matrix`, or null
    double samgTolerance = 0.0;
};

}  // namespace host

#endif
