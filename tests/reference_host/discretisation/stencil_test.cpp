#include "reference_host/discretisation/stencil.h"

#include <gtest/gtest.h>

namespace {

using host::GradientStencil;
using host::Stencil;
using host::Vec3;

TEST(StencilSum, TermsOfOneColumnAreAddedInPlace) {
    Stencil stencil(7, 2.0);
    stencil.Add(3, 1.0);

    stencil.Add(7, -0.5);

    ASSERT_EQ(stencil.Terms().size(), 2u);
    EXPECT_EQ(stencil.Terms()[0].column, 7);
    EXPECT_EQ(stencil.Weight(7), 1.5);
    EXPECT_EQ(stencil.Weight(3), 1.0);
    EXPECT_EQ(stencil.Weight(4), 0.0);
    EXPECT_EQ(stencil.Sum(), 2.5);
}

TEST(StencilSum, AddsAMultipleOfAnotherStencil) {
    Stencil stencil(1);
    Stencil other(1, 4.0);
    other.Add(2, 8.0);

    stencil.Add(other, 0.25);

    EXPECT_EQ(stencil.Weight(1), 2.0);
    EXPECT_EQ(stencil.Weight(2), 2.0);
}

TEST(StencilSum, AppliesToAFieldByCellId) {
    Stencil stencil(2, 3.0);
    stencil.Add(1, -1.0);

    EXPECT_EQ(stencil.Apply({99.0, 5.0, 7.0}), 3.0 * 7.0 - 5.0);
}

TEST(StencilSum, GradientAlongADirectionLeavesOutTermsOfWeightZero) {
    GradientStencil gradient;
    gradient.Add(1, Vec3(2.0, 0.0, 0.0));
    gradient.Add(2, Vec3(0.0, 4.0, 0.0));
    gradient.Add(1, Vec3(1.0, 0.0, 0.0));

    const Stencil along = gradient.Along(Vec3(1.0, 0.0, 5.0));

    ASSERT_EQ(along.Terms().size(), 1u);
    EXPECT_EQ(along.Weight(1), 3.0);
    EXPECT_EQ(gradient.Apply({0.0, 1.0, 10.0}), Vec3(3.0, 40.0, 0.0));
}

}  // namespace
