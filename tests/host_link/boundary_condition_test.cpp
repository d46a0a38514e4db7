#include "host_link/face_data.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>
#include <vector>

#include "tests/host_link/face_counts.h"
#include "tests/support/undestroyed.h"

namespace {

/// The four value arrays of a boundary condition.
std::vector<double**> Values(const CMAFVMBoundaryCondition& bc) {
    return {bc.valueInlet, bc.valueOutlet, bc.valueWall, bc.valueSymm};
}

std::vector<const int*> Types(const CMAFVMBoundaryCondition& bc) {
    return {bc.typeInlet, bc.typeOutlet, bc.typeWall, bc.typeSymm};
}

TEST(BoundaryCondition, StartsEmptyAndStaysEmptyWithoutAMesh) {
    static_assert(!std::is_polymorphic_v<CMAFVMBoundaryCondition>);
    CMAFVMBoundaryCondition fresh;
    const CMAFVMBoundaryCondition built(nullptr, 3);

    EXPECT_FALSE(fresh.NewMemory(nullptr, 3));
    for (const CMAFVMBoundaryCondition* bc : {&std::as_const(fresh), &built}) {
        EXPECT_EQ(Values(*bc), (std::vector<double**>(4, nullptr)));
        EXPECT_EQ(Types(*bc), (std::vector<const int*>(4, nullptr)));
    }
}

TEST(BoundaryCondition, HasARowAndATypeForEachFaceOfEveryKind) {
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

TEST(BoundaryCondition, KindsWithoutFacesAreReleasedCompletely) {
    CKVX_ACMT_GV gv;
    AllocationRecorder memory;
    {
        const CMAFVMBoundaryCondition bc(&gv, 3);
        EXPECT_EQ(bc.valueWall[0][0], 0.0);
        EXPECT_EQ(bc.typeWall[0], 0);
    }
    EXPECT_EQ(memory.LiveBlocks(), 0);
}

TEST(BoundaryCondition, NewMemoryReplacesTheArraysExceptTheLastRows) {
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
