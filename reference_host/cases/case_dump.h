#ifndef KVX3D_REFERENCE_HOST_CASES_CASE_DUMP_H
#define KVX3D_REFERENCE_HOST_CASES_CASE_DUMP_H

#include <string>

#include "reference_host/mesh/mesh_reader.h"

namespace host {

/// What the toolbox sees of a mesh, as text: what `reference_host dump` was asked for.
///
/// Everything it linked (counts, ids, centres, volumes, area vectors, pairs), before any donor is
/// written, then on an overset mesh what the cutting prints and the report on grids and groups.
/// For comparing two hosts of one mesh, or two builds.
///
///     reference_host dump --mesh channel_cylinder_overset.geo --set n=5
struct DumpCase {
    std::string meshFile;
    MeshParameters parameters;  ///< numbers for a .geo
};

/// Prints both on standard output.
/// @return 0, the exit code
/// @throws std::runtime_error  one line: bad mesh
int RunDump(const DumpCase& run);

}  // namespace host

#endif
