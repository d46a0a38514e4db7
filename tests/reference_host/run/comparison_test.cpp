#include "reference_host/run/comparison.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/output_capture.h"

namespace {

using host::LimitCheck;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ComparisonTable, HasValuePublishedValueAndDeviation) {
    OutputCapture capture;

    host::PrintComparisonHead();
    host::PrintComparison("Cd", 5.5, 5.0);
    host::PrintComparison("Cl", -0.25, std::nullopt);

    EXPECT_EQ(capture.Out(),
              "                              computed       published    deviation\n"
              "  Cd                      5.5000000000    5.0000000000    +10.000 %\n"
              "  Cl                     -0.2500000000\n");
}

TEST(LimitCheckMagnitude, IncludesTheLimitItself) {
    LimitCheck check;

    check.Magnitude("the side force is", 0.5, 0.5);
    check.Magnitude("the side force is", -0.5, 0.5);

    EXPECT_THAT(check.Misses(), IsEmpty());
}

TEST(LimitCheckMagnitude, IsExceededByBothSignsAndByNan) {
    LimitCheck check;

    check.Magnitude("Cd deviates by", 0.51, 0.5);
    check.Magnitude("Cd deviates by", -0.51, 0.5);
    check.Magnitude("Cd deviates by", std::nan(""), 0.5);

    EXPECT_THAT(check.Misses(), ElementsAre("Cd deviates by 5.10e-01, the limit is 5.00e-01",
                                            "Cd deviates by -5.10e-01, the limit is 5.00e-01",
                                            "Cd deviates by nan, the limit is 5.00e-01"));
}

TEST(LimitCheckCount, IsExceededByOneMore) {
    LimitCheck check;

    check.AtMost("iterations", 160, 160);
    check.AtMost("iterations", 161, 160);

    EXPECT_THAT(check.Misses(), ElementsAre("161 iterations, the limit is 160"));
}

TEST(MissReport, IsOneSentenceIfThereAreNone) {
    OutputCapture capture;

    EXPECT_EQ(host::ReportMisses({}), 0);

    EXPECT_EQ(capture.Out(), "All figures are within their limits.\n");
    EXPECT_EQ(capture.Err(), "");
}

TEST(MissReport, ListsEachMissOnStandardError) {
    OutputCapture capture;

    EXPECT_EQ(host::ReportMisses({"a", "b"}), 1);

    EXPECT_EQ(capture.Out(), "Some figures are outside their limits, see above.\n");
    EXPECT_EQ(capture.Err(), "reference_host: a\nreference_host: b\n");
}

}  // namespace
