#ifndef KVX3D_MATRIX_SOLVER_SPARSE_LU_H
#define KVX3D_MATRIX_SOLVER_SPARSE_LU_H

#include <memory>
#include <vector>

#include "matrix_solver/csr_system.h"

namespace kvx3d_solver {

/// True if the build found SuperLU.
bool HasSparseLu();

/// LU factorisation of a sparse matrix with a fill-reducing order and threshold pivoting. Time and
/// memory grow much faster than n: the caller bounds the work.
///
/// Source: J. W. Demmel et al., SIAM J. Matrix Anal. Appl. 20 (1999) 720-755,
/// doi:10.1137/S0895479895291765.
class SparseLu {
public:
    enum class State {
        Ready,
        Singular,    ///< an exact zero pivot
        Unavailable  ///< no sparse LU in this build, or out of memory
    };

    /// Factorises the matrix of 0-based rows.
    SparseLu(std::vector<int> rowStart, std::vector<int> column, Vector value);
    ~SparseLu();
    SparseLu(const SparseLu&) = delete;
    SparseLu& operator=(const SparseLu&) = delete;

    State Result() const { return state; }

    /// Replaces the n values of b by A^-1 b. Only when Ready.
    void Solve(double* b);

private:
    struct Factors;
    std::unique_ptr<Factors> factors;
    State state = State::Unavailable;
};

}  // namespace kvx3d_solver

#endif
