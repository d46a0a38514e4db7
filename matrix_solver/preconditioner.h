#ifndef KVX3D_MATRIX_SOLVER_PRECONDITIONER_H
#define KVX3D_MATRIX_SOLVER_PRECONDITIONER_H

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

/// An approximate inverse of the system's matrix.
class Preconditioner {
public:
    Preconditioner() = default;
    Preconditioner(const Preconditioner&) = delete;
    Preconditioner& operator=(const Preconditioner&) = delete;
    virtual ~Preconditioner() = default;

    /// z = M^-1 r, both with n entries. Not const because implementations keep work vectors.
    virtual void Apply(const Vector& r, Vector& z) = 0;
};

}  // namespace kvx3d_solver

#endif
