#include "reference_host/physics/scalar_solver.h"

#include <gtest/gtest.h>

#include <tuple>

#include "reference_host/physics/manufactured.h"
#include "tests/reference_host/discretisation/mesh_case.h"

namespace {

using host::AnalyticField;
using host::ErrorNorms;
using host::ManufacturedRun;
using host::Scheme;
using host::Vec3;

const Vec3 carrier(1.0, 0.6, 0.0);

/// The name of a scheme without hyphens, as test names need it.
std::string SchemeWord(Scheme scheme) {
    std::string word = host::Name(scheme);
    word.erase(std::remove(word.begin(), word.end(), '-'), word.end());
    return word;
}

class LinearField : public testing::TestWithParam<std::tuple<MeshChoice, Scheme>> {};

TEST_P(LinearField, IsReproducedToEightDigits) {
    const auto& [choice, scheme] = GetParam();
    MeshCase c(choice);
    const AnalyticField linear = c.Linear();
    const double mu = host::Convects(scheme) ? 0.1 : 1.0;

    const ManufacturedRun run =
        host::SolveManufactured(c.mesh, c.objects, c.link, scheme, linear, mu, carrier);

    EXPECT_TRUE(run.solve.Converged());
    EXPECT_EQ(run.fallbackCount, 0);
    EXPECT_EQ(run.storedEntriesGrown, 0);
    EXPECT_LT(host::Errors(c.mesh, c.link, run.phi, linear).max, 1e-8);
}

INSTANTIATE_TEST_SUITE_P(Meshes, LinearField,
                         testing::Combine(testing::ValuesIn(AllMeshes()),
                                          testing::Values(Scheme::Diffusion, Scheme::Central,
                                                          Scheme::LinearUpwind, Scheme::Quick)),
                         [](const testing::TestParamInfo<std::tuple<MeshChoice, Scheme>>& pair) {
                             return std::string(std::get<0>(pair.param).name) + "_" +
                                    SchemeWord(std::get<1>(pair.param));
                         });

TEST(ScalarSolver, FirstOrderSchemesDoNotReproduceALinearField) {
    MeshCase c(boxHexahedra);
    const AnalyticField linear = c.Linear();
    for (const Scheme scheme : {Scheme::UpwindCells, Scheme::UpwindStencils, Scheme::Hybrid}) {
        const ManufacturedRun run =
            host::SolveManufactured(c.mesh, c.objects, c.link, scheme, linear, 0.1, carrier);
        EXPECT_GT(host::Errors(c.mesh, c.link, run.phi, linear).max, 1e-3) << host::Name(scheme);
    }
}

TEST(ScalarSolver, CutCellsRemainZero) {
    MeshCase c(oversetPair);
    const AnalyticField wave = host::WaveFor(c.mesh);
    const ManufacturedRun run =
        host::SolveManufactured(c.mesh, c.objects, c.link, Scheme::Diffusion, wave, 1.0, carrier);

    int cut = 0;
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        if (!c.link.IsActive(cell)) {
            ASSERT_EQ(run.phi[cell], 0.0);
            ++cut;
        }
    }
    EXPECT_GT(cut, 0);
}

TEST(ScalarSolver, LaplaceAndDiffusionGiveTheSameField) {
    MeshCase c(oversetPair);
    const AnalyticField wave = host::WaveFor(c.mesh);
    const ManufacturedRun laplace =
        host::SolveManufactured(c.mesh, c.objects, c.link, Scheme::Laplace, wave, 1.0, carrier);
    const ManufacturedRun diffusion =
        host::SolveManufactured(c.mesh, c.objects, c.link, Scheme::Diffusion, wave, 1.0, carrier);

    EXPECT_EQ(laplace.phi, diffusion.phi);
}

TEST(ScalarSolver, FluxOnTheDonorsSideWouldChangeTheSolution) {
    // The flux on the donor's side must be zero, or the row of the donor gets an additional face.
    MeshCase c(oversetPair);
    const host::StencilBuilder builder(c.mesh, c.objects, c.link, host::GradientSet::Velocity);
    host::StencilRecords records(builder, c.objects, host::FarPoint::LinearUpwind);
    CMAFVMFaceVariableAll flux(&records.gv, /*shared=*/false);
    host::FillConstantFlux(builder, carrier, flux);

    for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
        const double through = carrier.dot(c.mesh.innerFaces[face].area);
        switch (c.link.Side(face)) {
            case host::FaceSide::Both:
                ASSERT_EQ(flux.left[face], through);
                ASSERT_EQ(flux.right[face], through);
                break;
            case host::FaceSide::DonorIsSecond:
                ASSERT_EQ(flux.left[face], through);
                ASSERT_EQ(flux.right[face], 0.0);
                break;
            case host::FaceSide::DonorIsFirst:
                ASSERT_EQ(flux.left[face], 0.0);
                ASSERT_EQ(flux.right[face], through);
                break;
            case host::FaceSide::None:
                ASSERT_EQ(flux.left[face], 0.0);
                ASSERT_EQ(flux.right[face], 0.0);
        }
    }
    for (int face = 1; face <= c.mesh.FaceCount(host::Boundary::Symmetry); ++face) {
        ASSERT_EQ(flux.symm[face], 0.0);
    }
}

TEST(SchemeNames, BelongToTheirScheme) {
    for (const Scheme scheme :
         {Scheme::Laplace, Scheme::Diffusion, Scheme::UpwindCells, Scheme::UpwindStencils,
          Scheme::Central, Scheme::LinearUpwind, Scheme::Quick, Scheme::Hybrid}) {
        EXPECT_EQ(host::SchemeNamed(host::Name(scheme)), scheme);
    }
    EXPECT_FALSE(host::SchemeNamed("LUD").has_value());
}

/// Compares the derivatives of the analytic fields with differences of their values.
TEST(AnalyticFields, DerivativesBelongToTheValue) {
    const double h = 1e-4;
    const Vec3 at(1.1, 2.3, 0.4);
    for (const AnalyticField& field :
         {host::WaveField(), host::WaveField(2.0), host::LinearField({1, 2, 3}, 4)}) {
        double laplacian = 0.0;
        for (int i = 0; i < 3; ++i) {
            const Vec3 d = h * Vec3::Unit(i);
            EXPECT_NEAR(field.gradient(at)[i],
                        (field.value(at + d) - field.value(at - d)) / (2 * h), 1e-7);
            laplacian +=
                (field.value(at + d) - 2 * field.value(at) + field.value(at - d)) / (h * h);
        }
        EXPECT_NEAR(field.laplacian(at), laplacian, 1e-6);
    }
}

TEST(AnalyticFields, WaveInThreeDimensionsHasNoNormalGradientOnItsEndPlanes) {
    const AnalyticField wave = host::WaveField(2.0);

    EXPECT_NEAR(wave.gradient({1.1, 2.3, 0.0})[2], 0.0, 1e-14);
    EXPECT_NEAR(wave.gradient({1.1, 2.3, 2.0})[2], 0.0, 1e-14);
}

TEST(ErrorNormsByHand, AreWeightedByVolumeWithoutCutCells) {
    MeshCase c(oversetPair);
    const AnalyticField zero = host::LinearField(Vec3::Zero(), 0.0);
    std::vector<double> phi(c.objects.CellAndGhostCount() + 1, 0.5);
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        phi[cell] = c.link.IsActive(cell) ? (c.mesh.cavity[cell] == 1 ? -0.5 : 0.25) : 1e6;
    }

    const ErrorNorms background = host::Errors(c.mesh, c.link, phi, zero, 1);
    const ErrorNorms component = host::Errors(c.mesh, c.link, phi, zero, 2);
    const ErrorNorms all = host::Errors(c.mesh, c.link, phi, zero);

    EXPECT_NEAR(background.l2, 0.5, 1e-12);
    EXPECT_NEAR(component.l2, 0.25, 1e-12);
    EXPECT_EQ(all.max, 0.5);
    EXPECT_GT(all.l2, 0.25);
    EXPECT_LT(all.l2, 0.5);
}

}  // namespace
