#include "reference_host/run/progress.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

using host::Progress;

TEST(ProgressLines, PlainOutputHasOneLinePerStepWithoutControlCharacters) {
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

TEST(DurationText, HasTheTwoLargestUnits) {
    EXPECT_EQ(host::Duration(0.04), "0.0 s");
    EXPECT_EQ(host::Duration(9.94), "9.9 s");
    EXPECT_EQ(host::Duration(9.96), "10 s");
    EXPECT_EQ(host::Duration(59.4), "59 s");
    EXPECT_EQ(host::Duration(59.6), "1 min 0 s");
    EXPECT_EQ(host::Duration(200), "3 min 20 s");
    EXPECT_EQ(host::Duration(7500), "2 h 5 min");
}

TEST(IterationLines, PlainOutputHasEveryTenthIterationAndTheLast) {
    std::ostringstream out;
    {
        host::IterationProgress progress("flow", 1e-7, out, /*terminal=*/false);
        for (int i = 1; i <= 22; ++i) {
            progress.Done(1.0 / i, "mass " + std::to_string(i));
        }
    }

    EXPECT_EQ(out.str(),
              "flow 10: change 1.0e-01, mass 10\n"
              "flow 20: change 5.0e-02, mass 20\n"
              "flow 22: change 4.5e-02, mass 22\n");
}

TEST(IterationLines, LastIterationIsPrintedOnce) {
    std::ostringstream out;
    {
        host::IterationProgress progress("flow", 1e-7, out, /*terminal=*/false);
        for (int i = 1; i <= 10; ++i) {
            progress.Done(0.5, "");
        }
    }

    EXPECT_EQ(out.str(), "flow 10: change 5.0e-01, \n");
}

TEST(IterationLines, BarFollowsTheLogarithmOfTheReductionAndNeverShrinks) {
    std::ostringstream out;
    {
        host::IterationProgress progress("flow", 1e-4, out, /*terminal=*/true);
        progress.Done(1.0, "a");
        progress.Done(1e-2, "b");
        progress.Done(1e-1, "c");
        progress.Done(std::nan(""), "d");
        progress.Done(1e-5, "e");
    }

    EXPECT_EQ(out.str(),
              "\r\033[Kflow [....................] 1: change 1.0e+00, a  0.0 s left"
              "\r\033[Kflow [##########..........] 2: change 1.0e-02, b  0.0 s left"
              "\r\033[Kflow [##########..........] 3: change 1.0e-01, c  0.0 s left"
              "\r\033[Kflow [##########..........] 4: change nan, d  0.0 s left"
              "\r\033[Kflow [####################] 5: change 1.0e-05, e  0.0 s left\n");
}

TEST(IterationLines, LoopWithoutIterationsPrintsNothing) {
    for (const bool terminal : {false, true}) {
        std::ostringstream out;
        { host::IterationProgress progress("flow", 1e-7, out, terminal); }

        EXPECT_EQ(out.str(), "");
    }
}

}  // namespace
