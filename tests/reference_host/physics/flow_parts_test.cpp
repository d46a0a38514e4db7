#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "reference_host/link/body.h"
#include "reference_host/mesh/messages.h"
#include "reference_host/physics/forces.h"
#include "reference_host/physics/momentum.h"
#include "reference_host/physics/pressure_correction.h"
#include "tests/reference_host/physics/flow_case.h"

namespace {

using host::Boundary;
using host::FlowConditions;
using host::FlowFields;
using host::Momentum;
using host::PressureCorrection;
using host::Scheme;
using host::Vec3;

constexpr double relaxation = 0.8;

host::InletProfile Uniform(const Vec3& velocity) {
    return [velocity](const Vec3&) { return velocity; };
}

/// Momentum and pressure correction on one mesh, with fluxes that are not divergence-free.
struct Parts {
    explicit Parts(const MeshChoice& choice, Scheme scheme = Scheme::LinearUpwind)
        : c(choice),
          conditions(c.mesh, c.link, {Uniform({1.0, 0.4, 0.0}), {}, {}}),
          momentum(c.mesh, c.objects, c.link, conditions, scheme, 0.05, relaxation),
          pressure(c.mesh, c.objects, c.link, conditions, relaxation),
          flux(&momentum.records.gv, /*shared=*/false) {
        host::FillConstantFlux(momentum.builder, {1.0, 0.4, 0.0}, flux);
        std::mt19937 random(7);
        std::uniform_real_distribution<double> disturbance(-1e-3, 1e-3);
        for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
            host::SetInnerFlux(flux, face, c.link.Side(face),
                               flux.left[face] + flux.right[face] + disturbance(random));
        }
    }

    double RowSum(CKVX_ART_SparseMatrix& matrix, int row) const {
        std::vector<double> ones(c.objects.CellAndGhostCount() + 1, 1.0);
        return matrix.DotProduct(row, ones.data());
    }

    MeshCase c;
    FlowConditions conditions;
    Momentum momentum;
    PressureCorrection pressure;
    CMAFVMFaceVariableAll flux;
};

class MomentumRows : public testing::TestWithParam<Scheme> {};

TEST_P(MomentumRows, SumIsTheRelaxationTermForAnyFluxes) {
    OutputCapture quiet;
    Parts parts(oversetPair, GetParam());

    parts.momentum.Assemble(parts.flux);

    for (int cell = 1; cell <= parts.c.mesh.CellCount(); ++cell) {
        const double sum = parts.RowSum(parts.momentum.equation.matrix, cell);
        if (parts.c.link.IsActive(cell)) {
            const double scale = parts.momentum.Coefficients()[cell];
            ASSERT_GT(scale, 0.0);
            ASSERT_NEAR(sum, (1.0 - relaxation) / relaxation * scale, 1e-10 * scale) << cell;
        } else {
            ASSERT_EQ(sum, 1.0);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Schemes, MomentumRows,
                         testing::Values(Scheme::UpwindCells, Scheme::UpwindStencils,
                                         Scheme::Central, Scheme::LinearUpwind, Scheme::Quick,
                                         Scheme::Hybrid));

TEST(MomentumSolve, UniformFlowRemainsUniform) {
    Parts parts(annulus);  // inlet inside, outlet outside, no wall
    FlowFields fields(parts.c.objects.CellAndGhostCount());
    for (int cell = 1; cell <= parts.c.mesh.CellCount(); ++cell) {
        fields.velocity[0][cell] = 1.0;
        fields.velocity[1][cell] = 0.4;
    }
    parts.momentum.FillGhosts(fields);
    const FlowFields before = fields;

    parts.momentum.Assemble(parts.flux);
    parts.momentum.equation.solver.SetTolerance(1e-12);
    const host::HoleBalance noHole(parts.c.mesh, parts.c.link);
    parts.momentum.Solve(parts.pressure.Gradient(), noHole, fields);

    EXPECT_LT(host::RelativeChange(before, fields, parts.c.mesh.CellCount()), 1e-9);
}

TEST(PressureFluxes, LinearPressureAddsNothingToTheInterpolatedFlux) {
    OutputCapture quiet;
    for (const MeshChoice& choice : {oversetPair, boxPrisms, oversetTetrahedra}) {
        Parts parts(choice);
        const host::Mesh& mesh = parts.c.mesh;
        const Vec3 velocity(1.0, 0.4, 0.0);
        const auto pressureAt = [](const Vec3& x) { return 3.0 * (4.0 - x.x()); };  // 0 at outlet
        FlowFields fields(parts.c.objects.CellAndGhostCount());
        std::vector<double> momentumScale(mesh.CellCount() + 1, 0.0);
        for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
            if (parts.c.link.IsActive(cell)) {
                fields.velocity[0][cell] = velocity.x();
                fields.velocity[1][cell] = velocity.y();
                fields.pressure[cell] = pressureAt(mesh.cellCentre[cell]);
                momentumScale[cell] = 1.0 + cell % 7;
            }
        }
        for (const Boundary kind : host::allBoundaries) {
            for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
                for (int component : {0, 1}) {
                    fields.velocity[component][parts.c.objects.Ghost(kind, face)] =
                        velocity[component];
                }
            }
        }
        parts.pressure.SetCoefficients(momentumScale);
        parts.pressure.UpdatePressure(fields);

        parts.pressure.PredictFluxes(fields, parts.momentum.records, parts.flux);

        CMAFVMFaceVariableAll expected(&parts.momentum.records.gv, /*shared=*/false);
        host::FillConstantFlux(parts.momentum.builder, velocity, expected);
        for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
            ASSERT_NEAR(parts.flux.left[face], expected.left[face], 1e-10) << choice << face;
            ASSERT_NEAR(parts.flux.right[face], expected.right[face], 1e-10) << choice << face;
        }
        for (const Boundary kind : host::allBoundaries) {
            for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
                ASSERT_NEAR(host::BoundaryFlux(parts.flux, kind)[face],
                            host::BoundaryFlux(expected, kind)[face], 1e-10)
                    << choice << host::FaceName(kind, 0) << face;
            }
        }
    }
}

TEST(PressureFluxes, SawtoothPressureChangesTheFluxes) {
    Parts parts(boxHexahedra);
    const host::Mesh& mesh = parts.c.mesh;
    FlowFields fields(parts.c.objects.CellAndGhostCount());
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        fields.pressure[cell] = static_cast<int>(mesh.cellCentre[cell].x() * 5.0) % 2 == 0 ? 1 : -1;
    }
    parts.pressure.SetCoefficients(std::vector<double>(mesh.CellCount() + 1, 1.0));
    parts.pressure.UpdatePressure(fields);

    parts.pressure.PredictFluxes(fields, parts.momentum.records, parts.flux);

    // Its cell gradients vanish, so only the difference across a face depends on it.
    EXPECT_GT(LargestImbalance(mesh, parts.c.link, parts.flux), 1e-3);
}

TEST(PressureFluxes, CoefficientOfAFaceIsInterpolatedLinearlyBetweenItsCells) {
    OutputCapture quiet;
    Parts parts(oversetTetrahedra);
    const host::Mesh& mesh = parts.c.mesh;
    const auto linear = [](const Vec3& x) { return 20.0 + x.dot(Vec3(1.3, -0.7, 0.9)); };
    std::vector<double> momentumScale(mesh.CellCount() + 1, 1.0);
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        momentumScale[cell] =
            relaxation / (1.0 - relaxation) * mesh.volume[cell] / linear(mesh.cellCentre[cell]);
    }

    parts.pressure.SetCoefficients(momentumScale);

    double largestFromMean = 0.0;
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        if (parts.c.link.Side(face) != host::FaceSide::Both) {
            continue;
        }
        const host::InnerFace& between = mesh.innerFaces[face];
        const Vec3& first = mesh.cellCentre[parts.c.link.First(face)];
        const Vec3& second = mesh.cellCentre[parts.c.link.Second(face)];
        const double share =
            (between.centre - first).dot(between.area) / (second - first).dot(between.area);
        const double expected = linear(first + share * (second - first));
        const double actual = parts.pressure.records.gv.faceMu->left[face];
        ASSERT_NEAR(actual, expected, 1e-11) << "face " << face;
        largestFromMean =
            std::max(largestFromMean, std::abs(actual - linear(0.5 * (first + second))));
    }
    EXPECT_GT(largestFromMean, 1e-3);  // faces off the middle of their cells have been checked
}

TEST(PressureMatrix, RowSumsAreZero) {
    OutputCapture quiet;
    Parts parts(oversetPair);
    parts.momentum.Assemble(parts.flux);
    parts.pressure.SetCoefficients(parts.momentum.Coefficients());

    parts.pressure.Solve(host::NetOutflow(parts.c.mesh, parts.c.link, parts.flux));

    for (int cell = 1; cell <= parts.c.mesh.CellCount(); ++cell) {
        const double sum = parts.RowSum(parts.pressure.equation.matrix, cell);
        ASSERT_NEAR(sum, parts.c.link.IsActive(cell) ? 0.0 : 1.0, 1e-12) << cell;
    }
}

TEST(PressureCorrect, CorrectedFluxesAreDivergenceFreeInEveryActiveCell) {
    OutputCapture quiet;
    Parts parts(oversetPrisms);
    FlowFields fields(parts.c.objects.CellAndGhostCount());
    parts.momentum.Assemble(parts.flux);
    parts.pressure.SetCoefficients(parts.momentum.Coefficients());
    parts.pressure.equation.solver.SetTolerance(1e-13);
    ASSERT_GT(LargestImbalance(parts.c.mesh, parts.c.link, parts.flux), 1e-3);

    parts.pressure.Solve(host::NetOutflow(parts.c.mesh, parts.c.link, parts.flux));
    parts.pressure.Correct(1.0, fields, parts.flux);

    EXPECT_LT(LargestImbalance(parts.c.mesh, parts.c.link, parts.flux), 1e-11);
}

TEST(PressureGhosts, AreZeroAtTheOutletAndExtrapolatedAtWallsAndInlets) {
    Parts parts(boxHexahedra);
    const host::Mesh& mesh = parts.c.mesh;
    FlowFields fields(parts.c.objects.CellAndGhostCount());
    const auto pressureAt = [](const Vec3& x) { return 2.0 * (4.0 - x.x()); };
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        fields.pressure[cell] = pressureAt(mesh.cellCentre[cell]);
    }

    parts.pressure.UpdatePressure(fields);

    for (const Boundary kind : {Boundary::Inlet, Boundary::Outlet, Boundary::Wall}) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            ASSERT_NEAR(fields.pressure[parts.c.objects.Ghost(kind, face)],
                        pressureAt(mesh.Faces(kind)[face].centre), 1e-12);
        }
    }
}

/// Flow fields with values at the ghosts as well.
FlowFields Sampled(const MeshCase& c, const std::function<Vec3(const Vec3&)>& velocity,
                   const std::function<double(const Vec3&)>& pressure) {
    FlowFields fields(c.objects.CellAndGhostCount());
    const auto set = [&](int id, const Vec3& at) {
        for (int component = 0; component < 3; ++component) {
            fields.velocity[component][id] = velocity(at)[component];
        }
        fields.pressure[id] = pressure(at);
    };
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        set(cell, c.mesh.cellCentre[cell]);
    }
    for (const Boundary kind : host::allBoundaries) {
        for (int face = 1; face <= c.mesh.FaceCount(kind); ++face) {
            set(c.objects.Ghost(kind, face), c.mesh.Faces(kind)[face].centre);
        }
    }
    return fields;
}

/// Area of the regular polygon of 8 n sides that approximates the cylinder of radius 1/2.
double PolygonArea(int n) {
    const int sides = 8 * n;
    return sides / 2.0 * 0.25 * std::sin(2.0 * std::acos(-1.0) / sides);
}

TEST(Forces, LinearPressureGivesBuoyancy) {
    OutputCapture quiet;
    Parts parts(channel5);
    const FlowFields fields = Sampled(
        parts.c, [](const Vec3&) { return Vec3::Zero(); },
        [](const Vec3& x) { return 7.0 + 3.0 * x.x() - 2.0 * x.y(); });

    const Vec3 force = host::ForceOnBody(parts.momentum, fields);

    const double volume = PolygonArea(5) * parts.c.mesh.Depth();
    EXPECT_NEAR(force.x(), -3.0 * volume, 1e-12);
    EXPECT_NEAR(force.y(), 2.0 * volume, 1e-12);
    EXPECT_NEAR(force.z(), 0.0, 1e-12);
}

TEST(Forces, ViscousForceIsThatOfTheWholeNormalDerivative) {
    OutputCapture quiet;
    Parts parts(channel5);
    FlowFields fields(parts.c.objects.CellAndGhostCount());
    double wallDistance = 0.0;
    for (const int face : host::BodyFaces(parts.c.mesh, parts.c.link)) {
        const host::BoundaryFace& wall = parts.c.mesh.Faces(Boundary::Wall)[face];
        fields.velocity[0][parts.c.objects.Ghost(Boundary::Wall, face)] = 1.0;
        wallDistance = (wall.centre - parts.c.mesh.cellCentre[wall.cell]).norm();
    }

    const Vec3 force = host::ForceOnBody(parts.momentum, fields);

    // For a cylinder that moves along x through fluid at rest, mu du/dn is mu / d on each face,
    // with its part normal to the face.
    const int sides = 40;
    const double perimeter = sides * std::sin(std::acos(-1.0) / sides);
    EXPECT_NEAR(force.x(), -0.05 / wallDistance * perimeter * parts.c.mesh.Depth(), 1e-9);
    EXPECT_NEAR(force.y(), 0.0, 1e-9);  // nodes of Gmsh are on the arc to about 1e-11
}

TEST(Forces, StagnationPressureIsExactForAParabolaAlongTheSurface) {
    OutputCapture quiet;
    Parts parts(channel10);
    const FlowFields fields = Sampled(
        parts.c, [](const Vec3&) { return Vec3::Zero(); },
        [](const Vec3& x) {
            const double y = x.y() - 2.0;
            return x.x() < 2.0 ? 5.0 - 9.0 * y * y : -1.0 + 4.0 * y * y;
        });

    const host::StagnationPressures found =
        host::PressuresAtStagnation(parts.momentum.builder, fields.pressure);

    EXPECT_NEAR(found.front, 5.0, 1e-9);
    EXPECT_NEAR(found.back, -1.0, 1e-9);
}

TEST(FlowFields, OutputDoesNotChangeTheFieldsOfTheRun) {
    MeshCase c(boxHexahedra);
    FlowFields fields(c.objects.CellAndGhostCount());
    fields.velocity[1][3] = 1e-11;
    fields.pressure[4] = -2.5;

    fields.Publish(c.objects);
    c.objects.v[3] = 0.0;

    EXPECT_EQ(fields.velocity[1][3], 1e-11);
    EXPECT_EQ(c.objects.pressure[4], -2.5);
}

TEST(FlowFields, ChangeIsRelativeToTheNewVelocity) {
    FlowFields before(2);
    FlowFields now(2);
    now.velocity[0] = {0.0, 3.0, 0.0};
    now.velocity[1] = {0.0, 0.0, 4.0};
    before.velocity[0] = {0.0, 3.0, 0.0};
    before.velocity[1] = {0.0, 0.0, 3.0};

    EXPECT_DOUBLE_EQ(host::RelativeChange(before, now, 2), 0.2);
}

TEST(FlowRelaxation, FollowsTheMeshSize) {
    EXPECT_DOUBLE_EQ(host::DefaultRelaxation(5), 0.9);
    EXPECT_DOUBLE_EQ(host::DefaultRelaxation(10), 0.9);
    EXPECT_DOUBLE_EQ(host::DefaultRelaxation(20), 0.95);
    EXPECT_DOUBLE_EQ(host::DefaultRelaxation(40), 0.975);
}

}  // namespace
