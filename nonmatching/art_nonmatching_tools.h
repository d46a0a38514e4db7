#ifndef KVX3D_NONMATCHING_ART_NONMATCHING_TOOLS_H
#define KVX3D_NONMATCHING_ART_NONMATCHING_TOOLS_H

#include "host_link/export.h"
#include "host_link/host_interface.h"

/// Settles the flagged inner faces of non-matching interfaces, once, before the solver runs.
///
/// The faces fall into two groups by the cavity id of their owner: outside (below 1) and cavity.
/// The larger group stays as it is; the smaller one is made ineffective by shrinking its area
/// vectors to 1e-10 of their length. All flags are then cleared, so a second run finds nothing.
///
/// Works on the host's own arrays (1-based), borrows the host objects and frees nothing.
class KVX3D_API art_nonmatching_tools {
public:
    art_nonmatching_tools();
    ~art_nonmatching_tools();

    /// Stores the host's objects; both must outlive their use here.
    void SetFVM(CKvx3dGV* gv, CKVX3DFiniteVolumeMesh* fvm);

    /// Writes `nonmatchingFace`, `nxe`, `nye` and `nze` of the mesh, and four lines on standard
    /// output. A tie makes the outside group ineffective.
    ///
    /// @pre SetFVM() with two objects: they are not tested
    void NonmatchingPreprocess();

    /// Writes a VTK picture of the interface, five blocks over the host's nodes: all cells; owners
    /// and neighbors of the flagged faces with a cavity owner; owners and neighbors of those with
    /// an outside owner. A cell stands once in a list of neighbors, but in a list of owners once
    /// for each face it owns. Behind the preprocess the last four are empty.
    ///
    /// @param beforePreprocess  names the files: Check_NonmatchingFaceData_BeforePreprocess or
    ///                          ..._AfterPreprocess, under the host's `rootDir`
    /// @return false, with a line on standard output, if SetFVM() had not been called; else true,
    ///         written or not
    bool CheckNonmatchingFaceVTKData(bool beforePreprocess);

    CKvx3dGV* kvxGv;                 ///< borrowed
    CKVX3DFiniteVolumeMesh* kvxFvm;  ///< borrowed

private:
    bool IsNonmatchingFace(int face);
    int CheckCavityId(int cell);
    int GetInnerFaceOwnerId(int face);
    int GetInnerFaceNeighborId(int face);

    /// Scales the area vector by 1e-10: short enough to carry no flux, and still a direction.
    void SetZeroInnerNormal(int face);

    /// Clears the flag.
    void TransferInnerFaceProperty(int face);
};

#endif
