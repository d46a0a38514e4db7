#ifndef KVX3D_REFERENCE_HOST_PHYSICS_PRESSURE_GRADIENT_H
#define KVX3D_REFERENCE_HOST_PHYSICS_PRESSURE_GRADIENT_H

#include <vector>

#include "reference_host/discretisation/equation.h"
#include "reference_host/discretisation/stencil_builder.h"
#include "reference_host/discretisation/stencil_records.h"

namespace host {

/// The gradient of the pressure in each cell as a surface integral, V grad p = sum of p_f S over
/// the faces of the cell, with second-order values p_f at the face centers.
///
/// Both cells of a face take the same p_f. In a sum over cells the inner faces therefore cancel,
/// and the pressure force on the body equals that through every control surface around it. A
/// least-squares gradient does not have this property: on prisms and tetrahedra the two forces
/// differ by several percent.
///
/// Source: J. H. Ferziger, M. Peric, R. L. Street, Computational Methods for Fluid Dynamics, 4th
/// edition, Springer 2020, on the pressure in finite-volume methods.
class PressureGradient {
public:
    /// Keeps references to its arguments.
    /// @param builder     with GradientSet::Pressure, or ClosedPressure in a closed domain; its
    ///                    gradients extrapolate to the boundaries without a given pressure
    /// @param records     its stencils
    /// @param equation    of the pressure correction
    /// @param conditions  of the pressure
    PressureGradient(const StencilBuilder& builder, const StencilRecords& records,
                     const Equation& equation, const BoundaryConditions& conditions);

    /// Computes the ghosts from the cells. The pressure has no condition at inlets, walls and
    /// symmetry planes and is extrapolated to them by the least-squares gradient.
    /// @param p  entries 1..NcAll
    void FillGhosts(std::vector<double>& p) const;

    /// Value at the center of an inner face with an active cell.
    double AtInner(int face, const std::vector<double>& p) const;
    /// Value at the center of a boundary face of an active cell. The ghosts must have been filled.
    double AtBoundary(Boundary kind, int face, const std::vector<double>& p) const;

    /// Gradient by cell, entries 1..Nc; zero in cut cells. The ghosts must have been filled.
    std::vector<Vec3> Of(const std::vector<double>& p) const;

    /// Whether the equation has a value or a neighboring grid at a boundary face, so that the flux
    /// through it depends on the pressure: at outlets and overset boundaries.
    bool IsOpen(Boundary kind, int face) const;

private:
    const StencilBuilder& builder;
    const StencilRecords& records;
    const Equation& equation;
    const BoundaryConditions& conditions;
    std::vector<Stencil> atOverset;  // by wall face, empty on physical walls
};

}  // namespace host

#endif
