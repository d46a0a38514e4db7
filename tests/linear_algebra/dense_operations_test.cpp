#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "linear_algebra/solver_dense.h"
#include "tests/linear_algebra/dense_matrix.h"

namespace {

using Doubles = std::vector<double>;

class DenseOperations : public testing::Test {
protected:
    CKVX_ACMT_MatSolver_Dense dense;
};

using DenseInverse = DenseOperations;
using DenseProduct = DenseOperations;
using DensePrinting = DenseOperations;

// Inverse

TEST_F(DenseInverse, InvertsTwoByTwoByHand) {
    Matrix A({{4, 2}, {2, 2}});
    Matrix inverse(2, 2);

    dense.Inverse(A, inverse, 2);

    EXPECT_EQ(inverse.Row(1), (Doubles{0.5, -0.5}));
    EXPECT_EQ(inverse.Row(2), (Doubles{-0.5, 1.0}));
    EXPECT_EQ(A.Row(1), (Doubles{4, 2}));
}

TEST_F(DenseInverse, DoesNotChangeTheOutputForOneByOne) {
    Matrix A({Doubles{4}});
    Matrix inverse({Doubles{9}});

    dense.Inverse(A, inverse, 1);
    EXPECT_EQ(inverse[1][1], 9.0);

    dense.Inverse(A, inverse, 0);
    EXPECT_EQ(inverse[1][1], 9.0);
}

TEST_F(DenseInverse, AZeroFirstPivotGivesNonFiniteNumbers) {
    Matrix A({{0, 1}, {1, 0}});
    Matrix inverse(2, 2);

    dense.Inverse(A, inverse, 2);

    EXPECT_FALSE(std::isfinite(inverse[1][1]));
}

TEST_F(DenseInverse, TimesTheMatrixIsTheIdentity) {
    for (int n : {2, 3, 5, 12, 40}) {
        Matrix A(n, n);
        Matrix inverse(n, n);
        FillDominant(A, n, 5);
        dense.Inverse(A, inverse, n);
        for (int i = 1; i <= n; ++i) {
            for (int j = 1; j <= n; ++j) {
                double sum = 0.0;
                for (int k = 1; k <= n; ++k) {
                    sum += A[i][k] * inverse[k][j];
                }
                // The matrix is dominant by a factor near 2: a few rounding errors per entry.
                ASSERT_NEAR(sum, i == j ? 1.0 : 0.0, 1e-13) << n << ": " << i << ", " << j;
            }
        }
    }
}

TEST_F(DenseInverse, MayOverwriteTheMatrix) {
    Matrix A({{4, 2}, {2, 2}});

    dense.Inverse(A, A, 2);

    EXPECT_EQ(A.Row(2), (Doubles{-0.5, 1.0}));
}

/// The inverse of A in its simplest form: one loop per step, on a block indexed from 0.
std::vector<Doubles> PlainInverse(const Matrix& A, int n) {
    std::vector<Doubles> m;
    for (int i = 1; i <= n; ++i) {
        m.push_back(A.Row(i));
    }
    for (int i = 1; i < n; ++i) {
        m[0][i] = m[0][i] / m[0][0];
    }
    for (int i = 1; i < n; ++i) {
        for (int j = i; j < n; ++j) {
            double sum = 0.0;
            for (int k = 0; k < i; ++k) {
                sum += m[j][k] * m[k][i];
            }
            m[j][i] = m[j][i] - sum;
        }
        if (i == n - 1) {
            break;
        }
        for (int j = i + 1; j < n; ++j) {
            double sum = 0.0;
            for (int k = 0; k < i; ++k) {
                sum += m[i][k] * m[k][j];
            }
            m[i][j] = (m[i][j] - sum) / m[i][i];
        }
    }
    for (int i = 0; i < n; ++i) {
        for (int j = i; j < n; ++j) {
            double x = i == j ? 1.0 : 0.0;
            for (int k = i; k < j; ++k) {
                x -= m[j][k] * m[k][i];
            }
            m[j][i] = x / m[j][j];
        }
    }
    for (int i = 0; i < n; ++i) {
        for (int j = i + 1; j < n; ++j) {
            double sum = 0.0;
            for (int k = i; k < j; ++k) {
                sum += m[k][j] * (k == i ? 1.0 : m[i][k]);
            }
            m[i][j] = -sum;
        }
    }
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            double sum = 0.0;
            for (int k = std::max(i, j); k < n; ++k) {
                sum += (j == k ? 1.0 : m[j][k]) * m[k][i];
            }
            m[j][i] = sum;
        }
    }
    return m;
}

TEST_F(DenseInverse, HasTheBitsOfThePlainLoops) {
    for (int n : {2, 3, 4, 7, 20}) {
        for (double diagonal : {0.0, 1.0 * n}) {
            Matrix A(n, n);
            Matrix inverse(n, n);
            FillDominant(A, n, 6);
            for (int i = 1; i <= n; ++i) {
                A[i][i] -= n - diagonal;
                A[i][1 + i % n] = i % 3 == 0 ? -0.0 : A[i][1 + i % n];
            }

            dense.Inverse(A, inverse, n);

            const std::vector<Doubles> plain = PlainInverse(A, n);
            for (int i = 0; i < n; ++i) {
                EXPECT_EQ(std::memcmp(&plain[i][0], &inverse[i + 1][1], n * sizeof(double)), 0)
                    << n << ", row " << i + 1;
            }
        }
    }
}

// Product

TEST_F(DenseProduct, MultipliesByHand) {
    Matrix A({{1, 2, 3}, {4, 5, 6}});
    Matrix B({{1, 0}, {0, 1}, {2, 2}});
    Matrix C(2, 2);

    dense.Multiply(A, B, C, 2, 3, 2);

    EXPECT_EQ(C.Row(1), (Doubles{7, 8}));
    EXPECT_EQ(C.Row(2), (Doubles{16, 17}));
}

TEST_F(DenseProduct, MayOverwriteAFactor) {
    Matrix A({{1, 2}, {3, 4}});
    Matrix B({{0, 1}, {1, 0}});

    dense.Multiply(A, B, A, 2, 2, 2);
    EXPECT_EQ(A.Row(1), (Doubles{2, 1}));
    EXPECT_EQ(A.Row(2), (Doubles{4, 3}));

    dense.Multiply(A, B, B, 2, 2, 2);
    EXPECT_EQ(B.Row(1), (Doubles{1, 2}));
}

TEST_F(DenseProduct, AddsInAscendingOrder) {
    Matrix A({Doubles{1, 1, 1}});
    Matrix B({Doubles{1}, Doubles{1e16}, Doubles{-1e16}});
    Matrix C(1, 1);

    dense.Multiply(A, B, C, 1, 3, 1);

    EXPECT_EQ(C[1][1], 0.0);
}

// Printing

template <typename Call>
std::string Printed(Call call) {
    testing::internal::CaptureStdout();
    call();
    return testing::internal::GetCapturedStdout();
}

const std::string kRule = "----------------------------------------\n";

TEST_F(DensePrinting, PrintsAMatrixInFieldsOfWidthTen) {
    Matrix A({{1, -2.5, 1.0 / 3.0}, {1e-20, 0, 1234567}});

    EXPECT_EQ(Printed([&] { dense.CheckMatrix(A, 2, 3); }),
              "<Matrix>\n"
              "         1      -2.5  0.333333\n"
              "     1e-20         01.23457e+06\n"
              "</Matrix>\n");
}

TEST_F(DensePrinting, PrintsASystemUnderTwoHeadings) {
    Matrix A({{1, 2}, {3, 4}});
    double rhs[] = {0.0, 0.5, -0.25};

    EXPECT_EQ(Printed([&] { dense.CheckMatrix(A, rhs, 2); }), kRule + "LHS\n" + kRule +
                                                                  "         1         2\n"
                                                                  "         3         4\n" +
                                                                  kRule + "RHS\n" + kRule +
                                                                  "       0.5\n"
                                                                  "     -0.25\n");
}

TEST_F(DensePrinting, PrintsCompressedRowsWithTheirZeros) {
    Matrix A({{-1, 0}, {3, 4}});

    EXPECT_EQ(Printed([&] { dense.CheckCSR(A, 2); }), kRule + "NonZeroData\n" + kRule +
                                                          "        -1\n"
                                                          "         0\n"
                                                          "         4\n"
                                                          "         3\n" +
                                                          kRule + "NonZeroID\n" + kRule +
                                                          "         1\n"
                                                          "         2\n"
                                                          "         2\n"
                                                          "         1\n" +
                                                          kRule + "NonZeroCount\n" + kRule +
                                                          "         1\n"
                                                          "         3\n"
                                                          "         5\n");
    EXPECT_EQ(dense.Ia, nullptr);
    EXPECT_EQ(dense.Ja, nullptr);
    EXPECT_EQ(dense.Aa, nullptr);
}

}  // namespace
