#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_CYLINDER_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_CYLINDER_H

#include <optional>
#include <string>

#include "reference_host/cases/benchmark_2d1.h"
#include "reference_host/discretisation/scheme.h"
#include "reference_host/discretisation/solver_matrix.h"
#include "reference_host/mesh/mesh_reader.h"

namespace host {

/// Steady laminar flow around a cylinder in a channel, benchmark 2D-1 (see benchmark_2d1.h): what
/// `reference_host cylinder` was asked for.
///
///     reference_host cylinder --mesh channel_cylinder_overset.geo --set n=10 --output results
///
/// Expected there: Cd -0.35 %, Cl -6.8 %, pressure difference 0.00 % off the published values after
/// about 105 iterations.
struct CylinderCase {
    std::string meshFile;
    MeshParameters parameters;  ///< numbers for a .geo
    Scheme scheme = Scheme::LinearUpwind;
    double reynolds = benchmark2d1::reynolds;  ///< by diameter and mean inflow velocity
    std::optional<double> relaxation;  ///< of momentum; default by the mesh's cells per diameter
    MatrixSolver matrixSolver = MatrixSolver::Bicgstab;
    std::optional<MatrixSolver> pressureSolver;  ///< of the pressure; default the one above
    std::string outputDir = "cylinder_results";
    int stepsEvery = 20;       ///< iterations between two steps of the result series
    int maxIterations = 2000;  ///< the run fails if it has not converged by then
    bool check = false;        ///< compare with the limits
};

/// Runs the case, prints its progress and a table against the published values (at their Reynolds
/// number), writes a result series (time is the iteration) and the residual history `history.csv`.
///
/// Ctrl-C ends the run after its iteration: results and table of what was reached are kept.
///
/// @return 0; 1 if a checked limit is missed; 130 if the run was interrupted
/// @throws std::runtime_error  one line: bad mesh, no limits to check against, output directory not
///         writable, diverged or not converged (results so far are kept)
int RunCylinder(const CylinderCase& run);

}  // namespace host

#endif
