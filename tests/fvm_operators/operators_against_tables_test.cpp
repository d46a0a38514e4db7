/// Every operator against its table on random meshes: the same entries, in the same storage order,
/// with the same bits.

#include "tests/fvm_operators/operator_tables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <tuple>

namespace {

/// How much of the pattern the caller declared.
enum Declared { All, Half, None };

class RandomCase {
public:
    explicit RandomCase(unsigned seed) : random_(seed) {}

    int Int(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    double Real() { return std::uniform_real_distribution<double>(-2.0, 2.0)(random_); }

    /// Plain values, both ends of the tolerance and their neighbours, zeros; with `wild` also
    /// not-a-number and infinity.
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

    /// Up to six terms on any cells, repeated ones too; a `broken` one may name a column outside.
    Terms Stencil(int NcAll, bool broken) {
        Terms terms;
        for (int n = Int(0, 6); n > 0; --n) {
            terms.emplace_back(Int(1, NcAll), Real());
        }
        if (broken && Int(0, 15) == 0) {
            terms.emplace_back(Int(0, 1) == 0 ? 0 : NcAll + 1, Real());
        }
        return terms;
    }

    std::unique_ptr<OperatorHost> Host(bool wild, bool broken);

private:
    std::mt19937 random_;
};

std::unique_ptr<OperatorHost> RandomCase::Host(bool wild, bool broken) {
    const int nCells = Int(2, 12);
    std::vector<std::pair<int, int>> inner;
    for (int n = Int(0, 25); n > 0; --n) {
        inner.emplace_back(Int(1, nCells), Int(1, nCells));
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
            SetStencil(host->Left(i), pair, Stencil(gv.NcAll, broken));
            SetStencil(host->Right(i), pair, Stencil(gv.NcAll, broken));
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
                SetStencil(host->Record(kind, i), pair, Stencil(gv.NcAll, broken));
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

void Declare(CKVX_ART_SparseMatrix& A, const Adds& adds, Declared declared) {
    for (std::size_t k = 0; k < adds.size(); ++k) {
        const bool inside = adds[k].col >= 1 && adds[k].col <= A.colsN;
        if (inside && (declared == All || (declared == Half && k % 2 == 0))) {
            A.AddIndex(adds[k].row, adds[k].col);
        }
    }
}

/// Runs `assemble`; true if it threw the range exception.
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

class OperatorsAgainstTables : public testing::TestWithParam<std::tuple<NamedOperator, Declared>> {
protected:
    void CompareOn(unsigned seed, bool wild, bool broken) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const auto& [named, declared] = GetParam();
        RandomCase random(seed);
        const std::unique_ptr<OperatorHost> host = random.Host(wild, broken);
        const double weight = random.Real();
        const Adds adds = AddsOf(*host, named.name, weight);
        CKVX_ART_SparseMatrix expected(host->gv.Nc, host->gv.NcAll);
        CKVX_ART_SparseMatrix actual(host->gv.Nc, host->gv.NcAll);
        Declare(expected, adds, declared);
        Declare(actual, adds, declared);

        const bool thrown = Throws([&] {
            KVX_ART_FVM::CKVX_ART_MatOperator op = host->Operator(actual);
            EXPECT_TRUE(named.run(op, weight, &host->flux));
        });

        const bool expectThrown = Throws([&] {
            for (const Add& add : adds) {
                expected.AddElementValue(add.row, add.col, add.value);
            }
        });
        EXPECT_EQ(thrown, expectThrown);
        ExpectSameMatrix(actual, expected);
    }
};

TEST_P(OperatorsAgainstTables, OrdinaryFluxesAndStencils) {
    for (unsigned seed = 1; seed <= 150 && !HasFatalFailure(); ++seed) {
        CompareOn(seed, /*wild=*/false, /*broken=*/false);
    }
}

TEST_P(OperatorsAgainstTables, InfiniteAndUndefinedFluxes) {
    for (unsigned seed = 1001; seed <= 1060 && !HasFatalFailure(); ++seed) {
        CompareOn(seed, /*wild=*/true, /*broken=*/false);
    }
}

TEST_P(OperatorsAgainstTables, ColumnsOutsideStopTheWalkAtTheSameAdd) {
    for (unsigned seed = 2001; seed <= 2150 && !HasFatalFailure(); ++seed) {
        CompareOn(seed, /*wild=*/false, /*broken=*/true);
    }
}

std::string CaseName(const testing::TestParamInfo<std::tuple<NamedOperator, Declared>>& info) {
    const char* pattern[] = {"Declared", "HalfDeclared", "Undeclared"};
    return std::string(std::get<0>(info.param).name) + pattern[std::get<1>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(Random, OperatorsAgainstTables,
                         testing::Combine(testing::ValuesIn(AllOperators()),
                                          testing::Values(All, Half, None)),
                         CaseName);

}  // namespace
