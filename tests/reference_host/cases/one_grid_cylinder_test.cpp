#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "reference_host/cases/case_cylinder.h"
#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/output_capture.h"
#include "tests/support/temp_directory.h"

namespace {

using testing::HasSubstr;

/// The cylinder on one body-fitted grid, to compare the overset pair with.
host::CylinderCase OneGrid(const TempDirectory& results) {
    host::CylinderCase run;
    run.meshFile = ShippedGeo(fittedGeo);
    run.parameters = {{"n", 5}};
    run.relaxation = 0.9;
    run.outputDir = results.Text();
    return run;
}

TEST(CylinderOnOneGrid, HasTheDragOfTheBodyAndConservesMass) {
    const TempDirectory results;
    std::string out;
    {
        OutputCapture capture;
        EXPECT_EQ(host::RunCylinder(OneGrid(results)), 0);
        out = capture.Out();
    }

    const auto figure = [&out](const std::string& name) {
        const std::size_t at = out.rfind("\n  " + name + " ");
        EXPECT_NE(at, std::string::npos) << out;
        return std::stod(out.substr(at + 3 + name.size()));
    };
    // Regression limits. The sides of the channel would add a friction of several units to the
    // drag.
    EXPECT_NEAR(figure("Cd"), 5.5795, 0.012 * 5.5795);
    EXPECT_NEAR(figure("pressure difference"), 0.11752, 0.03 * 0.11752);
    EXPECT_NEAR(figure("mass defect"), 0.0, 1e-6);
}

TEST(CylinderOnOneGrid, HasNoLimitsToCheck) {
    const TempDirectory results;
    host::CylinderCase run = OneGrid(results);
    run.check = true;
    const OutputCapture quiet;

    EXPECT_THAT(ErrorOf([&] { host::RunCylinder(run); }),
                HasSubstr("the limits are for an overset pair, not for one grid"));
}

}  // namespace
