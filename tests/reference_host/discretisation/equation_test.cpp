#include "reference_host/discretisation/equation.h"

#include <gtest/gtest.h>

#include <map>

#include "fvm_operators/mat_operator.h"
#include "reference_host/physics/scalar_solver.h"
#include "tests/reference_host/discretisation/mesh_case.h"

namespace {

using host::Boundary;
using host::BoundaryConditions;
using host::Equation;
using host::FarPoint;
using host::GhostCondition;
using host::GradientSet;
using host::Reach;
using host::Scheme;
using host::StencilBuilder;
using host::StencilRecords;
using KVX_ART_FVM::CKVX_ART_MatOperator;

const host::Vec3 carrier(1.0, 0.6, 0.0);

BoundaryConditions AllValues(const MeshCase& c, double value) {
    return {c.mesh, c.link, [value](Boundary, int) {
                return GhostCondition{GhostCondition::Kind::Value, value};
            }};
}

/// An equation on a mesh with the flux of a constant velocity.
class EquationSetup {
public:
    explicit EquationSetup(const MeshChoice& choice, FarPoint farPoint = FarPoint::LinearUpwind,
                           Reach reach = Reach::Far)
        : c(choice),
          builder(c.mesh, c.objects, c.link, GradientSet::Velocity),
          records(builder, c.objects, farPoint),
          equation(builder, records, reach),
          flux(&records.gv, /*shared=*/false) {
        host::FillConstantFlux(builder, carrier, flux);
        records.SetFaceMu(1.0);
    }

    int StoredEntries() const { return equation.matrix.Ia[records.gv.NcAll + 1] - 1; }

    /// Entries of a row by column. The storage order has no meaning for the comparison.
    std::map<int, double> Row(int row) const {
        std::map<int, double> entries;
        for (int k = equation.matrix.Ia[row]; k < equation.matrix.Ia[row + 1]; ++k) {
            entries[equation.matrix.Ja[k]] += equation.matrix.Aa[k];
        }
        return entries;
    }

    MeshCase c;
    const StencilBuilder builder;
    StencilRecords records;
    Equation equation;
    CMAFVMFaceVariableAll flux;
};

void ExpectEqualMatrices(const EquationSetup& a, const EquationSetup& b, double tolerance) {
    for (int row = 1; row <= a.equation.matrix.GetRowsN(); ++row) {
        const auto rowA = a.Row(row);
        const auto rowB = b.Row(row);
        ASSERT_EQ(rowA.size(), rowB.size()) << "row " << row;
        for (const auto& [column, value] : rowA) {
            ASSERT_TRUE(rowB.count(column)) << "row " << row << " column " << column;
            ASSERT_NEAR(value, rowB.at(column), tolerance) << "row " << row << " col " << column;
        }
    }
}

class EquationOnMesh : public testing::TestWithParam<MeshChoice> {};

TEST_P(EquationOnMesh, PatternHoldsEveryEntryThatTheOperatorsAddTo) {
    EquationSetup s(GetParam());
    const int declared = s.StoredEntries();
    CKVX_ART_MatOperator operators(&s.equation.matrix, &s.records.gv);
    operators.ConvectionOperator(true, 1.0, &s.flux);
    operators.ConvectionOperatorCD(1.0, &s.flux);
    operators.ConvectionOperatorFU(1.0, &s.flux);
    operators.ConvectionOperatorLUD(1.0, &s.flux);
    operators.ConvectionOperatorQUICK(1.0, &s.flux);
    operators.ConvectionOperatorHybrid(1.0, &s.flux);
    operators.DiffusionOperator(-1.0);
    operators.PureLaplaceOperator(-1.0);
    s.equation.CloseRows(AllValues(s.c, 1.0));

    EXPECT_EQ(s.StoredEntries(), declared);
}

TEST_P(EquationOnMesh, NearPatternHoldsDiffusionUpwindAndCentral) {
    EquationSetup s(GetParam(), FarPoint::LinearUpwind, Reach::Near);
    const int declared = s.StoredEntries();
    CKVX_ART_MatOperator operators(&s.equation.matrix, &s.records.gv);
    operators.ConvectionOperator(true, 1.0, &s.flux);
    operators.ConvectionOperatorCD(1.0, &s.flux);
    operators.ConvectionOperatorFU(1.0, &s.flux);
    operators.DiffusionOperator(-1.0);
    s.equation.CloseRows(AllValues(s.c, 1.0));

    EXPECT_EQ(s.StoredEntries(), declared);
}

TEST_P(EquationOnMesh, RowSumsOfConvectionAreNetFluxes) {
    EquationSetup s(GetParam());
    CKVX_ART_MatOperator(&s.equation.matrix, &s.records.gv).ConvectionOperatorQUICK(1.0, &s.flux);
    std::vector<double> ones(s.records.gv.NcAll + 1, 1.0);

    // The velocity is constant, so the net flux out of every closed cell is zero.
    for (int cell = 1; cell <= s.c.mesh.CellCount(); ++cell) {
        ASSERT_NEAR(s.equation.matrix.DotProduct(cell, ones.data()), 0.0, 1e-12) << cell;
    }
}

TEST_P(EquationOnMesh, DiffusionOfAConstantFieldVanishes) {
    EquationSetup s(GetParam());
    CKVX_ART_MatOperator(&s.equation.matrix, &s.records.gv).DiffusionOperator(-1.0);
    std::vector<double> ones(s.records.gv.NcAll + 1, 1.0);

    for (int cell = 1; cell <= s.c.mesh.CellCount(); ++cell) {
        ASSERT_NEAR(s.equation.matrix.DotProduct(cell, ones.data()), 0.0, 1e-11) << cell;
    }
}

TEST_P(EquationOnMesh, LaplaceOperatorEqualsDiffusionWithCoefficientOne) {
    EquationSetup laplace(GetParam());
    EquationSetup diffusion(GetParam());
    CKVX_ART_MatOperator(&laplace.equation.matrix, &laplace.records.gv).PureLaplaceOperator(-1.0);
    CKVX_ART_MatOperator(&diffusion.equation.matrix, &diffusion.records.gv).DiffusionOperator(-1.0);

    ExpectEqualMatrices(laplace, diffusion, 0.0);
}

TEST_P(EquationOnMesh, CombinedOperatorEqualsUpwindPlusDiffusionOnInnerFaces) {
    EquationSetup combined(GetParam());
    EquationSetup separate(GetParam());
    // The combined operator drops fluxes near zero, so such fluxes are made larger here.
    const auto awayFromZero = [](EquationSetup& s) {
        for (int face = 1; face <= s.c.mesh.InnerFaceCount(); ++face) {
            for (double* side : {s.flux.left, s.flux.right}) {
                side[face] = std::abs(side[face]) < 1e-7 && side[face] != 0.0 ? 1e-3 : side[face];
            }
        }
        s.records.gv.useBoundaryFaces = false;
    };
    awayFromZero(combined);
    awayFromZero(separate);
    CKVX_ART_MatOperator(&combined.equation.matrix, &combined.records.gv)
        .ConvectionFU_Diffusion_Operator(&combined.flux);
    CKVX_ART_MatOperator operators(&separate.equation.matrix, &separate.records.gv);
    operators.ConvectionOperator(true, 1.0, &separate.flux);
    operators.DiffusionOperator(-1.0);

    // Fluxes of exactly zero occur only on sides of cut cells and on faces parallel to the flow,
    // where both operators add nothing or zero.
    ExpectEqualMatrices(combined, separate, 1e-12);
}

TEST_P(EquationOnMesh, CutCellsHaveIdentityRows) {
    EquationSetup s(GetParam());
    CKVX_ART_MatOperator operators(&s.equation.matrix, &s.records.gv);
    operators.ConvectionOperatorLUD(1.0, &s.flux);
    operators.DiffusionOperator(-1.0);
    s.equation.CloseRows(AllValues(s.c, 1.0));

    for (int cell = 1; cell <= s.c.mesh.CellCount(); ++cell) {
        if (s.c.link.IsActive(cell)) {
            continue;
        }
        for (const auto& [column, value] : s.Row(cell)) {
            ASSERT_EQ(value, column == cell ? 1.0 : 0.0) << "row " << cell << " column " << column;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Meshes, EquationOnMesh,
                         testing::Values(boxHexahedra, boxPrisms, annulus, oversetPair,
                                         oversetPrisms, oversetTetrahedra),
                         MeshName);

TEST(EquationGhosts, GhostRowsHoldValueZeroGradientAndMirrorConditions) {
    EquationSetup s(oversetPair);
    const BoundaryConditions conditions(s.c.mesh, s.c.link, [](Boundary kind, int) {
        return kind == Boundary::Outlet ? GhostCondition{GhostCondition::Kind::ZeroGradient, 0.0}
                                        : GhostCondition{GhostCondition::Kind::Value, 3.0};
    });
    CKVX_ART_MatOperator(&s.equation.matrix, &s.records.gv).DiffusionOperator(-1.0);
    s.equation.CloseRows(conditions);
    std::vector<double> rhs(s.records.gv.NcAll + 1, 0.0);
    s.equation.FillGhostRows(conditions, rhs);
    // Whatever the cell values are, ghosts computed from them satisfy their rows.
    std::vector<double> phi(s.records.gv.NcAll + 1);
    for (int cell = 0; cell < static_cast<int>(phi.size()); ++cell) {
        phi[cell] = 0.1 * (cell % 17);
    }
    s.equation.FillGhosts(conditions, phi);

    for (int row = s.records.gv.Nc + 1; row <= s.records.gv.NcAll; ++row) {
        ASSERT_NEAR(s.equation.matrix.DotProduct(row, phi.data()), rhs[row], 1e-12) << row;
    }
    EXPECT_EQ(phi[s.c.objects.Ghost(Boundary::Inlet, 1)], 3.0);
    EXPECT_EQ(phi[s.c.objects.Ghost(Boundary::Outlet, 1)],
              phi[s.c.mesh.Faces(Boundary::Outlet)[1].cell]);
}

TEST(EquationGhosts, GhostRowsAreScaledByTheDiagonalOfTheirCell) {
    EquationSetup s(boxHexahedra);
    CKVX_ART_MatOperator(&s.equation.matrix, &s.records.gv).DiffusionOperator(-1.0);
    s.equation.CloseRows(AllValues(s.c, 1.0));

    const int ghost = s.c.objects.Ghost(Boundary::Inlet, 1);
    const int cell = s.c.mesh.Faces(Boundary::Inlet)[1].cell;
    EXPECT_EQ(s.equation.matrix.GetDiagonalValue(ghost), s.equation.matrix.GetDiagonalValue(cell));
    EXPECT_GT(s.equation.matrix.GetDiagonalValue(ghost), 0.0);
}

TEST(EquationGhosts, GhostRowsAreScaledByTheScalesOfTheCaller) {
    EquationSetup s(boxHexahedra);
    const std::vector<double> scale(s.c.mesh.CellCount() + 1, 7.0);
    s.equation.CloseRows(AllValues(s.c, 2.0), scale);
    std::vector<double> rhs(s.records.gv.NcAll + 1, 0.0);
    s.equation.FillGhostRows(AllValues(s.c, 2.0), rhs);

    const int ghost = s.c.objects.Ghost(Boundary::Inlet, 1);
    EXPECT_EQ(s.equation.matrix.GetDiagonalValue(ghost), 7.0);
    EXPECT_EQ(rhs[ghost], 14.0);
}

TEST(EquationSolve, ReportsTheTrueResidual) {
    EquationSetup s(boxPrisms);
    CKVX_ART_MatOperator(&s.equation.matrix, &s.records.gv).DiffusionOperator(-1.0);
    const BoundaryConditions conditions = AllValues(s.c, 1.0);
    s.equation.CloseRows(conditions);
    std::vector<double> rhs(s.records.gv.NcAll + 1, 0.0);
    s.equation.FillGhostRows(conditions, rhs);
    std::vector<double> phi(s.records.gv.NcAll + 1, 0.0);

    const host::SolveReport report = s.equation.Solve(rhs, phi, 1e-10);

    EXPECT_TRUE(report.Converged());
    EXPECT_GT(report.iterations, 0);
    EXPECT_EQ(report.finalResidual, s.equation.Residual(rhs, phi));
    EXPECT_LE(report.finalResidual, 1e-10 * report.initialResidual);
    for (int cell = 1; cell <= s.c.mesh.CellCount(); ++cell) {
        ASSERT_NEAR(phi[cell], 1.0, 1e-7);
    }
}

/// The pair has cut cells, whose rows hold 1 whatever the size of the coefficients is.
TEST(EquationSolve, DiffusionCoefficientsOfAnySizeAreSolved) {
    for (const host::MatrixSolver solver :
         {host::MatrixSolver::Bicgstab, host::MatrixSolver::Samg}) {
        for (const double mu : {1e-150, 1e150}) {
            MeshCase c(oversetPair);
            host::ScalarSolver scalar(c.mesh, c.objects, c.link, Scheme::Diffusion, solver);
            const BoundaryConditions conditions = AllValues(c, 3.0);
            scalar.Assemble(conditions, mu, host::Vec3::Zero());
            const std::vector<double> source(c.mesh.CellCount() + 1, 0.0);
            std::vector<double> phi(scalar.records.gv.NcAll + 1, 0.0);

            const host::SolveReport report = scalar.Solve(conditions, source, phi);

            EXPECT_TRUE(report.Converged()) << host::Name(solver) << ' ' << mu;
            EXPECT_GT(report.initialResidual, mu) << host::Name(solver);
            EXPECT_GT(report.calls, 0) << host::Name(solver) << ' ' << mu;
            for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
                ASSERT_NEAR(phi[cell], c.link.IsActive(cell) ? 3.0 : 0.0, 1e-7)
                    << host::Name(solver) << ' ' << mu << " cell " << cell;
            }
        }
    }
}

TEST(EquationSolve, CallsTheSolverAgainUntilTheTargetOrTheLargestNumberOfCalls) {
    EquationSetup s(boxPrisms);
    CKVX_ART_MatOperator(&s.equation.matrix, &s.records.gv).DiffusionOperator(-1.0);
    const BoundaryConditions conditions = AllValues(s.c, 1.0);
    s.equation.CloseRows(conditions);
    std::vector<double> rhs(s.records.gv.NcAll + 1, 0.0);
    s.equation.FillGhostRows(conditions, rhs);
    s.equation.solver.SetTimes(2);  // not enough for one call

    std::vector<double> phi(s.records.gv.NcAll + 1, 0.0);
    const host::SolveReport report = s.equation.Solve(rhs, phi, 1e-10, 3);

    EXPECT_FALSE(report.Converged());
    EXPECT_EQ(report.calls, 3);
    EXPECT_EQ(report.iterations, 6);
}

TEST(EquationSolve, DoesNotCallTheSolverForASolvedField) {
    EquationSetup s(boxHexahedra);
    CKVX_ART_MatOperator(&s.equation.matrix, &s.records.gv).DiffusionOperator(-1.0);
    const BoundaryConditions conditions = AllValues(s.c, 0.0);
    s.equation.CloseRows(conditions);
    const std::vector<double> rhs(s.records.gv.NcAll + 1, 0.0);
    std::vector<double> phi(s.records.gv.NcAll + 1, 0.0);

    const host::SolveReport report = s.equation.Solve(rhs, phi, 1e-10);

    EXPECT_EQ(report.calls, 0);
    EXPECT_TRUE(report.Converged());
}

}  // namespace
