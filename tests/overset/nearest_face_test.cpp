#include "overset/detail/nearest_face.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

#include "plain/plain_kd_tree.h"
#include "plain/samples/clouds.h"
#include "tests/overset/odd_clouds.h"

namespace {

using kvx3d::detail::NearestFace;

int SideOfOne(NearestFace& faces, const double* C, double depth) {
    return faces.SideOf({{C[0], C[1], C[2]}, {C[0], C[1], C[2]}, depth, depth});
}

class NearestFaceAgainstPlain : public testing::TestWithParam<NamedCloud> {
protected:
    NearestFaceAgainstPlain() : cloud(GetParam().cloud) {
        const Cloud vectors = UniformCloud(cloud.Size(), 24);
        for (int i = 0; i < cloud.Size(); ++i) {
            const auto at = static_cast<std::size_t>(i);
            plainTree.Insert(cloud.x[at], cloud.y[at], cloud.z[at], i + 1);
            // Roughly outward, like the faces of a closed surface.
            areas.push_back({cloud.x[at] + 0.2 * vectors.x[at], cloud.y[at] + 0.2 * vectors.y[at],
                             cloud.z[at] + 0.2 * vectors.z[at]});
            faces.Add({cloud.x[at], cloud.y[at], cloud.z[at]}, areas.back());
        }
    }

    /// (C - P) . S + |S| depth for the nearest face.
    double Measure(const double* C, double depth) const {
        const auto r = static_cast<std::size_t>(plainTree.Nearest(C[0], C[1], C[2])) - 1;
        const NearestFace::Vector& S = areas[r];
        return (C[0] - cloud.x[r]) * S[0] + (C[1] - cloud.y[r]) * S[1] +
               (C[2] - cloud.z[r]) * S[2] +
               std::sqrt(S[0] * S[0] + S[1] * S[1] + S[2] * S[2]) * depth;
    }

    static bool Agrees(int side, double measure) {
        return side == 0 || (side > 0 ? measure > 0.0 : measure < 0.0);
    }

    Cloud cloud;
    plain::KdTree plainTree;
    std::vector<NearestFace::Vector> areas;
    NearestFace faces;
};

TEST_P(NearestFaceAgainstPlain, FoundIsTheSamePointTiesIncluded) {
    for (const Query& q : QueriesFor(cloud, 23)) {
        EXPECT_EQ(faces.Find(q.data()), plainTree.Nearest(q[0], q[1], q[2]))
            << q[0] << ' ' << q[1] << ' ' << q[2];
    }
}

TEST_P(NearestFaceAgainstPlain, ACertainSideIsThatOfTheNearestFace) {
    for (const Query& q : QueriesFor(cloud, 25)) {
        for (double scale : {1.0, 3.0, 20.0}) {
            for (double depth : {0.0, 0.3, -0.3}) {
                const double C[3] = {scale * q[0], scale * q[1], scale * q[2]};
                const int side = SideOfOne(faces, C, depth);
                ASSERT_TRUE(Agrees(side, Measure(C, depth)))
                    << C[0] << ' ' << C[1] << ' ' << C[2] << " side " << side;
            }
        }
    }
}

TEST_P(NearestFaceAgainstPlain, ACertainSideOfManyCellsIsThatOfEachCell) {
    std::mt19937 random(29);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    for (const Query& q : QueriesFor(cloud, 28)) {
        for (double scale : {1.0, 3.0, 20.0}) {
            NearestFace::Cells cells = {{}, {}, -0.2 * share(random), 0.2 * share(random)};
            for (int axis = 0; axis < 3; ++axis) {
                cells.min[axis] = scale * q[static_cast<std::size_t>(axis)];
                cells.max[axis] = cells.min[axis] + 0.3 * scale * share(random);
            }
            const int side = faces.SideOf(cells);
            for (int i = 0; i < 10; ++i) {
                double C[3];
                for (int axis = 0; axis < 3; ++axis) {
                    const double at = i < 2 ? i : share(random);
                    C[axis] = std::min(cells.min[axis] + at * (cells.max[axis] - cells.min[axis]),
                                       cells.max[axis]);
                }
                const double depth = i % 2 == 0 ? cells.minDepth : cells.maxDepth;
                ASSERT_TRUE(Agrees(side, Measure(C, depth)))
                    << C[0] << ' ' << C[1] << ' ' << C[2] << " side " << side;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Clouds, NearestFaceAgainstPlain, testing::ValuesIn(AllClouds()),
                         [](const auto& param) { return param.param.name; });

/// Finds the nearest face for all queries one after the other and compares with the plain tree.
void ExpectFacesOfThePlainTree(const Cloud& cloud, const std::vector<Query>& queries) {
    NearestFace faces;
    plain::KdTree tree;
    for (int i = 0; i < cloud.Size(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        faces.Add({cloud.x[at], cloud.y[at], cloud.z[at]}, {0, 0, 1});
        tree.Insert(cloud.x[at], cloud.y[at], cloud.z[at], i + 1);
    }
    for (const Query& q : queries) {
        ASSERT_EQ(faces.Find(q.data()), tree.Nearest(q[0], q[1], q[2]))
            << testing::PrintToString(q);
    }
}

class NearestFaceOnOddClouds : public testing::TestWithParam<NamedCloud> {};

TEST_P(NearestFaceOnOddClouds, FoundIsTheSamePointTiesIncluded) {
    const Cloud& cloud = GetParam().cloud;
    std::mt19937 random(30);

    ExpectFacesOfThePlainTree(cloud, QueriesFor(cloud, 31));
    ExpectFacesOfThePlainTree(cloud, OddQueries(cloud));
    ExpectFacesOfThePlainTree(cloud, TieQueries(cloud, random, 100));
}

INSTANTIATE_TEST_SUITE_P(Clouds, NearestFaceOnOddClouds, testing::ValuesIn(OddClouds()),
                         [](const auto& param) { return param.param.name; });

TEST(NearestFaceTies, AThousandLatticesAreAnsweredAsByThePlainTree) {
    std::mt19937 random(32);
    for (int i = 0; i < 1000; ++i) {
        const Cloud cloud = RandomLattice(random);

        ExpectFacesOfThePlainTree(cloud, TieQueries(cloud, random, 8));
        ASSERT_FALSE(HasFatalFailure()) << "lattice " << i;
    }
}

/// Adds a horizontal floor of 20 x 20 faces of area 2 whose area vectors point upward.
void AddFloor(NearestFace& faces) {
    for (int j = 0; j < 20; ++j) {
        for (int i = 0; i < 20; ++i) {
            faces.Add({0.1 * i, 0.1 * j, 0.0}, {0, 0, 2});
        }
    }
}

TEST(NearestFace, CellsOnOneSideShareAVerdict) {
    NearestFace faces;
    AddFloor(faces);

    EXPECT_EQ(faces.SideOf({{0, 0, 0.1}, {2, 2, 9}, 0.0, 0.0}), 1);
    EXPECT_EQ(faces.SideOf({{0, 0, -9}, {2, 2, -0.1}, 0.0, 0.0}), -1);
    EXPECT_EQ(faces.SideOf({{0, 0, -0.2}, {2, 2, -0.1}, 0.3, 0.4}), 1);
    EXPECT_EQ(faces.SideOf({{0, 0, 0.1}, {2, 2, 0.2}, -0.4, -0.3}), -1);
}

TEST(NearestFace, CellsOnBothSidesHaveNoCommonVerdict) {
    NearestFace faces;
    AddFloor(faces);

    EXPECT_EQ(faces.SideOf({{0, 0, -0.1}, {2, 2, 0.1}, 0.0, 0.0}), 0);
    EXPECT_EQ(faces.SideOf({{0, 0, 0.1}, {2, 2, 0.2}, -0.15, -0.05}), 0);
    EXPECT_EQ(faces.SideOf({{0, 0, 0.1}, {2, 2, 0.2}, -0.1, 0.0}), 0);  // exactly on the margin
}

TEST(NearestFace, WithoutFacesNothingIsFoundAndNoSideIsCertain) {
    NearestFace faces;
    const double C[3] = {0, 0, 0};

    EXPECT_EQ(faces.Find(C), 0);
    EXPECT_EQ(SideOfOne(faces, C, 1.0), 0);
}

TEST(NearestFace, CentersWithNaNAreFoundAsByThePlainTree) {
    const double nan = std::nan("");
    NearestFace faces;
    plain::KdTree tree;
    const Cloud cloud = UniformCloud(200, 26);
    for (int i = 0; i < 200; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const double y = i % 20 == 19 ? nan : cloud.y[at];
        faces.Add({cloud.x[at], y, cloud.z[at]}, {0, 0, 1});
        tree.Insert(cloud.x[at], y, cloud.z[at], i + 1);
    }

    for (const Query& q : QueriesFor(cloud, 27)) {
        EXPECT_EQ(faces.Find(q.data()), tree.Nearest(q[0], q[1], q[2]));
    }
}

TEST(NearestFace, AFaceWithNaNMakesEverySideUncertain) {
    NearestFace faces;
    faces.Add({0, 0, 0}, {0, 0, 1});
    faces.Add({1, 0, 0}, {0, 0, std::nan("")});
    const double C[3] = {0, 0, 100};

    EXPECT_EQ(SideOfOne(faces, C, 0.0), 0);
    EXPECT_EQ(faces.Find(C), 1);
}

TEST(NearestFace, AnAreaThatOverflowsMakesEverySideUncertain) {
    NearestFace faces;
    faces.Add({0, 0, 0}, {0, 0, 1.2e154});
    faces.Add({1, 0, 0}, {0, 0, 1.4e154});  // infinite area, NaN times a depth of 0
    const double C[3] = {1, 0, 1};

    EXPECT_EQ(SideOfOne(faces, C, 0.0), 0);
    EXPECT_EQ(faces.Find(C), 2);
}

TEST(NearestFace, CentersWhoseSquaredDistanceOverflowsAreFoundAsByTheTree) {
    NearestFace faces;
    for (double y : {-1e160, 1e160}) {
        for (double x : {-2e160, -1e160, 0.0}) {
            faces.Add({x, y, 0}, {0, 0, 1});
        }
    }
    faces.Add({5, 0, 3}, {0, 0, 1});
    for (int i = 1; i <= 5; ++i) {
        faces.Add({i * 1e160, 0, 0}, {0, 0, 1});
    }
    const double C[3] = {1, 0, 1};  // below its nearest face and above all others

    EXPECT_EQ(faces.Find(C), 7);
    EXPECT_LE(SideOfOne(faces, C, 0.0), 0);
}

}  // namespace
