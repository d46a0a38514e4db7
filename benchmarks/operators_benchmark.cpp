/// Matrix assembly on a box of n x n x n cells: inner faces per second of one operator call on a
/// declared pattern, both sides of each face. BM_KnownPositions is the bound: the same finished
/// values added at positions found beforehand, so nothing is walked, formed or searched. It has one
/// row for each operator, because the operators differ in the number of adds per face.

#include "fvm_operators/mat_operator.h"
#include "host_link/containers.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstring>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace {

using KVX_ART_FVM::CKVX_ART_MatOperator;
using Terms = std::vector<std::pair<int, double>>;  // column, coefficient

/// A box of cells with the inner faces between them and the stencils of a host that extrapolates
/// with least-squares gradients: a far-upstream point takes the far cell and the six neighbours.
class BoxOfCells {
public:
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

    /// A matrix with the pattern of every stencil declared.
    std::unique_ptr<CKVX_ART_SparseMatrix> Matrix() const {
        auto A = std::make_unique<CKVX_ART_SparseMatrix>(gv.Nc, gv.NcAll);
        for (int i = 1; i <= gv.Ne; ++i) {
            for (const int* id : {gv.faceDataLeft[i].idFarLeft, gv.faceDataLeft[i].idFarRight,
                                  gv.faceDataLeft[i].idFace}) {
                for (int j = 1; j <= id[0]; ++j) {
                    A->AddIndex(first[i], id[j]);
                    A->AddIndex(second[i], id[j]);
                }
            }
        }
        A->CompressIndex();
        return A;
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

    /// The point behind `cell`, seen from `ahead`: ahead - 2 d . grad, over the cell's neighbours.
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

    /// Flux of a solid rotation about the box's z axis, with a constant draught along it.
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

/// Boxes are large: built once a size and kept.
BoxOfCells& Box(int n) {
    static std::map<int, std::unique_ptr<BoxOfCells>> boxes;
    std::unique_ptr<BoxOfCells>& box = boxes[n];
    if (!box) {
        box = std::make_unique<BoxOfCells>(n);
    }
    return *box;
}

constexpr double weight = 0.7;

using Assemble = void (*)(CKVX_ART_MatOperator&, CMAFVMFaceVariableAll*);

void Diffusion(CKVX_ART_MatOperator& op, CMAFVMFaceVariableAll*) {
    op.DiffusionOperator(weight);
}
void Upwind(CKVX_ART_MatOperator& op, CMAFVMFaceVariableAll* flux) {
    op.ConvectionOperatorFU(weight, flux);
}
void Quick(CKVX_ART_MatOperator& op, CMAFVMFaceVariableAll* flux) {
    op.ConvectionOperatorQUICK(weight, flux);
}

/// One operator call a round, on a matrix that keeps its pattern.
void BM_Operator(benchmark::State& state, Assemble assemble) {
    BoxOfCells& box = Box(static_cast<int>(state.range(0)));
    const std::unique_ptr<CKVX_ART_SparseMatrix> A = box.Matrix();
    CKVX_ART_MatOperator op(A.get(), &box.gv);
    const int nEntries = A->Ia[A->rowsN + 1];
    for (auto _ : state) {
        assemble(op, &box.flux);
        benchmark::ClobberMemory();
    }
    if (A->Ia[A->rowsN + 1] != nEntries) {
        state.SkipWithError("the pattern grew: insertions were timed");
    }
    state.SetItemsProcessed(state.iterations() * box.gv.Ne);
}

/// A position in the value array and what is added there.
struct KnownAdd {
    int position;
    double value;
};

/// The two matrices of a comparison must agree bit for bit, else the times mean nothing.
void CheckSameMatrix(benchmark::State& state, BoxOfCells& box, CKVX_ART_SparseMatrix& known,
                     const std::vector<KnownAdd>& adds, Assemble assemble) {
    known.Clear();
    for (const KnownAdd& add : adds) {
        known.Aa[add.position] += add.value;
    }
    const std::unique_ptr<CKVX_ART_SparseMatrix> A = box.Matrix();
    CKVX_ART_MatOperator op(A.get(), &box.gv);
    assemble(op, &box.flux);
    const std::size_t nBytes = sizeof(double) * static_cast<std::size_t>(known.Ia[known.rowsN + 1]);
    if (std::memcmp(known.Aa, A->Aa, nBytes) != 0) {
        state.SkipWithError("the operator and the list of adds differ");
    }
}

/// Lists the adds of one side. A sign of -1 on the factor has the bits of the negated product.
class SideList {
public:
    SideList(std::vector<KnownAdd>& list, const CKVX_ART_SparseMatrix& matrix, int rowOfSide,
             double signOfSide)
        : adds(list), A(matrix), row(rowOfSide), sign(signOfSide) {}

    void Stencil(const int* id, const double* coef, double factor) {
        for (int j = 1; j <= id[0]; ++j) {
            int k = A.Ia[row];
            while (A.Ja[k] != id[j]) {
                ++k;
            }
            adds.push_back({k, sign * factor * coef[j]});
        }
    }

private:
    std::vector<KnownAdd>& adds;
    const CKVX_ART_SparseMatrix& A;
    int row;
    double sign;
};

using ListSide = void (*)(SideList&, const CMAFVMFaceData&, double mu, double F);

void ListDiffusion(SideList& side, const CMAFVMFaceData& record, double mu, double) {
    side.Stencil(record.idNormal, record.coefNormal, weight * mu);
}

void ListUpwind(SideList& side, const CMAFVMFaceData& record, double, double F) {
    if (F > 0) {
        side.Stencil(record.idLeft, record.coefLeft, weight * F);
    } else {
        side.Stencil(record.idRight, record.coefRight, weight * F);
    }
}

void ListQuick(SideList& side, const CMAFVMFaceData& record, double, double F) {
    if (F > 0) {
        side.Stencil(record.idLeft, record.coefLeft, weight * 0.75 * F);
        side.Stencil(record.idFarLeft, record.coefFarLeft, weight * -0.125 * F);
        side.Stencil(record.idRight, record.coefRight, weight * 0.375 * F);
    } else {
        side.Stencil(record.idRight, record.coefRight, weight * 0.75 * F);
        side.Stencil(record.idFarRight, record.coefFarRight, weight * -0.125 * F);
        side.Stencil(record.idLeft, record.coefLeft, weight * 0.375 * F);
    }
}

/// The bound: a round adds the same values, in the same order, where they belong.
void BM_KnownPositions(benchmark::State& state, Assemble assemble, ListSide list) {
    BoxOfCells& box = Box(static_cast<int>(state.range(0)));
    const std::unique_ptr<CKVX_ART_SparseMatrix> A = box.Matrix();
    std::vector<KnownAdd> adds;
    for (int i = 1; i <= box.gv.Ne; ++i) {
        SideList firstSide(adds, *A, box.gv.Ce23[0][i], 1.0);
        SideList secondSide(adds, *A, box.gv.Ce23[1][i], -1.0);
        list(firstSide, box.gv.faceDataLeft[i], box.gv.faceMu->left[i], box.flux.left[i]);
        list(secondSide, box.gv.faceDataRight[i], box.gv.faceMu->right[i], box.flux.right[i]);
    }
    for (auto _ : state) {
        for (const KnownAdd& add : adds) {
            A->Aa[add.position] += add.value;
        }
        benchmark::ClobberMemory();
    }
    CheckSameMatrix(state, box, *A, adds, assemble);
    state.SetItemsProcessed(state.iterations() * box.gv.Ne);
    state.counters["adds/face"] = static_cast<double>(adds.size()) / box.gv.Ne;
}

constexpr int smallBox = 12;  // the stencils stay in the caches
constexpr int largeBox = 48;  // they do not

BENCHMARK_CAPTURE(BM_Operator, Diffusion, Diffusion)->Arg(smallBox)->Arg(largeBox);
BENCHMARK_CAPTURE(BM_KnownPositions, Diffusion, Diffusion, ListDiffusion)
    ->Arg(smallBox)
    ->Arg(largeBox);
BENCHMARK_CAPTURE(BM_Operator, FU, Upwind)->Arg(smallBox)->Arg(largeBox);
BENCHMARK_CAPTURE(BM_KnownPositions, FU, Upwind, ListUpwind)->Arg(smallBox)->Arg(largeBox);
BENCHMARK_CAPTURE(BM_Operator, QUICK, Quick)->Arg(smallBox)->Arg(largeBox);
BENCHMARK_CAPTURE(BM_KnownPositions, QUICK, Quick, ListQuick)->Arg(smallBox)->Arg(largeBox);

}  // namespace
