#include "reference_host/mesh/mesh_reader.h"

#include <gmsh.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "reference_host/mesh/gmsh_session.h"
#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/temp_directory.h"

namespace {

using host::Boundary;
using host::Mesh;

double TotalVolume(const Mesh& mesh, int cavity) {
    double sum = 0.0;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        sum += mesh.cavity[cell] == cavity ? mesh.volume[cell] : 0.0;
    }
    return sum;
}

int CellsWithNodes(const Mesh& mesh, std::size_t nodeCount) {
    return static_cast<int>(
        std::count_if(mesh.cellNodes.begin() + 1, mesh.cellNodes.end(),
                      [&](const std::vector<int>& nodes) { return nodes.size() == nodeCount; }));
}

struct CellCount {
    const char* file;
    host::MeshParameters parameters;
    int cells;
    int grids;
};

class ShippedMeshes : public testing::TestWithParam<CellCount> {};

TEST_P(ShippedMeshes, HaveTheNumberOfCellsInTheTable) {
    const Mesh mesh = ReadShipped(GetParam().file, GetParam().parameters);

    EXPECT_EQ(mesh.CellCount(), GetParam().cells);
    EXPECT_EQ(mesh.GridCount(), GetParam().grids);
}

INSTANTIATE_TEST_SUITE_P(Tables, ShippedMeshes,
                         testing::Values(CellCount{channelGeo, {{"n", 5}}, 1391, 2},
                                         CellCount{channelGeo, {{"n", 10}}, 5423, 2},
                                         CellCount{channelGeo, {{"n", 20}}, 21692, 2},
                                         CellCount{channelGeo, {{"n", 5}, {"two", 1}}, 1711, 3},
                                         CellCount{boxGeo, {{"n", 5}}, 560, 2},
                                         CellCount{boxGeo, {{"n", 10}}, 2240, 2},
                                         CellCount{boxGeo, {{"n", 20}}, 8800, 2},
                                         CellCount{boxGeo, {{"n", 5}, {"kind", 1}}, 400, 1},
                                         CellCount{boxGeo, {{"n", 5}, {"kind", 3}}, 160, 1},
                                         CellCount{boxGeo, {{"n", 5}, {"nz", 4}}, 2240, 2}));

TEST(ShippedSphere, IsHexahedraAroundTetrahedra) {
    const Mesh mesh = ReadShipped(sphereGeo, {{"n", 5}});

    EXPECT_EQ(CellsWithNodes(mesh, 8), 8000);
    EXPECT_GT(CellsWithNodes(mesh, 4), 4000);
    EXPECT_EQ(CellsWithNodes(mesh, 8) + CellsWithNodes(mesh, 4), mesh.CellCount());
    EXPECT_EQ(mesh.FaceCount(Boundary::Symmetry), 0);
    EXPECT_FALSE(mesh.IsQuasi2d());
    EXPECT_NEAR(TotalVolume(mesh, 1), 64.0, 1e-11);
}

TEST(ShippedChannel, FillsItsDomainWithNamedFaces) {
    const Mesh mesh = ReadShipped(channelGeo, {{"n", 5}});

    EXPECT_NEAR(TotalVolume(mesh, 1), 22.0 * 4.1 * 0.2, 1e-11);
    EXPECT_EQ(mesh.FaceCount(Boundary::Inlet), 21);
    EXPECT_EQ(mesh.FaceCount(Boundary::Outlet), 21);
    EXPECT_EQ(mesh.FaceCount(Boundary::Symmetry), 2 * mesh.CellCount());
    EXPECT_TRUE(mesh.IsQuasi2d());
    const auto& walls = mesh.Faces(Boundary::Wall);
    EXPECT_EQ(std::count_if(walls.begin() + 1, walls.end(),
                            [](const host::BoundaryFace& face) { return face.oversetGroup == 1; }),
              40);
}

TEST(ShippedBox, IsOneCellThickWithOneLayerOnly) {
    EXPECT_TRUE(ReadShipped(boxGeo, {{"n", 5}, {"kind", 2}}).IsQuasi2d());
    EXPECT_FALSE(ReadShipped(boxGeo, {{"n", 5}, {"nz", 2}}).IsQuasi2d());
}

TEST(ShippedBox, MixesHexahedraAndPrisms) {
    const Mesh mesh = ReadShipped(boxGeo, {{"n", 5}, {"kind", 4}});

    EXPECT_EQ(CellsWithNodes(mesh, 8), 160);
    EXPECT_EQ(CellsWithNodes(mesh, 6), mesh.CellCount() - 160);
    EXPECT_NEAR(TotalVolume(mesh, 1), 16.0 * 0.2, 1e-12);
}

TEST(MeshReader, ReadsAllFourShapes) {
    const Mesh mesh = host::ReadMesh(std::string(KVX3D_TEST_DATA_DIR) + "/four_shapes.msh");

    ASSERT_EQ(mesh.CellCount(), 4);
    EXPECT_EQ(mesh.InnerFaceCount(), 3);
    EXPECT_EQ(mesh.FaceCount(Boundary::Inlet), 1);
    EXPECT_EQ(mesh.FaceCount(Boundary::Outlet), 3);
    EXPECT_EQ(mesh.FaceCount(Boundary::Wall), 8);
    EXPECT_EQ(mesh.FaceCount(Boundary::Symmetry), 2);
    for (int cell = 1; cell <= 4; ++cell) {
        const std::map<std::size_t, double> volumes = {
            {4, 1.25 / 6}, {5, 1.0 / 3}, {6, 0.5}, {8, 1.0}};
        EXPECT_NEAR(mesh.volume[cell], volumes.at(mesh.cellNodes[cell].size()), 1e-15);
    }
}

TEST(MeshReader, KeepsTheNodesOfACellInTheOrderOfVtk) {
    MshText msh;
    msh.Box("background", 0);
    msh.BoxSide("wall", 0, '-');
    msh.BoxSide("wall", 0, '+');
    msh.BoxSide("wall", 0, 'd');

    const Mesh mesh = msh.Read();

    const std::vector<host::Vec3> corners = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                                             {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(mesh.nodes[mesh.cellNodes[1][i]], corners[i]) << i;
    }
}

TEST(MeshReader, AcceptsGapsInTheNodeNumbersOfAFile) {
    MshText msh;
    msh.Box("background", 0);
    msh.Box("background", 1);
    msh.BoxSide("inlet", 0, '-');
    msh.BoxSide("outlet", 1, '+');
    msh.BoxSide("wall", 0, 'd');
    msh.BoxSide("wall", 1, 'd');

    const Mesh mesh = ReadText(msh.Text(/*tagStep=*/7), "mesh.msh");

    const Mesh expected = msh.Read();
    EXPECT_EQ(mesh.nodes, expected.nodes);
    EXPECT_EQ(mesh.cellNodes, expected.cellNodes);
    EXPECT_EQ(mesh.innerFaces[1].nodes, expected.innerFaces[1].nodes);
}

TEST(MeshReader, DropsNodesThatNoCellUses) {
    // The center of the annulus is a point of the geometry but no node of a cell.
    const Mesh mesh = ReadShipped(boxGeo, {{"n", 5}, {"kind", 3}});

    std::vector<char> isUsed(mesh.nodes.size(), 0);
    for (const auto& nodes : mesh.cellNodes) {
        for (int node : nodes) {
            isUsed[node] = 1;
        }
    }
    EXPECT_EQ(std::count(isUsed.begin() + 1, isUsed.end(), 1), mesh.NodeCount());
}

struct FileFormat {
    double version;
    int binary;
};

class MeshFileFormats : public testing::TestWithParam<FileFormat> {};

TEST_P(MeshFileFormats, GiveTheSameMeshAsTheGeometry) {
    const TempDirectory directory;
    const std::string file = (directory.Path() / "sphere.msh").string();
    const std::string geo = ShippedGeo(sphereGeo);
    {
        host::GmshSession session;
        session.Run([&] {
            gmsh::onelab::setNumber("Parameters/Cells per unit length", {3});
            gmsh::open(geo);
            gmsh::model::mesh::generate(3);
            gmsh::option::setNumber("Mesh.MshFileVersion", GetParam().version);
            gmsh::option::setNumber("Mesh.Binary", GetParam().binary);
            gmsh::write(file);
        });
    }

    const Mesh mesh = host::ReadMesh(file);

    const Mesh expected = host::ReadMesh(geo, {{"n", 3}});
    ASSERT_EQ(mesh.CellCount(), expected.CellCount());
    EXPECT_EQ(mesh.cavity, expected.cavity);
    EXPECT_EQ(mesh.cellNodes, expected.cellNodes);
    for (Boundary kind : host::allBoundaries) {
        EXPECT_EQ(mesh.FaceCount(kind), expected.FaceCount(kind));
    }
    for (int node = 1; node <= mesh.NodeCount(); ++node) {
        ASSERT_LT((mesh.nodes[node] - expected.nodes[node]).norm(),
                  1e-14);  // ASCII files have 16 digits
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, MeshFileFormats,
                         testing::Values(FileFormat{2.2, 0}, FileFormat{2.2, 1}, FileFormat{4.0, 0},
                                         FileFormat{4.1, 0}, FileFormat{4.1, 1}));

TEST(MeshReader, PrintsNothing) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();

    ReadShipped(boxGeo, {{"n", 5}});

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MeshReader, DoesNotKeepTheParametersOfTheCallBefore) {
    ReadShipped(boxGeo, {{"n", 10}, {"kind", 1}});

    EXPECT_EQ(ReadShipped(boxGeo, {}).CellCount(), 560);
}

}  // namespace
