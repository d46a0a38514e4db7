#include <gtest/gtest.h>

#include <memory>

#include "tests/reference_host/physics/flow_case.h"

namespace {

namespace benchmark = host::benchmark2d1;
using host::Boundary;
using host::FlowSettings;
using host::FlowSolver;
using host::Scheme;

/// The flow around the cylinder in the channel, solved to convergence.
struct CylinderFlow {
    CylinderFlow(const MeshChoice& choice, const std::function<void(FlowSettings&)>& change = {})
        : c(choice) {
        FlowSettings settings = FlowAtRe20(c.mesh);
        if (change) {
            change(settings);
        }
        flow = std::make_unique<FlowSolver>(c.mesh, c.objects, c.link, settings);
        const int iterations = Converge(*flow);
        result = benchmark::Measure(*flow);
        result.iterations = iterations;
    }

    double CdError() const { return std::abs(result.cd / benchmark::dragCoefficient - 1.0); }

    const OutputCapture quiet;
    MeshCase c;
    std::unique_ptr<FlowSolver> flow;
    benchmark::Result result;
};

/// The messages about figures outside their limits, one per line.
std::string Misses(Scheme scheme, int n, const benchmark::Result& result) {
    std::string text;
    for (const std::string& miss : benchmark::Misses(result, *benchmark::LimitsOf(scheme, n))) {
        text += miss + '\n';
    }
    return text;
}

/// The run at n = 10 that others are compared with, computed once for all tests.
class CylinderAt10 : public testing::Test {
protected:
    static void SetUpTestSuite() { base = std::make_unique<CylinderFlow>(channel10); }
    static void TearDownTestSuite() { base.reset(); }

    static std::unique_ptr<CylinderFlow> base;
};

std::unique_ptr<CylinderFlow> CylinderAt10::base;

class ReleaseCylinderAt10 : public CylinderAt10 {};

TEST_F(CylinderAt10, FiguresAreWithinTheirLimits) {
    EXPECT_EQ(Misses(Scheme::LinearUpwind, 10, base->result), "");
}

TEST_F(ReleaseCylinderAt10, SolutionDoesNotDependOnTheRelaxation) {
    for (const double relaxation : {0.8, 0.97}) {
        const CylinderFlow other(channel10, [&](FlowSettings& s) { s.relaxation = relaxation; });

        EXPECT_LT(other.result.iterations, 1000) << relaxation;
        EXPECT_NEAR(other.result.cd / base->result.cd, 1.0, 2e-5) << relaxation;
    }
}

TEST_F(ReleaseCylinderAt10, SolutionDoesNotDependOnTheSolverTolerances) {
    const CylinderFlow tight(channel10, [](FlowSettings& s) {
        s.momentumTolerance = 1e-5;
        s.pressureTolerance = 1e-4;
    });

    EXPECT_NEAR(tight.result.cd / base->result.cd, 1.0, 1e-5);
    EXPECT_NEAR(tight.result.cl / base->result.cl, 1.0, 1e-3);  // a 600th of the drag
    EXPECT_NEAR(tight.result.dp / base->result.dp, 1.0, 1e-5);
    EXPECT_NEAR(tight.result.massDefect, base->result.massDefect, 1e-5);
}

TEST_F(CylinderAt10, EveryActiveCellConservesMass) {
    // The last pressure solve reduces the mass residual of the last small velocity change by ten
    // only.
    EXPECT_LT(LargestImbalance(base->c.mesh, base->c.link, base->flow->Flux()), 1e-8);
}

TEST_F(CylinderAt10, NetFluxThroughTheOversetBoundaryIsZero) {
    double net = 0.0;
    double through = 0.0;
    for (int face = 1; face <= base->c.mesh.FaceCount(Boundary::Wall); ++face) {
        if (base->c.mesh.Faces(Boundary::Wall)[face].oversetGroup > 0) {
            net += base->flow->Flux().wall[face];
            through += std::abs(base->flow->Flux().wall[face]);
        }
    }

    EXPECT_GT(through, 0.1);
    EXPECT_LT(std::abs(net), 1e-7);
}

TEST_F(CylinderAt10, MassDefectIsTheNetFluxThroughTheHoleBoundary) {
    const host::Mesh& mesh = base->c.mesh;
    const CMAFVMFaceVariableAll& flux = base->flow->Flux();
    double intoHole = 0.0;
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const host::FaceSide side = base->c.link.Side(face);
        intoHole += side == host::FaceSide::DonorIsSecond ? flux.left[face] : 0.0;
        intoHole -= side == host::FaceSide::DonorIsFirst ? flux.right[face] : 0.0;
    }

    EXPECT_NEAR(-intoHole / base->flow->Inflow(), base->flow->MassDefect(), 1e-6);
}

TEST_F(CylinderAt10, VelocityIsZeroInCutCellsAndFluxIsZeroThroughWalls) {
    const host::FlowFields& fields = base->flow->Fields();
    for (int cell = 1; cell <= base->c.mesh.CellCount(); ++cell) {
        ASSERT_EQ(fields.velocity[2][cell], 0.0);
        if (!base->c.link.IsActive(cell)) {
            ASSERT_EQ(fields.Velocity(cell).norm(), 0.0);
            ASSERT_EQ(fields.pressure[cell], 0.0);
        }
    }
    for (int face = 1; face <= base->c.mesh.FaceCount(Boundary::Wall); ++face) {
        if (base->c.mesh.Faces(Boundary::Wall)[face].oversetGroup == 0) {
            ASSERT_EQ(base->flow->Flux().wall[face], 0.0);
        }
    }
}

TEST(CylinderSchemes, EverySchemeConvergesOnTheCoarseMesh) {
    for (const Scheme scheme : {Scheme::UpwindCells, Scheme::UpwindStencils, Scheme::Central,
                                Scheme::LinearUpwind, Scheme::Quick, Scheme::Hybrid}) {
        const CylinderFlow run(channel5, [&](FlowSettings& s) { s.scheme = scheme; });

        EXPECT_LT(run.result.iterations, 200) << host::Name(scheme);
        EXPECT_LT(run.CdError(), 0.12) << host::Name(scheme);  // regression limit: upwind has 0.107
    }
}

TEST(CylinderSolvers, BothGiveTheSameFlow) {
    using host::MatrixSolver;
    const CylinderFlow base(channel5);
    for (const MatrixSolver momentum : {MatrixSolver::Bicgstab, MatrixSolver::Samg}) {
        const CylinderFlow other(channel5, [&](FlowSettings& s) {
            s.momentumSolver = momentum;
            s.pressureSolver = MatrixSolver::Samg;
        });

        EXPECT_EQ(other.flow->MomentumPart().equation.solver.Solver(), momentum);
        EXPECT_EQ(other.flow->PressurePart().equation.solver.Solver(), MatrixSolver::Samg);
        EXPECT_NEAR(other.result.iterations, base.result.iterations, 10);
        EXPECT_NEAR(other.result.cd / base.result.cd, 1.0, 1e-5);
        EXPECT_NEAR(other.result.cl / base.result.cl, 1.0, 1e-3);  // a 600th of the drag
        EXPECT_NEAR(other.result.dp / base.result.dp, 1.0, 1e-5);
    }
}

const MeshChoice channel20 = {"Channel20", "channel_cylinder_overset.geo", {{"n", 20}}};

TEST(FullCylinder, LinearUpwindIsWithinItsLimitsAt20AndMoreAccurateThanAt10) {
    const CylinderFlow coarse(channel10);
    const CylinderFlow fine(channel20, [](FlowSettings& s) { s.relaxation = 0.95; });

    EXPECT_EQ(Misses(Scheme::LinearUpwind, 20, fine.result), "");
    EXPECT_LT(fine.CdError(), coarse.CdError());
}

TEST(FullCylinder, QuickAndCentralAreWithinTheirLimitsAt20) {
    for (const Scheme scheme : {Scheme::Quick, Scheme::Central}) {
        const CylinderFlow run(channel20, [&](FlowSettings& s) {
            s.scheme = scheme;
            s.relaxation = 0.95;
        });

        EXPECT_LT(run.result.iterations, 240) << host::Name(scheme);
        EXPECT_EQ(Misses(scheme, 20, run.result), "") << host::Name(scheme);
    }
}

}  // namespace
