#include "tests/matrix_solver/systems.h"

#include <cmath>
#include <vector>

using kvx3d_solver::CsrSystem;
using kvx3d_solver::Vector;

CsrSystem Read(const Problem& p) {
    return kvx3d_solver::ReadSystem(
               {p.n, p.NonZeros(), p.Ia.data(), p.Ja.data(), p.Aa.data(), p.rhs.data()})
        .value();
}

Vector Scaled(const Problem& p, const CsrSystem& system) {
    Vector x = p.exact;
    for (double& v : x) {
        v = std::ldexp(v, -system.solutionExponent);
    }
    return x;
}

Problem Tridiagonal(int n, double below, double diagonal, double above) {
    Problem p;
    for (int i = 1; i <= n; ++i) {
        std::vector<Problem::Neighbor> neighbors;
        if (i > 1) {
            neighbors.push_back({i - 1, below});
        }
        if (i < n) {
            neighbors.push_back({i + 1, above});
        }
        p.AddRow(diagonal, neighbors);
    }
    p.ChooseSolution(/*seed=*/32);
    return p;
}
