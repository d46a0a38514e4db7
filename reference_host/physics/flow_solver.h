#ifndef KVX3D_REFERENCE_HOST_PHYSICS_FLOW_SOLVER_H
#define KVX3D_REFERENCE_HOST_PHYSICS_FLOW_SOLVER_H

#include <vector>

#include "reference_host/discretisation/scheme.h"
#include "reference_host/discretisation/solver_matrix.h"
#include "reference_host/physics/flow_fields.h"
#include "reference_host/physics/hole_balance.h"
#include "reference_host/physics/momentum.h"
#include "reference_host/physics/pressure_correction.h"

namespace host {

/// Settings of a steady laminar flow of density 1.
struct FlowSettings : FlowBoundary {
    double mu = 0.0;  ///< dynamic viscosity
    /// Force per volume on the fluid; none: no force.
    std::function<Vec3(const Vec3& point)> force;
    /// Velocity from which the run starts; none: that of the inlet, in the whole domain.
    InletProfile start;
    /// A force per volume acts between the body and the hole boundary as well, so that the forces
    /// on the two differ: with it, choose Mass.
    Conservation conservation = Conservation::MassAndMomentum;
    Scheme scheme = Scheme::LinearUpwind;
    double relaxation = 0.9;          ///< factor a of the momentum equations, between 0 and 1
    double momentumTolerance = 1e-2;  ///< residual reduction of a linear solve for momentum
    double pressureTolerance = 1e-1;  ///< residual reduction of a linear solve for pressure
    /// The tolerance is relative to the residual of the first guess with SAMG, and to the residual
    /// after the first iteration with BiCGSTAB. The solutions agree once the flow has converged,
    /// but not in each iteration.
    MatrixSolver momentumSolver = MatrixSolver::Bicgstab;
    MatrixSolver pressureSolver = MatrixSolver::Bicgstab;
    /// Largest number of iterations of one linear solve. BiCGSTAB does not converge for some
    /// matrices, for example of central differences at low viscosity.
    int maxSolverIterations = 2000;
};

/// Relaxation factor a for a mesh with this number of cells per unit length; 1 - a is proportional
/// to the cell size.
double DefaultRelaxation(double cellsPerUnit);

/// Result of one outer iteration.
struct FlowIteration {
    double change = 0.0;        ///< relative change of the velocity in the 2-norm
    double massResidual = 0.0;  ///< sum of the magnitudes of the cells' net outflow before the
                                ///< correction, relative to FlowSolver::MassScale()
    std::vector<LinearSolve> momentum;  ///< by velocity component
    LinearSolve pressure;
};

/// Solver for steady laminar incompressible flow on a single grid or an overset pair, by a
/// segregated SIMPLEC method. The coupling of the grids is implicit in the matrices of momentum and
/// pressure.
///
/// Each iteration solves the momentum equations for the velocity and then a pressure correction for
/// continuity.
class FlowSolver {
public:
    /// Starts from FlowSettings::start in the whole domain and from zero pressure.
    /// Keeps references to its arguments except the settings; every iteration overwrites
    /// `objects.mu`.
    FlowSolver(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
               const FlowSettings& settings);

    /// Runs one outer iteration.
    FlowIteration Iterate();

    /// Volume flux through the inlet into the domain.
    double Inflow() const;
    /// Volume flux to which the mass residual is relative: the inflow, or WallDrivenFlux() where
    /// nothing flows in. In a closed domain the larger one of WallDrivenFlux() and of all that
    /// enters through the boundary.
    double MassScale() const;
    /// (outflow - inflow) / inflow, the mass that the domain gains or loses; 0 without an inflow.
    double MassDefect() const;

    const FlowFields& Fields() const { return fields; }
    const CMAFVMFaceVariableAll& Flux() const { return flux; }
    /// The corrections that make the hole boundary conservative.
    const HoleBalance& Hole() const { return hole; }
    const Momentum& MomentumPart() const { return momentum; }
    const PressureCorrection& PressurePart() const { return pressure; }

private:
    void Start(const FlowSettings& settings);
    void Predict();
    double EnteringFlux() const;

    const Mesh& mesh;
    const OversetLink& link;
    const FlowConditions conditions;
    Momentum momentum;
    PressureCorrection pressure;
    HoleBalance hole;
    const Conservation conservation;
    double lastChange = 1.0;  // of the velocity, in the last iteration
    FlowFields fields;
    CMAFVMFaceVariableAll flux;
};

}  // namespace host

#endif
