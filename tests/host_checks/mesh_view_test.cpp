#include "host_checks/mesh_view.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "plain/samples/block_host.h"
#include "tests/host_checks/faults.h"
#include "tests/support/box_host.h"

namespace {

using kvx3d::checks::MeshView;
using kvx3d::checks::Point;

/// A host of a single cell without faces, enough for a view of its geometry.
class OneCell {
public:
    explicit OneCell(const std::vector<Point>& corners) {
        row = {static_cast<int>(corners.size())};
        for (const Point& corner : corners) {
            x.push_back(corner.x);
            y.push_back(corner.y);
            z.push_back(corner.z);
            row.push_back(static_cast<int>(row.size()));
        }
        fvm.Nc = 1;
        fvm.Nn = row[0];
        fvm.xn = x.data();
        fvm.yn = y.data();
        fvm.zn = z.data();
        fvm.volume = volume.data();
        fvm.cellNodes = rows;
        rows[1] = row.data();
        gv.cavityId = cavity.data();
        gv.NOversetBCGroup = groups.data();
    }
    OneCell(const OneCell&) = delete;
    OneCell& operator=(const OneCell&) = delete;

    /// Reverses the node order of the cell, as another host may list them.
    void Reverse() { std::reverse(row.begin() + 1, row.end()); }

    /// Nodes found for the face with these corners, in ascending order.
    std::vector<int> NodesOf(const std::vector<int>& face) const {
        std::vector<int> nodes = InOrder(face);
        std::sort(nodes.begin(), nodes.end());
        return nodes;
    }

    /// Nodes found for the face with these corners, in the order around the face.
    std::vector<int> InOrder(const std::vector<int>& face) const {
        Point center;
        for (int node : face) {
            center = center + NodeAt(node);
        }
        center = (1.0 / face.size()) * center;
        Point area;
        for (std::size_t i = 0; i < face.size(); ++i) {
            area = area + 0.5 * Cross(NodeAt(face[i]) - center,
                                      NodeAt(face[(i + 1) % face.size()]) - center);
        }
        return MeshView(gv, fvm).FaceNodes(1, center, area);
    }

    CKvx3dGV gv;
    CKVX3DFiniteVolumeMesh fvm;
    std::vector<double> volume{0.0, 1.0};

private:
    Point NodeAt(int node) const { return {x[node], y[node], z[node]}; }

    std::vector<double> x{0.0}, y{0.0}, z{0.0};
    std::vector<int> row;
    int* rows[2] = {nullptr, nullptr};
    std::vector<int> cavity{0, 1};
    std::vector<int> groups{0};
};

struct Shape {
    const char* name;
    std::vector<Point> corners;
    std::vector<std::vector<int>> faces;  ///< ascending ids
};

class FaceNodesOf : public testing::TestWithParam<Shape> {};

TEST_P(FaceNodesOf, AreTheCornersOfEachFaceInAnyNodeOrder) {
    OneCell cell(GetParam().corners);

    for (const std::vector<int>& face : GetParam().faces) {
        std::vector<int> ring = face;
        if (ring.size() == 4) {
            std::swap(ring[2], ring[3]);  // from ascending ids to the order around the face
        }
        EXPECT_EQ(cell.NodesOf(ring), face);
    }
    cell.Reverse();
    for (const std::vector<int>& face : GetParam().faces) {
        std::vector<int> ring = face;
        if (ring.size() == 4) {
            std::swap(ring[2], ring[3]);
        }
        EXPECT_EQ(cell.NodesOf(ring), face);
    }
}

// Nodes count x fastest, then y, then z, so that ascending ids of a quadrilateral go to its corners
// row by row.
INSTANTIATE_TEST_SUITE_P(
    Shapes, FaceNodesOf,
    testing::Values(
        Shape{"Hexahedron",
              {{0, 0, 0},
               {1, 0, 0},
               {0, 1, 0},
               {1, 1, 0},
               {0, 0, 1},
               {1, 0, 1},
               {0, 1, 1},
               {1, 1, 1}},
              {{1, 2, 3, 4}, {5, 6, 7, 8}, {1, 3, 5, 7}, {2, 4, 6, 8}, {1, 2, 5, 6}, {3, 4, 7, 8}}},
        Shape{"FlatHexahedron",
              {{0, 0, 0},
               {1, 0, 0},
               {0, 1, 0},
               {1, 1, 0},
               {0, 0, 0.01},
               {1, 0, 0.01},
               {0, 1, 0.01},
               {1, 1, 0.01}},
              {{1, 2, 3, 4}, {5, 6, 7, 8}, {1, 3, 5, 7}, {2, 4, 6, 8}, {1, 2, 5, 6}, {3, 4, 7, 8}}},
        Shape{"WarpedHexahedron",
              {{0, 0, 0.1},
               {1, 0, -0.1},
               {0, 1, -0.1},
               {1, 1, 0.1},
               {0.1, 0, 1},
               {1, 0.1, 1.1},
               {0, 1, 0.9},
               {1.1, 1, 1}},
              {{1, 2, 3, 4}, {5, 6, 7, 8}, {1, 3, 5, 7}, {2, 4, 6, 8}, {1, 2, 5, 6}, {3, 4, 7, 8}}},
        Shape{"Prism",
              {{0, 0, 0}, {1, 0, 0}, {0.3, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0.3, 1, 1}},
              {{1, 2, 3}, {4, 5, 6}, {1, 2, 4, 5}, {1, 3, 4, 6}, {2, 3, 5, 6}}},
        Shape{"Tetrahedron",
              {{0, 0, 0}, {1, 0, 0}, {0.2, 1, 0}, {0.4, 0.3, 0.8}},
              {{1, 2, 3}, {1, 2, 4}, {1, 3, 4}, {2, 3, 4}}},
        Shape{"Pyramid",
              {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0.5, 0.6, 1.2}},
              {{1, 2, 3, 4}, {1, 2, 5}, {1, 3, 5}, {2, 4, 5}, {3, 4, 5}}}),
    NameOfCase<Shape>);

TEST(FaceNodes, FollowEachOtherAroundTheFace) {
    const OneCell cell(
        {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}});

    const std::vector<int> nodes = cell.InOrder({5, 6, 8, 7});

    // Opposite corners of the square are two places apart.
    ASSERT_EQ(nodes.size(), 4u);
    EXPECT_EQ(nodes[0] + nodes[2], 13);
    EXPECT_EQ(nodes[1] + nodes[3], 13);
}

TEST(FaceNodes, OfOuterFacesOfACurvedMeshAreTheirFourCorners) {
    AnnulusShape shape = SmallAnnulus();
    const AnnulusHost host(shape);
    const MeshView view(host.gv, host.fvm);

    for (int wall : view.WallFaces(1, 2)) {
        const std::vector<int> nodes = view.WallFaceNodes(wall);
        ASSERT_EQ(nodes.size(), 4u) << wall;
        for (int node : nodes) {
            const Point offset = view.Node(node) - Point{shape.x, shape.y, 0.0};
            EXPECT_NEAR(std::hypot(offset.x, offset.y), shape.outer, 1e-12);
        }
    }
}

TEST(EdgeLength, IsThatOfTheRegularCell) {
    const double root2 = std::sqrt(2.0), root3 = std::sqrt(3.0);
    const std::vector<std::pair<int, double>> volumes = {
        {4, root2 / 12.0}, {5, root2 / 6.0}, {6, root3 / 4.0}, {8, 1.0}};
    for (const auto& [nNodes, unitVolume] : volumes) {
        OneCell cell{std::vector<Point>(nNodes)};
        cell.volume[1] = 27.0 * unitVolume;

        EXPECT_NEAR(MeshView(cell.gv, cell.fvm).EdgeLength(1), 3.0, 1e-14) << nNodes;
    }
}

TEST(EdgeLength, OfAMeshOneCellThickIsInThePlane) {
    AnnulusShape shape = SmallAnnulus();
    shape.depth = 1.0;
    const AnnulusHost host(shape);
    const MeshView view(host.gv, host.fvm);

    EXPECT_TRUE(view.IsOneCellThick());
    EXPECT_NEAR(std::abs(view.ThinDirection().z), 1.0, 1e-15);
    EXPECT_NEAR(view.EdgeLength(1), 0.2, 1e-14);
}

/// A turned block of 4 x 4 x 1 cells, 1e6 cells from the origin: its coordinates are rounded to
/// 1e-10 of a cell, so its symmetry faces are parallel up to that only.
TEST(OneCellThick, HoldsFarFromTheOrigin) {
    const double cosine = std::cos(0.7), sine = std::sin(0.7);
    BlockHost::Block block;
    block.n = {4, 4, 1};
    block.node = [=](int i, int j, int k) {
        const Point turned = {cosine * i - sine * j, sine * i + cosine * j, 1.0 * k};
        return Point{turned.x + 1e6, cosine * turned.y - sine * turned.z - 2e6,
                     sine * turned.y + cosine * turned.z + 3e6};
    };
    block.sides = {BlockHost::inlet, BlockHost::outlet,   BlockHost::wall,
                   BlockHost::wall,  BlockHost::symmetry, BlockHost::symmetry};
    BlockHost host;
    host.Add(block);

    EXPECT_TRUE(MeshView(host.gv, host.fvm).IsOneCellThick());
}

TEST(OneCellThick, IsNoMeshWithTwoLayersOrASideThatIsNoSymmetry) {
    AnnulusShape layers = SmallAnnulus();
    layers.layers = 2;
    const AnnulusHost twoLayers(layers);
    const BoxHost box(3, 3, 2);
    AnnulusHost tilted(SmallAnnulus());
    tilted.fvm.nxSymm[5] = 0.01;

    EXPECT_FALSE(MeshView(twoLayers.gv, twoLayers.fvm).IsOneCellThick());
    EXPECT_FALSE(MeshView(box.gv, box.fvm).IsOneCellThick());
    EXPECT_FALSE(MeshView(tilted.gv, tilted.fvm).IsOneCellThick());
}

TEST(Grids, AreNumberedByInletAndGroups) {
    AnnulusShape shape = SmallAnnulus();
    shape.width = 8.0;
    shape.hasSecond = true;
    AnnulusHost host(shape);
    for (int cell = 1; cell <= host.fvm.Nc; ++cell) {
        host.gv.cavityId[cell] = 4 - host.gv.cavityId[cell];
    }
    std::swap(host.gv.oversetBCWallFace[1], host.gv.oversetBCWallFace[2]);
    const MeshView view(host.gv, host.fvm);

    EXPECT_EQ(view.GridCount(), 3);
    EXPECT_EQ(view.Grid(1), 1);
    EXPECT_EQ(view.Grid(801), 3);
    EXPECT_EQ(view.Grid(host.fvm.Nc), 2);
    EXPECT_EQ(view.CellsOfGrid(3).size(), 160u);
    EXPECT_EQ(view.WallFaces(0, 1).size(), 80u);
    EXPECT_EQ(view.WallFaces(1, 2).size(), 40u);
}

}  // namespace
