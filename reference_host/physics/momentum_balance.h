#ifndef KVX3D_REFERENCE_HOST_PHYSICS_MOMENTUM_BALANCE_H
#define KVX3D_REFERENCE_HOST_PHYSICS_MOMENTUM_BALANCE_H

#include <optional>

#include "reference_host/physics/flow_solver.h"

namespace host {

/// The force of the flow on the body, measured at the body and through three control surfaces
/// around it. In a steady flow all four would be equal if the equations held everywhere between the
/// body and the outer boundary.
///
/// - `overset` and `body` enclose the component. They differ by what the solution does not conserve
///   inside it.
/// - `hole` and `outer` enclose the active background cells, in the same way.
/// - `overset` and `hole` differ by the momentum that the interpolation between the grids creates.
///
/// Sources: the momentum theorem for a control volume, e.g. H. Schlichting, K. Gersten, Boundary
/// Layer Theory, 9th edition, Springer 2017; its discrete form by summation of the cell balances,
/// J. H. Ferziger, M. Peric, R. L. Street, Computational Methods for Fluid Dynamics, 4th edition,
/// Springer 2020.
struct BodyForces {
    Vec3 body = Vec3::Zero();     ///< over the faces of the body
    std::optional<Vec3> overset;  ///< over the overset boundary of the component, with the symmetry
                                  ///< planes that the component touches; none on one grid
    std::optional<Vec3> hole;     ///< over the hole boundary of the background; none on one grid
    Vec3 outer = Vec3::Zero();    ///< over inlets, outlets, all other walls and symmetry planes
};

/// The four forces in the present flow.
BodyForces ForcesFromMomentumBalance(const FlowSolver& flow);

/// Area-weighted mean of the velocity over all inlet faces; zero without an inlet.
Vec3 MeanInflowVelocity(const FlowSolver& flow);

/// Volume flux of a uniform stream of the mean inflow velocity through the frontal area of the
/// body: half the sum of |S . U| over its faces, the projected area of a convex body.
double FrontalStream(const FlowSolver& flow);

/// The mass that the interpolation between the grids creates (positive) or destroys: the net volume
/// flux through the hole boundary out of the hole, relative to FrontalStream(). Unlike the
/// mass defect of the whole domain it does not depend on the width of the domain.
///
/// @return none on a single grid, and if no stream reaches the body
std::optional<double> InterfaceMassDefect(const FlowSolver& flow);

}  // namespace host

#endif
