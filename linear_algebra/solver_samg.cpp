#include "linear_algebra/solver_samg.h"

#include <algorithm>

#include "matrix_solver/matrix_solver.h"

CKVX_ART_MatSolver_SAMG::CKVX_ART_MatSolver_SAMG(int n) : CKVX_ART_SparseMatrix(n) {
    DefaultConstructorProcedure();
}

CKVX_ART_MatSolver_SAMG::CKVX_ART_MatSolver_SAMG(int rows, int cols)
    : CKVX_ART_SparseMatrix(rows, cols) {
    DefaultConstructorProcedure();
}

CKVX_ART_MatSolver_SAMG::~CKVX_ART_MatSolver_SAMG() {
    delete solver;
    delete[] rhs;
    delete[] tempValue;
}

void CKVX_ART_MatSolver_SAMG::DefaultConstructorProcedure() {
    tolerance = 1.1e-08;
    times = 100000;
    solver = new CKVXMatrixSolver("");
    tempValue = nullptr;
    rhs = new double[rowsN + 1]();
    rhs[0] = rowsN;
}

bool CKVX_ART_MatSolver_SAMG::MatSolve(const double* b, double* x) {
    if (!compressed) {
        CompressIndex();
    }
    std::copy(b + 1, b + rowsN + 1, rhs + 1);
    if (MakeDiagFrontCSR()) {
        TempNonZeroValueCopy();
        MakeDiagPositive();
        solver->solveMatrix(rowsN, Ia[rowsN + 1] - 1, Ia + 1, Ja + 1, tempValue + 1, rhs + 1, x + 1,
                            tolerance, times, 1);
    }
    return true;
}

void CKVX_ART_MatSolver_SAMG::TempNonZeroValueCopy() {
    const int m = Ia[rowsN + 1];
    if (tempValue != nullptr && tempValue[0] != m - 1) {
        delete[] tempValue;
        tempValue = nullptr;
    }
    if (tempValue == nullptr) {
        tempValue = new double[m];
        tempValue[0] = m - 1;
    }
    std::copy(Aa + Ia[1], Aa + m, tempValue + Ia[1]);
}

void CKVX_ART_MatSolver_SAMG::MakeDiagPositive() {
    for (int i = 1; i <= rowsN; ++i) {
        // Rows with a diagonal of 0.0, -0.0 or NaN stay as they are.
        if (!(tempValue[Ia[i]] < 0.0)) {
            continue;
        }
        for (int k = Ia[i]; k < Ia[i + 1]; ++k) {
            tempValue[k] = -tempValue[k];
        }
        rhs[i] = -rhs[i];
    }
}
