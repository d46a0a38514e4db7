#include "host_link/face_data.h"

#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "host_link/art_gv.h"
#include "host_link/containers.h"
#include "tests/support/allocation_recorder.h"

namespace {

/// Four, three, two, one and no faces of a kind and five inner faces.
CKVX_ACMT_GV Counts() {
    CKVX_ACMT_GV gv;
    gv.Ne = 5;
    gv.NInlet = 4;
    gv.NOutlet = 3;
    gv.NWall = 2;
    gv.NSymm = 1;
    return gv;
}

/// True for a live array of n zeros with n in slot 0.
testing::AssertionResult IsNewArray(const AllocationRecorder& memory, const double* array, int n) {
    if (memory.SizeOf(array) != sizeof(double) * (static_cast<std::size_t>(n) + 1)) {
        return testing::AssertionFailure() << "block of " << memory.SizeOf(array) << " bytes";
    }
    for (int i = 0; i <= n; ++i) {
        if (array[i] != (i == 0 ? n : 0)) {
            return testing::AssertionFailure() << "slot " << i << " holds " << array[i];
        }
    }
    return testing::AssertionSuccess();
}

/// A copy or a view that is never destroyed: it shares arrays that another object releases.
template <typename T>
struct Undestroyed {
    template <typename... Arguments>
    explicit Undestroyed(Arguments&&... arguments) {
        new (storage) T(std::forward<Arguments>(arguments)...);
    }
    T& operator*() { return *std::launder(reinterpret_cast<T*>(storage)); }
    T* operator->() { return &**this; }
    alignas(T) unsigned char storage[sizeof(T)];
};

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

/// Gives a record 18 arrays of its own and 12 carried pointers to `carried`.
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

TEST(FaceData, StartsEmptyAndIsNoPolymorphicClass) {
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

TEST(FaceData, ReleasesItsStencilsButNotTheCarriedPointers) {
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

TEST(FaceData, ALinkedRecordReleasesNothingAndItsSourceDoes) {
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

TEST(FaceVariable, SharedHasOneArrayThatIsReleasedOnce) {
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

TEST(FaceVariable, WithoutARecordHasNoArraysButKeepsTheSharing) {
    const CMAFVMFaceVariable variable(nullptr, true);

    EXPECT_EQ(variable.left, nullptr);
    EXPECT_EQ(variable.right, nullptr);
    EXPECT_TRUE(variable.sharedInner);
}

TEST(FaceVariable, NewMemoryWithoutARecordChangesNothing) {
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

TEST(FaceVariable, NewMemoryOfASharedObjectMakesOneArray) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    CMAFVMFaceVariable variable;
    variable.sharedInner = true;

    EXPECT_TRUE(variable.NewMemory(&gv));
    EXPECT_TRUE(variable.NewMemory(&gv));

    EXPECT_EQ(memory.LiveBlocks(), 1);
    EXPECT_EQ(variable.left, variable.right);
}

TEST(FaceVariable, LinkInnerLeavesOneArrayOfTwo) {
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

TEST(FaceVariable, LinkInnerOnASharingObjectReleasesTheArrayLeftStillShows) {
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

TEST(FaceVariable, CopiesAreViews) {
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

TEST(FaceVariableAll, ReleasesTheBoundaryFirst) {
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

TEST(FaceVariableAll, CopiesAreViews) {
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

TEST(FaceVariableOverset, SharesAndReplacesAsTheOthersDo) {
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

TEST(FaceVariableOverset, StartsWithoutArraysAndCopiesAsAView) {
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

/// The four value arrays of a boundary condition.
std::vector<double**> Values(const CMAFVMBoundaryCondition& bc) {
    return {bc.valueInlet, bc.valueOutlet, bc.valueWall, bc.valueSymm};
}

std::vector<const int*> Types(const CMAFVMBoundaryCondition& bc) {
    return {bc.typeInlet, bc.typeOutlet, bc.typeWall, bc.typeSymm};
}

TEST(BoundaryCondition, StartsEmptyAndStaysSoWithoutARecord) {
    static_assert(!std::is_polymorphic_v<CMAFVMBoundaryCondition>);
    CMAFVMBoundaryCondition fresh;
    const CMAFVMBoundaryCondition built(nullptr, 3);

    EXPECT_FALSE(fresh.NewMemory(nullptr, 3));
    for (const CMAFVMBoundaryCondition* bc : {&std::as_const(fresh), &built}) {
        EXPECT_EQ(Values(*bc), (std::vector<double**>(4, nullptr)));
        EXPECT_EQ(Types(*bc), (std::vector<const int*>(4, nullptr)));
    }
}

TEST(BoundaryCondition, HasARowAndATypePerFaceOfEveryKind) {
    CKVX_ACMT_GV gv = Counts();
    AllocationRecorder memory;
    std::vector<const double*> lastRows;
    {
        const CMAFVMBoundaryCondition bc(&gv, 3);
        for (int kind = 0; kind < 4; ++kind) {
            const int n = 4 - kind;
            const std::size_t k = static_cast<std::size_t>(kind);
            double** rows = Values(bc)[k];
            EXPECT_EQ(memory.SizeOf(rows), sizeof(double*) * (static_cast<std::size_t>(n) + 1));
            EXPECT_EQ(memory.SizeOf(rows[0]), sizeof(double));
            EXPECT_EQ(rows[0][0], n);
            for (int i = 1; i <= n; ++i) {
                EXPECT_TRUE(IsNewArray(memory, rows[i], 3));
            }
            lastRows.push_back(rows[n]);
            const int* types = Types(bc)[k];
            EXPECT_EQ(memory.SizeOf(types), sizeof(int) * (static_cast<std::size_t>(n) + 1));
            EXPECT_EQ(types[0], n);
            EXPECT_EQ(types[n], 0);
        }
    }
    // The release stops one row short in each of the four tables.
    EXPECT_EQ(memory.LiveBlocks(), 4);
    for (const double* row : lastRows) {
        EXPECT_TRUE(memory.IsLive(row));
        delete[] row;
    }
}

TEST(BoundaryCondition, KindsWithoutFacesLeaveNothingBehind) {
    CKVX_ACMT_GV gv;
    AllocationRecorder memory;
    {
        const CMAFVMBoundaryCondition bc(&gv, 3);
        EXPECT_EQ(bc.valueWall[0][0], 0.0);
        EXPECT_EQ(bc.typeWall[0], 0);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(BoundaryCondition, NewMemoryReplacesTheArraysAndLeavesTheLastRows) {
    CKVX_ACMT_GV gv;
    gv.NWall = 2;
    AllocationRecorder memory;
    CMAFVMBoundaryCondition bc(&gv, 1);
    const double* last = bc.valueWall[2];
    gv.NWall = 0;

    EXPECT_TRUE(bc.NewMemory(&gv, 5));

    EXPECT_TRUE(memory.IsLive(last));
    EXPECT_EQ(bc.valueWall[0][0], 0.0);
    EXPECT_EQ(memory.LiveBlocks(), 1 + 4 * 2 + 4);
    delete[] last;
}

TEST(BoundaryCondition, CopiesShareTheArrays) {
    CKVX_ACMT_GV gv;
    const CMAFVMBoundaryCondition bc(&gv, 2);
    Undestroyed<CMAFVMBoundaryCondition> copy(bc);
    Undestroyed<CMAFVMBoundaryCondition> assigned;

    *assigned = bc;

    EXPECT_EQ(Values(*copy), Values(bc));
    EXPECT_EQ(Values(*assigned), Values(bc));
    EXPECT_EQ(Types(*assigned), Types(bc));
}

}  // namespace
