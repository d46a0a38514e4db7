#ifndef KVX3D_TESTS_FVM_OPERATORS_OPERATOR_TABLES_H
#define KVX3D_TESTS_FVM_OPERATORS_OPERATOR_TABLES_H

#include "tests/fvm_operators/operator_host.h"

#include <string>
#include <vector>

/// The yardstick of the random tests: what each operator adds, written out as plain tables.
///
/// Nothing is shared with the operators, and no add is made here: the answer is the list of adds in
/// their order, which a test replays on a matrix of its own.

struct Add {
    int row;
    int col;
    double value;
};
using Adds = std::vector<Add>;

/// One line of a convection table: a stencil with its constant, or the cell upstream.
struct Line {
    enum What { CellItself, Stencil, StencilTimesConstant } what;
    Pair pair;
    double constant;
};

/// What a convection scheme does for each class of flux. Incoming boundary flux and near-zero
/// inner flux are the same in all of them.
struct ConvectionTable {
    std::vector<Line> positive, negative, outgoing;
};

inline ConvectionTable TableOf(const std::string& scheme) {
    const Line cell{Line::CellItself, Pair::Face, 1};
    const auto whole = [](Pair pair) { return Line{Line::Stencil, pair, 1}; };
    const auto times = [](Pair pair, double constant) {
        return Line{Line::StencilTimesConstant, pair, constant};
    };
    if (scheme == "CellUpwind") {
        return {{cell}, {cell}, {cell}};
    }
    if (scheme == "FU") {
        return {{whole(Pair::Left)}, {whole(Pair::Right)}, {whole(Pair::Left)}};
    }
    if (scheme == "LUD") {
        return {{times(Pair::Left, 1.5), times(Pair::FarLeft, -0.5)},
                {times(Pair::Right, 1.5), times(Pair::FarRight, -0.5)},
                {times(Pair::Left, 1.5), times(Pair::FarLeft, -0.5)}};
    }
    if (scheme == "QUICK") {
        return {{times(Pair::Left, 0.75), times(Pair::FarLeft, -0.125), times(Pair::Right, 0.375)},
                {times(Pair::Right, 0.75), times(Pair::FarRight, -0.125), times(Pair::Left, 0.375)},
                {times(Pair::Left, 1.5), times(Pair::FarLeft, -0.5)}};
    }
    return {{whole(Pair::Left), times(Pair::FarLeft, 0.0)},  // Hybrid
            {whole(Pair::Right), times(Pair::FarRight, 0.0)},
            {cell}};
}

inline void ListStencil(Adds& adds, int row, CMAFVMFaceData& record, Pair pair, double factor,
                        bool negated) {
    const PairRef ref = PairOf(record, pair);
    for (int j = 1; j <= ref.id[0]; ++j) {
        const double product = factor * ref.coef[j];
        adds.push_back({row, ref.id[j], negated ? -product : product});
    }
}

inline void ListLines(Adds& adds, const std::vector<Line>& lines, int row, int upstream,
                      CMAFVMFaceData& record, double weight, double F, bool negated) {
    for (const Line& line : lines) {
        if (line.what == Line::CellItself) {
            const double product = F * weight;
            adds.push_back({row, upstream, negated ? -product : product});
        } else if (line.what == Line::Stencil) {
            ListStencil(adds, row, record, line.pair, weight * F, negated);
        } else {
            ListStencil(adds, row, record, line.pair, (weight * line.constant) * F, negated);
        }
    }
}

inline Adds ConvectionAdds(OperatorHost& host, const std::string& scheme, double weight) {
    const ConvectionTable table = TableOf(scheme);
    Adds adds;
    for (int i = 1; i <= host.gv.Ne; ++i) {
        const int L = host.gv.Ce23[0][i];
        const int R = host.gv.Ce23[1][i];
        for (bool second : {false, true}) {
            const int row = second ? R : L;
            const double F = second ? host.flux.right[i] : host.flux.left[i];
            CMAFVMFaceData& record = second ? host.Right(i) : host.Left(i);
            if (F > 1e-8) {
                ListLines(adds, table.positive, row, L, record, weight, F, second);
            } else if (F < -1e-8) {
                ListLines(adds, table.negative, row, R, record, weight, F, second);
            } else {
                ListStencil(adds, row, record, Pair::Face, weight * F, second);
            }
        }
    }
    if (!host.gv.useBoundaryFaces) {
        return adds;
    }
    for (Kind kind : allKinds) {
        for (int i = 1; i <= host.Count(kind); ++i) {
            const int r = host.Cell(kind, i);
            const double F = host.Flux(kind, i);
            if (F > 1e-8) {
                ListLines(adds, table.outgoing, r, r, host.Record(kind, i), weight, F, false);
            } else {
                adds.push_back({r, host.Ghost(kind, i), F * weight});
            }
        }
    }
    return adds;
}

inline Adds CentralAdds(OperatorHost& host, double weight) {
    Adds adds;
    for (int i = 1; i <= host.gv.Ne; ++i) {
        ListStencil(adds, host.gv.Ce23[0][i], host.Left(i), Pair::Face, weight * host.flux.left[i],
                    false);
        ListStencil(adds, host.gv.Ce23[1][i], host.Right(i), Pair::Face,
                    weight * host.flux.right[i], true);
    }
    for (Kind kind : allKinds) {
        for (int i = 1; host.gv.useBoundaryFaces && i <= host.Count(kind); ++i) {
            adds.push_back({host.Cell(kind, i), host.Ghost(kind, i), weight * host.Flux(kind, i)});
        }
    }
    return adds;
}

/// Factor of the Normal stencil on a boundary face.
inline double BoundaryFactor(OperatorHost& host, const std::string& name, double weight, Kind kind,
                             int g) {
    if (name == "Laplace") {
        return weight;
    }
    if (name == "Diffusion") {
        return weight * host.mu[g];
    }
    if (kind == Inlet || kind == Outlet) {
        return (host.cellK[g] / (host.cp[g] * host.cellRho[g])) * weight;
    }
    return weight * host.cellK[g];
}

inline Adds DiffusionAdds(OperatorHost& host, const std::string& name, double weight) {
    const CKVX_ACMT_GV& gv = host.gv;
    Adds adds;
    for (int i = 1; i <= gv.Ne; ++i) {
        double left = weight;
        double right = weight;
        if (name == "Diffusion") {
            left = weight * gv.faceMu->left[i];
            right = weight * gv.faceMu->right[i];
        } else if (name == "Thermal") {
            left = gv.faceK->left[i] / (gv.faceCp->left[i] * gv.faceRho->left[i]) * weight;
            right = gv.faceK->right[i] / (gv.faceCp->right[i] * gv.faceRho->right[i]) * weight;
        }
        ListStencil(adds, gv.Ce23[0][i], host.Left(i), Pair::Normal, left, false);
        if (name != "Laplace" || gv.nonmatchingFace[i] == 0) {
            ListStencil(adds, gv.Ce23[1][i], host.Right(i), Pair::Normal, right, true);
        }
    }
    for (Kind kind : allKinds) {
        for (int i = 1; gv.useBoundaryFaces && i <= host.Count(kind); ++i) {
            ListStencil(adds, host.Cell(kind, i), host.Record(kind, i), Pair::Normal,
                        BoundaryFactor(host, name, weight, kind, host.Ghost(kind, i)), false);
        }
    }
    return adds;
}

inline Adds CombinedAdds(OperatorHost& host) {
    const CKVX_ACMT_GV& gv = host.gv;
    Adds adds;
    for (int i = 1; i <= gv.Ne; ++i) {
        const int L = gv.Ce23[0][i];
        const int R = gv.Ce23[1][i];
        if (host.flux.left[i] >= 1e-8) {
            adds.push_back({L, L, host.flux.left[i]});
        } else if (host.flux.left[i] < -1e-8) {
            adds.push_back({L, R, host.flux.left[i]});
        }
        ListStencil(adds, L, host.Left(i), Pair::Normal, gv.faceMu->left[i] * -1.0, false);
        if (gv.nonmatchingFace[i] != 0) {
            continue;
        }
        if (host.flux.right[i] >= 1e-8) {
            adds.push_back({R, L, -host.flux.right[i]});
        } else if (host.flux.right[i] < -1e-8) {
            adds.push_back({R, R, -host.flux.right[i]});
        }
        ListStencil(adds, R, host.Right(i), Pair::Normal, gv.faceMu->right[i], false);
    }
    return adds;
}

/// The adds of the operator with that name in AllOperators().
inline Adds AddsOf(OperatorHost& host, const std::string& name, double weight) {
    if (name == "Combined") {
        return CombinedAdds(host);
    }
    if (name == "CD" || name == "SwitchedOff") {
        return CentralAdds(host, weight);
    }
    if (name == "Laplace" || name == "Diffusion" || name == "Thermal") {
        return DiffusionAdds(host, name, weight);
    }
    return ConvectionAdds(host, name, weight);
}

#endif
