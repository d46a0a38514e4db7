#include "reference_host/physics/momentum_balance.h"

#include <gtest/gtest.h>

#include <random>

#include "reference_host/link/body.h"
#include "reference_host/physics/momentum_flux.h"
#include "tests/reference_host/physics/flow_case.h"

namespace {

using host::Boundary;
using host::FaceSide;
using host::FlowFields;
using host::FlowSolver;
using host::MomentumFlux;
using host::Scheme;
using host::Vec3;

constexpr double viscosity = 0.05;
constexpr double relaxation = 0.8;

/// A flow whose velocity, pressure and fluxes are random and satisfy no equation. Many fluxes
/// are so small that the convection operators take them as near zero.
struct RandomFlow {
    explicit RandomFlow(const MeshChoice& choice, Scheme scheme = Scheme::LinearUpwind)
        : c(choice),
          conditions(c.mesh, c.link, {[](const Vec3&) { return Vec3(1.0, 0.4, 0.0); }, {}, {}}),
          momentum(c.mesh, c.objects, c.link, conditions, scheme, viscosity, relaxation),
          pressure(c.mesh, c.objects, c.link, conditions, relaxation),
          fields(c.objects.CellAndGhostCount()),
          flux(&momentum.records.gv, /*shared=*/false) {
        for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
            host::SetInnerFlux(flux, face, c.link.Side(face), RandomFlux());
        }
        for (const Boundary kind : {Boundary::Inlet, Boundary::Outlet, Boundary::Wall}) {
            for (int face = 1; face <= c.mesh.FaceCount(kind); ++face) {
                const bool silent = momentum.builder.IsSilent(kind, face);
                host::BoundaryFlux(flux, kind)[face] = silent ? 0.0 : RandomFlux();
            }
        }
        for (int component = 0; component < momentum.Dimensions(); ++component) {
            for (double& u : fields.velocity[component]) {
                u = any(random);
            }
        }
    }

    double RandomFlux() {
        const double value = any(random);
        return std::abs(value) < 0.3 ? 1e-8 * value : value;
    }

    MomentumFlux Through() const { return {momentum, pressure, fields, flux}; }

    std::mt19937 random{7};
    std::uniform_real_distribution<double> any{-1.0, 1.0};
    MeshCase c;
    host::FlowConditions conditions;
    host::Momentum momentum;
    host::PressureCorrection pressure;
    FlowFields fields;
    CMAFVMFaceVariableAll flux;
};

/// The momentum that leaves each active cell through its faces, except symmetry planes.
std::vector<Vec3> LeavingCells(const RandomFlow& flow) {
    const host::Mesh& mesh = flow.c.mesh;
    const MomentumFlux through = flow.Through();
    std::vector<Vec3> leaving(mesh.CellCount() + 1, Vec3::Zero());
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const FaceSide side = flow.c.link.Side(face);
        if (side == FaceSide::Both || side == FaceSide::DonorIsSecond) {
            leaving[mesh.innerFaces[face].owner] += through.Inner(face);
        }
        if (side == FaceSide::Both || side == FaceSide::DonorIsFirst) {
            leaving[mesh.innerFaces[face].neighbor] -= through.Inner(face);
        }
    }
    for (const Boundary kind : {Boundary::Inlet, Boundary::Outlet, Boundary::Wall}) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            leaving[mesh.Faces(kind)[face].cell] += through.AtBoundary(kind, face);
        }
    }
    return leaving;
}

/// Compares them with the rows of the momentum matrix without relaxation and net outflow.
void ExpectTheRowsOfTheMatrix(const MeshChoice& choice, Scheme scheme) {
    OutputCapture quiet;
    RandomFlow flow(choice, scheme);
    const host::Mesh& mesh = flow.c.mesh;
    flow.momentum.Assemble(flow.flux);
    const std::vector<Vec3> leaving = LeavingCells(flow);
    const std::vector<double> net = host::NetOutflow(mesh, flow.c.link, flow.flux);
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (!flow.c.link.IsActive(cell)) {
            continue;
        }
        const double added =
            (1.0 - relaxation) / relaxation * flow.momentum.Coefficients()[cell] - net[cell];
        for (int component = 0; component < flow.momentum.Dimensions(); ++component) {
            std::vector<double>& u = flow.fields.velocity[component];
            const double row = flow.momentum.equation.matrix.DotProduct(cell, u.data());
            ASSERT_NEAR(leaving[cell][component], row - added * u[cell], 1e-11)
                << choice << ", cell " << cell;
        }
    }
}

class MomentumFluxes : public testing::TestWithParam<Scheme> {};

TEST_P(MomentumFluxes, AddUpToTheRowsOfTheMomentumMatrixInEveryCell) {
    ExpectTheRowsOfTheMatrix(boxPrisms, GetParam());
    ExpectTheRowsOfTheMatrix(oversetPair, GetParam());
}

TEST(MomentumFlux, AddsUpToTheRowsOfTheMomentumMatrixOnTetrahedra) {
    ExpectTheRowsOfTheMatrix(oversetTetrahedra, Scheme::LinearUpwind);
}

INSTANTIATE_TEST_SUITE_P(Schemes, MomentumFluxes,
                         testing::Values(Scheme::Diffusion, Scheme::UpwindCells,
                                         Scheme::UpwindStencils, Scheme::Central,
                                         Scheme::LinearUpwind, Scheme::Quick, Scheme::Hybrid),
                         [](const auto& choice) {
                             std::string name = host::Name(choice.param);
                             name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
                             return name;
                         });

/// Linear pressure in fluid at rest.
constexpr double pressureSlope = 3.0;
void SetLinearPressure(RandomFlow& flow) {
    flow.fields = FlowFields(flow.c.objects.CellAndGhostCount());
    for (int cell = 1; cell <= flow.c.mesh.CellCount(); ++cell) {
        flow.fields.pressure[cell] = 2.0 + pressureSlope * flow.c.mesh.cellCentre[cell].x();
    }
    for (const Boundary kind : host::allBoundaries) {
        for (int face = 1; face <= flow.c.mesh.FaceCount(kind); ++face) {
            flow.fields.pressure[flow.c.objects.Ghost(kind, face)] =
                2.0 + pressureSlope * flow.c.mesh.Faces(kind)[face].centre.x();
        }
    }
}

TEST(MomentumFlux, LinearPressureOverTheHoleBoundaryGivesTheBuoyancyOfTheHole) {
    for (const MeshChoice& choice : {channel5, oversetTetrahedra}) {
        OutputCapture quiet;
        RandomFlow flow(choice);
        SetLinearPressure(flow);
        double volume = 0.0;
        for (int cell = 1; cell <= flow.c.mesh.CellCount(); ++cell) {
            volume += flow.c.link.IsActive(cell) ? 0.0 : flow.c.mesh.volume[cell];
        }
        const Vec3 force =
            flow.Through().IntoHole(host::HoleBalance(flow.c.mesh, flow.c.link));

        ASSERT_GT(volume, 0.1) << choice;
        EXPECT_LT((force + Vec3(pressureSlope * volume, 0.0, 0.0)).norm(), 1e-10) << choice;
    }
}

TEST(MomentumFlux, FacesOfCutCellsCarryNothing) {
    OutputCapture quiet;
    RandomFlow flow(channel5);
    for (double& p : flow.fields.pressure) {
        p = 1.0;
    }
    int cut = 0;
    for (const Boundary kind : host::allBoundaries) {
        for (int face = 1; face <= flow.c.mesh.FaceCount(kind); ++face) {
            if (!flow.c.link.IsActive(flow.c.mesh.Faces(kind)[face].cell)) {
                ++cut;
                ASSERT_EQ(flow.Through().AtBoundary(kind, face).norm(), 0.0);
            }
        }
    }
    EXPECT_GT(cut, 0);
}

TEST(MomentumFlux, SymmetryPlaneCarriesPressureAndNormalStress) {
    OutputCapture quiet;
    RandomFlow flow({"Layers", boxFile, {{"n", 5}, {"kind", 1}, {"nz", 3}}});
    ASSERT_EQ(flow.momentum.Dimensions(), 3);
    const host::BoundaryFace& plane = flow.c.mesh.Faces(Boundary::Symmetry)[1];
    flow.momentum.FillGhosts(flow.fields);
    flow.fields.pressure[flow.c.objects.Ghost(Boundary::Symmetry, 1)] = 2.0;
    const double distance = std::abs(plane.centre.z() - flow.c.mesh.cellCentre[plane.cell].z());
    const double w = flow.fields.velocity[2][plane.cell];

    const Vec3 through = flow.Through().AtBoundary(Boundary::Symmetry, 1);

    const double viscous = viscosity * plane.area.norm() * w / distance;
    EXPECT_NEAR(through.x(), 0.0, 1e-12);
    EXPECT_NEAR(through.y(), 0.0, 1e-12);
    EXPECT_NEAR(through.z(), 2.0 * plane.area.z() + viscous, 1e-12);
}

TEST(HoleBoundary, BelongsToTheBackgroundOnly) {
    for (const MeshChoice& choice : {channel5, channel10, oversetPrisms, oversetTetrahedra}) {
        OutputCapture quiet;
        const MeshCase c(choice);
        int count = 0;
        for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
            if (c.link.Side(face) == FaceSide::DonorIsFirst ||
                c.link.Side(face) == FaceSide::DonorIsSecond) {
                ++count;
                ASSERT_EQ(c.mesh.cavity[host::ActiveCell(c.mesh, c.link.Tables(), face)], 1);
            }
        }
        EXPECT_GT(count, 0) << choice;
    }
}

TEST(SingleGrid, HasNoInterfaceAndItsWallsBalanceItsOpenings) {
    MeshCase c({"Box", boxFile, {{"n", 10}, {"kind", 1}}});
    FlowSolver flow(c.mesh, c.objects, c.link, FlowAtRe20(c.mesh));
    Converge(flow);

    const host::BodyForces forces = host::ForcesFromMomentumBalance(flow);

    EXPECT_FALSE(forces.overset);
    EXPECT_FALSE(forces.hole);
    EXPECT_FALSE(host::InterfaceMassDefect(flow));
    // The friction at both plates: 12 mu U / H^2 times the volume, with U = 1, H = 4, length 4.
    const double friction = 12.0 * 0.05 / 16.0 * 16.0 * c.mesh.Depth();
    EXPECT_NEAR(forces.body.x() / friction, 1.0, 1e-2);
    EXPECT_NEAR(forces.outer.x() / forces.body.x(), 1.0, 2e-5);
}

}  // namespace
