#include "reference_host/discretisation/norm.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using host::Norm;

TEST(Norm, IsTheEuclideanNormWithoutTheUnusedEntry) {
    EXPECT_EQ(Norm({}), 0.0);
    EXPECT_EQ(Norm({7.0}), 0.0);
    EXPECT_EQ(Norm({7.0, 3.0, -4.0}), 5.0);
}

TEST(Norm, SquaresNeitherVanishNorOverflow) {
    EXPECT_DOUBLE_EQ(Norm({0.0, 3e-200, 4e-200}), 5e-200);
    EXPECT_DOUBLE_EQ(Norm({0.0, 3e200, 4e200}), 5e200);
    // More entries than one block of the sum holds, with the large ones at the end.
    std::vector<double> mixed(10001, 1e-170);
    mixed.back() = 2e150;
    EXPECT_DOUBLE_EQ(Norm(mixed), 2e150);
}

TEST(Norm, OfAVectorThatIsNotFiniteIsNotFinite) {
    EXPECT_TRUE(std::isnan(Norm({0.0, 1.0, std::numeric_limits<double>::quiet_NaN()})));
    EXPECT_TRUE(std::isinf(Norm({0.0, 1.0, std::numeric_limits<double>::infinity()})));
}

}  // namespace
