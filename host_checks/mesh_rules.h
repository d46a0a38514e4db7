#ifndef KVX3D_HOST_CHECKS_MESH_RULES_H
#define KVX3D_HOST_CHECKS_MESH_RULES_H

#include <vector>

#include "host_checks/export.h"
#include "host_checks/fault.h"
#include "host_checks/mesh_view.h"

namespace kvx3d::checks {

/// Limits that an overset mesh must keep. Lengths are multiples of h, the size of the background
/// cells at the outer boundary of a component. h is V^(1/3), as in the margins of the toolbox, for
/// wallLayer, minGap and minThickness, otherwise MeshView::EdgeLength().
namespace limit {
constexpr double wallLayer = 2.0;     ///< component cells closer to a wall are cut by the toolbox
constexpr double minGap = 3.5;        ///< from the outer boundary to background walls
constexpr double minThickness = 3.5;  ///< from the outer boundary to the body
constexpr double minDepth = 0.2;      ///< thickness of a mesh one cell thick
constexpr double maxDepth = 8.0;
/// Edges of outer faces. Up to 4/3 h the error is within 1.3 times (diffusion) or 1.5 times (linear
/// upwind) that with equal cells; above, some donors are found after 11 to 14 searches only.
constexpr double maxQuadEdge = 1.35;
constexpr double maxTriangleEdge = 2.0;
/// Component cells at the outer boundary, across it. Down to h / 6 the error is at most that with
/// equal cells (see docs/host_checks.md); thinner ones were not measured.
constexpr double minLayer = 0.15;
constexpr double maxLayer = 1.5;
constexpr double maxTaperedLayer = 2.0;  ///< the same for cells that end in a point or an edge
/// Degrees between neighboring outer faces: a right angle and one degree for rounded coordinates. A
/// turned square is cut and solved as accurately as an annulus, and a turned cube with second order
/// (see docs/host_checks.md). Sharper corners were not measured.
constexpr double maxBend = 91.0;
constexpr double maxBulge = 0.5;       ///< an outer face's center in front of another face's plane
constexpr double minDonorTest = 1e-6;  ///< |S| |P - C| of a face that needs a donor [length^3]
}  // namespace limit

/// True if |S| |P - C| of a face and its active cell is near the absolute threshold of 1e-8 in the
/// donor search of the toolbox.
KVX3D_CHECKS_API bool IsTooSmallForDonors(const Point& area, const Point& faceCenter,
                                          const Point& cellCenter);

/// Checks the rules that can be decided from the mesh alone, before the toolbox cuts it. For
/// meshes of two or three grids; a single grid has nothing to check.
///
/// Component 1 is checked against the background. The toolbox neither cuts with component 2 nor
/// finds donors for its faces, so of component 2 only the length scale and the shape of its outer
/// boundary are checked.
///
/// If a grid, a group or the background walls are missing, the other rules cannot be checked.
///
/// @return one fault for each broken rule; none if all are kept
KVX3D_CHECKS_API std::vector<Fault> MeshFaults(const MeshView& mesh);

}  // namespace kvx3d::checks

#endif
