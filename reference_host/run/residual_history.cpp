#include "reference_host/run/residual_history.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace host {

namespace {

/// A figure, or an empty field without one.
std::string Field(std::optional<double> figure) {
    return figure ? fmt::format("{:.10g}", *figure) : "";
}

}  // namespace

ResidualHistory::ResidualHistory(const std::string& path_) : path(path_), file(path_) {
    if (!file) {
        throw std::runtime_error(
            fmt::format("residual history {} cannot be written: {}", path, std::strerror(errno)));
    }
    file << "iteration,velocity_change,mass_residual,cd,cl,linear_reduction,"
            "cd_overset,cd_hole,cd_outer,interface_mass\n";
}

void ResidualHistory::Add(int iteration, double change, double massResidual,
                          std::optional<double> cd, std::optional<double> cl,
                          double linearReduction, const ControlFigures& control) {
    file << fmt::format("{},{:.6e},{:.6e},{},{},{:.3e},{},{},{},{}\n", iteration, change,
                        massResidual, Field(cd), Field(cl), linearReduction,
                        Field(control.cdOverset), Field(control.cdHole), Field(control.cdOuter),
                        Field(control.interfaceMass))
         << std::flush;
}

void ResidualHistory::RequireWhole() const {
    if (!file) {
        throw std::runtime_error(path + ": some iterations could not be written");
    }
}

}  // namespace host
