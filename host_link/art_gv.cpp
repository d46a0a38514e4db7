#include "host_link/art_gv.h"

#include <cmath>
#include <cstddef>
#include <iostream>

#include "host_link/containers.h"
#include "host_link/detail/last_stores.h"
#include "host_link/face_data.h"

namespace {

/// Prints one line and flushes it, so that it appears before whatever the host prints next.
void Report(const char* text) {
    std::cout << text << std::endl;
}

double Length(double a, double b, double c) {
    return std::sqrt(a * a + b * b + c * c);
}

/// Replaces `area` by the lengths of n area vectors.
void FillArea(double*& area, const int& n, const double* nx, const double* ny, const double* nz) {
    // Not newDouble1D(): the areas are the largest arrays allocated here, and zero-filling one that
    // is overwritten at once costs as much as writing it.
    delete[] area;
    area = nullptr;
    area = new double[static_cast<std::size_t>(n) + 1];
    area[0] = n;
    for (int i = 1; i <= n; ++i) {
        area[i] = Length(nx[i], ny[i], nz[i]);
    }
}

/// Marks the ghost cells of one kind of boundary face. If two kinds share a ghost cell, the later
/// one overwrites the earlier one.
void MarkGhosts(int* type, int* index, int code, const int* ghost, int n) {
    for (int i = 1; i <= n; ++i) {
        type[ghost[i]] = code;
        index[ghost[i]] = i;
    }
}

}  // namespace

CKVX_ACMT_GV::CKVX_ACMT_GV() = default;

CKVX_ACMT_GV::CKVX_ACMT_GV(const CKVX_ACMT_GV& other) = default;

CKVX_ACMT_GV& CKVX_ACMT_GV::operator=(const CKVX_ACMT_GV& other) = default;

CKVX_ACMT_GV::~CKVX_ACMT_GV() {
    if (kvxGv == nullptr || kvxFvm == nullptr) {
        // Without a host the arrays were allocated for this object. FaceType_Partition is the
        // exception: it stays with the code that set it.
        for (int* array : {hostCountTableGv, hostCountTableFvm, Ce23[0], Ce23[1], CInlet23,
                           COutlet23, CWall23, CSymm23, CPart23, idInlet, idOutlet, idWall, idSymm,
                           idPart, cavityId, pProcessId, nonmatchingFace}) {
            delete[] array;
        }
        delete[] IfPartitionFace_InvalidForNonMatching;
        for (double* array :
             {xc,         yc,         zc,         volume,      xe,          ye,          ze,
              xn,         yn,         zn,         xInlet,      yInlet,      zInlet,      xOutlet,
              yOutlet,    zOutlet,    xWall,      yWall,       zWall,       xSymm,       ySymm,
              zSymm,      xPart,      yPart,      zPart,       nxe,         nye,         nze,
              nxInlet,    nyInlet,    nzInlet,    nxOutlet,    nyOutlet,    nzOutlet,    nxWall,
              nyWall,     nzWall,     nxSymm,     nySymm,      nzSymm,      nxPart,      nyPart,
              nzPart,     u,          v,          w,           p,           linkedVar5,  linkedVar6,
              linkedVar7, linkedVar8, linkedVar9, linkedVar10, linkedVar11, linkedVar12, mu,
              cp}) {
            delete[] array;
        }
        for (int*** table :
             {&cellTableA, &cellTableB, &cellTableC, &innerFaceTable, &inletFaceTable,
              &outletFaceTable, &wallFaceTable, &symmFaceTable, &cellNodes}) {
            freeIntRows(*table);
        }
    }
    for (CMAFVMFaceData* records : {faceDataLeft, faceDataRight, faceDataInlet, faceDataOutlet,
                                    faceDataWall, faceDataSymm, faceDataExtra1, faceDataExtra2}) {
        delete[] records;
    }
    for (double* area : {areaE, areaInlet, areaOutlet, areaWall, areaSymm, areaPart}) {
        delete[] area;
    }
    for (CMAFVMFaceVariable* variable : {faceRho, faceMu, faceK, faceCp}) {
        delete variable;
    }
    delete[] ghostBCType;
    delete[] ghostBCIndex;
    kvxGv = nullptr;
    kvxFvm = nullptr;
    kvxPartFace = nullptr;
    kvxGradient = nullptr;
    kvxCommunication = nullptr;
    kvx3d::detail::KeepLastStores();
}

bool CKVX_ACMT_GV::isKvxGv() {
    return kvxGv != nullptr && kvxFvm != nullptr;
}

bool CKVX_ACMT_GV::isKvxPartFace() {
    return kvxPartFace != nullptr;
}

bool CKVX_ACMT_GV::isKvxGradient() {
    return kvxGradient != nullptr;
}

bool CKVX_ACMT_GV::isKvxCommunication() {
    return kvxCommunication != nullptr;
}

int CKVX_ACMT_GV::getKvx3dGV(CKvx3dGV* gv, CKVX3DFiniteVolumeMesh* fvm) {
    if (gv == nullptr || fvm == nullptr) {
        Report("Can not get the object of Global Variables");
        return -1;
    }
    kvxGv = gv;
    kvxFvm = fvm;
    return 0;
}

int CKVX_ACMT_GV::getKvx3dPartFace(CPartitionFace_DLL* partFace) {
    if (partFace == nullptr) {
        Report("Can not get the object of Part Faces");
        return -1;
    }
    kvxPartFace = partFace;
    return 0;
}

int CKVX_ACMT_GV::getKvx3dGradientTool(COperatorGradient* gradient) {
    if (gradient == nullptr) {
        // [sic] the same text as for the partition faces: the wording is part of the interface and
        // compared as text. The caller knows from its own call which link is meant.
        Report("Can not get the object of Part Faces");
        return -1;
    }
    kvxGradient = gradient;
    return 0;
}

int CKVX_ACMT_GV::getKvx3dCommunication(CCommunication* communication) {
    if (communication == nullptr) {
        Report("Can not get the object of Multi-Processor Communication!");
        return -1;
    }
    kvxCommunication = communication;
    return 0;
}

int CKVX_ACMT_GV::getKvx3dData() {
    if (!isKvxGv()) {
        Report("The ACML GV can not get data from global Kelvex3D!");
        return -1;
    }
    if (!getMeshNumber()) {
        return -2;
    }
    if (!getMeshPosition()) {
        return -3;
    }
    if (!getMeshNormal()) {
        return -4;
    }
    if (!getFaceArea()) {
        return -5;
    }
    if (!getMeshRelation()) {
        return -6;
    }
    if (!getPhysicalVar()) {
        return -7;
    }
    return 0;
}

double CKVX_ACMT_GV::CalNorm(const double& a, const double& b, const double& c) {
    return Length(a, b, c);
}

bool CKVX_ACMT_GV::getMeshNumber() {
    try {
        NcAll = kvxFvm->NcAll;
        Nc = kvxFvm->Nc;
        Ne = kvxFvm->Ne;
        NInlet = kvxFvm->NInlet;
        NOutlet = kvxFvm->NOutlet;
        NWall = kvxFvm->NWall;
        NSymm = kvxFvm->NSymm;
        Nn = kvxFvm->Nn;
        hostCountTableGv = kvxGv->hostCountTableGv;
        hostCountTableFvm = kvxFvm->hostCountTableFvm;
        if (isKvxPartFace()) {
            NPart = kvxPartFace->NParInterFace();
        }
    } catch (...) {
        Report("Can not get Mesh Number from global Kelvex3D!");
        return false;
    }
    return true;
}

bool CKVX_ACMT_GV::getMeshPosition() {
    try {
        xc = kvxFvm->xc;
        yc = kvxFvm->yc;
        zc = kvxFvm->zc;
        volume = kvxFvm->volume;
        xn = kvxFvm->xn;
        yn = kvxFvm->yn;
        zn = kvxFvm->zn;
        xe = kvxFvm->xe;
        ye = kvxFvm->ye;
        ze = kvxFvm->ze;
        xInlet = kvxFvm->xInlet;
        yInlet = kvxFvm->yInlet;
        zInlet = kvxFvm->zInlet;
        xOutlet = kvxFvm->xOutlet;
        yOutlet = kvxFvm->yOutlet;
        zOutlet = kvxFvm->zOutlet;
        xWall = kvxFvm->xWall;
        yWall = kvxFvm->yWall;
        zWall = kvxFvm->zWall;
        xSymm = kvxFvm->xSymm;
        ySymm = kvxFvm->ySymm;
        zSymm = kvxFvm->zSymm;
        if (NPart > 0) {
            xPart = kvxPartFace->ijParxc();
            yPart = kvxPartFace->ijParyc();
            zPart = kvxPartFace->ijParzc();
        }
    } catch (...) {
        Report("Can not get Mesh Position from global Kelvex3D!");
        return false;
    }
    return true;
}

bool CKVX_ACMT_GV::getMeshNormal() {
    try {
        nxe = kvxFvm->nxe;
        nye = kvxFvm->nye;
        nze = kvxFvm->nze;
        nxInlet = kvxFvm->nxInlet;
        nyInlet = kvxFvm->nyInlet;
        nzInlet = kvxFvm->nzInlet;
        nxOutlet = kvxFvm->nxOutlet;
        nyOutlet = kvxFvm->nyOutlet;
        nzOutlet = kvxFvm->nzOutlet;
        nxWall = kvxFvm->nxWall;
        nyWall = kvxFvm->nyWall;
        nzWall = kvxFvm->nzWall;
        nxSymm = kvxFvm->nxSymm;
        nySymm = kvxFvm->nySymm;
        nzSymm = kvxFvm->nzSymm;
        if (NPart > 0) {
            nxPart = kvxPartFace->ijParSx();
            nyPart = kvxPartFace->ijParSy();
            nzPart = kvxPartFace->ijParSz();
        }
    } catch (...) {
        Report("Can not get Mesh Normal from global Kelvex3D!");
        return false;
    }
    return true;
}

bool CKVX_ACMT_GV::getFaceArea() {
    try {
        FillArea(areaE, kvxFvm->Ne, nxe, nye, nze);
        FillArea(areaInlet, kvxFvm->NInlet, nxInlet, nyInlet, nzInlet);
        FillArea(areaOutlet, kvxFvm->NOutlet, nxOutlet, nyOutlet, nzOutlet);
        FillArea(areaWall, kvxFvm->NWall, nxWall, nyWall, nzWall);
        FillArea(areaSymm, kvxFvm->NSymm, nxSymm, nySymm, nzSymm);
        if (NPart > 0) {
            // NParInterFace() is called once for the size and once more after each face, and no
            // more often, since the host may have to search for the value. A smaller value ends the
            // loop early.
            int n = kvxPartFace->NParInterFace();
            newDouble1D(areaPart, n);
            for (int i = 1; i <= n; ++i, n = kvxPartFace->NParInterFace()) {
                areaPart[i] = CalNorm(nxPart[i], nyPart[i], nzPart[i]);
            }
        }
    } catch (...) {
        Report("Can not get Face Area!");
        return false;
    }
    return true;
}

bool CKVX_ACMT_GV::getMeshRelation() {
    try {
        Ce23[0] = kvxFvm->Ce23[0];
        Ce23[1] = kvxFvm->Ce23[1];
        CInlet23 = kvxFvm->CInlet23;
        COutlet23 = kvxFvm->COutlet23;
        CWall23 = kvxFvm->CWall23;
        CSymm23 = kvxFvm->CSymm23;
        idInlet = kvxFvm->idInlet;
        idOutlet = kvxFvm->idOutlet;
        idWall = kvxFvm->idWall;
        idSymm = kvxFvm->idSymm;
        cavityId = kvxGv->cavityId;
        pProcessId = kvxGv->pProcessId;
        cellTableA = kvxFvm->cellTableA;
        cellTableB = kvxFvm->cellTableB;
        cellTableC = kvxFvm->cellTableC;
        innerFaceTable = kvxFvm->innerFaceTable;
        inletFaceTable = kvxFvm->inletFaceTable;
        outletFaceTable = kvxFvm->outletFaceTable;
        wallFaceTable = kvxFvm->wallFaceTable;
        symmFaceTable = kvxFvm->symmFaceTable;
        cellNodes = kvxFvm->cellNodes;
        nonmatchingFace = kvxFvm->nonmatchingFace;
        if (NPart > 0) {
            CPart23 = kvxPartFace->ijParCV();
            idPart = kvxPartFace->ijPar();
            FaceType_Partition = kvxPartFace->FaceType_Partition();
            IfPartitionFace_InvalidForNonMatching =
                kvxPartFace->IfPartitionFace_InvalidForNonMatching();
        }
        newInt1D(ghostBCType, NcAll);
        newInt1D(ghostBCIndex, NcAll);
        for (int cell = 1; cell <= Nc; ++cell) {
            ghostBCIndex[cell] = cell;  // the type is 0 from the allocation
        }
        // Ghost cells of partition faces are not marked: they represent real cells of another
        // process, not a boundary.
        MarkGhosts(ghostBCType, ghostBCIndex, 1, idInlet, NInlet);
        MarkGhosts(ghostBCType, ghostBCIndex, 2, idOutlet, NOutlet);
        MarkGhosts(ghostBCType, ghostBCIndex, 3, idWall, NWall);
        MarkGhosts(ghostBCType, ghostBCIndex, 4, idSymm, NSymm);
    } catch (...) {
        Report("Can not get Mesh Relation from global Kelvex3D!");
        return false;
    }
    return true;
}

bool CKVX_ACMT_GV::getPhysicalVar() {
    p = kvxGv->flowVariables[0];
    u = kvxGv->flowVariables[1];
    v = kvxGv->flowVariables[2];
    w = kvxGv->flowVariables[3];
    linkedVar5 = kvxGv->linkedVar5;
    linkedVar6 = kvxGv->linkedVar6;
    linkedVar7 = kvxGv->linkedVar7;
    linkedVar8 = kvxGv->linkedVar8;
    linkedVar9 = kvxGv->linkedVar9;
    linkedVar10 = kvxGv->linkedVar10;
    linkedVar11 = kvxGv->linkedVar11;
    mu = kvxGv->mu;
    cp = kvxGv->cp;
    if (NPart > 0) {
        linkedVar12 = kvxGv->linkedVar12;
    }
    return true;
}
