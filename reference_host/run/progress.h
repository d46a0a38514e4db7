#ifndef KVX3D_REFERENCE_HOST_RUN_PROGRESS_H
#define KVX3D_REFERENCE_HOST_RUN_PROGRESS_H

#include <chrono>
#include <ostream>
#include <string>

namespace host {

/// True if standard output is a terminal.
bool StandardOutputIsTerminal();

/// "0.4 s", "12 s", "3 min 20 s", "2 h 5 min".
std::string Duration(double seconds);

/// Reports the steps of a loop of known length. On a terminal it redraws one line with a bar and
/// the time left; in a file it writes one plain line per step.
class Progress {
public:
    /// @param task   first word of each line
    /// @param steps  number of steps, at least 1
    Progress(std::string task, int steps, std::ostream& out, bool terminal);
    /// Ends the line that was redrawn.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Reports that one more step is done.
    /// @param status  its results: time, residual, iterations
    void StepDone(const std::string& status);

    double SecondsSoFar() const;

private:
    const std::string task;
    const int steps;
    std::ostream& out;
    const bool terminal;
    int done = 0;
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

/// Reports an iteration that ends when a change is small enough. On a terminal it redraws one line
/// with the time left and a bar, whose length is proportional to the logarithm of the reduction so
/// far; in a file it writes a plain line for every tenth iteration and for the last one.
class IterationProgress {
public:
    /// @param task    first word of each line
    /// @param target  change at which the iteration ends, above 0
    IterationProgress(std::string task, double target, std::ostream& out, bool terminal);
    /// Ends the line that was redrawn; in a file writes the last iteration unless it was written.
    ~IterationProgress();
    IterationProgress(const IterationProgress&) = delete;
    IterationProgress& operator=(const IterationProgress&) = delete;

    /// Reports that one more iteration is done.
    /// @param status  its other results
    void Done(double change, const std::string& status);

private:
    double FractionDone(double change);

    const std::string task;
    const double target;
    std::ostream& out;
    const bool terminal;
    int iteration = 0;
    double firstChange = 0.0;
    double fraction = 0.0;    // never decreases, so that the bar does not follow oscillations
    std::string pendingLine;  // the last plain line, if it was not written
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

}  // namespace host

#endif
