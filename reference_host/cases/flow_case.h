#ifndef KVX3D_REFERENCE_HOST_CASES_FLOW_CASE_H
#define KVX3D_REFERENCE_HOST_CASES_FLOW_CASE_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/cases/common_options.h"
#include "reference_host/physics/flow_solver.h"
#include "reference_host/run/flow_run.h"

namespace host {

/// Settings that all cases of steady laminar flow have in common.
struct FlowCase {
    std::string meshFile;
    MeshParameters parameters;  ///< values of variables of a .geo
    Scheme scheme = Scheme::LinearUpwind;
    std::optional<double> relaxation;  ///< of momentum; by default from the cells per diameter
    MatrixSolver matrixSolver = MatrixSolver::Bicgstab;
    std::optional<MatrixSolver> pressureSolver;  ///< of the pressure; by default `matrixSolver`
    Conservation conservation = Conservation::MassAndMomentum;  ///< at the hole boundary
    std::string outputDir;
    int stepsEvery = 20;       ///< iterations between two steps of the result series
    int maxIterations = 2000;  ///< the run fails if it has not converged by then
    bool check = false;        ///< compare the figures with their limits
};

/// The options for these settings.
std::vector<Option> FlowOptions(FlowCase& run);

/// What distinguishes one flow case from another. RunFlow() calls the functions in this order.
class FlowProblem {
public:
    virtual ~FlowProblem() = default;

    /// What the case calls its body, also the first word of its progress lines: "cylinder". A case
    /// without a body gives its own name.
    virtual std::string Body() const = 0;
    /// Whether the mesh must have a body. If not, the force coefficients and the control surfaces
    /// are left out on a mesh without one.
    virtual bool NeedsBody() const { return true; }
    /// Refuses a mesh that the case cannot use, before it is cut.
    /// @throws std::runtime_error  one line
    virtual void Require(const Mesh&) {}
    /// Selects the limits for this mesh if figures are to be checked, before it is cut.
    /// @throws std::runtime_error  one line: there are none
    virtual void RequireLimits(const Mesh& mesh) = 0;
    /// Inlet, viscosity and moving walls; the rest of the settings is that of the FlowCase.
    virtual FlowSettings Flow(const Mesh& mesh) const = 0;
    /// Change of the velocity in one iteration at which the flow has converged.
    virtual double ConvergedChange() const = 0;
    /// Force along x with the drag coefficient 1.
    virtual double ForceUnit(const Mesh& mesh) const = 0;
    /// Measures the final flow and prints its figures beside the published ones.
    virtual void Report(const FlowRun& run, const Mesh& mesh) = 0;
    /// The measured figures that are outside their limits, one sentence each.
    virtual std::vector<std::string> Misses() const = 0;

    /// Drag and lift coefficient of the present flow.
    ForceCoefficients Coefficients(const FlowSolver& flow) const;
};

/// Refuses a mesh through which no stream can pass, for a body in a stream.
/// @throws std::runtime_error  one line: no face in the group "inlet" or "outlet"
void RequireInletAndOutlet(const Mesh& mesh, const std::string& meshFile);

/// Runs a flow case: reads and cuts the mesh, iterates, prints progress and figures, writes a
/// result series (time is the iteration), the residual history `history.csv` and the donors
/// `donors.csv`.
///
/// Ctrl-C ends the run after its iteration; results and figures up to there are kept.
///
/// @return 0; 1 if a checked figure is outside its limits; 130 if the run was interrupted
/// @throws std::runtime_error  one line: bad mesh, no limits to check against, output directory
///         not writable, diverged or not converged (results so far are kept)
int RunFlow(const FlowCase& run, FlowProblem& problem);

}  // namespace host

#endif
