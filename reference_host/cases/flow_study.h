#ifndef KVX3D_REFERENCE_HOST_CASES_FLOW_STUDY_H
#define KVX3D_REFERENCE_HOST_CASES_FLOW_STUDY_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/cases/study_mesh.h"
#include "reference_host/physics/flow_errors.h"

namespace host {

// An order study of the flow solver: velocity, pressure, force and fluxes of a steady flow are
// compared with the manufactured flow of ManufacturedFlowFor() on meshes of one kind, from coarse
// to fine. The exact velocity is prescribed on inlet, outlet and physical walls, the body included,
// and the fluid is at rest before the first iteration.

/// Errors on one mesh.
struct FlowStudyLevel {
    int size = 0;  ///< cells per unit length
    int activeCells = 0;
    bool hasTetrahedra = false;
    FlowErrorNorms all;
    std::vector<FlowErrorNorms> byGrid;  ///< entry g - 1 for cavity g; empty on a single grid
    double force = 0.0;                  ///< see ForceError()
    double flux = 0.0;                   ///< see FluxError()
    int iterations = 0;                  ///< of the flow solver
};

/// One scheme on one kind of mesh.
struct FlowStudy {
    Scheme scheme;
    std::optional<int> kind;  ///< variable of box_annulus_overset.geo; none for other meshes
    std::vector<FlowStudyLevel> levels;  ///< coarse to fine
};

/// Lowest orders between the two finest levels.
struct FlowStudyLimits {
    double velocity = 0.0;  ///< of the L2 error over all cells
    double pressure = 0.0;  ///< the same
    double force = 0.0;
};
FlowStudyLimits FlowLimitsOf(bool hasTetrahedra);

/// Solves the manufactured flow on one mesh, with one scheme after the other. Neither copied nor
/// moved.
class FlowLevelSolver {
public:
    /// Viscosity of a study that names none. The Reynolds number with the length 4 is 80.
    static constexpr double defaultMu = 0.05;
    static constexpr int maxIterations = 3000;

    /// @param level  its series receives the differences to the exact pressure and velocity
    explicit FlowLevelSolver(const StudyMesh& level);

    /// @throws std::runtime_error  one line: diverged, not converged, or a linear solver that
    ///         returned its first guess unchanged
    FlowStudyLevel Solve(Scheme scheme, double mu, MatrixSolver matrixSolver);

private:
    FlowSettings Settings(Scheme scheme, double mu, MatrixSolver matrixSolver) const;
    FlowStudyLevel Measure(const FlowSolver& flow);
    void Publish(const FlowDifference& difference);

    const StudyMesh level;
    const ManufacturedFlow exact;
    int stepCount = 0;
};

/// The orders that are below their limits, one sentence each.
std::vector<std::string> Misses(const std::vector<FlowStudy>& studies);

/// Prints errors and orders of all levels on standard output.
void PrintTable(const std::vector<FlowStudy>& studies);

}  // namespace host

#endif
