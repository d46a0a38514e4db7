#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>

#include "reference_host/app/command_line.h"

namespace {

int Run(const host::Command& command) {
    if (!command.chosen) {
        std::cout << command.help;
        return 0;
    }
    return command.chosen->Run();
}

/// Refuses to call a run successful if a full disk or a closed pager cut its log short.
void RequireWrittenOutput() {
    if (!std::cout.flush() || std::fflush(stdout) != 0) {
        throw std::runtime_error(
            "standard output could not be written completely; the result files are complete");
    }
}

/// Prints one line for each fault.
void PrintError(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::cerr << "reference_host: " << line << '\n';
    }
}

/// Reports an exception that nothing caught. Gmsh 4.8 throws strings out of parallel loops on some
/// geometries, where no handler can be reached.
[[noreturn]] void EndInOneLine() noexcept {
    std::string what = "unknown";
    try {
        if (const std::exception_ptr thrown = std::current_exception()) {
            std::rethrow_exception(thrown);
        }
    } catch (const std::exception& error) {
        what = error.what();
    } catch (const std::string& text) {
        what = text;
    } catch (...) {
    }
    std::replace(what.begin(), what.end(), '\n', ' ');
    std::cerr << "reference_host: a library ended the program, its error: " << what << '\n';
    std::_Exit(1);
}

}  // namespace

/// A small flow solver that hosts the toolbox; `reference_host --help` lists its cases.
int main(int argc, char** argv) try {
    std::set_terminate(EndInOneLine);
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);  // a run continues to its results if the pager is closed
#endif
    const int code = Run(host::ReadCommand(argc, argv));
    RequireWrittenOutput();
    return code;
} catch (const std::bad_alloc&) {
    PrintError("out of memory: take a coarser mesh");
    return 1;
} catch (const std::exception& error) {
    PrintError(error.what());
    return 1;
}
