// The sparse matrix: declaring a pattern, assembling into it, and the product with a vector.
//
// The size is the edge of a box of cells with 7-point rows. "Plain" is a vector of ordered sets
// without checks. The other yardsticks do the same work with Eigen: triplets to a compressed
// matrix, coeffRef on the finished pattern, and the product. The bytes of the pattern are those of
// all allocated blocks including the headers of the allocator; the peak is reported too.

#include <benchmark/benchmark.h>

#include <Eigen/SparseCore>
#include <cmath>
#include <vector>

#include "benchmarks/allocation_count.h"
#include "benchmarks/linear_systems.h"
#include "plain/plain_sparse_matrix.h"

namespace {

using EigenMatrix = Eigen::SparseMatrix<double, Eigen::RowMajor>;

/// Box edges; the largest has a million rows.
void Edges(benchmark::internal::Benchmark* row) {
    row->Arg(32)->Arg(50)->Arg(64)->Arg(100)->Unit(benchmark::kMillisecond);
}

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

/// Declares the 7-point pattern of a box of m^3 cells in the manner of a host: all diagonals, then
/// both sides of each face.
template <typename Matrix>
void DeclareByFace(Matrix& A, int m) {
    const int n = m * m * m;
    for (int row = 1; row <= n; ++row) {
        A.AddIndex(row, row);
    }
    for (int step : {1, m, m * m}) {
        for (int row = 1; row <= n; ++row) {
            if ((row - 1) / step % m < m - 1) {
                A.AddIndex(row, row + step);
                A.AddIndex(row + step, row);
            }
        }
    }
    A.CompressIndex();
}

template <typename Matrix>
void BM_PatternOf(benchmark::State& state) {
    const int m = static_cast<int>(state.range(0));
    const int n = m * m * m;
    int entries = 0;
    for (auto _ : state) {
        Matrix A(n);
        DeclareByFace(A, m);
        entries = A.Ia[n + 1] - 1;
    }
    if (entries != 7 * n - 6 * m * m) {
        state.SkipWithError("wrong count of entries");
    }
    {
        const AllocationCount count;
        Matrix A(n);
        DeclareByFace(A, m);
        state.counters["bytes_per_entry"] = static_cast<double>(count.Bytes()) / entries;
        state.counters["peak_bytes_per_entry"] = static_cast<double>(count.PeakBytes()) / entries;
    }
    state.SetItemsProcessed(state.iterations() * entries);
    state.counters["size"] = n;
}
BENCHMARK(BM_PatternOf<CKVX_ART_SparseMatrix>)->Name("BM_Pattern")->Apply(Edges);
BENCHMARK(BM_PatternOf<plain::Pattern>)->Name("BM_PatternPlain")->Apply(Edges);

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
    state.counters["size"] = m * m * m;
}
BENCHMARK(BM_PatternEigen)->Apply(Edges);

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
    state.counters["size"] = m * m * m;
}
BENCHMARK(BM_Assembly)->Apply(Edges);

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
    state.counters["size"] = m * m * m;
}
BENCHMARK(BM_AssemblyEigen)->Apply(Edges);

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
    state.counters["size"] = n;
}
BENCHMARK(BM_Product)->Apply(Edges);

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
    state.counters["size"] = n;
}
BENCHMARK(BM_ProductEigen)->Apply(Edges);

}  // namespace
