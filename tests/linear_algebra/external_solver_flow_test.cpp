#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "linear_algebra/solver_dense.h"
#include "linear_algebra/solver_samg.h"

// Whole solves with the real external library.

namespace {

using Vector = std::vector<double>;

/// The 5-point stencil on an m by m plate, with every third row multiplied by -1, so that its
/// diagonal is negative.
void FillPlate(CKVX_ART_SparseMatrix& A, int m) {
    for (int j = 0; j < m; ++j) {
        for (int i = 0; i < m; ++i) {
            const int row = 1 + i + m * j;
            const double sign = row % 3 == 0 ? -1.0 : 1.0;
            const auto add = [&](bool inside, int col, double value) {
                if (inside) {
                    A.AddElementValue(row, col, sign * value);
                }
            };
            add(j > 0, row - m, -1.0);
            add(i > 0, row - 1, -1.2);
            add(true, row, 4.5);
            add(i < m - 1, row + 1, -0.8);
            add(j < m - 1, row + m, -1.0);
        }
    }
}

TEST(ExternalSolverFlow, TheSAMGFrontSolvesAPlateWithNegativeRows) {
    constexpr int m = 24;
    CKVX_ART_MatSolver_SAMG A(m * m);
    FillPlate(A, m);
    Vector exact(m * m + 1);
    Vector b(m * m + 1);
    Vector x(m * m + 1);
    for (int i = 1; i <= m * m; ++i) {
        exact[i] = std::cos(0.3 * i);
    }
    for (int i = 1; i <= m * m; ++i) {
        b[i] = A.DotProduct(i, exact.data());
    }

    EXPECT_TRUE(A.MatSolve(b.data(), x.data()));

    for (int i = 1; i <= m * m; ++i) {
        // The library stops at a residual of 1.1e-8 |b|, and the rows are dominant by 0.5.
        ASSERT_NEAR(x[i], exact[i], 1e-5) << i;
    }
}

class DenseFlow : public testing::TestWithParam<int> {};

TEST_P(DenseFlow, SolvesADominantSystem) {
    const int n = GetParam();
    std::vector<Vector> rows(n + 1, Vector(n + 1));
    std::vector<double*> A;
    for (Vector& row : rows) {
        A.push_back(row.data());
    }
    Vector rhs(n + 1);
    for (int i = 1; i <= n; ++i) {
        for (int j = 1; j <= n; ++j) {
            A[i][j] = i == j ? 2.0 * n : std::sin(i + 3.0 * j);
            rhs[i] += A[i][j] * j;
        }
    }
    Vector x(n + 1);
    CKVX_ACMT_MatSolver_Dense dense;

    EXPECT_EQ(dense.SolveDenseMatrix(A.data(), rhs.data(), n, x.data()), 0);

    for (int i = 1; i <= n; ++i) {
        // The library stops at a residual of 1.1e-6 |rhs|; |rhs| is about 2 n x, with x up to n.
        EXPECT_NEAR(x[i], i, 1e-5 * n) << i;
    }
}
INSTANTIATE_TEST_SUITE_P(Sizes, DenseFlow, testing::Values(1, 2, 3, 18, 19, 30));

}  // namespace
