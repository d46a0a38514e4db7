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

/// Convection and diffusion of a scalar phi, div(U phi) - div(mu grad phi) = source, on a single
/// grid or an overset pair, with everything implicit.
class ScalarSolver {
public:
    /// Builds stencils and pattern. Borrows its arguments; `objects.mu` is rewritten at each
    /// Assemble().
    ScalarSolver(const Mesh& mesh, HostObjects& objects, const OversetLink& link, Scheme scheme,
                 MatrixSolver matrixSolver = MatrixSolver::Bicgstab);

    /// Sums the operators into the matrix and closes the ghost rows.
    ///
    /// @param mu        diffusion coefficient, constant
    /// @param velocity  constant; ignored by the pure diffusion schemes
    /// @param storage   added to the diagonal of each active cell times its volume: 1 / time step
    void Assemble(const BoundaryConditions& conditions, double mu, const Vec3& velocity,
                  double storage = 0.0);

    /// Solves with a source integrated over each cell, entries 1..Nc.
    ///
    /// @param[in,out] phi  first guess and solution, entries 1..NcAll; 0 in cut cells
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

/// One manufactured solution: `exact` with Dirichlet values on inlet, outlet and physical walls.
struct ManufacturedRun {
    SolveReport solve;
    std::vector<double> phi;     ///< entries 1..NcAll
    int fallbackCount = 0;       ///< donor interpolations that were not quadratic
    int storedEntriesGrown = 0;  ///< matrix entries that the declared pattern had missed
};

ManufacturedRun SolveManufactured(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
                                  Scheme scheme, const AnalyticField& exact, double mu,
                                  const Vec3& velocity,
                                  MatrixSolver matrixSolver = MatrixSolver::Bicgstab);

}  // namespace host

#endif
