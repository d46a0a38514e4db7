#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "plain/plain_bicgstab.h"
#include "tests/linear_algebra/random_systems.h"

// The solver must stop where the transcription in plain/ stops, with the same bits in x, in every
// work vector, in the iteration count and in the norm, for every order of the entries in a row and
// every kind of breakdown.

namespace {

/// True if the bits are equal or both are NaN: which operand passes on its payload depends on the
/// compiler.
bool Same(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

/// Adds the entries of a system to a matrix.
void Assemble(const System& system, CKVX_ART_SparseMatrix& A) {
    if (system.declared) {
        for (const Entry& e : system.entries) {
            A.AddIndex(e.row, e.col);
        }
    }
    for (const Entry& e : system.entries) {
        A.AddElementValue(e.row, e.col, e.value);
    }
}

/// Compares entries 0..n.
void ExpectSame(const double* ours, const double* plain, int n, const char* what) {
    for (int i = 0; i <= n; ++i) {
        ASSERT_TRUE(Same(ours[i], plain[i]))
            << what << '[' << i << "]: " << ours[i] << " for " << plain[i];
    }
}

/// Compares the matrix, all work vectors and the figures of two solvers.
void ExpectSameState(const CKVX_ART_MatSolver_BiCGSTAB& A, const CKVX_ART_MatSolver_BiCGSTAB& B) {
    const int n = A.rowsN;
    ExpectSame(A.r, B.r, n, "r");
    ExpectSame(A.rHat, B.rHat, n, "rHat");
    ExpectSame(A.D, B.D, n, "D");
    ExpectSame(A.p, B.p, n, "p");
    ExpectSame(A.pHat, B.pHat, n, "pHat");
    ExpectSame(A.v, B.v, n, "v");
    ExpectSame(A.y, B.y, n, "y");
    ExpectSame(A.s, B.s, n, "s");
    ExpectSame(A.sHat, B.sHat, n, "sHat");
    ExpectSame(A.t, B.t, n, "t");
    EXPECT_TRUE(Same(A.Rnorm, B.Rnorm)) << A.Rnorm << " for " << B.Rnorm;
    EXPECT_EQ(A.iterTimes, B.iterTimes);
    EXPECT_TRUE(std::equal(A.Ia, A.Ia + n + 2, B.Ia));
    EXPECT_TRUE(std::equal(A.Ja, A.Ja + A.Ia[n + 1], B.Ja));
    ExpectSame(A.Aa, B.Aa, A.Ia[n + 1] - 1, "Aa");
}

/// Solves `solves` times, each time from the previous solution, and compares everything.
/// @return the exit of the first solve
plain::BiCGSTAB::Exit Compare(const System& system, int solves = 2) {
    SCOPED_TRACE(system.name);
    CKVX_ART_MatSolver_BiCGSTAB ours(system.n);
    plain::BiCGSTAB plain(system.n);
    for (CKVX_ART_MatSolver_BiCGSTAB* A :
         {&ours, static_cast<CKVX_ART_MatSolver_BiCGSTAB*>(&plain)}) {
        Assemble(system, *A);
        A->SetTimes(system.times);
        A->SetTolerance(system.tolerance);
    }
    std::vector<double> x = system.x;
    std::vector<double> xPlain = system.x;

    plain::BiCGSTAB::Exit firstExit = plain::BiCGSTAB::kExits;
    for (int solve = 0; solve < solves; ++solve) {
        EXPECT_TRUE(ours.MatSolve(system.b.data(), x.data()));
        plain.PlainMatSolve(system.b.data(), xPlain.data());
        ExpectSameState(ours, plain);
        ExpectSame(x.data(), xPlain.data(), system.n, "x");
        if (solve == 0) {
            firstExit = plain.lastExit;
        }
    }
    return firstExit;
}

class BiCGSTABAgainstPlain : public testing::TestWithParam<int> {};

TEST_P(BiCGSTABAgainstPlain, SolvesRandomRowsSortedOrShuffled) {
    Generator generate(100 + GetParam());

    for (int trial = 0; trial < 60; ++trial) {
        System system = generate.Sparse(GetParam(), generate.Int(0, 12), 4.0, false);
        system.name = "random, trial " + std::to_string(trial);
        system.declared = trial % 2 == 0;
        system.times = generate.Int(0, 40);
        generate.Shuffle(system.entries);
        Compare(system);
    }
}

TEST_P(BiCGSTABAgainstPlain, DivergesOnRowsThatAreNotDominant) {
    Generator generate(200 + GetParam());

    for (int trial = 0; trial < 60; ++trial) {
        System system = generate.Sparse(GetParam(), generate.Int(1, 6), 0.0, false);
        system.name = "not dominant, trial " + std::to_string(trial);
        system.declared = trial % 2 == 0;
        generate.Shuffle(system.entries);
        Compare(system);
    }
}

TEST_P(BiCGSTABAgainstPlain, BreaksDownAtTheSamePlaceOnTies) {
    Generator generate(300 + GetParam());

    for (int trial = 0; trial < 200; ++trial) {
        System system = generate.Sparse(GetParam(), generate.Int(0, 3), generate.Int(-1, 3), true);
        system.name = "ties, trial " + std::to_string(trial);
        system.declared = trial % 3 == 0;
        system.tolerance = trial % 5 == 0 ? -1.0 : 1.1e-08;
        generate.Shuffle(system.entries);
        Compare(system);
    }
}
INSTANTIATE_TEST_SUITE_P(Rows, BiCGSTABAgainstPlain,
                         testing::Values(1, 2, 3, 4, 5, 8, 17, 40, 150));

struct BoxSize {
    int nx, ny, nz;
};

class BiCGSTABAgainstPlainOnBoxes : public testing::TestWithParam<BoxSize> {};

TEST_P(BiCGSTABAgainstPlainOnBoxes, SolvesStencilRowsDeclaredOrInserted) {
    const auto [nx, ny, nz] = GetParam();
    Generator generate(400 + nx);
    System system = generate.Box(nx, ny, nz, 6.1);
    system.name = "declared";

    Compare(system);

    // In a matrix that was not declared, the entries of a row stand in the order of insertion.
    if (system.n <= 1500) {
        system.name = "inserted";
        system.declared = false;
        generate.Shuffle(system.entries);
        Compare(system);
    }
}
INSTANTIATE_TEST_SUITE_P(Sizes, BiCGSTABAgainstPlainOnBoxes,
                         testing::Values(BoxSize{1, 1, 1}, BoxSize{50, 1, 1}, BoxSize{1, 50, 1},
                                         BoxSize{7, 9, 1}, BoxSize{5, 4, 3}, BoxSize{12, 10, 11},
                                         BoxSize{40, 30, 20}),
                         [](const auto& box) {
                             return std::to_string(box.param.nx) + "x" +
                                    std::to_string(box.param.ny) + "x" +
                                    std::to_string(box.param.nz);
                         });

TEST(BiCGSTABAgainstPlainSpecialCases, EveryExitOfASolveIsReached) {
    Generator generate(1);
    std::set<plain::BiCGSTAB::Exit> reached;
    constexpr double scales[] = {1.0, 1e-16, 1e-30, 1e16, 1e100};

    for (int trial = 0; trial < 4000; ++trial) {
        System system =
            generate.Sparse(generate.Int(1, 6), generate.Int(0, 3), generate.Int(-1, 2), true);
        system.name = "trial " + std::to_string(trial);
        system.times = trial % 50 == 0 ? 0 : 20;
        const double matrixScale = scales[generate.Int(0, 4)];
        const double vectorScale = scales[generate.Int(0, 4)];
        for (Entry& e : system.entries) {
            e.value *= matrixScale;
        }
        for (int i = 1; i <= system.n; ++i) {
            system.b[i] *= vectorScale;
        }
        reached.insert(Compare(system));
    }

    EXPECT_EQ(reached.size(), static_cast<std::size_t>(plain::BiCGSTAB::kExits));
}

TEST(BiCGSTABAgainstPlainSpecialCases, NaNAndInfinityInTheDataGiveTheSameBits) {
    Generator generate(2);

    for (double odd : {std::numeric_limits<double>::quiet_NaN(),
                       std::numeric_limits<double>::infinity(), -0.0, 1e-310}) {
        for (int place = 0; place < 20; ++place) {
            System system = generate.Sparse(12, 4.0, 3.0, false);
            system.name = std::to_string(odd) + " at " + std::to_string(place);
            system.times = 5;
            if (place < 10) {
                system.b[1 + place] = odd;
            } else {
                system.entries[place].value = odd;
            }
            Compare(system);
        }
    }
}

TEST(BiCGSTABAgainstPlainSpecialCases, SumsOfNegativeZerosGiveTheSameBits) {
    Generator generate(6);
    const double values[] = {0.0, -0.0, 1.0, -1.0, 1e-200, -1e-200};
    const auto value = [&] { return values[generate.Int(0, 5)]; };

    for (int trial = 0; trial < 3000; ++trial) {
        System system = generate.Sparse(generate.Int(2, 6), generate.Int(0, 3), 2.0, false);
        system.name = "trial " + std::to_string(trial);
        system.declared = trial % 2 == 0;
        system.times = 4;
        for (Entry& e : system.entries) {
            e.value = e.row == e.col ? 1.0 + generate.Int(0, 1) : value();
        }
        for (int i = 1; i <= system.n; ++i) {
            system.b[i] = value();
            system.x[i] = value();
        }
        Compare(system);
    }
}

TEST(BiCGSTABAgainstPlainSpecialCases, AnEmptyRowIsAcceptedIfTheNextRowStartsWithItsColumn) {
    System system;
    system.n = 4;
    system.b = {0.0, 1.0, 2.0, 3.0, 4.0};
    system.x.assign(5, 0.0);

    system.name = "row 2 empty";
    system.entries = {{1, 1, 3.0}, {1, 2, 1.0}, {3, 2, 4.0}, {3, 3, 5.0},
                      {3, 4, 1.0}, {4, 1, 2.0}, {4, 4, 6.0}};
    Compare(system, 1);  // once only: afterward row 3 starts with its own diagonal

    // The next row has a column below the empty row after its first entry.
    system.name = "row 3 empty";
    system.entries = {{1, 1, 3.0}, {2, 2, 4.0}, {2, 1, 1.0}, {4, 3, 2.0}, {4, 1, 5.0}, {4, 4, 6.0}};
    Compare(system, 1);
}

TEST(BiCGSTABAgainstPlainSpecialCases, ThePreconditionerAloneWorksOnAnyOrderOfEntries) {
    Generator generate(3);

    for (int trial = 0; trial < 200; ++trial) {
        System system = generate.Sparse(generate.Int(1, 30), generate.Int(0, 8), 2.0, false);
        generate.Shuffle(system.entries);
        std::stable_partition(system.entries.begin(), system.entries.end(),
                              [](const Entry& e) { return e.row == e.col; });
        CKVX_ART_MatSolver_BiCGSTAB ours(system.n);
        plain::BiCGSTAB plain(system.n);
        Assemble(system, ours);
        Assemble(system, plain);

        ours.DILU(ours.D);
        plain.PlainDILU(plain.D);
        ours.SolveDILU(ours.D, system.b.data(), ours.sHat);
        plain.PlainSolveDILU(plain.D, system.b.data(), plain.sHat);

        ExpectSameState(ours, plain);
    }
}

TEST(BiCGSTABAgainstPlainSpecialCases, ARowMayStoreAColumnTwice) {
    Generator generate(4);

    for (int trial = 0; trial < 100; ++trial) {
        const System system = generate.Sparse(generate.Int(3, 20), 5.0, 3.0, false);
        CKVX_ART_MatSolver_BiCGSTAB ours(system.n);
        plain::BiCGSTAB plain(system.n);
        Assemble(system, ours);
        Assemble(system, plain);
        const int row = generate.Int(1, system.n);
        const int last = ours.Ia[row + 1] - 1;
        ours.Ja[last] = plain.Ja[last] = ours.Ja[generate.Int(ours.Ia[row], last)];
        std::vector<double> x = system.x;
        std::vector<double> xPlain = system.x;

        ours.MatSolve(system.b.data(), x.data());
        plain.PlainMatSolve(system.b.data(), xPlain.data());

        ExpectSameState(ours, plain);
        ExpectSame(x.data(), xPlain.data(), system.n, "x");
    }
}

TEST(BiCGSTABAgainstPlainSpecialCases, ThePreconditionerAloneIgnoresColumnsAboveTheRows) {
    Generator generate(5);

    for (int trial = 0; trial < 100; ++trial) {
        System system = generate.Sparse(generate.Int(1, 20), 4.0, 2.0, false);
        for (int k = 0; k < system.n; ++k) {
            const int row = generate.Int(1, system.n);
            system.entries.push_back({row, system.n + generate.Int(1, 3), generate.Real()});
        }
        CKVX_ART_MatSolver_BiCGSTAB ours(system.n, system.n + 3);
        plain::BiCGSTAB plain(system.n, system.n + 3);
        Assemble(system, ours);
        Assemble(system, plain);

        ours.DILU(ours.D);
        plain.PlainDILU(plain.D);
        ours.SolveDILU(ours.D, system.b.data(), ours.sHat);
        plain.PlainSolveDILU(plain.D, system.b.data(), plain.sHat);

        ExpectSameState(ours, plain);
    }
}

}  // namespace
