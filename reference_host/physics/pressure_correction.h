#ifndef KVX3D_REFERENCE_HOST_PHYSICS_PRESSURE_CORRECTION_H
#define KVX3D_REFERENCE_HOST_PHYSICS_PRESSURE_CORRECTION_H

#include <vector>

#include "reference_host/discretisation/equation.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/discretisation/stencil_records.h"
#include "reference_host/physics/flow_fields.h"

namespace host {

/// Continuity: the pressure correction that makes the face fluxes divergence-free.
///
/// SIMPLEC with two coefficients: D = a V / ((1 - a) a*) turns the gradient of the correction into
/// a change of velocity, E = a V / a* weights the pressure term of the face fluxes. With D for both
/// that term would be 1 / (1 - a) times larger and smear the pressure. The faces of the interface
/// take part like all others, on both grids: that fixes the pressure's level everywhere and leaves
/// no mass to correct.
///
/// Sources: J. P. van Doormaal, G. D. Raithby, Numer. Heat Transfer 7 (1984) 147-163,
/// doi:10.1080/01495728408961817; C. M. Rhie, W. L. Chow, AIAA J. 21 (1983) 1525-1532,
/// doi:10.2514/3.8284.
class PressureCorrection {
public:
    /// Borrows its objects; `relaxation` is that of the momentum equations.
    PressureCorrection(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
                       const FlowConditions& conditions, double relaxation,
                       MatrixSolver matrixSolver = MatrixSolver::Bicgstab);

    /// Sets D from a* by cell, entries 1..Nc. Before the first call D and E are zero.
    void SetCoefficients(const std::vector<double>& momentumCoefficients);

    /// Fluxes of the velocity as it stands: interpolated to the faces with the velocity's own
    /// stencils, plus the pressure term that couples neighbors.
    void PredictFluxes(const FlowFields& fields, const StencilRecords& velocityRecords,
                       CMAFVMFaceVariableAll& flux) const;

    /// Solves for the correction.
    /// @param net  net outflow of each cell, entries 1..Nc
    /// @return iterations of the linear solver
    int Solve(const std::vector<double>& net);

    /// Applies the correction to fluxes, pressure and cell velocities.
    void Correct(FlowFields& fields, CMAFVMFaceVariableAll& flux);

    /// Brings ghosts and gradient of the pressure up to date. Inlets and physical walls have no
    /// condition for it: it is extrapolated there.
    void UpdatePressure(FlowFields& fields);

    /// Pressure gradient by cell, of the last UpdatePressure(); zero in cut cells.
    const std::vector<Vec3>& Gradient() const { return gradient; }

    const StencilBuilder builder;
    StencilRecords records;
    Equation equation;

private:
    /// A boundary face that lets the correction pass: outlet or overset.
    bool IsOpen(Boundary kind, int face) const;
    double NormalAt(const CMAFVMFaceData& record, const std::vector<double>& phi) const;
    double InnerFlux(int face, const FlowFields& fields, const StencilRecords& velocities) const;
    double BoundaryFluxAt(Boundary kind, int face, const FlowFields& fields) const;

    HostObjects& objects;
    const FlowConditions& conditions;
    const double relaxation;
    std::vector<double> cellD;  // by cell; faces between cells keep theirs as faceMu
    std::vector<Vec3> gradient;
    std::vector<double> correction;  // entries 1..NcAll
};

}  // namespace host

#endif
