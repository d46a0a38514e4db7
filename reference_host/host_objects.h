#ifndef KVX3D_REFERENCE_HOST_HOST_OBJECTS_H
#define KVX3D_REFERENCE_HOST_HOST_OBJECTS_H

#include <string>
#include <vector>

#include "host_link/host_interface.h"
#include "reference_host/mesh.h"

namespace host {

/// Owns the 1-based arrays that the toolbox links, and the two host objects that point at them.
/// Neither copied nor moved: the toolbox keeps the addresses.
class HostObjects {
public:
    /// Fills gv and fvm from the mesh. Ghost ids run from Nc + 1 kind by kind: inlet, outlet,
    /// wall, symmetry. Fields start at zero, mu, cp, cellRho and cellK at one.
    ///
    /// @param resultDir  becomes gv.rootDir: result files go under it
    HostObjects(const Mesh& mesh, const std::string& resultDir);
    HostObjects(const HostObjects&) = delete;
    HostObjects& operator=(const HostObjects&) = delete;

    CKvx3dGV gv;
    CKVX3DFiniteVolumeMesh fvm;

    /// Ghost cell of boundary face `face` of kind `kind`.
    int Ghost(Boundary kind, int face) const;
    int CellAndGhostCount() const { return fvm.NcAll; }

    // Fields, entries 1..NcAll, seen by the toolbox through gv.
    std::vector<double> pressure, u, v, w;
    std::vector<double> mu, cp, cellRho, cellK;

private:
    // The arrays behind gv and fvm.
};

}  // namespace host

#endif
