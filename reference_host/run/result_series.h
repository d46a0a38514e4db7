#ifndef KVX3D_REFERENCE_HOST_RUN_RESULT_SERIES_H
#define KVX3D_REFERENCE_HOST_RUN_RESULT_SERIES_H

#include <memory>
#include <string>
#include <vector>

#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Makes the directory if need be and proves that a file can be written in it.
/// @throws std::runtime_error  one line with the directory and the system's reason
void PrepareOutputDirectory(const std::string& directory);

/// Publishes pressure and velocity of the host as a series of .vtu files with a .pvd index.
///
/// An overset mesh goes through the overset facade, which shows its active cells under its own
/// names; a single grid goes to the VTK tool directly. The host's arrays may carry other
/// quantities than their names say; `scalarName` and `vectorName` are what a single grid's files
/// call them.
class ResultSeries {
public:
    /// @param directory  the directory that `objects` was built with, prepared
    ResultSeries(const Mesh& mesh, HostObjects& objects, OversetLink& link,
                 const std::string& directory, const std::string& scalarName = "Pressure",
                 const std::string& vectorName = "Velocity");
    ~ResultSeries();

    /// Writes what the host's arrays hold now. The overset facade sets magnitudes below 1e-10 in
    /// them to zero.
    void Write(double time, int iteration);

    /// Merges the records into the .pvd.
    /// @return its path
    /// @throws std::runtime_error  fewer steps in it than were written: the toolbox does not stop
    ///         for a file that could not be opened
    std::string Finish();

private:
    class SingleGridTool;
    OversetLink& link;
    std::unique_ptr<SingleGridTool> single;  // null on an overset mesh
    const std::string pvdPath;
    int stepCount = 0;
};

}  // namespace host

#endif
