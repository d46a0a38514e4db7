#ifndef KVX3D_REFERENCE_HOST_RUN_CONTROL_FIGURES_H
#define KVX3D_REFERENCE_HOST_RUN_CONTROL_FIGURES_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/physics/flow_solver.h"

namespace host {

/// Figures that show what the discretization and the interface between the grids do not conserve:
/// the drag coefficient from the momentum balance over control surfaces around the body, which
/// would be that of the body in a perfect solution, and the mass created at the interface. The
/// figures of the interface are missing on a single grid, and all of them without a body.
struct ControlFigures {
    std::optional<double> cdOverset;      ///< over the overset boundary of the component
    std::optional<double> cdHole;         ///< over the hole boundary of the background
    std::optional<double> cdOuter;        ///< over the outer boundary
    std::optional<double> interfaceMass;  ///< relative to the stream through the frontal area
};

/// Measures the present flow.
/// @param forceUnit  force along x with the coefficient 1
ControlFigures MeasureControl(const FlowSolver& flow, double forceUnit);

/// Prints a row of the table of a case for each figure; the drag coefficients with their difference
/// from `cd`, the coefficient of the body.
void PrintControl(const ControlFigures& figures, double cd);

/// The figures that show that the flow does not conserve momentum or mass, one sentence each: the
/// drag over a control surface differs from that of the body by more than 0.2 %, or the mass
/// created at the interface is more than 1e-4 of the stream through the frontal area.
std::vector<std::string> ControlMisses(const ControlFigures& figures, double cd);

}  // namespace host

#endif
