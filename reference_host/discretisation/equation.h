#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_EQUATION_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_EQUATION_H

#include <vector>

#include "reference_host/discretisation/boundary_conditions.h"
#include "reference_host/discretisation/solver_matrix.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/discretisation/stencil_records.h"

namespace host {

/// The stencils for which the matrix pattern has entries.
enum class Reach {
    Normal,  ///< diffusion alone, with a third fewer entries than Near
    Near,    ///< also Face, Left and Right, for upwind and central schemes
    Far      ///< also the far-upstream stencils
};

/// The result of a linear solve, measured by the 2-norm of the true residual b - A x.
struct SolveReport {
    double initialResidual = 0.0;  ///< of the first guess
    double finalResidual = 0.0;    ///< of the solution returned
    double target = 0.0;           ///< largest residual that counts as converged
    int iterations = 0;            ///< of all calls; 0 with SAMG, which reports no count
    int calls = 0;                 ///< of the solver
    bool Converged() const { return finalResidual <= target; }
};

/// The matrix of one implicit transport equation; the unknowns are cells and ghost cells.
///
/// To assemble it, call Clear(), apply the toolbox's operators to `matrix`, add further diagonal
/// terms and call CloseRows(). The caller owns the right-hand sides, entries 1..NcAll: the source
/// in the rows of active cells, ghost rows from FillGhostRows(), and 0 in the rows of cut cells.
///
/// Every ghost cell has a row of its own, because the solver needs a square matrix.
class Equation {
public:
    /// Declares the whole pattern, so that no operator meets an undeclared position: each of those
    /// would cost a copy of the matrix.
    Equation(const StencilBuilder& builder, StencilRecords& records, Reach reach,
             MatrixSolver matrixSolver = MatrixSolver::Bicgstab);
    Equation(const Equation&) = delete;
    Equation& operator=(const Equation&) = delete;

    /// Sets all values to 0 and keeps the pattern.
    void Clear() { matrix.Clear(); }

    /// Adds the ghost rows and the identity rows of cut cells. Each ghost row is multiplied by a
    /// scale of its cell; rows of unit size would dominate the norm of the residual.
    ///
    /// @param cellScale  positive scale by cell, entries 1..Nc; if empty, the magnitude of the
    ///                   cell's diagonal entry
    void CloseRows(const BoundaryConditions& conditions, const std::vector<double>& cellScale = {});
    /// Writes the right-hand side of the ghost rows, with the scales of the last CloseRows().
    void FillGhostRows(const BoundaryConditions& conditions, std::vector<double>& rhs) const;
    /// Computes the ghost values in `phi` from its cell values and the conditions.
    void FillGhosts(const BoundaryConditions& conditions, std::vector<double>& phi) const;

    /// 2-norm of b - A x.
    double Residual(const std::vector<double>& rhs, std::vector<double>& phi);

    /// Solves until the true residual is at most `reduction` times that of a zero field. The solver
    /// stops relative to the residual after its first iteration and does not report an early end.
    /// The true residual is therefore computed here, and the solver is called again while it is too
    /// large, at most `maxCalls` times in all.
    SolveReport Solve(const std::vector<double>& rhs, std::vector<double>& phi, double reduction,
                      int maxCalls = 5);

    SolverMatrix solver;            ///< owns `matrix`; set tolerance and iteration limit here
    CKVX_ART_SparseMatrix& matrix;  ///< the matrix of `solver`
    CKVX_ACMT_GV& gv;               ///< the record that the operators read

private:
    void DeclarePattern(Reach reach);
    void DeclareSide(int row, int first, int second, const CMAFVMFaceData& record, Reach reach);
    void DeclarePair(int row, const int* ids);
    void DeclareBoundary(Boundary kind, const CMAFVMFaceData* records, Reach reach);
    void AddGhostRow(int ghost, int cell, const GhostCondition& condition, const Stencil& mirrored);

    const StencilBuilder& builder;
    std::vector<Stencil> mirrored;   // by wall face, empty on physical walls
    std::vector<double> ghostScale;  // by ghost - Nc
};

}  // namespace host

#endif
