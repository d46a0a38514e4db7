#ifndef KVX3D_REFERENCE_HOST_LINK_DONOR_SIDES_H
#define KVX3D_REFERENCE_HOST_LINK_DONOR_SIDES_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// Which cells of an inner face are active. A donor stands in for the cell that is not.
enum class FaceSide {
    Both = 0,           ///< regular face: both cells active
    DonorIsSecond = 1,  ///< hole boundary: the first cell is active, the second is a donor
    DonorIsFirst = 2,   ///< hole boundary: the second cell is active, the first is a donor
    None = 3            ///< both cells cut
};

/// The cut mesh and the donors of its faces, in tables of the host. Entry 0 of each is unused.
struct Donors {
    std::vector<char> active;    ///< by cell: 0 where it was cut
    std::vector<FaceSide> side;  ///< by inner face
    std::vector<int> inner;      ///< by inner face: donor on the hole boundary, otherwise 0
    std::vector<int> tries;      ///< by inner face: number of searches for that donor
    std::vector<int> wall;       ///< by wall face: donor of an overset face, 0 on a physical wall
};

/// The active cell of a hole-boundary face.
int ActiveCell(const Mesh& mesh, const Donors& donors, int face);

}  // namespace host

#endif
