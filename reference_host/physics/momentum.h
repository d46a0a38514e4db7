#ifndef KVX3D_REFERENCE_HOST_PHYSICS_MOMENTUM_H
#define KVX3D_REFERENCE_HOST_PHYSICS_MOMENTUM_H

#include <functional>
#include <optional>
#include <vector>

#include "reference_host/discretisation/equation.h"
#include "reference_host/discretisation/scheme.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/discretisation/stencil_records.h"
#include "reference_host/physics/flow_fields.h"
#include "reference_host/physics/hole_balance.h"
#include "reference_host/physics/symmetry_planes.h"

namespace host {

/// The momentum equations of a steady flow of density 1. All velocity components share one matrix,
/// except for the ghost rows of symmetry planes, see SymmetryPlanes.
///
/// The relaxation is based on a coefficient a* of each cell, the sum of its outgoing fluxes and of
/// the diffusion weights of the cell itself. It is positive for every scheme, while the diagonal
/// entries of QUICK and central differences may be close to zero.
class Momentum {
public:
    /// Keeps references to mesh, objects, link and conditions. On a mesh that is one cell thick two
    /// velocity components are solved, else three.
    ///
    /// @param mu            dynamic viscosity
    /// @param relaxation    factor a between 0 and 1; (1 - a) / a times a* is added to the diagonal
    /// @param matrixSolver  solver of the linear systems
    Momentum(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
             const FlowConditions& conditions, Scheme scheme, double mu, double relaxation,
             MatrixSolver matrixSolver = MatrixSolver::Bicgstab);

    /// Sets a force per volume that acts on the fluid. None acts before the first call.
    void SetForce(const std::function<Vec3(const Vec3& point)>& force);

    /// Assembles convection with the given fluxes, diffusion and relaxation into the matrix.
    void Assemble(CMAFVMFaceVariableAll& flux);

    /// Solves for the velocity with a given pressure gradient and updates the ghosts of the
    /// velocity.
    ///
    /// @param         pressureGradient  by cell, entries 1..Nc
    /// @param         hole              its force is subtracted at the hole boundary
    /// @param[in,out] fields            velocity: first guess and solution
    /// @return the linear solve of each component
    std::vector<LinearSolve> Solve(const std::vector<Vec3>& pressureGradient,
                                   const HoleBalance& hole, FlowFields& fields);

    /// Computes the velocity of the ghosts from the cells and the conditions.
    void FillGhosts(FlowFields& fields) const;

    /// The coefficient a* by cell from the last Assemble(), entries 1..Nc; 0 in cut cells.
    const std::vector<double>& Coefficients() const { return coefficients; }
    /// Number of velocity components that are solved.
    int Dimensions() const { return dimensions; }
    /// The scheme of the convection terms.
    Scheme ConvectionScheme() const { return scheme; }
    /// Whether the matrix contains viscous stress at a boundary face: on symmetry planes, whose
    /// records are empty on a mesh that is one cell thick, and where no zero gradient is set.
    bool IsViscousAt(Boundary kind, int face) const {
        return kind == Boundary::Symmetry ||
               conditions.velocity[0].At(kind, face).kind != GhostCondition::Kind::ZeroGradient;
    }

    const StencilBuilder builder;
    StencilRecords records;
    Equation equation;
    const double mu;

private:
    void SumDiffusionWeights();
    void SumCoefficients(const CMAFVMFaceVariableAll& flux);
    void SetSymmetryRows(int component, double sign);
    std::vector<double> RightHandSide(const std::vector<Vec3>& pressureGradient,
                                      const HoleBalance& hole, const FlowFields& fields,
                                      int component) const;

    HostObjects& objects;
    const FlowConditions& conditions;
    const Scheme scheme;
    const double relaxation;
    const int dimensions;
    std::optional<SymmetryPlanes> planes;  // in three dimensions
    std::vector<double> diffusionWeights;  // by cell: the part of a* without fluxes
    std::vector<double> coefficients;      // by cell
    std::vector<Vec3> forces;              // by cell, integrated over it; empty: none
};

}  // namespace host

#endif
