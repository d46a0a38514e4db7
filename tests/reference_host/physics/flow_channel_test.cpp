#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/reference_host/physics/flow_case.h"

namespace {

using host::FlowSolver;
using host::Scheme;
using host::Vec3;

MeshChoice Box(int n, int kind = 1) {
    return {"Box", boxFile, {{"n", n}, {"kind", kind}}};
}

/// Developed flow between parallel plates, which does not change from inlet to outlet.
struct ChannelLevel {
    int n;
    double relaxation;
    double largestError;  // of the present discretization, plus 3 %

    friend std::ostream& operator<<(std::ostream& out, const ChannelLevel& level) {
        return out << "n = " << level.n;
    }
};

class PlaneChannel : public testing::TestWithParam<ChannelLevel> {};

TEST_P(PlaneChannel, KeepsTheParabolicProfileToSecondOrder) {
    const ChannelLevel& level = GetParam();
    MeshCase c(Box(level.n));
    const host::FlowSettings settings = FlowAtRe20(c.mesh, Scheme::LinearUpwind, level.relaxation);
    FlowSolver flow(c.mesh, c.objects, c.link, settings);

    EXPECT_LT(Converge(flow), 120);

    EXPECT_LT(LargestVelocityError(c.mesh, flow.Fields(), settings.inlet), level.largestError);
    EXPECT_LT(std::abs(flow.MassDefect()), 1e-6);
}

INSTANTIATE_TEST_SUITE_P(Levels, PlaneChannel,
                         testing::Values(ChannelLevel{5, 0.9, 3.1e-3},
                                         ChannelLevel{10, 0.9, 8.75e-4}));
INSTANTIATE_TEST_SUITE_P(FullLevels, PlaneChannel, testing::Values(ChannelLevel{20, 0.95, 2.3e-4}));

TEST(PlaneChannel, PressureGradientIsThatOfDevelopedFlow) {
    MeshCase c(Box(10));
    FlowSolver flow(c.mesh, c.objects, c.link, FlowAtRe20(c.mesh));
    Converge(flow);

    // dp/dx = -12 mu U / H^2 = -0.0375 with H = 4, up to the error of the discretization.
    double inner = 0.0;
    int count = 0;
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        const Vec3& at = c.mesh.cellCentre[cell];
        if (at.x() > 1.0 && at.x() < 3.0) {
            inner += flow.PressurePart().Gradient()[cell].x();
            ++count;
        }
    }
    EXPECT_NEAR(inner / count, -0.03738, 2e-5);
}

/// Flow in a channel of prisms.
struct PrismChannel {
    explicit PrismChannel(int n) : c(Box(n, /*kind=*/2)) {
        FlowSolver flow(c.mesh, c.objects, c.link, FlowAtRe20(c.mesh));
        iterations = Converge(flow, 1e-6);
        const host::InletProfile exact = host::benchmark2d1::Inflow(c.mesh);
        const auto error = [&](int cell) {
            return (flow.Fields().Velocity(cell) - exact(c.mesh.cellCentre[cell])).norm();
        };
        velocityError = host::Norms(c.mesh, c.link, error);
    }

    MeshCase c;
    int iterations = 0;
    host::ErrorNorms velocityError;
};

/// Order of the velocity error from a channel to one with half its cell size. The errors and the
/// order are recorded in the report of the test run (--gtest_output).
double RecordedOrder(const PrismChannel& coarse, const PrismChannel& fine) {
    const double order = std::log2(coarse.velocityError.l2 / fine.velocityError.l2);
    testing::Test::RecordProperty("coarse", fmt::format("{:.3e}", coarse.velocityError.l2));
    testing::Test::RecordProperty("fine", fmt::format("{:.3e}", fine.velocityError.l2));
    testing::Test::RecordProperty("order", fmt::format("{:.2f}", order));
    return order;
}

TEST(ReleasePlaneChannel, FlowOnPrismsConvergesAndItsErrorFallsAsMeasured) {
    const PrismChannel coarse(5);
    const PrismChannel fine(10);

    EXPECT_LT(coarse.iterations, 200);
    EXPECT_LT(coarse.velocityError.max, 2e-2);
    // Regression limit: the order is 1.78 here and 1.8 is the goal for finer meshes.
    EXPECT_GT(RecordedOrder(coarse, fine), 1.75);
}

TEST(FullPlaneChannel, FlowOnPrismsIsSecondOrder) {
    const PrismChannel coarse(10);
    const PrismChannel fine(20);

    EXPECT_GT(RecordedOrder(coarse, fine), 1.8);
}

TEST(PlaneChannel, EverySchemeConvergesWithoutGrowingTheMatrix) {
    for (const Scheme scheme : {Scheme::UpwindCells, Scheme::UpwindStencils, Scheme::Central,
                                Scheme::LinearUpwind, Scheme::Quick, Scheme::Hybrid}) {
        MeshCase c(Box(5));
        FlowSolver flow(c.mesh, c.objects, c.link, FlowAtRe20(c.mesh, scheme));
        const CKVX_ART_SparseMatrix& momentum = flow.MomentumPart().equation.matrix;
        const CKVX_ART_SparseMatrix& pressure = flow.PressurePart().equation.matrix;
        const int declared = momentum.Ia[c.objects.CellAndGhostCount() + 1];
        const int declaredForPressure = pressure.Ia[c.objects.CellAndGhostCount() + 1];

        EXPECT_LT(Converge(flow), 200) << host::Name(scheme);

        EXPECT_EQ(momentum.Ia[c.objects.CellAndGhostCount() + 1], declared) << host::Name(scheme);
        EXPECT_EQ(pressure.Ia[c.objects.CellAndGhostCount() + 1], declaredForPressure)
            << host::Name(scheme);
    }
}

/// A duct with walls at y = 0 and 1 and symmetry planes at the sides, along x or along z.
std::string DuctGeo(bool alongZ) {
    return std::string(alongZ ? "lx = 0.25; nx = 3; lz = 2; nz = 8;\n"
                              : "lx = 2; nx = 8; lz = 0.25; nz = 3;\n") +
           "Point(1) = {0, 0, 0}; Point(2) = {lx, 0, 0};\n"
           "Point(3) = {lx, 1, 0}; Point(4) = {0, 1, 0};\n"
           "Line(1) = {1, 2}; Line(2) = {2, 3}; Line(3) = {3, 4}; Line(4) = {4, 1};\n"
           "Transfinite Curve{1, 3} = nx + 1; Transfinite Curve{2, 4} = 9;\n"
           "Curve Loop(1) = {1, 2, 3, 4}; Plane Surface(1) = {1};\n"
           "Transfinite Surface{1}; Recombine Surface{1};\n"
           "e[] = Extrude{0, 0, lz} { Surface{1}; Layers{nz}; Recombine; };\n"
           "Physical Volume(\"background\", 1) = {e[1]};\n"
           "Physical Surface(\"wall\", 13) = {e[2], e[4]};\n" +
           (alongZ ? "Physical Surface(\"inlet\", 11) = {1};\n"
                     "Physical Surface(\"outlet\", 12) = {e[0]};\n"
                     "Physical Surface(\"symmetry\", 14) = {e[3], e[5]};\n"
                   : "Physical Surface(\"inlet\", 11) = {e[5]};\n"
                     "Physical Surface(\"outlet\", 12) = {e[3]};\n"
                     "Physical Surface(\"symmetry\", 14) = {1, e[0]};\n");
}

/// Flow that enters with a uniform velocity and develops in the duct. At the inlet it has a
/// component normal to the symmetry planes, which must vanish downstream.
struct DuctRun {
    explicit DuctRun(bool alongZ_)
        : alongZ(alongZ_),
          mesh(ReadText(DuctGeo(alongZ_))),
          objects(mesh, "."),
          link(mesh, objects) {
        host::FlowSettings settings;
        settings.inlet = [this](const Vec3&) {
            return alongZ ? Vec3(0.2, 0.0, 1.0) : Vec3(1.0, 0.0, 0.2);
        };
        settings.mu = 0.05;
        settings.pressureTolerance = 1e-8;
        settings.momentumTolerance = 1e-8;
        flow = std::make_unique<FlowSolver>(mesh, objects, link, settings);
        iterations = Converge(*flow, 1e-9);
    }

    /// Velocity of the cell nearest to a point. Both have the components along the duct, normal to
    /// the plates and normal to the symmetry planes.
    Vec3 At(double along, double normal, double across) const {
        const Vec3 point = Turned({along, normal, across});
        int nearest = 1;
        for (int cell = 2; cell <= mesh.CellCount(); ++cell) {
            if ((mesh.cellCentre[cell] - point).norm() <
                (mesh.cellCentre[nearest] - point).norm()) {
                nearest = cell;
            }
        }
        return Turned(flow->Fields().Velocity(nearest));
    }

    Vec3 Turned(const Vec3& v) const { return alongZ ? Vec3(v.z(), v.y(), v.x()) : v; }

    const bool alongZ;
    const host::Mesh mesh;
    host::HostObjects objects;
    host::OversetLink link;
    std::unique_ptr<FlowSolver> flow;
    int iterations = 0;
};

TEST(Duct, FlowDevelopsAlongZAsAlongX) {
    const DuctRun alongX(false);
    const DuctRun alongZ(true);

    ASSERT_EQ(alongX.mesh.CellCount(), 8 * 8 * 3);
    ASSERT_EQ(alongX.flow->MomentumPart().Dimensions(), 3);
    EXPECT_LT(alongX.iterations, 500);
    EXPECT_NEAR(alongX.iterations, alongZ.iterations, 2);
    for (const double along : {0.1, 0.9, 1.9}) {
        for (const double normal : {0.05, 0.55}) {
            for (const double across : {0.04, 0.125, 0.21}) {
                EXPECT_LT(
                    (alongX.At(along, normal, across) - alongZ.At(along, normal, across)).norm(),
                    1e-7);
            }
        }
    }
    EXPECT_GT(alongX.At(1.9, 0.5, 0.125).x(), 1.3);
    EXPECT_LT(std::abs(alongX.At(1.9, 0.5, 0.125).z()), 1e-3);
    EXPECT_LT(LargestImbalance(alongX.mesh, alongX.link, alongX.flow->Flux()), 1e-8);
}

TEST(Duct, SeveralLayersInZGiveThePlaneFlow) {
    MeshCase plane(Box(5));
    FlowSolver flat(plane.mesh, plane.objects, plane.link, FlowAtRe20(plane.mesh));
    Converge(flat);
    MeshCase layers({"Layers", boxFile, {{"n", 5}, {"kind", 1}, {"nz", 3}}});
    FlowSolver deep(layers.mesh, layers.objects, layers.link, FlowAtRe20(layers.mesh));
    Converge(deep);

    ASSERT_EQ(deep.MomentumPart().Dimensions(), 3);
    const auto profile = host::benchmark2d1::Inflow(plane.mesh);
    EXPECT_NEAR(LargestVelocityError(layers.mesh, deep.Fields(), profile),
                LargestVelocityError(plane.mesh, flat.Fields(), profile), 1e-5);
}

}  // namespace
