// BiCGSTAB with DILU: the time of one iteration and of a whole solve.
//
// A row is one system; its argument m stands for m^3 cells. "Iteration" is the time of one
// iteration, compared with the transcription in plain/ (same bits, one loop per step) and with two
// matrix products, which every iteration needs. "Solve" starts from zero and ends at 1e-8,
// including the set-up of the preconditioner; it is compared with Eigen's BiCGSTAB with ILUT and
// with the diagonal as preconditioner. "Factorization" computes the DILU diagonal and is compared
// with the transcription.

#include <benchmark/benchmark.h>

#include <Eigen/IterativeLinearSolvers>
#include <Eigen/SparseCore>
#include <cmath>
#include <cstdint>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "benchmarks/linear_systems.h"
#include "plain/plain_bicgstab.h"

namespace {

enum class Kind { Box, Irregular, Shuffled };

struct System {
    std::vector<Coefficient> entries;
    std::unique_ptr<plain::BiCGSTAB> A;
    std::vector<double> b;
};

/// The system of a kind on m^3 cells, built at its first use.
System& TheSystem(Kind kind, int m) {
    static std::map<std::pair<Kind, int>, System> systems;
    System& system = systems[{kind, m}];
    if (system.A) {
        return system;
    }
    system.entries = kind == Kind::Box ? BoxCoefficients(m) : IrregularCoefficients(m);
    system.A = std::make_unique<plain::BiCGSTAB>(m * m * m);
    Assemble(system.entries, *system.A);
    if (kind == Kind::Shuffled) {
        ShuffleRows(*system.A);
    }
    system.b.resize(m * m * m + 1);
    for (int i = 1; i <= m * m * m; ++i) {
        system.b[i] = 1.0 / (1 + i % 17);
    }
    return system;
}

System& TheSystem(const benchmark::State& state, Kind kind) {
    return TheSystem(kind, static_cast<int>(state.range(0)));
}

/// The inverted DILU diagonal, which is computed once per solve.
void BM_Factorization(benchmark::State& state, Kind kind) {
    plain::BiCGSTAB& A = *TheSystem(state, kind).A;
    std::vector<double> D(A.rowsN + 1);
    std::vector<double> expected(A.rowsN + 1);
    A.SetTimes(0);
    A.MatSolve(D.data(), expected.data());  // moves the diagonals to the front
    for (auto _ : state) {
        A.DILU(D.data());
        benchmark::DoNotOptimize(D.data());
    }
    A.PlainDILU(expected.data());
    if (D != expected) {
        state.SkipWithError("other bits than the transcription: the time is meaningless");
    }
    state.counters["size"] = A.rowsN;
}

void BM_FactorizationPlain(benchmark::State& state, Kind kind) {
    plain::BiCGSTAB& A = *TheSystem(state, kind).A;
    std::vector<double> D(A.rowsN + 1);
    std::vector<double> x(A.rowsN + 1);
    A.SetTimes(0);
    A.MatSolve(D.data(), x.data());
    for (auto _ : state) {
        A.PlainDILU(D.data());
        benchmark::DoNotOptimize(D.data());
    }
    state.counters["size"] = A.rowsN;
}

constexpr int kIterations = 20;

/// One iteration, timed in solves of kIterations iterations, so a twentieth of the work before the
/// first iteration is included. x is the result of the solve.
template <typename Solve>
void RunIterations(benchmark::State& state, Kind kind, Solve solve) {
    System& system = TheSystem(state, kind);
    plain::BiCGSTAB& A = *system.A;
    A.SetTolerance(-1.0);  // never reached, so that a solve makes all iterations
    A.SetTimes(kIterations);
    std::vector<double> x(A.rowsN + 1);
    while (state.KeepRunningBatch(kIterations)) {
        std::fill(x.begin(), x.end(), 0.0);
        solve(A, system.b.data(), x.data());
    }
    const double iterations = A.GetIterTimes();
    const double norm = A.GetRnorm();
    std::vector<double> expected(A.rowsN + 1);
    A.PlainMatSolve(system.b.data(), expected.data());
    if (x != expected || iterations != A.GetIterTimes() || norm != A.GetRnorm()) {
        state.SkipWithError("other bits than the transcription: the time is meaningless");
    }
    state.counters["size"] = A.rowsN;
}

void BM_Iteration(benchmark::State& state, Kind kind) {
    RunIterations(state, kind, [](auto& A, const double* b, double* x) { A.MatSolve(b, x); });
}

void BM_IterationPlain(benchmark::State& state, Kind kind) {
    RunIterations(state, kind, [](auto& A, const double* b, double* x) { A.PlainMatSolve(b, x); });
}

/// Two products of a row-major Eigen matrix.
void BM_IterationTwoProducts(benchmark::State& state, Kind kind) {
    const System& system = TheSystem(state, kind);
    const int n = system.A->rowsN;
    std::vector<Eigen::Triplet<double>> triplets;
    for (const Coefficient& e : system.entries) {
        triplets.emplace_back(e.row - 1, e.col - 1, e.value);
    }
    Eigen::SparseMatrix<double, Eigen::RowMajor> A(n, n);
    A.setFromTriplets(triplets.begin(), triplets.end());
    Eigen::VectorXd x = Eigen::VectorXd::Ones(n);
    Eigen::VectorXd y(n);
    for (auto _ : state) {
        y.noalias() = A * x;
        benchmark::DoNotOptimize(y.data());
        y.noalias() = A * x;
        benchmark::DoNotOptimize(y.data());
    }
    if (!y.allFinite()) {
        state.SkipWithError("not finite");
    }
}

/// |b - A x| / |b|
double RelativeResidual(CKVX_ART_SparseMatrix& A, const std::vector<double>& b,
                        std::vector<double>& x) {
    double rr = 0.0;
    double bb = 0.0;
    for (int i = 1; i <= A.GetRowsN(); ++i) {
        const double r = b[i] - A.DotProduct(i, x.data());
        rr += r * r;
        bb += b[i] * b[i];
    }
    return std::sqrt(rr / bb);
}

void BM_Solve(benchmark::State& state, Kind kind) {
    System& system = TheSystem(state, kind);
    plain::BiCGSTAB& A = *system.A;
    A.SetTimes(1000);
    A.SetTolerance(1e-8);
    std::vector<double> x(A.rowsN + 1);
    for (auto _ : state) {
        std::fill(x.begin(), x.end(), 0.0);
        A.MatSolve(system.b.data(), x.data());
    }
    if (RelativeResidual(A, system.b, x) > 1e-8) {
        state.SkipWithError("not solved");
    }
    state.counters["size"] = A.rowsN;
    state.counters["iterations"] = A.GetIterTimes();
}

template <typename Preconditioner>
using EigenSolver = Eigen::BiCGSTAB<Eigen::SparseMatrix<double, Eigen::RowMajor>, Preconditioner>;

template <typename Preconditioner>
void SolveByEigen(benchmark::State& state, Kind kind, EigenSolver<Preconditioner>& solver) {
    System& system = TheSystem(state, kind);
    const int n = system.A->rowsN;
    std::vector<Eigen::Triplet<double>> triplets;
    for (const Coefficient& e : system.entries) {
        triplets.emplace_back(e.row - 1, e.col - 1, e.value);
    }
    Eigen::SparseMatrix<double, Eigen::RowMajor> A(n, n);
    A.setFromTriplets(triplets.begin(), triplets.end());
    const Eigen::VectorXd b = Eigen::Map<const Eigen::VectorXd>(system.b.data() + 1, n);
    Eigen::VectorXd x;
    solver.setTolerance(1e-8);
    for (auto _ : state) {
        solver.compute(A);
        x = solver.solve(b);
    }
    if (solver.info() != Eigen::Success) {
        state.SkipWithError("not solved");
    }
    state.counters["size"] = n;
    state.counters["iterations"] = static_cast<double>(solver.iterations());
}

void BM_SolveEigenILUT(benchmark::State& state, Kind kind) {
    EigenSolver<Eigen::IncompleteLUT<double>> solver;
    solver.preconditioner().setFillfactor(1);  // factors of about the size of the matrix
    SolveByEigen(state, kind, solver);
}

void BM_SolveEigenDiagonal(benchmark::State& state, Kind kind) {
    EigenSolver<Eigen::DiagonalPreconditioner<double>> solver;
    SolveByEigen(state, kind, solver);
}

/// Four sizes of each kind: the time of an iteration against the size shows the effect of the
/// caches.
const std::vector<std::int64_t> boxes = {32, 50, 64, 100};
const std::vector<std::int64_t> irregular = {24, 32, 40, 48};

#define KVX3D_ROW(function, kind, sizes)          \
    BENCHMARK_CAPTURE(function, kind, Kind::kind) \
        ->ArgsProduct({sizes})                    \
        ->Unit(benchmark::kMillisecond)

KVX3D_ROW(BM_Iteration, Box, boxes);
KVX3D_ROW(BM_IterationPlain, Box, boxes);
KVX3D_ROW(BM_IterationTwoProducts, Box, boxes);
KVX3D_ROW(BM_Iteration, Irregular, irregular);
KVX3D_ROW(BM_IterationPlain, Irregular, irregular);
KVX3D_ROW(BM_Iteration, Shuffled, irregular);
KVX3D_ROW(BM_IterationPlain, Shuffled, irregular);
KVX3D_ROW(BM_Factorization, Box, {64});
KVX3D_ROW(BM_FactorizationPlain, Box, {64});
KVX3D_ROW(BM_Factorization, Irregular, {48});
KVX3D_ROW(BM_FactorizationPlain, Irregular, {48});
KVX3D_ROW(BM_Solve, Box, {32});
KVX3D_ROW(BM_SolveEigenILUT, Box, {32});
KVX3D_ROW(BM_SolveEigenDiagonal, Box, {32});
KVX3D_ROW(BM_Solve, Irregular, {32});
KVX3D_ROW(BM_SolveEigenILUT, Irregular, {32});
KVX3D_ROW(BM_SolveEigenDiagonal, Irregular, {32});

}  // namespace
