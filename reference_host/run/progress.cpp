#include "reference_host/run/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace host {

namespace {

double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Writes a line over the previous one: the cursor returns to its start, and the line is cleared
/// because the new text may be shorter.
void Redraw(std::ostream& out, const std::string& task, double fraction, const std::string& text,
            double secondsLeft) {
    constexpr int barWidth = 20;
    // The small term prevents a complete step from being rounded down.
    const std::string bar(static_cast<int>(barWidth * fraction + 1e-9), '#');
    out << fmt::format("\r\033[K{} [{:.<{}}] {}  {} left", task, bar, barWidth, text,
                       Duration(secondsLeft))
        << std::flush;
}

}  // namespace

bool StandardOutputIsTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

std::string Duration(double seconds) {
    const int whole = static_cast<int>(seconds + 0.5);
    if (seconds < 9.95) {
        return fmt::format("{:.1f} s", seconds);
    }
    if (whole < 60) {
        return fmt::format("{} s", whole);
    }
    if (whole < 3600) {
        return fmt::format("{} min {} s", whole / 60, whole % 60);
    }
    return fmt::format("{} h {} min", whole / 3600, whole % 3600 / 60);
}

Progress::Progress(std::string task_, int steps_, std::ostream& out_, bool terminal_)
    : task(std::move(task_)), steps(steps_), out(out_), terminal(terminal_) {}

Progress::~Progress() {
    if (terminal && done > 0) {
        out << '\n' << std::flush;
    }
}

double Progress::SecondsSoFar() const {
    return SecondsSince(start);
}

void Progress::StepDone(const std::string& status) {
    ++done;
    if (!terminal) {
        out << fmt::format("{} {}/{}: {}\n", task, done, steps, status) << std::flush;
        return;
    }
    Redraw(out, task, static_cast<double>(done) / steps,
           fmt::format("{}/{}  {}", done, steps, status), SecondsSoFar() / done * (steps - done));
}

IterationProgress::IterationProgress(std::string task_, double target_, std::ostream& out_,
                                     bool terminal_)
    : task(std::move(task_)), target(target_), out(out_), terminal(terminal_) {}

IterationProgress::~IterationProgress() {
    if (terminal && iteration > 0) {
        out << '\n' << std::flush;
    }
    out << pendingLine << std::flush;
}

double IterationProgress::FractionDone(double change) {
    if (iteration == 1) {
        firstChange = change;
    }
    const double gained = std::log(firstChange / change) / std::log(firstChange / target);
    if (gained > fraction) {  // false for NaN
        fraction = std::min(gained, 1.0);
    }
    return fraction;
}

void IterationProgress::Done(double change, const std::string& status) {
    ++iteration;
    const std::string text = fmt::format("{}: change {:.1e}, {}", iteration, change, status);
    if (terminal) {
        const double done = FractionDone(change);
        const double left = done > 0.0 ? SecondsSince(start) / done * (1.0 - done) : 0.0;
        Redraw(out, task, done, text, left);
        return;
    }
    pendingLine = fmt::format("{} {}\n", task, text);
    if (iteration % 10 == 0) {
        out << pendingLine << std::flush;
        pendingLine.clear();
    }
}

}  // namespace host
