#ifndef KVX3D_REFERENCE_HOST_LINK_OVERSET_LINK_H
#define KVX3D_REFERENCE_HOST_LINK_OVERSET_LINK_H

#include <memory>
#include <vector>

#include "reference_host/link/donors.h"
#include "reference_host/link/host_objects.h"
#include "reference_host/mesh/mesh.h"

class CKVXOversetMesh;

namespace host {

/// What the overset toolbox decided about a mesh, kept in the host's own tables: the facade answers
/// each query anew, and a face whose donor was written into Ce23 no longer tells what it was.
/// For a single grid the tables say "all active" and no toolbox object exists.
class OversetLink {
public:
    /// Checks the host objects and the mesh rules, runs SetFVM, which prints its steps on standard
    /// output, searches and writes every donor into Ce23, and checks what came out.
    ///
    /// @param objects  filled from `mesh`; must outlive this object
    /// @throws std::runtime_error  one line for each fault, naming the cell or face and the remedy
    OversetLink(const Mesh& mesh, HostObjects& objects);
    ~OversetLink();
    OversetLink(const OversetLink&) = delete;
    OversetLink& operator=(const OversetLink&) = delete;

    bool IsOverset() const;  ///< false on a single grid
    bool IsActive(int cell) const { return donors.active[cell] != 0; }
    FaceSide Side(int face) const { return donors.side[face]; }
    /// The pair of an inner face with the donor in place of the cut cell; on other faces the
    /// mesh's own pair.
    int First(int face) const { return first[face]; }
    int Second(int face) const { return second[face]; }
    /// Donor of an overset wall face (nearest active background cell to the mirrored centre), 0 on
    /// a physical wall.
    int WallDonor(int wallFace) const { return donors.wall[wallFace]; }
    /// All tables, with the searches each donor took.
    const Donors& Tables() const { return donors; }

    CKVXOversetMesh* Toolbox() { return toolbox.get(); }  ///< null on a single grid

private:
    void CutHoles(const Mesh& mesh, HostObjects& objects);
    void WriteDonors(const Mesh& mesh, HostObjects& objects);

    std::unique_ptr<CKVXOversetMesh> toolbox;
    Donors donors;
    std::vector<int> first, second;  // by inner face
};

}  // namespace host

#endif
