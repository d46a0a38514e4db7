#ifndef KVX3D_REFERENCE_HOST_PHYSICS_FLOW_SOLVER_H
#define KVX3D_REFERENCE_HOST_PHYSICS_FLOW_SOLVER_H

#include "reference_host/discretisation/scheme.h"
#include "reference_host/discretisation/solver_matrix.h"
#include "reference_host/physics/flow_fields.h"
#include "reference_host/physics/momentum.h"
#include "reference_host/physics/pressure_correction.h"

namespace host {

/// What a steady laminar flow is solved with. Density is 1.
struct FlowSettings {
    InletProfile inlet;
    double mu = 0.0;               ///< viscosity
    Vec3 farWalls = Vec3::Zero();  ///< velocity of the walls that are not the body
    Scheme scheme = Scheme::LinearUpwind;
    double relaxation = 0.9;          ///< a of the momentum equations, between 0 and 1
    double momentumTolerance = 1e-2;  ///< residual reductions of the linear solver
    double pressureTolerance = 1e-1;
    /// SAMG works down to the tolerance of the first guess' residual, BiCGSTAB to that after its
    /// first iteration: the fields agree once converged, not on the way.
    MatrixSolver momentumSolver = MatrixSolver::Bicgstab;
    MatrixSolver pressureSolver = MatrixSolver::Bicgstab;
    int maxSolverIterations = 2000;  ///< of one linear solve: some matrices, as of central
                                     ///< differences at low viscosity, are beyond the solver
};

/// Relaxation that suits a mesh with this many cells across the unit length: 1 - a ~ 1 / n.
double DefaultRelaxation(double cellsPerUnit);

/// One outer iteration.
struct FlowIteration {
    double change = 0.0;        ///< of the velocity, relative to it, 2-norm
    double massResidual = 0.0;  ///< net outflow before the correction, cells' magnitudes summed,
                                ///< relative to the inflow
    int momentumIterations = 0;
    int pressureIterations = 0;
};

/// Steady laminar incompressible flow on a single grid or an overset pair, by a split SIMPLEC
/// with the interface implicit in both matrices.
///
/// Each iteration solves momentum for the velocity, then a pressure correction for continuity.
class FlowSolver {
public:
    /// Starts from the inlet's profile everywhere and no pressure. Borrows its objects;
    /// `objects.mu` is rewritten by every iteration.
    FlowSolver(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
               const FlowSettings& settings);

    FlowIteration Iterate();

    /// Flux in through the inlet.
    double Inflow() const;
    /// (outflow - inflow) / inflow: what the interpolation at the interface gains or loses.
    double MassDefect() const;

    const FlowFields& Fields() const { return fields; }
    const CMAFVMFaceVariableAll& Flux() const { return flux; }
    const Momentum& MomentumPart() const { return momentum; }
    const PressureCorrection& PressurePart() const { return pressure; }

private:
    void Start(const InletProfile& inlet);

    const Mesh& mesh;
    const OversetLink& link;
    const FlowConditions conditions;
    Momentum momentum;
    PressureCorrection pressure;
    FlowFields fields;
    CMAFVMFaceVariableAll flux;
};

}  // namespace host

#endif
