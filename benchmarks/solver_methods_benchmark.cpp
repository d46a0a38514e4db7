/// The methods of the solver library alone, each on the reduced system: where the constants of the
/// chain come from (docs/matrix_solver.md).
///
/// BM_Ilu is ILU(0)-BiCGSTAB with the factorization, BM_Multigrid the pairwise multigrid with its
/// set-up, under conjugate gradients for a symmetric matrix and BiCGSTAB for any other, both to a
/// relative residual of 1e-8. BM_MultigridFull keeps the trivial rows. BM_SparseLu factorizes and
/// solves. Counters: the steps taken, what
/// ILU(0) promises, the estimated cost of the sparse LU.

#include <benchmark/benchmark.h>

#include <cstddef>

#include "matrix_solver/csr_system.h"
#include "matrix_solver/ilu0.h"
#include "matrix_solver/krylov.h"
#include "matrix_solver/lu_cost.h"
#include "matrix_solver/pairwise_multigrid.h"
#include "matrix_solver/reduction.h"
#include "matrix_solver/sparse_lu.h"
#include "plain/samples/flow_problem.h"
#include "plain/samples/problems.h"

namespace {

using kvx3d_solver::CsrSystem;
using kvx3d_solver::Vector;

constexpr double tolerance = 1e-8;
constexpr int mostSteps = 400;

using Make = Problem (*)(int m);

Problem Poisson(int m) {
    return Diffusion(m, 1.0, 1.0, 1.0);
}

Problem Anisotropic(int m) {
    return Diffusion(m, 1.0, 1.0, 100.0);
}

template <int tenths>
Problem Peclet(int m) {
    return ConvectionDiffusion(m, 0.1 * tenths);
}

Problem Pressure(int m) {
    return FlowProblem(m, FlowEquation::Pressure);
}

Problem Random(int m) {
    return RandomSparse(m, 6, /*seed=*/5);
}

CsrSystem Full(const Problem& p) {
    return kvx3d_solver::ReadSystem(
               {p.n, p.NonZeros(), p.Ia.data(), p.Ja.data(), p.Aa.data(), p.rhs.data()})
        .value();
}

CsrSystem Reduced(const Problem& p) {
    const CsrSystem full = Full(p);
    return kvx3d_solver::Reduction(full).ReducedSystem();
}

void CheckResidual(benchmark::State& state, const CsrSystem& A, const Vector& x) {
    Vector r(x.size());
    if (!(kvx3d_solver::Residual(A, x, r) <= 1.01 * tolerance * A.rhsNorm)) {
        state.SkipWithError("tolerance missed: the time means nothing");
    }
    state.counters["rows"] = A.n;
}

void BM_Ilu(benchmark::State& state, Make make) {
    const CsrSystem A = Reduced(make(static_cast<int>(state.range(0))));
    Vector x;
    int steps = 0;
    for (auto _ : state) {
        x.assign(A.rhs.size(), 0.0);
        kvx3d_solver::Ilu0 ilu(A);
        steps = kvx3d_solver::BiCgStab(A, ilu, {tolerance * A.rhsNorm, mostSteps}, x);
    }
    kvx3d_solver::Ilu0 ilu(A);
    state.counters["promise"] = kvx3d_solver::IluPromise(A, ilu);
    state.counters["steps"] = steps;
    CheckResidual(state, A, x);
}

void RunMultigrid(benchmark::State& state, const CsrSystem& A) {
    const bool symmetric = kvx3d_solver::IsSymmetric(A);
    const auto method = symmetric ? kvx3d_solver::ConjugateGradients : kvx3d_solver::BiCgStab;
    Vector x;
    int steps = 0;
    for (auto _ : state) {
        x.assign(A.rhs.size(), 0.0);
        const auto multigrid = kvx3d_solver::MakePairwiseMultigrid(A);
        steps = method(A, *multigrid, {tolerance * A.rhsNorm, mostSteps}, x);
    }
    state.counters["steps"] = steps;
    CheckResidual(state, A, x);
}

void BM_Multigrid(benchmark::State& state, Make make) {
    RunMultigrid(state, Reduced(make(static_cast<int>(state.range(0)))));
}

void BM_MultigridFull(benchmark::State& state, Make make) {
    RunMultigrid(state, Full(make(static_cast<int>(state.range(0)))));
}

void BM_SparseLu(benchmark::State& state, Make make) {
    const CsrSystem A = Reduced(make(static_cast<int>(state.range(0))));
    Vector x(A.rhs.size());
    for (auto _ : state) {
        kvx3d_solver::SparseLu(A).Solve(A.rhs, x);
    }
    const kvx3d_solver::LuCost cost = kvx3d_solver::EstimateLuCost(A);
    state.counters["work"] = cost.work;
    state.counters["entries"] = cost.entries;
    CheckResidual(state, A, x);
}

#define KVX3D_METHOD_ROW(method, problem) \
    BENCHMARK_CAPTURE(method, problem, problem)->Unit(benchmark::kMillisecond)

KVX3D_METHOD_ROW(BM_Ilu, Poisson)->Arg(32)->Arg(64);
KVX3D_METHOD_ROW(BM_Multigrid, Poisson)->Arg(32)->Arg(64);
KVX3D_METHOD_ROW(BM_Ilu, Anisotropic)->Arg(32)->Arg(64);
KVX3D_METHOD_ROW(BM_Multigrid, Anisotropic)->Arg(32)->Arg(64);
KVX3D_METHOD_ROW(BM_Ilu, Peclet<1>)->Arg(32)->Arg(64);
KVX3D_METHOD_ROW(BM_Multigrid, Peclet<1>)->Arg(32)->Arg(64);
KVX3D_METHOD_ROW(BM_Ilu, Peclet<10>)->Arg(32)->Arg(64);
KVX3D_METHOD_ROW(BM_Multigrid, Peclet<10>)->Arg(32)->Arg(64);
KVX3D_METHOD_ROW(BM_Ilu, Peclet<100>)->Arg(32)->Arg(64)->Arg(96);
KVX3D_METHOD_ROW(BM_Multigrid, Peclet<100>)->Arg(32)->Arg(64)->Arg(96);
KVX3D_METHOD_ROW(BM_Ilu, Pressure)->Arg(64)->Arg(128);
KVX3D_METHOD_ROW(BM_Multigrid, Pressure)->Arg(64)->Arg(128);
KVX3D_METHOD_ROW(BM_MultigridFull, Pressure)->Arg(64)->Arg(128);
KVX3D_METHOD_ROW(BM_SparseLu, Poisson)->Arg(20)->Arg(26);
KVX3D_METHOD_ROW(BM_SparseLu, Random)->Arg(3000);
KVX3D_METHOD_ROW(BM_SparseLu, Pressure)->Arg(128);

}  // namespace
