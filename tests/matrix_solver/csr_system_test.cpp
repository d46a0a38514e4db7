/// The copy that the methods work on: order, signs, scale and symmetry.

#include "matrix_solver/csr_system.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "plain/samples/problems.h"
#include "tests/matrix_solver/systems.h"

namespace {

using kvx3d_solver::CsrSystem;
using kvx3d_solver::Vector;

TEST(CsrSystem, SortsRowsAndNegatesThoseWithANegativeDiagonal) {
    Problem p;
    p.AddRow(1.0, {{3, 0.5}, {2, 0.25}});
    p.AddRow(-1.5, {{1, 0.5}});
    p.AddRow(1.0, {});
    p.rhs = {1.0, 1.0, 1.5};

    const CsrSystem system = Read(p);

    EXPECT_EQ(system.rowStart, (std::vector<int>{0, 3, 5, 6}));
    EXPECT_EQ(system.column, (std::vector<int>{0, 1, 2, 0, 1, 2}));
    EXPECT_EQ(system.value, (Vector{1.0, 0.25, 0.5, -0.5, 1.5, 1.0}));
    EXPECT_EQ(system.diagonal, (std::vector<int>{0, 4, 5}));
    EXPECT_EQ(system.rhs, (Vector{1.0, -1.0, 1.5}));
    EXPECT_EQ(system.solutionExponent, 0);
}

TEST(CsrSystem, DividesMatrixAndRightHandSideByPowersOfTwo) {
    Problem p;
    p.AddRow(12.0, {});
    p.rhs = {3.0};

    const CsrSystem system = Read(p);

    EXPECT_EQ(system.value, (Vector{1.5}));
    EXPECT_EQ(system.rhs, (Vector{1.5}));
    EXPECT_EQ(system.solutionExponent, 1 - 3);  // x = 1 here, 0.25 for the caller
}

TEST(CsrSystem, ResidualOfAValueThatIsNotFiniteIsInfinite) {
    const CsrSystem system = Read(Diffusion(2, 1.0, 1.0, 1.0));
    Vector x(8, 0.0), r(8);
    x[4] = std::nan("");

    EXPECT_EQ(kvx3d_solver::Residual(system, x, r), HUGE_VAL);
}

TEST(CsrSystem, IsSymmetricWhereEveryEntryHasAnEqualPartner) {
    Problem negated = Diffusion(6, 1.0, 2.0, 3.0);
    NegateHalfOfTheRows(negated, /*seed=*/37);
    EXPECT_TRUE(kvx3d_solver::IsSymmetric(Read(Diffusion(6, 1.0, 2.0, 3.0))));
    EXPECT_TRUE(kvx3d_solver::IsSymmetric(Read(negated)));

    Problem changed = Diffusion(6, 1.0, 2.0, 3.0);
    changed.Aa[1] *= 1.0 + 1e-6;
    EXPECT_FALSE(kvx3d_solver::IsSymmetric(Read(changed)));
    EXPECT_FALSE(kvx3d_solver::IsSymmetric(Read(ConvectionDiffusion(6, 1.0))));
}

TEST(CsrSystem, IsNotSymmetricWhereAnEntryHasNoPartner) {
    for (const bool below : {false, true}) {
        Problem p;
        p.AddRow(1.0, {{2, -0.25}});
        p.AddRow(1.0, {{1, -0.25}, {3, below ? -0.25 : -0.5}});
        p.AddRow(1.0, {{2, -0.25}});
        p.rhs = {1.0, 1.0, 1.0};
        EXPECT_EQ(kvx3d_solver::IsSymmetric(Read(p)), below);

        Problem oneSided;
        oneSided.AddRow(1.0, below ? std::vector<Problem::Neighbor>{{2, -0.25}}
                                   : std::vector<Problem::Neighbor>{{2, -0.25}, {3, -0.25}});
        oneSided.AddRow(1.0, {{1, -0.25}});
        oneSided.AddRow(1.0, below ? std::vector<Problem::Neighbor>{{1, -0.25}}
                                   : std::vector<Problem::Neighbor>{{2, -1e-9}});
        oneSided.rhs = {1.0, 1.0, 1.0};
        EXPECT_FALSE(kvx3d_solver::IsSymmetric(Read(oneSided)));
    }
}

TEST(CsrSystem, SortsALongRowToo) {
    const Problem p = Dense(100, 1.0, /*seed=*/30);  // beyond the rows that insertion sort serves

    const CsrSystem system = Read(p);

    for (int i = 0; i < p.n; ++i) {
        for (int k = system.rowStart[i]; k < system.rowStart[i + 1]; ++k) {
            ASSERT_EQ(system.column[k], k - system.rowStart[i]) << i;
        }
        EXPECT_EQ(system.diagonal[i], system.rowStart[i] + i);
    }
}

}  // namespace
