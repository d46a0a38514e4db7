// Every operator against its transcription in plain/ on random meshes: the same entries in the same
// storage order with the same bits.

#include "plain/plain_operators.h"
#include "tests/fvm_operators/operator_host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

/// The state of the matrix before the operator.
enum Pattern {
    Declared,      ///< with every entry, compressed, with older values
    HalfDeclared,  ///< the other entries are inserted
    Undeclared,
    Stale,     ///< with values that the first addition must set to zero
    Shuffled,  ///< with the entries of each row in random order
    Doubled    ///< with a column twice in a row, others missing: the first is used
};

struct Add {
    int row;
    int col;
};

/// Runs the transcription of the operator with that name in AllOperators().
template <typename Sink>
void RunPlain(const std::string& name, OperatorHost& host, double weight, Sink& sink) {
    plain::Operators<Sink> plain(host.gv, sink);
    const CMAFVMFaceVariableAll& flux = host.flux;
    const std::map<std::string, std::function<void()>> operators = {
        {"Laplace", [&] { plain.Laplace(weight); }},
        {"Diffusion", [&] { plain.Diffusion(weight); }},
        {"Thermal", [&] { plain.Thermal(weight); }},
        {"CellUpwind", [&] { plain.CellUpwind(weight, flux); }},
        {"SwitchedOff", [&] { plain.Central(weight, flux); }},
        {"CD", [&] { plain.Central(weight, flux); }},
        {"LUD", [&] { plain.LinearUpwind(weight, flux); }},
        {"FU", [&] { plain.StencilUpwind(weight, flux); }},
        {"QUICK", [&] { plain.Quick(weight, flux); }},
        {"Hybrid", [&] { plain.Hybrid(weight, flux); }},
        {"Combined", [&] { plain.UpwindAndDiffusion(flux); }}};
    operators.at(name)();
}

class RandomCase {
public:
    explicit RandomCase(unsigned seed) : random_(seed) {}

    int Int(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    double Real() { return std::uniform_real_distribution<double>(-2.0, 2.0)(random_); }

    /// Ordinary values, both limits of the tolerance and the doubles next to them, zeros; with
    /// `wild` also NaN and infinity.
    double Flux(bool wild) {
        const double e = 1e-8;
        const double inf = std::numeric_limits<double>::infinity();
        const double special[] = {e,
                                  std::nextafter(e, 1.0),
                                  std::nextafter(e, 0.0),
                                  -e,
                                  std::nextafter(-e, -1.0),
                                  std::nextafter(-e, 0.0),
                                  0.0,
                                  -0.0,
                                  std::nan(""),
                                  inf,
                                  -inf};
        return Int(0, 2) == 0 ? special[Int(0, wild ? 10 : 7)] : Real();
    }

    /// Up to ten terms on random cells, also repeated ones, or a negative count. A `broken` stencil
    /// may contain a column outside the matrix.
    void SetRandomStencil(CMAFVMFaceData& record, Pair pair, int NcAll, bool broken) {
        Terms terms;
        for (int n = Int(0, 4) == 0 ? Int(0, 10) : Int(0, 3); n > 0; --n) {
            const bool outside = broken && Int(0, 40) == 0;
            terms.emplace_back(outside ? Int(0, 1) * (NcAll + 1) : Int(1, NcAll), Real());
        }
        SetStencil(record, pair, terms);
        if (Int(0, 15) == 0) {
            PairOf(record, pair).id[0] *= -1;
        }
    }

    /// A cell of a face; for a `broken` face it may be outside the matrix.
    int Cell(int nCells, bool broken) {
        const int outside[] = {0, -1, -7, nCells + 1, std::numeric_limits<int>::max()};
        return broken && Int(0, 60) == 0 ? outside[Int(0, 4)] : Int(1, nCells);
    }

    /// Swaps entries within rows; with `doubled`, overwrites some columns with others instead.
    void DisturbRows(CKVX_ART_SparseMatrix& A, bool doubled) {
        for (int i = 1; i <= A.rowsN; ++i) {
            for (int k = A.Ia[i]; k < A.Ia[i + 1]; ++k) {
                const int other = Int(A.Ia[i], A.Ia[i + 1] - 1);
                std::swap(A.Ja[k], A.Ja[other]);
                if (doubled && Int(0, 3) == 0) {
                    A.Ja[k] = A.Ja[other];
                }
            }
        }
    }

    std::unique_ptr<OperatorHost> Host(bool wild, bool broken);

private:
    std::mt19937 random_;
};

std::unique_ptr<OperatorHost> RandomCase::Host(bool wild, bool broken) {
    const int nCells = Int(2, 40);
    std::vector<std::pair<int, int>> inner;
    for (int n = Int(0, 3) == 0 ? Int(0, 10) : Int(0, 60); n > 0; --n) {
        const int L = Cell(nCells, broken);
        inner.emplace_back(L, Cell(nCells, broken));
    }
    std::array<OperatorHost::Cells, 4> boundary;
    for (OperatorHost::Cells& cells : boundary) {
        for (int n = Int(0, 5); n > 0; --n) {
            cells.push_back(Int(1, nCells));
        }
    }
    auto host = std::make_unique<OperatorHost>(nCells, inner, boundary);
    CKVX_ACMT_GV& gv = host->gv;
    for (int i = 1; i <= gv.Ne; ++i) {
        for (Pair pair : allPairs) {
            SetRandomStencil(host->Left(i), pair, gv.NcAll, broken);
            SetRandomStencil(host->Right(i), pair, gv.NcAll, broken);
        }
        host->flux.left[i] = Flux(wild);
        host->flux.right[i] = Flux(wild);
        gv.nonmatchingFace[i] = Int(0, 2) == 0 ? Int(-1, 2) : 0;
        for (CMAFVMFaceVariable* property : {gv.faceMu, gv.faceK, gv.faceCp, gv.faceRho}) {
            property->left[i] = Real();
            property->right[i] = Real();
        }
    }
    for (Kind kind : allKinds) {
        for (int i = 1; i <= host->Count(kind); ++i) {
            for (Pair pair : {Pair::Normal, Pair::Left, Pair::FarLeft}) {
                SetRandomStencil(host->Record(kind, i), pair, gv.NcAll, broken);
            }
            host->Flux(kind, i) = Flux(wild);
        }
    }
    for (std::vector<double>* property : {&host->mu, &host->cp, &host->cellRho, &host->cellK}) {
        for (double& value : *property) {
            value = Real();
        }
    }
    gv.useBoundaryFaces = Int(0, 3) != 0;
    return host;
}

/// Brings a fresh matrix into the state `pattern` for these additions. Two calls with equal seeds
/// give equal matrices.
void Prepare(CKVX_ART_SparseMatrix& A, const std::vector<Add>& adds, Pattern pattern,
             unsigned seed) {
    if (pattern == Undeclared) {
        return;
    }
    RandomCase random(seed);
    const auto inside = [&A](const Add& add) {
        return add.row >= 1 && add.row <= A.rowsN && add.col >= 1 && add.col <= A.colsN;
    };
    for (std::size_t k = 0; k < adds.size(); ++k) {
        if (inside(adds[k]) && (pattern != HalfDeclared || k % 2 == 0)) {
            A.AddIndex(adds[k].row, adds[k].col);
        }
    }
    if (pattern == HalfDeclared) {
        return;
    }
    A.CompressIndex();
    if (pattern == Shuffled || pattern == Doubled) {
        random.DisturbRows(A, pattern == Doubled);
    }
    for (int k = 1; k < A.Ia[A.rowsN + 1]; ++k) {
        A.Aa[k] = random.Real();
    }
    if (pattern == Stale) {
        A.AddIndex(1, 1);
    }
}

/// Runs `assemble` and returns true if it threw InvalidDimensionsException.
template <typename Assemble>
bool Throws(Assemble assemble) {
    try {
        assemble();
        return false;
    } catch (const InvalidDimensionsException&) {
        return true;
    }
}

bool SameBits(double a, double b) {
    return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

void ExpectSameMatrix(const CKVX_ART_SparseMatrix& actual, const CKVX_ART_SparseMatrix& expected) {
    ASSERT_EQ(actual.compressed, expected.compressed);
    for (int i = 0; i <= expected.rowsN + 1; ++i) {
        ASSERT_EQ(actual.Ia[i], expected.Ia[i]) << "row start " << i;
    }
    if (expected.Ja == nullptr) {
        ASSERT_EQ(actual.Ja, nullptr);
        return;
    }
    for (int k = 0; k < expected.Ia[expected.rowsN + 1]; ++k) {
        ASSERT_EQ(actual.Ja[k], expected.Ja[k]) << "position " << k;
        ASSERT_TRUE(SameBits(actual.Aa[k], expected.Aa[k]))
            << "position " << k << ": " << actual.Aa[k] << " for " << expected.Aa[k];
    }
}

class OperatorsAgainstPlain : public testing::TestWithParam<std::tuple<NamedOperator, Pattern>> {
protected:
    void CompareOn(unsigned seed, bool wild, bool broken) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const auto& [named, pattern] = GetParam();
        RandomCase random(seed);
        const std::unique_ptr<OperatorHost> host = random.Host(wild, broken);
        const double weight = random.Real();
        std::vector<Add> adds;
        const auto list = [&adds](int row, int col, double) { adds.push_back({row, col}); };
        RunPlain(named.name, *host, weight, list);
        CKVX_ART_SparseMatrix expected(host->gv.Nc, host->gv.NcAll);
        CKVX_ART_SparseMatrix actual(host->gv.Nc, host->gv.NcAll);
        Prepare(expected, adds, pattern, seed);
        Prepare(actual, adds, pattern, seed);

        const bool thrown = Throws([&, &run = named.run] {
            KVX_ART_FVM::CKVX_ART_MatOperator op = host->Operator(actual);
            EXPECT_TRUE(run(op, weight, &host->flux));
        });

        const bool expectThrown = Throws([&, &name = named.name] {
            const auto add = [&expected](int row, int col, double value) {
                expected.AddElementValue(row, col, value);
            };
            RunPlain(name, *host, weight, add);
        });
        EXPECT_EQ(thrown, expectThrown);
        ExpectSameMatrix(actual, expected);
    }
};

TEST_P(OperatorsAgainstPlain, GivesTheSameBitsForOrdinaryFluxesAndStencils) {
    for (unsigned seed = 1; seed <= 60 && !HasFatalFailure(); ++seed) {
        CompareOn(seed, /*wild=*/false, /*broken=*/false);
    }
}

TEST_P(OperatorsAgainstPlain, GivesTheSameBitsForInfiniteFluxesAndNaN) {
    for (unsigned seed = 1001; seed <= 1030 && !HasFatalFailure(); ++seed) {
        CompareOn(seed, /*wild=*/true, /*broken=*/false);
    }
}

TEST_P(OperatorsAgainstPlain, StopsAtTheSameAdditionForAColumnOutsideTheMatrix) {
    for (unsigned seed = 2001; seed <= 2060 && !HasFatalFailure(); ++seed) {
        CompareOn(seed, /*wild=*/false, /*broken=*/true);
    }
}

std::string CaseName(const testing::TestParamInfo<std::tuple<NamedOperator, Pattern>>& info) {
    const char* pattern[] = {"Declared", "HalfDeclared", "Undeclared",
                             "Stale",    "Shuffled",     "Doubled"};
    return std::string(std::get<0>(info.param).name) + pattern[std::get<1>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(Random, OperatorsAgainstPlain,
                         testing::Combine(testing::ValuesIn(AllOperators()),
                                          testing::Values(Declared, HalfDeclared, Undeclared, Stale,
                                                          Shuffled, Doubled)),
                         CaseName);

}  // namespace
