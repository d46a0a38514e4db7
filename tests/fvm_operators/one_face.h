#ifndef KVX3D_TESTS_FVM_OPERATORS_ONE_FACE_H
#define KVX3D_TESTS_FVM_OPERATORS_ONE_FACE_H

#include "tests/fvm_operators/operator_host.h"

#include <gtest/gtest.h>

constexpr double fluxTolerance = 1e-8;

// Each stencil has one column of its own, so that an entry shows which stencil added it. The record
// of the second side has other coefficients.
constexpr int viaFace = 11;
constexpr int viaLeft = 12;
constexpr int viaRight = 13;
constexpr int viaFarLeft = 14;
constexpr int viaFarRight = 15;
constexpr int viaNormal = 16;

/// Cells 1 and 2 with one inner face between them and, if a test sets the counts, one boundary face
/// of each kind at cell 1. Cells 3 to 20 only serve as columns.
class OneFace : public testing::Test {
protected:
    OneFace() : host(20, {{1, 2}}, {{{1}, {1}, {1}, {1}}}), A(2, host.gv.NcAll) {
        MarkStencils(host.Left(1), 1.0);
        MarkStencils(host.Right(1), 2.0);
        for (Kind kind : allKinds) {
            SetStencil(host.Record(kind, 1), Pair::Left, {{viaLeft, 1.0}});
            SetStencil(host.Record(kind, 1), Pair::FarLeft, {{viaFarLeft, 1.0}});
        }
    }

    static void MarkStencils(CMAFVMFaceData& record, double coefficient) {
        SetStencil(record, Pair::Face, {{viaFace, coefficient}});
        SetStencil(record, Pair::Left, {{viaLeft, coefficient}});
        SetStencil(record, Pair::Right, {{viaRight, coefficient}});
        SetStencil(record, Pair::FarLeft, {{viaFarLeft, coefficient}});
        SetStencil(record, Pair::FarRight, {{viaFarRight, coefficient}});
        SetStencil(record, Pair::Normal, {{viaNormal, coefficient}});
    }

    void InnerFaceOnly() { host.gv.useBoundaryFaces = false; }

    /// Keeps only the wall face, with flux F.
    void WallFaceOnly(double F) {
        host.gv.Ne = host.gv.NInlet = host.gv.NOutlet = host.gv.NSymm = 0;
        host.Flux(Wall, 1) = F;
    }

    KVX_ART_FVM::CKVX_ART_MatOperator Operator() { return host.Operator(A); }

    int WallGhost() const { return host.Ghost(Wall, 1); }

    OperatorHost host;
    CKVX_ART_SparseMatrix A;
};

#endif
