#include "reference_host/run/convergence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

using host::ConvergenceLimits;
using host::FlowIteration;
using host::LinearSolve;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr ConvergenceLimits limits = {1e-7, 1e-4};
constexpr LinearSolve progress = {1e-8, 1e-10, 0.0, 3, true};
constexpr LinearSolve failure = {1e-8, 2e-8, 1e-15, 2000, true};
constexpr LinearSolve idle = {1e-8, 1e-8, 1e-15, 0, false};
constexpr LinearSolve atRounding = {1e-16, 1e-16, 1e-15, 0, false};

/// An iteration that meets all three criteria.
FlowIteration Good() {
    return {0.9e-7, 0.9e-4, {progress, progress}, progress};
}

TEST(Convergence, NeedsAllThreeCriteria) {
    EXPECT_TRUE(HasConverged(Good(), limits));
    EXPECT_EQ(WhyNotConverged(Good(), limits), "");
}

TEST(Convergence, NeedsASmallChangeOfTheVelocity) {
    FlowIteration iteration = Good();
    iteration.change = 1.1e-7;

    EXPECT_FALSE(HasConverged(iteration, limits));
    EXPECT_EQ(WhyNotConverged(iteration, limits),
              "the velocity changes by 1.1e-07 (limit 1.0e-07)");
}

TEST(Convergence, NeedsASmallMassResidual) {
    FlowIteration iteration = Good();
    iteration.massResidual = 1.1e-4;

    EXPECT_FALSE(HasConverged(iteration, limits));
    EXPECT_EQ(WhyNotConverged(iteration, limits), "the mass residual is 1.1e-04 (limit 1.0e-04)");
}

TEST(Convergence, NeedsProgressInEveryLinearSolve) {
    for (const LinearSolve& bad : {failure, idle}) {
        FlowIteration momentum = Good();
        momentum.momentum[1] = bad;
        FlowIteration pressure = Good();
        pressure.pressure = bad;

        EXPECT_FALSE(HasConverged(momentum, limits));
        EXPECT_EQ(WhyNotConverged(momentum, limits),
                  "the linear solver does not lower the residual of y momentum");
        EXPECT_FALSE(HasConverged(pressure, limits));
        EXPECT_THAT(WhyNotConverged(pressure, limits), HasSubstr("pressure correction"));
    }
}

TEST(Convergence, SolvesAtTheLevelOfRoundingErrorsAreNoObstacle) {
    FlowIteration iteration = Good();
    iteration.momentum[0] = atRounding;
    iteration.pressure = LinearSolve{};  // nothing to correct

    EXPECT_TRUE(HasConverged(iteration, limits));
    EXPECT_EQ(IdleSolve(iteration, {}), "");
}

TEST(Convergence, ReasonsAreJoinedIntoOneLine) {
    FlowIteration iteration = Good();
    iteration.change = 0.5;
    iteration.massResidual = notANumber;

    EXPECT_THAT(WhyNotConverged(iteration, limits),
                AllOf(HasSubstr("changes by 5.0e-01"), HasSubstr(" and the mass residual is nan")));
}

TEST(Convergence, FiguresThatAreNotFiniteMeanDivergence) {
    EXPECT_FALSE(HasDiverged(Good()));
    for (const double change : {notANumber, std::numeric_limits<double>::infinity()}) {
        FlowIteration iteration = Good();
        iteration.change = change;
        EXPECT_TRUE(HasDiverged(iteration));
        EXPECT_FALSE(HasConverged(iteration, limits));
    }
    for (const double mass : {notANumber, 1e4}) {
        FlowIteration iteration = Good();
        iteration.massResidual = mass;
        EXPECT_TRUE(HasDiverged(iteration));
        EXPECT_FALSE(HasConverged(iteration, limits));
    }
}

TEST(Convergence, LargestReductionIsThatOfTheWorstSolve) {
    FlowIteration iteration = Good();
    iteration.momentum[1] = {1.0, 0.25, 0.0, 1, true};
    EXPECT_DOUBLE_EQ(LargestReduction(iteration), 0.25);

    iteration.pressure = {1.0, 3.0, 0.0, 1, true};
    EXPECT_DOUBLE_EQ(LargestReduction(iteration), 3.0);
}

TEST(IdleSolve, IsDescribedByEquationSolverResidualAndRemedy) {
    host::FlowSettings settings;
    settings.momentumSolver = host::MatrixSolver::Samg;
    FlowIteration iteration = Good();
    EXPECT_EQ(IdleSolve(iteration, settings), "");

    iteration.pressure = idle;
    EXPECT_THAT(IdleSolve(iteration, settings),
                AllOf(HasSubstr("solver bicgstab"), HasSubstr("pressure correction equation"),
                      HasSubstr("1.0e-08"), HasSubstr("solver.pressure_matrix=samg"),
                      Not(HasSubstr("\n"))));

    iteration.momentum[0] = idle;
    EXPECT_THAT(IdleSolve(iteration, settings),
                AllOf(HasSubstr("solver samg"), HasSubstr("x momentum equation"),
                      HasSubstr("solver.matrix=bicgstab")));
}

TEST(IdleSolve, SolverThatWorkedWithoutSuccessIsNotIdle) {
    FlowIteration iteration = Good();
    iteration.momentum[0] = failure;

    EXPECT_EQ(IdleSolve(iteration, {}), "");
}

}  // namespace
