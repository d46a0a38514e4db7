#include "matrix_solver/matrix_solver.h"

#include <cmath>
#include <exception>
#include <new>
#include <optional>

#include "matrix_solver/csr_system.h"
#include "matrix_solver/solve_chain.h"

namespace {

using kvx3d_solver::CallerArrays;
using kvx3d_solver::CsrSystem;
using kvx3d_solver::Outcome;
using kvx3d_solver::SolveOptions;
using kvx3d_solver::Vector;

int ToStatus(Outcome outcome) {
    switch (outcome) {
        case Outcome::Solved:
            return CKVXMatrixSolver::Solved;
        case Outcome::ToleranceMissed:
            return CKVXMatrixSolver::ToleranceMissed;
        case Outcome::Singular:
            break;
    }
    return CKVXMatrixSolver::Singular;
}

/// Solves in the scale of the system. Entries that the solution leaves unchanged are not written,
/// because scaling a subnormal entry forth and back is not exact.
int SolveScaled(const CsrSystem& system, const SolveOptions& options, double* x) {
    Vector scaled(x, x + system.n);
    for (double& v : scaled) {
        v = std::ldexp(v, -system.solutionExponent);
    }
    const Vector start = scaled;
    const int status = ToStatus(SolveChain(system, options, scaled));
    for (int i = 0; i < system.n; ++i) {
        if (scaled[i] != start[i]) {
            x[i] = std::ldexp(scaled[i], system.solutionExponent);
        }
    }
    return status;
}

}  // namespace

struct CKVXMatrixSolver::Impl {
    bool directFirst = false;
};

// If there is no memory for the state, the object still solves, always with the iterations first.
CKVXMatrixSolver::CKVXMatrixSolver(const char*) : impl(new (std::nothrow) Impl) {}

CKVXMatrixSolver::~CKVXMatrixSolver() {
    delete impl;
}

void CKVXMatrixSolver::SetAsDirect(int flag) {
    if (impl) {
        impl->directFirst = flag != 0;
    }
}

int CKVXMatrixSolver::solveMatrix(int n, int nonZeroN, int* Ia, int* Ja, double* Aa, double* rhs,
                                  double* x, double tolerance, int maxIterations, int) {
    if (n == 0) {
        return Solved;
    }
    // The negated comparison also rejects a tolerance that is NaN.
    if (!x || !(tolerance >= 0.0) || maxIterations < 0) {
        return BadInput;
    }
    try {
        const std::optional<CsrSystem> system =
            kvx3d_solver::ReadSystem({n, nonZeroN, Ia, Ja, Aa, rhs});
        if (!system) {
            return BadInput;
        }
        SolveOptions options;
        options.tolerance = tolerance;
        options.maxIterations = maxIterations;
        options.directFirst = impl && impl->directFirst;
        return SolveScaled(*system, options, x);
    } catch (...) {
        // Usually out of memory. x is written last, so it is as on entry.
        return Singular;
    }
}
