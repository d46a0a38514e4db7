#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_MMS_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_MMS_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/mesh/mesh_reader.h"
#include "reference_host/physics/manufactured.h"
#include "reference_host/physics/scalar_solver.h"

namespace host {

/// Order study with a manufactured solution: what `reference_host mms` was asked for.
///
/// phi = sin(1.3 x + 0.3) cos(1.3 y - 0.2) + 0.2 x, in three dimensions the product times
/// cos(pi z / thickness), carried by the velocity (1, 0.6, 0), Dirichlet values on inlet, outlet
/// and physical walls. Each scheme is run on each kind of mesh at each size.
///
/// Source of the method: P. J. Roache, Code verification by the method of manufactured solutions,
/// J. Fluids Eng. 124 (2002) 4-10, doi:10.1115/1.1436090.
struct MmsCase {
    std::string meshFile;
    MeshParameters parameters;          ///< further numbers for the .geo
    std::vector<int> kinds = {1, 0};    ///< values of the .geo's `kind`; empty: it has none
    std::vector<int> sizes = {10, 20};  ///< values of the .geo's `n`, cells per unit length
    std::vector<Scheme> schemes = {Scheme::Diffusion};
    std::optional<double> mu;  ///< default 1 for pure diffusion, else 0.01
    MatrixSolver matrixSolver = MatrixSolver::Bicgstab;
    std::optional<double> depth;  ///< thickness of the mesh: sets the .geo's `nz` to depth * n
    bool check = false;           ///< compare with the limits
    std::string outputDir;        ///< a result series per mesh, one step a scheme; empty: none
};

/// Errors of one run, over all active cells and over each grid.
struct MmsLevel {
    int size = 0;
    int activeCells = 0;
    ErrorNorms all;
    std::vector<ErrorNorms> byGrid;  ///< entry g - 1 for cavity g; one grid: empty
    SolveReport solve;
};

/// Orders and largest L2 error that a scheme must reach.
struct MmsLimits {
    double orderL2 = 0.0;
    double orderMax = 0.0;
    std::optional<double> l2;  ///< absolute, for the size it is asked for
};

/// Limits for the plane wave on box_annulus_overset.geo: orders between the two finest levels, and
/// 1.25 times the L2 error that this discretisation was measured with at n = 20 on kinds 0 and 1.
MmsLimits LimitsOf(Scheme scheme, std::optional<int> kind, int size);

/// Order of an error between a coarse and a fine level.
double Order(double coarseError, double fineError, int coarseSize, int fineSize);

/// One scheme on one kind of mesh, coarse to fine.
struct MmsStudy {
    Scheme scheme;
    std::optional<int> kind;
    std::vector<MmsLevel> levels;
    bool isPlane = true;  ///< of the plane wave, which the error limits were measured with
};

/// What misses the limits, one sentence each: orders between the two finest levels, errors on all.
std::vector<std::string> Misses(const MmsStudy& study);

/// Diffusion coefficient of a study that names none: 1 for pure diffusion, else 0.01.
double DefaultMu(Scheme scheme);

/// @throws std::runtime_error  "<what>: residual ...", if the solve missed its target
void RequireConverged(const SolveReport& solve, const std::string& what);

/// Prints errors and orders of all levels on standard output.
void PrintTable(const std::vector<MmsStudy>& studies);

/// Prints what misses the limits on standard error and the verdict on standard output.
/// @return 0, or 1 if anything misses
int ReportMisses(const std::vector<MmsStudy>& studies);

/// Runs all schemes on one kind of mesh at all sizes; each mesh is made and cut once.
/// @param kind  value of the .geo's `kind`; none: the file has no such number
std::vector<MmsStudy> RunKind(const MmsCase& run, std::optional<int> kind);

/// Runs the study and prints its table.
/// @return 0; 1 if a checked limit is missed
/// @throws std::runtime_error  one line: bad mesh, output directory not writable, run not converged
int RunMms(const MmsCase& run);

}  // namespace host

#endif
