#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_HEAT_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_HEAT_H

#include <string>
#include <vector>

#include "reference_host/discretisation/boundary_conditions.h"
#include "reference_host/mesh/mesh_reader.h"
#include "reference_host/physics/scalar_solver.h"

namespace host {

/// Heat conduction around a hot body: what `reference_host heat` was asked for.
///
/// The body (the physical walls beside a component; on a single grid all walls) is at 1, inlet and
/// the other walls at 0, the outlet lets no heat through. Conductivity and heat capacity are 1, so
/// time is in body diameters squared over the diffusivity. From a cold start the field is followed
/// with implicit Euler steps that grow by half, then the steady state is solved directly.
///
///     reference_host heat --mesh channel_cylinder_overset.geo --set n=10 --output heat_results
///
/// Expected there: the cylinder gives off 4.03 per unit time and depth, as a line source between
/// cold walls and before a cold inlet does.
struct HeatCase {
    std::string meshFile;
    MeshParameters parameters;  ///< numbers for a .geo
    std::string outputDir = "heat_results";
    int steps = 12;           ///< time steps before the steady state
    double firstStep = 0.01;  ///< size of the first, in diameters^2 / diffusivity
    MatrixSolver matrixSolver = MatrixSolver::Bicgstab;
};

/// Heat conducted out of the domain per unit time through each kind of face; on a one-cell-thick
/// mesh also per unit depth.
struct HeatBalance {
    double body = 0.0;  ///< into the domain from the body: the one that counts positive inwards
    double inlet = 0.0;
    double outlet = 0.0;
    double walls = 0.0;  ///< physical walls other than the body
    double Out() const { return inlet + outlet + walls; }
    /// (in - out) / in: on an overset mesh the interpolation error of the interface.
    double Defect() const { return (body - Out()) / body; }
};

/// The case on its mesh, with the temperature it works on; cold at the start.
class HeatProblem {
public:
    /// Borrows its arguments.
    HeatProblem(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
                MatrixSolver matrixSolver = MatrixSolver::Bicgstab);

    /// One implicit Euler step; a step of 0 solves the steady state.
    SolveReport Advance(double step);
    /// Puts the temperature where the output takes the pressure, the heat flux -grad T where it
    /// takes the velocity.
    void Publish();
    /// Sums the conducted heat over the boundary.
    HeatBalance Balance() const;

private:
    const Mesh& mesh;
    HostObjects& objects;
    const BoundaryConditions conditions;
    ScalarSolver solver;
    std::vector<double> temperature;  // entries 1..NcAll
};

/// Runs the case and prints where the results are.
/// @return the exit code: 0, or Interrupt::exitCode after Ctrl-C, with the steps so far complete
/// @throws std::runtime_error  one line: bad mesh, no body, output directory not writable, steady
///         state not solved
int RunHeat(const HeatCase& run);

}  // namespace host

#endif
