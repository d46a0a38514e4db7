#include "reference_host/progress.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using host::Progress;

TEST(ProgressLines, PlainOutputHasOneLineAStepAndNoControlCharacters) {
    std::ostringstream out;
    {
        Progress progress("heat", 2, out, /*terminal=*/false);
        progress.StepDone("first");
        progress.StepDone("second");
    }

    EXPECT_EQ(out.str(), "heat 1/2: first\nheat 2/2: second\n");
}

TEST(ProgressLines, TerminalLineIsRedrawnWithABarAndEndsInANewline) {
    std::ostringstream out;
    {
        Progress progress("heat", 2, out, /*terminal=*/true);
        progress.StepDone("first");
        progress.StepDone("second");
    }

    EXPECT_EQ(out.str(),
              "\r\033[Kheat [##########..........] 1/2  first  0.0 s left"
              "\r\033[Kheat [####################] 2/2  second  0.0 s left\n");
}

TEST(ProgressLines, LoopWithoutStepsPrintsNothing) {
    std::ostringstream out;
    { Progress progress("heat", 1, out, /*terminal=*/true); }

    EXPECT_EQ(out.str(), "");
}

TEST(DurationText, ReadsLikeAPersonSaysIt) {
    EXPECT_EQ(host::Duration(0.04), "0.0 s");
    EXPECT_EQ(host::Duration(9.94), "9.9 s");
    EXPECT_EQ(host::Duration(9.96), "10 s");
    EXPECT_EQ(host::Duration(59.4), "59 s");
    EXPECT_EQ(host::Duration(59.6), "1 min 0 s");
    EXPECT_EQ(host::Duration(200), "3 min 20 s");
    EXPECT_EQ(host::Duration(7500), "2 h 5 min");
}

}  // namespace
