#include "overset/overset_mesh_impl.h"

#include <iostream>
#include <new>

#include "host_link/containers.h"
#include "host_link/detail/classic_format.h"
#include "host_link/detail/last_stores.h"
#include "overset/detail/kd_tree_store.h"
#include "vtk_output/vtk_data.h"
#include "vtk_output/vtk_tool.h"

namespace {

constexpr int nonActive = 1;  // values of cellState
constexpr int active = 2;

constexpr int layersAtCut = 2;        // margin of both cuts, in cell sizes
constexpr double acrossLimit = 1e-8;  // area times length of the host: "beyond the face"

/// Inserts the centres of a grid's active cells; their ids stay in the table of the grid data.
void InsertActiveCells(KVX_ART_KDtree& tree, const KVX_ART_OVERSET_GRID_DATA& data, int grid) {
    const int* const cells = data.cellOfGrid[grid];
    int nActive = 0;
    for (int i = 1; i <= data.NCellOfGrid[grid]; ++i) {
        nActive += data.cellState[cells[i]] != nonActive ? 1 : 0;
    }
    if (nActive == 0) {
        return;
    }
    KDtreePoint* centre = RoomForPoints(*tree.tree, nActive);
    if (!centre) {
        throw std::bad_alloc();
    }
    for (int i = 1; i <= data.NCellOfGrid[grid]; ++i) {
        const int c = cells[i];
        if (data.cellState[c] != nonActive) {
            *centre++ = {{data.xc[c], data.yc[c], data.zc[c]}, &data.cellOfGrid[grid][i]};
        }
    }
    if (!InsertPoints(*tree.tree)) {
        throw std::bad_alloc();
    }
}

/// One search for a donor: from the centre C of cell c through the face centre P and on, until the
/// nearest active cell of the other grid lies across the face.
class DonorSearch {
public:
    DonorSearch(const KVX_ART_OVERSET_GRID_DATA& data, KVX_ART_KDtree* background,
                KVX_ART_KDtree* component, int searchedFace)
        : gridData(data), backgroundTree(background), componentTree(component), face(searchedFace) {
        newDouble1D(P, 3);
        newDouble1D(Q, 3);
        newDouble1D(N, 3);
    }
    DonorSearch(const DonorSearch&) = delete;
    DonorSearch& operator=(const DonorSearch&) = delete;
    ~DonorSearch() {
        delete[] P;
        delete[] Q;
        delete[] N;
    }

    void From(double x, double y, double z) { Set(P, x, y, z); }
    void Across(double x, double y, double z) { Set(N, x, y, z); }

    /// The donor for cell c. There is no last try: each one looks a tenth of P - C further out.
    int Run(int c) {
        // The last answer is not released: two ints stay behind per call. A host asks once per face
        // and keeps the donors in a table of its own, so this does not grow with its time steps.
        int* found = nullptr;
        for (double t = 1.0;; t += 0.1) {
            Q[1] = (P[1] - gridData.xc[c]) * t + P[1];
            Q[2] = (P[2] - gridData.yc[c]) * t + P[2];
            Q[3] = (P[3] - gridData.zc[c]) * t + P[3];
            SearchOtherGrid(c, found);
            if (found && found[0] > 0 && LiesAcross(found[1])) {
                return found[1];
            }
        }
    }

private:
    static void Set(double* v, double x, double y, double z) {
        v[1] = x;
        v[2] = y;
        v[3] = z;
    }

    /// Nearest active cell to Q in the grid that cell c does not lie in. Without such a grid the
    /// answer of the try before stays, if there is one.
    void SearchOtherGrid(int c, int*& found) const {
        const int grid = gridData.cavityToGrid[gridData.cavityId[c]];
        if (grid == OversetGrid_Background) {
            componentTree->SearchNearestPoints(Q[1], Q[2], Q[3], found);
            return;
        }
        if (grid == OversetGrid_Component1) {
            backgroundTree->SearchNearestPoints(Q[1], Q[2], Q[3], found);
            return;
        }
        if (grid != OversetGrid_Component2) {
            // Twice: once for the grid the cell lies in, once for the grid to search.
            std::cout << "Warning: Can not get the overset grid state." << std::endl;
            std::cout << "Warning: Can not get the overset grid state." << std::endl;
        }
        const kvx3d::detail::ClassicFormat format(std::cerr);
        std::cerr << "Fail to search donor cell. Inner Face ID=" << face << std::endl;
    }

    /// Summed y, x, z: at the limit the order decides.
    bool LiesAcross(int d) const {
        const double across = (gridData.yc[d] - P[2]) * N[2] + (gridData.xc[d] - P[1]) * N[1] +
                              (gridData.zc[d] - P[3]) * N[3];
        return across > acrossLimit;
    }

    const KVX_ART_OVERSET_GRID_DATA& gridData;
    KVX_ART_KDtree* backgroundTree;
    KVX_ART_KDtree* componentTree;
    int face;
    double* P = nullptr;  ///< centre of the face
    double* Q = nullptr;  ///< where to search
    double* N = nullptr;  ///< direction that counts as across
};

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
    // Nothing stops the setup: a host that passed no object is told by the lines above and ends at
    // the first read of it.
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
    // Trees of an earlier setup are given up, not released: a copy of this object may hold them.
    backgroundTree = new KVX_ART_KDtree();
    componentTree = new KVX_ART_KDtree();
    InsertActiveCells(*backgroundTree, *gridData, OversetGrid_Background);
    if (gridData->hasOversetGrids) {
        InsertActiveCells(*componentTree, *gridData, OversetGrid_Component1);
        // The whole hole boundary asks this tree, so an index is soon worth its making. That of the
        // background is larger and asked less: there an index costs more than the searches it
        // saves, and its memory on top of all nodes would be the peak of the setup.
        IndexNodes(*componentTree->tree);
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
    // All three components are nx: the search leaves along the diagonal, scaled by the wall's x
    // area. With nx == 0 nothing lies "across" and the search does not end.
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
