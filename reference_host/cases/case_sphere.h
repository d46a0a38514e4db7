#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_SPHERE_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_SPHERE_H

#include <optional>
#include <string>

#include "reference_host/discretisation/scheme.h"
#include "reference_host/discretisation/solver_matrix.h"
#include "reference_host/mesh/mesh_reader.h"

namespace host {

/// Steady laminar flow around a sphere at Reynolds number 100, in three dimensions (see
/// benchmark_sphere.h): what `reference_host sphere` was asked for.
///
/// A shell of tetrahedra around the sphere in a box of hexahedra, whose side walls move with the
/// stream.
///
///     reference_host sphere --mesh sphere_overset.geo --set n=7 --check
struct SphereCase {
    std::string meshFile;
    MeshParameters parameters;  ///< numbers for a .geo
    Scheme scheme = Scheme::LinearUpwind;
    std::optional<double> relaxation;  ///< of momentum; default by the background cells a diameter
    MatrixSolver matrixSolver = MatrixSolver::Bicgstab;
    std::optional<MatrixSolver> pressureSolver;  ///< of the pressure; default the one above
    std::string outputDir = "sphere_results";
    int stepsEvery = 20;       ///< iterations between two steps of the result series
    int maxIterations = 1000;  ///< the run fails if it has not converged by then
    bool check = false;        ///< compare with the limits
};

/// Runs the case, prints its progress and a table against the published values, writes a result
/// series (time is the iteration), the residual history `history.csv` and the velocity on the axis
/// of the wake, `wake_axis.csv`.
///
/// Ctrl-C ends the run after its iteration: results and table of what was reached are kept.
///
/// @return 0; 1 if a checked limit is missed; 130 if the run was interrupted
/// @throws std::runtime_error  one line: bad mesh, no limits to check against, output directory not
///         writable, diverged or not converged (results so far are kept)
int RunSphere(const SphereCase& run);

}  // namespace host

#endif
