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
/// other two output calls. A query before SetFVM() reads through a null pointer.
///
/// All ids are 1-based. None is checked except the wall id of GetOversetWallNeighbor(). The set-up
/// reads the mesh once: it does not follow moving meshes, and donors come only from the background
/// and the first component grid.
///
/// Every call runs on the caller's thread, and only one call at a time may run on an object.
///
/// Tables and trees can be read through `impl`; this header declares all of them.
class KVX3D_API CKVXOversetMesh {
public:
    CKVXOversetMesh();
    CKVXOversetMesh(const CKVXOversetMesh& other) = default;
    /// Shares the implementation of `other`: only one of the two objects may be destroyed. The
    /// implementation that this object held before is not released.
    CKVXOversetMesh& operator=(const CKVXOversetMesh& other) = default;
    ~CKVXOversetMesh();

    /// The whole set-up: links the host, sorts cells into grids, cuts holes, builds donor trees.
    ///
    /// Prints one line on standard output before each step. The host objects must be filled, live
    /// longer than this object and keep their arrays at their addresses. CKvx3dGV gives the rules
    /// for the overset members. A second call starts from the beginning and does not release the
    /// tables of the first one.
    ///
    /// @param gv   host global variables; if it is null, the set-up prints a line and then reads
    ///             through a null pointer in its second step
    /// @param fvm  host mesh; the same applies
    /// @return 0 always
    int SetFVM(CKvx3dGV* gv, CKVX3DFiniteVolumeMesh* fvm);

    /// State of cell 1..Nc.
    OversetCellType GetOversetCellType(int cell);
    /// State of inner face 1..Ne, from its two cells in their current order. Does not change the
    /// mesh.
    OversetInnerFaceType GetInnerFaceType(int face);
    /// Kind of wall face 1..NWall.
    OversetWallFaceType GetBCType(int wallFace);

    /// Donor of an inner face on the hole boundary: the active cell of the other grid that replaces
    /// the cut cell of the face. Each call searches again.
    ///
    /// Does not return if the active side of the face lies in the second component grid, or if no
    /// active cell of the other grid lies across the face.
    /// @return cell id
    int GetOversetInnerNeighbor(int face);
    /// Donor of a wall face of an overset boundary group, searched as for an inner face.
    ///
    /// The x component of the area vector is used for all three components when the search decides
    /// which cells lie across the face. If it is 0, the search does not return.
    /// @return cell id, or -1 with a line on standard output if wallFace is not in 1..NWall
    int GetOversetWallNeighbor(int wallFace);
    /// Writes the donor of an inner face into the host's Ce23, in place of the cut cell.
    ///
    /// If no cell of the face is cut, which is also the case in a second call, it prints a line and
    /// changes nothing. The area vector does not change.
    void ReplaceDonorIdtoNonActCellId(int face);

    /// Prints the report on mesh, grids and groups to standard output. Call it after SetFVM().
    void OversetDebugMode();

    /// Lists the published cells, which are those not cut, and opens the result output below the
    /// host's rootDir. Call it once per object.
    void InitializeVTKTool();
    /// Writes pressure and velocity of the published cells as one .vtu file.
    ///
    /// First sets magnitudes below 1e-10 to zero, in the host's own arrays.
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

/// Record reserved for moving overset cells: ten 64-bit slots. Nothing in the toolbox writes or
/// reads such a record, and the middle eight slots have no meaning yet.
///
/// Copies share the two arrays: while these are set, only one of a record and its copies may be
/// destroyed.
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
