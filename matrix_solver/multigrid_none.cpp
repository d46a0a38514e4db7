#include "matrix_solver/multigrid.h"

namespace kvx3d_solver {

bool HasMultigrid() {
    return false;
}

std::unique_ptr<Preconditioner> MakeMultigrid(const CsrSystem&) {
    return nullptr;
}

}  // namespace kvx3d_solver
