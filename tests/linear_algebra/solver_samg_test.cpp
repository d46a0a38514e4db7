#include "linear_algebra/solver_samg.h"

#include <gtest/gtest.h>

#include <cmath>
#include <new>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "tests/linear_algebra/recording_matrix_solver.h"

namespace {

using Solver = CKVX_ART_MatSolver_SAMG;
using Ints = std::vector<int>;
using Doubles = std::vector<double>;

class SAMGFront : public testing::Test {
protected:
    SAMGFront() { TheRecord() = SolverRecord{}; }

    /// Row 1 is 1 4, row 2 is 2 -5 3 with its diagonal in the middle, row 3 is 6 7.
    static void Fill(Solver& A) {
        for (auto [row, col, value] : {std::tuple{1, 1, 1.0},
                                       {1, 2, 4.0},
                                       {2, 1, 2.0},
                                       {2, 2, -5.0},
                                       {2, 3, 3.0},
                                       {3, 2, 6.0},
                                       {3, 3, 7.0}}) {
            A.AddElementValue(row, col, value);
        }
    }

    Doubles b{0.0, 10.0, 20.0, 30.0};
    Doubles x{0.0, 0.1, 0.2, 0.3};
};

TEST_F(SAMGFront, HasItsDefaultsAndOneSolverWithAnEmptyName) {
    Solver A(3);

    EXPECT_EQ(A.GetTolerance(), 1.1e-08);
    EXPECT_EQ(A.GetTimes(), 100000);
    EXPECT_EQ(A.rhs[0], 3.0);
    EXPECT_EQ(A.tempValue, nullptr);
    EXPECT_NE(A.solver, nullptr);
    EXPECT_EQ(TheRecord().names, std::vector<std::string>{""});
    EXPECT_TRUE(std::has_virtual_destructor_v<Solver>);
}

TEST_F(SAMGFront, MembersFollowThoseOfTheBaseInOrder) {
    Solver A(1);
    const void* members[] = {&A.indexSets, &A.tolerance, &A.times, &A.solver, &A.rhs, &A.tempValue};

    for (int i = 0; i < 5; ++i) {
        EXPECT_LT(members[i], members[i + 1]);
    }
    EXPECT_EQ(sizeof(A), sizeof(CKVX_ART_SparseMatrix) + 5 * sizeof(double));
}

TEST_F(SAMGFront, PassesOnOneBasedNumbersFromEntryOne) {
    Solver A(3);
    Fill(A);
    A.SetTolerance(1e-3);
    A.SetTimes(77);

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));

    ASSERT_EQ(TheRecord().solves.size(), 1u);
    const RecordedSolve& solve = TheRecord().solves[0];
    EXPECT_EQ(solve.n, 3);
    EXPECT_EQ(solve.nonZeroN, 7);
    EXPECT_EQ(solve.Ia, (Ints{1, 3, 6, 8}));
    EXPECT_EQ(solve.Ja, (Ints{1, 2, 2, 1, 3, 3, 2}));
    EXPECT_EQ(solve.Aa, (Doubles{1, 4, 5, -2, -3, 7, 6}));
    EXPECT_EQ(solve.rhs, (Doubles{10.0, -20.0, 30.0}));
    EXPECT_EQ(solve.x, (Doubles{0.1, 0.2, 0.3}));
    EXPECT_EQ(solve.IaAddress, A.Ia + 1);
    EXPECT_EQ(solve.JaAddress, A.Ja + 1);
    EXPECT_EQ(solve.AaAddress, A.tempValue + 1);
    EXPECT_EQ(solve.rhsAddress, A.rhs + 1);
    EXPECT_EQ(solve.xAddress, x.data() + 1);
    EXPECT_EQ(solve.tolerance, 1e-3);
    EXPECT_EQ(solve.maxIterations, 77);
    EXPECT_EQ(solve.mode, 1);
    EXPECT_TRUE(TheRecord().directFlags.empty());
}

TEST_F(SAMGFront, TheMatrixKeepsItsSignsAndTheRightHandSideOfTheCallerIsUnchanged) {
    Solver A(3);
    Fill(A);

    A.MatSolve(b.data(), x.data());

    EXPECT_EQ(A.GetDiagonalValue(2), -5.0);
    EXPECT_EQ(A.Ja[A.Ia[2]], 2);
    EXPECT_EQ(b, (Doubles{0.0, 10.0, 20.0, 30.0}));
}

TEST_F(SAMGFront, OnlyTheExternalSolverWritesXAndItsStatusIsIgnored) {
    Solver A(3);
    Fill(A);
    TheRecord().status = 7;

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));
    EXPECT_EQ(x, (Doubles{0.0, 0.1, 0.2, 0.3}));

    TheRecord().answer = {4.0, 5.0, 6.0};
    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));
    EXPECT_EQ(x, (Doubles{0.0, 4.0, 5.0, 6.0}));
}

TEST_F(SAMGFront, NegationFlipsTheSignOfZerosToo) {
    Solver A(2);
    for (auto [row, col, value] :
         {std::tuple{1, 1, -1.0}, {1, 2, 0.0}, {2, 1, 3.0}, {2, 2, -0.0}}) {
        A.AddIndex(row, col);
    }
    A.AddElementValue(1, 1, -1.0);
    A.AddElementValue(2, 1, 3.0);
    A.SetDiagonalValue(2, -0.0);
    b = {0.0, 0.0, 5.0};

    A.MatSolve(b.data(), x.data());

    const RecordedSolve& solve = TheRecord().solves[0];
    EXPECT_EQ(solve.Aa[0], 1.0);
    EXPECT_TRUE(std::signbit(solve.Aa[1]));   // a zero of a negated row
    EXPECT_TRUE(std::signbit(solve.rhs[0]));  // its right-hand side, which is also zero
    EXPECT_TRUE(std::signbit(solve.Aa[2]));   // a negative zero is not below zero
    EXPECT_EQ(solve.Aa[3], 3.0);
    EXPECT_EQ(solve.rhs[1], 5.0);
}

TEST_F(SAMGFront, ReusesTheCopyUntilThePatternGrows) {
    Solver A(3);
    Fill(A);
    A.MatSolve(b.data(), x.data());
    EXPECT_EQ(A.tempValue[0], 7.0);
    const double* first = A.tempValue;

    A.MatSolve(b.data(), x.data());
    EXPECT_EQ(A.tempValue, first);

    A.AddElementValue(1, 3, 9.0);
    A.MatSolve(b.data(), x.data());
    EXPECT_EQ(A.tempValue[0], 8.0);
    EXPECT_EQ(TheRecord().solves[2].nonZeroN, 8);
    EXPECT_EQ(TheRecord().solves[2].Aa, (Doubles{1, 4, 9, 5, -2, -3, 7, 6}));
}

TEST_F(SAMGFront, ADeclaredMatrixIsCompressedToZeros) {
    Solver A(2);
    A.AddIndex(1, 1);
    A.AddIndex(2, 2);

    A.MatSolve(b.data(), x.data());

    EXPECT_TRUE(A.compressed);
    EXPECT_EQ(TheRecord().solves[0].Aa, (Doubles{0.0, 0.0}));
}

TEST_F(SAMGFront, AMissingDiagonalThrowsAfterTheRightHandSideWasCopied) {
    Solver A(2);
    A.AddElementValue(1, 1, 1.0);
    A.AddElementValue(2, 1, 1.0);
    std::string message;

    try {
        A.MatSolve(b.data(), x.data());
    } catch (const LinearSolverException& e) {
        message = e.what();
    }

    EXPECT_EQ(message, ">> <ART> LinearSolverError: The matrix diagonal must have value.");
    EXPECT_TRUE(TheRecord().solves.empty());
    EXPECT_EQ(A.rhs[2], 20.0);
    EXPECT_EQ(A.tempValue, nullptr);
    EXPECT_EQ(x, (Doubles{0.0, 0.1, 0.2, 0.3}));
}

TEST_F(SAMGFront, AnEmptySystemIsHandedOver) {
    Solver A(0);

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));

    EXPECT_EQ(TheRecord().solves[0].n, 0);
    EXPECT_EQ(TheRecord().solves[0].nonZeroN, 0);
    EXPECT_EQ(TheRecord().solves[0].Ia, Ints{1});
}

TEST_F(SAMGFront, DestroysItsSolver) {
    {
        Solver A(2);
        EXPECT_EQ(TheRecord().destroyed, 0);
    }

    EXPECT_EQ(TheRecord().destroyed, 1);
}

TEST_F(SAMGFront, CopySharesSolverAndBlocks) {
    alignas(Solver) unsigned char memory[sizeof(Solver)];
    Solver A(3);

    auto* copy = new (memory) Solver(A);  // never destroyed: A releases what they share

    EXPECT_EQ(copy->solver, A.solver);
    EXPECT_EQ(copy->rhs, A.rhs);
    EXPECT_EQ(TheRecord().names.size(), 1u);
}

}  // namespace
