#include "reference_host/discretisation/norm.h"

#include <Eigen/Core>

namespace host {

double Norm(const std::vector<double>& vector) {
    if (vector.empty()) {
        return 0.0;
    }
    const auto count = static_cast<Eigen::Index>(vector.size() - 1);
    return Eigen::Map<const Eigen::VectorXd>(vector.data() + 1, count).stableNorm();
}

}  // namespace host
