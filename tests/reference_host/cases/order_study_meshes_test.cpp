#include <gtest/gtest.h>

#include <algorithm>

#include "reference_host/cases/case_mms.h"
#include "reference_host/cases/case_nonmatching.h"
#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

using host::MmsCase;
using host::Scheme;

const std::vector<Scheme> secondOrder = {Scheme::Diffusion, Scheme::Central, Scheme::LinearUpwind,
                                         Scheme::Quick};

/// An order study on one kind of mesh. All of them together take about a quarter of an hour.
struct Study {
    const char* name;
    const char* file;
    std::optional<int> kind;
    std::optional<double> depth;
    std::vector<int> sizes;
    std::optional<double> mu;
    std::vector<Scheme> schemes;
    bool eachGrid = true;  // check the limits for each grid too
};

std::ostream& operator<<(std::ostream& out, const Study& study) {
    return out << study.name;
}

class OrderStudyOn : public testing::TestWithParam<Study> {};

TEST_P(OrderStudyOn, IsWithinItsLimits) {
    const Study& study = GetParam();
    MmsCase run;
    run.meshFile = ShippedMesh(study.file);
    run.depth = study.depth;
    run.sizes = study.sizes;
    run.mu = study.mu;
    run.schemes = study.schemes;
    OutputCapture quiet;

    for (host::OrderStudy& result : host::RunKind(run, study.kind)) {
        for (host::StudyLevel& level : result.levels) {
            level.byGrid.resize(study.eachGrid ? level.byGrid.size() : 0);
        }
        for (const std::string& miss : host::Misses(result)) {
            ADD_FAILURE() << miss;
        }
    }
}

std::string StudyName(const testing::TestParamInfo<Study>& info) {
    return info.param.name;
}

constexpr const char* sphereFile = "box_sphere_overset.geo";
const std::vector<Scheme> allSchemes = {
    Scheme::Diffusion, Scheme::UpwindCells,  Scheme::UpwindStencils, Scheme::Hybrid,
    Scheme::Central,   Scheme::LinearUpwind, Scheme::Quick};

// The quick study of case_mms_test.cpp covers the single box and the overset pair.
INSTANTIATE_TEST_SUITE_P(
    Quick, OrderStudyOn,
    testing::Values(
        Study{"PrismBox", boxFile, 2, {}, {5, 10}, {}, {Scheme::Central, Scheme::Quick}},
        Study{"AnnulusAlone", boxFile, 3, {}, {10, 20}, {}, secondOrder}),
    StudyName);

INSTANTIATE_TEST_SUITE_P(Release, OrderStudyOn,
                         testing::Values(Study{"PrismBackground",
                                               boxFile,
                                               4,
                                               {},
                                               {10, 20},
                                               {},
                                               {Scheme::Diffusion, Scheme::LinearUpwind}}),
                         StudyName);

INSTANTIATE_TEST_SUITE_P(
    Full, OrderStudyOn,
    testing::Values(Study{"SingleBox", boxFile, 1, {}, {20, 40}, {}, allSchemes},
                    Study{"PrismBox", boxFile, 2, {}, {10, 20}, {}, secondOrder},
                    Study{"OversetPair", boxFile, 0, {}, {20, 40}, {}, allSchemes},
                    Study{"PrismBackground", boxFile, 4, {}, {20, 40}, {}, secondOrder},
                    Study{"AnnulusAlone", boxFile, 3, {}, {20, 40}, {}, secondOrder},
                    Study{"Layers", boxFile, 0, 0.4, {10, 20}, {}, secondOrder},
                    // Each level has other tetrahedra, so the maximum over the shell varies.
                    Study{"Sphere", sphereFile, {}, {}, {6, 9}, 0.05, secondOrder, false}),
    StudyName);

TEST(FullNonmatchingStudy, IsSecondOrderInTwoAndThreeDimensions) {
    TempDirectory results;
    host::NonmatchingCase run;
    run.meshFile = ShippedMesh("nonmatching_blocks.geo");
    // Without QUICK: its errors of convection and diffusion cancel at some size, so the order
    // between two sizes can be anything.
    run.schemes = {Scheme::Diffusion, Scheme::Central, Scheme::LinearUpwind};
    run.check = true;
    run.outputDir = results.Text();
    OutputCapture quiet;

    run.n = {20, 40};
    run.m = {32, 64};
    EXPECT_EQ(host::RunNonmatching(run), 0) << quiet.Err();
    run.n = {5, 10};
    run.m = {8, 16};
    run.parameters = {{"lz", 1}};
    EXPECT_EQ(host::RunNonmatching(run), 0) << quiet.Err();
}

}  // namespace
