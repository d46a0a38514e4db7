#include "linear_algebra/solver_bicgstab.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/linear_algebra/filled_systems.h"

namespace {

using Solver = CKVX_ART_MatSolver_BiCGSTAB;
using Vector = std::vector<double>;  // 1-based, entry 0 unused

// The object

TEST(BiCGSTABObject, MembersFollowThoseOfTheBaseInOrder) {
    Solver A(1);
    const void* members[] = {&A.tolerance, &A.times, &A.r, &A.rHat, &A.D, &A.p,     &A.pHat,
                             &A.v,         &A.y,     &A.s, &A.sHat, &A.t, &A.Rnorm, &A.iterTimes};

    EXPECT_LT(static_cast<const void*>(&A.indexSets), members[0]);
    for (int i = 0; i < 13; ++i) {
        EXPECT_LT(members[i], members[i + 1]);
    }
    EXPECT_EQ(sizeof(A), sizeof(CKVX_ART_SparseMatrix) + 14 * sizeof(double));
    EXPECT_TRUE(std::has_virtual_destructor_v<Solver>);
}

TEST(BiCGSTABObject, HasItsDefaults) {
    Solver A(2);

    EXPECT_EQ(A.GetTolerance(), 1.1e-08);
    EXPECT_EQ(A.GetTimes(), 100000);
    EXPECT_EQ(A.GetRnorm(), 0.0);
    EXPECT_EQ(A.GetIterTimes(), 0.0);
    EXPECT_TRUE((std::is_same_v<decltype(A.GetIterTimes()), double>));
}

TEST(BiCGSTABObject, VectorsAreZeroWithTheRowCountInSlotZeroExceptInPHat) {
    Solver A(3, 5);

    for (const double* vector : {A.r, A.rHat, A.D, A.p, A.v, A.y, A.s, A.sHat, A.t}) {
        EXPECT_EQ(Vector(vector, vector + 4), (Vector{3.0, 0.0, 0.0, 0.0}));
    }
    EXPECT_EQ(Vector(A.pHat, A.pHat + 4), (Vector{0.0, 0.0, 0.0, 0.0}));
}

TEST(BiCGSTABObject, ASecondSetUpAllocatesNewVectorsAndLosesTheOldOnes) {
    Solver A(2);
    std::vector<std::unique_ptr<double[]>> dropped;
    for (double* vector : {A.r, A.rHat, A.D, A.p, A.pHat, A.v, A.y, A.s, A.sHat, A.t}) {
        dropped.emplace_back(vector);
    }
    A.SetTimes(3);
    A.r[1] = 7.0;

    A.DefaultConstructorProcedure();

    EXPECT_NE(A.r, dropped[0].get());
    EXPECT_EQ(dropped[0][1], 7.0);
    EXPECT_EQ(A.r[1], 0.0);
    EXPECT_EQ(A.GetTimes(), 100000);
}

TEST(BiCGSTABObject, CopySharesEveryVector) {
    alignas(Solver) unsigned char memory[sizeof(Solver)];
    Solver A(2);

    auto* copy = new (memory) Solver(A);  // never destroyed: A releases the blocks

    EXPECT_EQ(copy->r, A.r);
    EXPECT_EQ(copy->t, A.t);
    EXPECT_EQ(copy->Ia, A.Ia);
}

TEST(BiCGSTABObject, GettersReturnWhatTheSettersStored) {
    Solver A(1);

    A.SetTolerance(0.5);
    A.SetTimes(9);

    EXPECT_EQ(A.tolerance, 0.5);
    EXPECT_EQ(A.GetTolerance(), 0.5);
    EXPECT_EQ(A.times, 9);
    EXPECT_EQ(A.GetTimes(), 9);
}

// The exits of a solve

TEST(BiCGSTABSolve, AnExactFirstGuessReturnsBeforeTheFactorization) {
    Solver A(2);
    Fill(A, {{2, 1}, {1, 3}});
    Vector x{0.0, 1.0, 2.0};
    Vector b{0.0, 4.0, 7.0};
    A.Rnorm = 5.0;
    A.iterTimes = 8;

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));

    EXPECT_EQ(A.GetRnorm(), 0.0);
    EXPECT_EQ(A.GetIterTimes(), 8.0);
    EXPECT_EQ(A.D[1], 0.0);
    EXPECT_EQ(x, (Vector{0.0, 1.0, 2.0}));
}

TEST(BiCGSTABSolve, ANormBelowTheGuardIsStored) {
    Solver A(1);
    A.AddElementValue(1, 1, 1.0);
    Vector x(2);
    Vector b{0.0, 9e-31};

    A.MatSolve(b.data(), x.data());

    EXPECT_EQ(A.GetRnorm(), std::sqrt(9e-31 * 9e-31));
    EXPECT_EQ(x[1], 0.0);
}

TEST(BiCGSTABSolve, WithTimesZeroOnlyResidualsAndFactorizationAreComputed) {
    Solver A(2);
    Fill(A, {{2, 1}, {1, 3}});
    Vector x{0.0, 1.0, 1.0};
    Vector b{0.0, 4.0, 7.0};
    A.iterTimes = 8;
    A.Rnorm = 5.0;
    A.SetTimes(0);

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));

    EXPECT_EQ(Vector(A.r + 1, A.r + 3), (Vector{1.0, 3.0}));
    EXPECT_EQ(Vector(A.rHat + 1, A.rHat + 3), (Vector{1.0, 3.0}));
    EXPECT_EQ(A.D[1], 0.5);
    EXPECT_EQ(A.D[2], 1.0 / 2.5);
    EXPECT_EQ(A.p[1], 0.0);
    EXPECT_EQ(x, (Vector{0.0, 1.0, 1.0}));
    EXPECT_EQ(A.GetIterTimes(), 8.0);
    EXPECT_EQ(A.GetRnorm(), 5.0);
}

TEST(BiCGSTABSolve, WithTimesOneThereIsOneIterationWithItsNorm) {
    Solver A(30);
    FillPlate(A, -1.0, 5.0, -0.9);
    Vector x(31);
    Vector b(31, 1.0);
    A.SetTimes(1);
    A.SetTolerance(0.0);

    A.MatSolve(b.data(), x.data());

    double sum = 0.0;
    for (int i = 1; i <= 30; ++i) {
        sum += A.r[i] * A.r[i];
    }
    EXPECT_EQ(A.GetIterTimes(), 1.0);
    EXPECT_GT(A.GetRnorm(), 0.0);
    EXPECT_EQ(A.GetRnorm(), std::sqrt(sum));
}

TEST(BiCGSTABSolve, StopsRelativeToTheNormAfterTheFirstIteration) {
    Solver A(60);
    FillPlate(A, -1.0, 4.0, -0.9);
    Vector b(61, 1.0);
    Vector x(61);
    A.SetTolerance(1.0);

    A.MatSolve(b.data(), x.data());

    EXPECT_EQ(A.GetIterTimes(), 1.0);  // the first norm is its own reference, whatever |b| is
}

TEST(BiCGSTABSolve, RnormIsNotTheFinalNorm) {
    Solver A(60);
    FillPlate(A, -1.0, 4.0, -0.9);
    Vector b(61, 1.0);
    Vector x(61);

    A.MatSolve(b.data(), x.data());

    double sum = 0.0;
    for (int i = 1; i <= 60; ++i) {
        sum += A.r[i] * A.r[i];
    }
    EXPECT_GT(A.GetIterTimes(), 1.0);
    EXPECT_LE(std::sqrt(sum), A.GetRnorm() * A.GetTolerance());
}

TEST(BiCGSTABSolve, AVanishingSKeepsTheAlphaStepAndTheFiguresOfTheLastSolve) {
    Solver A(1);
    A.AddElementValue(1, 1, 2.0);
    Vector x(2);
    Vector b{0.0, 4.0};
    A.iterTimes = 8;
    A.Rnorm = 5.0;

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));  // exact after the step by alpha, so tt is 0

    EXPECT_EQ(x[1], 2.0);
    EXPECT_EQ(A.s[1], 0.0);
    EXPECT_EQ(A.GetIterTimes(), 8.0);
    EXPECT_EQ(A.GetRnorm(), 5.0);
}

TEST(BiCGSTABSolve, AVanishingRhoReturnsAfterTheFactorization) {
    Solver A(1);
    A.AddElementValue(1, 1, 2.0);
    Vector x(2);
    Vector b{0.0, 1e-20};

    EXPECT_TRUE(A.MatSolve(b.data(),
                           x.data()));  // the norm 1e-20 is above the zero test, its square is not

    EXPECT_EQ(A.D[1], 0.5);
    EXPECT_EQ(A.p[1], 0.0);
    EXPECT_EQ(x[1], 0.0);
}

TEST(BiCGSTABSolve, AVanishingSigmaReturnsBeforeXIsChanged) {
    Solver A(2);
    A.AddIndex(1, 1);
    A.AddIndex(2, 2);
    Vector x{0.0, 1.0, 2.0};
    Vector b{0.0, 4.0, 7.0};

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));  // declared but not filled, so all values are zero

    EXPECT_TRUE(A.compressed);
    EXPECT_EQ(A.D[1], 1.0 / 1e-30);
    EXPECT_EQ(A.pHat[2], 7.0 * (1.0 / 1e-30));
    EXPECT_EQ(A.v[1], 0.0);
    EXPECT_EQ(x, (Vector{0.0, 1.0, 2.0}));
    EXPECT_EQ(A.GetIterTimes(), 0.0);
}

TEST(BiCGSTABSolve, AZeroRowWithItsDiagonalStoredDoesNotFail) {
    Solver A(2);
    Fill(A, {{2, 0}, {0, 0}});
    Vector x(3);
    Vector b{0.0, 4.0, 0.0};

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));

    EXPECT_EQ(A.D[2], 1.0 / 1e-30);
    EXPECT_EQ(x, (Vector{0.0, 2.0, 0.0}));
}

TEST(BiCGSTABSolve, AMissingDiagonalThrowsBeforeXIsChanged) {
    Solver A(2);
    A.AddElementValue(1, 1, 1.0);
    A.AddElementValue(2, 1, 1.0);
    Vector x{0.0, 1.0, 2.0};
    Vector b{0.0, 4.0, 7.0};
    std::string message;

    try {
        A.MatSolve(b.data(), x.data());
    } catch (const LinearSolverException& e) {
        message = e.what();
    }

    EXPECT_EQ(message, ">> <ART> LinearSolverError: The matrix diagonal must have value.");
    EXPECT_EQ(x, (Vector{0.0, 1.0, 2.0}));
    EXPECT_EQ(A.r[1], 0.0);
}

TEST(BiCGSTABSolve, AMatrixWithoutRowsIsSolvedAtOnce) {
    Solver A(0);
    Vector x(1);
    A.Rnorm = 5.0;

    EXPECT_TRUE(A.MatSolve(x.data(), x.data()));

    EXPECT_EQ(A.GetRnorm(), 0.0);
}

TEST(BiCGSTABSolve, ASecondSolveFactorizesAgainAndUsesItsOwnNorm) {
    Solver A(30);
    FillPlate(A, -1.0, 5.0, -1.5);
    Vector b(31, 1.0);
    Vector x(31);
    A.MatSolve(b.data(), x.data());
    const double firstNorm = A.GetRnorm();

    for (int i = 1; i <= 30; ++i) {
        A.SetDiagonalValue(i, 8.0);
    }
    x.assign(31, 0.0);
    A.MatSolve(b.data(), x.data());

    Solver fresh(30);
    FillPlate(fresh, -1.0, 8.0, -1.5);
    Vector y(31);
    fresh.MatSolve(b.data(), y.data());
    EXPECT_EQ(A.D[1], 0.125);
    EXPECT_NE(A.GetRnorm(), firstNorm);
    EXPECT_EQ(A.GetRnorm(), fresh.GetRnorm());
    EXPECT_EQ(x, y);
}

TEST(BiCGSTABSolve, NaNIteratesUntilTimesIsReached) {
    Solver A(3);
    FillPlate(A, -1.0, 3.0, -1.0);
    Vector b{0.0, 1.0, std::numeric_limits<double>::quiet_NaN(), 1.0};
    Vector x(4);
    A.SetTimes(7);

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));

    EXPECT_EQ(A.GetIterTimes(), 7.0);
    EXPECT_TRUE(std::isnan(A.GetRnorm()));
    EXPECT_TRUE(std::isnan(x[1]));
}

TEST(BiCGSTABSolve, SolvesRandomDominantSystems) {
    constexpr int n = 400;
    Solver A(n);
    FillPlate(A, -1.2, 5.0, -1.0);
    Vector exact(n + 1);
    Vector b(n + 1);
    Vector x(n + 1);
    for (int i = 1; i <= n; ++i) {
        exact[i] = std::sin(0.1 * i);
    }
    for (int i = 1; i <= n; ++i) {
        b[i] = A.DotProduct(i, exact.data());
    }

    A.MatSolve(b.data(), x.data());

    for (int i = 1; i <= n; ++i) {
        // The solver stops at 1.1e-8 times the first norm, which is below 1, and the rows are
        // dominant by 0.6.
        ASSERT_NEAR(x[i], exact[i], 1e-6) << i;
    }
}

}  // namespace
