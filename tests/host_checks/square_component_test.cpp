#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "host_checks/host_checks.h"
#include "plain/samples/block_host.h"
#include "tests/host_checks/faults.h"
#include "tests/support/output_capture.h"

namespace {

using kvx3d::checks::Point;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;

constexpr double pi = 3.14159265358979323846;

/// A background of 40 x 40 square cells of the size 0.1 under a turned square with sides
/// of about 2.
class SquareHost : public BlockHost {
public:
    /// @param angle  by which the square is turned [degrees]
    /// @param size   of its cells
    /// @param cellsPerSide  an even number
    SquareHost(double angle, double size, int cellsPerSide) {
        Block background;
        background.n = {40, 40, 1};
        background.node = [](int i, int j, int k) { return Point{0.1 * i, 0.1 * j, 0.1 * k}; };
        background.sides = {inlet, outlet, wall, wall, symmetry, symmetry};
        Add(background);
        const double cosine = std::cos(angle * pi / 180.0), sine = std::sin(angle * pi / 180.0);
        Block square;
        const int half = cellsPerSide / 2;
        square.n = {2 * half, 2 * half, 1};
        square.node = [=](int i, int j, int k) {
            const double u = size * (i - half), v = size * (j - half);
            return Point{2.0137 + u * cosine - v * sine, 1.9929 + u * sine + v * cosine, 0.1 * k};
        };
        square.sides = {overset, overset, overset, overset, symmetry, symmetry};
        square.group = 1;
        Add(square);
    }
};

class TurnedSquare : public testing::TestWithParam<std::tuple<double, double>> {};

TEST_P(TurnedSquare, IsAcceptedAndCutsOneHoleWithDonorsAfterFewSearches) {
    const auto& [angle, size] = GetParam();
    const int cellsPerSide = size > 0.08 ? 20 : static_cast<int>(std::lround(2.0 / size));
    SquareHost host(angle, size, cellsPerSide);
    const OutputCapture quiet;

    const kvx3d::checks::Verdict verdict = kvx3d::checks::MaySetUp(host.gv, host.fvm);
    CKVXOversetMesh overset;
    overset.SetFVM(&host.gv, &host.fvm);
    const kvx3d::checks::Soundness soundness = kvx3d::checks::Assess(host.gv, host.fvm, overset);

    EXPECT_EQ(TextsOf(verdict.faults), "");
    EXPECT_EQ(TextsOf(soundness.faults), "");
    // The hole is the square without a margin of 2 background cells, give or take the cells at
    // its sides that are cut or not by where their centers lie.
    const double side = cellsPerSide * size / 0.1 - 4.0;
    EXPECT_THAT(soundness.grids[0].cutPieces,
                ElementsAre(testing::AllOf(Ge((side - 0.6) * (side - 0.6)),
                                           Le((side + 0.6) * (side + 0.6)))));
    EXPECT_LE(soundness.hole.mostTries, 5);
    EXPECT_EQ(soundness.outer.mostTries, 1);
}

INSTANTIATE_TEST_SUITE_P(AnglesAndCellSizes, TurnedSquare,
                         testing::Combine(testing::Values(0.0, 15.0, 30.0, 45.0, 60.0),
                                          testing::Values(0.025, 0.05, 0.09, 0.1, 0.11)));

}  // namespace
