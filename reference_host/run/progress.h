#ifndef KVX3D_REFERENCE_HOST_RUN_PROGRESS_H
#define KVX3D_REFERENCE_HOST_RUN_PROGRESS_H

#include <chrono>
#include <ostream>
#include <string>

namespace host {

/// True if standard output goes to a person's terminal.
bool StandardOutputIsTerminal();

/// "0.4 s", "12 s", "3 min 20 s", "2 h 5 min".
std::string Duration(double seconds);

/// Reports the steps of a loop of known length: on a terminal one line that is redrawn, with a bar
/// and the time left; elsewhere one plain line a step, so that a log reads well.
class Progress {
public:
    /// @param task   word in front of each line
    /// @param steps  number of steps, at least 1
    Progress(std::string task, int steps, std::ostream& out, bool terminal);
    /// Ends the redrawn line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Reports that one more step is done.
    /// @param status  what it reached: time, residual, iterations
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

/// Reports an iteration that ends when a change is small enough: on a terminal one line that is
/// redrawn, with a bar of the orders of magnitude gained and the time left; elsewhere a plain line
/// every tenth iteration and for the last.
class IterationProgress {
public:
    /// @param task    word in front of each line
    /// @param target  change at which the iteration ends, above 0
    IterationProgress(std::string task, double target, std::ostream& out, bool terminal);
    /// Ends the redrawn line; elsewhere prints the last iteration if that is still to be told.
    ~IterationProgress();
    IterationProgress(const IterationProgress&) = delete;
    IterationProgress& operator=(const IterationProgress&) = delete;

    /// Reports that one more iteration is done.
    /// @param status  what it reached besides the change
    void Done(double change, const std::string& status);

private:
    double FractionDone(double change);

    const std::string task;
    const double target;
    std::ostream& out;
    const bool terminal;
    int iteration = 0;
    double firstChange = 0.0;
    double fraction = 0.0;    // never falls: residuals may wiggle, a bar should not
    std::string pendingLine;  // last plain line that was not printed
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

}  // namespace host

#endif
