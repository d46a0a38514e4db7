#ifndef KVX3D_REFERENCE_HOST_LINK_NONMATCHING_INTERFACE_H
#define KVX3D_REFERENCE_HOST_LINK_NONMATCHING_INTERFACE_H

#include <array>
#include <vector>

#include "reference_host/link/host_objects.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// A part of the interface between two blocks that is covered by one face of each block.
struct Fragment {
    std::array<int, 2> face = {};  ///< by block: position in Mesh::interfaceFaces of the block
    std::vector<Vec3> corners;     ///< the area vector points from block0 to block1
};

/// Cuts each side of the interface along the edges of the other side. The fragments of a face add
/// up to the face, so cells whose faces they become stay closed. All pairs of faces are compared:
/// the time is proportional to the product of the two face counts.
///
/// @param mesh  with its geometry; interface faces must be plane and convex
/// @return fragments in ascending order of the face of block0, then of block1
/// @throws std::runtime_error  one line: a face that is not covered by the other block
std::vector<Fragment> CutInterface(const Mesh& mesh);

/// Which block, if any, contributes its interface faces without cutting them.
enum class WholeFaces {
    None,  ///< both sides contribute the fragments, the same number of faces each
    Block0,
    Block1
};

/// Joins two blocks into one mesh: appends flagged inner faces for both sides of the interface,
/// those owned by block0 first. The interface is then covered twice; the cells are closed again
/// after the preprocess of the toolbox has made one side ineffective and TakeAreas() was called.
/// The neighbor of an uncut face is the cell that covers most of it.
///
/// @return number of faces of each side
/// @throws std::runtime_error  one line: there is no interface, or a fault of CutInterface()
std::array<int, 2> JoinInterface(Mesh& mesh, WholeFaces whole);

/// Copies the area vectors of the inner faces from the host arrays, which the preprocess of the
/// toolbox has changed, back into the mesh.
void TakeAreas(const HostObjects& objects, Mesh& mesh);

}  // namespace host

#endif
