#ifndef KVX3D_REFERENCE_HOST_APP_HELP_H
#define KVX3D_REFERENCE_HOST_APP_HELP_H

#include <string>

#include "reference_host/cases/registry.h"

namespace host {

/// Text of `reference_host --help`: the forms of the command line and all cases.
std::string ProgramHelp();

/// Text of `reference_host CASE --help`: each option with both names, limits and present value.
std::string CaseHelp(const CaseEntry& entry, const CaseOptions& options);

}  // namespace host

#endif
