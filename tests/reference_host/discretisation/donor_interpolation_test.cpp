#include "reference_host/discretisation/donor_interpolation.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/reference_host/discretisation/mesh_case.h"

namespace {

using host::CellFaces;
using host::DonorInterpolation;
using host::FaceSide;
using host::Stencil;
using host::Vec3;

class InterpolationOnMesh : public testing::TestWithParam<MeshChoice> {};

/// Donor and mirrored point of the active cell for every face on a hole or overset boundary.
std::vector<std::pair<int, Vec3>> Queries(const MeshCase& c) {
    std::vector<std::pair<int, Vec3>> queries;
    for (int face = 1; face <= c.mesh.InnerFaceCount(); ++face) {
        const FaceSide side = c.link.Side(face);
        if (side == FaceSide::DonorIsSecond || side == FaceSide::DonorIsFirst) {
            const bool donorIsSecond = side == FaceSide::DonorIsSecond;
            const int donor = donorIsSecond ? c.link.Second(face) : c.link.First(face);
            const int cell = donorIsSecond ? c.link.First(face) : c.link.Second(face);
            queries.emplace_back(donor,
                                 2.0 * c.mesh.innerFaces[face].centre - c.mesh.cellCentre[cell]);
        }
    }
    for (int face = 1; face <= c.mesh.FaceCount(host::Boundary::Wall); ++face) {
        const host::BoundaryFace& wall = c.mesh.Faces(host::Boundary::Wall)[face];
        if (wall.oversetGroup > 0) {
            queries.emplace_back(c.link.WallDonor(face),
                                 2.0 * wall.centre - c.mesh.cellCentre[wall.cell]);
        }
    }
    return queries;
}

TEST_P(InterpolationOnMesh, WeightsSumToOneForEveryDonor) {
    const MeshCase c(GetParam());
    const CellFaces cellFaces(c.mesh);
    const DonorInterpolation interpolation(c.mesh, c.link, cellFaces);
    const auto queries = Queries(c);
    ASSERT_FALSE(queries.empty());

    for (const auto& [donor, point] : queries) {
        ASSERT_NEAR(interpolation.Fit(donor, point).Sum(), 1.0, 1e-11) << "donor " << donor;
    }
}

TEST_P(InterpolationOnMesh, QuadraticFieldIsReproduced) {
    const MeshCase c(GetParam());
    const CellFaces cellFaces(c.mesh);
    const DonorInterpolation interpolation(c.mesh, c.link, cellFaces);
    const double inDepth = c.mesh.IsQuasi2d() ? 0.0 : 1.0;
    const auto quadratic = [&](const Vec3& at) {
        const double x = at[0], y = at[1], z = inDepth * at[2];
        return 1.0 + x - 2.0 * y + z + x * x - 0.5 * y * y + 3.0 * x * y + z * z - y * z + z * x;
    };

    for (const auto& [donor, point] : Queries(c)) {
        double value = 0.0;
        const Stencil fit = interpolation.Fit(donor, point);
        for (const Stencil::Term& term : fit.Terms()) {
            value += term.weight * quadratic(c.mesh.cellCentre[term.column]);
        }
        ASSERT_NEAR(value, quadratic(point), 1e-9) << "donor " << donor;
    }
}

TEST_P(InterpolationOnMesh, CloudConsistsOfActiveCellsOfTheDonorsGrid) {
    const MeshCase c(GetParam());
    const CellFaces cellFaces(c.mesh);
    const DonorInterpolation interpolation(c.mesh, c.link, cellFaces);

    for (const auto& query : Queries(c)) {
        std::vector<int> cloud = interpolation.Cloud(query.first);
        for (const int cell : cloud) {
            ASSERT_TRUE(c.link.IsActive(cell));
            ASSERT_EQ(c.mesh.cavity[cell], c.mesh.cavity[query.first]);
        }
        std::sort(cloud.begin(), cloud.end());
        ASSERT_EQ(std::adjacent_find(cloud.begin(), cloud.end()), cloud.end())
            << "the cloud holds a cell twice";
    }
}

INSTANTIATE_TEST_SUITE_P(Meshes, InterpolationOnMesh,
                         testing::Values(oversetPair, oversetPrisms, oversetLayers,
                                         oversetTetrahedra),
                         MeshName);

TEST(InterpolationEdge, LargestCloudOfAPlaneGridHasThirteenCells) {
    const MeshCase c(boxHexahedra);
    const CellFaces cellFaces(c.mesh);
    const DonorInterpolation interpolation(c.mesh, c.link, cellFaces);
    std::size_t largest = 0;
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        largest = std::max(largest, interpolation.Cloud(cell).size());
    }

    EXPECT_EQ(largest, 13u);
}

TEST(InterpolationEdge, CloudThatIsTooSmallGivesNoFit) {
    // In a corner the cloud has 6 cells, two less than the 6 basis functions plus 2.
    const MeshCase c(boxHexahedra);
    const CellFaces cellFaces(c.mesh);
    const DonorInterpolation interpolation(c.mesh, c.link, cellFaces);
    int corner = 0;
    for (int cell = 1; cell <= c.mesh.CellCount(); ++cell) {
        corner = interpolation.Cloud(cell).size() == 6 ? cell : corner;
    }
    ASSERT_GT(corner, 0);

    EXPECT_TRUE(interpolation.Fit(corner, c.mesh.cellCentre[corner]).Terms().empty());
}

}  // namespace
