#ifndef KVX3D_TESTS_LINEAR_ALGEBRA_RECORDING_MATRIX_SOLVER_H
#define KVX3D_TESTS_LINEAR_ALGEBRA_RECORDING_MATRIX_SOLVER_H

#include <string>
#include <vector>

/// The arguments of one call of solveMatrix(). Vectors are copies made during the call.
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

/// The calls of the solver objects in this program. The replacement of the library in these tests
/// does not solve: it copies `answer` to x, if there is one, and returns `status`.
struct SolverRecord {
    std::vector<std::string> names;  // one for each object created
    int destroyed = 0;
    std::vector<int> directFlags;
    std::vector<RecordedSolve> solves;
    std::vector<double> answer;
    int status = 0;
};

/// The record of the current test; assign SolverRecord{} to clear it.
SolverRecord& TheRecord();

#endif
