#ifndef KVX3D_REFERENCE_HOST_LINK_MESH_RULES_H
#define KVX3D_REFERENCE_HOST_LINK_MESH_RULES_H

#include <string>
#include <vector>

#include "reference_host/link/donors.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Limits that an overset mesh must keep, component1 against the background. Lengths count in h,
/// the size of the background cells at the overset boundary: V^(1/3) where the toolbox's own
/// margin does so (gap, thickness), else the cells' edge length, in the x-y plane if the mesh is
/// one cell thick.
namespace rule {
constexpr double wallLayer = 2.0;     ///< the toolbox cuts component cells nearer to a wall
constexpr double minGap = 3.5;        ///< overset boundary to background walls
constexpr double minThickness = 3.5;  ///< overset boundary to the body
constexpr double minDepth = 0.2;      ///< dz of a mesh one cell thick
constexpr double maxDepth = 8.0;
constexpr double maxQuadEdge = 1.25;  ///< edges of overset faces
constexpr double maxTriangleEdge = 2.0;
constexpr double minLayer = 0.7;  ///< component cells at the overset boundary, across it
constexpr double maxLayer = 1.5;
constexpr double maxLayerOfPoints = 2.0;  ///< the same for cells that end in a point or edge
constexpr double maxBend = 45.0;          ///< degrees between neighboring overset faces
constexpr double maxBulge = 0.5;          ///< an overset face in front of another's plane
constexpr double minDonorTest = 1e-6;     ///< |S| |P - C| where donors are searched, no length
constexpr int maxDonorTries = 5;          ///< searches for a donor on the hole boundary; more are
                                          ///< sound where all stay within
constexpr double maxDonorReach = 0.75;    ///< this many edges of the active cell from the face: a
                                          ///< prism's centre is near its face, its steps are short
constexpr int maxTreeDepth = 10000;       ///< searches in a tree recurse that deep

constexpr char scaleRemedy[] =
    "area times distance to the cell is below 1e-6, too near to the toolbox's absolute thresholds: "
    "scale all lengths so that the body measures 1";
}  // namespace rule

/// |S| |P - C| of a face and its active cell is near the toolbox's absolute threshold.
bool IsTooSmallForDonors(const Vec3& area, const Vec3& faceCentre, const Vec3& cellCentre);

/// The rules that can be told from the mesh alone: to be kept before the toolbox cuts it. For
/// meshes of more than one grid.
///
/// @return one line for each rule broken: the first cell or face, how many more, what to change
std::vector<std::string> FaultsBeforeCutting(const Mesh& mesh);

/// The rules for what the cutting and the donor search made of the mesh.
/// @return lines as above
std::vector<std::string> FaultsAfterCutting(const Mesh& mesh, const Donors& donors);

}  // namespace host

#endif
