#include "overset/overset_mesh.h"

#include <iostream>

#include "host_link/detail/last_stores.h"

CKVXOversetMesh::CKVXOversetMesh() : impl(new CKVXOversetMesh_Impl()) {}

CKVXOversetMesh::~CKVXOversetMesh() {
    delete impl;
    impl = nullptr;
    kvx3d::detail::KeepLastStores();
}

int CKVXOversetMesh::SetFVM(CKvx3dGV* gv, CKVX3DFiniteVolumeMesh* fvm) {
    return impl->InitializeSetting(gv, fvm);
}

OversetCellType CKVXOversetMesh::GetOversetCellType(int cell) {
    return impl->GetOversetCellState(cell);
}

OversetInnerFaceType CKVXOversetMesh::GetInnerFaceType(int face) {
    return impl->GetOversetInnerFaceState(face);
}

OversetWallFaceType CKVXOversetMesh::GetBCType(int wallFace) {
    return impl->GetOversetWallFaceState(wallFace);
}

int CKVXOversetMesh::GetOversetInnerNeighbor(int face) {
    return impl->GetOversetInnerDonorCell(face);
}

int CKVXOversetMesh::GetOversetWallNeighbor(int wallFace) {
    return impl->GetOversetWallDonorCell(wallFace);
}

void CKVXOversetMesh::ReplaceDonorIdtoNonActCellId(int face) {
    impl->ReplaceCe23_DonorCelltoGhostCell(face);
}

void CKVXOversetMesh::OversetDebugMode() {
    impl->DebugMode();
}

void CKVXOversetMesh::InitializeVTKTool() {
    impl->InitVTKTool();
}

void CKVXOversetMesh::OutputVTKDataInEachTimeStep(double time, int iteration) {
    impl->OutputEachTimeStepVTKData(time, iteration);
}

void CKVXOversetMesh::PostRunVTKDataSMP() {
    impl->PostRunVTKData_SMP();
}

int CKVXOversetMesh::UpdateOverSetMesh() {
    std::cout << "Not yet ready for Updating Overset Mesh" << std::endl;
    return 0;
}

COversetMoveCellData::COversetMoveCellData()
    : firstArray(nullptr), reserved{}, lastArray(nullptr) {}

COversetMoveCellData::~COversetMoveCellData() {
    delete[] firstArray;
    delete[] lastArray;
}
