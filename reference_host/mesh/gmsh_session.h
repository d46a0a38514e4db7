#ifndef KVX3D_REFERENCE_HOST_MESH_GMSH_SESSION_H
#define KVX3D_REFERENCE_HOST_MESH_GMSH_SESSION_H

#include <functional>
#include <string>

namespace host {

/// Starts Gmsh when it is constructed and ends it when it is destroyed. Gmsh then prints nothing,
/// uses one thread and reads no option file of the user; the log and the ONELAB parameters that the
/// library keeps from an earlier session are cleared. There is one Gmsh per process, so two
/// sessions must not overlap.
class GmshSession {
public:
    GmshSession();
    ~GmshSession();
    GmshSession(const GmshSession&) = delete;
    GmshSession& operator=(const GmshSession&) = delete;

    /// Makes calls of the Gmsh library. Versions of Gmsh throw different types; all of them become
    /// one exception with a text of one line.
    ///
    /// @throws std::runtime_error  the first error in Gmsh's log, or the text of what the calls
    /// threw
    void Run(const std::function<void()>& calls);
};

}  // namespace host

#endif
