/// The kinds of systems that a finite-volume host sends, and some harder ones: each through the
/// library as a host calls it, by the sparse LU first, and without the sparse LU.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "matrix_solver/matrix_solver.h"
#include "plain/samples/flow_problem.h"
#include "plain/samples/problems.h"
#include "tests/matrix_solver/solver_calls.h"

namespace {

constexpr int m = 14;             // cells per side: 2744 rows, enough for two multigrid levels
constexpr double slack = 1.0001;  // the test sums the residual in another order and precision

struct Case {
    std::string name;
    std::function<Problem()> make;
    double errorBound;  ///< at a tolerance of 1e-8, about the tolerance times the condition
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
        {"FlowPressure", [] { return FlowProblem(2 * m, FlowEquation::Pressure); }, 1e-4},
        {"FlowMomentum", [] { return FlowProblem(2 * m, FlowEquation::Momentum); }, 1e-5},
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

TEST_P(ProblemSet, IsSolvedByIterations) {
    const Problem problem = GetParam().make();
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveByIterations(problem, x);

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(RelativeResidual(problem, x), 1e-8 * slack);
    EXPECT_LE(LargestError(problem, x), GetParam().errorBound);
}

TEST_P(ProblemSet, IsSolvedToRoundingBySparseLu) {
    const Problem problem = GetParam().make();
    std::vector<double> x(problem.n, 0.0);

    // No iteration is allowed, so only a factorization can succeed.
    const int status = SolveAndWatch(problem, x, {1e-12, 0, 1});

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(RelativeResidual(problem, x), 1e-12 * slack);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ProblemSet, testing::ValuesIn(Cases()),
                         [](const auto& tested) { return tested.param.name; });

TEST(ProblemSetHard, RowsOfDifferentScaleAreSolvedAccuratelyBySparseLu) {
    // The norm depends on the large rows only, but a factorization solves the small ones as well.
    Problem problem = Diffusion(m, 1.0, 1.0, 1.0);
    ScaleRows(problem, /*seed=*/3);
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveAndWatch(problem, x, {1e-8, 100000, 1});

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(LargestError(problem, x), 1e-10);
}

TEST(ProblemSetHard, RowsOfDifferentScaleAreSolvedToTheResidual) {
    Problem problem = ConvectionDiffusion(m, 10.0);
    ScaleRows(problem, /*seed=*/3);
    std::vector<double> x(problem.n, 0.0), y(problem.n, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved);
    EXPECT_EQ(SolveByIterations(problem, y), CKVXMatrixSolver::Solved);

    EXPECT_LE(RelativeResidual(problem, x), 1e-8 * slack);
    EXPECT_LE(RelativeResidual(problem, y), 1e-8 * slack);
}

TEST(ProblemSetHard, ClosedWallsGiveASolutionWithoutAHugeConstant) {
    // The system is singular but consistent: any constant may be added without changing the
    // residual, but a host needs values of a useful size.
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

    const int status = SolveByIterations(problem, x, {1e-13, 40, 0});

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

TEST(ProblemSetHard, ADiagonalSystemIsSolved) {
    Problem problem;
    for (int i = 0; i < 5000; ++i) {
        problem.AddRow(i % 2 ? -2.0 : 3.0, {});
    }
    problem.ChooseSolution(/*seed=*/7);
    std::vector<double> x(problem.n, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved);

    EXPECT_LE(LargestError(problem, x), 1e-12);
}

TEST(ProblemSetHard, ManyUncoupledPairsAreSolved) {
    // Each row of a pair is tied to the other, so one of the two is eliminated.
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

TEST(ProblemSetSteps, APoissonProblemIsSolvedInFewSteps) {
    for (const Problem& problem : {Diffusion(40, 1.0, 1.0, 1.0), NeumannWithOneFixedCell(40)}) {
        std::vector<double> x(problem.n, 0.0);

        const int status = SolveByIterations(problem, x, {1e-8, 30, 0});

        EXPECT_EQ(status, CKVXMatrixSolver::Solved);
        EXPECT_LE(RelativeResidual(problem, x), 1e-8 * slack);
    }
}

TEST(ProblemSetSteps, AProblemThatIsNotSymmetricIsSolvedInFewStepsToo) {
    // 64000 rows, too many for the sparse LU. ILU(0)-BiCGSTAB takes 73 steps.
    Problem problem = NeumannWithOneFixedCell(40);
    for (int row = 0; row < problem.n; row += 2) {
        for (int k = problem.Ia[row] - 1; k < problem.Ia[row + 1] - 1; ++k) {
            problem.Aa[k] *= 2.0;
        }
        problem.rhs[row] *= 2.0;
    }
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveAndWatch(problem, x, {1e-8, 30, 0});

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
}

TEST(ProblemSetSteps, AFlowProblemIsSolvedInFewSteps) {
    // ILU(0)-BiCGSTAB takes 74 steps.
    const Problem problem = FlowProblem(64, FlowEquation::Pressure);
    std::vector<double> x(problem.n, 0.0);

    const int status = SolveByIterations(problem, x, {1e-8, 30, 0});

    EXPECT_EQ(status, CKVXMatrixSolver::Solved);
    EXPECT_LE(RelativeResidual(problem, x), 1e-8 * slack);
}

TEST(ProblemSetHard, ADiagonalSystemNeedsNoIteration) {
    Problem problem;
    for (int i = 0; i < 100; ++i) {
        problem.AddRow(3.0, {});
    }
    problem.ChooseSolution(/*seed=*/7);
    std::vector<double> x(problem.n, 0.0), y(problem.n, 0.0);

    EXPECT_EQ(SolveByIterations(problem, x, {1e-14, 0, 0}), CKVXMatrixSolver::Solved);
    EXPECT_NE(SolveByIterations(problem, y, {0.0, 10, 0}), CKVXMatrixSolver::BadInput);

    EXPECT_LE(LargestError(problem, x), 1e-14);
    EXPECT_LE(LargestError(problem, y), 1e-14);
}

}  // namespace
