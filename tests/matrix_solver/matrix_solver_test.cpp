#include "matrix_solver/matrix_solver.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "plain/samples/problems.h"
#include "tests/matrix_solver/solver_calls.h"

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr Call denseCall{1.1e-6, 50, 0};  // the arguments of the dense solver

static_assert(std::has_virtual_destructor_v<CKVXMatrixSolver>);
static_assert(CKVXMatrixSolver::Solved == 0, "callers test for 0");

/// Two rows; the solution is (1, 2).
Problem Small() {
    Problem problem;
    problem.AddRow(4.0, {{2, 1.0}});
    problem.AddRow(3.0, {{1, 2.0}});
    problem.rhs = {6.0, 8.0};
    problem.exact = {1.0, 2.0};
    return problem;
}

/// 1000 rows, too large and too sparse for the dense LU.
Problem Sparse() {
    return Diffusion(10, 1.0, 1.0, 1.0);
}

std::vector<double> Marked(int n) {
    return std::vector<double>(static_cast<std::size_t>(n), 7.5);
}

TEST(SolverStart, AStartThatMeetsTheToleranceStaysBitForBit) {
    const Problem problem = Sparse();
    std::vector<double> x = problem.exact;
    x[3] *= 1.0 + 1e-12;
    const std::vector<double> start = x;

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved);

    EXPECT_EQ(x, start);
}

TEST(SolverStart, AGoodStartSavesIterations) {
    const Problem problem = Sparse();
    std::vector<double> cold(problem.n, 0.0), warm = problem.exact;
    for (double& v : warm) {
        v *= 1.0 + 1e-7;
    }

    EXPECT_EQ(SolveByIterations(problem, cold, {1e-8, 6, 0}), CKVXMatrixSolver::ToleranceMissed);
    EXPECT_EQ(SolveByIterations(problem, warm, {1e-8, 6, 0}), CKVXMatrixSolver::Solved);
}

TEST(SolverStart, AStartThatIsNotFiniteIsReplaced) {
    for (const double bad : {nan, infinity, -infinity}) {
        const Problem problem = Sparse();
        std::vector<double> x(problem.n, 0.0);
        x[17] = bad;

        EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved) << bad;

        EXPECT_LE(RelativeResidual(problem, x), 1.0001e-8) << bad;
    }
}

TEST(SolverStart, AStartFarFromTheSolutionCostsNoDigits) {
    const Problem problem = Sparse();
    std::vector<double> x(problem.n, 1e30);

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved);

    EXPECT_LE(RelativeResidual(problem, x), 1.0001e-8);
}

TEST(SolverStatus, ZeroRightHandSideGivesZero) {
    Problem problem = Sparse();
    problem.rhs.assign(problem.rhs.size(), 0.0);
    std::vector<double> x = Marked(problem.n);

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved);

    EXPECT_EQ(x, std::vector<double>(problem.rhs.size(), 0.0));
}

TEST(SolverStatus, TooFewIterationsReturnABetterIterateAndStatus1) {
    const Problem problem = Diffusion(30, 1.0, 1.0, 1.0);  // too large for the sparse LU
    std::vector<double> x(problem.n, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x, {1e-8, 3, 0}), CKVXMatrixSolver::ToleranceMissed);

    EXPECT_LT(RelativeResidual(problem, x), 1.0);
    EXPECT_GT(RelativeResidual(problem, x), 1e-8);
}

TEST(SolverStatus, WithoutAnyMethodXIsLeftUnchanged) {
    const Problem problem = Diffusion(30, 1.0, 1.0, 1.0);
    std::vector<double> x(problem.n, 0.25);
    const std::vector<double> start = x;

    EXPECT_EQ(SolveByIterations(problem, x, {1e-8, 0, 0}), CKVXMatrixSolver::Singular);

    EXPECT_EQ(x, start);
}

TEST(SolverStatus, SmallSystemsNeedNoIterations) {
    const Problem problem = Small();
    std::vector<double> x(2, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x, {1e-12, 0, 0}), CKVXMatrixSolver::Solved);

    EXPECT_NEAR(x[0], 1.0, 1e-15);
    EXPECT_NEAR(x[1], 2.0, 1e-15);
}

TEST(SolverStatus, ASingularSmallSystemLeavesXUnchanged) {
    Problem problem;
    problem.AddRow(1.0, {{2, 1.0}});
    problem.AddRow(1.0, {{1, 1.0}});
    problem.rhs = {1.0, 2.0};
    for (const double start : {0.0, 7.5, nan, infinity}) {
        std::vector<double> x(2, start);

        EXPECT_EQ(SolveAndWatch(problem, x, denseCall), CKVXMatrixSolver::Singular) << start;

        EXPECT_TRUE(std::isnan(start) ? std::isnan(x[0]) : x[0] == start) << x[0];
        EXPECT_TRUE(std::isnan(start) ? std::isnan(x[1]) : x[1] == start) << x[1];
    }
}

TEST(SolverStatus, ASingularSystemWithASolutionIsSolved) {
    Problem problem;
    problem.AddRow(1.0, {{2, -1.0}});
    problem.AddRow(2.0, {{1, -1.0}, {3, -1.0}});
    problem.AddRow(1.0, {{2, -1.0}});
    problem.rhs = {1.0, 0.0, -1.0};
    std::vector<double> x(3, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x, denseCall), CKVXMatrixSolver::Solved);

    EXPECT_NEAR(x[0] - x[1], 1.0, 1e-12);
    EXPECT_NEAR(x[1] - x[2], 1.0, 1e-12);
}

TEST(SolverStatus, AStructurallySingularSystemLeavesXUnchanged) {
    // Row 6 of the grid holds only zeros, but its right-hand side is not zero.
    Problem problem = Sparse();
    for (int k = problem.Ia[5] - 1; k < problem.Ia[6] - 1; ++k) {
        problem.Aa[k] = 0.0;
    }
    problem.rhs[5] = 1e3;
    std::vector<double> x = Marked(problem.n);
    const std::vector<double> start = x;

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Singular);
    EXPECT_EQ(x, start);
    EXPECT_EQ(SolveAndWatch(problem, x, {1e-8, 0, 1}), CKVXMatrixSolver::Singular);
    EXPECT_EQ(x, start);
}

TEST(SolverStatus, AZeroMatrixIsSingular) {
    Problem problem;
    problem.AddRow(0.0, {{2, 0.0}});
    problem.AddRow(-0.0, {});
    problem.rhs = {1.0, 1.0};
    std::vector<double> x = Marked(2);

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Singular);

    EXPECT_EQ(x, Marked(2));
}

TEST(SolverStatus, ASystemWithAZeroDiagonalIsSolved) {
    Problem problem;
    problem.AddRow(0.0, {{2, 2.0}});
    problem.AddRow(0.0, {{1, 4.0}});
    problem.rhs = {2.0, 4.0};
    std::vector<double> x(2, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved);

    EXPECT_EQ(x, (std::vector<double>{1.0, 1.0}));
}

TEST(SolverStatus, MagnitudesAtTheEndsOfTheRangeAreSolved) {
    for (const double scale : {1e-200, 1e-300, 1e150, 1e300}) {
        Problem problem = Small();
        for (double& b : problem.rhs) {
            b *= scale;
        }
        std::vector<double> x(2, 0.0);

        EXPECT_EQ(SolveAndWatch(problem, x), CKVXMatrixSolver::Solved) << scale;

        EXPECT_NEAR(x[0] / scale, 1.0, 1e-12) << scale;
        EXPECT_NEAR(x[1] / scale, 2.0, 1e-12) << scale;
    }
}

TEST(SolverInput, AnEmptySystemIsSolvedWithoutTouchingAnArray) {
    CKVXMatrixSolver solver("");

    EXPECT_EQ(solver.solveMatrix(0, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 1e-8, 10, 1),
              CKVXMatrixSolver::Solved);
}

TEST(SolverInput, NullPointersAreRejected) {
    Problem p = Small();
    std::vector<double> x = Marked(2);
    CKVXMatrixSolver solver("");
    const auto solve = [&](int* Ia, int* Ja, double* Aa, double* rhs, double* to) {
        return solver.solveMatrix(2, 4, Ia, Ja, Aa, rhs, to, 1e-8, 10, 1);
    };
    int* const Ia = p.Ia.data();
    int* const Ja = p.Ja.data();
    double* const Aa = p.Aa.data();
    double* const rhs = p.rhs.data();

    EXPECT_EQ(solve(nullptr, Ja, Aa, rhs, x.data()), CKVXMatrixSolver::BadInput);
    EXPECT_EQ(solve(Ia, nullptr, Aa, rhs, x.data()), CKVXMatrixSolver::BadInput);
    EXPECT_EQ(solve(Ia, Ja, nullptr, rhs, x.data()), CKVXMatrixSolver::BadInput);
    EXPECT_EQ(solve(Ia, Ja, Aa, nullptr, x.data()), CKVXMatrixSolver::BadInput);
    EXPECT_EQ(solve(Ia, Ja, Aa, rhs, nullptr), CKVXMatrixSolver::BadInput);
    EXPECT_EQ(x, Marked(2));
}

/// Small() with one error.
struct Flaw {
    const char* what;
    void (*spoil)(Problem&, Call&);
};

class FlawedInput : public testing::TestWithParam<Flaw> {};

TEST_P(FlawedInput, IsRejectedWithXUntouched) {
    Problem problem = Small();
    Call call;
    GetParam().spoil(problem, call);
    std::vector<double> x = Marked(2);

    EXPECT_EQ(SolveAndWatch(problem, x, call), CKVXMatrixSolver::BadInput);

    EXPECT_EQ(x, Marked(2));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, FlawedInput,
    testing::Values(Flaw{"NegativeRowCount", [](Problem& p, Call&) { p.n = -1; }},
                    Flaw{"RowStartsFromZero",
                         [](Problem& p, Call&) {
                             p.Ia = {0, 2, 4};
                         }},
                    Flaw{"RowStartsThatFall",
                         [](Problem& p, Call&) {
                             p.Ia = {1, 6, 5};
                         }},
                    Flaw{"RowStartsThatEndEarly",
                         [](Problem& p, Call&) {
                             p.Ia = {1, 3, 4};
                         }},
                    Flaw{"ColumnZero", [](Problem& p, Call&) { p.Ja[1] = 0; }},
                    Flaw{"ColumnBeyondTheLast", [](Problem& p, Call&) { p.Ja[1] = 3; }},
                    Flaw{"ColumnTwiceInARow", [](Problem& p, Call&) { p.Ja[1] = 1; }},
                    Flaw{"RowWithoutDiagonal",
                         [](Problem& p, Call&) {
                             p.Ia = {1, 2, 4};
                             p.Ja = {2, 2, 1};
                             p.Aa = {1.0, 1.0, 1.0};
                         }},
                    Flaw{"NanInTheMatrix", [](Problem& p, Call&) { p.Aa[2] = nan; }},
                    Flaw{"InfinityInTheMatrix", [](Problem& p, Call&) { p.Aa[3] = infinity; }},
                    Flaw{"NanInTheRightHandSide", [](Problem& p, Call&) { p.rhs[1] = nan; }},
                    Flaw{"InfinityInTheRightHandSide",
                         [](Problem& p, Call&) { p.rhs[0] = -infinity; }},
                    Flaw{"NegativeTolerance", [](Problem&, Call& c) { c.tolerance = -1e-8; }},
                    Flaw{"NanAsTolerance", [](Problem&, Call& c) { c.tolerance = nan; }},
                    Flaw{"NegativeIterations", [](Problem&, Call& c) { c.maxIterations = -1; }}),
    [](const auto& tested) { return std::string(tested.param.what); });

TEST(SolverInput, TheOrderInsideARowDoesNotMatter) {
    Problem problem = Small();
    std::swap(problem.Ja[2], problem.Ja[3]);
    std::swap(problem.Aa[2], problem.Aa[3]);
    std::vector<double> x(2, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x, {1e-12, 10, 0}), CKVXMatrixSolver::Solved);

    EXPECT_LE(LargestError(problem, x), 1e-14);
}

TEST(SolverObject, NameAndModeAreNotRead) {
    Problem p = Small();
    for (const int mode : {-1, 0, 1, 99}) {
        std::vector<double> x(2, 0.0);
        CKVXMatrixSolver solver(nullptr);

        EXPECT_EQ(solver.solveMatrix(2, 4, p.Ia.data(), p.Ja.data(), p.Aa.data(), p.rhs.data(),
                                     x.data(), 1e-12, 10, mode),
                  CKVXMatrixSolver::Solved);

        EXPECT_LE(LargestError(p, x), 1e-14);
    }
}

TEST(SolverObject, OneObjectSolvesAnyNumberOfSystems) {
    const auto solver = std::make_unique<CKVXMatrixSolver>("");
    for (const int m : {3, 9, 2, 6}) {
        Problem p = Diffusion(m, 1.0, 2.0, 3.0);
        std::vector<double> x(p.n, 0.0);

        EXPECT_EQ(solver->solveMatrix(p.n, p.NonZeros(), p.Ia.data(), p.Ja.data(), p.Aa.data(),
                                      p.rhs.data(), x.data(), 1e-10, 1000, 1),
                  CKVXMatrixSolver::Solved);

        EXPECT_LE(LargestError(p, x), 1e-7) << m;
    }
}

/// Full systems with the tolerance and iteration bound of the dense solver.
class DenseSystems : public testing::TestWithParam<int> {};

TEST_P(DenseSystems, AreSolvedWhenDominant) {
    const Problem problem = Dense(GetParam(), 1.5, /*seed=*/21);
    std::vector<double> x(problem.n, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x, denseCall), CKVXMatrixSolver::Solved);

    EXPECT_LE(LargestError(problem, x), 1e-12);
}

TEST_P(DenseSystems, AreSolvedWhenNotDominant) {
    const Problem problem = Dense(GetParam(), 0.01, /*seed=*/22);
    std::vector<double> x(problem.n, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x, denseCall), CKVXMatrixSolver::Solved);

    EXPECT_LE(LargestError(problem, x), 1e-9);
}

TEST_P(DenseSystems, AreSolvedWhenOnlyTheDiagonalHadItsSignFlipped) {
    // The dense solver negates a negative diagonal but not the rest of the row, so the signs of its
    // off-diagonal entries follow no pattern.
    Problem problem = Dense(GetParam(), 0.3, /*seed=*/23);
    for (int i = 0; i < problem.n; i += 2) {
        problem.Aa[problem.Ia[i] - 1] *= -1.0;
    }
    problem.ChooseSolution(/*seed=*/24);
    std::vector<double> x(problem.n, nan);

    EXPECT_EQ(SolveAndWatch(problem, x, denseCall), CKVXMatrixSolver::Solved);

    EXPECT_LE(LargestError(problem, x), 1e-9);
}

TEST_P(DenseSystems, AreSolvedToFourteenDigits) {
    const Problem problem = Dense(GetParam(), 1.5, /*seed=*/25);
    std::vector<double> x(problem.n, 0.0);

    EXPECT_EQ(SolveAndWatch(problem, x, {1e-14, 50, 0}), CKVXMatrixSolver::Solved);

    EXPECT_LE(RelativeResidual(problem, x), 1.1e-14);
}

INSTANTIATE_TEST_SUITE_P(Sizes, DenseSystems, testing::Values(1, 2, 19, 50, 64, 65, 200));

}  // namespace
