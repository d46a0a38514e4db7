#ifndef KVX3D_OVERSET_OVERSET_MESH_H
#define KVX3D_OVERSET_OVERSET_MESH_H

#include <cstdint>

#include "host_link/export.h"
#include "overset/overset_mesh_impl.h"
#include "overset/overset_types.h"

/// Overset meshes for a host: one host mesh made of cavities that overlap in space, a background
/// grid and up to two component grids.
///
/// Calling order: construct, SetFVM() once, then any query. InitializeVTKTool() comes before the
/// other two output calls. Queries before SetFVM() fault.
///
/// All ids are 1-based and none is checked, but for the wall id of GetOversetWallNeighbor(). The
/// setup reads the mesh once: moving meshes are not followed, and donors come from the background
/// and the first component grid only.
///
/// One call at a time per object, on the caller's thread.
///
/// Tables and trees can be read behind `impl`; this header declares all of them.
class KVX3D_API CKVXOversetMesh {
public:
    CKVXOversetMesh();
    CKVXOversetMesh(const CKVXOversetMesh& other) = default;
    /// Shares the implementation of `other`: of the two objects only one may be destroyed. What
    /// this object held before is not released.
    CKVXOversetMesh& operator=(const CKVXOversetMesh& other) = default;
    ~CKVXOversetMesh();

    /// The whole setup: links the host, sorts cells into grids, cuts holes, builds donor trees.
    ///
    /// Prints one line per step on standard output, before the step. The host objects must be
    /// filled, live longer than this object and keep their arrays at their addresses. Rules for
    /// the overset members: see CKvx3dGV. A second call sets up anew and gives up the tables of
    /// the first without releasing them.
    ///
    /// @param gv   host global variables; with a null argument the setup prints a line and then
    ///             faults at its second step
    /// @param fvm  host mesh, likewise
    /// @return 0 always
    int SetFVM(CKvx3dGV* gv, CKVX3DFiniteVolumeMesh* fvm);

    /// State of cell 1..Nc.
    OversetCellType GetOversetCellType(int cell);
    /// State of inner face 1..Ne, from its two cells in their present order; the mesh stays as is.
    OversetInnerFaceType GetInnerFaceType(int face);
    /// Kind of wall face 1..NWall.
    OversetWallFaceType GetBCType(int wallFace);

    /// Donor of an inner face on the hole boundary: the active cell of the other grid that stands
    /// in for the cut cell of the face. Searched anew at each call.
    ///
    /// Does not return for a face whose active side lies in the second component grid, or where no
    /// active cell of the other grid lies across the face.
    /// @return cell id
    int GetOversetInnerNeighbor(int face);
    /// Donor of a wall face of an overset boundary group, as above.
    ///
    /// "Across" is judged with the x component of the area vector in all three directions: on a
    /// wall whose area vector has no x component the search does not return.
    /// @return cell id, or -1 with a line on standard output if wallFace is not in 1..NWall
    int GetOversetWallNeighbor(int wallFace);
    /// Writes the donor of an inner face into the host's Ce23, in place of the cut cell.
    ///
    /// On a face without a cut cell (a second call included) it prints a line and changes nothing.
    /// The area vector is not touched.
    void ReplaceDonorIdtoNonActCellId(int face);

    /// Prints the report on mesh, grids and groups to standard output; needs SetFVM().
    void OversetDebugMode();

    /// Fixes the published cells (those not cut) and opens the result output below the host's
    /// rootDir. Once per object.
    void InitializeVTKTool();
    /// Writes pressure and velocity of the published cells as one .vtu file.
    ///
    /// Magnitudes below 1e-10 are set to zero first, in the host's own arrays.
    /// @param time       physical time of the step, part of the file name
    /// @param iteration  iteration number of the step, part of the file name
    void OutputVTKDataInEachTimeStep(double time, int iteration);
    /// Closes the record of the steps and writes the .pvd time series.
    void PostRunVTKDataSMP();

    /// Moving meshes are not implemented: prints a line and changes nothing.
    /// @return 0
    int UpdateOverSetMesh();

    CKVXOversetMesh_Impl* impl;  ///< owned
};

/// The shape reserved for moving overset cells: ten 64-bit slots. Nothing in the toolbox fills or
/// reads one, and the middle eight have no meaning yet.
///
/// Copies share the two arrays: of a record and its copies only one may be destroyed while they
/// are set.
class KVX3D_API COversetMoveCellData {
public:
    COversetMoveCellData();
    COversetMoveCellData(const COversetMoveCellData& other) = default;
    COversetMoveCellData& operator=(const COversetMoveCellData& other) = default;
    ~COversetMoveCellData();

    double* firstArray;        ///< owned, from the array form of new
    std::int64_t reserved[8];  ///< copied and otherwise unused
    double* lastArray;         ///< owned, from the array form of new
};

#endif
