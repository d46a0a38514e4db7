#ifndef KVX3D_REFERENCE_HOST_OVERSET_LINK_H
#define KVX3D_REFERENCE_HOST_OVERSET_LINK_H

#include <memory>
#include <vector>

#include "reference_host/host_objects.h"
#include "reference_host/mesh.h"

class CKVXOversetMesh;

namespace host {

/// Which sides of an inner face are live. A donor stands on the side that is not.
enum class FaceSide {
    Both = 0,           ///< regular face: both cells active
    DonorIsSecond = 1,  ///< hole boundary: the first cell is active, the second a donor
    DonorIsFirst = 2,   ///< hole boundary: the second cell is active, the first a donor
    None = 3            ///< both cells cut
};

/// What the overset toolbox decided about a mesh, kept in the host's own tables: the facade answers
/// each query anew, and a face whose donor was written into Ce23 no longer tells what it was.
/// For a single grid the tables say "all active" and no toolbox object exists.
class OversetLink {
public:
    /// Runs SetFVM, checks the mesh rules, searches and writes every donor into Ce23.
    /// @throws std::runtime_error  one line naming the rule, the cell or face, and the remedy
    OversetLink(const Mesh& mesh, HostObjects& objects);
    ~OversetLink();

    bool IsOverset() const;  ///< false on a single grid
    bool IsActive(int cell) const { return active[cell]; }
    FaceSide Side(int face) const { return side[face]; }
    /// The pair of an inner face with the donor in place of the cut cell; on other faces the
    /// mesh's own pair.
    int First(int face) const { return first[face]; }
    int Second(int face) const { return second[face]; }
    /// Donor of an overset wall face (nearest active background cell to the mirrored centre), 0 on
    /// a physical wall.
    int WallDonor(int wallFace) const { return wallDonor[wallFace]; }

    CKVXOversetMesh* Toolbox() { return toolbox.get(); }  ///< null on a single grid

private:
    std::unique_ptr<CKVXOversetMesh> toolbox;
    std::vector<char> active;        // by cell
    std::vector<FaceSide> side;      // by inner face
    std::vector<int> first, second;  // by inner face
    std::vector<int> wallDonor;      // by wall face
};

}  // namespace host

#endif
