#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_HEAT_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_HEAT_H

#include <string>
#include <vector>

#include "reference_host/cases/case_options.h"
#include "reference_host/discretisation/boundary_conditions.h"
#include "reference_host/physics/scalar_solver.h"

namespace host {

/// Heat per unit time and depth from the cylinder of channel_cylinder_overset.geo in the steady
/// state: radius 1/2, at (2, 2) in a channel of height 4.1, all lengths in diameters. Boundary
/// collocation with multipoles, converged to 1e-10: reference_host/studies/heat_reference.py.
constexpr double heatOfTheCylinder = 4.0350931034;

/// Heat conduction around a hot body.
///
/// The temperature is 1 on the body (see body.h), 0 on the inlet and on the other walls; no heat
/// passes through the outlet. Conductivity and heat capacity are 1, so the unit of time is the
/// square of the body's diameter over the diffusivity. From a cold start the field is computed with
/// implicit Euler steps, each 1.5 times as long as the one before, then the steady state is solved
/// directly.
///
///     reference_host heat mesh.file=channel_cylinder_overset.geo parameters.n=10
///
/// Expected there: the heat from the cylinder is 4.028 per unit time and depth, 0.16 % below
/// heatOfTheCylinder.
struct HeatCase {
    std::string meshFile;
    MeshParameters parameters;  ///< values of variables of a .geo
    std::string outputDir = "heat_results";
    int steps = 12;           ///< time steps before the steady state
    double firstStep = 0.01;  ///< size of the first time step [diameter^2 / diffusivity]
    MatrixSolver matrixSolver = MatrixSolver::Bicgstab;
};

CaseOptions OptionsOf(HeatCase& run);

/// Heat conducted per unit time through each part of the boundary; on a one-cell-thick mesh also
/// per unit depth.
struct HeatBalance {
    double body = 0.0;   ///< from the body into the domain
    double inlet = 0.0;  ///< out of the domain, as all that follow
    double outlet = 0.0;
    double walls = 0.0;  ///< physical walls other than the body
    double Out() const { return inlet + outlet + walls; }
    /// (in - out) / in. On an overset mesh this is the interpolation error at the interface.
    double Defect() const { return (body - Out()) / body; }
};

/// The temperature field on a mesh, 0 in the beginning.
class HeatProblem {
public:
    /// Borrows its arguments.
    HeatProblem(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
                MatrixSolver matrixSolver = MatrixSolver::Bicgstab);

    /// Makes one implicit Euler step; a step of 0 solves the steady state.
    SolveReport Advance(double step);
    /// Copies the temperature into the host's pressure and the heat flux -grad T into its velocity:
    /// these are the arrays that the toolbox writes.
    void Publish();
    /// Integrates the conducted heat over the boundary.
    HeatBalance Balance() const;

private:
    const Mesh& mesh;
    HostObjects& objects;
    const BoundaryConditions conditions;
    ScalarSolver solver;
    std::vector<double> temperature;  // entries 1..NcAll
};

/// Runs the case, prints the heat balance and where the results are.
/// @return 0; Interrupt::exitCode after Ctrl-C, with complete results up to there
/// @throws std::runtime_error  one line: bad mesh, no body, output directory not writable, steady
///         state not converged
int RunHeat(const HeatCase& run);

}  // namespace host

#endif
