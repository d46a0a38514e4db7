#include "fvm_operators/detail/face_rows.h"
#include "fvm_operators/detail/prefetch.h"
#include "fvm_operators/mat_operator.h"

namespace KVX_ART_FVM {

namespace {

/// Adds the Normal stencil of a record, the only one that diffusion reads.
void AddNormal(const FaceRow& row, const CMAFVMFaceData& record, double factor) {
    row.AddStencil(record.idNormal, record.coefNormal, factor);
}

}  // namespace

bool CKVX_ART_MatOperator::PureLaplaceOperator(double weight) {
    for (int i = 1; i <= artGv->Ne; ++i) {
        FetchAhead(*sparseMatrix, *artGv, i, nullptr, normalUse);
        AddNormal({*sparseMatrix, artGv->Ce23[0][i], false}, artGv->faceDataLeft[i], weight);
        // On a non-matching face the row of the second cell gets nothing. The other two diffusion
        // operators fill it: with unit coefficients this row is all that tells them apart.
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
        FetchAhead(*sparseMatrix, *artGv, i, nullptr, normalUse);
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
        FetchAhead(*sparseMatrix, *artGv, i, nullptr, normalUse);
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
            // Wall and symmetry rows carry the bare conductivity, k dT/dn, and only faces that
            // fluid crosses carry the diffusivity. Callers scale their wall rows by cellK alone;
            // a division here would weaken those rows by cp * rho.
            const double factor =
                kind.throughflow ? k / (artGv->cp[ghost] * artGv->kvxGv->cellRho[ghost]) * weight
                                 : weight * k;
            AddNormal({*sparseMatrix, kind.cell[i], false}, kind.record[i], factor);
        }
    }
    return true;
}

}  // namespace KVX_ART_FVM
