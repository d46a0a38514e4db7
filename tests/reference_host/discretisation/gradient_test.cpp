#include "reference_host/discretisation/gradient.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/reference_host/discretisation/mesh_case.h"

namespace {

using host::Boundary;
using host::CellFaces;
using host::CellGradients;
using host::GradientSet;

class GradientOnMesh : public testing::TestWithParam<MeshChoice> {};

TEST_P(GradientOnMesh, VelocityGradientIsExactForALinearField) {
    const MeshCase c(GetParam());
    const CellGradients gradients(c.mesh, c.objects, c.link, CellFaces(c.mesh),
                                  GradientSet::Velocity);
    const host::AnalyticField linear = c.Linear();
    const std::vector<double> field = c.Sample(linear);

    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        if (c.link.IsActive(cell)) {
            const host::Vec3 error = gradients[cell].Apply(field) - linear.gradient({});
            ASSERT_LT(error.norm(), 1e-11) << "cell " << cell;
        }
    }
}

TEST_P(GradientOnMesh, CutCellsHaveNoGradient) {
    const MeshCase c(GetParam());
    const CellGradients gradients(c.mesh, c.objects, c.link, CellFaces(c.mesh),
                                  GradientSet::Velocity);

    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        ASSERT_EQ(gradients[cell].Terms().empty(), !c.link.IsActive(cell)) << "cell " << cell;
    }
}

TEST_P(GradientOnMesh, PressureGradientUsesNoGhostOfInletPhysicalWallOrSymmetry) {
    const MeshCase c(GetParam());
    const CellGradients gradients(c.mesh, c.objects, c.link, CellFaces(c.mesh),
                                  GradientSet::Pressure);
    std::vector<char> mayAppear(c.objects.CellAndGhostCount() + 1, 1);
    for (const Boundary kind : host::allBoundaries) {
        for (int face = 1; face <= c.mesh.FaceCount(kind); ++face) {
            const bool outflowOrOverset =
                kind == Boundary::Outlet || c.mesh.Faces(kind)[face].oversetGroup > 0;
            mayAppear[c.objects.Ghost(kind, face)] = outflowOrOverset ? 1 : 0;
        }
    }

    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        for (const auto& term : gradients[cell].Terms()) {
            ASSERT_TRUE(mayAppear[term.column]) << "cell " << cell << " column " << term.column;
        }
    }
}

TEST_P(GradientOnMesh, WeightsSumToZero) {
    const MeshCase c(GetParam());
    const CellGradients gradients(c.mesh, c.objects, c.link, CellFaces(c.mesh),
                                  GradientSet::Pressure);

    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        host::Vec3 sum = host::Vec3::Zero();
        for (const auto& term : gradients[cell].Terms()) {
            sum += term.weight;
        }
        ASSERT_LT(sum.norm(), 1e-10) << "cell " << cell;
    }
}

INSTANTIATE_TEST_SUITE_P(Meshes, GradientOnMesh, testing::ValuesIn(AllMeshes()), MeshName);

TEST(GradientOfTetrahedra, UsesTheNeighborsOfTheNeighbors) {
    const MeshCase c(oversetTetrahedra);
    const CellGradients gradients(c.mesh, c.objects, c.link, CellFaces(c.mesh),
                                  GradientSet::Pressure);
    int tetrahedra = 0;

    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        if (c.mesh.cellNodes[cell].size() != 4) {
            continue;
        }
        ++tetrahedra;
        // The cell itself and up to four neighbors with three further ones each, fewer at a wall.
        ASSERT_GE(gradients[cell].Terms().size(), 7u) << "cell " << cell;
        ASSERT_LE(gradients[cell].Terms().size(), 17u) << "cell " << cell;
    }
    EXPECT_GT(tetrahedra, 1000);
}

/// Numbers of unknowns in the gradients of the prisms at a wall, ascending.
std::vector<std::size_t> SizesAtWall(const MeshCase& c, GradientSet set) {
    const CellGradients gradients(c.mesh, c.objects, c.link, CellFaces(c.mesh), set);
    std::vector<std::size_t> sizes;
    for (int face = 1; face <= c.mesh.FaceCount(host::Boundary::Wall); ++face) {
        const int cell = c.mesh.Faces(host::Boundary::Wall)[face].cell;
        sizes.push_back(gradients[cell].Terms().size());
    }
    std::sort(sizes.begin(), sizes.end());
    return sizes;
}

TEST(GradientOfPrisms, PressureAtAWallUsesTheNeighborsOfTheNeighbors) {
    const MeshCase c(boxPrisms);

    const std::vector<std::size_t> pressure = SizesAtWall(c, GradientSet::Pressure);
    const std::vector<std::size_t> velocity = SizesAtWall(c, GradientSet::Velocity);

    // The cell with two neighbors and, for the velocity, the ghost at the wall; a cell in a corner
    // has fewer neighbors. The pressure gets up to four cells more in place of the ghost.
    ASSERT_GT(pressure.size(), 10u);
    EXPECT_EQ(velocity.back(), 4u);
    EXPECT_EQ(pressure.back(), 7u);
    EXPECT_GE(pressure[pressure.size() / 2], 6u);
}

TEST(GradientByHand, InnerCellOfAUniformGridHasCentralDifferences) {
    const MeshCase c(boxHexahedra);  // cells of size 0.2
    const CellGradients gradients(c.mesh, c.objects, c.link, CellFaces(c.mesh),
                                  GradientSet::Velocity);
    int middle = 0;
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        middle =
            (c.mesh.cellCentre[cell] - host::Vec3(2.1, 2.1, 0.1)).norm() < 1e-9 ? cell : middle;
    }
    ASSERT_GT(middle, 0);

    const host::Stencil alongX = gradients[middle].Along(host::Vec3::UnitX());

    // The weights are +-1 / (2 h) at the two neighbors in x and zero up to rounding elsewhere.
    for (const host::Stencil::Term& term : alongX.Terms()) {
        const double dx = c.mesh.cellCentre[term.column][0] - 2.1;
        const double expected = std::abs(dx) > 0.1 ? 2.5 * (dx > 0 ? 1 : -1) : 0.0;
        EXPECT_NEAR(term.weight, expected, 1e-10);
    }
}

}  // namespace
