/// BiCGSTAB with DILU: what one iteration costs, and what a whole solve costs.
///
/// A row is one system. "iteration" runs a fixed number of iterations and reports the time of one;
/// its yardsticks are the plain transcription of the method (same bits, one loop a step) and two
/// plain CSR products, which no iteration can do without. "solve" goes from zero to 1e-8, set-up
/// of the preconditioner included; its yardsticks are Eigen's BiCGSTAB with ILUT and with the
/// diagonal as preconditioner. "factorisation" is the DILU diagonal, against the plain one.

#include <benchmark/benchmark.h>

#include <Eigen/IterativeLinearSolvers>
#include <Eigen/SparseCore>
#include <cmath>
#include <map>
#include <memory>
#include <vector>

#include "benchmarks/linear_systems.h"
#include "benchmarks/plain/plain_bicgstab.h"

namespace {

enum SystemKind { kBox64, kBox100, kIrregular48, kIrregular48Shuffled, kSystems };

struct System {
    std::vector<Coefficient> entries;
    std::unique_ptr<PlainBiCGSTAB> A;
    std::vector<double> b;
};

/// The system of that kind, built at its first use.
System& TheSystem(std::int64_t kind) {
    static std::map<std::int64_t, System> systems;
    System& system = systems[kind];
    if (system.A) {
        return system;
    }
    const bool box = kind == kBox64 || kind == kBox100;
    const int m = kind == kBox64 ? 64 : kind == kBox100 ? 100 : 48;
    system.entries = box ? BoxCoefficients(m) : IrregularCoefficients(m);
    system.A = std::make_unique<PlainBiCGSTAB>(m * m * m);
    Assemble(system.entries, *system.A);
    if (kind == kIrregular48Shuffled) {
        ShuffleRows(*system.A);
    }
    system.b.resize(m * m * m + 1);
    for (int i = 1; i <= m * m * m; ++i) {
        system.b[i] = 1.0 / (1 + i % 17);
    }
    return system;
}

/// The inverted DILU diagonal, once a solve.
void BM_Factorisation(benchmark::State& state) {
    PlainBiCGSTAB& A = *TheSystem(state.range(0)).A;
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
        state.SkipWithError("other bits than the plain transcription: the time means nothing");
    }
}
BENCHMARK(BM_Factorisation)->DenseRange(0, kSystems - 1)->Unit(benchmark::kMillisecond);

void BM_FactorisationPlain(benchmark::State& state) {
    PlainBiCGSTAB& A = *TheSystem(state.range(0)).A;
    std::vector<double> D(A.rowsN + 1);
    std::vector<double> x(A.rowsN + 1);
    A.SetTimes(0);
    A.MatSolve(D.data(), x.data());
    for (auto _ : state) {
        A.PlainDILU(D.data());
        benchmark::DoNotOptimize(D.data());
    }
}
BENCHMARK(BM_FactorisationPlain)->DenseRange(0, kSystems - 1)->Unit(benchmark::kMillisecond);

constexpr int kIterations = 10;

void ReportIterations(benchmark::State& state, const System& system) {
    state.SetItemsProcessed(state.iterations() * kIterations *
                            (system.A->Ia[system.A->rowsN + 1] - 1));
    state.counters["time/iteration"] = benchmark::Counter(
        kIterations, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// kIterations iterations by `solve`; x is what they leave.
template <typename Solve>
void RunIterations(benchmark::State& state, Solve solve) {
    System& system = TheSystem(state.range(0));
    PlainBiCGSTAB& A = *system.A;
    A.SetTolerance(-1.0);  // no norm is below this
    A.SetTimes(kIterations);
    std::vector<double> x(A.rowsN + 1);
    for (auto _ : state) {
        std::fill(x.begin(), x.end(), 0.0);
        solve(A, system.b.data(), x.data());
    }
    std::vector<double> expected(A.rowsN + 1);
    A.PlainMatSolve(system.b.data(), expected.data());
    if (x != expected) {
        state.SkipWithError("other bits than the plain transcription: the time means nothing");
    }
    ReportIterations(state, system);
}

void BM_Iteration(benchmark::State& state) {
    RunIterations(state, [](auto& A, const double* b, double* x) { A.MatSolve(b, x); });
}
BENCHMARK(BM_Iteration)->DenseRange(0, kSystems - 1)->Unit(benchmark::kMillisecond);

void BM_IterationPlain(benchmark::State& state) {
    RunIterations(state, [](auto& A, const double* b, double* x) { A.PlainMatSolve(b, x); });
}
BENCHMARK(BM_IterationPlain)->DenseRange(0, kSystems - 1)->Unit(benchmark::kMillisecond);

/// Two products of a row-major Eigen matrix, kIterations times.
void BM_IterationTwoProducts(benchmark::State& state) {
    const System& system = TheSystem(state.range(0));
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
        for (int k = 0; k < kIterations; ++k) {
            y.noalias() = A * x;
            benchmark::DoNotOptimize(y.data());
            y.noalias() = A * x;
            benchmark::DoNotOptimize(y.data());
        }
    }
    if (!y.allFinite()) {
        state.SkipWithError("not finite");
    }
    ReportIterations(state, system);
}
BENCHMARK(BM_IterationTwoProducts)->DenseRange(0, kSystems - 1)->Unit(benchmark::kMillisecond);

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

void BM_Solve(benchmark::State& state) {
    System& system = TheSystem(state.range(0));
    PlainBiCGSTAB& A = *system.A;
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
    state.counters["iterations"] = A.GetIterTimes();
}
BENCHMARK(BM_Solve)->DenseRange(0, kSystems - 1)->Unit(benchmark::kMillisecond);

template <typename Preconditioner>
using EigenSolver = Eigen::BiCGSTAB<Eigen::SparseMatrix<double, Eigen::RowMajor>, Preconditioner>;

template <typename Preconditioner>
void SolveByEigen(benchmark::State& state, EigenSolver<Preconditioner>& solver) {
    System& system = TheSystem(state.range(0));
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
    state.counters["iterations"] = static_cast<double>(solver.iterations());
}

void BM_SolveEigenILUT(benchmark::State& state) {
    EigenSolver<Eigen::IncompleteLUT<double>> solver;
    solver.preconditioner().setFillfactor(1);  // factors about as large as the matrix
    SolveByEigen(state, solver);
}
BENCHMARK(BM_SolveEigenILUT)->DenseRange(0, kSystems - 1)->Unit(benchmark::kMillisecond);

void BM_SolveEigenDiagonal(benchmark::State& state) {
    EigenSolver<Eigen::DiagonalPreconditioner<double>> solver;
    SolveByEigen(state, solver);
}
BENCHMARK(BM_SolveEigenDiagonal)->DenseRange(0, kSystems - 1)->Unit(benchmark::kMillisecond);

}  // namespace
