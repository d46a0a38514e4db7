#ifndef KVX3D_REFERENCE_HOST_PHYSICS_MOMENTUM_H
#define KVX3D_REFERENCE_HOST_PHYSICS_MOMENTUM_H

#include <vector>

#include "reference_host/discretisation/equation.h"
#include "reference_host/discretisation/scheme.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/discretisation/stencil_records.h"
#include "reference_host/physics/flow_fields.h"

namespace host {

/// The momentum equations of a steady flow of density 1: one matrix, a solve per component.
///
/// Relaxation enters through a*, the sum of outgoing fluxes and of the diffusion weights of the
/// cell itself: positive for every scheme, where the diagonal of QUICK or of central differences
/// is no safe scale.
class Momentum {
public:
    /// Borrows all but the numbers. On a one-cell-thick mesh two components are solved, else
    /// three.
    ///
    /// @param mu          viscosity
    /// @param relaxation  a, between 0 and 1: (1 - a) / a of a* is added to the diagonal
    /// @param matrixSolver  of the linear systems
    Momentum(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
             const FlowConditions& conditions, Scheme scheme, double mu, double relaxation,
             MatrixSolver matrixSolver = MatrixSolver::Bicgstab);

    /// Sums convection with these fluxes, diffusion and relaxation into the matrix.
    void Assemble(CMAFVMFaceVariableAll& flux);

    /// Solves with the pressure given; the ghosts of the velocity follow.
    ///
    /// @param         pressureGradient  by cell, entries 1..Nc
    /// @param[in,out] fields            velocity
    /// @return iterations of the linear solver, all components
    int Solve(const std::vector<Vec3>& pressureGradient, FlowFields& fields);

    /// Velocity at the ghosts that goes with the cells.
    void FillGhosts(FlowFields& fields) const;

    /// a* by cell, of the last Assemble(); 0 in cut cells.
    const std::vector<double>& Coefficients() const { return coefficients; }
    int Dimensions() const { return dimensions; }

    const StencilBuilder builder;
    StencilRecords records;
    Equation equation;
    const double mu;

private:
    void SumDiffusionWeights();
    void SumCoefficients(const CMAFVMFaceVariableAll& flux);
    double NormalStressAtSymmetry(const BoundaryFace& face, const Vec3& velocity,
                                  int component) const;
    std::vector<double> RightHandSide(const std::vector<Vec3>& pressureGradient,
                                      const FlowFields& fields, int component) const;

    HostObjects& objects;
    const FlowConditions& conditions;
    const Scheme scheme;
    const double relaxation;
    const int dimensions;
    std::vector<double> diffusionWeights;  // by cell: the part of a* that no flux changes
    std::vector<double> coefficients;      // by cell
};

}  // namespace host

#endif
