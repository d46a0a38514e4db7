#ifndef KVX3D_REFERENCE_HOST_RUN_PICTURE_H
#define KVX3D_REFERENCE_HOST_RUN_PICTURE_H

#include <string>
#include <vector>

namespace host {

/// The command that draws results with a script of `reference_host/pictures` and the Python
/// interpreter of the system, ready for a shell.
///
/// @param script     file name of the script
/// @param arguments  passed on as they are, blanks and quotes included
std::string DrawingCommand(const std::string& script, const std::vector<std::string>& arguments);

/// Runs such a command without its output.
///
/// @return false if the command failed, for example because Python lacks VTK or Matplotlib
bool Draw(const std::string& command);

}  // namespace host

#endif
