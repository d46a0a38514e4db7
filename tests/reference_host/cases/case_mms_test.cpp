#include "reference_host/cases/case_mms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

using host::MmsCase;
using host::OrderStudy;
using host::Scheme;
using host::StudyLevel;

/// The quick study: n = 10 and 20 on the single box (kind 1) and on the overset pair (kind 0).
class MmsQuickStudy : public testing::TestWithParam<std::tuple<Scheme, int>> {};

TEST_P(MmsQuickStudy, IsWithinTheLimitsOfOrderAndError) {
    const auto& [scheme, kind] = GetParam();
    MmsCase run;
    run.schemes = {scheme};
    OutputCapture quiet;

    const std::vector<OrderStudy> studies = host::RunKind(run, kind);

    ASSERT_EQ(studies.size(), 1u);
    for (const std::string& miss : host::Misses(studies[0])) {
        ADD_FAILURE() << miss;
    }
}

std::string SchemeAndMesh(const testing::TestParamInfo<std::tuple<Scheme, int>>& study) {
    std::string word = host::Name(std::get<0>(study.param));
    word.erase(std::remove(word.begin(), word.end(), '-'), word.end());
    return word + (std::get<1>(study.param) == 0 ? "_OversetPair" : "_SingleBox");
}

INSTANTIATE_TEST_SUITE_P(Quick, MmsQuickStudy,
                         testing::Combine(testing::Values(Scheme::Diffusion, Scheme::LinearUpwind),
                                          testing::Values(0, 1)),
                         SchemeAndMesh);

INSTANTIATE_TEST_SUITE_P(ReleaseQuick, MmsQuickStudy,
                         testing::Combine(testing::Values(Scheme::UpwindCells,
                                                          Scheme::UpwindStencils, Scheme::Hybrid,
                                                          Scheme::Central, Scheme::Quick),
                                          testing::Values(0, 1)),
                         SchemeAndMesh);

TEST(MmsInThreeDimensions, IsSecondOrder) {
    MmsCase run;
    run.meshFile = ShippedMesh(boxFile);
    run.sizes = {5, 10};
    run.depth = 0.4;  // 2 and 4 cells, so the mesh is refined in all three directions
    OutputCapture quiet;

    const std::vector<OrderStudy> studies = host::RunKind(run, 0);

    ASSERT_EQ(studies.size(), 1u);
    const StudyLevel& coarse = studies[0].levels[0];
    const StudyLevel& fine = studies[0].levels[1];
    EXPECT_GT(host::Order(coarse.all.l2, fine.all.l2, 5, 10), 1.75);
    EXPECT_GT(host::Order(coarse.all.max, fine.all.max, 5, 10), 1.5);
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
    EXPECT_NE(out.find("All figures are within their limits."), std::string::npos);
    const auto pvd = results.Path() / "kind1_n5" / "VTK_Flow_Results.pvd";
    ASSERT_TRUE(std::filesystem::exists(pvd));
    const std::string step = ReadFile(results.Path() / "kind1_n5" / "VTK_Flow_Results_0" /
                                      "VTK_Flow_Results_Itr1_T1_P0_B1.vtu");
    EXPECT_NE(step.find("NumberOfCells=\"400\""), std::string::npos);
    EXPECT_NE(step.find("Name=\"Solution\""), std::string::npos);
}

TEST(MmsRun, RefusesToCheckWithoutLimits) {
    MmsCase run;
    run.meshFile = ShippedMesh(boxFile);
    run.check = true;

    run.kinds = {1};
    run.sizes = {10};
    EXPECT_THROW(host::RunMms(run), std::runtime_error);
    run.kinds = {0, 3};
    run.sizes = {20};
    EXPECT_THROW(host::RunMms(run), std::runtime_error);
}

TEST(MmsRun, FigureOutsideItsLimitExitsWithOneLine) {
    MmsCase run;
    run.meshFile = ShippedMesh(boxFile);
    run.kinds = {1};
    run.sizes = {20};
    run.schemes = {Scheme::Quick};
    run.mu = 1.0;  // the limit is for the default 0.01, where the error is half as large
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
