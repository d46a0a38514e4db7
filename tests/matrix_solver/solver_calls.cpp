#include "tests/matrix_solver/solver_calls.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "matrix_solver/matrix_solver.h"
#include "matrix_solver/solve_chain.h"

namespace {

/// Compares bytes, not values: a NaN equals itself, and a negative zero differs from zero.
template <typename T>
bool SameBytes(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

}  // namespace

int SolveAndWatch(const Problem& problem, std::vector<double>& x, const Call& call) {
    Problem given = problem;
    CKVXMatrixSolver solver("");
    solver.SetAsDirect(call.direct);

    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = solver.solveMatrix(given.n, given.NonZeros(), given.Ia.data(),
                                          given.Ja.data(), given.Aa.data(), given.rhs.data(),
                                          x.data(), call.tolerance, call.maxIterations, 1);
    const std::string errors = testing::internal::GetCapturedStderr();
    const std::string output = testing::internal::GetCapturedStdout();

    EXPECT_EQ(output, "");
    EXPECT_EQ(errors, "");
    EXPECT_TRUE(SameBytes(given.Ia, problem.Ia));
    EXPECT_TRUE(SameBytes(given.Ja, problem.Ja));
    EXPECT_TRUE(SameBytes(given.Aa, problem.Aa));
    EXPECT_TRUE(SameBytes(given.rhs, problem.rhs));
    return status;
}

int SolveByIterations(const Problem& problem, std::vector<double>& x, const Call& call) {
    const auto system =
        kvx3d_solver::ReadSystem({problem.n, problem.NonZeros(), problem.Ia.data(),
                                  problem.Ja.data(), problem.Aa.data(), problem.rhs.data()});
    if (!system) {
        return CKVXMatrixSolver::BadInput;
    }
    kvx3d_solver::SolveOptions options;
    options.tolerance = call.tolerance;
    options.maxIterations = call.maxIterations;
    options.useSparseLu = false;
    for (double& v : x) {
        v = std::ldexp(v, -system->solutionExponent);
    }
    const auto outcome = kvx3d_solver::SolveChain(*system, options, x);
    for (double& v : x) {
        v = std::ldexp(v, system->solutionExponent);
    }
    switch (outcome) {
        case kvx3d_solver::Outcome::Solved:
            return CKVXMatrixSolver::Solved;
        case kvx3d_solver::Outcome::ToleranceMissed:
            return CKVXMatrixSolver::ToleranceMissed;
        default:
            return CKVXMatrixSolver::Singular;
    }
}
