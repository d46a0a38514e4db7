#ifndef KVX3D_REFERENCE_HOST_RUN_RESULT_SERIES_H
#define KVX3D_REFERENCE_HOST_RUN_RESULT_SERIES_H

#include <memory>
#include <string>
#include <vector>

#include "reference_host/link/host_objects.h"
#include "reference_host/link/overset_link.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Creates the directory unless it exists, and checks that a file can be written in it.
/// @throws std::runtime_error  one line with the directory and the reason
void PrepareOutputDirectory(const std::string& directory);

/// Writes pressure and velocity of the host as a series of .vtu files with a .pvd index.
///
/// On an overset mesh the overset facade writes the active cells, under the names "Pressure" and
/// "Velocity"; on a single grid the VTK tool is called directly. The arrays may contain other
/// quantities than pressure and velocity; the files of a single grid name them `scalarName` and
/// `vectorName`.
class ResultSeries {
public:
    /// @param directory  exists and is the one that `objects` was built with
    ResultSeries(const Mesh& mesh, HostObjects& objects, OversetLink& link,
                 const std::string& directory, const std::string& scalarName = "Pressure",
                 const std::string& vectorName = "Velocity");
    ~ResultSeries();

    /// Writes the present contents of the host's arrays as one step. The overset facade sets
    /// magnitudes below 1e-10 in these arrays to zero.
    void Write(double time, int iteration);

    /// Merges the records of all steps into the .pvd file.
    /// @return path of the .pvd file
    /// @throws std::runtime_error  it has fewer complete steps than were written; the toolbox
    /// itself
    ///         does not report a file that could not be written
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
