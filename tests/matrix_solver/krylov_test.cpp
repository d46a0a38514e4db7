/// The Krylov methods alone, on systems small enough to redo by hand.

#include "matrix_solver/krylov.h"

#include <gtest/gtest.h>

#include "matrix_solver/csr_system.h"
#include "plain/samples/problems.h"
#include "tests/matrix_solver/systems.h"

namespace {

using kvx3d_solver::CsrSystem;
using kvx3d_solver::Vector;

TEST(Krylov, BiCgStabAndGmresSolveTwoUnknownsInTwoSteps) {
    Problem p;
    p.AddRow(1.5, {{2, 0.5}});
    p.AddRow(1.25, {{1, -0.5}});
    p.rhs = {1.0, 1.0};
    const CsrSystem system = Read(p);
    Identity M;
    for (const auto method : {kvx3d_solver::BiCgStab, kvx3d_solver::Gmres}) {
        Vector x(2, 0.0), r(2);

        const int steps = method(system, M, {1e-13, 10}, x);

        EXPECT_EQ(steps, 2);
        EXPECT_LE(kvx3d_solver::Residual(system, x, r), 1e-13);
    }
}

TEST(Krylov, BiCgStabAndGmresTakeNoMoreStepsThanAllowed) {
    const CsrSystem system = Read(Diffusion(8, 1.0, 1.0, 1.0));
    Identity M;
    for (const auto method : {kvx3d_solver::BiCgStab, kvx3d_solver::Gmres}) {
        Vector x(512, 0.0), r(512);

        EXPECT_EQ(method(system, M, {0.0, 5}, x), 5);
        EXPECT_LT(kvx3d_solver::Residual(system, x, r), system.rhsNorm);
    }
}

TEST(Krylov, GmresConvergesAcrossRestarts) {
    const CsrSystem system = Read(Diffusion(20, 1.0, 1.0, 50.0));
    Identity M;
    Vector x(8000, 0.0), r(8000);
    const double target = 1e-9 * system.rhsNorm;

    const int steps = kvx3d_solver::Gmres(system, M, {target, 500}, x);

    EXPECT_GT(steps, 40);  // otherwise no restart was needed
    EXPECT_LE(kvx3d_solver::Residual(system, x, r), target * 1.0001);
}

TEST(Krylov, BiCgStabReturnsTheStartAfterABreakdown) {
    // The shadow residual is orthogonal to A r from the start.
    Problem p;
    p.AddRow(0.0, {{2, 1.0}});
    p.AddRow(0.0, {{1, -1.0}});
    p.rhs = {1.0, 0.0};
    const CsrSystem system = Read(p);
    Identity M;
    Vector x(2, 0.0);

    const int steps = kvx3d_solver::BiCgStab(system, M, {1e-9, 100}, x);

    EXPECT_EQ(steps, 1);
    EXPECT_EQ(x, (Vector{0.0, 0.0}));
}

TEST(Krylov, ConjugateGradientsSolveTwoUnknownsInTwoSteps) {
    Problem p;
    p.AddRow(1.5, {{2, 0.5}});
    p.AddRow(1.25, {{1, 0.5}});
    p.rhs = {1.0, 1.0};
    const CsrSystem system = Read(p);
    Identity M;
    Vector x(2, 0.0), r(2);

    const int steps = kvx3d_solver::ConjugateGradients(system, M, {1e-13, 10}, x);

    EXPECT_EQ(steps, 2);
    EXPECT_LE(kvx3d_solver::Residual(system, x, r), 1e-13);
}

TEST(Krylov, ConjugateGradientsStopAtAMatrixThatIsNotDefinite) {
    Problem p;
    p.AddRow(0.0, {{2, 1.0}});
    p.AddRow(0.0, {{1, 1.0}});
    p.rhs = {1.0, -1.0};
    const CsrSystem system = Read(p);
    Identity M;
    Vector x(2, 0.0);

    EXPECT_EQ(kvx3d_solver::ConjugateGradients(system, M, {1e-13, 10}, x), 1);
    EXPECT_EQ(x, (Vector{0.0, 0.0}));
}

}  // namespace
