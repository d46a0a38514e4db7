#ifndef KVX3D_HOST_CHECKS_DETAIL_MESSAGES_H
#define KVX3D_HOST_CHECKS_DETAIL_MESSAGES_H

#include <string>

#include "host_checks/mesh_view.h"
#include "host_checks/point.h"

namespace kvx3d::checks {

/// What to change where IsTooSmallForDonors().
constexpr const char* scaleRemedy =
    "area times distance to the cell is below 1e-6, too near to the toolbox's absolute thresholds: "
    "scale all lengths so that the body measures 1";

/// A number with this many significant digits, in the shorter of the two notations.
std::string Digits(double value, int digits = 6);

/// "(x, y, z)" with six significant digits per coordinate.
std::string Triple(const Point& point);

/// "at (x, y, z)" with six significant digits per coordinate.
std::string At(const Point& point);

/// "cell 17 at (x, y, z)", where the point is the mean of its nodes.
std::string CellAt(const MeshView& mesh, int cell);

/// "wall face 17 at (x, y, z)" or, in an overset group, "overset1 face, wall face 17 at (x, y, z)".
std::string WallFaceAt(const MeshView& mesh, int wallFace);

/// "background", "component1", "component2".
std::string GridName(int grid);

}  // namespace kvx3d::checks

#endif
