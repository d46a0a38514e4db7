#include "reference_host/cases/benchmark_2d1.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

#include "reference_host/physics/forces.h"
#include "reference_host/run/comparison.h"

namespace host::benchmark2d1 {

namespace {

/// Lowest and highest y of the inlet's nodes.
std::pair<double, double> InletRange(const Mesh& mesh) {
    double low = std::numeric_limits<double>::max();
    double high = std::numeric_limits<double>::lowest();
    for (int face = 1; face <= mesh.FaceCount(Boundary::Inlet); ++face) {
        for (const int node : mesh.Faces(Boundary::Inlet)[face].nodes) {
            low = std::min(low, mesh.nodes[node].y());
            high = std::max(high, mesh.nodes[node].y());
        }
    }
    return {low, high};
}

}  // namespace

InletProfile Inflow(const Mesh& mesh) {
    if (mesh.FaceCount(Boundary::Inlet) == 0) {
        throw std::runtime_error("the mesh has no face in the group \"inlet\"");
    }
    const auto [low, high] = InletRange(mesh);
    return [bottom = low, height = high - low](const Vec3& point) {
        const double y = (point.y() - bottom) / height;
        return Vec3(6.0 * y * (1.0 - y), 0.0, 0.0);
    };
}

double ForceUnit(const Mesh& mesh) {
    return 0.5 * mesh.Depth();
}

Result Measure(const FlowSolver& flow) {
    constexpr double pressureUnit = 0.04;  // the benchmark's mean velocity 0.2, squared
    const Momentum& momentum = flow.MomentumPart();
    const Vec3 force = ForceOnBody(momentum, flow.Fields()) / ForceUnit(momentum.builder.mesh);
    const StagnationPressures stagnation =
        PressuresAtStagnation(momentum.builder, flow.Fields().pressure);
    Result result;
    result.cd = force.x();
    result.cl = force.y();
    result.dp = pressureUnit * (stagnation.front - stagnation.back);
    result.massDefect = flow.MassDefect();
    return result;
}

std::optional<Limits> LimitsOf(Scheme scheme, int n) {
    if (scheme == Scheme::LinearUpwind) {
        switch (n) {
            case 10:
                return Limits{1e-3, 2e-3, 0.06, 1e-5, 170};
            case 20:
                return Limits{6e-4, 1.3e-3, 0.02, 1e-5, 250};
            case 40:
                return Limits{4e-4, 8e-4, 0.01, 1e-5, 420};
            default:
                return std::nullopt;
        }
    }
    if ((scheme == Scheme::Quick || scheme == Scheme::Central) && n == 20) {
        return Limits{3.5e-3, 5e-3, std::nullopt, std::nullopt, std::nullopt};
    }
    return std::nullopt;
}

std::vector<std::string> Misses(const Result& result, const Limits& limits) {
    LimitCheck check;
    check.Magnitude("Cd deviates by", result.cd / dragCoefficient - 1.0, limits.cd);
    check.Magnitude("the pressure difference deviates by", result.dp / pressureDifference - 1.0,
                    limits.dp);
    if (limits.cl) {
        check.Magnitude("Cl deviates by", result.cl / liftCoefficient - 1.0, *limits.cl);
    }
    if (limits.massDefect) {
        check.Magnitude("the mass defect is", result.massDefect, *limits.massDefect);
    }
    if (limits.iterations) {
        check.AtMost("iterations", result.iterations, *limits.iterations);
    }
    return check.Misses();
}

}  // namespace host::benchmark2d1
