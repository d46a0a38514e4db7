#ifndef KVX3D_REFERENCE_HOST_PHYSICS_MOMENTUM_FLUX_H
#define KVX3D_REFERENCE_HOST_PHYSICS_MOMENTUM_FLUX_H

#include "reference_host/physics/hole_balance.h"
#include "reference_host/physics/momentum.h"
#include "reference_host/physics/pressure_correction.h"

namespace host {

/// The momentum that crosses a face: F u + p S - mu du/dn |S|, with the volume flux F, the area
/// vector S and the values of velocity and pressure that the discretized equations have at the
/// face.
///
/// u is the value that the convection scheme multiplies with F, p the face value in the pressure
/// gradient, and du/dn |S| the result of the stencil "Normal" of the velocity. Therefore the fluxes
/// through all faces of a cell add up to what the rows of the momentum matrix contain for it, apart
/// from relaxation and net outflow.
class MomentumFlux {
public:
    /// Borrows its arguments.
    MomentumFlux(const Momentum& momentum, const PressureCorrection& pressure,
                 const FlowFields& fields, const CMAFVMFaceVariableAll& flux);

    /// Through an inner face, from its first to its second cell; one of them at least is active.
    Vec3 Inner(int face) const;
    /// The sum over the hole boundary, out of the active cells, without the correction of `hole`.
    Vec3 IntoHole(const HoleBalance& hole) const;
    /// Through a boundary face, out of the domain; zero at a cut cell.
    Vec3 AtBoundary(Boundary kind, int face) const;

private:
    const Momentum& momentum;
    const PressureCorrection& pressure;
    const FlowFields& fields;
    const CMAFVMFaceVariableAll& flux;
};

}  // namespace host

#endif
