#include "tests/linear_algebra/recording_matrix_solver.h"

#include <algorithm>

#include "matrix_solver/matrix_solver.h"

SolverRecord& TheRecord() {
    static SolverRecord record;
    return record;
}

CKVXMatrixSolver::CKVXMatrixSolver(const char* name) {
    TheRecord().names.push_back(name);
}

CKVXMatrixSolver::~CKVXMatrixSolver() {
    ++TheRecord().destroyed;
}

void CKVXMatrixSolver::SetAsDirect(int flag) {
    TheRecord().directFlags.push_back(flag);
}

int CKVXMatrixSolver::solveMatrix(int n, int nonZeroN, int* Ia, int* Ja, double* Aa, double* rhs,
                                  double* x, double tolerance, int maxIterations, int mode) {
    TheRecord().solves.push_back({n,
                                  nonZeroN,
                                  {Ia, Ia + n + 1},
                                  {Ja, Ja + nonZeroN},
                                  {Aa, Aa + nonZeroN},
                                  {rhs, rhs + n},
                                  {x, x + n},
                                  Ia,
                                  Ja,
                                  Aa,
                                  rhs,
                                  x,
                                  tolerance,
                                  maxIterations,
                                  mode});
    std::copy(TheRecord().answer.begin(), TheRecord().answer.end(), x);
    return TheRecord().status;
}
