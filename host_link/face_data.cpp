#include "host_link/face_data.h"

#include "host_link/art_gv.h"
#include "host_link/containers.h"
#include "host_link/detail/last_stores.h"

CMAFVMFaceData::CMAFVMFaceData() = default;

CMAFVMFaceData::CMAFVMFaceData(const CMAFVMFaceData& other) = default;

CMAFVMFaceData& CMAFVMFaceData::operator=(const CMAFVMFaceData& other) = default;

CMAFVMFaceData::~CMAFVMFaceData() {
    if (!linked) {
        for (int** ids : {&idFace, &idNormal, &idAux1, &idAux2, &idAux3, &idLeft, &idRight,
                          &idFarLeft, &idFarRight}) {
            delete[] * ids;
            *ids = nullptr;
        }
        for (double** coefs : {&coefFace, &coefNormal, &coefAux1, &coefAux2, &coefAux3, &coefLeft,
                               &coefRight, &coefFarLeft, &coefFarRight}) {
            delete[] * coefs;
            *coefs = nullptr;
        }
    }
    linked = false;
    kvx3d::detail::KeepLastStores();
}

int CMAFVMFaceData::LinkedDataForAll(const CMAFVMFaceData& other) {
    *this = other;
    linked = true;
    return 0;
}

CMAFVMFaceVariable::CMAFVMFaceVariable() = default;

CMAFVMFaceVariable::CMAFVMFaceVariable(CKVX_ACMT_GV* gv, bool shared) : sharedInner(shared) {
    CMAFVMFaceVariable::NewMemory(gv);
}

CMAFVMFaceVariable::CMAFVMFaceVariable(const CMAFVMFaceVariable& other) = default;

CMAFVMFaceVariable& CMAFVMFaceVariable::operator=(const CMAFVMFaceVariable& other) = default;

CMAFVMFaceVariable::~CMAFVMFaceVariable() {
    delete[] left;
    if (!sharedInner) {
        delete[] right;
    }
    sharedInner = false;
    kvx3d::detail::KeepLastStores();
}

bool CMAFVMFaceVariable::NewMemory(CKVX_ACMT_GV* gv) {
    if (gv == nullptr) {
        return false;
    }
    newDouble1D(left, gv->Ne);
    if (sharedInner) {
        right = left;
    } else {
        newDouble1D(right, gv->Ne);
    }
    return true;
}

bool CMAFVMFaceVariable::LinkInner() {
    // Tests `right` and not the old `sharedInner`, so on an object that already shares its array
    // this releases the array to which `left` still points: at most one call per object is valid.
    sharedInner = true;
    if (right == nullptr) {
        return true;
    }
    delete[] right;
    right = left;
    return true;
}

CMAFVMFaceVariableAll::CMAFVMFaceVariableAll() = default;

CMAFVMFaceVariableAll::CMAFVMFaceVariableAll(CKVX_ACMT_GV* gv, bool shared) {
    sharedInner = shared;
    CMAFVMFaceVariableAll::NewMemory(gv);
}

CMAFVMFaceVariableAll::CMAFVMFaceVariableAll(const CMAFVMFaceVariableAll& other) = default;

CMAFVMFaceVariableAll& CMAFVMFaceVariableAll::operator=(const CMAFVMFaceVariableAll& other) =
    default;

CMAFVMFaceVariableAll::~CMAFVMFaceVariableAll() {
    delete[] inlet;
    delete[] outlet;
    delete[] wall;
    delete[] symm;
}

bool CMAFVMFaceVariableAll::NewMemory(CKVX_ACMT_GV* gv) {
    CMAFVMFaceVariable::NewMemory(gv);
    // No test for null from here on: without the boundary arrays a flux would be read out of bounds
    // much later, so a missing mesh has to fail here.
    newDouble1D(inlet, gv->NInlet);
    newDouble1D(outlet, gv->NOutlet);
    newDouble1D(wall, gv->NWall);
    newDouble1D(symm, gv->NSymm);
    return true;
}

CMAFVMFaceVariableOverset::CMAFVMFaceVariableOverset() = default;

CMAFVMFaceVariableOverset::CMAFVMFaceVariableOverset(CKVX_ACMT_GV* gv, bool shared) {
    sharedInner = shared;
    CMAFVMFaceVariableOverset::NewMemory(gv);
}

CMAFVMFaceVariableOverset::CMAFVMFaceVariableOverset(const CMAFVMFaceVariableOverset& other) =
    default;

CMAFVMFaceVariableOverset& CMAFVMFaceVariableOverset::operator=(
    const CMAFVMFaceVariableOverset& other) = default;

CMAFVMFaceVariableOverset::~CMAFVMFaceVariableOverset() {
    delete[] wall;
}

bool CMAFVMFaceVariableOverset::NewMemory(CKVX_ACMT_GV* gv) {
    CMAFVMFaceVariable::NewMemory(gv);
    newDouble1D(wall, gv->NWall);  // no test for null, as above
    return true;
}

CMAFVMBoundaryCondition::CMAFVMBoundaryCondition() = default;

CMAFVMBoundaryCondition::CMAFVMBoundaryCondition(CKVX_ACMT_GV* gv, int components) {
    NewMemory(gv, components);
}

CMAFVMBoundaryCondition::CMAFVMBoundaryCondition(const CMAFVMBoundaryCondition& other) = default;

CMAFVMBoundaryCondition& CMAFVMBoundaryCondition::operator=(const CMAFVMBoundaryCondition& other) =
    default;

CMAFVMBoundaryCondition::~CMAFVMBoundaryCondition() {
    freeDouble2D(valueInlet);
    freeDouble2D(valueOutlet);
    freeDouble2D(valueWall);
    freeDouble2D(valueSymm);
    delete[] typeInlet;
    delete[] typeOutlet;
    delete[] typeWall;
    delete[] typeSymm;
}

bool CMAFVMBoundaryCondition::NewMemory(CKVX_ACMT_GV* gv, int components) {
    if (gv == nullptr) {
        return false;
    }
    newDouble2D(valueInlet, gv->NInlet, components);
    newDouble2D(valueOutlet, gv->NOutlet, components);
    newDouble2D(valueWall, gv->NWall, components);
    newDouble2D(valueSymm, gv->NSymm, components);
    newInt1D(typeInlet, gv->NInlet);
    newInt1D(typeOutlet, gv->NOutlet);
    newInt1D(typeWall, gv->NWall);
    newInt1D(typeSymm, gv->NSymm);
    return true;
}
