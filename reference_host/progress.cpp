#include "reference_host/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <utility>

namespace host {

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
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Progress::StepDone(const std::string& status) {
    ++done;
    if (!terminal) {
        out << fmt::format("{} {}/{}: {}\n", task, done, steps, status) << std::flush;
        return;
    }
    constexpr int barWidth = 20;
    const std::string bar(barWidth * done / steps, '#');
    const double left = SecondsSoFar() / done * (steps - done);
    // Back to the line's start and clear to its end: the new text may be shorter.
    out << fmt::format("\r\033[K{} [{:.<{}}] {}/{}  {}  {} left", task, bar, barWidth, done, steps,
                       status, Duration(left))
        << std::flush;
}

}  // namespace host
