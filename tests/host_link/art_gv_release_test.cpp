#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "host_link/art_gv.h"
#include "host_link/containers.h"
#include "host_link/face_data.h"
#include "tests/support/allocation_recorder.h"
#include "tests/support/box_host.h"
#include "tests/support/undestroyed.h"

namespace {

/// The int arrays that an object without host links releases.
std::vector<int**> IntArrays(CKVX_ACMT_GV& gv) {
    return {&gv.hostCountTableGv, &gv.hostCountTableFvm,
            &gv.Ce23[0],          &gv.Ce23[1],
            &gv.CInlet23,         &gv.COutlet23,
            &gv.CWall23,          &gv.CSymm23,
            &gv.CPart23,          &gv.idInlet,
            &gv.idOutlet,         &gv.idWall,
            &gv.idSymm,           &gv.idPart,
            &gv.cavityId,         &gv.pProcessId,
            &gv.nonmatchingFace};
}

/// The double arrays that it releases.
std::vector<double**> DoubleArrays(CKVX_ACMT_GV& gv) {
    return {&gv.xc,         &gv.yc,         &gv.zc,          &gv.volume,      &gv.xe,
            &gv.ye,         &gv.ze,         &gv.xn,          &gv.yn,          &gv.zn,
            &gv.xInlet,     &gv.yInlet,     &gv.zInlet,      &gv.xOutlet,     &gv.yOutlet,
            &gv.zOutlet,    &gv.xWall,      &gv.yWall,       &gv.zWall,       &gv.xSymm,
            &gv.ySymm,      &gv.zSymm,      &gv.xPart,       &gv.yPart,       &gv.zPart,
            &gv.nxe,        &gv.nye,        &gv.nze,         &gv.nxInlet,     &gv.nyInlet,
            &gv.nzInlet,    &gv.nxOutlet,   &gv.nyOutlet,    &gv.nzOutlet,    &gv.nxWall,
            &gv.nyWall,     &gv.nzWall,     &gv.nxSymm,      &gv.nySymm,      &gv.nzSymm,
            &gv.nxPart,     &gv.nyPart,     &gv.nzPart,      &gv.u,           &gv.v,
            &gv.w,          &gv.p,          &gv.linkedVar5,  &gv.linkedVar6,  &gv.linkedVar7,
            &gv.linkedVar8, &gv.linkedVar9, &gv.linkedVar10, &gv.linkedVar11, &gv.linkedVar12,
            &gv.mu,         &gv.cp};
}

std::vector<int***> Tables(CKVX_ACMT_GV& gv) {
    return {&gv.cellTableA,     &gv.cellTableB,     &gv.cellTableC,
            &gv.innerFaceTable, &gv.inletFaceTable, &gv.outletFaceTable,
            &gv.wallFaceTable,  &gv.symmFaceTable,  &gv.cellNodes};
}

/// The blocks that a filled object does not release, for the test to release.
struct Remains {
    int* faceType;
    std::vector<int*> lastRows;
};

/// Allocates an array for every field that may hold host memory.
Remains FillHostFields(CKVX_ACMT_GV& gv) {
    Remains remains{nullptr, {}};
    for (int** array : IntArrays(gv)) {
        newInt1D(*array, 1);
    }
    for (double** array : DoubleArrays(gv)) {
        newDouble1D(*array, 1);
    }
    for (int*** table : Tables(gv)) {
        newIntRows(*table, 2);
        newInt1D((*table)[1], 1);
        newInt1D((*table)[2], 1);
        remains.lastRows.push_back((*table)[2]);
    }
    gv.IfPartitionFace_InvalidForNonMatching = new bool[2]();
    newInt1D(gv.FaceType_Partition, 1);
    remains.faceType = gv.FaceType_Partition;
    return remains;
}

TEST(HostRecordRelease, WithoutLinksEverythingIsReleasedExceptFaceTypesAndLastRows) {
    AllocationRecorder memory;
    std::optional<CKVX_ACMT_GV> gv(std::in_place);
    const Remains remains = FillHostFields(*gv);

    gv.reset();

    EXPECT_TRUE(memory.IsLive(remains.faceType));
    delete[] remains.faceType;
    for (const int* row : remains.lastRows) {
        EXPECT_TRUE(memory.IsLive(row));
        delete[] row;
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(HostRecordRelease, OneLinkOfTwoCountsAsNone) {
    CKvx3dGV globals;
    CKVX3DFiniteVolumeMesh mesh;
    for (const bool onlyMesh : {false, true}) {
        AllocationRecorder memory;
        std::optional<CKVX_ACMT_GV> gv(std::in_place);
        gv->kvxGv = onlyMesh ? nullptr : &globals;
        gv->kvxFvm = onlyMesh ? &mesh : nullptr;
        newDouble1D(gv->xc, 1);

        gv.reset();

        EXPECT_EQ(memory.LiveBlocks(), 0) << "only the mesh: " << onlyMesh;
    }
}

TEST(HostRecordRelease, WithLinksHostMemoryIsNotReleased) {
    CKvx3dGV globals;
    CKVX3DFiniteVolumeMesh mesh;
    AllocationRecorder memory;
    CKVX_ACMT_GV fields;
    const Remains remains = FillHostFields(fields);
    const int blocks = memory.LiveBlocks();
    {
        CKVX_ACMT_GV linked(fields);
        linked.kvxGv = &globals;
        linked.kvxFvm = &mesh;
    }
    EXPECT_EQ(memory.LiveBlocks(), blocks);
    // `fields` has no links and releases its arrays; the test releases the rest.
    delete[] remains.faceType;
    for (const int* row : remains.lastRows) {
        delete[] row;
    }
}

TEST(HostRecordRelease, ALinkedObjectReleasesOnlyAreasAndGhostTables) {
    BoxHost host(2, 2, 2);
    host.WithPartitionFaces();
    AllocationRecorder memory;
    std::vector<const void*> own;
    {
        CKVX_ACMT_GV gv;
        gv.getKvx3dGV(&host.gv, &host.fvm);
        gv.getKvx3dPartFace(&host.partition);
        ASSERT_EQ(gv.getKvx3dData(), 0);
        own = {gv.areaE,    gv.areaInlet, gv.areaOutlet,  gv.areaWall,
               gv.areaSymm, gv.areaPart,  gv.ghostBCType, gv.ghostBCIndex};
    }
    EXPECT_EQ(memory.Released(), own);
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

/// A face variable that records its destruction.
struct Witness : CMAFVMFaceVariableAll {
    explicit Witness(int& counter) : destroyed(counter) {}
    ~Witness() override { ++destroyed; }
    int& destroyed;
};

TEST(HostRecordRelease, FaceVariablesAreReleasedByTheirVirtualDestructor) {
    for (const bool linked : {false, true}) {
        CKvx3dGV globals;
        CKVX3DFiniteVolumeMesh mesh;
        int destroyed = 0;
        {
            CKVX_ACMT_GV gv;
            if (linked) {
                gv.getKvx3dGV(&globals, &mesh);
            }
            gv.faceRho = new Witness(destroyed);
            gv.faceMu = new Witness(destroyed);
            gv.faceK = new Witness(destroyed);
            gv.faceCp = new Witness(destroyed);
        }
        EXPECT_EQ(destroyed, 4);
    }
}

TEST(HostRecordRelease, StencilRecordsAreReleasedWithTheirStencils) {
    AllocationRecorder memory;
    {
        CKVX_ACMT_GV gv;
        CMAFVMFaceData** const records[] = {
            &gv.faceDataLeft, &gv.faceDataRight, &gv.faceDataInlet,  &gv.faceDataOutlet,
            &gv.faceDataWall, &gv.faceDataSymm,  &gv.faceDataExtra1, &gv.faceDataExtra2};
        for (CMAFVMFaceData** array : records) {
            *array = new CMAFVMFaceData[3];
            newInt1D((*array)[2].idFace, 4);
            newDouble1D((*array)[2].coefFarRight, 4);
        }
        EXPECT_EQ(memory.LiveBlocks(), 24);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(HostRecordRelease, ADestroyedObjectHasNoLinks) {
    CKvx3dGV globals;
    CKVX3DFiniteVolumeMesh mesh;
    Undestroyed<CKVX_ACMT_GV> gv;
    gv->getKvx3dGV(&globals, &mesh);
    const void* links[5] = {};

    gv->~CKVX_ACMT_GV();

    std::memcpy(links, gv.storage, sizeof(links));  // the five links are the first members
    for (const void* link : links) {
        EXPECT_EQ(link, nullptr);
    }
}

TEST(HostRecordCopies, CopiesShareEveryPointer) {
    BoxHost host(2, 2, 1);
    CKVX_ACMT_GV gv;
    gv.getKvx3dGV(&host.gv, &host.fvm);
    ASSERT_EQ(gv.getKvx3dData(), 0);
    gv.useBoundaryFaces = false;
    AllocationRecorder memory;
    Undestroyed<CKVX_ACMT_GV> copy(gv);
    Undestroyed<CKVX_ACMT_GV> assigned;

    *assigned = gv;

    for (const CKVX_ACMT_GV* other : {&*copy, &*assigned}) {
        EXPECT_EQ(other->kvxGv, gv.kvxGv);
        EXPECT_EQ(other->Ne, gv.Ne);
        EXPECT_EQ(other->Ce23[1], gv.Ce23[1]);
        EXPECT_EQ(other->areaE, gv.areaE);
        EXPECT_EQ(other->ghostBCIndex, gv.ghostBCIndex);
        EXPECT_EQ(other->cp, gv.cp);
        EXPECT_FALSE(other->useBoundaryFaces);
    }
    EXPECT_EQ(memory.Sizes().size(), 0u);  // nothing duplicated
}

}  // namespace
