#ifndef KVX3D_REFERENCE_HOST_CASES_ORDER_STUDY_H
#define KVX3D_REFERENCE_HOST_CASES_ORDER_STUDY_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/cases/study_mesh.h"
#include "reference_host/physics/manufactured.h"
#include "reference_host/physics/scalar_solver.h"

namespace host {

// An order study measures the error of one scheme against a manufactured solution on meshes of one
// kind, from coarse to fine. The solution is that of WaveFor(), the convection velocity is
// (1, 0.6, 0), and the exact values are prescribed on inlet, outlet and physical walls.
//
// Source of the method: P. J. Roache, Code verification by the method of manufactured solutions,
// J. Fluids Eng. 124 (2002) 4-10, doi:10.1115/1.1436090.

/// Errors on one mesh, over all active cells and over each grid.
struct StudyLevel {
    int size = 0;  ///< cells per unit length
    int activeCells = 0;
    ErrorNorms all;
    std::vector<ErrorNorms> byGrid;  ///< entry g - 1 for cavity g; empty on a single grid
    SolveReport solve;
};

/// One scheme on one kind of mesh.
struct OrderStudy {
    Scheme scheme;
    std::optional<int> kind;         ///< variable of box_annulus_overset.geo; none for other meshes
    std::vector<StudyLevel> levels;  ///< coarse to fine
    bool isPlane =
        true;  ///< the solution is two-dimensional; limits of the error are for these only
};

/// What a scheme must reach.
struct StudyLimits {
    double orderL2 = 0.0;      ///< lowest order of the L2 error
    double orderMax = 0.0;     ///< lowest order of the maximum error
    std::optional<double> l2;  ///< largest L2 error at one size; none where it was not measured
};

/// Limits of a study: for the orders between the two finest levels, and for the L2 error of the
/// plane solution on box_annulus_overset.geo at n = 20, kinds 0 and 1: 1.25 times what this
/// discretization was measured with.
StudyLimits LimitsOf(Scheme scheme, std::optional<int> kind, int size);

/// Refuses to compare figures if there is nothing to compare them with: an order needs two sizes,
/// and the L2 error has a limit at one size only.
///
/// @param kind, sizes, isPlane  of the study
/// @throws std::runtime_error  one line
void RequireLimits(std::optional<int> kind, const std::vector<int>& sizes, bool isPlane);

/// Diffusion coefficient of a study that names none: 1 for pure diffusion, else 0.01.
double DefaultMu(Scheme scheme);

/// Solves the manufactured problem on one mesh, with one scheme after the other. Neither copied nor
/// moved.
class LevelSolver {
public:
    /// @param level  its series receives the solution as scalar, and its error as x component of
    ///               the vector
    explicit LevelSolver(const StudyMesh& level);

    /// @param mu  diffusion coefficient
    /// @throws std::runtime_error  one line: the residual did not reach its target
    StudyLevel Solve(Scheme scheme, double mu, MatrixSolver matrixSolver);

private:
    void Publish(const std::vector<double>& phi);
    StudyLevel Measure(const ManufacturedRun& result) const;

    const StudyMesh level;
    const AnalyticField exact;
    int stepCount = 0;
};

/// What is outside the limits, one sentence each: errors on all levels, orders between the two
/// finest ones.
std::vector<std::string> Misses(const OrderStudy& study);
/// The same for several studies.
std::vector<std::string> Misses(const std::vector<OrderStudy>& studies);

/// Prints errors and orders of all levels on standard output.
void PrintTable(const std::vector<OrderStudy>& studies);

}  // namespace host

#endif
