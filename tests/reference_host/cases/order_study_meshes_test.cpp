#include <gtest/gtest.h>

#include <algorithm>

#include "reference_host/cases/case_nonmatching.h"
#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

using host::MmsCase;
using host::MmsStudy;
using host::Scheme;

const std::vector<Scheme> secondOrder = {Scheme::Diffusion, Scheme::Central, Scheme::LinearUpwind,
                                         Scheme::Quick};

/// A kind of mesh that the study goes over, with sizes a quarter of an hour can pay for.
struct Study {
    const char* name;
    const char* file;
    std::optional<int> kind;
    std::optional<double> depth;
    std::vector<int> sizes;
    std::optional<double> mu;
    std::vector<Scheme> schemes;
    bool eachGrid = true;  // limits for each grid, not for all cells only
};

std::ostream& operator<<(std::ostream& out, const Study& study) {
    return out << study.name;
}

class OrderStudy : public testing::TestWithParam<Study> {};

TEST_P(OrderStudy, KeepsItsLimits) {
    const Study& study = GetParam();
    MmsCase run;
    run.meshFile = ShippedMesh(study.file);
    run.depth = study.depth;
    run.sizes = study.sizes;
    run.mu = study.mu;
    run.schemes = study.schemes;
    OutputCapture quiet;

    for (MmsStudy& result : host::RunKind(run, study.kind)) {
        for (host::MmsLevel& level : result.levels) {
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

// Beyond the box and the pair of the mms case's own quick study.
INSTANTIATE_TEST_SUITE_P(
    Quick, OrderStudy,
    testing::Values(
        Study{"PrismBox", boxFile, 2, {}, {10, 20}, {}, {Scheme::Central, Scheme::Quick}},
        Study{"AnnulusAlone", boxFile, 3, {}, {10, 20}, {}, secondOrder},
        Study{"PrismBackground", boxFile, 4, {}, {10, 20}, {}, {Scheme::LinearUpwind}}),
    StudyName);

INSTANTIATE_TEST_SUITE_P(
    Full, OrderStudy,
    testing::Values(Study{"SingleBox", boxFile, 1, {}, {20, 40}, {}, allSchemes},
                    Study{"OversetPair", boxFile, 0, {}, {20, 40}, {}, allSchemes},
                    Study{"PrismBackground", boxFile, 4, {}, {20, 40}, {}, secondOrder},
                    Study{"AnnulusAlone", boxFile, 3, {}, {20, 40}, {}, secondOrder},
                    Study{"Layers", boxFile, 0, 0.4, {10, 20}, {}, secondOrder},
                    // Tetrahedra are new ones on each level: the worst of them is no measure.
                    Study{"Sphere", sphereFile, {}, {}, {6, 9}, 0.05, secondOrder, false}),
    StudyName);

TEST(FullNonmatchingStudy, IsSecondOrderInTwoAndThreeDimensions) {
    TempDirectory results;
    host::NonmatchingCase run;
    run.meshFile = ShippedMesh("nonmatching_blocks.geo");
    // Without QUICK: where its two errors cancel on the way down it stays below any order.
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
