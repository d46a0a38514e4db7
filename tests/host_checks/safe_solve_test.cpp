#include "host_checks/safe_solve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <vector>

#include "tests/linear_algebra/filled_systems.h"

namespace {

using kvx3d::checks::SafeSolve;
using kvx3d::checks::SolveReport;
using Vector = std::vector<double>;  // 1-based, entry 0 unused
using Rows = std::vector<std::vector<double>>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// |b - A x|, computed from the stored entries alone.
double TrueResidual(const CKVX_ART_SparseMatrix& A, const Vector& b, const Vector& x) {
    double sum = 0.0;
    for (int row = 1; row < static_cast<int>(b.size()); ++row) {
        double defect = b[row];
        for (int k = A.Ia[row]; k < A.Ia[row + 1]; ++k) {
            defect -= A.Aa[k] * x[A.Ja[k]];
        }
        sum += defect * defect;
    }
    return std::sqrt(sum);
}

double NormOf(const Vector& v) {
    double sum = 0.0;
    for (std::size_t i = 1; i < v.size(); ++i) {
        sum += v[i] * v[i];
    }
    return std::sqrt(sum);
}

/// Both solver classes: what is true of one is true of the other.
template <class Solver>
class SafeSolveOf : public testing::Test {};
using Solvers = testing::Types<CKVX_ART_MatSolver_BiCGSTAB, CKVX_ART_MatSolver_SAMG>;
TYPED_TEST_SUITE(SafeSolveOf, Solvers);

TYPED_TEST(SafeSolveOf, ReachesATightTargetByTheTrueResidual) {
    TypeParam A(200);
    FillPlate(A, -1.1, 4.3, -0.9);
    Vector b(201, 1.0);
    b[17] = -30.0;
    Vector x(201, 0.0);

    const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-13);

    EXPECT_TRUE(report.reached);
    EXPECT_TRUE(report.finite);
    EXPECT_LE(TrueResidual(A, b, x), 1.01e-13 * NormOf(b));
    EXPECT_NEAR(report.target, 1e-13 * NormOf(b), 1e-25);
    EXPECT_NEAR(report.firstResidual, NormOf(b), 1e-10);
}

TYPED_TEST(SafeSolveOf, MakesNoCallWhenTheFirstGuessIsGoodEnough) {
    TypeParam A(3);
    Fill(A, {{2, 0, 0}, {0, 4, 0}, {0, 0, 8}});
    const Vector b = {0, 2, 4, 8};
    Vector x = {0, 1, 1, 1};

    const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-10);

    EXPECT_TRUE(report.reached);
    EXPECT_EQ(report.calls, 0);
    EXPECT_EQ(x, (Vector{0, 1, 1, 1}));
}

TYPED_TEST(SafeSolveOf, SolvesSystemsFarBelowTheAbsoluteThresholds) {
    TypeParam A(50);
    FillPlate(A, -1.0, 4.5, -1.0);
    const Vector b(51, 1e-200);  // its square is below the smallest double
    Vector x(51, 0.0);

    const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-10);

    EXPECT_TRUE(report.reached);
    for (int row = 1; row <= 50; ++row) {
        EXPECT_NEAR(A.DotProduct(row, x.data()), 1e-200, 1e-209) << "row " << row;
    }
}

TYPED_TEST(SafeSolveOf, NeverCallsASystemOfAnyCoefficientSolvedThatIsNot) {
    for (const double coefficient : {1e-150, 1e-20, 1e20, 1e150}) {
        for (const double right : {1e-150, 1.0, 1e150}) {
            TypeParam A(50);
            FillPlate(A, -1.0 * coefficient, 4.5 * coefficient, -1.0 * coefficient);
            const Vector b(51, right);
            Vector x(51, 0.0);

            const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-10);

            double largest = 0.0;  // residual relative to the right-hand side
            for (int row = 1; row <= 50; ++row) {
                largest = std::max(largest, std::abs(1.0 - A.DotProduct(row, x.data()) / right));
            }
            EXPECT_NEAR(report.firstResidual / right, std::sqrt(50.0), 1e-9);
            EXPECT_EQ(report.reached, largest < 1e-9) << coefficient << ' ' << right;
            EXPECT_TRUE(report.reached || coefficient < 1e-28) << coefficient << ' ' << right;
        }
    }
}

TYPED_TEST(SafeSolveOf, NeverReturnsAWorseSolutionThanTheFirstGuess) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    for (int system = 0; system < 200; ++system) {
        constexpr int n = 12;
        TypeParam A(n);
        for (int row = 1; row <= n; ++row) {  // neither symmetric nor dominated by its diagonal
            for (int column = 1; column <= n; ++column) {
                A.AddElementValue(row, column, entry(random));
            }
        }
        A.SetTimes(3);
        Vector b(n + 1, 0.0);
        Vector x(n + 1, 0.0);
        for (int row = 1; row <= n; ++row) {
            b[row] = entry(random);
            x[row] = entry(random);
        }
        const double before = TrueResidual(A, b, x);

        const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-12, 2);

        const double after = TrueResidual(A, b, x);
        ASSERT_LE(after, before * (1 + 1e-14)) << "system " << system;
        ASSERT_NEAR(report.residual, after, 1e-12) << "system " << system;
        ASSERT_NEAR(report.firstResidual, before, 1e-12) << "system " << system;
        ASSERT_EQ(report.reached, report.residual <= report.target) << "system " << system;
    }
}

/// |b - A x| in extended precision.
double ExactResidual(const CKVX_ART_SparseMatrix& A, const Vector& b, const Vector& x) {
    long double sum = 0.0L;
    for (int row = 1; row < static_cast<int>(b.size()); ++row) {
        long double defect = b[row];
        for (int k = A.Ia[row]; k < A.Ia[row + 1]; ++k) {
            defect -= static_cast<long double>(A.Aa[k]) * x[A.Ja[k]];
        }
        sum += defect * defect;
    }
    return static_cast<double>(std::sqrt(sum));
}

/// A call on a singular matrix returns corrections of size 1e30, whose products with the rows
/// cancel in double precision and leave a residual that looks smaller than the one before.
TYPED_TEST(SafeSolveOf, IsNotDeceivedByCancellationOnSingularMatrices) {
    std::mt19937 random(78);
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    std::uniform_int_distribution<int> column(1, 12);
    for (int system = 0; system < 500; ++system) {
        constexpr int n = 12;
        TypeParam A(n);
        for (int row = 1; row <= n; ++row) {
            A.AddElementValue(row, row, row == n ? 0.0 : 4.0 + entry(random));
            A.AddElementValue(row, column(random), row == n ? 0.0 : entry(random));
        }
        A.SetTimes(100);
        Vector b(n + 1, 0.0);
        Vector x(n + 1, 0.0);
        for (int row = 1; row <= n; ++row) {
            b[row] = entry(random);
            x[row] = entry(random);
        }
        const double before = ExactResidual(A, b, x);

        const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-6);

        const double after = ExactResidual(A, b, x);
        ASSERT_LE(after, before * (1 + 1e-12)) << "system " << system;
        // May include the bound of the rounding errors.
        ASSERT_GE(report.residual, after * (1 - 1e-12)) << "system " << system;
        ASSERT_LE(report.residual, before * (1 + 1e-12)) << "system " << system;
    }
}

TYPED_TEST(SafeSolveOf, GivesUpAfterThreeUselessCallsAndKeepsTheFirstGuess) {
    TypeParam A(2);
    Fill(A, {{0, 0}, {0, 0}});
    const Vector b = {0, 1, 2};
    Vector x = {0, 7, 8};

    const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-6, 10);

    EXPECT_FALSE(report.reached);
    EXPECT_EQ(report.calls, 3);
    EXPECT_EQ(x, (Vector{0, 7, 8}));
    EXPECT_DOUBLE_EQ(report.residual, std::sqrt(5.0));
}

TYPED_TEST(SafeSolveOf, MakesNoCallOnNumbersThatAreNotFinite) {
    for (const bool inMatrix : {false, true}) {
        TypeParam A(2);
        Fill(A, {{inMatrix ? notANumber : 2.0, 1}, {1, 3}});
        const Vector b = {0, 1, inMatrix ? 1.0 : std::numeric_limits<double>::infinity()};
        Vector x = {0, 5, 6};

        const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-6);

        EXPECT_FALSE(report.reached);
        EXPECT_TRUE(report.finite);
        EXPECT_EQ(report.calls, 0);
        EXPECT_EQ(x, (Vector{0, 5, 6}));
    }
}

TYPED_TEST(SafeSolveOf, ReplacesAFirstGuessThatIsNotFinite) {
    TypeParam A(2);
    Fill(A, {{2, 1}, {1, 3}});
    const Vector b = {0, 4, 7};
    Vector x = {0, notANumber, 6};

    const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-12);

    EXPECT_TRUE(report.reached);
    EXPECT_TRUE(report.finite);
    EXPECT_NEAR(x[1], 1.0, 1e-11);
    EXPECT_NEAR(x[2], 2.0, 1e-11);
}

TYPED_TEST(SafeSolveOf, AnswersAZeroRightHandSideWithZeros) {
    TypeParam A(50);
    FillPlate(A, -1.1, 4.3, -0.9);
    const Vector b(51, 0.0);
    Vector x(51, 0.0);
    for (int row = 1; row <= 50; ++row) {
        x[row] = row % 7;
    }

    const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-6);

    EXPECT_TRUE(report.reached);
    EXPECT_EQ(report.calls, 0);
    EXPECT_EQ(x, Vector(51, 0.0));
}

TYPED_TEST(SafeSolveOf, RestoresTheToleranceOfTheHost) {
    TypeParam A(2);
    Fill(A, {{2, 1}, {1, 3}});
    A.SetTolerance(0.125);
    const Vector b = {0, 4, 7};
    Vector x(3, 0.0);

    SafeSolve(A, b.data(), x.data(), 1e-6);

    EXPECT_EQ(A.GetTolerance(), 0.125);
}

TYPED_TEST(SafeSolveOf, PassesOnAMissingDiagonalWithTheFirstGuessInPlace) {
    TypeParam A(2);
    A.AddElementValue(1, 1, 2.0);
    A.AddElementValue(2, 1, 2.0);
    A.SetTolerance(0.125);
    const Vector b = {0, 4, 7};
    Vector x = {0, 5, 6};

    EXPECT_THROW(SafeSolve(A, b.data(), x.data(), 1e-6), LinearSolverException);

    EXPECT_EQ(x, (Vector{0, 5, 6}));
    EXPECT_EQ(A.GetTolerance(), 0.125);
}

TYPED_TEST(SafeSolveOf, RefusesArgumentsOutOfRange) {
    TypeParam A(2);
    Fill(A, {{2, 1}, {1, 3}});
    TypeParam wide(2, 3);
    Fill(wide, {{2, 1}, {1, 3}});
    wide.AddElementValue(1, 3, 1.0);
    const Vector b = {0, 4, 7, 0};
    Vector x(4, 0.0);

    EXPECT_THROW(SafeSolve(A, b.data(), x.data(), 0.0), std::invalid_argument);
    EXPECT_THROW(SafeSolve(A, b.data(), x.data(), notANumber), std::invalid_argument);
    EXPECT_THROW(SafeSolve(A, b.data(), x.data(), std::numeric_limits<double>::infinity()),
                 std::invalid_argument);
    EXPECT_THROW(SafeSolve(A, b.data(), x.data(), 1e-6, 0), std::invalid_argument);
    EXPECT_THROW(SafeSolve(wide, b.data(), x.data(), 1e-6), std::invalid_argument);
}

TEST(SafeSolveOfBiCGSTAB, RepeatsTheCallUntilTheTargetIsReached) {
    CKVX_ART_MatSolver_BiCGSTAB A(200);
    FillPlate(A, -1.1, 4.3, -0.9);
    A.SetTimes(4);
    const Vector b(201, 1.0);
    Vector once(201, 0.0);
    Vector x(201, 0.0);

    const SolveReport one = SafeSolve(A, b.data(), once.data(), 1e-12, 1);
    const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-12, 10);

    EXPECT_FALSE(one.reached);
    EXPECT_EQ(one.calls, 1);
    EXPECT_EQ(one.iterations, 4);
    EXPECT_TRUE(report.reached);
    EXPECT_GT(report.calls, 1);
    EXPECT_GT(report.iterations, 4);
    EXPECT_LE(report.iterations, 4 * report.calls);
}

TEST(SafeSolveOfBiCGSTAB, GetsPastABreakdownAtTheZeroStart) {
    // The first residual is orthogonal to A times its preconditioned self, exactly: all integers.
    const Rows rows = {{2, 2, -2}, {-1, 1, -1}, {-2, 0, 2}};
    const Vector b = {0, 1, 0, 0};
    CKVX_ART_MatSolver_BiCGSTAB alone(3);
    Fill(alone, rows);
    Vector stuck(4, 0.0);
    alone.MatSolve(b.data(), stuck.data());
    ASSERT_EQ(stuck, Vector(4, 0.0));
    CKVX_ART_MatSolver_BiCGSTAB A(3);
    Fill(A, rows);
    Vector x(4, 0.0);

    const SolveReport report = SafeSolve(A, b.data(), x.data(), 1e-12);

    EXPECT_TRUE(report.reached);
    EXPECT_NEAR(TrueResidual(A, b, x), 0.0, 1e-12);
}

TEST(SafeSolveOfBiCGSTAB, DoesNotCountTheIterationsOfAnEarlierSolve) {
    CKVX_ART_MatSolver_BiCGSTAB A(2);
    Fill(A, {{0, 0}, {0, 0}});
    A.iterTimes = 40;
    const Vector b = {0, 1, 2};
    Vector x(3, 0.0);
    A.SetTimes(0);

    EXPECT_EQ(SafeSolve(A, b.data(), x.data(), 1e-6).iterations, 0);
}

TEST(SolveReportText, NamesResidualTargetCallsAndIterations) {
    SolveReport report;
    report.firstResidual = 2.5;
    report.residual = 3.125e-11;
    report.target = 2.5e-10;
    report.calls = 2;
    report.iterations = 41;
    report.reached = true;
    report.finite = true;

    EXPECT_EQ(Text(report),
              "residual from 2.5 to 3.125e-11 (target 2.5e-10, reached) in 2 calls, 41 iterations");

    report.calls = 1;
    report.iterations = 0;
    report.reached = false;
    report.finite = false;
    EXPECT_EQ(
        Text(report),
        "residual from 2.5 to 3.125e-11 (target 2.5e-10, not reached) in 1 call; the solution "
        "holds numbers that are not finite");
}

}  // namespace
