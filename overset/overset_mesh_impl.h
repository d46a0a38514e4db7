#ifndef KVX3D_OVERSET_OVERSET_MESH_IMPL_H
#define KVX3D_OVERSET_OVERSET_MESH_IMPL_H

#include "host_link/export.h"
#include "overset/hole_cutting.h"
#include "overset/kd_tree.h"
#include "overset/overset_grid_data.h"
#include "overset/overset_types.h"

class CKVX_ART_VTK_Tool;
class VTK_Block;
class VTK_Cells;
class VTK_Data;
class VTK_Points;

/// Implementation of CKVXOversetMesh. Each operation behaves like the operation of the facade that
/// its comment names.
///
/// InitializeSetting() creates the inherited gridData. It is never destroyed here, because records
/// and trees of a copy may still point into it. Copies share every pointer; only one of them may
/// be destroyed.
class KVX3D_API CKVXOversetMesh_Impl : public CKVX_ART_HoleCutting {
public:
    /// Every pointer null.
    CKVXOversetMesh_Impl();
    CKVXOversetMesh_Impl(const CKVXOversetMesh_Impl& other) = default;
    CKVXOversetMesh_Impl& operator=(const CKVXOversetMesh_Impl& other) = default;
    /// Releases trees, output tool and output records, in member order; not gridData.
    ~CKVXOversetMesh_Impl() override;

    /// CKVXOversetMesh::SetFVM().
    int InitializeSetting(CKvx3dGV* gv, CKVX3DFiniteVolumeMesh* fvm);

    /// CKVXOversetMesh::GetOversetCellType().
    OversetCellType GetOversetCellState(int cell);
    /// CKVXOversetMesh::GetInnerFaceType().
    OversetInnerFaceType GetOversetInnerFaceState(int face);
    /// CKVXOversetMesh::GetBCType().
    OversetWallFaceType GetOversetWallFaceState(int wallFace);

    /// CKVXOversetMesh::GetOversetInnerNeighbor().
    int GetOversetInnerDonorCell(int face);
    /// CKVXOversetMesh::GetOversetWallNeighbor().
    int GetOversetWallDonorCell(int wallFace);
    /// CKVXOversetMesh::ReplaceDonorIdtoNonActCellId().
    void ReplaceCe23_DonorCelltoGhostCell(int face);

    /// CKVXOversetMesh::OversetDebugMode().
    void DebugMode();

    /// CKVXOversetMesh::InitializeVTKTool().
    void InitVTKTool();
    /// CKVXOversetMesh::OutputVTKDataInEachTimeStep().
    void OutputEachTimeStepVTKData(double time, int iteration);
    /// CKVXOversetMesh::PostRunVTKDataSMP().
    void PostRunVTKData_SMP();

    KVX_ART_KDtree* backgroundTree;  ///< centers of the active background cells, owned
    KVX_ART_KDtree* componentTree;   ///< centers of the active cells of component grid 1, owned
    CKVX_ART_VTK_Tool* vtkTool;      ///< owned; null before InitVTKTool(), like the next five
    VTK_Points* vtkPoints;           ///< all nodes of the mesh, owned; its arrays are the host's
    VTK_Cells* vtkCells;             ///< the published cells, owned; node rows are the host's
    VTK_Block* vtkBlock;             ///< owned
    VTK_Data* velocityData;          ///< owned
    VTK_Data* pressureData;          ///< owned

private:
    void BuildTreeForSearchDonor();
};

#endif
