#ifndef KVX3D_REFERENCE_HOST_DISCRETISATION_EQUATION_H
#define KVX3D_REFERENCE_HOST_DISCRETISATION_EQUATION_H

#include <vector>

#include "reference_host/discretisation/boundary_conditions.h"
#include "reference_host/discretisation/solver_matrix.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/discretisation/stencil_records.h"

namespace host {

/// Which stencil pairs the pattern provides for.
enum class Reach {
    Normal,  ///< diffusion alone: a third fewer entries than with the next
    Near,    ///< Face, Left and Right as well: upwind and central schemes
    Far      ///< the far-upstream pairs as well
};

/// How a linear solve went, by the true residual b - A x in the plain 2-norm.
struct SolveReport {
    double initialResidual = 0.0;  ///< with the first guess
    double finalResidual = 0.0;
    double target = 0.0;
    int iterations = 0;  ///< over all calls; 0 by SAMG, which tells none
    int calls = 0;       ///< of the solver
    bool Converged() const { return finalResidual <= target; }
};

/// The matrix of one implicit equation over cells and ghosts.
///
/// An assembly is: Clear(), the toolbox's operators on `matrix`, the caller's own diagonal terms,
/// CloseRows(). Right-hand sides are the caller's vectors, entries 1..NcAll: source in the rows of
/// active cells, ghost rows from FillGhostRows(), 0 in the rows of cut cells.
///
/// Every ghost has a row, because the solver must see no column above its row count.
class Equation {
public:
    /// Declares the whole pattern, so that no operator ever meets an unknown position: each such
    /// first touch would copy the matrix.
    Equation(const StencilBuilder& builder, StencilRecords& records, Reach reach,
             MatrixSolver matrixSolver = MatrixSolver::Bicgstab);
    Equation(const Equation&) = delete;
    Equation& operator=(const Equation&) = delete;

    /// All values to 0, the pattern stays.
    void Clear() { matrix.Clear(); }

    /// Adds the ghost rows and the identity rows of cut cells. Each ghost row is multiplied by a
    /// scale of its cell, so that unit rows do not dominate the residual norm.
    ///
    /// @param cellScale  positive scale by cell, entries 1..Nc; empty: the magnitude of the cell's
    ///                   diagonal
    void CloseRows(const BoundaryConditions& conditions, const std::vector<double>& cellScale = {});
    /// Right-hand side of the ghost rows, with the scales of the last CloseRows().
    void FillGhostRows(const BoundaryConditions& conditions, std::vector<double>& rhs) const;
    /// Values of the ghosts that go with the cell values in `phi`.
    void FillGhosts(const BoundaryConditions& conditions, std::vector<double>& phi) const;

    /// Norm of b - A x.
    double Residual(const std::vector<double>& rhs, std::vector<double>& phi);

    /// Solves until the true residual is below `reduction` times that of a zero field. The solver
    /// judges itself by the residual after its first iteration and says nothing when it stops
    /// early, so the residual is computed here and the solver called again, at most `maxCalls`
    /// times in all.
    SolveReport Solve(const std::vector<double>& rhs, std::vector<double>& phi, double reduction,
                      int maxCalls = 5);

    SolverMatrix solver;            ///< owns `matrix`; takes tolerance and most iterations
    CKVX_ART_SparseMatrix& matrix;  ///< of `solver`
    CKVX_ACMT_GV& gv;

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
