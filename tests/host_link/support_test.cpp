#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "host_link/containers.h"
#include "tests/support/allocation_recorder.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

TEST(TestSupport, TempDirectoryExistsAndIsRemovedWithItsContents) {
    std::filesystem::path kept;
    {
        const TempDirectory directory;
        kept = directory.Path();
        WriteFile(kept / "file", std::string("a\0b\r\n", 5));
        EXPECT_EQ(ReadFile(kept / "file"), std::string("a\0b\r\n", 5));
        EXPECT_THROW(ReadFile(kept / "absent"), std::runtime_error);
    }
    EXPECT_FALSE(std::filesystem::exists(kept));
}

TEST(TestSupport, OutputCaptureSeparatesTheStreamsAndRecordsWhatWasFlushed) {
    const OutputCapture capture;

    std::cerr << "c";  // first, because std::cerr flushes std::cout, to which it is tied
    std::cout << "a" << std::flush << "b";

    EXPECT_EQ(capture.Out(), "ab");
    EXPECT_EQ(capture.FlushedOut(), "a");
    EXPECT_EQ(capture.Err(), "c");
}

TEST(TestSupport, AllocationRecorderRecordsArraysAndFailsTheChosenOne) {
    AllocationRecorder memory;
    memory.FailAfter(1);

    // Through the library, because a compiler may remove pairs of new and delete that it can see.
    int* first = nullptr;
    int* second = nullptr;
    int* third = nullptr;
    newInt1D(first, 2);
    EXPECT_THROW(newInt1D(second, 3), std::bad_alloc);
    newInt1D(third, 4);

    EXPECT_EQ(memory.Sizes(), (std::vector<std::size_t>{12, 20}));
    EXPECT_EQ(memory.SizeOf(first), 12u);
    EXPECT_TRUE(memory.IsLive(first));
    delete[] first;
    EXPECT_EQ(memory.LiveBlocks(), 1);
    EXPECT_TRUE(memory.IsLive(third));
    delete[] third;
    EXPECT_EQ(memory.Released().size(), 2u);
}

}  // namespace
