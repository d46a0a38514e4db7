#ifndef KVX3D_TESTS_FVM_OPERATORS_OPERATOR_HOST_H
#define KVX3D_TESTS_FVM_OPERATORS_OPERATOR_HOST_H

#include "fvm_operators/mat_operator.h"
#include "host_link/art_gv.h"
#include "host_link/containers.h"
#include "host_link/face_data.h"
#include "linear_algebra/sparse_matrix.h"

#include <gtest/gtest.h>

#include <array>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

/// Boundary kinds in the order in which the operators process them.
enum Kind { Inlet, Outlet, Wall, Symm };
constexpr std::array<Kind, 4> allKinds = {Inlet, Outlet, Wall, Symm};

/// The stencils of a record that operators read.
enum class Pair { Normal, Face, Left, Right, FarLeft, FarRight };
constexpr std::array<Pair, 6> allPairs = {Pair::Normal, Pair::Face,    Pair::Left,
                                          Pair::Right,  Pair::FarLeft, Pair::FarRight};

/// References to the id and coefficient arrays of a stencil in its record.
struct PairRef {
    int*& id;
    double*& coef;
};

inline PairRef PairOf(CMAFVMFaceData& record, Pair pair) {
    switch (pair) {
        case Pair::Normal:
            return {record.idNormal, record.coefNormal};
        case Pair::Face:
            return {record.idFace, record.coefFace};
        case Pair::Left:
            return {record.idLeft, record.coefLeft};
        case Pair::Right:
            return {record.idRight, record.coefRight};
        case Pair::FarLeft:
            return {record.idFarLeft, record.coefFarLeft};
        default:
            return {record.idFarRight, record.coefFarRight};
    }
}

using Terms = std::vector<std::pair<int, double>>;  ///< column, coefficient

/// Replaces a stencil of `record`.
inline void SetStencil(CMAFVMFaceData& record, Pair pair, const Terms& terms) {
    const PairRef ref = PairOf(record, pair);
    newInt1D(ref.id, static_cast<int>(terms.size()));
    newDouble1D(ref.coef, static_cast<int>(terms.size()));
    for (std::size_t j = 0; j < terms.size(); ++j) {
        ref.id[j + 1] = terms[j].first;
        ref.coef[j + 1] = terms[j].second;
    }
}

/// The smallest mesh for an operator: cells, faces given by hand, no geometry.
///
/// Cells are 1..nCells, followed by the ghost cells kind by kind. All stencils exist and are empty,
/// all fluxes and properties are 0; a test sets what it needs. Left and right variables are
/// separate arrays.
class OperatorHost {
public:
    using Cells = std::vector<int>;

    OperatorHost(int nCells, const std::vector<std::pair<int, int>>& innerFaces,
                 const std::array<Cells, 4>& boundaryCells = {}) {
        gv.kvxGv = &globals;
        gv.kvxFvm = &mesh;
        gv.Nc = nCells;
        gv.Ne = static_cast<int>(innerFaces.size());
        for (std::vector<int>* side : {&first_, &second_, &nonmatching_}) {
            side->assign(innerFaces.size() + 1, 0);
        }
        for (std::size_t i = 0; i < innerFaces.size(); ++i) {
            first_[i + 1] = innerFaces[i].first;
            second_[i + 1] = innerFaces[i].second;
        }
        gv.Ce23[0] = first_.data();
        gv.Ce23[1] = second_.data();
        gv.nonmatchingFace = nonmatching_.data();
        int nextGhost = nCells + 1;
        for (Kind kind : allKinds) {
            cell_[kind].assign(1, 0);
            ghost_[kind].assign(1, 0);
            for (int cell : boundaryCells[kind]) {
                cell_[kind].push_back(cell);
                ghost_[kind].push_back(nextGhost++);
            }
        }
        gv.NcAll = nextGhost - 1;
        LinkBoundary();
        LinkProperties();
        flux.NewMemory(&gv);
    }

    OperatorHost(const OperatorHost&) = delete;
    OperatorHost& operator=(const OperatorHost&) = delete;

    int Count(Kind kind) const { return static_cast<int>(cell_[kind].size()) - 1; }
    int Cell(Kind kind, int i) const { return cell_[kind][i]; }
    int Ghost(Kind kind, int i) const { return ghost_[kind][i]; }
    double& Flux(Kind kind, int i) {
        return std::array<double*, 4>{flux.inlet, flux.outlet, flux.wall, flux.symm}[kind][i];
    }
    CMAFVMFaceData& Record(Kind kind, int i) {
        return std::array<CMAFVMFaceData*, 4>{gv.faceDataInlet, gv.faceDataOutlet, gv.faceDataWall,
                                              gv.faceDataSymm}[kind][i];
    }
    CMAFVMFaceData& Left(int i) { return gv.faceDataLeft[i]; }
    CMAFVMFaceData& Right(int i) { return gv.faceDataRight[i]; }

    /// Sets the flux of both sides of inner face i.
    void SetFlux(int i, double F) { flux.left[i] = flux.right[i] = F; }

    KVX_ART_FVM::CKVX_ART_MatOperator Operator(CKVX_ART_SparseMatrix& matrix) {
        return {&matrix, &gv};
    }

    CKvx3dGV globals;
    CKVX3DFiniteVolumeMesh mesh;
    CKVX_ACMT_GV gv;
    CMAFVMFaceVariableAll flux;
    std::vector<double> mu, cp, cellRho, cellK;  ///< 1..NcAll

private:
    static CMAFVMFaceData* NewRecords(int n) {
        auto* records = new CMAFVMFaceData[n + 1];
        for (int i = 1; i <= n; ++i) {
            for (Pair pair : allPairs) {
                SetStencil(records[i], pair, {});
            }
        }
        return records;
    }

    void LinkBoundary() {
        gv.NInlet = Count(Inlet);
        gv.NOutlet = Count(Outlet);
        gv.NWall = Count(Wall);
        gv.NSymm = Count(Symm);
        gv.CInlet23 = cell_[Inlet].data();
        gv.COutlet23 = cell_[Outlet].data();
        gv.CWall23 = cell_[Wall].data();
        gv.CSymm23 = cell_[Symm].data();
        gv.idInlet = ghost_[Inlet].data();
        gv.idOutlet = ghost_[Outlet].data();
        gv.idWall = ghost_[Wall].data();
        gv.idSymm = ghost_[Symm].data();
        gv.faceDataLeft = NewRecords(gv.Ne);
        gv.faceDataRight = NewRecords(gv.Ne);
        gv.faceDataInlet = NewRecords(gv.NInlet);
        gv.faceDataOutlet = NewRecords(gv.NOutlet);
        gv.faceDataWall = NewRecords(gv.NWall);
        gv.faceDataSymm = NewRecords(gv.NSymm);
    }

    void LinkProperties() {
        for (std::vector<double>* property : {&mu, &cp, &cellRho, &cellK}) {
            property->assign(gv.NcAll + 1, 0.0);
        }
        gv.mu = mu.data();
        gv.cp = cp.data();
        globals.cellRho = cellRho.data();
        globals.cellK = cellK.data();
        gv.faceMu = new CMAFVMFaceVariable(&gv, false);
        gv.faceK = new CMAFVMFaceVariable(&gv, false);
        gv.faceCp = new CMAFVMFaceVariable(&gv, false);
        gv.faceRho = new CMAFVMFaceVariable(&gv, false);
    }

    std::vector<int> first_, second_, nonmatching_;
    std::array<std::vector<int>, 4> cell_, ghost_;
};

/// The value at (row, col), or 0 if it is not stored.
inline double ValueAt(const CKVX_ART_SparseMatrix& A, int row, int col) {
    for (int k = A.Ia[row]; k < A.Ia[row + 1]; ++k) {
        if (A.Ja[k] == col) {
            return A.Aa[k];
        }
    }
    return 0.0;
}

/// The stored entries of a row in storage order, which is the order of the additions in a matrix
/// that was not declared.
inline Terms RowOf(const CKVX_ART_SparseMatrix& A, int row) {
    Terms terms;
    for (int k = A.Ia[row]; k < A.Ia[row + 1]; ++k) {
        terms.emplace_back(A.Ja[k], A.Aa[k]);
    }
    return terms;
}

inline int EntriesOf(const CKVX_ART_SparseMatrix& A) {
    return A.Ia[A.rowsN + 1] - 1;
}

/// An operator with its name, called with one weight and the fluxes of the host.
struct NamedOperator {
    const char* name;
    bool (*run)(KVX_ART_FVM::CKVX_ART_MatOperator&, double, CMAFVMFaceVariableAll*);
};

inline std::ostream& operator<<(std::ostream& out, const NamedOperator& named) {
    return out << named.name;
}

/// The name of a test case: that of its operator.
inline std::string NameOf(const testing::TestParamInfo<NamedOperator>& info) {
    return info.param.name;
}

inline const std::vector<NamedOperator>& AllOperators() {
    using Operator = KVX_ART_FVM::CKVX_ART_MatOperator;
    using Flux = CMAFVMFaceVariableAll*;
    static const std::vector<NamedOperator> all = {
        {"Laplace", [](Operator& o, double w, Flux) { return o.PureLaplaceOperator(w); }},
        {"Diffusion", [](Operator& o, double w, Flux) { return o.DiffusionOperator(w); }},
        {"Thermal", [](Operator& o, double w, Flux) { return o.ThermalDiffusionOperator(w); }},
        {"CellUpwind",
         [](Operator& o, double w, Flux f) { return o.ConvectionOperator(true, w, f); }},
        {"SwitchedOff",
         [](Operator& o, double w, Flux f) { return o.ConvectionOperator(false, w, f); }},
        {"CD", [](Operator& o, double w, Flux f) { return o.ConvectionOperatorCD(w, f); }},
        {"LUD", [](Operator& o, double w, Flux f) { return o.ConvectionOperatorLUD(w, f); }},
        {"FU", [](Operator& o, double w, Flux f) { return o.ConvectionOperatorFU(w, f); }},
        {"QUICK", [](Operator& o, double w, Flux f) { return o.ConvectionOperatorQUICK(w, f); }},
        {"Hybrid", [](Operator& o, double w, Flux f) { return o.ConvectionOperatorHybrid(w, f); }},
        {"Combined",
         [](Operator& o, double, Flux f) { return o.ConvectionFU_Diffusion_Operator(f); }},
    };
    return all;
}

#endif
