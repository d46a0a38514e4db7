#ifndef KVX3D_NONMATCHING_ART_NONMATCHING_TOOLS_H
#define KVX3D_NONMATCHING_ART_NONMATCHING_TOOLS_H

#include "host_link/export.h"
#include "host_link/host_interface.h"

/// Treats the flagged inner faces of non-matching interfaces, once, before the solver runs.
///
/// The cavity id of the owner divides the faces into two groups: outside (below 1) and cavity. The
/// larger group stays as it is; the smaller one is made ineffective by shrinking its area vectors
/// to 1e-10 of their length. All flags are then cleared, so a second run finds no flagged face.
///
/// Works on the host's own arrays (1-based), borrows the host objects and frees nothing.
class KVX3D_API art_nonmatching_tools {
public:
    art_nonmatching_tools();
    ~art_nonmatching_tools();

    /// Stores the host's objects; both must outlive their use here.
    void SetFVM(CKvx3dGV* gv, CKVX3DFiniteVolumeMesh* fvm);

    /// Changes `nonmatchingFace`, `nxe`, `nye` and `nze` of the mesh, and prints four lines on
    /// standard output, in the default number format. If both groups have the same size, the
    /// outside group is made ineffective.
    ///
    /// @pre SetFVM() was called with two objects; null is not detected
    void NonmatchingPreprocess();

    /// Writes the interface as VTK files, in five blocks over the host's nodes: all cells; owners
    /// and neighbors of the flagged faces with a cavity owner; owners and neighbors of those with
    /// an outside owner. A list of neighbors contains each cell once, a list of owners contains a
    /// cell once for each face it owns. After the preprocess the last four blocks are empty.
    ///
    /// @param beforePreprocess  selects the file names: Check_NonmatchingFaceData_BeforePreprocess
    ///                          or ..._AfterPreprocess, under the host's `rootDir`
    /// @return false, with a line on standard output, if SetFVM() has not been called; otherwise
    ///         true, even if the files could not be written
    bool CheckNonmatchingFaceVTKData(bool beforePreprocess);

    CKvx3dGV* kvxGv;                 ///< borrowed
    CKVX3DFiniteVolumeMesh* kvxFvm;  ///< borrowed

private:
    bool IsNonmatchingFace(int face);
    int CheckCavityId(int cell);
    int GetInnerFaceOwnerId(int face);
    int GetInnerFaceNeighborId(int face);

    /// Scales the area vector by 1e-10: too short for any noticeable flux, but still with a
    /// direction.
    void SetZeroInnerNormal(int face);

    /// Clears the flag.
    void TransferInnerFaceProperty(int face);
};

#endif
