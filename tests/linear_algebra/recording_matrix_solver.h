#ifndef KVX3D_TESTS_LINEAR_ALGEBRA_RECORDING_MATRIX_SOLVER_H
#define KVX3D_TESTS_LINEAR_ALGEBRA_RECORDING_MATRIX_SOLVER_H

#include <string>
#include <vector>

/// What one call of solveMatrix() was given. Vectors are copies taken at the call.
struct RecordedSolve {
    int n;
    int nonZeroN;
    std::vector<int> Ia;      // n + 1 entries
    std::vector<int> Ja;      // nonZeroN entries
    std::vector<double> Aa;   // nonZeroN entries
    std::vector<double> rhs;  // n entries
    std::vector<double> x;    // n entries, as on entry
    int* IaAddress;
    int* JaAddress;
    double* AaAddress;
    double* rhsAddress;
    double* xAddress;
    double tolerance;
    int maxIterations;
    int mode;
};

/// What the solver objects of this program have been asked. The stand-in library of these tests
/// solves nothing: it writes `answer` into x, if there is one, and returns `status`.
struct SolverRecord {
    std::vector<std::string> names;  // one for each object created
    int destroyed = 0;
    std::vector<int> directFlags;
    std::vector<RecordedSolve> solves;
    std::vector<double> answer;
    int status = 0;
};

/// The record of the test that runs; assign SolverRecord{} to start anew.
SolverRecord& TheRecord();

#endif
