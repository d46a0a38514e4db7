#include "matrix_solver/sparse_lu.h"

namespace kvx3d_solver {

struct SparseLu::Factors {};

bool HasSparseLu() {
    return false;
}

SparseLu::SparseLu(std::vector<int>, std::vector<int>, Vector) {}

SparseLu::~SparseLu() = default;

void SparseLu::Solve(double*) {}

}  // namespace kvx3d_solver
