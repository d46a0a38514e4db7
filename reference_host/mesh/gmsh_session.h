#ifndef KVX3D_REFERENCE_HOST_MESH_GMSH_SESSION_H
#define KVX3D_REFERENCE_HOST_MESH_GMSH_SESSION_H

#include <functional>
#include <string>

namespace host {

/// Gmsh from construction to destruction: silent, on one thread, without the user's option files
/// and without the log and the ONELAB parameters of the session before, which the library keeps.
/// Gmsh is one per process, so sessions must not overlap.
class GmshSession {
public:
    GmshSession();
    ~GmshSession();
    GmshSession(const GmshSession&) = delete;
    GmshSession& operator=(const GmshSession&) = delete;

    /// Runs calls of the Gmsh library and turns what they throw, whatever its type in the
    /// installed version, into one line.
    ///
    /// @throws std::runtime_error  Gmsh's own words for its first error; without one, what the
    ///         calls threw
    void Run(const std::function<void()>& calls);
};

}  // namespace host

#endif
