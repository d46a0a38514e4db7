#include "reference_host/discretisation/stencil_records.h"

#include <algorithm>
#include <stdexcept>

namespace host {

namespace {

/// Replaces a stencil of a record. The toolbox expects the count in entry 0 and the terms from 1
/// on.
void Put(const Stencil& stencil, int*& ids, double*& coefs) {
    delete[] ids;
    delete[] coefs;
    const int nTerms = static_cast<int>(stencil.Terms().size());
    ids = new int[nTerms + 1];
    coefs = new double[nTerms + 1];
    ids[0] = nTerms;
    coefs[0] = nTerms;
    for (int j = 1; j <= nTerms; ++j) {
        ids[j] = stencil.Terms()[j - 1].column;
        coefs[j] = stencil.Terms()[j - 1].weight;
    }
}

/// Makes all nine stencils empty. The operators read entry 0 of each stencil, so every array
/// exists.
void PutEmpty(CMAFVMFaceData& record) {
    Put({}, record.idFace, record.coefFace);
    Put({}, record.idNormal, record.coefNormal);
    Put({}, record.idAux1, record.coefAux1);
    Put({}, record.idAux2, record.coefAux2);
    Put({}, record.idAux3, record.coefAux3);
    Put({}, record.idLeft, record.coefLeft);
    Put({}, record.idRight, record.coefRight);
    Put({}, record.idFarLeft, record.coefFarLeft);
    Put({}, record.idFarRight, record.coefFarRight);
}

void PutFar(const FarStencils& far, CMAFVMFaceData& record) {
    Put(far.left, record.idFarLeft, record.coefFarLeft);
    Put(far.right, record.idFarRight, record.coefFarRight);
}

void PutInner(const InnerStencils& stencils, CMAFVMFaceData& record) {
    PutEmpty(record);
    Put(stencils.face, record.idFace, record.coefFace);
    Put(stencils.normal, record.idNormal, record.coefNormal);
    Put(stencils.left, record.idLeft, record.coefLeft);
    Put(stencils.right, record.idRight, record.coefRight);
    PutFar(stencils.far, record);
}

void PutBoundary(const BoundaryStencils& stencils, CMAFVMFaceData& record) {
    PutEmpty(record);
    Put(stencils.normal, record.idNormal, record.coefNormal);
    Put(stencils.left, record.idLeft, record.coefLeft);
    Put(stencils.farLeft, record.idFarLeft, record.coefFarLeft);
}

}  // namespace

double Apply(const int* ids, const double* coefs, const std::vector<double>& field) {
    double sum = 0.0;
    for (int j = 1; j <= ids[0]; ++j) {
        sum += coefs[j] * field[ids[j]];
    }
    return sum;
}

StencilRecords::StencilRecords(const StencilBuilder& builder_, HostObjects& objects,
                               FarPoint farPoint)
    : builder(builder_) {
    gv.getKvx3dGV(&objects.gv, &objects.fvm);
    if (const int failure = gv.getKvx3dData()) {
        throw std::runtime_error("the toolbox could not link the host objects: getKvx3dData gave " +
                                 std::to_string(failure));
    }
    gv.faceMu = new CMAFVMFaceVariable(&gv, /*shared=*/true);
    PutEmpty(empty);
    FillInnerFaces(farPoint);
    FillBoundary(Boundary::Inlet, gv.faceDataInlet);
    FillBoundary(Boundary::Outlet, gv.faceDataOutlet);
    FillBoundary(Boundary::Wall, gv.faceDataWall);
    FillBoundary(Boundary::Symmetry, gv.faceDataSymm);
}

void StencilRecords::FillInnerFaces(FarPoint farPoint) {
    gv.faceDataLeft = new CMAFVMFaceData[gv.Ne + 1];
    gv.faceDataRight = new CMAFVMFaceData[gv.Ne + 1];
    for (int face = 1; face <= gv.Ne; ++face) {
        CMAFVMFaceData& left = gv.faceDataLeft[face];
        CMAFVMFaceData& right = gv.faceDataRight[face];
        switch (builder.link.Side(face)) {
            case FaceSide::Both:
                PutInner(builder.Inner(face, farPoint), left);
                right.LinkedDataForAll(left);
                break;
            case FaceSide::DonorIsSecond:
                PutInner(builder.Inner(face, farPoint), left);
                right.LinkedDataForAll(empty);
                break;
            case FaceSide::DonorIsFirst:
                left.LinkedDataForAll(empty);
                PutInner(builder.Inner(face, farPoint), right);
                break;
            case FaceSide::None:
                left.LinkedDataForAll(empty);
                right.LinkedDataForAll(empty);
        }
    }
}

void StencilRecords::FillBoundary(Boundary kind, CMAFVMFaceData*& records) {
    const int nFaces = builder.mesh.FaceCount(kind);
    records = new CMAFVMFaceData[nFaces + 1];
    for (int face = 1; face <= nFaces; ++face) {
        if (builder.HasStencils(kind, face)) {
            PutBoundary(builder.AtBoundary(kind, face), records[face]);
        } else {
            records[face].LinkedDataForAll(empty);
        }
    }
}

void StencilRecords::SetFarPoint(FarPoint farPoint) {
    for (int face = 1; face <= gv.Ne; ++face) {
        const FaceSide side = builder.link.Side(face);
        if (side == FaceSide::None) {
            continue;
        }
        if (side == FaceSide::DonorIsFirst) {
            PutFar(builder.Far(face, farPoint), gv.faceDataRight[face]);
            continue;
        }
        PutFar(builder.Far(face, farPoint), gv.faceDataLeft[face]);
        if (side == FaceSide::Both) {
            gv.faceDataRight[face].LinkedDataForAll(gv.faceDataLeft[face]);
        }
    }
}

void StencilRecords::SetFaceMu(double mu) {
    std::fill(gv.faceMu->left + 1, gv.faceMu->left + gv.Ne + 1, mu);
}

const CMAFVMFaceData& StencilRecords::Inner(int face) const {
    return builder.link.Side(face) == FaceSide::DonorIsFirst ? gv.faceDataRight[face]
                                                             : gv.faceDataLeft[face];
}

const CMAFVMFaceData& StencilRecords::AtBoundary(Boundary kind, int face) const {
    switch (kind) {
        case Boundary::Inlet:
            return gv.faceDataInlet[face];
        case Boundary::Outlet:
            return gv.faceDataOutlet[face];
        case Boundary::Wall:
            return gv.faceDataWall[face];
        default:
            return gv.faceDataSymm[face];
    }
}

}  // namespace host
