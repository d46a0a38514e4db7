#ifndef KVX3D_REFERENCE_HOST_LINK_OVERSET_LINK_H
#define KVX3D_REFERENCE_HOST_LINK_OVERSET_LINK_H

#include <memory>
#include <vector>

#include "reference_host/link/donor_sides.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/mesh/mesh.h"

class CKVXOversetMesh;

namespace kvx3d::checks {
class MeshView;
}

namespace host {

/// What the overset toolbox decided about a mesh, kept in tables of the host: the facade computes
/// each answer anew, and reports a face whose donor was written into Ce23 as an active face.
/// For a single grid all cells are active and no toolbox object exists.
class OversetLink {
public:
    /// Checks the host objects and the mesh by the rules of host_checks, runs SetFVM(), which
    /// prints its steps on standard output, searches the donors, checks the result and writes every
    /// donor into Ce23.
    ///
    /// An overset wall face takes the active background cell nearest to the mirrored center of its
    /// cell: the wall search of the toolbox goes far or does not end on half of a round boundary.
    ///
    /// @param objects  filled from `mesh`; must outlive this object
    /// @throws std::runtime_error  one line for each broken rule, with the place and the remedy
    OversetLink(const Mesh& mesh, HostObjects& objects);
    ~OversetLink();
    OversetLink(const OversetLink&) = delete;
    OversetLink& operator=(const OversetLink&) = delete;

    bool IsOverset() const;  ///< false on a single grid
    bool IsActive(int cell) const { return donors.active[cell] != 0; }
    FaceSide Side(int face) const { return donors.side[face]; }
    /// The two cells of an inner face, with the donor in place of the cut cell on a hole boundary;
    /// on other faces the cells of the mesh.
    int First(int face) const { return first[face]; }
    int Second(int face) const { return second[face]; }
    /// Donor of an overset wall face, 0 on a physical wall.
    int WallDonor(int wallFace) const { return donors.wall[wallFace]; }
    /// All tables, with the number of searches for each donor.
    const Donors& Tables() const { return donors; }

    CKVXOversetMesh* Toolbox() { return toolbox.get(); }  ///< null on a single grid

private:
    void CutHoles(const Mesh& mesh, HostObjects& objects);
    void FindDonors(const kvx3d::checks::MeshView& view);
    void WriteDonors(const Mesh& mesh, HostObjects& objects);

    std::unique_ptr<CKVXOversetMesh> toolbox;
    Donors donors;
    std::vector<int> first, second;  // by inner face
};

}  // namespace host

#endif
