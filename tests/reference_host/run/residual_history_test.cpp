#include "reference_host/run/residual_history.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/temp_directory.h"

namespace {

using testing::HasSubstr;

TEST(ResidualHistory, HasColumnNamesAndOneLinePerIterationWithEmptyFieldsOnASingleGrid) {
    const TempDirectory directory;
    const auto path = directory.Path() / "history.csv";
    host::ResidualHistory history(path.string());

    host::ControlFigures control;
    control.cdOuter = 5.75;
    history.Add(1, 0.5, 1.25, 5.5, -0.01, 0.125, control);
    control.cdOverset = 5.25;
    control.cdHole = 5.125;
    control.interfaceMass = -0.0025;
    history.Add(2, 0.5, 1.25, 5.5, -0.01, 0.125, control);

    // Read before the file is closed, as a plot of a run in progress does.
    EXPECT_EQ(ReadFile(path),
              "iteration,velocity_change,mass_residual,cd,cl,linear_reduction,"
              "cd_overset,cd_hole,cd_outer,interface_mass\n"
              "1,5.000000e-01,1.250000e+00,5.5,-0.01,1.250e-01,,,5.75,\n"
              "2,5.000000e-01,1.250000e+00,5.5,-0.01,1.250e-01,5.25,5.125,5.75,-0.0025\n");
}

TEST(ResidualHistory, HasEmptyForcesWithoutABody) {
    const TempDirectory directory;
    const auto path = directory.Path() / "history.csv";
    host::ResidualHistory history(path.string());

    history.Add(1, 0.5, 1.25, std::nullopt, std::nullopt, 0.125, {});

    EXPECT_THAT(ReadFile(path), HasSubstr("\n1,5.000000e-01,1.250000e+00,,,1.250e-01,,,,\n"));
}

TEST(ResidualHistory, LineLostOnAFullDiskIsReported) {
    host::ResidualHistory history("/dev/full");
    EXPECT_EQ(ErrorOf([&] { history.RequireWhole(); }), "");

    history.Add(1, 0.5, 0.25, 1.0, 0.0, 0.125, {});

    EXPECT_EQ(ErrorOf([&] { history.RequireWhole(); }),
              "/dev/full: some iterations could not be written");
}

TEST(ResidualHistory, FileThatCannotBeOpenedIsNamed) {
    EXPECT_THAT(ErrorOf([] { host::ResidualHistory("/proc/history.csv"); }),
                HasSubstr("/proc/history.csv cannot be written"));
}

}  // namespace
