#include <gtest/gtest.h>

#include <string>

#include "reference_host/cases/case_mms.h"
#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"

namespace {

/// A square component turned by some angle, in place of the round one of the other studies.
struct Square {
    double angle;        ///< [degrees]
    double body;         ///< half the side of the body; 0: no body
    double ratio = 1.0;  ///< component cells per background cell
};

class DiffusionOnATurnedSquare : public testing::TestWithParam<Square> {};

TEST_P(DiffusionOnATurnedSquare, IsSecondOrderAndAsAccurateAsOnTheAnnulus) {
    host::MmsCase run;
    run.meshFile = ShippedMesh("box_square_overset.geo");
    run.parameters = {
        {"angle", GetParam().angle}, {"b", GetParam().body}, {"ratio", GetParam().ratio}};
    OutputCapture quiet;

    const host::OrderStudy study = host::RunKind(run, std::nullopt).at(0);

    for (const std::string& miss : host::Misses(study)) {
        ADD_FAILURE() << miss;
    }
    const host::StudyLevel& coarse = study.levels[0];
    const host::StudyLevel& fine = study.levels[1];
    EXPECT_GT(host::Order(coarse.all.l2, fine.all.l2, 10, 20), 1.9);
    // With n = 20 the error on the box with the annulus is 2.44e-4.
    EXPECT_LT(fine.all.l2, 1.05 * 2.44e-4);
}

std::string SquareName(const testing::TestParamInfo<Square>& square) {
    return std::to_string(static_cast<int>(square.param.angle)) +
           (square.param.body > 0.0 ? "DegreesWithBody" : "Degrees") + "Ratio" +
           std::to_string(static_cast<int>(square.param.ratio));
}

INSTANTIATE_TEST_SUITE_P(Angles, DiffusionOnATurnedSquare,
                         testing::Values(Square{30.0, 0.0}, Square{45.0, 0.4}), SquareName);

INSTANTIATE_TEST_SUITE_P(ReleaseAngles, DiffusionOnATurnedSquare,
                         testing::Values(Square{0.0, 0.0}, Square{15.0, 0.0}, Square{45.0, 0.0},
                                         Square{60.0, 0.0}, Square{30.0, 0.0, 2.0}),
                         SquareName);

INSTANTIATE_TEST_SUITE_P(FullAngles, DiffusionOnATurnedSquare,
                         testing::Values(Square{30.0, 0.4}, Square{0.0, 0.0, 2.0},
                                         Square{45.0, 0.4, 2.0}, Square{30.0, 0.4, 4.0}),
                         SquareName);

/// With such cells some faces need 9 or 10 searches for a donor.
TEST(DiffusionOnACoarseTurnedSquare,
     IsSecondOrderWithAnErrorBelowOneAndAHalfTimesThatOfEqualCells) {
    host::MmsCase run;
    run.meshFile = ShippedMesh("box_square_overset.geo");
    run.parameters = {{"angle", 45.0}, {"b", 0.4}, {"ratio", 0.75}};
    OutputCapture quiet;

    const host::OrderStudy study = host::RunKind(run, std::nullopt).at(0);

    EXPECT_GT(host::Order(study.levels[0].all.l2, study.levels[1].all.l2, 10, 20), 1.7);
    EXPECT_LT(study.levels[1].all.l2, 1.5 * 2.44e-4);
}

}  // namespace
