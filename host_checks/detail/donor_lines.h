#ifndef KVX3D_HOST_CHECKS_DETAIL_DONOR_LINES_H
#define KVX3D_HOST_CHECKS_DETAIL_DONOR_LINES_H

#include <string>
#include <vector>

#include "host_checks/donor_search.h"
#include "host_checks/mesh_view.h"

namespace kvx3d::checks {

/// The boundary on which a face with a donor lies; the numbers go into the file.
enum class DonorBoundary { Hole = 1, Outer = 2 };

/// A face that needs a donor and the search for it.
struct DonorLine {
    DonorBoundary boundary = DonorBoundary::Hole;
    int face = 0;  ///< inner face or wall face
    Point faceCenter;
    DonorRecord search;
};

/// All faces that need a donor: hole-boundary inner faces, then outer wall faces, each ascending.
std::vector<DonorLine> FacesThatNeedDonors(const MeshView& mesh, const BoundedDonorSearch& search);

/// `value` as a number that a Float32 can hold: the nearest one, 0 for NaN.
double Float32Value(double value);

/// Writes the faces with a donor as line cells of a .vtu file.
/// @return false if the file could not be written completely
bool WriteDonorLines(const std::string& path, const MeshView& mesh,
                     const std::vector<DonorLine>& lines);

}  // namespace kvx3d::checks

#endif
