#include "reference_host/cases/benchmark_sphere.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>
#include <utility>

#include "reference_host/cases/flow_probe.h"
#include "reference_host/physics/forces.h"
#include "reference_host/run/comparison.h"

namespace host::benchmarksphere {

namespace {

constexpr double radius = 0.5;

}  // namespace

Vec3 Stream() {
    return {1.0, 0.0, 0.0};
}

double ForceUnit() {
    return 0.5 * std::acos(-1.0) * radius * radius;
}

const char* Name(Shell shell) {
    switch (shell) {
        case Shell::Hexahedra:
            return "hexahedra";
        case Shell::Prisms:
            return "prisms";
        default:
            return "tetrahedra";
    }
}

Shell ShellOf(const Mesh& mesh) {
    const auto first = std::find(mesh.cavity.begin() + 1, mesh.cavity.end(), 2);
    if (first == mesh.cavity.end()) {
        throw std::runtime_error("the mesh has no component1, the shell around the sphere");
    }
    switch (mesh.cellNodes[first - mesh.cavity.begin()].size()) {
        case 8:
            return Shell::Hexahedra;
        case 6:
            return Shell::Prisms;
        case 4:
            return Shell::Tetrahedra;
        default:
            throw std::runtime_error("the shell must be of hexahedra, prisms or tetrahedra");
    }
}

Vec3 ForceCoefficient(const FlowSolver& flow) {
    return ForceOnBody(flow.MomentumPart(), flow.Fields()) / ForceUnit();
}

std::vector<AxisPoint> WakeAxis(const FlowSolver& flow, double end, double step) {
    const FlowProbe probe(flow);
    std::vector<AxisPoint> axis;
    for (int k = 0; radius + k * step <= end; ++k) {
        const Vec3 point(radius + k * step, 0.0, 0.0);
        axis.push_back({point.x(), probe.Velocity(point).x()});
    }
    return axis;
}

double RecirculationLength(const std::vector<AxisPoint>& axis) {
    for (std::size_t k = 1; k < axis.size(); ++k) {
        const AxisPoint& a = axis[k - 1];
        const AxisPoint& b = axis[k];
        if (a.u < 0.0 && b.u >= 0.0) {
            return a.x - a.u * (b.x - a.x) / (b.u - a.u) - radius;
        }
    }
    return 0.0;
}

Result Measure(const FlowSolver& flow) {
    constexpr double farEnd = 4.0;  // the vortex ends before x = 1.5
    constexpr double step = 0.01;   // a small fraction of a cell
    const Vec3 force = ForceCoefficient(flow);
    Result result;
    result.cd = force.x();
    result.sideForce = std::hypot(force.y(), force.z());
    result.recirculation = RecirculationLength(WakeAxis(flow, farEnd, step));
    result.massDefect = flow.MassDefect();
    return result;
}

std::optional<Limits> LimitsOf(Scheme scheme, Shell shell, int n) {
    using Table = std::map<std::pair<Shell, int>, Limits>;
    static const Table table = {
        {{Shell::Hexahedra, 5}, {0.03, 0.07, 1e-3, 1e-5}},
        {{Shell::Hexahedra, 7}, {0.012, 0.06, 1e-3, 1e-5}},
        {{Shell::Hexahedra, 10}, {0.005, 0.04, 1e-3, 1e-5}},
        // A mesh of tetrahedra has no plane of symmetry, so that there is a side force.
        {{Shell::Tetrahedra, 5}, {0.01, 0.07, 1e-2, 1e-5}},
    };
    const auto found = table.find({shell, n});
    if (scheme != Scheme::LinearUpwind || found == table.end()) {
        return std::nullopt;
    }
    return found->second;
}

std::vector<std::string> Misses(const Result& result, const Limits& limits) {
    LimitCheck check;
    check.Magnitude("Cd deviates by", result.cd / dragCoefficient - 1.0, limits.cd);
    check.Magnitude("the recirculation length deviates by",
                    result.recirculation / recirculationLength - 1.0, limits.recirculation);
    check.Magnitude("the side force is", result.sideForce, limits.sideForce);
    check.Magnitude("the mass defect is", result.massDefect, limits.massDefect);
    return check.Misses();
}

}  // namespace host::benchmarksphere
