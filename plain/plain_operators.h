#ifndef KVX3D_PLAIN_PLAIN_OPERATORS_H
#define KVX3D_PLAIN_PLAIN_OPERATORS_H

#include "host_link/art_gv.h"
#include "host_link/face_data.h"

namespace plain {

/// The ten operators in their simplest form: every addition in the order of the loops.
///
/// The tests require the operators to give the same matrix bit for bit, the benchmark measures the
/// ratio of the times. The caller decides what an addition does: `add(row, col, value)` may call
/// AddElementValue(), append to a list, or add at a position known beforehand. Keep this simple and
/// do not optimize it.
template <typename Add>
class Operators {
public:
    using Flux = CMAFVMFaceVariableAll;

    Operators(const CKVX_ACMT_GV& mesh, Add& sink) : gv(mesh), add(sink) {}

    void Laplace(double weight) {
        for (int i = 1; i <= gv.Ne; ++i) {
            Normal(gv.Ce23[0][i], gv.faceDataLeft[i], weight, 1);
            if (gv.nonmatchingFace[i] == 0) {
                Normal(gv.Ce23[1][i], gv.faceDataRight[i], weight, -1);
            }
        }
        ForBoundary(nullptr, [&](const Boundary& b) { Normal(b.r, b.record, weight, 1); });
    }

    void Diffusion(double weight) {
        for (int i = 1; i <= gv.Ne; ++i) {
            Normal(gv.Ce23[0][i], gv.faceDataLeft[i], weight * gv.faceMu->left[i], 1);
            Normal(gv.Ce23[1][i], gv.faceDataRight[i], weight * gv.faceMu->right[i], -1);
        }
        ForBoundary(nullptr,
                    [&](const Boundary& b) { Normal(b.r, b.record, weight * gv.mu[b.g], 1); });
    }

    void Thermal(double weight) {
        for (int i = 1; i <= gv.Ne; ++i) {
            double t = gv.faceK->left[i] / (gv.faceCp->left[i] * gv.faceRho->left[i]);
            Normal(gv.Ce23[0][i], gv.faceDataLeft[i], t * weight, 1);
            t = gv.faceK->right[i] / (gv.faceCp->right[i] * gv.faceRho->right[i]);
            Normal(gv.Ce23[1][i], gv.faceDataRight[i], t * weight, -1);
        }
        ForBoundary(nullptr, [&](const Boundary& b) {
            const double k = gv.kvxGv->cellK[b.g];
            if (b.throughflow) {
                const double t = k / (gv.cp[b.g] * gv.kvxGv->cellRho[b.g]);
                Normal(b.r, b.record, t * weight, 1);
            } else {
                Normal(b.r, b.record, weight * k, 1);
            }
        });
    }

    void CellUpwind(double weight, const Flux& flux) {
        ForInner(flux, [&](const Side& s) {
            if (s.F > 1e-8) {
                add(s.row, s.L, s.sign < 0 ? -(s.F * weight) : s.F * weight);
            } else if (s.F < -1e-8) {
                add(s.row, s.R, s.sign < 0 ? -(s.F * weight) : s.F * weight);
            } else {
                Stencil(s.row, s.record.idFace, s.record.coefFace, weight * s.F, s.sign);
            }
        });
        ForBoundary(&flux,
                    [&](const Boundary& b) { add(b.r, b.F > 1e-8 ? b.r : b.g, b.F * weight); });
    }

    void Central(double weight, const Flux& flux) {
        ForInner(flux, [&](const Side& s) {
            Stencil(s.row, s.record.idFace, s.record.coefFace, weight * s.F, s.sign);
        });
        ForBoundary(&flux, [&](const Boundary& b) { add(b.r, b.g, weight * b.F); });
    }

    void StencilUpwind(double weight, const Flux& flux) {
        ForInner(flux, [&](const Side& s) {
            const CMAFVMFaceData& d = s.record;
            if (s.F > 1e-8) {
                Stencil(s.row, d.idLeft, d.coefLeft, weight * s.F, s.sign);
            } else if (s.F < -1e-8) {
                Stencil(s.row, d.idRight, d.coefRight, weight * s.F, s.sign);
            } else {
                Stencil(s.row, d.idFace, d.coefFace, weight * s.F, s.sign);
            }
        });
        ForBoundary(&flux, [&](const Boundary& b) {
            if (b.F > 1e-8) {
                Stencil(b.r, b.record.idLeft, b.record.coefLeft, weight * b.F, 1);
            } else {
                add(b.r, b.g, b.F * weight);
            }
        });
    }

    void LinearUpwind(double weight, const Flux& flux) {
        ForInner(flux, [&](const Side& s) { TwoPoint(s, weight, 1.5, -0.5); });
        ForBoundary(&flux, [&](const Boundary& b) { LinearUpwindOnBoundary(b, weight); });
    }

    void Quick(double weight, const Flux& flux) {
        ForInner(flux, [&](const Side& s) {
            const CMAFVMFaceData& d = s.record;
            if (s.F > 1e-8) {
                Stencil(s.row, d.idLeft, d.coefLeft, (weight * 0.75) * s.F, s.sign);
                Stencil(s.row, d.idFarLeft, d.coefFarLeft, (weight * -0.125) * s.F, s.sign);
                Stencil(s.row, d.idRight, d.coefRight, (weight * 0.375) * s.F, s.sign);
            } else if (s.F < -1e-8) {
                Stencil(s.row, d.idRight, d.coefRight, (weight * 0.75) * s.F, s.sign);
                Stencil(s.row, d.idFarRight, d.coefFarRight, (weight * -0.125) * s.F, s.sign);
                Stencil(s.row, d.idLeft, d.coefLeft, (weight * 0.375) * s.F, s.sign);
            } else {
                Stencil(s.row, d.idFace, d.coefFace, weight * s.F, s.sign);
            }
        });
        ForBoundary(&flux, [&](const Boundary& b) { LinearUpwindOnBoundary(b, weight); });
    }

    void Hybrid(double weight, const Flux& flux) {
        ForInner(flux, [&](const Side& s) { TwoPoint(s, weight, 1.0, 0.0); });
        ForBoundary(&flux,
                    [&](const Boundary& b) { add(b.r, b.F > 1e-8 ? b.r : b.g, b.F * weight); });
    }

    void UpwindAndDiffusion(const Flux& flux) {
        for (int i = 1; i <= gv.Ne; ++i) {
            const int L = gv.Ce23[0][i];
            const int R = gv.Ce23[1][i];
            double F = flux.left[i];
            if (F >= 1e-8) {
                add(L, L, F);
            } else if (F < -1e-8) {
                add(L, R, F);
            }
            Normal(L, gv.faceDataLeft[i], gv.faceMu->left[i] * -1.0, 1);
            if (gv.nonmatchingFace[i] != 0) {
                continue;
            }
            F = flux.right[i];
            if (F >= 1e-8) {
                add(R, L, -F);
            } else if (F < -1e-8) {
                add(R, R, -F);
            }
            Normal(R, gv.faceDataRight[i], gv.faceMu->right[i], 1);
        }
    }

private:
    /// One side of inner face i: row L with sign 1, or row R with sign -1.
    struct Side {
        int row, L, R;
        const CMAFVMFaceData& record;
        double F;
        int sign;
    };

    /// One boundary face: row r of the interior cell, ghost cell g, flux F out of the domain.
    struct Boundary {
        bool throughflow;  ///< true for inlet and outlet
        int r, g;
        const CMAFVMFaceData& record;
        double F;
    };

    /// Adds sign * (factor * coef[j]) in column id[j], for j = 1..id[0].
    void Stencil(int row, const int* id, const double* coef, double factor, int sign) {
        for (int j = 1; j <= id[0]; ++j) {
            add(row, id[j], sign < 0 ? -(factor * coef[j]) : factor * coef[j]);
        }
    }

    /// Adds the Normal stencil of a record.
    void Normal(int row, const CMAFVMFaceData& record, double factor, int sign) {
        Stencil(row, record.idNormal, record.coefNormal, factor, sign);
    }

    /// near * upstream + far * far upstream; the Face stencil for a near-zero flux.
    void TwoPoint(const Side& s, double weight, double near, double far) {
        const CMAFVMFaceData& d = s.record;
        if (s.F > 1e-8) {
            Stencil(s.row, d.idLeft, d.coefLeft, (weight * near) * s.F, s.sign);
            Stencil(s.row, d.idFarLeft, d.coefFarLeft, (weight * far) * s.F, s.sign);
        } else if (s.F < -1e-8) {
            Stencil(s.row, d.idRight, d.coefRight, (weight * near) * s.F, s.sign);
            Stencil(s.row, d.idFarRight, d.coefFarRight, (weight * far) * s.F, s.sign);
        } else {
            Stencil(s.row, d.idFace, d.coefFace, weight * s.F, s.sign);
        }
    }

    void LinearUpwindOnBoundary(const Boundary& b, double weight) {
        const CMAFVMFaceData& d = b.record;
        if (b.F > 1e-8) {
            Stencil(b.r, d.idLeft, d.coefLeft, (weight * 1.5) * b.F, 1);
            Stencil(b.r, d.idFarLeft, d.coefFarLeft, (weight * -0.5) * b.F, 1);
        } else {
            add(b.r, b.g, b.F * weight);
        }
    }

    /// Calls scheme(Side) for both sides of every inner face.
    template <typename Scheme>
    void ForInner(const Flux& flux, Scheme scheme) {
        for (int i = 1; i <= gv.Ne; ++i) {
            const int L = gv.Ce23[0][i];
            const int R = gv.Ce23[1][i];
            scheme(Side{L, L, R, gv.faceDataLeft[i], flux.left[i], 1});
            scheme(Side{R, L, R, gv.faceDataRight[i], flux.right[i], -1});
        }
    }

    template <typename Scheme>
    void ForKind(bool throughflow, int n, const int* cell, const int* ghost,
                 const CMAFVMFaceData* records, const double* flux, Scheme scheme) {
        for (int i = 1; i <= n; ++i) {
            scheme(Boundary{throughflow, cell[i], ghost[i], records[i], flux ? flux[i] : 0.0});
        }
    }

    /// Calls scheme(Boundary) for all boundary faces, unless the mesh excludes them.
    template <typename Scheme>
    void ForBoundary(const Flux* flux, Scheme scheme) {
        if (!gv.useBoundaryFaces) {
            return;
        }
        ForKind(true, gv.NInlet, gv.CInlet23, gv.idInlet, gv.faceDataInlet,
                flux ? flux->inlet : nullptr, scheme);
        ForKind(true, gv.NOutlet, gv.COutlet23, gv.idOutlet, gv.faceDataOutlet,
                flux ? flux->outlet : nullptr, scheme);
        ForKind(false, gv.NWall, gv.CWall23, gv.idWall, gv.faceDataWall,
                flux ? flux->wall : nullptr, scheme);
        ForKind(false, gv.NSymm, gv.CSymm23, gv.idSymm, gv.faceDataSymm,
                flux ? flux->symm : nullptr, scheme);
    }

    const CKVX_ACMT_GV& gv;
    Add& add;
};

}  // namespace plain

#endif
