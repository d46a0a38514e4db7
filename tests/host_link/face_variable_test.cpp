#include "host_link/face_data.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/host_link/face_counts.h"
#include "tests/support/undestroyed.h"

namespace {

TEST(FaceVariable, StartsWithoutArrays) {
    const CMAFVMFaceVariable variable;

    EXPECT_EQ(variable.left, nullptr);
    EXPECT_EQ(variable.right, nullptr);
    EXPECT_FALSE(variable.sharedInner);
}

TEST(FaceVariable, HasTwoArraysOfInnerFacesUnlessShared) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    {
        const CMAFVMFaceVariable variable(&gv, false);

        EXPECT_TRUE(IsNewArray(memory, variable.left, 5));
        EXPECT_TRUE(IsNewArray(memory, variable.right, 5));
        EXPECT_NE(variable.left, variable.right);
        EXPECT_FALSE(variable.sharedInner);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(FaceVariable, ASharedVariableHasOneArrayThatIsReleasedOnce) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    {
        const CMAFVMFaceVariable variable(&gv, true);

        EXPECT_TRUE(IsNewArray(memory, variable.left, 5));
        EXPECT_EQ(variable.right, variable.left);
        EXPECT_TRUE(variable.sharedInner);
        EXPECT_EQ(memory.LiveBlocks(), 1);
    }
    EXPECT_EQ(memory.Released().size(), 1u);
}

TEST(FaceVariable, WithoutAMeshHasNoArraysButStoresTheSharing) {
    const CMAFVMFaceVariable variable(nullptr, true);

    EXPECT_EQ(variable.left, nullptr);
    EXPECT_EQ(variable.right, nullptr);
    EXPECT_TRUE(variable.sharedInner);
}

TEST(FaceVariable, NewMemoryWithoutAMeshChangesNothing) {
    CKVX_ACMT_GV gv = Counts();
    CMAFVMFaceVariable variable(&gv, false);
    const double* left = variable.left;

    EXPECT_FALSE(variable.NewMemory(nullptr));

    EXPECT_EQ(variable.left, left);
    EXPECT_FALSE(variable.sharedInner);
}

TEST(FaceVariable, NewMemoryReplacesTheArrays) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    CMAFVMFaceVariable variable(&gv, false);
    variable.left[1] = variable.right[1] = 8;
    gv.Ne = 2;

    EXPECT_TRUE(variable.NewMemory(&gv));

    EXPECT_TRUE(IsNewArray(memory, variable.left, 2));
    EXPECT_TRUE(IsNewArray(memory, variable.right, 2));
    EXPECT_EQ(memory.LiveBlocks(), 2);
}

TEST(FaceVariable, NewMemoryOfASharedVariableAllocatesOneArray) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    CMAFVMFaceVariable variable;
    variable.sharedInner = true;

    EXPECT_TRUE(variable.NewMemory(&gv));
    EXPECT_TRUE(variable.NewMemory(&gv));

    EXPECT_EQ(memory.LiveBlocks(), 1);
    EXPECT_EQ(variable.left, variable.right);
}

TEST(FaceVariable, LinkInnerReleasesOneArrayOfTwo) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    {
        CMAFVMFaceVariable variable(&gv, false);
        const double* left = variable.left;

        EXPECT_TRUE(variable.LinkInner());

        EXPECT_TRUE(variable.sharedInner);
        EXPECT_EQ(variable.left, left);
        EXPECT_EQ(variable.right, left);
        EXPECT_EQ(memory.LiveBlocks(), 1);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(FaceVariable, LinkInnerWithoutArraysOnlySetsTheSharing) {
    CMAFVMFaceVariable variable;

    EXPECT_TRUE(variable.LinkInner());

    EXPECT_TRUE(variable.sharedInner);
    EXPECT_EQ(variable.right, nullptr);
}

TEST(FaceVariable, LinkInnerOnASharedVariableReleasesTheArrayThatLeftPointsTo) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    for (const bool shared : {false, true}) {
        Undestroyed<CMAFVMFaceVariable> variable(&gv, shared);
        if (!shared) {
            variable->LinkInner();
        }
        const double* left = variable->left;

        EXPECT_TRUE(variable->LinkInner());

        EXPECT_FALSE(memory.IsLive(left));
        EXPECT_EQ(variable->left, left);
        EXPECT_EQ(variable->right, left);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(FaceVariable, ADestroyedObjectNoLongerShares) {
    CKVX_ACMT_GV gv;
    Undestroyed<CMAFVMFaceVariable> variable(&gv, true);
    const auto at = reinterpret_cast<unsigned char*>(&variable->sharedInner) - variable.storage;

    variable->~CMAFVMFaceVariable();

    EXPECT_EQ(variable.storage[at], 0);
}

TEST(FaceVariable, CopiesShareTheArrays) {
    CKVX_ACMT_GV gv = Counts();
    const CMAFVMFaceVariable variable(&gv, true);
    Undestroyed<CMAFVMFaceVariable> copy(variable);
    Undestroyed<CMAFVMFaceVariable> assigned;

    *assigned = variable;

    for (auto* view : {&copy, &assigned}) {
        EXPECT_EQ((*view)->left, variable.left);
        EXPECT_EQ((*view)->right, variable.right);
        EXPECT_TRUE((*view)->sharedInner);
    }
}

TEST(FaceVariableAll, StartsWithoutArrays) {
    const CMAFVMFaceVariableAll variable;

    for (const double* array : {variable.left, variable.right, variable.inlet, variable.outlet,
                                variable.wall, variable.symm}) {
        EXPECT_EQ(array, nullptr);
    }
    EXPECT_FALSE(variable.sharedInner);
}

TEST(FaceVariableAll, HasAnArrayForEveryKind) {
    CKVX_ACMT_GV gv = Counts();
    for (const bool shared : {false, true}) {
        AllocationRecorder memory;
        {
            const CMAFVMFaceVariableAll variable(&gv, shared);

            EXPECT_TRUE(IsNewArray(memory, variable.left, 5));
            EXPECT_TRUE(IsNewArray(memory, variable.right, 5));
            EXPECT_EQ(variable.left == variable.right, shared);
            EXPECT_TRUE(IsNewArray(memory, variable.inlet, 4));
            EXPECT_TRUE(IsNewArray(memory, variable.outlet, 3));
            EXPECT_TRUE(IsNewArray(memory, variable.wall, 2));
            EXPECT_TRUE(IsNewArray(memory, variable.symm, 1));
        }
        EXPECT_EQ(memory.LiveBlocks(), 0);
    }
}

TEST(FaceVariableAll, ReleasesTheBoundaryArraysFirst) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    std::vector<const void*> order;
    {
        const CMAFVMFaceVariableAll v(&gv, false);
        order = {v.inlet, v.outlet, v.wall, v.symm, v.left, v.right};
    }
    EXPECT_EQ(memory.Released(), order);
}

TEST(FaceVariableAll, NewMemoryThroughTheBaseReplacesEverything) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    CMAFVMFaceVariableAll variable(&gv, false);
    gv.Ne = 1;
    gv.NSymm = 0;
    CMAFVMFaceVariable& base = variable;

    EXPECT_TRUE(base.NewMemory(&gv));

    EXPECT_TRUE(IsNewArray(memory, variable.left, 1));
    EXPECT_TRUE(IsNewArray(memory, variable.symm, 0));
    EXPECT_EQ(memory.LiveBlocks(), 6);
}

TEST(FaceVariableAll, CopiesShareTheArrays) {
    CKVX_ACMT_GV gv = Counts();
    const CMAFVMFaceVariableAll variable(&gv, false);
    Undestroyed<CMAFVMFaceVariableAll> copy(variable);
    Undestroyed<CMAFVMFaceVariableAll> assigned;

    *assigned = variable;

    for (auto* view : {&copy, &assigned}) {
        EXPECT_EQ((*view)->right, variable.right);
        EXPECT_EQ((*view)->inlet, variable.inlet);
        EXPECT_EQ((*view)->symm, variable.symm);
    }
}

TEST(FaceVariableOverset, HasInnerAndWallArrays) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    std::vector<const void*> order;
    {
        const CMAFVMFaceVariableOverset variable(&gv, false);

        EXPECT_TRUE(IsNewArray(memory, variable.left, 5));
        EXPECT_TRUE(IsNewArray(memory, variable.right, 5));
        EXPECT_TRUE(IsNewArray(memory, variable.wall, 2));
        EXPECT_EQ(memory.LiveBlocks(), 3);
        order = {variable.wall, variable.left, variable.right};
    }
    EXPECT_EQ(memory.Released(), order);
}

TEST(FaceVariableOverset, SharesAndReplacesLikeTheOtherVariables) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    CMAFVMFaceVariableOverset variable(&gv, true);
    gv.NWall = 7;
    CMAFVMFaceVariable& base = variable;

    EXPECT_TRUE(base.NewMemory(&gv));

    EXPECT_EQ(variable.left, variable.right);
    EXPECT_TRUE(IsNewArray(memory, variable.wall, 7));
    EXPECT_EQ(memory.LiveBlocks(), 2);
}

TEST(FaceVariableOverset, StartsWithoutArraysAndCopiesShareThem) {
    CKVX_ACMT_GV gv = Counts();
    const CMAFVMFaceVariableOverset empty;
    const CMAFVMFaceVariableOverset variable(&gv, false);
    Undestroyed<CMAFVMFaceVariableOverset> copy(variable);
    Undestroyed<CMAFVMFaceVariableOverset> assigned;

    *assigned = variable;

    EXPECT_EQ(empty.wall, nullptr);
    EXPECT_EQ(empty.left, nullptr);
    EXPECT_EQ(copy->wall, variable.wall);
    EXPECT_EQ(assigned->wall, variable.wall);
    EXPECT_EQ(assigned->left, variable.left);
}

}  // namespace
