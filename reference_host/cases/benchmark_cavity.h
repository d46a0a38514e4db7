#ifndef KVX3D_REFERENCE_HOST_CASES_BENCHMARK_CAVITY_H
#define KVX3D_REFERENCE_HOST_CASES_BENCHMARK_CAVITY_H

#include <optional>
#include <string>
#include <vector>

#include "reference_host/discretisation/scheme.h"
#include "reference_host/mesh/mesh.h"
#include "reference_host/physics/flow_solver.h"

namespace host {

/// Steady laminar flow in a square cavity, whose upper side is a lid that moves along x.
///
/// The mesh may have any scale; all figures are in sides of the cavity and velocities of the lid.
/// The published figures are those of the profiles u(y) on the line x = 1/2 and v(x) on y = 1/2.
///
/// Sources: U. Ghia, K. N. Ghia, C. T. Shin, J. Comput. Phys. 48 (1982) 387-411,
/// doi:10.1016/0021-9991(82)90058-4, second-order differences on 129 x 129 points; extremes at
/// Reynolds number 1000: O. Botella, R. Peyret, Comput. Fluids 27 (1998) 421-433,
/// doi:10.1016/S0045-7930(98)00002-4, a spectral method.
namespace benchmarkcavity {

/// The side of the cavity. Refuses a mesh that is not one cell thick, does not fill a square with
/// the lower left corner (0, 0), has an outlet, or has no wall where the lid is.
/// @param meshFile  beginning of the message
/// @throws std::runtime_error  one line
double SideOf(const Mesh& mesh, const std::string& meshFile);

/// Velocity of the walls: 1 along x on the lid, zero on all others and on a body.
Vec3 WallVelocityAt(const Vec3& point, double side);

/// Whether all physical walls are sides of the cavity.
bool IsEmpty(const Mesh& mesh, double side);

/// Square root of the number of background cells: the cells per side of an empty cavity of uniform
/// hexahedra.
int CellsPerSide(const Mesh& mesh);

/// A velocity component and where it is on the line, from 0 to 1.
struct ProfilePoint {
    double at = 0.0;
    double velocity = 0.0;
};
using Profile = std::vector<ProfilePoint>;

/// u(y) and v(x) at equally spaced points of the two lines, both ends included.
struct Profiles {
    Profile u;
    Profile v;
};
/// Profiles of the present flow, with the given velocities at the ends.
/// @param intervals  number of intervals between the points of a line
Profiles MeasureProfiles(const FlowSolver& flow, double side, int intervals);

/// The extremes of the profiles.
struct Extremes {
    ProfilePoint lowestU;
    ProfilePoint lowestV;
    ProfilePoint highestV;
};
/// The lowest and highest points, refined by the parabola through them and their neighbors.
Extremes ExtremesOf(const Profiles& profiles);

/// Published figures at a Reynolds number.
struct Published {
    const char* source;  ///< of the extremes
    Extremes extremes;
    Profiles points;  ///< by Ghia et al., without the ends
};
/// The figures for the Reynolds numbers 100 and 1000, none for others.
std::optional<Published> PublishedAt(double reynolds);

/// Largest magnitude of the difference between a profile and points of it, by linear interpolation.
double LargestDifference(const Profile& profile, const Profile& points);

/// Largest relative deviations of the extremes from the published ones.
struct Limits {
    double lowestU = 0.0;
    double lowestV = 0.0;
    double highestV = 0.0;
};

/// The regression limits for a scheme on cavity.geo, on one grid of hexahedra or a pair with n
/// cells per side: measured deviations with a margin. None for other combinations. At Reynolds
/// number 100 they grow with n, because the solution approaches values that Ghia et al. miss by 1
/// to 3 %.
std::optional<Limits> LimitsOf(Scheme scheme, double reynolds, int n);
/// The combinations that have limits, for messages.
constexpr char checkable[] = "lud at n = 32 and 64 and the Reynolds numbers 100 and 1000";

/// The figures that are outside their limits, one sentence each.
std::vector<std::string> Misses(const Extremes& measured, const Extremes& published,
                                const Limits& limits);

}  // namespace benchmarkcavity

}  // namespace host

#endif
