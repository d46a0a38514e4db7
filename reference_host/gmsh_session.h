#ifndef KVX3D_REFERENCE_HOST_GMSH_SESSION_H
#define KVX3D_REFERENCE_HOST_GMSH_SESSION_H

#include <functional>
#include <map>
#include <string>

namespace host {

/// Gmsh from construction to destruction: silent, on one thread, without the user's option files.
/// Gmsh is one per process, so sessions must not overlap.
class GmshSession {
public:
    /// @param numbers  values for DefineConstant variables of the .geo files opened later
    explicit GmshSession(const std::map<std::string, double>& numbers = {});
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
