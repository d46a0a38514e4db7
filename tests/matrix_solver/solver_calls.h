#ifndef KVX3D_TESTS_MATRIX_SOLVER_SOLVER_CALLS_H
#define KVX3D_TESTS_MATRIX_SOLVER_SOLVER_CALLS_H

#include <vector>

#include "plain/samples/problems.h"

/// What one call is given beside the problem.
struct Call {
    double tolerance = 1e-8;
    int maxIterations = 100000;
    int direct = 0;
};

/// Calls solveMatrix() on a new solver, x as start and result; returns the status. Fails the test
/// if the call writes to either output stream or to any array but x.
int SolveAndWatch(const Problem& problem, std::vector<double>& x, const Call& call = {});

/// The same problem through the methods that a build without DUNE and SuperLU has. The result is
/// given in CKVXMatrixSolver's status values.
int SolveWithoutLibraries(const Problem& problem, std::vector<double>& x, const Call& call = {});

#endif
