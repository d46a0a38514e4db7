#ifndef KVX3D_REFERENCE_HOST_PHYSICS_PRESSURE_CORRECTION_H
#define KVX3D_REFERENCE_HOST_PHYSICS_PRESSURE_CORRECTION_H

#include <vector>

#include "reference_host/discretisation/equation.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/discretisation/stencil_records.h"
#include "reference_host/physics/flow_fields.h"
#include "reference_host/physics/hole_balance.h"
#include "reference_host/physics/pressure_gradient.h"

namespace host {

/// The equation of the pressure correction, which makes the face fluxes divergence-free.
///
/// The SIMPLEC method uses two coefficients here. D = a V / ((1 - a) a*) relates the gradient of
/// the correction to the change of velocity, and E = V / a* is the factor of the Rhie-Chow pressure
/// term in the face fluxes. D is as large as the method allows, so that few iterations suffice; E
/// does not contain the relaxation a, so that the converged flow does not depend on it. Faces on
/// the hole and overset boundaries of both grids are corrected like all others. This determines the
/// level of the pressure of one grid relative to the other.
///
/// If the velocity is given on the whole boundary, the pressure is determined up to a constant. The
/// correction is then fixed in one cell and the mean of the pressure over all cells is set to zero.
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
    /// first call. A face between two cells of one grid has the linear interpolation of both, with
    /// the weights of the velocity; a face between two grids has that of the active cell.
    void SetCoefficients(const std::vector<double>& momentumCoefficients);

    /// Computes the fluxes of the current velocity: the interpolation to the faces by the stencils
    /// of the velocity, plus the Rhie-Chow term, which couples the pressures of neighboring cells.
    /// The term is E times the difference between the pressure gradient at the face and the mean of
    /// the two cells' gradients. These are the gradients that the momentum equations contain, and
    /// the mean has the weights of the velocity, so that the term replaces them completely.
    void PredictFluxes(const FlowFields& fields, const StencilRecords& velocityRecords,
                       CMAFVMFaceVariableAll& flux) const;

    /// Solves for the pressure correction.
    /// @param net  net outflow of each cell, entries 1..Nc
    /// @return the linear solve
    LinearSolve Solve(const std::vector<double>& net);

    /// Changes the correction and the constant of the hole boundary so that the net flux through
    /// the hole boundary will be zero after Correct(). The correction that a flux of 1 per unit
    /// area causes there is the solution of a second system with the same matrix. It changes little
    /// from one iteration to the next and is solved again only where it has become inaccurate.
    void CloseHole(HoleBalance& hole, CMAFVMFaceVariableAll& flux);

    /// Corrects the fluxes, the cell velocities and the pressure. The correction has a zero normal
    /// gradient at faces whose flux it does not change.
    /// @param share  part of the correction that is added to the pressure, at most 1
    void Correct(double share, FlowFields& fields, CMAFVMFaceVariableAll& flux);

    /// Updates the ghosts and the gradient of the pressure, and its level in a closed domain.
    void UpdatePressure(FlowFields& fields);

    /// Pressure gradient by cell from the last UpdatePressure(), entries 1..Nc; zero in cut cells.
    const std::vector<Vec3>& Gradient() const { return gradient; }
    /// The values of the pressure at the faces.
    const PressureGradient& Faces() const { return faces; }

    const StencilBuilder builder;
    StencilRecords records;
    Equation equation;

private:
    double NormalAt(const CMAFVMFaceData& record, const std::vector<double>& phi) const;
    double InnerFlux(int face, const FlowFields& fields, const StencilRecords& velocities) const;
    double BoundaryFluxAt(Boundary kind, int face, const FlowFields& fields) const;
    Vec3 MeanGradientAt(Boundary kind, int face) const;
    void CloseBoundary(CMAFVMFaceVariableAll& flux) const;
    double HoleFlux(const HoleBalance& hole, const std::vector<double>& phi) const;
    void SetLevel(std::vector<double>& phi) const;
    int FixedCell() const;

    HostObjects& objects;
    const FlowConditions& conditions;
    const double relaxation;
    const int dimensions;  // velocity components that are corrected
    const PressureGradient faces;
    std::vector<double> weights;    // by inner face: of the first cell in a mean of both cells
    std::vector<Stencil> mirrored;  // by wall face: the value at the mirrored point of its cell
    std::vector<double> cellD;      // by cell; inner faces have theirs in faceMu
    std::vector<Vec3> gradient;
    std::vector<double> correction;  // entries 1..NcAll
    std::vector<double> response;    // correction for a flux of 1 per area at the hole, 1..NcAll
};

}  // namespace host

#endif
