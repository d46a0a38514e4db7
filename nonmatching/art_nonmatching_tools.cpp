#include "nonmatching/art_nonmatching_tools.h"

#include <iostream>
#include <set>
#include <vector>

#include "host_link/detail/classic_format.h"
#include "host_link/detail/last_stores.h"
#include "vtk_output/vtk_tool.h"

namespace {

/// Factor on the area vector of an ineffective face. It is not zero, so that
/// code which divides by the length of the vector still gets a direction.
constexpr double ineffectiveScale = 1e-10;

/// The cells on both sides of one group of flagged faces.
struct FaceSides {
    VTK_Cells owners;       ///< one entry per face, so a cell appears once for each face it owns
    VTK_Cells neighbors;    ///< each cell once
    std::set<int> entered;  ///< ids of the cells in `neighbors`
};

/// The nodes of a cell as the VTK output takes them, borrowed from the mesh.
MeshCell CellOf(const CKVX3DFiniteVolumeMesh& mesh, int cell) {
    int* row = mesh.cellNodes[cell];
    return MeshCell(&row[1], row[0]);
}

}  // namespace

art_nonmatching_tools::art_nonmatching_tools() : kvxGv(nullptr), kvxFvm(nullptr) {}

art_nonmatching_tools::~art_nonmatching_tools() {
    kvxGv = nullptr;
    kvxFvm = nullptr;
    kvx3d::detail::KeepLastStores();
}

void art_nonmatching_tools::SetFVM(CKvx3dGV* gv, CKVX3DFiniteVolumeMesh* fvm) {
    kvxGv = gv;
    kvxFvm = fvm;
}

void art_nonmatching_tools::NonmatchingPreprocess() {
    const kvx3d::detail::ClassicFormat format(std::cout);
    std::cout << "Start Non-matching Preprocess:" << std::endl;
    std::vector<int> outsideFaces;
    std::vector<int> cavityFaces;
    for (int face = 1; face <= kvxFvm->Ne; ++face) {
        if (!IsNonmatchingFace(face)) {
            continue;
        }
        // The owner alone decides the group: each side of an interface has its own faces, so
        // the faces of the neighbor's side are visited separately.
        if (CheckCavityId(GetInnerFaceOwnerId(face)) < 1) {
            outsideFaces.push_back(face);
        } else {
            cavityFaces.push_back(face);
        }
    }
    // [sic] "Nun-matching": the wording is part of the interface and compared as text.
    std::cout << "Total Nun-matching Face Number = " << outsideFaces.size() + cavityFaces.size()
              << std::endl;

    const bool cavityIsSmaller = cavityFaces.size() < outsideFaces.size();
    const std::vector<int>& ineffective = cavityIsSmaller ? cavityFaces : outsideFaces;
    const std::vector<int>& effective = cavityIsSmaller ? outsideFaces : cavityFaces;
    for (int face : effective) {
        TransferInnerFaceProperty(face);
    }
    for (int face : ineffective) {
        TransferInnerFaceProperty(face);
        SetZeroInnerNormal(face);
    }
    std::cout << "Ineffective Non-matching Face Number = " << ineffective.size() << std::endl;
    std::cout << "Non-matching Preprocess END." << std::endl;
}

bool art_nonmatching_tools::CheckNonmatchingFaceVTKData(bool beforePreprocess) {
    if (kvxGv == nullptr || kvxFvm == nullptr) {
        std::cout << "<ERROR> Must SetFVM First!" << std::endl;
        return false;
    }

    VTK_Points points;
    points.x = &kvxFvm->xn[1];
    points.y = &kvxFvm->yn[1];
    points.z = &kvxFvm->zn[1];
    points.count = kvxFvm->Nn;

    VTK_Cells allCells;
    for (int cell = 1; cell <= kvxFvm->Nc; ++cell) {
        allCells.push_back(CellOf(*kvxFvm, cell));
    }
    FaceSides cavity;
    FaceSides outside;
    for (int face = 1; face <= kvxFvm->Ne; ++face) {
        if (!IsNonmatchingFace(face)) {
            continue;
        }
        const int owner = GetInnerFaceOwnerId(face);
        const int neighbor = GetInnerFaceNeighborId(face);
        FaceSides& sides = CheckCavityId(owner) < 1 ? outside : cavity;
        sides.owners.push_back(CellOf(*kvxFvm, owner));
        if (sides.entered.insert(neighbor).second) {
            sides.neighbors.push_back(CellOf(*kvxFvm, neighbor));
        }
    }

    // In the order of the block numbers in the file names.
    VTK_Block blocks[] = {{&points, &allCells},
                          {&points, &cavity.owners},
                          {&points, &cavity.neighbors},
                          {&points, &outside.owners},
                          {&points, &outside.neighbors}};
    char nameBefore[] = "Check_NonmatchingFaceData_BeforePreprocess";
    char nameAfter[] = "Check_NonmatchingFaceData_AfterPreprocess";
    CKVX_ART_VTK_Tool tool;
    // Process 1, whatever the number of the host's process, because the picture is the view of one
    // process. No post-run follows, so the record file stays in the root directory until a merge
    // there includes it.
    tool.Initialize(kvxGv->rootDir, beforePreprocess ? nameBefore : nameAfter, 1);
    for (VTK_Block& block : blocks) {
        tool.newBlockData(&block);
    }
    tool.OutputRun(0.0, 0);
    return true;
}

bool art_nonmatching_tools::IsNonmatchingFace(int face) {
    return kvxFvm->nonmatchingFace[face] == 1;
}

int art_nonmatching_tools::CheckCavityId(int cell) {
    return kvxGv->cavityId[cell];
}

int art_nonmatching_tools::GetInnerFaceOwnerId(int face) {
    return kvxFvm->Ce23[0][face];
}

int art_nonmatching_tools::GetInnerFaceNeighborId(int face) {
    return kvxFvm->Ce23[1][face];
}

void art_nonmatching_tools::SetZeroInnerNormal(int face) {
    kvxFvm->nxe[face] *= ineffectiveScale;
    kvxFvm->nye[face] *= ineffectiveScale;
    kvxFvm->nze[face] *= ineffectiveScale;
}

void art_nonmatching_tools::TransferInnerFaceProperty(int face) {
    kvxFvm->nonmatchingFace[face] = 0;
}
