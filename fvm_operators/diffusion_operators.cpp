#include "fvm_operators/detail/face_rows.h"
#include "fvm_operators/detail/prefetch.h"
#include "fvm_operators/mat_operator.h"

// The data layout and the prefetching are drawn in detail/prefetch.h; the transcription of the
// three operators, addition by addition, is plain/plain_operators.h.

namespace KVX_ART_FVM {

namespace {

using kvx3d::detail::BoundaryFaces;
using kvx3d::detail::BoundaryKinds;
using kvx3d::detail::FaceRow;
using kvx3d::detail::normalUse;
using kvx3d::detail::PrefetchAhead;

/// Adds the Normal stencil of a record, the only one that diffusion reads.
void AddNormal(const FaceRow& row, const CMAFVMFaceData& record, double factor) {
    row.AddStencil(record.idNormal, record.coefNormal, factor);
}

}  // namespace

bool CKVX_ART_MatOperator::PureLaplaceOperator(double weight) {
    for (int i = 1; i <= artGv->Ne; ++i) {
        PrefetchAhead(*sparseMatrix, *artGv, i, nullptr, normalUse);
        AddNormal({*sparseMatrix, artGv->Ce23[0][i], false}, artGv->faceDataLeft[i], weight);
        // On a non-matching face nothing is added to the row of the second cell. The other two
        // diffusion operators do fill it; with unit coefficients this is the only difference
        // between them and the Laplacian.
        if (artGv->nonmatchingFace[i] == 0) {
            AddNormal({*sparseMatrix, artGv->Ce23[1][i], true}, artGv->faceDataRight[i], weight);
        }
    }
    if (!artGv->useBoundaryFaces) {
        return true;
    }
    for (const BoundaryFaces& kind : BoundaryKinds(*artGv)) {
        for (int i = 1; i <= kind.n; ++i) {
            AddNormal({*sparseMatrix, kind.cell[i], false}, kind.record[i], weight);
        }
    }
    return true;
}

bool CKVX_ART_MatOperator::DiffusionOperator(double weight) {
    for (int i = 1; i <= artGv->Ne; ++i) {
        PrefetchAhead(*sparseMatrix, *artGv, i, nullptr, normalUse);
        AddNormal({*sparseMatrix, artGv->Ce23[0][i], false}, artGv->faceDataLeft[i],
                  weight * artGv->faceMu->left[i]);
        AddNormal({*sparseMatrix, artGv->Ce23[1][i], true}, artGv->faceDataRight[i],
                  weight * artGv->faceMu->right[i]);
    }
    if (!artGv->useBoundaryFaces) {
        return true;
    }
    for (const BoundaryFaces& kind : BoundaryKinds(*artGv)) {
        for (int i = 1; i <= kind.n; ++i) {
            AddNormal({*sparseMatrix, kind.cell[i], false}, kind.record[i],
                      weight * artGv->mu[kind.ghost[i]]);
        }
    }
    return true;
}

bool CKVX_ART_MatOperator::ThermalDiffusionOperator(double weight) {
    for (int i = 1; i <= artGv->Ne; ++i) {
        PrefetchAhead(*sparseMatrix, *artGv, i, nullptr, normalUse);
        const double tLeft =
            artGv->faceK->left[i] / (artGv->faceCp->left[i] * artGv->faceRho->left[i]);
        AddNormal({*sparseMatrix, artGv->Ce23[0][i], false}, artGv->faceDataLeft[i],
                  tLeft * weight);
        const double tRight =
            artGv->faceK->right[i] / (artGv->faceCp->right[i] * artGv->faceRho->right[i]);
        AddNormal({*sparseMatrix, artGv->Ce23[1][i], true}, artGv->faceDataRight[i],
                  tRight * weight);
    }
    if (!artGv->useBoundaryFaces) {
        return true;
    }
    for (const BoundaryFaces& kind : BoundaryKinds(*artGv)) {
        for (int i = 1; i <= kind.n; ++i) {
            const int ghost = kind.ghost[i];
            const double k = artGv->kvxGv->cellK[ghost];
            // Rows at walls and symmetry planes contain the conductivity alone, k dT/dn; only those
            // of faces with flow through them contain the diffusivity. Callers scale their wall
            // rows by cellK alone, so a division here would make those rows too small by cp * rho.
            const double factor =
                kind.throughflow ? k / (artGv->cp[ghost] * artGv->kvxGv->cellRho[ghost]) * weight
                                 : weight * k;
            AddNormal({*sparseMatrix, kind.cell[i], false}, kind.record[i], factor);
        }
    }
    return true;
}

}  // namespace KVX_ART_FVM
