#include "linear_algebra/solver_dense.h"

#include <algorithm>
#include <cstddef>
#include <iomanip>
#include <iostream>
#include <memory>

#include "host_link/containers.h"
#include "host_link/detail/classic_format.h"
#include "matrix_solver/matrix_solver.h"

namespace {

/// A row-major n by n block, indexed from 0: the work area of the inversion.
struct SquareBlock {
    double* first;
    int n;
    double* operator[](int row) const { return first + static_cast<std::ptrdiff_t>(row) * n; }
};

/// Replaces m by its factors L and U. L has the diagonal; the unit diagonal of U is not stored.
void FactorizeLU(const SquareBlock& m) {
    const int n = m.n;
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
        for (int j = i + 1; j < n; ++j) {
            double sum = 0.0;
            for (int k = 0; k < i; ++k) {
                sum += m[i][k] * m[k][j];
            }
            m[i][j] = (m[i][j] - sum) / m[i][i];
        }
    }
}

/// Replaces the lower triangle including the diagonal by its inverse.
void InvertLower(const SquareBlock& m) {
    for (int i = 0; i < m.n; ++i) {
        for (int j = i; j < m.n; ++j) {
            double x = 1.0;
            if (i != j) {
                double sum = 0.0;
                for (int k = i; k < j; ++k) {
                    sum += m[j][k] * m[k][i];
                }
                x = -sum;
            }
            m[j][i] = x / m[j][j];
        }
    }
}

/// Replaces the strict upper triangle of a unit upper matrix by that of its inverse.
void InvertUnitUpper(const SquareBlock& m) {
    for (int i = 0; i < m.n; ++i) {
        for (int j = i + 1; j < m.n; ++j) {
            double sum = 0.0;
            for (int k = i; k < j; ++k) {
                sum += m[k][j] * (k == i ? 1.0 : m[i][k]);
            }
            m[i][j] = -sum;
        }
    }
}

/// Replaces the two triangular matrices by their product, upper times lower.
void MultiplyUpperByLower(const SquareBlock& m) {
    for (int i = 0; i < m.n; ++i) {
        for (int j = 0; j < m.n; ++j) {
            double sum = 0.0;
            for (int k = std::max(i, j); k < m.n; ++k) {
                sum += (j == k ? 1.0 : m[j][k]) * m[k][i];
            }
            m[j][i] = sum;
        }
    }
}

/// Prints a heading between two rules.
void PrintHeading(const char* heading) {
    const char* rule = "----------------------------------------";
    std::cout << rule << '\n' << heading << '\n' << rule << '\n';
}

/// Prints entries 1..cols on one line, each in a field of width 10.
void PrintRow(const double* row, int cols) {
    for (int j = 1; j <= cols; ++j) {
        std::cout << std::setw(10) << row[j];
    }
    std::cout << '\n';
}

/// Prints entries 1..n, one a line, each in a field of width 10.
void PrintColumn(const double* values, int n) {
    for (int i = 1; i <= n; ++i) {
        std::cout << std::setw(10) << values[i] << '\n';
    }
}

/// The same for ints.
void PrintColumn(const int* values, int n) {
    for (int i = 1; i <= n; ++i) {
        std::cout << std::setw(10) << values[i] << '\n';
    }
}

}  // namespace

CKVX_ACMT_MatSolver_Dense::CKVX_ACMT_MatSolver_Dense()
    : Ia(nullptr),
      Ja(nullptr),
      Aa(nullptr),
      tolerance(1.1e-16),
      maxIterations(5000),
      nonZeroN(0),
      rowsN(0),
      colsN(0),
      gaussMatrix{},
      gaussSolution{},
      solver(nullptr) {}

CKVX_ACMT_MatSolver_Dense::~CKVX_ACMT_MatSolver_Dense() {
    ClearData();
    delete solver;
}

int CKVX_ACMT_MatSolver_Dense::SolveDenseMatrix(double** A, double* rhs, int n, double* x) {
    if (n >= 3 && n <= 18) {
        GaussElimination(n, A, rhs, x);
        return 0;
    }
    if (n == 2) {
        // No return here: the closed form is the first guess of the external solver, whose status
        // is returned to the caller.
        const double det = A[2][2] * A[1][1] - A[1][2] * A[2][1];
        x[1] = (A[2][2] * rhs[1] - A[1][2] * rhs[2]) / det;
        x[2] = (A[1][1] * rhs[2] - A[2][1] * rhs[1]) / det;
    }
    double* rhsBlock = nullptr;
    newDouble1D(rhsBlock, n);
    const std::unique_ptr<double[]> rhsCopy(rhsBlock);
    std::copy(rhs + 1, rhs + n + 1, rhsBlock + 1);
    MatrixToCSR_DiagPositive(A, rhsBlock, n);
    solver->SetAsDirect(0);
    tolerance = 1.1e-06;
    maxIterations = 50;
    const int status = solver->solveMatrix(n, nonZeroN, Ia + 1, Ja + 1, Aa + 1, rhsBlock + 1, x + 1,
                                           tolerance, maxIterations, 1);
    ClearData();
    return status;
}

void CKVX_ACMT_MatSolver_Dense::Inverse(double** A, double** inverse, int n) {
    // The block is never released, on any path: each call leaves n * n doubles allocated. The
    // header warns callers of that.
    const SquareBlock m{new double[static_cast<std::size_t>(n) * n], n};
    for (int i = 0; i < n; ++i) {
        std::copy(A[i + 1] + 1, A[i + 1] + n + 1, m[i]);
    }
    if (n < 2) {
        return;
    }
    FactorizeLU(m);
    InvertLower(m);
    InvertUnitUpper(m);
    MultiplyUpperByLower(m);
    for (int i = 0; i < n; ++i) {
        std::copy(m[i], m[i] + n, inverse[i + 1] + 1);
    }
}

void CKVX_ACMT_MatSolver_Dense::Multiply(double** A, double** B, double** C, int rows, int inner,
                                         int cols) {
    double** T = nullptr;
    newDouble2D(T, inner, cols);
    for (int i = 1; i <= rows; ++i) {
        for (int j = 1; j <= cols; ++j) {
            T[i][j] = 0.0;
            for (int k = 1; k <= inner; ++k) {
                T[i][j] += B[k][j] * A[i][k];
            }
        }
    }
    for (int i = 1; i <= rows; ++i) {
        std::copy(T[i] + 1, T[i] + cols + 1, C[i] + 1);
    }
    freeDouble2D(T);
}

void CKVX_ACMT_MatSolver_Dense::CheckMatrix(double** A, double* rhs, int n) {
    const kvx3d::detail::ClassicFormat format(std::cout);
    PrintHeading("LHS");
    for (int i = 1; i <= n; ++i) {
        PrintRow(A[i], n);
    }
    PrintHeading("RHS");
    PrintColumn(rhs, n);
}

void CKVX_ACMT_MatSolver_Dense::CheckMatrix(double** A, int rows, int cols) {
    const kvx3d::detail::ClassicFormat format(std::cout);
    std::cout << "<Matrix>\n";
    for (int i = 1; i <= rows; ++i) {
        PrintRow(A[i], cols);
    }
    std::cout << "</Matrix>\n";
}

void CKVX_ACMT_MatSolver_Dense::CheckCSR(double** A, int n) {
    MatrixToCSR(A, n);
    const kvx3d::detail::ClassicFormat format(std::cout);
    PrintHeading("NonZeroData");
    PrintColumn(Aa, nonZeroN);
    PrintHeading("NonZeroID");
    PrintColumn(Ja, nonZeroN);
    PrintHeading("NonZeroCount");
    PrintColumn(Ia, rowsN + 1);
    ClearData();
}

void CKVX_ACMT_MatSolver_Dense::GaussElimination(int n, double** A, double* rhs, double* x) {
    auto& a = gaussMatrix;
    auto& s = gaussSolution;
    for (int i = 1; i <= n; ++i) {
        std::copy(A[i] + 1, A[i] + n + 1, a[i] + 1);
        a[i][n + 1] = rhs[i];
    }
    for (int k = 1; k <= n; ++k) {
        for (int i = k + 1; i <= n; ++i) {
            const double f = a[i][k] / a[k][k];
            // From column 1 and not from k: the public work area then also holds the rounding
            // residue left of the pivot. No later step reads it.
            for (int j = 1; j <= n + 1; ++j) {
                a[i][j] = a[i][j] - f * a[k][j];
            }
        }
    }
    s[n] = a[n][n + 1] / a[n][n];
    for (int i = n - 1; i >= 1; --i) {
        double sum = 0.0;
        for (int j = i + 1; j <= n; ++j) {
            sum += a[i][j] * s[j];
        }
        s[i] = (a[i][n + 1] - sum) / a[i][i];
    }
    std::copy(s + 1, s + n + 1, x + 1);
}

bool CKVX_ACMT_MatSolver_Dense::MatrixToCSR(double** A, int n) {
    SetDimension(n);
    Ia[1] = 1;
    int k = 0;
    for (int i = 1; i <= n; ++i) {
        ++k;
        Aa[k] = A[i][i];
        Ja[k] = i;
        for (int j = 1; j <= n; ++j) {
            if (j == i) {
                continue;
            }
            ++k;
            Aa[k] = A[i][j];
            Ja[k] = j;
        }
        Ia[i + 1] = colsN * i + 1;
    }
    return true;
}

bool CKVX_ACMT_MatSolver_Dense::MatrixToCSR_DiagPositive(double** A, double* rhs, int n) {
    MatrixToCSR(A, n);
    for (int i = 1; i <= n; ++i) {
        double& diagonal = Aa[Ia[i]];
        if (diagonal < 0.0) {
            // The off-diagonal entries keep their signs. So this is not the row times -1, and the
            // system passed on differs from the caller's. Callers with negative diagonals negate
            // such rows themselves.
            diagonal = -diagonal;
            rhs[i] = -rhs[i];
        }
    }
    return true;
}

bool CKVX_ACMT_MatSolver_Dense::SetDimension(int n) {
    rowsN = n;
    colsN = n;
    nonZeroN = n * n;
    ClearData();
    Ja = new int[nonZeroN + 1]();
    Ia = new int[rowsN + 2]();
    Aa = new double[nonZeroN + 1]();
    // The previous solver is not destroyed: a copy of this object may still point to it, and there
    // is no reference count. The last solver is destroyed with this object.
    solver = new CKVXMatrixSolver("");
    return true;
}

void CKVX_ACMT_MatSolver_Dense::ClearData() {
    delete[] Ja;
    delete[] Ia;
    delete[] Aa;
    Ja = nullptr;
    Ia = nullptr;
    Aa = nullptr;
}
