#ifndef KVX3D_TESTS_MATRIX_SOLVER_SOLVER_CALLS_H
#define KVX3D_TESTS_MATRIX_SOLVER_SOLVER_CALLS_H

#include <vector>

#include "plain/samples/problems.h"

/// The arguments of a call apart from the problem.
struct Call {
    double tolerance = 1e-8;
    int maxIterations = 100000;
    int direct = 0;
};

/// Calls solveMatrix() on a new solver with x as start and result, and returns the status. Fails
/// the test if the call writes to an output stream or to any array but x.
int SolveAndWatch(const Problem& problem, std::vector<double>& x, const Call& call = {});

/// Solves the same problem without the sparse LU, so that only an iteration can solve a system that
/// is neither small nor full. Returns a status of CKVXMatrixSolver.
int SolveByIterations(const Problem& problem, std::vector<double>& x, const Call& call = {});

#endif
