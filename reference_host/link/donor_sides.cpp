#include "reference_host/link/donor_sides.h"

namespace host {

int ActiveCell(const Mesh& mesh, const Donors& donors, int face) {
    const InnerFace& inner = mesh.innerFaces[face];
    return donors.side[face] == FaceSide::DonorIsFirst ? inner.neighbor : inner.owner;
}

}  // namespace host
