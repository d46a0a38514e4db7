#ifndef KVX3D_REFERENCE_HOST_CASES_BENCHMARK_2D1_H
#define KVX3D_REFERENCE_HOST_CASES_BENCHMARK_2D1_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/discretisation/scheme.h"
#include "reference_host/mesh/mesh.h"
#include "reference_host/physics/flow_solver.h"

namespace host {

/// Benchmark 2D-1: steady laminar flow around a cylinder in a channel at Reynolds number 20.
///
/// Lengths are in cylinder diameters and velocities in mean inflow velocities. The cylinder is a
/// little off the center line of the channel, which causes the small lift.
///
/// Sources: M. Schaefer, S. Turek, Benchmark computations of laminar flow around a cylinder, Notes
/// Numer. Fluid Mech. 52 (1996) 547-566, doi:10.1007/978-3-322-89849-4_39; digits of the values: G.
/// Nabh, On higher order methods for the stationary incompressible Navier-Stokes equations, PhD
/// thesis, University of Heidelberg, 1998.
namespace benchmark2d1 {

constexpr double reynolds = 20.0;
constexpr double dragCoefficient = 5.57953523384;
constexpr double liftCoefficient = 0.010618948146;
constexpr double pressureDifference = 0.11752016697;

/// Parabolic profile with mean 1 over the height of the inlet.
/// @throws std::runtime_error  the mesh has no inlet
InletProfile Inflow(const Mesh& mesh);

struct Result {
    double cd = 0.0;
    double cl = 0.0;
    double dp = 0.0;          ///< in the units of the benchmark (density 1, mean velocity 0.2)
    double massDefect = 0.0;  ///< (outflow - inflow) / inflow
    int iterations = 0;
};

/// Force with the coefficient 1: half the depth of the mesh.
double ForceUnit(const Mesh& mesh);

/// The figures of the present flow, without the iterations.
Result Measure(const FlowSolver& flow);

/// Largest relative deviations from the published values, largest magnitude of the mass defect and
/// largest number of iterations.
struct Limits {
    double cd = 0.0;
    double dp = 0.0;
    std::optional<double> cl, massDefect;
    std::optional<int> iterations;
};

/// Regression limits for a scheme on channel_cylinder_overset.geo with n cells per diameter:
/// measured figures with a margin. None for other combinations.
std::optional<Limits> LimitsOf(Scheme scheme, int n);
/// The combinations that have limits, for messages.
constexpr char checkable[] = "lud at n = 10, 20 and 40, quick and central at n = 20";

/// The figures that are outside their limits, one sentence each.
std::vector<std::string> Misses(const Result& result, const Limits& limits);

}  // namespace benchmark2d1

}  // namespace host

#endif
