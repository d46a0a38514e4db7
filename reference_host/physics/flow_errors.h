#ifndef KVX3D_REFERENCE_HOST_PHYSICS_FLOW_ERRORS_H
#define KVX3D_REFERENCE_HOST_PHYSICS_FLOW_ERRORS_H

#include <vector>

#include "reference_host/physics/flow_solver.h"
#include "reference_host/physics/manufactured.h"
#include "reference_host/physics/manufactured_flow.h"

namespace host {

/// Differences between a flow and the manufactured one, by cell.
struct FlowDifference {
    std::vector<Vec3> velocity;    ///< entries 1..Nc; zero in cut cells
    std::vector<double> pressure;  ///< the same; without the mean over the active cells
};

/// The velocity is given on the whole boundary, so the pressure is determined up to a constant. The
/// mean of its difference over the active cells, weighted by their volumes, is subtracted.
FlowDifference DifferenceFrom(const ManufacturedFlow& exact, const FlowSolver& flow);

/// Norms of a difference over the active cells of one grid, or of all grids if `cavity` is 0.
struct FlowErrorNorms {
    ErrorNorms velocity;  ///< of the magnitude of the vector
    ErrorNorms pressure;
};
FlowErrorNorms NormsOf(const FlowDifference& difference, const FlowSolver& flow, int cavity = 0);

/// Error of the force p S - mu du/dn |S| on the physical walls of the body; on a single grid these
/// are all walls, and if there are none the inlet takes their place, or else the outlet. The exact
/// force is the integral over the same faces, which are plane where the body is curved.
///
/// @return magnitude of the difference of the force vectors, relative to the sum of the magnitudes
///         of the exact forces on the single faces; the whole exact force may be close to zero
double ForceError(const ManufacturedFlow& exact, const FlowSolver& flow);

/// Error of the volume fluxes through the inner faces of active cells, hole boundary included: the
/// area-weighted root mean square of the difference to the exact flux per area. The boundary has
/// given fluxes and takes no part.
double FluxError(const ManufacturedFlow& exact, const FlowSolver& flow);

}  // namespace host

#endif
