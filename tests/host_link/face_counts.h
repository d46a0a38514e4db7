#ifndef KVX3D_TESTS_HOST_LINK_FACE_COUNTS_H
#define KVX3D_TESTS_HOST_LINK_FACE_COUNTS_H

#include <gtest/gtest.h>

#include <cstddef>

#include "host_link/art_gv.h"
#include "tests/support/allocation_recorder.h"

/// A mesh with five inner faces and four inlet, three outlet, two wall and one symmetry face.
inline CKVX_ACMT_GV Counts() {
    CKVX_ACMT_GV gv;
    gv.Ne = 5;
    gv.NInlet = 4;
    gv.NOutlet = 3;
    gv.NWall = 2;
    gv.NSymm = 1;
    return gv;
}

/// True for an array of n zeros with n in slot 0 that was not released.
inline testing::AssertionResult IsNewArray(const AllocationRecorder& memory, const double* array,
                                           int n) {
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

#endif
