#ifndef KVX3D_REFERENCE_HOST_RUN_RESIDUAL_HISTORY_H
#define KVX3D_REFERENCE_HOST_RUN_RESIDUAL_HISTORY_H

#include <fstream>
#include <optional>
#include <string>

#include "reference_host/run/control_figures.h"

namespace host {

/// The history of a flow run as comma-separated values for a plot, one line per iteration.
class ResidualHistory {
public:
    /// Writes the line with the column names.
    /// @throws std::runtime_error  one line: the file cannot be opened
    explicit ResidualHistory(const std::string& path);

    /// Writes a line and flushes it, so that a run in progress can be plotted.
    /// Figures that do not exist on the mesh are empty: those of the interface on a single grid,
    /// and all forces without a body.
    ///
    /// @param linearReduction  LargestReduction() of the iteration
    void Add(int iteration, double change, double massResidual, std::optional<double> cd,
             std::optional<double> cl, double linearReduction, const ControlFigures& control);

    /// @throws std::runtime_error  one line: some lines could not be written
    void RequireWhole() const;

    const std::string path;

private:
    std::ofstream file;
};

}  // namespace host

#endif
