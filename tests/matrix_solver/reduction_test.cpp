/// Elimination of trivial rows: which rows go, what is left, and the way back.

#include "matrix_solver/reduction.h"

#include <gtest/gtest.h>

#include <vector>

#include "matrix_solver/csr_system.h"
#include "plain/samples/flow_problem.h"
#include "plain/samples/problems.h"
#include "tests/matrix_solver/systems.h"

namespace {

using kvx3d_solver::CsrSystem;
using kvx3d_solver::Reduction;
using kvx3d_solver::Vector;

/// Rows 1 and 2 are cells, row 3 a ghost that follows cell 2, row 4 a ghost with the value 0.5.
Problem TwoCellsAndTwoGhosts() {
    Problem p;
    p.AddRow(1.75, {{2, -0.5}, {4, -1.0}, {3, 0.0}});
    p.AddRow(1.5, {{1, -0.5}, {3, -1.0}});
    p.AddRow(1.0, {{2, -1.0}});
    p.AddRow(1.0, {{1, 0.0}});
    p.rhs = {1.0, 0.25, 0.125, 0.5};
    return p;
}

TEST(Reduction, SubstitutesGhostsIntoTheRowsOfCells) {
    const CsrSystem full = Read(TwoCellsAndTwoGhosts());

    const Reduction reduction(full);
    const CsrSystem reduced = reduction.ReducedSystem();

    ASSERT_TRUE(reduction.Removes());
    EXPECT_EQ(reduced.rowStart, (std::vector<int>{0, 2, 4}));
    EXPECT_EQ(reduced.column, (std::vector<int>{0, 1, 0, 1}));
    EXPECT_EQ(reduced.value, (Vector{1.75, -0.5, -0.5, 0.5}));
    EXPECT_EQ(reduced.diagonal, (std::vector<int>{0, 3}));
    EXPECT_EQ(reduced.rhs, (Vector{1.5, 0.375}));
    EXPECT_EQ(reduced.rhsNorm, kvx3d_solver::Norm(reduced.rhs));
}

TEST(Reduction, ExpandsToAVectorThatFulfillsTheTrivialRows) {
    const CsrSystem full = Read(TwoCellsAndTwoGhosts());
    const Reduction reduction(full);
    Vector x(4);

    reduction.Expand({2.0, 3.0}, x);

    EXPECT_EQ(x, (Vector{2.0, 3.0, 3.125, 0.5}));
    EXPECT_EQ(reduction.Restrict(x), (Vector{2.0, 3.0}));
}

TEST(Reduction, FollowsAChainOfTiesToItsEnd) {
    Problem p;  // 1 follows 2, 2 follows 3, 3 is given; 4 follows 5, which stays
    p.AddRow(1.0, {{2, -0.5}});
    p.AddRow(1.0, {{3, -0.5}});
    p.AddRow(1.0, {});
    p.AddRow(1.0, {{5, -0.5}});
    p.AddRow(1.5, {{1, -0.5}, {4, -0.5}});
    p.rhs = {0.0, 0.0, 1.0, 0.25, 1.0};
    const CsrSystem full = Read(p);

    const Reduction reduction(full);
    const CsrSystem reduced = reduction.ReducedSystem();
    Vector x(5);
    reduction.Expand({1.0}, x);

    EXPECT_EQ(x, (Vector{0.25, 0.5, 1.0, 0.75, 1.0}));
    EXPECT_EQ(reduced.value, (Vector{1.25}));
    EXPECT_EQ(reduced.rhs, (Vector{1.0 + 0.125 + 0.125}));
}

TEST(Reduction, KeepsOneRowOfARingOfTies) {
    Problem p;
    p.AddRow(1.0, {{2, -0.5}});
    p.AddRow(1.0, {{3, -0.5}});
    p.AddRow(1.0, {{1, -0.5}});
    p.rhs = {1.0, 1.0, 1.0};
    const CsrSystem full = Read(p);

    const Reduction reduction(full);
    const CsrSystem reduced = reduction.ReducedSystem();
    Vector x(3);
    reduction.Expand({reduced.rhs[0] / reduced.value[0]}, x);

    EXPECT_EQ(reduced.n, 1);
    EXPECT_EQ(x, (Vector{2.0, 2.0, 2.0}));
}

TEST(Reduction, KeepsARowWhoseDiagonalIsSmallerThanItsOtherEntry) {
    Problem p;
    p.AddRow(1e-8, {{2, 1.0}});
    p.AddRow(1.0, {{1, 0.5}, {3, 0.5}});
    p.AddRow(0.0, {});
    p.rhs = {1.0, 1.0, 1.0};

    EXPECT_FALSE(Reduction(Read(p)).Removes());
}

TEST(Reduction, NegatesARowWhoseDiagonalBecomesNegative) {
    Problem p;  // x1 = -x2 turns the second diagonal into 0.5 - 1
    p.AddRow(1.0, {{2, 1.0}});
    p.AddRow(0.5, {{1, 1.0}, {3, 0.25}});
    p.AddRow(1.0, {{1, 0.5}, {2, 0.75}});
    p.rhs = {0.0, 1.0, 1.0};

    const CsrSystem full = Read(p);
    const CsrSystem reduced = Reduction(full).ReducedSystem();

    EXPECT_EQ(reduced.value, (Vector{0.5, -0.25, 0.25, 1.0}));
    EXPECT_EQ(reduced.rhs, (Vector{-1.0, 1.0}));
}

TEST(Reduction, LeavesASymmetricSystemOfActiveCells) {
    Problem blanked = Diffusion(6, 1.0, 1.0, 1.0);
    BlankCells(blanked, /*seed=*/38);
    for (const Problem& p : {blanked, NeumannWithOneFixedCell(6)}) {
        const CsrSystem full = Read(p);

        EXPECT_FALSE(kvx3d_solver::IsSymmetric(full));
        EXPECT_TRUE(kvx3d_solver::IsSymmetric(Reduction(full).ReducedSystem()));
    }
}

TEST(Reduction, LeavesTheActiveCellsOfAFlowProblem) {
    const int m = 32;
    const Problem p = FlowProblem(m, FlowEquation::Pressure);
    const CsrSystem full = Read(p);

    const Reduction reduction(full);
    const CsrSystem reduced = reduction.ReducedSystem();
    Vector x(full.rhs.size()), r(full.rhs.size());
    reduction.Expand(reduction.Restrict(Scaled(p, full)), x);

    EXPECT_LT(reduced.n, m * m + m * m / 2);  // the cells, of which some are blanked
    EXPECT_GT(reduced.n, m * m);
    EXPECT_LE(kvx3d_solver::Residual(full, x, r), 1e-14 * full.rhsNorm);
}

}  // namespace
