#include "reference_host/run/residual_history.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace host {

ResidualHistory::ResidualHistory(const std::string& path_) : path(path_), file(path_) {
    if (!file) {
        throw std::runtime_error(
            fmt::format("residual history {} cannot be written: {}", path, std::strerror(errno)));
    }
    file << "iteration,velocity_change,mass_residual,cd,cl,linear_reduction\n";
}

void ResidualHistory::Add(int iteration, double change, double massResidual, double cd, double cl,
                          double linearReduction) {
    file << fmt::format("{},{:.6e},{:.6e},{:.10g},{:.10g},{:.3e}\n", iteration, change,
                        massResidual, cd, cl, linearReduction)
         << std::flush;
}

void ResidualHistory::RequireWhole() const {
    if (!file) {
        throw std::runtime_error(path + ": some iterations could not be written");
    }
}

}  // namespace host
