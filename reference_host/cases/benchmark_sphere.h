#ifndef KVX3D_REFERENCE_HOST_CASES_BENCHMARK_SPHERE_H
#define KVX3D_REFERENCE_HOST_CASES_BENCHMARK_SPHERE_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/discretisation/scheme.h"
#include "reference_host/mesh/mesh.h"
#include "reference_host/physics/flow_solver.h"

namespace host {

/// Steady laminar flow around a sphere in an unbounded uniform stream at Reynolds number 100.
///
/// Lengths are in sphere diameters and velocities in those of the stream. The center of the sphere
/// is the origin and the stream runs along x. Behind the sphere is a closed ring vortex with
/// reversed flow on the axis; it is steady and axisymmetric up to a Reynolds number of about 210.
///
/// Sources. Drag, between two correlations of experiments: 1.087 by R. Clift, J. R. Grace, M. E.
/// Weber, Bubbles, Drops, and Particles, Academic Press 1978, table 5.2: 24 / Re (1 + 0.1935
/// Re^0.6305), and 1.092 by L. Schiller, A. Naumann, Z. Ver. Dtsch. Ing. 77 (1933) 318-320: 24 / Re
/// (1 + 0.15 Re^0.687). Length of the vortex: T. A. Johnson, V. C. Patel, J. Fluid Mech. 378 (1999)
/// 19-70, doi:10.1017/S0022112098003206, computed; S. Taneda, J. Phys. Soc. Japan 11 (1956)
/// 1104-1108, doi:10.1143/JPSJ.11.1104, by experiment.
namespace benchmarksphere {

constexpr double viscosity = 1.0 / 100.0;
constexpr double dragCoefficient = 1.09;
constexpr double recirculationLength = 0.88;

/// Velocity of the uniform stream: 1 along x. Walls of the box move with it.
Vec3 Stream();

/// The shape of the cells around the sphere.
enum class Shell { Hexahedra, Prisms, Tetrahedra };
/// "hexahedra", ...
const char* Name(Shell shell);
/// The shape of the cells beside the sphere.
/// @throws std::runtime_error  one line: the mesh has no second grid, or its first cell has another
///         shape
Shell ShellOf(const Mesh& mesh);

struct Result {
    double cd = 0.0;             ///< Fx / (1/2 pi/4)
    double sideForce = 0.0;      ///< coefficient of the force across the stream; 0 by symmetry
    double recirculation = 0.0;  ///< from the rear of the sphere to where u changes sign
    double massDefect = 0.0;     ///< (outflow - inflow) / inflow
    int iterations = 0;
};

/// Force with the coefficient 1: half the frontal area of the sphere.
double ForceUnit();

/// Force coefficients of the present flow: drag and the two components of the side force.
Vec3 ForceCoefficient(const FlowSolver& flow);

/// A point of the axis behind the sphere and the velocity along x there.
struct AxisPoint {
    double x = 0.0;
    double u = 0.0;
};
/// Points from the rear of the sphere to x = `end`. The velocity is a quadratic fit in the grid
/// that has the nearest active cell.
std::vector<AxisPoint> WakeAxis(const FlowSolver& flow, double end, double step);

/// Distance from the rear at x = 1/2 to the first change of u from negative to positive, by linear
/// interpolation; 0 if there is no reversed flow that ends.
double RecirculationLength(const std::vector<AxisPoint>& axis);

/// All figures of the present flow, without the iterations.
Result Measure(const FlowSolver& flow);

/// Largest relative deviations from the published values, and largest magnitudes. They are
/// regression limits: set from measured figures with a margin.
struct Limits {
    double cd = 0.0;
    double recirculation = 0.0;
    double sideForce = 0.0;   ///< coefficient
    double massDefect = 0.0;  ///< relative to the inflow
};

/// The limits for a scheme on sphere_overset.geo with n background cells per diameter and otherwise
/// default parameters; none for other combinations.
std::optional<Limits> LimitsOf(Scheme scheme, Shell shell, int n);
/// The combinations that have limits, for messages.
constexpr char checkable[] = "lud with hexahedra at n = 5, 7 and 10, with tetrahedra at n = 5";

/// The figures that are outside their limits, one sentence each.
std::vector<std::string> Misses(const Result& result, const Limits& limits);

}  // namespace benchmarksphere

}  // namespace host

#endif
