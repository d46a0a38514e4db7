// Matrix assembly on a box of n x n x n cells: one call of an operator on a declared pattern of
// about 25 entries per row, both sides of each inner face. Items are inner faces.
//
// There are four yardsticks, all based on the transcription of the operators in plain/. Those with
// a matrix must give the same matrix bit for bit:
// - Plain: each addition by AddElementValue().
// - Bare: the same loops, but each product is added at a position from a list prepared beforehand,
// so
//   that nothing is searched. The difference to ours is the search and the checks.
// - Read: the same loops without a matrix, that is the time to read records and stencils.
// - Known: finished values and positions in one packed list, so that only the list and the matrix
// are
//   read. No operator can be that fast, since Read alone takes longer.

#include "benchmarks/box_of_cells.h"
#include "fvm_operators/mat_operator.h"
#include "plain/plain_operators.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace {

using KVX_ART_FVM::CKVX_ART_MatOperator;

constexpr double weight = 0.7;

// The operators that are compared, ours and the transcription.

struct Diffusion {
    static void Ours(CKVX_ART_MatOperator op, CMAFVMFaceVariableAll& /*flux*/) {
        op.DiffusionOperator(weight);
    }
    template <typename Plain>
    static void Walk(Plain plain, const CMAFVMFaceVariableAll& /*flux*/) {
        plain.Diffusion(weight);
    }
};

struct LUD {
    static void Ours(CKVX_ART_MatOperator op, CMAFVMFaceVariableAll& flux) {
        op.ConvectionOperatorLUD(weight, &flux);
    }
    template <typename Plain>
    static void Walk(Plain plain, const CMAFVMFaceVariableAll& flux) {
        plain.LinearUpwind(weight, flux);
    }
};

struct FU {
    static void Ours(CKVX_ART_MatOperator op, CMAFVMFaceVariableAll& flux) {
        op.ConvectionOperatorFU(weight, &flux);
    }
    template <typename Plain>
    static void Walk(Plain plain, const CMAFVMFaceVariableAll& flux) {
        plain.StencilUpwind(weight, flux);
    }
};

struct QUICK {
    static void Ours(CKVX_ART_MatOperator op, CMAFVMFaceVariableAll& flux) {
        op.ConvectionOperatorQUICK(weight, &flux);
    }
    template <typename Plain>
    static void Walk(Plain plain, const CMAFVMFaceVariableAll& flux) {
        plain.Quick(weight, flux);
    }
};

/// A mesh and a matrix for it.
struct Problem {
    explicit Problem(int n) : box(n), A(box.gv.Nc, box.gv.NcAll) { box.Declare(A); }

    int Entries() const { return A.Ia[A.rowsN + 1]; }

    BoxOfCells box;
    CKVX_ART_SparseMatrix A;
};

/// Large, so it is built once for each size and kept.
Problem& TheProblem(const benchmark::State& state) {
    static std::map<std::int64_t, std::unique_ptr<Problem>> problems;
    std::unique_ptr<Problem>& problem = problems[state.range(0)];
    if (!problem) {
        problem = std::make_unique<Problem>(static_cast<int>(state.range(0)));
    }
    return *problem;
}

/// Runs the transcription of an operator and calls `add` with each product.
template <typename Operator, typename Add>
void Walk(BoxOfCells& box, Add& add) {
    Operator::Walk(plain::Operators<Add>(box.gv, add), box.flux);
}

/// A position in the value array and the value to add there.
struct KnownAdd {
    int position;
    double value;
};

template <typename Operator>
std::vector<KnownAdd> KnownAdds(Problem& problem) {
    std::vector<KnownAdd> adds;
    const auto list = [&](int row, int col, double value) {
        int k = problem.A.Ia[row];
        while (problem.A.Ja[k] != col) {
            ++k;
        }
        adds.push_back({k, value});
    };
    Walk<Operator>(problem.box, list);
    return adds;
}

/// Our matrix and that of the yardstick must agree bit for bit, and neither may have an inserted
/// entry. Otherwise the times are meaningless.
template <typename Operator, typename Yardstick>
void CheckSameMatrix(benchmark::State& state, Problem& problem, Yardstick yardstick) {
    const int nEntries = problem.Entries();
    problem.A.Clear();
    yardstick();
    const std::vector<double> expected(problem.A.Aa, problem.A.Aa + nEntries);
    problem.A.Clear();
    Operator::Ours({&problem.A, &problem.box.gv}, problem.box.flux);
    if (problem.Entries() != nEntries ||
        std::memcmp(problem.A.Aa, expected.data(), sizeof(double) * expected.size()) != 0) {
        state.SkipWithError("the operator and its yardstick differ");
    }
}

void CountFaces(benchmark::State& state, const Problem& problem) {
    state.SetItemsProcessed(state.iterations() * problem.box.gv.Ne);
    state.counters["size"] = problem.box.gv.Ne;
}

template <typename Operator>
void BM_Ours(benchmark::State& state) {
    Problem& problem = TheProblem(state);
    const int nEntries = problem.Entries();
    problem.A.Clear();
    for (auto _ : state) {
        Operator::Ours({&problem.A, &problem.box.gv}, problem.box.flux);
        benchmark::ClobberMemory();
    }
    if (problem.Entries() != nEntries) {
        state.SkipWithError("the pattern grew: insertions were timed");
    }
    CountFaces(state, problem);
}

template <typename Operator>
void BM_Plain(benchmark::State& state) {
    Problem& problem = TheProblem(state);
    const auto add = [A = &problem.A](int row, int col, double value) {
        A->AddElementValue(row, col, value);
    };
    problem.A.Clear();
    for (auto _ : state) {
        Walk<Operator>(problem.box, add);
        benchmark::ClobberMemory();
    }
    CheckSameMatrix<Operator>(state, problem, [&] { Walk<Operator>(problem.box, add); });
    CountFaces(state, problem);
}

template <typename Operator>
void BM_Bare(benchmark::State& state) {
    Problem& problem = TheProblem(state);
    std::vector<int> positions;
    for (const KnownAdd& known : KnownAdds<Operator>(problem)) {
        positions.push_back(known.position);
    }
    const auto round = [&] {
        auto add = [next = positions.data(), Aa = problem.A.Aa](int, int, double value) mutable {
            Aa[*next++] += value;
        };
        Walk<Operator>(problem.box, add);
    };
    problem.A.Clear();
    for (auto _ : state) {
        round();
        benchmark::ClobberMemory();
    }
    CheckSameMatrix<Operator>(state, problem, round);
    CountFaces(state, problem);
}

template <typename Operator>
void BM_Read(benchmark::State& state) {
    Problem& problem = TheProblem(state);
    std::uint64_t mixed = 0;
    auto mix = [&mixed](int, int col, double value) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        mixed ^= bits + static_cast<std::uint64_t>(col);
    };
    for (auto _ : state) {
        Walk<Operator>(problem.box, mix);
        benchmark::DoNotOptimize(mixed);
    }
    CountFaces(state, problem);
}

template <typename Operator>
void BM_Known(benchmark::State& state) {
    Problem& problem = TheProblem(state);
    const std::vector<KnownAdd> adds = KnownAdds<Operator>(problem);
    const auto round = [&] {
        for (const KnownAdd& known : adds) {
            problem.A.Aa[known.position] += known.value;
        }
    };
    problem.A.Clear();
    for (auto _ : state) {
        round();
        benchmark::ClobberMemory();
    }
    CheckSameMatrix<Operator>(state, problem, round);
    CountFaces(state, problem);
    state.counters["adds/face"] = static_cast<double>(adds.size()) / problem.box.gv.Ne;
}

/// Box edges: the smallest box fits the caches, the largest has 1,014,300 faces.
void Edges(benchmark::internal::Benchmark* row) {
    row->Arg(16)->Arg(32)->Arg(48)->Arg(70)->Unit(benchmark::kMillisecond);
}

#define KVX3D_OPERATOR_ROWS(Operator)                                           \
    BENCHMARK(BM_Ours<Operator>)->Name("BM_" #Operator)->Apply(Edges);          \
    BENCHMARK(BM_Plain<Operator>)->Name("BM_" #Operator "Plain")->Apply(Edges); \
    BENCHMARK(BM_Bare<Operator>)->Name("BM_" #Operator "Bare")->Apply(Edges);   \
    BENCHMARK(BM_Read<Operator>)->Name("BM_" #Operator "Read")->Apply(Edges);   \
    BENCHMARK(BM_Known<Operator>)->Name("BM_" #Operator "Known")->Apply(Edges)

KVX3D_OPERATOR_ROWS(Diffusion);
KVX3D_OPERATOR_ROWS(LUD);
KVX3D_OPERATOR_ROWS(FU);
KVX3D_OPERATOR_ROWS(QUICK);

}  // namespace
