// Properties of the operators: exactness on simple fields, conservation, relations between them.
// All numbers are small multiples of powers of two, so sums are exact in any order.

#include "fvm_operators/mat_operator.h"

#include "tests/fvm_operators/operator_host.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

namespace {

/// A multiple of 1/16 in [-2, 2], never 0.
double Dyadic(std::mt19937& random) {
    const int k = std::uniform_int_distribution<int>(1, 32)(random);
    return (random() % 2 == 0 ? k : -k) / 16.0;
}

/// Three terms on random cells whose coefficients add up to `sum`.
Terms StencilWithSum(std::mt19937& random, int nColumns, double sum) {
    std::uniform_int_distribution<int> column(1, nColumns);
    const double a = Dyadic(random);
    const double b = Dyadic(random);
    return {{column(random), a}, {column(random), b}, {column(random), sum - a - b}};
}

/// A mesh whose faces lie between random cells. The coefficients of a value stencil add up to 1,
/// those of a normal derivative to 0; both sides of a face have the same stencils and flux.
class ConservativeHost : public testing::TestWithParam<int> {
protected:
    ConservativeHost() : random(static_cast<unsigned>(GetParam())) {
        const int nCells = 9;
        std::uniform_int_distribution<int> cell(1, nCells);
        std::vector<std::pair<int, int>> inner;
        for (int i = 0; i < 20; ++i) {
            inner.emplace_back(cell(random), cell(random));
        }
        host = std::make_unique<OperatorHost>(
            nCells, inner, std::array<std::vector<int>, 4>{{{1, 2}, {3}, {4, 5}, {6}}});
        for (int i = 1; i <= host->gv.Ne; ++i) {
            FillInner(i);
        }
        for (Kind kind : allKinds) {
            for (int i = 1; i <= host->Count(kind); ++i) {
                FillBoundary(kind, i);
            }
        }
        matrix = std::make_unique<CKVX_ART_SparseMatrix>(nCells, host->gv.NcAll);
    }

    void FillInner(int i) {
        for (Pair pair : allPairs) {
            const Terms terms =
                StencilWithSum(random, host->gv.NcAll, pair == Pair::Normal ? 0.0 : 1.0);
            SetStencil(host->Left(i), pair, terms);
            SetStencil(host->Right(i), pair, terms);
        }
        host->SetFlux(i, i % 5 == 0 ? 0.0 : Dyadic(random));
        host->gv.faceMu->left[i] = host->gv.faceMu->right[i] = Dyadic(random);
        host->gv.faceK->left[i] = host->gv.faceK->right[i] = Dyadic(random);
        for (auto* unit : {host->gv.faceCp, host->gv.faceRho}) {
            unit->left[i] = unit->right[i] = 1.0;
        }
    }

    void FillBoundary(Kind kind, int i) {
        SetStencil(host->Record(kind, i), Pair::Normal,
                   StencilWithSum(random, host->gv.NcAll, 0.0));
        SetStencil(host->Record(kind, i), Pair::Left, StencilWithSum(random, host->gv.NcAll, 1.0));
        SetStencil(host->Record(kind, i), Pair::FarLeft,
                   StencilWithSum(random, host->gv.NcAll, 1.0));
        host->Flux(kind, i) = Dyadic(random);
        host->mu[host->Ghost(kind, i)] = Dyadic(random);
        host->cellK[host->Ghost(kind, i)] = Dyadic(random);
        host->cp[host->Ghost(kind, i)] = 1.0;
        host->cellRho[host->Ghost(kind, i)] = 1.0;
    }

    /// Outflow of each cell, 1-based.
    std::vector<double> NetOutflow(bool withBoundaries) {
        std::vector<double> outflow(host->gv.Nc + 1, 0.0);
        for (int i = 1; i <= host->gv.Ne; ++i) {
            outflow[host->gv.Ce23[0][i]] += host->flux.left[i];
            outflow[host->gv.Ce23[1][i]] -= host->flux.right[i];
        }
        for (Kind kind : allKinds) {
            for (int i = 1; withBoundaries && i <= host->Count(kind); ++i) {
                outflow[host->Cell(kind, i)] += host->Flux(kind, i);
            }
        }
        return outflow;
    }

    bool Run(const char* name, CKVX_ART_SparseMatrix& A, double weight) {
        for (const NamedOperator& named : AllOperators()) {
            if (std::string(named.name) == name) {
                auto op = host->Operator(A);
                return named.run(op, weight, &host->flux);
            }
        }
        return false;
    }

    double RowSum(int row) {
        std::vector<double> ones(host->gv.NcAll + 1, 1.0);
        return matrix->DotProduct(row, ones.data());
    }

    std::mt19937 random;
    std::unique_ptr<OperatorHost> host;
    std::unique_ptr<CKVX_ART_SparseMatrix> matrix;
};

TEST_P(ConservativeHost, ConvectionOfAUniformFieldIsTheNetOutflow) {
    const std::vector<double> outflow = NetOutflow(true);
    for (const char* name : {"CellUpwind", "SwitchedOff", "CD", "LUD", "FU", "QUICK", "Hybrid"}) {
        matrix->Reset();

        ASSERT_TRUE(Run(name, *matrix, 0.5));

        for (int row = 1; row <= host->gv.Nc; ++row) {
            EXPECT_EQ(RowSum(row), 0.5 * outflow[row]) << name << ", row " << row;
        }
    }
}

TEST_P(ConservativeHost, CombinedOperatorOfAUniformFieldIsTheInnerNetOutflow) {
    const std::vector<double> outflow = NetOutflow(false);

    ASSERT_TRUE(Run("Combined", *matrix, 1.0));

    for (int row = 1; row <= host->gv.Nc; ++row) {
        EXPECT_EQ(RowSum(row), outflow[row]) << "row " << row;
    }
}

TEST_P(ConservativeHost, DiffusionOfAUniformFieldVanishes) {
    for (const char* name : {"Laplace", "Diffusion", "Thermal"}) {
        matrix->Reset();

        ASSERT_TRUE(Run(name, *matrix, 0.5));

        for (int row = 1; row <= host->gv.Nc; ++row) {
            EXPECT_EQ(RowSum(row), 0.0) << name << ", row " << row;
        }
    }
}

TEST_P(ConservativeHost, InnerFacesAreConservative) {
    host->gv.useBoundaryFaces = false;
    for (const NamedOperator& named : AllOperators()) {
        matrix->Reset();
        ASSERT_TRUE(Run(named.name, *matrix, 0.5));

        std::vector<double> columnSums(host->gv.NcAll + 1, 0.0);
        for (int k = 1; k < matrix->Ia[host->gv.Nc + 1]; ++k) {
            columnSums[matrix->Ja[k]] += matrix->Aa[k];
        }

        EXPECT_EQ(columnSums, std::vector<double>(host->gv.NcAll + 1, 0.0)) << named.name;
    }
}

/// Expects equal values at every position. Storage order and stored zeros may differ.
void ExpectSameValues(const CKVX_ART_SparseMatrix& A, const CKVX_ART_SparseMatrix& B) {
    for (int row = 1; row <= A.rowsN; ++row) {
        for (int col = 1; col <= A.colsN; ++col) {
            EXPECT_EQ(ValueAt(A, row, col), ValueAt(B, row, col)) << row << ", " << col;
        }
    }
}

TEST_P(ConservativeHost, WithoutUpwindTheOperatorIsTheCentralScheme) {
    CKVX_ART_SparseMatrix other(host->gv.Nc, host->gv.NcAll);

    Run("SwitchedOff", *matrix, 0.5);
    Run("CD", other, 0.5);

    ASSERT_EQ(EntriesOf(*matrix), EntriesOf(other));
    for (int row = 1; row <= host->gv.Nc; ++row) {
        EXPECT_EQ(RowOf(*matrix, row), RowOf(other, row));
    }
}

TEST_P(ConservativeHost, CombinedOperatorIsCellUpwindMinusDiffusionOnInnerFaces) {
    CKVX_ART_SparseMatrix other(host->gv.Nc, host->gv.NcAll);
    host->gv.useBoundaryFaces = false;
    for (int i = 5; i <= host->gv.Ne; i += 5) {
        host->SetFlux(i, 1.0);  // the two differ only for near-zero fluxes
    }

    Run("Combined", *matrix, 1.0);
    Run("CellUpwind", other, 1.0);
    Run("Diffusion", other, -1.0);

    ExpectSameValues(*matrix, other);
}

TEST_P(ConservativeHost, StencilUpwindIsCellUpwindIfTheStencilsAreTheCells) {
    CKVX_ART_SparseMatrix other(host->gv.Nc, host->gv.NcAll);
    for (int i = 1; i <= host->gv.Ne; ++i) {
        for (CMAFVMFaceData* record : {&host->Left(i), &host->Right(i)}) {
            SetStencil(*record, Pair::Left, {{host->gv.Ce23[0][i], 1.0}});
            SetStencil(*record, Pair::Right, {{host->gv.Ce23[1][i], 1.0}});
        }
    }
    for (Kind kind : allKinds) {
        for (int i = 1; i <= host->Count(kind); ++i) {
            SetStencil(host->Record(kind, i), Pair::Left, {{host->Cell(kind, i), 1.0}});
        }
    }

    Run("FU", *matrix, 0.5);
    Run("CellUpwind", other, 0.5);
    ExpectSameValues(*matrix, other);

    matrix->Reset();
    Run("Hybrid", *matrix, 0.5);
    ExpectSameValues(*matrix, other);
}

TEST_P(ConservativeHost, HybridHasThePatternOfTheLinearUpwindOnInnerFaces) {
    CKVX_ART_SparseMatrix other(host->gv.Nc, host->gv.NcAll);
    host->gv.useBoundaryFaces = false;

    Run("Hybrid", *matrix, 0.5);
    Run("LUD", other, 0.5);

    for (int row = 1; row <= host->gv.Nc; ++row) {
        const Terms hybrid = RowOf(*matrix, row);
        const Terms linear = RowOf(other, row);
        ASSERT_EQ(hybrid.size(), linear.size());
        for (std::size_t k = 0; k < hybrid.size(); ++k) {
            EXPECT_EQ(hybrid[k].first, linear[k].first) << "row " << row;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ConservativeHost, testing::Range(1, 9));

/// Seven cells on a line. The four inner faces in the middle have the stencils of a uniform grid.
class UniformLine : public testing::TestWithParam<double> {
protected:
    UniformLine() : host(7, {{2, 3}, {3, 4}, {4, 5}, {5, 6}}), A(7) {
        for (int i = 1; i <= 4; ++i) {
            const int L = i + 1;
            for (CMAFVMFaceData* record : {&host.Left(i), &host.Right(i)}) {
                SetStencil(*record, Pair::Face, {{L, 0.5}, {L + 1, 0.5}});
                SetStencil(*record, Pair::Left, {{L, 1.0}});
                SetStencil(*record, Pair::Right, {{L + 1, 1.0}});
                SetStencil(*record, Pair::FarLeft, {{L - 1, 1.0}});
                SetStencil(*record, Pair::FarRight, {{L + 2, 1.0}});
            }
            host.SetFlux(i, GetParam());
        }
    }

    /// The row applied to a power of the cell number.
    double Applied(int row, int power) {
        std::vector<double> field(8, 0.0);
        for (int cell = 1; cell <= 7; ++cell) {
            field[cell] = power == 2 ? cell * cell : cell;
        }
        return A.DotProduct(row, field.data());
    }

    OperatorHost host;
    CKVX_ART_SparseMatrix A;
};

TEST_P(UniformLine, CentralAndLinearUpwindAreExactOnALinearField) {
    const double F = GetParam();

    host.Operator(A).ConvectionOperatorLUD(1.0, &host.flux);
    for (int row = 3; row <= 5; ++row) {
        EXPECT_EQ(Applied(row, 1), F) << "row " << row;
    }

    A.Clear();
    host.Operator(A).ConvectionOperatorCD(1.0, &host.flux);
    for (int row = 3; row <= 5; ++row) {
        EXPECT_EQ(Applied(row, 1), F) << "row " << row;
    }
}

TEST_P(UniformLine, QuickInterpolatesAQuadraticFieldExactly) {
    const double F = GetParam();

    host.Operator(A).ConvectionOperatorQUICK(1.0, &host.flux);

    for (int row = 3; row <= 5; ++row) {
        const double right = (row + 0.5) * (row + 0.5);
        const double left = (row - 0.5) * (row - 0.5);
        EXPECT_EQ(Applied(row, 2), F * right - F * left) << "row " << row;
    }
}

INSTANTIATE_TEST_SUITE_P(BothWays, UniformLine, testing::Values(2.0, -2.0));

}  // namespace
