/// The sparse matrix: declaring a pattern, assembling into it, and the row-wise product.
///
/// Sizes are the edge of a box of cells with 7-point rows. The yardsticks do the same work with
/// Eigen: triplets to a compressed matrix, coeffRef on the finished pattern, its product.

#include <benchmark/benchmark.h>

#include <Eigen/SparseCore>
#include <cmath>
#include <vector>

#include "benchmarks/linear_systems.h"

namespace {

using EigenMatrix = Eigen::SparseMatrix<double, Eigen::RowMajor>;

EigenMatrix ToEigen(const std::vector<Coefficient>& entries, int n) {
    std::vector<Eigen::Triplet<double>> triplets;
    triplets.reserve(entries.size());
    for (const Coefficient& e : entries) {
        triplets.emplace_back(e.row - 1, e.col - 1, e.value);
    }
    EigenMatrix A(n, n);
    A.setFromTriplets(triplets.begin(), triplets.end());
    return A;
}

void BM_Pattern(benchmark::State& state) {
    const int m = static_cast<int>(state.range(0));
    const std::vector<Coefficient> entries = BoxCoefficients(m);
    int stored = 0;
    for (auto _ : state) {
        CKVX_ART_SparseMatrix A(m * m * m);
        for (const Coefficient& e : entries) {
            A.AddIndex(e.row, e.col);
        }
        A.CompressIndex();
        stored = A.Ia[m * m * m + 1] - 1;
    }
    if (stored != static_cast<int>(entries.size())) {
        state.SkipWithError("wrong count of entries");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(entries.size()));
}
BENCHMARK(BM_Pattern)->Arg(32)->Arg(64)->Unit(benchmark::kMillisecond);

void BM_PatternEigen(benchmark::State& state) {
    const int m = static_cast<int>(state.range(0));
    const std::vector<Coefficient> entries = BoxCoefficients(m);
    std::int64_t stored = 0;
    for (auto _ : state) {
        stored = ToEigen(entries, m * m * m).nonZeros();
    }
    if (stored != static_cast<std::int64_t>(entries.size())) {
        state.SkipWithError("wrong count of entries");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(entries.size()));
}
BENCHMARK(BM_PatternEigen)->Arg(32)->Arg(64)->Unit(benchmark::kMillisecond);

void BM_Assembly(benchmark::State& state) {
    const int m = static_cast<int>(state.range(0));
    const std::vector<Coefficient> entries = BoxCoefficients(m);
    CKVX_ART_SparseMatrix A(m * m * m);
    Assemble(entries, A);
    for (auto _ : state) {
        for (const Coefficient& e : entries) {
            A.AddElementValue(e.row, e.col, e.value);
        }
    }
    const double adds = 1.0 + static_cast<double>(state.iterations());
    if (std::abs(A.GetDiagonalValue(1) / (6.05 * adds) - 1.0) > 1e-9) {
        state.SkipWithError("wrong diagonal");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(entries.size()));
}
BENCHMARK(BM_Assembly)->Arg(32)->Arg(64)->Unit(benchmark::kMillisecond);

void BM_AssemblyEigen(benchmark::State& state) {
    const int m = static_cast<int>(state.range(0));
    const std::vector<Coefficient> entries = BoxCoefficients(m);
    EigenMatrix A = ToEigen(entries, m * m * m);
    for (auto _ : state) {
        for (const Coefficient& e : entries) {
            A.coeffRef(e.row - 1, e.col - 1) += e.value;
        }
    }
    const double adds = 1.0 + static_cast<double>(state.iterations());
    if (std::abs(A.coeff(0, 0) / (6.05 * adds) - 1.0) > 1e-9) {
        state.SkipWithError("wrong diagonal");
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(entries.size()));
}
BENCHMARK(BM_AssemblyEigen)->Arg(32)->Arg(64)->Unit(benchmark::kMillisecond);

void BM_Product(benchmark::State& state) {
    const int m = static_cast<int>(state.range(0));
    const int n = m * m * m;
    CKVX_ART_SparseMatrix A(n);
    Assemble(BoxCoefficients(m), A);
    std::vector<double> x(n + 1, 1.0);
    std::vector<double> y(n + 1);
    for (auto _ : state) {
        for (int i = 1; i <= n; ++i) {
            y[i] = A.DotProduct(i, x.data());
        }
        benchmark::DoNotOptimize(y.data());
    }
    if (std::abs(y[1] - 3.45) > 1e-12) {
        state.SkipWithError("wrong product");
    }
    state.SetItemsProcessed(state.iterations() * (A.Ia[n + 1] - 1));
}
BENCHMARK(BM_Product)->Arg(32)->Arg(64)->Unit(benchmark::kMillisecond);

void BM_ProductEigen(benchmark::State& state) {
    const int m = static_cast<int>(state.range(0));
    const int n = m * m * m;
    const EigenMatrix A = ToEigen(BoxCoefficients(m), n);
    const Eigen::VectorXd x = Eigen::VectorXd::Ones(n);
    Eigen::VectorXd y(n);
    for (auto _ : state) {
        y.noalias() = A * x;
        benchmark::DoNotOptimize(y.data());
    }
    if (std::abs(y[0] - 3.45) > 1e-12) {
        state.SkipWithError("wrong product");
    }
    state.SetItemsProcessed(state.iterations() * A.nonZeros());
}
BENCHMARK(BM_ProductEigen)->Arg(32)->Arg(64)->Unit(benchmark::kMillisecond);

}  // namespace
