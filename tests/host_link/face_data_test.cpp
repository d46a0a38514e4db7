#include "host_link/face_data.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

#include "host_link/containers.h"
#include "tests/support/allocation_recorder.h"
#include "tests/support/undestroyed.h"

namespace {

std::vector<int**> Ids(CMAFVMFaceData& record) {
    return {&record.idFace, &record.idNormal, &record.idAux1,    &record.idAux2,    &record.idAux3,
            &record.idLeft, &record.idRight,  &record.idFarLeft, &record.idFarRight};
}

std::vector<double**> Coefs(CMAFVMFaceData& record) {
    return {&record.coefFace,  &record.coefNormal,  &record.coefAux1,
            &record.coefAux2,  &record.coefAux3,    &record.coefLeft,
            &record.coefRight, &record.coefFarLeft, &record.coefFarRight};
}

std::vector<double**> Carried(CMAFVMFaceData& record) {
    std::vector<double**> pointers;
    for (auto* group : {&record.vecA, &record.vecB, &record.vecC, &record.vecD}) {
        for (double*& pointer : *group) {
            pointers.push_back(&pointer);
        }
    }
    return pointers;
}

/// Gives a record 18 arrays of its own, and sets its 12 other pointers to `carried`.
void Fill(CMAFVMFaceData& record, double* carried) {
    for (int** ids : Ids(record)) {
        newInt1D(*ids, 2);
    }
    for (double** coefs : Coefs(record)) {
        newDouble1D(*coefs, 2);
    }
    for (double** pointer : Carried(record)) {
        *pointer = carried++;
    }
}

void ExpectSamePointers(CMAFVMFaceData& a, CMAFVMFaceData& b) {
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(*Ids(a)[i], *Ids(b)[i]);
        EXPECT_EQ(*Coefs(a)[i], *Coefs(b)[i]);
    }
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(*Carried(a)[i], *Carried(b)[i]);
    }
}

TEST(FaceData, StartsEmptyAndIsNotPolymorphic) {
    static_assert(!std::is_polymorphic_v<CMAFVMFaceData>);
    CMAFVMFaceData record;

    for (int** ids : Ids(record)) {
        EXPECT_EQ(*ids, nullptr);
    }
    for (double** coefs : Coefs(record)) {
        EXPECT_EQ(*coefs, nullptr);
    }
    for (double** pointer : Carried(record)) {
        EXPECT_EQ(*pointer, nullptr);
    }
    EXPECT_FALSE(record.linked);
}

TEST(FaceData, ReleasesItsStencilsButNotTheOtherPointers) {
    AllocationRecorder memory;
    auto* carried = new double[12];
    {
        CMAFVMFaceData record;
        Fill(record, carried);
        EXPECT_EQ(memory.LiveBlocks(), 19);
    }
    EXPECT_EQ(memory.LiveBlocks(), 1);
    EXPECT_TRUE(memory.IsLive(carried));
    delete[] carried;
}

TEST(FaceData, OfALinkedRecordAndItsSourceOnlyTheSourceReleases) {
    double carried[12];
    AllocationRecorder memory;
    {
        CMAFVMFaceData source;
        Fill(source, carried);
        {
            CMAFVMFaceData record;
            EXPECT_EQ(record.LinkedDataForAll(source), 0);
            EXPECT_TRUE(record.linked);
            EXPECT_FALSE(source.linked);
            ExpectSamePointers(record, source);
        }
        EXPECT_EQ(memory.LiveBlocks(), 18);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(FaceData, ADestroyedLinkedRecordKeepsItsPointersAndIsNoLongerLinked) {
    double carried[12];
    CMAFVMFaceData source;
    Fill(source, carried);
    Undestroyed<CMAFVMFaceData> record;
    record->LinkedDataForAll(source);
    const int* idFace = nullptr;
    unsigned char linked = 1;

    record->~CMAFVMFaceData();

    std::memcpy(&idFace, record.storage, sizeof(idFace));
    std::memcpy(&linked, record.storage + offsetof(CMAFVMFaceData, linked), 1);
    EXPECT_EQ(idFace, source.idFace);
    EXPECT_EQ(linked, 0);
}

TEST(FaceData, LinkingOverwritesWithoutReleasing) {
    AllocationRecorder memory;
    CMAFVMFaceData source;
    CMAFVMFaceData record;
    newInt1D(record.idFace, 1);
    const int* old = record.idFace;

    record.LinkedDataForAll(source);

    EXPECT_TRUE(memory.IsLive(old));
    EXPECT_EQ(record.idFace, nullptr);
    delete[] old;
}

TEST(FaceData, LinkingToALinkedRecordBorrowsToo) {
    double carried[12];
    AllocationRecorder memory;
    {
        CMAFVMFaceData source;
        Fill(source, carried);
        CMAFVMFaceData first;
        first.LinkedDataForAll(source);
        CMAFVMFaceData second;
        second.LinkedDataForAll(first);
        EXPECT_TRUE(second.linked);
        ExpectSamePointers(second, source);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(FaceData, AssigningALinkedRecordCopiesTheFlag) {
    double carried[12];
    AllocationRecorder memory;
    {
        CMAFVMFaceData source;
        Fill(source, carried);
        CMAFVMFaceData linked;
        linked.LinkedDataForAll(source);
        CMAFVMFaceData target;

        EXPECT_EQ(&(target = linked), &target);

        EXPECT_TRUE(target.linked);
        ExpectSamePointers(target, source);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(FaceData, AssigningAnOwningRecordMakesTwoOwners) {
    double carried[12];
    CMAFVMFaceData source;
    Fill(source, carried);
    Undestroyed<CMAFVMFaceData> target;
    Undestroyed<CMAFVMFaceData> copy(source);

    *target = source;

    EXPECT_FALSE(target->linked);
    EXPECT_FALSE(copy->linked);
    ExpectSamePointers(*target, source);
    ExpectSamePointers(*copy, source);
}

}  // namespace
