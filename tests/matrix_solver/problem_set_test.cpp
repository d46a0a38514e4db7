/// The kinds of systems a finite-volume host sends, and some it should not: each through the
/// solver as built, through its sparse LU first, and through the methods of a bare build.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "matrix_solver/matrix_solver.h"
#include "matrix_solver/multigrid.h"
#include "matrix_solver/sparse_lu.h"
#include "plain/samples/problems.h"
#include "tests/matrix_solver/solver_calls.h"

namespace {

constexpr int m = 14;             // cells per side: 2744 rows, enough for two multigrid levels
constexpr double slack = 1.0001;  // the test sums the residual in another order and precision

struct Case {
    std::string name;
    std::function<Problem()> make;
    double errorBound;  ///< at a tolerance of 1e-8: the tolerance times the condition met
};

void PrintTo(const Case& c, std::ostream* out) {
    *out << c.name;
}

Problem Changed(Problem problem, void (*change)(Problem&, unsigned)) {
    change(problem, /*seed=*/3);
    return problem;
}

std::vector<Case> Cases() {
    return {
        {"Poisson", [] { return Diffusion(m, 1.0, 1.0, 1.0); }, 1e-5},
        {"CellPeclet10", [] { return ConvectionDiffusion(m, 10.0); }, 1e-5},
        {"CellPeclet1000", [] { return ConvectionDiffusion(m, 1000.0); }, 1e-5},
        {"Anisotropic", [] { return Diffusion(m, 1.0, 1.0, 100.0); }, 1e-4},
        {"CoefficientJump", [] { return JumpingDiffusion(m, 1e6); }, 1e-2},
        {"NeumannWithOneFixedCell", [] { return NeumannWithOneFixedCell(m); }, 1e-3},
        {"HalfOfTheRowsNegated",
         [] { return Changed(Diffusion(m, 1.0, 1.0, 1.0), NegateHalfOfTheRows); }, 1e-5},
        {"BlankedCells", [] { return Changed(Diffusion(m, 1.0, 1.0, 1.0), BlankCells); }, 1e-5},
        {"BlankedConvection", [] { return Changed(ConvectionDiffusion(m, 10.0), BlankCells); },
         1e-5},
        {"RandomSparse", [] { return RandomSparse(m * m * m, 6, /*seed=*/5); }, 1e-5},
    };
}

class ProblemSet : public testing::TestWithParam<Case> {};

TEST_P(ProblemSet, IsSolvedToTolerance) {
    const Problem problem = GetParam().make();
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveAndWatch(problem, x);

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(RelativeResidual(problem, x), 1e-8 * slack);
    EXPECT_LE(LargestError(problem, x), GetParam().errorBound);
}

TEST_P(ProblemSet, IsSolvedByTheMethodsOfABareBuild) {
    const Problem problem = GetParam().make();
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveWithoutLibraries(problem, x);

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(RelativeResidual(problem, x), 1e-8 * slack);
    EXPECT_LE(LargestError(problem, x), GetParam().errorBound);
}

TEST_P(ProblemSet, IsSolvedToRoundingBySparseLu) {
    if (!kvx3d_solver::HasSparseLu()) {
        GTEST_SKIP() << "this build has no sparse LU";
    }
    const Problem problem = GetParam().make();
    std::vector<double> x(problem.n, 0.0);

    // No iteration is allowed, so nothing but a factorisation can succeed.
    const int status = SolveAndWatch(problem, x, {1e-12, 0, 1});

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(RelativeResidual(problem, x), 1e-12 * slack);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ProblemSet, testing::ValuesIn(Cases()),
                         [](const auto& tested) { return tested.param.name; });

TEST(ProblemSetHard, RowsOfAnyScaleAreSolvedToTheErrorBySparseLu) {
    // The norm sees only the large rows; a factorisation gets the small ones right as well.
    if (!kvx3d_solver::HasSparseLu()) {
        GTEST_SKIP() << "this build has no sparse LU";
    }
    Problem problem = Diffusion(m, 1.0, 1.0, 1.0);
    ScaleRows(problem, /*seed=*/3);
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveAndWatch(problem, x, {1e-8, 100000, 1});

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(LargestError(problem, x), 1e-10);
}

TEST(ProblemSetHard, RowsOfAnyScaleAreIteratedToTheResidual) {
    Problem problem = ConvectionDiffusion(m, 10.0);
    ScaleRows(problem, /*seed=*/3);
    std::vector<double> x(problem.n, 0.0), y(problem.n, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved);
    EXPECT_EQ(SolveWithoutLibraries(problem, y), CKVXMatrixSolver::Solved);

    EXPECT_LE(RelativeResidual(problem, x), 1e-8 * slack);
    EXPECT_LE(RelativeResidual(problem, y), 1e-8 * slack);
}

TEST(ProblemSetHard, ClosedWallsGiveASolutionWithoutAHugeConstant) {
    // Singular but consistent: the residual bears any constant, a host does not.
    const Problem problem = PureNeumann(24);
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveAndWatch(problem, x);

    double largest = 0.0;
    for (const double v : x) {
        largest = std::max(largest, std::fabs(v));
    }
    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(RelativeResidual(problem, x), 1e-8 * slack);
    EXPECT_LT(largest, 100.0);
}

TEST(ProblemSetHard, ClosedWallsAreSolvedToRounding) {
    const Problem problem = PureNeumann(48);
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveWithoutLibraries(problem, x, {1e-13, 40, 0});

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(RelativeResidual(problem, x), 1e-13 * 1.1);
}

TEST(ProblemSetHard, FourteenDigitsAreReached) {
    const Problem problem = Diffusion(m, 1.0, 1.0, 1.0);
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveAndWatch(problem, x, {1e-14, 100000, 0});

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(RelativeResidual(problem, x), 1e-14 * 1.1);
}

TEST(ProblemSetHard, AToleranceOfZeroLeavesTheBestIterate) {
    const Problem problem = ConvectionDiffusion(m, 10.0);
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveAndWatch(problem, x, {0.0, 300, 0});

    EXPECT_EQ(status, CKVXMatrixSolver::ToleranceMissed);
    EXPECT_LE(RelativeResidual(problem, x), 1e-13);
}

TEST(ProblemSetHard, ADiagonalSystemIsSolvedInSilence) {
    Problem problem;
    for (int i = 0; i < 5000; ++i) {
        problem.AddRow(i % 2 ? -2.0 : 3.0, {});
    }
    problem.ChooseSolution(/*seed=*/7);
    std::vector<double> x(problem.n, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved);

    EXPECT_LE(LargestError(problem, x), 1e-12);
}

TEST(ProblemSetHard, ManyUncoupledPairsAreSolvedInSilence) {
    // Coarsening ends with every pair in an aggregate of its own and nothing left to couple.
    Problem problem;
    for (int i = 1; i <= 6000; i += 2) {
        problem.AddRow(1.0, {{i + 1, -0.999999}});
        problem.AddRow(1.0, {{i, -0.999999}});
    }
    problem.ChooseSolution(/*seed=*/8);
    std::vector<double> x(problem.n, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved);

    EXPECT_LE(RelativeResidual(problem, x), 1e-8 * slack);
}

TEST(PairwiseMultigrid, EndsAPoissonProblemInFewSteps) {
    for (const Problem& problem : {Diffusion(40, 1.0, 1.0, 1.0), NeumannWithOneFixedCell(40)}) {
        std::vector<double> x(problem.n, 0.0);

        const int status = SolveWithoutLibraries(problem, x, {1e-8, 30, 0});

        EXPECT_EQ(status, CKVXMatrixSolver::Solved);
        EXPECT_LE(RelativeResidual(problem, x), 1e-8 * slack);
    }
}

TEST(Multigrid, EndsADiffusionProblemThatIlu0CannotEndInAsManySteps) {
    if (!kvx3d_solver::HasMultigrid()) {
        GTEST_SKIP() << "this build has no multigrid";
    }
    // Not symmetric, and 64000 rows: neither conjugate gradients nor a sparse LU step in.
    Problem problem = NeumannWithOneFixedCell(40);
    for (int row = 0; row < problem.n; row += 2) {
        for (int k = problem.Ia[row] - 1; k < problem.Ia[row + 1] - 1; ++k) {
            problem.Aa[k] *= 2.0;
        }
        problem.rhs[row] *= 2.0;
    }
    std::vector<double> x(problem.n, 0.0), y(problem.n, 0.0);
    const Call call{1e-8, 20, 0};

    const int status = SolveAndWatch(problem, x, call);
    const int bareStatus = SolveWithoutLibraries(problem, y, call);

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_EQ(bareStatus, CKVXMatrixSolver::ToleranceMissed);
}

}  // namespace
