#ifndef KVX3D_REFERENCE_HOST_PHYSICS_SCALAR_SOLVER_H
#define KVX3D_REFERENCE_HOST_PHYSICS_SCALAR_SOLVER_H

#include <vector>

#include "reference_host/discretisation/boundary_conditions.h"
#include "reference_host/discretisation/equation.h"
#include "reference_host/discretisation/face_flux.h"
#include "reference_host/discretisation/scheme.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/discretisation/stencil_records.h"
#include "reference_host/physics/manufactured.h"

namespace host {

/// Solver for convection and diffusion of a scalar phi, div(U phi) - div(mu grad phi) = source, on
/// a single grid or an overset pair. All terms are implicit.
class ScalarSolver {
public:
    /// Builds stencils and matrix pattern. Keeps references to mesh, objects and link; each
    /// Assemble() overwrites `objects.mu`.
    ScalarSolver(const Mesh& mesh, HostObjects& objects, const OversetLink& link, Scheme scheme,
                 MatrixSolver matrixSolver = MatrixSolver::Bicgstab);

    /// Assembles the matrix, ghost rows included.
    ///
    /// @param mu        diffusion coefficient, constant
    /// @param velocity  constant; ignored by the pure diffusion schemes
    /// @param storage   1 / time step, or 0 for a steady solution; times the volume of the cell it
    /// is
    ///                  added to the diagonal of each active cell
    void Assemble(const BoundaryConditions& conditions, double mu, const Vec3& velocity,
                  double storage = 0.0);

    /// Solves with a source that is integrated over each cell, entries 1..Nc.
    ///
    /// @param[in,out] phi    first guess and solution, entries 1..NcAll; 0 in cut cells
    /// @param reduction      largest residual relative to that of a zero field
    SolveReport Solve(const BoundaryConditions& conditions, const std::vector<double>& source,
                      std::vector<double>& phi, double reduction = 1e-10);

    const StencilBuilder builder;
    StencilRecords records;
    Equation equation;

private:
    void AddConvection(const Vec3& velocity);
    void AddDiffusion(double mu);

    HostObjects& objects;
    const Scheme scheme;
};

/// Result of SolveManufactured().
struct ManufacturedRun {
    SolveReport solve;
    std::vector<double> phi;     ///< entries 1..NcAll
    int fallbackCount = 0;       ///< number of donor interpolations without a quadratic fit
    int storedEntriesGrown = 0;  ///< number of matrix entries that were not declared in the pattern
};

/// Solves for the manufactured solution `exact`, with its values on inlet, outlet and physical
/// walls and the source term that belongs to it.
ManufacturedRun SolveManufactured(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
                                  Scheme scheme, const AnalyticField& exact, double mu,
                                  const Vec3& velocity,
                                  MatrixSolver matrixSolver = MatrixSolver::Bicgstab);

}  // namespace host

#endif
