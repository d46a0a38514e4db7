#ifndef KVX3D_TESTS_HOST_LINK_EXPECT_FAILURE_H
#define KVX3D_TESTS_HOST_LINK_EXPECT_FAILURE_H

#include <gtest/gtest.h>

#include <string>

#include "tests/support/output_capture.h"

/// Calls `call` and expects `result` and exactly one flushed line on standard output.
template <typename Call>
void ExpectFailure(int result, const std::string& line, Call call) {
    const OutputCapture capture;
    EXPECT_EQ(call(), result);
    EXPECT_EQ(capture.Out(), line + "\n");
    EXPECT_EQ(capture.FlushedOut(), line + "\n");
    EXPECT_EQ(capture.Err(), "");
}

#endif
