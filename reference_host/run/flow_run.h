#ifndef KVX3D_REFERENCE_HOST_RUN_FLOW_RUN_H
#define KVX3D_REFERENCE_HOST_RUN_FLOW_RUN_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "reference_host/physics/flow_solver.h"
#include "reference_host/run/interrupt.h"
#include "reference_host/run/residual_history.h"
#include "reference_host/run/result_series.h"

namespace host {

/// How a flow case is run and what it leaves behind.
struct FlowRunSettings {
    std::string name;  ///< in front of the progress lines
    std::string outputDir;
    int stepsEvery = 20;            ///< iterations between two steps of the result series
    int maxIterations = 2000;       ///< the run fails if it has not converged by then
    double convergedChange = 1e-7;  ///< of the velocity in one iteration
};

/// Drag and lift coefficient, told with every iteration.
struct ForceCoefficients {
    double cd = 0.0;
    double cl = 0.0;
};

/// A flow solver with everything that watches it: progress, residual history `history.csv`, result
/// series (time is the iteration), Ctrl-C.
class FlowRun {
public:
    enum class End { Converged, Interrupted, Diverged, OutOfIterations };
    using Figures = std::function<ForceCoefficients(const FlowSolver&)>;

    /// Borrows mesh, objects and link. The output directory is the one `objects` was built with,
    /// prepared.
    FlowRun(const Mesh& mesh, HostObjects& objects, OversetLink& link, const FlowSettings& flow,
            const FlowRunSettings& settings, Figures figures);

    /// Iterates up to the end, whichever it is, and completes the files. An interrupted run has
    /// complete results of its last iteration.
    ///
    /// @return Converged or Interrupted
    /// @throws std::runtime_error  one line: diverged, or not converged in time (the results so far
    ///         are kept)
    End Run();

    const FlowSolver& Flow() const { return flow; }
    int IterationCount() const { return iteration; }
    /// Prints what the run took: mass defect, iterations, seconds.
    void PrintEffort() const;
    /// Prints where the results are and, after Ctrl-C, that they are not converged.
    /// @return 0, or the exit code of an interrupted program
    int PrintEnd(End end) const;

private:
    End Iterate(const Interrupt& interrupt);
    void Write();
    [[noreturn]] void Fail(End end) const;

    HostObjects& objects;
    const FlowRunSettings settings;
    const double relaxation;
    const bool countsPressure;  // SAMG tells no iterations
    const Figures figures;
    FlowSolver flow;
    ResultSeries results;
    ResidualHistory history;
    std::string pvdPath;
    int iteration = 0;
    int lastWritten = 0;
    int pressureIterations = 0;
    int mostPressureIterations = 0;
    double seconds = 0.0;
};

/// Prints a row of a table: a figure, its published value and the deviation in per cent.
/// @param published  none: the figure alone
void PrintComparison(const std::string& name, double value, std::optional<double> published);
/// Prints the head over such rows.
void PrintComparisonHead();

/// Prints the misses on standard error and the verdict on standard output.
/// @return 0, or 1 if anything misses
int ReportLimitMisses(const std::vector<std::string>& misses);

}  // namespace host

#endif
