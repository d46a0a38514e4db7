#ifndef KVX3D_HOST_CHECKS_DETAIL_BOUNDARY_SHAPE_RULES_H
#define KVX3D_HOST_CHECKS_DETAIL_BOUNDARY_SHAPE_RULES_H

#include <vector>

#include "host_checks/detail/outer_boundary.h"
#include "host_checks/fault.h"

namespace kvx3d::checks {

// The part of MeshFaults() that concerns the shape of an outer boundary. The cut judges each cell
// by its nearest outer face, so all of these rules ask that the nearest face by center is the
// nearest face, and that its plane bounds the component there.

/// Outer faces must not be larger than the background cells around them.
void CheckFaceSizes(const OuterBoundary& outer, std::vector<Fault>& faults);

/// Component cells at the outer boundary must be about as thick as the background cells.
void CheckLayer(const OuterBoundary& outer, std::vector<Fault>& faults);

/// Neighboring faces must not meet at a corner sharper than a right angle: the cut follows the
/// plane of the nearest face, and the plane changes at a corner.
void CheckSmooth(const OuterBoundary& outer, std::vector<Fault>& faults);

/// Counts the faces in whose plane some other face of the same piece lies in front: in a hollow
/// the nearest face by center is not the one whose plane bounds the component.
void CountHollows(const OuterBoundary& outer, FaultCounter& hollows);

}  // namespace kvx3d::checks

#endif
