#ifndef KVX3D_REFERENCE_HOST_LINK_DONORS_H
#define KVX3D_REFERENCE_HOST_LINK_DONORS_H

#include <vector>

#include "reference_host/mesh/mesh.h"

namespace host {

/// Which sides of an inner face are live. A donor stands on the side that is not.
enum class FaceSide {
    Both = 0,           ///< regular face: both cells active
    DonorIsSecond = 1,  ///< hole boundary: the first cell is active, the second a donor
    DonorIsFirst = 2,   ///< hole boundary: the second cell is active, the first a donor
    None = 3            ///< both cells cut
};

/// The cut mesh and who donates to whom, in the host's own tables. Entry 0 of each is unused.
struct Donors {
    std::vector<char> active;    ///< by cell: 0 where it was cut
    std::vector<FaceSide> side;  ///< by inner face
    std::vector<int> inner;      ///< by inner face: donor on the hole boundary, else 0
    std::vector<int> tries;      ///< by inner face: searches it took to find the donor
    std::vector<int> wall;       ///< by wall face: donor of an overset face, 0 of a physical wall
};

/// The active cell of a hole-boundary face.
int ActiveCell(const Mesh& mesh, const Donors& donors, int face);

/// Fills inner, tries and wall; active and side are given.
///
/// The search for hole-boundary faces follows the toolbox's word for word, but gives up after
/// `maxTries`: the toolbox's own has no bound, so a face for which this one finds nothing must not
/// be handed to it. An overset wall face takes the active background cell nearest to the mirrored
/// centre of its cell, on whichever side of the face: the toolbox's search for walls judges sides
/// by the x component of the area vector alone and walks far off on half of a round boundary.
///
/// Faces of component2 on a hole boundary get no donor: no grid donates to it through the toolbox.
void FindDonors(const Mesh& mesh, Donors& donors, int maxTries);

}  // namespace host

#endif
