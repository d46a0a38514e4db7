#ifndef KVX3D_REFERENCE_HOST_PHYSICS_PRESSURE_CORRECTION_H
#define KVX3D_REFERENCE_HOST_PHYSICS_PRESSURE_CORRECTION_H

#include <vector>

#include "reference_host/discretisation/equation.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/discretisation/stencil_records.h"
#include "reference_host/physics/flow_fields.h"

namespace host {

/// The equation of the pressure correction, which makes the face fluxes divergence-free.
///
/// The SIMPLEC method uses two coefficients here. D = a V / ((1 - a) a*) relates the gradient of
/// the correction to the change of velocity, and E = a V / a* is the factor of the Rhie-Chow
/// pressure term in the face fluxes. With D in its place that term would be larger by 1 / (1 - a)
/// and smooth the pressure too much. Faces on the hole and overset boundaries of both grids are
/// corrected like all others. This determines the level of the pressure on both grids, and no
/// separate correction of the mass balance is needed.
///
/// Sources: J. P. van Doormaal, G. D. Raithby, Numer. Heat Transfer 7 (1984) 147-163,
/// doi:10.1080/01495728408961817; C. M. Rhie, W. L. Chow, AIAA J. 21 (1983) 1525-1532,
/// doi:10.2514/3.8284.
class PressureCorrection {
public:
    /// Keeps references to mesh, objects, link and conditions.
    /// @param relaxation  factor a of the momentum equations
    PressureCorrection(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
                       const FlowConditions& conditions, double relaxation,
                       MatrixSolver matrixSolver = MatrixSolver::Bicgstab);

    /// Computes D and E from the coefficients a* by cell, entries 1..Nc. They are zero before the
    /// first call.
    void SetCoefficients(const std::vector<double>& momentumCoefficients);

    /// Computes the fluxes of the current velocity: the interpolation to the faces by the stencils
    /// of the velocity, plus the Rhie-Chow term, which couples the pressures of neighboring cells.
    void PredictFluxes(const FlowFields& fields, const StencilRecords& velocityRecords,
                       CMAFVMFaceVariableAll& flux) const;

    /// Solves for the pressure correction.
    /// @param net  net outflow of each cell, entries 1..Nc
    /// @return the linear solve
    LinearSolve Solve(const std::vector<double>& net);

    /// Corrects the fluxes, the pressure and the cell velocities.
    void Correct(FlowFields& fields, CMAFVMFaceVariableAll& flux);

    /// Updates the ghosts and the gradient of the pressure. The pressure has no condition at inlets
    /// and physical walls and is extrapolated to them.
    void UpdatePressure(FlowFields& fields);

    /// Pressure gradient by cell from the last UpdatePressure(), entries 1..Nc; zero in cut cells.
    const std::vector<Vec3>& Gradient() const { return gradient; }

    const StencilBuilder builder;
    StencilRecords records;
    Equation equation;

private:
    /// Whether the flux through a boundary face is corrected: it is an outlet or overset face.
    bool IsOpen(Boundary kind, int face) const;
    double NormalAt(const CMAFVMFaceData& record, const std::vector<double>& phi) const;
    double InnerFlux(int face, const FlowFields& fields, const StencilRecords& velocities) const;
    double BoundaryFluxAt(Boundary kind, int face, const FlowFields& fields) const;

    HostObjects& objects;
    const FlowConditions& conditions;
    const double relaxation;
    std::vector<double> cellD;  // by cell; inner faces have theirs in faceMu
    std::vector<Vec3> gradient;
    std::vector<double> correction;  // entries 1..NcAll
};

}  // namespace host

#endif
