#include "reference_host/mesh/mesh_geometry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "tests/reference_host/mesh/mesh_files.h"

namespace {

using host::Boundary;
using host::BoundaryFace;
using host::InnerFace;
using host::Mesh;
using host::Vec3;
using testing::AllOf;
using testing::HasSubstr;

/// A mesh of one hexahedron, the prism of height 1 over a quadrangle in the x-y plane.
Mesh Column(const double (&corner)[4][2]) {
    MshText msh;
    std::vector<int> nodes;
    for (double z : {0.0, 1.0}) {
        for (const auto& xy : corner) {
            nodes.push_back(msh.Node(xy[0], xy[1], z));
        }
    }
    msh.Element(5, "background", nodes);
    for (const std::vector<int>& side : {std::vector<int>{0, 1, 2, 3},
                                         {4, 5, 6, 7},
                                         {0, 1, 5, 4},
                                         {1, 2, 6, 5},
                                         {2, 3, 7, 6},
                                         {3, 0, 4, 7}}) {
        std::vector<int> ids;
        for (int position : side) {
            ids.push_back(nodes[position]);
        }
        msh.Element(3, "wall", ids);
    }
    return msh.Read();
}

/// A cube 2 x 2 x 2 of eight unit hexahedra.
Mesh EightCubes() {
    return ReadText(
        "Point(1) = {0, 0, 0}; Point(2) = {2, 0, 0}; Point(3) = {2, 2, 0}; Point(4) = {0, 2, 0};\n"
        "Line(1) = {1, 2}; Line(2) = {2, 3}; Line(3) = {3, 4}; Line(4) = {4, 1};\n"
        "Curve Loop(1) = {1:4}; Plane Surface(1) = {1};\n"
        "Transfinite Curve {1:4} = 3; Transfinite Surface {1}; Recombine Surface {1};\n"
        "b[] = Extrude {0, 0, 2} { Surface{1}; Layers{2}; Recombine; };\n"
        "Physical Volume(\"background\", 1) = {b[1]};\n"
        "Physical Surface(\"wall\", 13) = {1, b[0], b[2], b[3], b[4], b[5]};\n");
}

TEST(MeshGeometry, PlaneFaceHasItsCentroidAndNotItsNodeMean) {
    // A trapezoid with parallel sides of lengths 4 and 1 at the heights 0 and 3.
    const Mesh mesh = Column({{0, 0}, {4, 0}, {1, 3}, {0, 3}});

    const auto& walls = mesh.Faces(Boundary::Wall);
    const auto floor = std::find_if(walls.begin() + 1, walls.end(),
                                    [](const BoundaryFace& face) { return face.area.z() < 0; });
    EXPECT_NEAR(floor->area.z(), -7.5, 1e-14);
    EXPECT_NEAR((floor->centre - Vec3(1.4, 1.2, 0)).norm(), 0.0, 1e-14);
    EXPECT_NEAR(mesh.volume[1], 7.5, 1e-14);
    EXPECT_NEAR((mesh.cellCentre[1] - Vec3(1.4, 1.2, 0.5)).norm(), 0.0, 1e-14);
}

TEST(MeshGeometry, CentroidsOfTheFourShapes) {
    const Mesh mesh = host::ReadMesh(std::string(KVX3D_TEST_DATA_DIR) + "/four_shapes.msh");

    for (int cell = 1; cell <= 4; ++cell) {
        Vec3 expected;
        switch (mesh.cellNodes[cell].size()) {
            case 4:
                expected = host::NodeMean(mesh, mesh.cellNodes[cell]);
                break;
            case 5:
                expected = Vec3(0.5, 0.5, 1.25);
                break;
            case 6:
                expected = Vec3(4.0 / 3, 1.0 / 3, 0.5);
                break;
            default:
                expected = Vec3(0.5, 0.5, 0.5);
        }
        EXPECT_NEAR((mesh.cellCentre[cell] - expected).norm(), 0.0, 1e-14) << cell;
    }
}

TEST(MeshGeometry, NeighborsShareAWarpedFaceWithoutGapOrOverlap) {
    Mesh mesh = EightCubes();
    const auto middle = std::find_if(mesh.nodes.begin() + 1, mesh.nodes.end(), [](const Vec3& x) {
        return (x - Vec3(1, 1, 1)).norm() < 0.1;
    });
    ASSERT_NE(middle, mesh.nodes.end());

    *middle = Vec3(1.3, 0.8, 1.25);
    host::ComputeGeometry(mesh);

    EXPECT_NEAR(std::accumulate(mesh.volume.begin() + 1, mesh.volume.end(), 0.0), 8.0,
                1e-10);  // rounding of the coordinates by Gmsh
    EXPECT_GT(*std::max_element(mesh.volume.begin() + 1, mesh.volume.end()), 1.1);
}

struct Shipped {
    const char* name;
    const char* file;
    host::MeshParameters parameters;
};

class GeometryOfShippedMesh : public testing::TestWithParam<Shipped> {
protected:
    const Mesh mesh = ReadShipped(GetParam().file, GetParam().parameters);
};

TEST_P(GeometryOfShippedMesh, InnerFacesPointFromTheOwnerOfLowerIdToTheNeighbor) {
    for (int i = 1; i <= mesh.InnerFaceCount(); ++i) {
        const InnerFace& face = mesh.innerFaces[i];
        const Vec3 d = mesh.cellCentre[face.neighbor] - mesh.cellCentre[face.owner];
        ASSERT_LT(face.owner, face.neighbor);
        ASSERT_GT(face.area.dot(d), 0.0) << i;
    }
}

TEST_P(GeometryOfShippedMesh, BoundaryFacesPointOutward) {
    for (Boundary kind : host::allBoundaries) {
        for (int i = 1; i <= mesh.FaceCount(kind); ++i) {
            const BoundaryFace& face = mesh.Faces(kind)[i];
            ASSERT_GT(face.area.dot(face.centre - mesh.cellCentre[face.cell]), 0.0) << i;
        }
    }
}

TEST_P(GeometryOfShippedMesh, EveryCellIsClosed) {
    std::vector<Vec3> sum(mesh.CellCount() + 1, Vec3::Zero());
    for (int i = 1; i <= mesh.InnerFaceCount(); ++i) {
        sum[mesh.innerFaces[i].owner] += mesh.innerFaces[i].area;
        sum[mesh.innerFaces[i].neighbor] -= mesh.innerFaces[i].area;
    }
    for (Boundary kind : host::allBoundaries) {
        for (int i = 1; i <= mesh.FaceCount(kind); ++i) {
            sum[mesh.Faces(kind)[i].cell] += mesh.Faces(kind)[i].area;
        }
    }

    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        ASSERT_LT(sum[cell].norm(), 1e-12) << cell;
    }
}

TEST_P(GeometryOfShippedMesh, VolumesEqualOneThirdOfTheFluxOfThePosition) {
    double volume = 0.0;
    double flux = 0.0;
    for (double v : mesh.volume) {
        volume += v;
    }
    for (Boundary kind : host::allBoundaries) {
        for (int i = 1; i <= mesh.FaceCount(kind); ++i) {
            flux += mesh.Faces(kind)[i].centre.dot(mesh.Faces(kind)[i].area) / 3.0;
        }
    }

    EXPECT_NEAR(volume, flux, 1e-12 * volume);
}

INSTANTIATE_TEST_SUITE_P(All, GeometryOfShippedMesh,
                         testing::Values(Shipped{"Channel", channelGeo, {{"n", 5}}},
                                         Shipped{"Box", boxGeo, {{"n", 5}}},
                                         Shipped{"Prisms", boxGeo, {{"n", 5}, {"kind", 4}}},
                                         Shipped{"Layers", boxGeo, {{"n", 5}, {"nz", 3}}},
                                         Shipped{"Cavity", cavityGeo, {{"n", 16}, {"kind", 1}}},
                                         Shipped{"Tank", cavityGeo, {{"n", 16}, {"b", 0.1}}},
                                         Shipped{"Sphere", sphereGeo, {{"n", 4}}}),
                         CaseName<Shipped>);

TEST(MeshGeometryFaults, CellThatIsNotClosedIsRefused) {
    Mesh mesh = EightCubes();
    // With two corners exchanged, the face crosses itself and its area vanishes.
    std::swap(mesh.innerFaces[1].nodes[1], mesh.innerFaces[1].nodes[2]);

    const std::string error = ErrorOf([&] { host::ComputeGeometry(mesh); });

    EXPECT_THAT(error, AllOf(HasSubstr("cell 1 at ("), HasSubstr("is not closed")));
}

TEST(MeshGeometryFaults, CellTurnedInsideOutIsRefused) {
    Mesh mesh = EightCubes();
    for (Vec3& node : mesh.nodes) {
        node.x() = -node.x();
    }

    EXPECT_THAT(ErrorOf([&] { host::ComputeGeometry(mesh); }), HasSubstr("has volume -1: "));
}

TEST(MeshGeometryFaults, CellWithoutVolumeIsRefused) {
    Mesh mesh = EightCubes();
    for (Vec3& node : mesh.nodes) {
        node.z() = 0.0;
    }

    EXPECT_THAT(ErrorOf([&] { host::ComputeGeometry(mesh); }), HasSubstr("has volume 0"));
}

}  // namespace
