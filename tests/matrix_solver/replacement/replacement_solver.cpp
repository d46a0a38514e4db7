/// Another library of the same name, in the place of the closed one: every unknown is 42.

#include "matrix_solver/matrix_solver.h"

struct CKVXMatrixSolver::Impl {};

CKVXMatrixSolver::CKVXMatrixSolver(const char*) : impl(nullptr) {}
CKVXMatrixSolver::~CKVXMatrixSolver() = default;
void CKVXMatrixSolver::SetAsDirect(int) {}

int CKVXMatrixSolver::solveMatrix(int n, int, int*, int*, double*, double*, double* x, double, int,
                                  int) {
    for (int i = 0; i < n; ++i) {
        x[i] = 42.0;
    }
    return 0;
}
