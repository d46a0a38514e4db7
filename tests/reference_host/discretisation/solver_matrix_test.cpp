#include "reference_host/discretisation/solver_matrix.h"

#include <gtest/gtest.h>

#include <cmath>

#include "reference_host/cases/case_heat.h"
#include "reference_host/physics/scalar_solver.h"
#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/support/output_capture.h"

namespace {

using host::MatrixSolver;
using host::Scheme;
using host::SolverMatrix;

/// Tridiagonal with 4 on the diagonal, -1 before and -2 after it. Two further entries in the
/// corners make the preconditioner differ from the inverse.
void FillBand(CKVX_ART_SparseMatrix& A) {
    const int n = A.GetRowsN();
    for (int row = 1; row <= n; ++row) {
        A.AddElementValue(row, row, 4.0);
        if (row > 1) {
            A.AddElementValue(row, row - 1, -1.0);
        }
        if (row < n) {
            A.AddElementValue(row, row + 1, -2.0);
        }
    }
    A.AddElementValue(1, n, -1.0);
    A.AddElementValue(n, 1, -2.0);
}

double Residual(SolverMatrix& A, const std::vector<double>& b, std::vector<double>& x) {
    double squares = 0.0;
    for (int row = 1; row <= A.Matrix().GetRowsN(); ++row) {
        squares += std::pow(b[row] - A.Matrix().DotProduct(row, x.data()), 2);
    }
    return std::sqrt(squares);
}

class SolverMatrixOfKind : public testing::TestWithParam<MatrixSolver> {};

TEST_P(SolverMatrixOfKind, SolvesWithTheSolverOfItsConstruction) {
    SolverMatrix A(5, GetParam());
    FillBand(A.Matrix());
    A.SetTolerance(1e-12);
    A.SetTimes(100);
    const std::vector<double> b = {0, 1, 1, 1, 1, 1};  // the solution is x = 1
    std::vector<double> x(6, 0.0);

    const int iterations = A.Solve(b, x).iterations;

    EXPECT_EQ(A.Solver(), GetParam());
    EXPECT_EQ(iterations > 0, GetParam() == MatrixSolver::Bicgstab);
    for (int row = 1; row <= 5; ++row) {
        EXPECT_NEAR(x[row], 1.0, 1e-10) << row;
    }
}

TEST_P(SolverMatrixOfKind, ImprovesAFairFirstGuess) {
    SolverMatrix A(5, GetParam());
    FillBand(A.Matrix());
    A.SetTolerance(1e-2);
    const std::vector<double> b = {0, 1, 1, 1, 1, 1};
    std::vector<double> x = {0, 1.001, 0.999, 1, 1, 1};  // its residual is below 1e-2 |b|
    const double before = Residual(A, b, x);

    A.Solve(b, x);

    EXPECT_LT(Residual(A, b, x), 0.1 * before);
}

TEST_P(SolverMatrixOfKind, IsFoundByItsName) {
    EXPECT_EQ(host::MatrixSolverNamed(host::Name(GetParam())), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Both, SolverMatrixOfKind,
                         testing::Values(MatrixSolver::Bicgstab, MatrixSolver::Samg),
                         [](const auto& given) { return std::string(host::Name(given.param)); });

TEST(SolverMatrixNames, OtherNamesBelongToNoSolver) {
    EXPECT_FALSE(host::MatrixSolverNamed("gauss").has_value());
    EXPECT_FALSE(host::MatrixSolverNamed("").has_value());
}

class BothSolvers : public testing::TestWithParam<std::tuple<MeshChoice, Scheme>> {};

TEST_P(BothSolvers, GiveTheSameField) {
    const auto& [choice, scheme] = GetParam();
    OutputCapture quiet;
    MeshCase c(choice);
    const host::AnalyticField wave = host::WaveFor(c.mesh);
    const auto solve = [&, of = scheme](MatrixSolver solver) {
        return host::SolveManufactured(c.mesh, c.objects, c.link, of, wave,
                                       host::Convects(of) ? 0.01 : 1.0, {1.0, 0.6, 0.0}, solver);
    };

    const host::ManufacturedRun bicgstab = solve(MatrixSolver::Bicgstab);
    const host::ManufacturedRun samg = solve(MatrixSolver::Samg);

    EXPECT_TRUE(bicgstab.solve.Converged());
    EXPECT_TRUE(samg.solve.Converged());
    EXPECT_GT(samg.solve.calls, 0);
    EXPECT_EQ(samg.solve.iterations, 0);
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        // The residuals are reduced by 1e-10, and the solution is of size 1.
        ASSERT_NEAR(bicgstab.phi[cell], samg.phi[cell], 1e-7) << cell;
    }
}

std::string BothName(const testing::TestParamInfo<std::tuple<MeshChoice, Scheme>>& given) {
    return std::string(std::get<0>(given.param).name) + "_" + host::Name(std::get<1>(given.param));
}

INSTANTIATE_TEST_SUITE_P(Meshes, BothSolvers,
                         testing::Combine(testing::Values(boxPrisms, oversetPair),
                                          testing::Values(Scheme::Diffusion, Scheme::LinearUpwind,
                                                          Scheme::Quick)),
                         BothName);
// Without QUICK, whose matrix on tetrahedra is hard to solve: the external solver ends just above
// the target.
INSTANTIATE_TEST_SUITE_P(Tetrahedra, BothSolvers,
                         testing::Combine(testing::Values(oversetTetrahedra),
                                          testing::Values(Scheme::Diffusion, Scheme::LinearUpwind)),
                         BothName);

TEST(BothSolversOnHeat, GiveTheSameHeatBalance) {
    OutputCapture quiet;
    MeshCase c({"Channel", "channel_cylinder_overset.geo", {{"n", 5}}});
    host::HeatProblem bicgstab(c.mesh, c.objects, c.link, MatrixSolver::Bicgstab);
    host::HeatProblem samg(c.mesh, c.objects, c.link, MatrixSolver::Samg);

    for (const double step : {0.1, 0.0}) {
        EXPECT_TRUE(bicgstab.Advance(step).Converged());
        EXPECT_TRUE(samg.Advance(step).Converged());
        EXPECT_NEAR(samg.Balance().body, bicgstab.Balance().body, 1e-6);
    }
}

}  // namespace
