#ifndef KVX3D_REFERENCE_HOST_APP_COMMAND_LINE_H
#define KVX3D_REFERENCE_HOST_APP_COMMAND_LINE_H

#include <memory>
#include <string>

#include "reference_host/cases/registry.h"

namespace host {

/// The contents of the command line.
struct Command {
    std::unique_ptr<Case> chosen;  ///< ready to run; null for --help
    std::string help;              ///< text of --help
};

/// Reads the command line:
///
///     reference_host CASE [option ...]
///     reference_host [run] FILE.toml [option ...]
///     reference_host CASE FILE.toml [option ...]
///
/// An option is `solver.relaxation=0.9`, or in its short form `--relaxation 0.9` or
/// `--relaxation=0.9`; a flag may be given alone: `--check`. `--set n=10` is the short form of
/// `parameters.n=10`. Of an option given twice the last value counts, and each replaces that of the
/// case file.
///
/// @throws std::runtime_error  one line that names the word and says what is wrong with it
Command ReadCommand(int argc, const char* const* argv);

}  // namespace host

#endif
