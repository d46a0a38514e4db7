#ifndef KVX3D_REFERENCE_HOST_RUN_FLOW_RUN_H
#define KVX3D_REFERENCE_HOST_RUN_FLOW_RUN_H

#include <functional>
#include <string>

#include "reference_host/physics/flow_solver.h"
#include "reference_host/run/control_figures.h"
#include "reference_host/run/convergence.h"
#include "reference_host/run/interrupt.h"
#include "reference_host/run/residual_history.h"
#include "reference_host/run/result_series.h"

namespace host {

/// How a flow case is run and which files it writes.
struct FlowRunSettings {
    std::string name;  ///< first word of the progress lines
    std::string outputDir;
    int stepsEvery = 20;       ///< iterations between two steps of the result series
    int maxIterations = 2000;  ///< the run fails if it has not converged by then
    ConvergenceLimits limits;
    double forceUnit = 1.0;  ///< force along x with the coefficient 1
};

/// Drag and lift coefficient, printed with every iteration.
struct ForceCoefficients {
    double cd = 0.0;
    double cl = 0.0;
};

/// A flow solver with all that a run of it needs: progress, residual history `history.csv`, result
/// series (time is the iteration), interruption by Ctrl-C.
class FlowRun {
public:
    enum class End { Converged, Interrupted, Diverged, IdleSolver, OutOfIterations };
    using Figures = std::function<ForceCoefficients(const FlowSolver&)>;

    /// Borrows mesh, objects and link.
    /// @param settings  the output directory exists and is the one that `objects` was built with
    /// @param figures   none for a flow without a body, which has no figures of forces
    FlowRun(const Mesh& mesh, HostObjects& objects, OversetLink& link, const FlowSettings& flow,
            const FlowRunSettings& settings, Figures figures);

    /// Iterates until the run ends for one of the five reasons, and completes the files. The
    /// results of an interrupted run include its last iteration.
    ///
    /// @return Converged or Interrupted
    /// @throws std::runtime_error  one line: diverged, a linear solver that returned its first
    ///         guess unchanged, or out of iterations (the results so far are kept)
    End Run();

    const FlowSolver& Flow() const { return flow; }
    int IterationCount() const { return iteration; }
    /// Prints the drag over the control surfaces and the mass created at the interface; nothing
    /// without a body.
    void PrintControl() const;
    /// ControlMisses() of the present flow; none without forces.
    std::vector<std::string> ControlMisses() const;
    /// Prints mass defect, iterations and CPU seconds.
    void PrintEffort() const;
    /// Prints where the results are and, after an interruption, that they are not converged.
    /// @return 0, or Interrupt::exitCode
    int PrintEnd(End end) const;

private:
    End Iterate(const Interrupt& interrupt);
    std::string Record();
    void Write();
    [[noreturn]] void Fail(End end) const;

    HostObjects& objects;
    const FlowRunSettings settings;
    const FlowSettings flowSettings;
    const Figures figures;
    FlowSolver flow;
    ResultSeries results;
    ResidualHistory history;
    std::string pvdPath;
    FlowIteration last;  // the last iteration
    int iteration = 0;
    int lastWritten = 0;
    int pressureIterations = 0;
    int mostPressureIterations = 0;
    double seconds = 0.0;
};

}  // namespace host

#endif
