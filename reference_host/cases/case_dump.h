#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_DUMP_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_DUMP_H

#include <string>

#include "reference_host/cases/case_options.h"

namespace host {

/// Prints what the toolbox sees of a mesh, to compare two hosts of one mesh or two builds.
///
/// First everything that the toolbox linked (counts, ids, centers, volumes, area vectors, pairs),
/// before any donor is written; then, on an overset mesh, what the toolbox prints while it cuts
/// and its report on grids and groups.
///
///     reference_host dump mesh.file=channel_cylinder_overset.geo parameters.n=5
///     reference_host dump cases/cylinder.toml
struct DumpCase {
    std::string meshFile;
    MeshParameters parameters;  ///< values of variables of a .geo
};

CaseOptions OptionsOf(DumpCase& run);

/// Prints both parts on standard output.
/// @return 0, the exit code
/// @throws std::runtime_error  one line: bad mesh
int RunDump(const DumpCase& run);

}  // namespace host

#endif
