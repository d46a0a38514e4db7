#ifndef KVX3D_REFERENCE_HOST_LINK_NONMATCHING_INTERFACE_H
#define KVX3D_REFERENCE_HOST_LINK_NONMATCHING_INTERFACE_H

#include <array>
#include <vector>

#include "reference_host/link/host_objects.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// A part of the interface between two blocks that one face of each covers.
struct Fragment {
    std::array<int, 2> face = {};  ///< by block: position in its Mesh::interfaceFaces
    std::vector<Vec3> corners;     ///< the area vector points from block0 to block1
};

/// Cuts the two sides of the interface along each other's edges. The fragments of a face together
/// are the face, so cells that take them as faces stay closed. Every pair of faces is looked at:
/// the time grows like the product of their numbers.
///
/// @param mesh  with its geometry; interface faces plane and convex
/// @return by ascending face of block0, then of block1
/// @throws std::runtime_error  one line: a face that the other block does not cover
std::vector<Fragment> CutInterface(const Mesh& mesh);

/// Which block, if any, contributes its interface faces as they are.
enum class WholeFaces {
    None,  ///< both sides contribute fragments: as many faces each
    Block0,
    Block1
};

/// Makes one mesh of two blocks: appends flagged inner faces for both sides of the interface, those
/// owned by block0 first. Each area stands there twice then, and the cells are closed again once
/// the preprocess of the toolbox has made one side ineffective and TakeAreas() was called. A face
/// that was left whole has as neighbor the cell that covers most of it.
///
/// @return number of faces of each side
/// @throws std::runtime_error  one line: no interface, or as CutInterface()
std::array<int, 2> JoinInterface(Mesh& mesh, WholeFaces whole);

/// Takes the area vectors of the inner faces back from the arrays that the preprocess wrote to.
void TakeAreas(const HostObjects& objects, Mesh& mesh);

}  // namespace host

#endif
