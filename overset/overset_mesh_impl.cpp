#include "overset/overset_mesh_impl.h"

#include <iostream>

#include "host_link/detail/classic_format.h"
#include "host_link/detail/last_stores.h"
#include "overset/donor_search.h"
#include "vtk_output/vtk_data.h"
#include "vtk_output/vtk_tool.h"

namespace {

using kvx3d::detail::DonorSearch;
using kvx3d::detail::InsertActiveCells;

constexpr int nonActive = 1;  // values of cellState
constexpr int active = 2;

constexpr int layersAtCut = 2;  // margin of both cuts, in cell sizes

}  // namespace

CKVXOversetMesh_Impl::CKVXOversetMesh_Impl()
    : backgroundTree(nullptr),
      componentTree(nullptr),
      vtkTool(nullptr),
      vtkPoints(nullptr),
      vtkCells(nullptr),
      vtkBlock(nullptr),
      velocityData(nullptr),
      pressureData(nullptr) {
    gridData = nullptr;
    artGv = nullptr;
    cutGridLayer = 0;
}

CKVXOversetMesh_Impl::~CKVXOversetMesh_Impl() {
    delete backgroundTree;
    backgroundTree = nullptr;
    delete componentTree;
    componentTree = nullptr;
    delete vtkTool;
    vtkTool = nullptr;
    if (vtkPoints) {
        vtkPoints->count = 0;
        delete vtkPoints;
        vtkPoints = nullptr;
    }
    delete vtkCells;
    vtkCells = nullptr;
    delete vtkBlock;
    vtkBlock = nullptr;
    delete velocityData;
    velocityData = nullptr;
    delete pressureData;
    pressureData = nullptr;
    kvx3d::detail::KeepLastStores();
}

int CKVXOversetMesh_Impl::InitializeSetting(CKvx3dGV* gv, CKVX3DFiniteVolumeMesh* fvm) {
    std::cout << "Step 1: Link Kelvex FVM Mesh Data." << std::endl;
    gridData = new KVX_ART_OVERSET_GRID_DATA();
    gridData->getKvx3dGV(gv, fvm);
    // Nothing stops the set-up: if a host object is missing, the lines printed so far report it,
    // and the first read of that object goes through a null pointer.
    gridData->getKvx3dData();
    std::cout << "Step 2: Overset Mesh Data Initial Setting." << std::endl;
    gridData->OversetGridsInfoSetting();
    std::cout << "Step 3: Outside Domain Cutting." << std::endl;
    OutsideDomainCutting(layersAtCut);
    std::cout << "Step 4: Overlap Region Cutting." << std::endl;
    OverlapRegionCutting(layersAtCut);
    std::cout << "Step 5: Build Tree for Search Neighbor." << std::endl;
    BuildTreeForSearchDonor();
    return 0;
}

void CKVXOversetMesh_Impl::BuildTreeForSearchDonor() {
    // Trees of an earlier set-up are not released: a copy of this object may hold them.
    backgroundTree = new KVX_ART_KDtree();
    componentTree = new KVX_ART_KDtree();
    InsertActiveCells(*backgroundTree, *gridData, OversetGrid_Background);
    if (gridData->hasOversetGrids) {
        InsertActiveCells(*componentTree, *gridData, OversetGrid_Component1);
    }
}

OversetCellType CKVXOversetMesh_Impl::GetOversetCellState(int cell) {
    switch (gridData->cellState[cell]) {
        case active:
            return OversetCell_Active;
        case nonActive:
            return OversetCell_NonActive;
        default:
            return OversetCell_Undefined;
    }
}

OversetInnerFaceType CKVXOversetMesh_Impl::GetOversetInnerFaceState(int face) {
    return gridData->GetInnerFaceState(face);
}

OversetWallFaceType CKVXOversetMesh_Impl::GetOversetWallFaceState(int wallFace) {
    return gridData->GetWallFaceType(wallFace);
}

int CKVXOversetMesh_Impl::GetOversetInnerDonorCell(int face) {
    const KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    const int owner = data.Ce23[0][face];
    const int neighbor = data.Ce23[1][face];
    DonorSearch search(data, backgroundTree, componentTree, face);
    search.From(data.xe[face], data.ye[face], data.ze[face]);
    if (data.cellState[owner] == nonActive && data.cellState[neighbor] == active) {
        search.Across(-data.nxe[face], -data.nye[face], -data.nze[face]);
        return search.Run(neighbor);
    }
    search.Across(data.nxe[face], data.nye[face], data.nze[face]);
    return search.Run(owner);
}

int CKVXOversetMesh_Impl::GetOversetWallDonorCell(int wallFace) {
    const KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    if (wallFace < 1 || wallFace > data.NWall) {
        std::cout << "<ERROR> Fail to get overset wall donor cell. idWall must within 1~ NWall."
                  << std::endl;
        return -1;
    }
    DonorSearch search(data, backgroundTree, componentTree, wallFace);
    search.From(data.xWall[wallFace], data.yWall[wallFace], data.zWall[wallFace]);
    // All three components are nx: "across" is judged along the diagonal, scaled by the wall's x
    // area. With nx == 0 no cell lies across and the search does not end.
    search.Across(data.nxWall[wallFace], data.nxWall[wallFace], data.nxWall[wallFace]);
    return search.Run(data.CWall23[wallFace]);
}

void CKVXOversetMesh_Impl::ReplaceCe23_DonorCelltoGhostCell(int face) {
    const KVX_ART_OVERSET_GRID_DATA& data = *gridData;
    if (data.cellState[data.Ce23[0][face]] == nonActive) {
        data.Ce23[0][face] = GetOversetInnerDonorCell(face);
    } else if (data.cellState[data.Ce23[1][face]] == nonActive) {
        data.Ce23[1][face] = GetOversetInnerDonorCell(face);
    } else {
        const kvx3d::detail::ClassicFormat format(std::cout);
        std::cout << "This inner face is not Overset Inner , Inner ID=" << face << std::endl;
    }
}

void CKVXOversetMesh_Impl::DebugMode() {
    gridData->PrintOversetGridsInfo();
}
