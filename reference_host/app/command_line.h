#ifndef KVX3D_REFERENCE_HOST_APP_COMMAND_LINE_H
#define KVX3D_REFERENCE_HOST_APP_COMMAND_LINE_H

#include "reference_host/cases/case_cylinder.h"
#include "reference_host/cases/case_dump.h"
#include "reference_host/cases/case_heat.h"
#include "reference_host/cases/case_mms.h"
#include "reference_host/cases/case_nonmatching.h"
#include "reference_host/cases/case_sphere.h"

namespace host {

enum class Task { ShowHelp, Cylinder, Heat, Mms, Nonmatching, Dump, Sphere };

/// What the command line asked for. Only the chosen task's case is filled.
struct Command {
    Task task = Task::ShowHelp;
    std::string help;  ///< text of --help
    CylinderCase cylinder;
    HeatCase heat;
    MmsCase mms;
    NonmatchingCase nonmatching;
    DumpCase dump;
    SphereCase sphere;
};

/// Reads the command line; the only place that knows it.
/// @throws std::runtime_error  one line naming the option and what it takes
Command ReadCommand(int argc, const char* const* argv);

}  // namespace host

#endif
