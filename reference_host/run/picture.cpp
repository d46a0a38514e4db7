#include "reference_host/run/picture.h"

#include <cstdlib>

namespace host {
namespace {

/// The text as one word of a shell command.
std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

}  // namespace

std::string DrawingCommand(const std::string& script, const std::vector<std::string>& arguments) {
    std::string command = "/usr/bin/python3 -B " +
                          Quoted(std::string(KVX3D_REFERENCE_HOST_PICTURE_DIR) + "/" + script);
    for (const std::string& argument : arguments) {
        command += " " + Quoted(argument);
    }
    return command;
}

bool Draw(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

}  // namespace host
