#include "reference_host/cases/benchmark_2d1.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/reference_host/mesh/mesh_files.h"

namespace {

namespace benchmark = host::benchmark2d1;
using host::Scheme;

TEST(Benchmark2d1, InflowIsAParabolaWithMeanOne) {
    const host::InletProfile inflow = benchmark::Inflow(ReadShipped(channelGeo, {{"n", 5}}));

    EXPECT_NEAR(inflow({0.0, 2.05, 0.1}).x(), 1.5, 1e-12);
    EXPECT_NEAR(inflow({3.0, 4.1, 0.0}).x(), 0.0, 1e-12);
    EXPECT_NEAR(inflow({0.0, 1.0, 0.0}).x(), 6.0 * 3.1 / (4.1 * 4.1), 1e-12);
}

benchmark::Result Published() {
    benchmark::Result result;
    result.cd = benchmark::dragCoefficient;
    result.cl = benchmark::liftCoefficient;
    result.dp = benchmark::pressureDifference;
    result.iterations = 160;
    return result;
}

TEST(Benchmark2d1, PublishedValuesAreWithinTheLimits) {
    EXPECT_TRUE(
        benchmark::Misses(Published(), *benchmark::LimitsOf(Scheme::LinearUpwind, 10)).empty());
}

TEST(Benchmark2d1, EachFigureHasItsLimit) {
    const benchmark::Limits limits = *benchmark::LimitsOf(Scheme::LinearUpwind, 10);
    benchmark::Result result = Published();
    result.cd *= 1.0011;
    result.cl *= 0.93;
    result.dp *= 1.0021;
    result.massDefect = -1.1e-5;
    result.iterations = 171;

    const auto misses = benchmark::Misses(result, limits);

    ASSERT_EQ(misses.size(), 5u);
    EXPECT_EQ(misses[0], "Cd deviates by 1.10e-03, the limit is 1.00e-03");
    EXPECT_EQ(misses[1], "the pressure difference deviates by 2.10e-03, the limit is 2.00e-03");
    EXPECT_EQ(misses[2], "Cl deviates by -7.00e-02, the limit is 6.00e-02");
    EXPECT_EQ(misses[3], "the mass defect is -1.10e-05, the limit is 1.00e-05");
    EXPECT_EQ(misses[4], "171 iterations, the limit is 170");
}

TEST(Benchmark2d1, NanIsOutsideTheLimits) {
    benchmark::Result result = Published();
    result.cd = std::numeric_limits<double>::quiet_NaN();

    EXPECT_EQ(benchmark::Misses(result, *benchmark::LimitsOf(Scheme::Quick, 20)).size(), 1u);
}

TEST(Benchmark2d1, OtherCombinationsHaveNoLimits) {
    EXPECT_FALSE(benchmark::LimitsOf(Scheme::LinearUpwind, 5).has_value());
    EXPECT_FALSE(benchmark::LimitsOf(Scheme::Quick, 10).has_value());
    EXPECT_FALSE(benchmark::LimitsOf(Scheme::UpwindStencils, 20).has_value());
}

}  // namespace
