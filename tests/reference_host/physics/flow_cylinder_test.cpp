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
    CylinderFlow(const MeshChoice& choice, const std::function<void(FlowSettings&)>& change = {},
                 double convergedChange = 1e-7)
        : c(choice) {
        FlowSettings settings = FlowAtRe20(c.mesh);
        if (change) {
            change(settings);
        }
        flow = std::make_unique<FlowSolver>(c.mesh, c.objects, c.link, settings);
        const int iterations = Converge(*flow, convergedChange);
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

void ExpectTheSameFigures(const benchmark::Result& result, const benchmark::Result& base) {
    EXPECT_NEAR(result.cd / base.cd, 1.0, 1e-5);
    EXPECT_NEAR(result.cl / base.cl, 1.0, 1e-3);  // a 600th of the drag
    EXPECT_NEAR(result.dp / base.dp, 1.0, 1e-5);
    EXPECT_NEAR(result.massDefect, base.massDefect, 1e-5);
}

void ExpectTheSameDragWithRelaxation(double relaxation, const MeshChoice& choice,
                                     const benchmark::Result& base) {
    const CylinderFlow other(choice, [&](FlowSettings& s) { s.relaxation = relaxation; });

    EXPECT_LT(other.result.iterations, 1000) << relaxation;
    EXPECT_NEAR(other.result.cd / base.cd, 1.0, 2e-5) << relaxation;
}

void ExpectIndependenceOfTheTolerances(const MeshChoice& choice, const benchmark::Result& base) {
    const CylinderFlow tight(choice, [](FlowSettings& s) {
        s.momentumTolerance = 1e-5;
        s.pressureTolerance = 1e-4;
    });

    ExpectTheSameFigures(tight.result, base);
}

/// The flow at n = 5, computed once for all tests of a suite.
class CylinderAt5 : public testing::Test {
protected:
    static void SetUpTestSuite() { base = std::make_unique<CylinderFlow>(channel5); }
    static void TearDownTestSuite() { base.reset(); }

    static std::unique_ptr<CylinderFlow> base;
};

std::unique_ptr<CylinderFlow> CylinderAt5::base;

class ReleaseCylinderAt5 : public CylinderAt5 {};

TEST_F(ReleaseCylinderAt5, SolutionDoesNotDependOnTheRelaxation) {
    ExpectTheSameDragWithRelaxation(0.7, channel5, base->result);
}

TEST_F(ReleaseCylinderAt5, SolutionDoesNotDependOnTheSolverTolerances) {
    ExpectIndependenceOfTheTolerances(channel5, base->result);
}

TEST_F(ReleaseCylinderAt5, BothSolversGiveTheSameFlow) {
    using host::MatrixSolver;
    for (const MatrixSolver momentum : {MatrixSolver::Bicgstab, MatrixSolver::Samg}) {
        const CylinderFlow other(channel5, [&](FlowSettings& s) {
            s.momentumSolver = momentum;
            s.pressureSolver = MatrixSolver::Samg;
        });

        EXPECT_EQ(other.flow->MomentumPart().equation.solver.Solver(), momentum);
        EXPECT_EQ(other.flow->PressurePart().equation.solver.Solver(), MatrixSolver::Samg);
        EXPECT_NEAR(other.result.iterations, base->result.iterations, 10);
        ExpectTheSameFigures(other.result, base->result);
    }
}

TEST_F(CylinderAt5, EveryActiveCellConservesMass) {
    // The last pressure solve reduces the mass residual of the last small velocity change by ten
    // only.
    EXPECT_LT(LargestImbalance(base->c.mesh, base->c.link, base->flow->Flux()), 1e-8);
}

TEST_F(CylinderAt5, NetFluxThroughTheOversetBoundaryIsZero) {
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

TEST_F(CylinderAt5, MassDefectIsTheNetFluxThroughTheHoleBoundary) {
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

TEST_F(CylinderAt5, VelocityIsZeroInCutCellsAndFluxIsZeroThroughWalls) {
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

/// Solves the flow on the coarse mesh with each scheme.
void ExpectConvergence(const std::vector<Scheme>& schemes) {
    for (const Scheme scheme : schemes) {
        const CylinderFlow run(
            channel5, [&](FlowSettings& s) { s.scheme = scheme; }, 1e-5);

        EXPECT_LT(run.result.iterations, 200) << host::Name(scheme);
        EXPECT_LT(run.CdError(), 0.12) << host::Name(scheme);  // regression limit: upwind has 0.107
    }
}

// The quick tests of the plane channel solve the flow with every scheme on one grid.
TEST(ReleaseCylinderSchemes, UpwindCentralAndQuickConverge) {
    ExpectConvergence({Scheme::UpwindCells, Scheme::Central, Scheme::Quick});
}

TEST(FullCylinderSchemes, EverySchemeConverges) {
    ExpectConvergence({Scheme::UpwindCells, Scheme::UpwindStencils, Scheme::Central,
                       Scheme::LinearUpwind, Scheme::Quick, Scheme::Hybrid});
}

TEST(ReleaseCylinderAt10, FiguresAreWithinTheirLimits) {
    const CylinderFlow run(channel10, {}, 1e-5);

    EXPECT_EQ(Misses(Scheme::LinearUpwind, 10, run.result), "");
}

TEST(FullCylinderAt10, FiguresAreWithinTheirLimitsForEveryRelaxationAndTolerance) {
    const CylinderFlow base(channel10);

    EXPECT_EQ(Misses(Scheme::LinearUpwind, 10, base.result), "");
    ExpectTheSameDragWithRelaxation(0.8, channel10, base.result);
    ExpectTheSameDragWithRelaxation(0.97, channel10, base.result);
    ExpectIndependenceOfTheTolerances(channel10, base.result);
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
