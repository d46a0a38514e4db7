#include "overset/donor_search.h"

#include <iostream>
#include <new>

#include "host_link/containers.h"
#include "host_link/detail/classic_format.h"
#include "overset/detail/kd_tree_store.h"
#include "overset/kd_tree.h"
#include "overset/overset_grid_data.h"

namespace kvx3d::detail {
namespace {

constexpr int nonActive = 1;          // value of cellState
constexpr double acrossLimit = 1e-8;  // area times length, in the host's units

void SetVector(double* v, double x, double y, double z) {
    v[1] = x;
    v[2] = y;
    v[3] = z;
}

void PrintNoGridState() {
    std::cout << "Warning: Can not get the overset grid state." << std::endl;
}

}  // namespace

void InsertActiveCells(KVX_ART_KDtree& tree, const KVX_ART_OVERSET_GRID_DATA& data, int grid) {
    const int* const cells = data.cellOfGrid[grid];
    int nActive = 0;
    for (int i = 1; i <= data.NCellOfGrid[grid]; ++i) {
        nActive += data.cellState[cells[i]] != nonActive ? 1 : 0;
    }
    if (nActive == 0) {
        return;
    }
    KDtreePoint* center = RoomForPoints(*tree.tree, nActive);
    if (!center) {
        throw std::bad_alloc();
    }
    for (int i = 1; i <= data.NCellOfGrid[grid]; ++i) {
        const int c = cells[i];
        if (data.cellState[c] != nonActive) {
            *center++ = {{data.xc[c], data.yc[c], data.zc[c]}, &data.cellOfGrid[grid][i]};
        }
    }
    if (!InsertPoints(*tree.tree)) {
        throw std::bad_alloc();
    }
}

DonorSearch::DonorSearch(const KVX_ART_OVERSET_GRID_DATA& data, KVX_ART_KDtree* background,
                         KVX_ART_KDtree* component, int searchedFace)
    : gridData(data), backgroundTree(background), componentTree(component), face(searchedFace) {
    newDouble1D(P, 3);
    newDouble1D(Q, 3);
    newDouble1D(N, 3);
}

DonorSearch::~DonorSearch() {
    delete[] P;
    delete[] Q;
    delete[] N;
}

void DonorSearch::From(double x, double y, double z) {
    SetVector(P, x, y, z);
}

void DonorSearch::Across(double x, double y, double z) {
    SetVector(N, x, y, z);
}

int DonorSearch::Run(int c) {
    // The last answer is not released: two ints are left per call. A host searches once for each
    // face and stores the donors in its own table, so this does not grow with its time steps.
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

/// Finds the active cell nearest to Q in the grid that cell c does not belong to. If that grid has
/// no tree, the answer of the previous try stays.
void DonorSearch::SearchOtherGrid(int c, int*& found) const {
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
        // Twice: once for the grid of the cell, once for the grid to be searched.
        PrintNoGridState();
        PrintNoGridState();
    }
    const ClassicFormat format(std::cerr);
    std::cerr << "Fail to search donor cell. Inner Face ID=" << face << std::endl;
}

/// Summed in the order y, x, z: the order decides in cases close to the limit.
bool DonorSearch::LiesAcross(int d) const {
    const double across = (gridData.yc[d] - P[2]) * N[2] + (gridData.xc[d] - P[1]) * N[1] +
                          (gridData.zc[d] - P[3]) * N[3];
    return across > acrossLimit;
}

}  // namespace kvx3d::detail
