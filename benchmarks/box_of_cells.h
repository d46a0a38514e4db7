#ifndef KVX3D_BENCHMARKS_BOX_OF_CELLS_H
#define KVX3D_BENCHMARKS_BOX_OF_CELLS_H

#include "host_link/art_gv.h"
#include "host_link/containers.h"
#include "host_link/face_data.h"
#include "linear_algebra/sparse_matrix.h"

#include <cstddef>
#include <utility>
#include <vector>

/// A box of cells with the inner faces between them and the stencils of a host that extrapolates
/// with least-squares gradients: a far-upstream stencil has the far cell and its six neighbors.
class BoxOfCells {
public:
    using Terms = std::vector<std::pair<int, double>>;  ///< column, coefficient

    explicit BoxOfCells(int nEdge) : n(nEdge) {
        gv.kvxGv = &globals;
        gv.kvxFvm = &mesh;
        gv.Nc = gv.NcAll = n * n * n;
        for (int axis = 0; axis < 3; ++axis) {
            ForFacesAcross(axis);
        }
        gv.Ne = static_cast<int>(first.size()) - 1;
        gv.Ce23[0] = first.data();
        gv.Ce23[1] = second.data();
        nonmatching.assign(first.size(), 0);
        gv.nonmatchingFace = nonmatching.data();
        gv.faceDataLeft = new CMAFVMFaceData[gv.Ne + 1];
        gv.faceDataRight = new CMAFVMFaceData[gv.Ne + 1];
        gv.faceMu = new CMAFVMFaceVariable(&gv, false);
        flux.NewMemory(&gv);
        for (int i = 1; i <= gv.Ne; ++i) {
            FillRecord(gv.faceDataLeft[i], first[i], second[i]);
            gv.faceDataRight[i].LinkedDataForAll(gv.faceDataLeft[i]);
            flux.left[i] = flux.right[i] = Vortex(i);
            gv.faceMu->left[i] = gv.faceMu->right[i] = 1.0 + 1.0 / i;
        }
    }

    /// Declares every entry to which an operator may add, about 25 per row.
    void Declare(CKVX_ART_SparseMatrix& A) const {
        for (int i = 1; i <= gv.Ne; ++i) {
            for (const int* id : {gv.faceDataLeft[i].idFarLeft, gv.faceDataLeft[i].idFarRight,
                                  gv.faceDataLeft[i].idFace}) {
                for (int j = 1; j <= id[0]; ++j) {
                    A.AddIndex(first[i], id[j]);
                    A.AddIndex(second[i], id[j]);
                }
            }
        }
        A.CompressIndex();
    }

    CKVX_ACMT_GV gv;
    CMAFVMFaceVariableAll flux;

private:
    int Cell(int x, int y, int z) const { return 1 + x + n * (y + n * z); }

    void ForFacesAcross(int axis) {
        for (int z = 0; z < n - (axis == 2); ++z) {
            for (int y = 0; y < n - (axis == 1); ++y) {
                for (int x = 0; x < n - (axis == 0); ++x) {
                    first.push_back(Cell(x, y, z));
                    second.push_back(Cell(x + (axis == 0), y + (axis == 1), z + (axis == 2)));
                }
            }
        }
    }

    static void SetStencil(int*& id, double*& coef, const Terms& terms) {
        newInt1D(id, static_cast<int>(terms.size()));
        newDouble1D(coef, static_cast<int>(terms.size()));
        for (std::size_t j = 0; j < terms.size(); ++j) {
            id[j + 1] = terms[j].first;
            coef[j + 1] = terms[j].second;
        }
    }

    /// The point on the other side of `cell` from `ahead`: ahead - 2 d . grad, where the gradient
    /// uses the neighbors of the cell.
    Terms FarPoint(int cell, int ahead) const {
        const int x = (cell - 1) % n;
        const int y = (cell - 1) / n % n;
        const int z = (cell - 1) / (n * n);
        Terms terms = {{ahead, 1.0}};
        for (int step : {-1, 1}) {
            for (int axis = 0; axis < 3; ++axis) {
                const int at[3] = {x + (axis == 0) * step, y + (axis == 1) * step,
                                   z + (axis == 2) * step};
                if (at[axis] >= 0 && at[axis] < n && Cell(at[0], at[1], at[2]) != ahead) {
                    terms.emplace_back(Cell(at[0], at[1], at[2]), -0.3 * step);
                }
            }
        }
        return terms;
    }

    /// Flux of a rigid rotation about the z axis of the box, with a constant velocity along it.
    double Vortex(int face) const {
        const int step = second[face] - first[face];
        const double x = (first[face] - 1) % n - 0.5 * n;
        const double y = (first[face] - 1) / n % n - 0.5 * n;
        return step == 1 ? -y + 0.3 : step == n ? x + 0.3 : 0.7;
    }

    void FillRecord(CMAFVMFaceData& record, int L, int R) {
        SetStencil(record.idFace, record.coefFace, {{L, 0.4}, {R, 0.6}});
        SetStencil(record.idNormal, record.coefNormal, {{L, -1.1}, {R, 1.1}});
        SetStencil(record.idLeft, record.coefLeft, {{L, 1.0}});
        SetStencil(record.idRight, record.coefRight, {{R, 1.0}});
        SetStencil(record.idFarLeft, record.coefFarLeft, FarPoint(L, R));
        SetStencil(record.idFarRight, record.coefFarRight, FarPoint(R, L));
    }

    int n;
    CKvx3dGV globals;
    CKVX3DFiniteVolumeMesh mesh;
    std::vector<int> first = {0};
    std::vector<int> second = {0};
    std::vector<int> nonmatching;
};

#endif
