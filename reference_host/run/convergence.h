#ifndef KVX3D_REFERENCE_HOST_RUN_CONVERGENCE_H
#define KVX3D_REFERENCE_HOST_RUN_CONVERGENCE_H

#include <string>

#include "reference_host/physics/flow_solver.h"

namespace host {

/// The limits below which an outer iteration counts as converged.
struct ConvergenceLimits {
    double change = 1e-7;  ///< relative change of the velocity
    /// Mass residual before the pressure correction, relative to FlowSolver::MassScale(). The
    /// correction of the same iteration reduces it about tenfold, so the final fluxes satisfy the
    /// mass balance of the cells within about 1e-5 of that scale.
    double mass = 1e-4;
};

/// Whether the flow has converged: the velocity changed little, the mass residual is small, and
/// every linear solve of the iteration reached its target or lowered its true residual. A small
/// change alone proves nothing: a velocity that no solver moves does not change at all.
bool HasConverged(const FlowIteration& iteration, const ConvergenceLimits& limits);

/// Whether an iteration shows that the flow diverges: the mass residual is huge, or a figure is not
/// a finite number.
bool HasDiverged(const FlowIteration& iteration);

/// The largest residual of a linear solve of the iteration relative to that of its first guess:
/// below 1 if all solves made progress. A solve at the level of rounding errors counts as 0.
double LargestReduction(const FlowIteration& iteration);

/// What keeps the flow from being converged, as the end of an error line: "the velocity changes by
/// 3.0e-05 (limit 1.0e-07) and the mass residual is 2.0e-02 (limit 1.0e-04)".
std::string WhyNotConverged(const FlowIteration& iteration, const ConvergenceLimits& limits);

/// Describes the first linear solve that returned its first guess unchanged although its residual
/// is above the level of rounding errors: equation, solver, residual and what to try. Empty if
/// there is none.
std::string IdleSolve(const FlowIteration& iteration, const FlowSettings& settings);

}  // namespace host

#endif
