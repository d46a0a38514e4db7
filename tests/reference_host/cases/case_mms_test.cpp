#include "reference_host/cases/case_mms.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

using host::MmsCase;
using host::MmsLevel;
using host::MmsStudy;
using host::Scheme;

MmsLevel Level(int size, double l2, double max) {
    MmsLevel level;
    level.size = size;
    level.all = {l2, max};
    return level;
}

TEST(MmsOrders, OrderIsTheSlopeInTheSize) {
    EXPECT_NEAR(host::Order(4e-4, 1e-4, 10, 20), 2.0, 1e-12);
    EXPECT_NEAR(host::Order(9e-4, 1e-4, 10, 30), 2.0, 1e-12);
}

TEST(MmsOrders, SecondOrderWithinTheTablePasses) {
    EXPECT_TRUE(
        host::Misses({Scheme::Diffusion, 1, {Level(10, 9e-4, 2e-3), Level(20, 2.25e-4, 5e-4)}})
            .empty());
}

TEST(MmsOrders, LowOrderIsAMiss) {
    const auto misses =
        host::Misses({Scheme::Diffusion, 1, {Level(10, 6e-4, 1e-3), Level(20, 2.25e-4, 5e-4)}});

    ASSERT_EQ(misses.size(), 2u);
    EXPECT_EQ(misses[0], "diffusion kind 1 all L2: order 1.42, at least 1.75 wanted");
    EXPECT_EQ(misses[1], "diffusion kind 1 all max: order 1.00, at least 1.50 wanted");
}

TEST(MmsOrders, LargeErrorAtTwentyIsAMiss) {
    const auto misses =
        host::Misses({Scheme::Diffusion, 1, {Level(10, 4e-3, 2e-2), Level(20, 1e-3, 5e-3)}});

    ASSERT_EQ(misses.size(), 1u);
    EXPECT_EQ(misses[0], "diffusion kind 1 n = 20: L2 error 1.000e-03, at most 2.812e-04 wanted");
}

TEST(MmsOrders, NotANumberIsAMiss) {
    const double nan = std::nan("");

    EXPECT_EQ(
        host::Misses({Scheme::Diffusion, 0, {Level(10, 1e-3, 1e-3), Level(20, nan, nan)}}).size(),
        3u);
}

TEST(MmsOrders, EachGridOfAPairCounts) {
    MmsLevel coarse = Level(10, 9e-4, 2e-3);
    MmsLevel fine = Level(20, 2.25e-4, 5e-4);
    coarse.byGrid = {coarse.all, {1e-3, 1e-3}};
    fine.byGrid = {fine.all, {9e-4, 9e-4}};

    EXPECT_EQ(host::Misses({Scheme::Diffusion, 0, {coarse, fine}}).size(), 2u);
}

TEST(MmsOrders, FirstOrderSchemesHaveTheirOwnLimits) {
    EXPECT_EQ(host::LimitsOf(Scheme::Hybrid, 1, 10).orderL2, 0.8);
    EXPECT_EQ(host::LimitsOf(Scheme::UpwindCells, 1, 10).orderMax, 0.65);
    EXPECT_EQ(host::LimitsOf(Scheme::Quick, 1, 10).orderL2, 1.5);
    EXPECT_EQ(host::LimitsOf(Scheme::LinearUpwind, 1, 10).orderL2, 1.75);
    EXPECT_FALSE(host::LimitsOf(Scheme::Quick, 1, 10).l2.has_value());
    EXPECT_FALSE(host::LimitsOf(Scheme::Quick, 4, 20).l2.has_value());
}

/// The quick study: n = 10 and 20 on the single box (kind 1) and the overset pair (kind 0).
class MmsQuickStudy : public testing::TestWithParam<std::tuple<Scheme, int>> {};

TEST_P(MmsQuickStudy, ReachesOrdersAndErrorsOfTheTable) {
    const auto& [scheme, kind] = GetParam();
    MmsCase run;
    run.meshFile = ShippedMesh(boxFile);
    OutputCapture quiet;

    run.schemes = {scheme};

    const std::vector<MmsStudy> studies = host::RunKind(run, kind);

    ASSERT_EQ(studies.size(), 1u);
    for (const std::string& miss : host::Misses(studies[0])) {
        ADD_FAILURE() << miss;
    }
}

INSTANTIATE_TEST_SUITE_P(Quick, MmsQuickStudy,
                         testing::Combine(testing::Values(Scheme::Diffusion, Scheme::UpwindCells,
                                                          Scheme::UpwindStencils, Scheme::Hybrid,
                                                          Scheme::Central, Scheme::LinearUpwind,
                                                          Scheme::Quick),
                                          testing::Values(0, 1)),
                         [](const testing::TestParamInfo<std::tuple<Scheme, int>>& study) {
                             std::string word = host::Name(std::get<0>(study.param));
                             word.erase(std::remove(word.begin(), word.end(), '-'), word.end());
                             return word +
                                    (std::get<1>(study.param) == 0 ? "_OversetPair" : "_SingleBox");
                         });

/// Meshes beyond the table: prisms under a hexahedral annulus, and layers in depth.
TEST(MmsOnOtherMeshes, PrismBackgroundIsSecondOrder) {
    MmsCase run;
    run.meshFile = ShippedMesh(boxFile);
    OutputCapture quiet;

    const std::vector<MmsStudy> studies = host::RunKind(run, 4);

    ASSERT_EQ(studies.size(), 1u);
    for (const std::string& miss : host::Misses(studies[0])) {
        ADD_FAILURE() << miss;
    }
}

TEST(MmsOnOtherMeshes, LayersInDepthAreSecondOrder) {
    MmsCase run;
    run.meshFile = ShippedMesh(boxFile);
    run.depth = 0.4;  // 4 and 8 layers: refined in all three directions
    OutputCapture quiet;

    const std::vector<MmsStudy> studies = host::RunKind(run, 0);

    ASSERT_EQ(studies.size(), 1u);
    const MmsLevel& coarse = studies[0].levels[0];
    const MmsLevel& fine = studies[0].levels[1];
    EXPECT_GT(host::Order(coarse.all.l2, fine.all.l2, 10, 20), 1.75);
    EXPECT_GT(host::Order(coarse.all.max, fine.all.max, 10, 20), 1.5);
}

TEST(MmsRun, PrintsATableAndWritesResultsOfASingleGrid) {
    TempDirectory results;
    MmsCase run;
    run.meshFile = ShippedMesh(boxFile);
    run.kinds = {1};
    run.sizes = {5, 10};
    run.check = true;
    run.outputDir = results.Text();
    std::string out;
    {
        OutputCapture capture;
        EXPECT_EQ(host::RunMms(run), 0);
        out = capture.Out();
    }

    EXPECT_NE(out.find("diffusion       1    5     400  all        3.604e-03"), std::string::npos)
        << out;
    EXPECT_NE(out.find("All limits reached."), std::string::npos);
    const auto pvd = results.Path() / "kind1_n5" / "VTK_Flow_Results.pvd";
    ASSERT_TRUE(std::filesystem::exists(pvd));
    const std::string step = ReadFile(results.Path() / "kind1_n5" / "VTK_Flow_Results_0" /
                                      "VTK_Flow_Results_Itr1_T1_P0_B1.vtu");
    EXPECT_NE(step.find("NumberOfCells=\"400\""), std::string::npos);
    EXPECT_NE(step.find("Name=\"Solution\""), std::string::npos);
}

TEST(MmsRun, CheckedMissExitsWithOneLineEach) {
    MmsCase run;
    run.meshFile = ShippedMesh(boxFile);
    run.kinds = {1};
    run.sizes = {20};
    run.schemes = {Scheme::Quick};
    run.mu = 1.0;  // diffusion's error, twice that of the transport the limit was made for
    run.check = true;
    std::string err;
    {
        OutputCapture capture;
        EXPECT_EQ(host::RunMms(run), 1);
        err = capture.Err();
    }

    EXPECT_EQ(err.rfind("reference_host: quick kind 1 n = 20: L2 error", 0), 0u) << err;
}

}  // namespace
