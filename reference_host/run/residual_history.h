#ifndef KVX3D_REFERENCE_HOST_RUN_RESIDUAL_HISTORY_H
#define KVX3D_REFERENCE_HOST_RUN_RESIDUAL_HISTORY_H

#include <fstream>
#include <string>

namespace host {

/// The course of a flow run as comma-separated values, a line an iteration: what a plot needs.
class ResidualHistory {
public:
    /// Writes the heading. @throws std::runtime_error  the file cannot be opened
    explicit ResidualHistory(const std::string& path);

    /// Writes a line through to the file, so that a run in progress can be plotted.
    void Add(int iteration, double change, double massResidual, double cd, double cl);

    /// @throws std::runtime_error  not every line could be written
    void RequireWhole() const;

    const std::string path;

private:
    std::ofstream file;
};

}  // namespace host

#endif
