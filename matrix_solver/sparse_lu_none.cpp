#include "matrix_solver/sparse_lu.h"

namespace kvx3d_solver {

bool HasSparseLu() {
    return false;
}

SparseLuResult SolveBySparseLu(const CsrSystem&, Vector&) {
    return SparseLuResult::Unavailable;
}

}  // namespace kvx3d_solver
