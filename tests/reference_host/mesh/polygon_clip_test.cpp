#include "reference_host/mesh/polygon_clip.h"

#include <gtest/gtest.h>

#include <Eigen/Geometry>
#include <cmath>
#include <random>

#include "reference_host/mesh/mesh_geometry.h"

namespace {

using host::ClipConvex;
using host::Vec3;
using Polygon = std::vector<Vec3>;

Polygon Rectangle(double x0, double x1, double y0, double y1) {
    return {{x0, y0, 0}, {x1, y0, 0}, {x1, y1, 0}, {x0, y1, 0}};
}

Vec3 AreaOf(const Polygon& polygon) {
    return polygon.empty() ? Vec3(0, 0, 0) : host::GeometryOf(polygon).area;
}

TEST(PolygonClip, OverlappingSquaresGiveTheirCommonRectangle) {
    const Polygon common = ClipConvex(Rectangle(0, 1, 0, 1), Rectangle(0.25, 2, 0.5, 2));

    ASSERT_EQ(common.size(), 4u);
    EXPECT_EQ(AreaOf(common), Vec3(0, 0, 0.375));
    EXPECT_EQ(host::GeometryOf(common).centre, Vec3(0.625, 0.75, 0));
}

TEST(PolygonClip, SubjectInsideTheWindowIsUnchanged) {
    const Polygon subject = Rectangle(0.25, 0.5, 0.25, 0.5);

    EXPECT_EQ(ClipConvex(subject, Rectangle(0, 1, 0, 1)), subject);
    EXPECT_EQ(ClipConvex(subject, subject), subject);
}

TEST(PolygonClip, WindowInsideTheSubjectIsTheResult) {
    EXPECT_EQ(AreaOf(ClipConvex(Rectangle(0, 1, 0, 1), Rectangle(0.25, 0.5, 0.25, 0.75))),
              Vec3(0, 0, 0.125));
}

TEST(PolygonClip, SeparatePolygonsGiveNothing) {
    EXPECT_TRUE(ClipConvex(Rectangle(0, 1, 0, 1), Rectangle(2, 3, 0, 1)).empty());
}

TEST(PolygonClip, CommonEdgeHasNoArea) {
    EXPECT_EQ(AreaOf(ClipConvex(Rectangle(0, 1, 0, 1), Rectangle(1, 2, 0, 1))), Vec3(0, 0, 0));
}

TEST(PolygonClip, KeepsTheSenseOfRotationOfTheSubjectWhateverThatOfTheWindow) {
    const Polygon subject = Rectangle(0, 1, 0, 1);
    const Polygon subjectBack(subject.rbegin(), subject.rend());
    const Polygon window = Rectangle(0.5, 2, 0, 1);
    const Polygon windowBack(window.rbegin(), window.rend());

    EXPECT_EQ(AreaOf(ClipConvex(subject, window)), Vec3(0, 0, 0.5));
    EXPECT_EQ(AreaOf(ClipConvex(subject, windowBack)), Vec3(0, 0, 0.5));
    EXPECT_EQ(AreaOf(ClipConvex(subjectBack, window)), Vec3(0, 0, -0.5));
}

/// A convex polygon in a tilted plane with its corners on a circle.
Polygon RandomPolygon(std::mt19937& random, const Eigen::Isometry3d& plane) {
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    const int n = 3 + static_cast<int>(5 * uniform(random));
    const double x = uniform(random);
    const double y = uniform(random);
    const double start = uniform(random);
    Polygon polygon;
    for (int i = 0; i < n; ++i) {
        const double angle = 2 * 3.14159265358979 * (i + 0.8 * uniform(random) + start) / n;
        polygon.push_back(plane * Vec3(x + std::cos(angle), y + std::sin(angle), 0));
    }
    return polygon;
}

TEST(PolygonClipProperties, PartsInTheTilesOfAPlaneAddUpToThePolygon) {
    std::mt19937 random(17);
    for (int round = 0; round < 100; ++round) {
        const Eigen::Isometry3d plane(Eigen::Translation3d(1, -2, 3) *
                                      Eigen::AngleAxisd(0.1 * round, Vec3(1, 2, 2) / 3));
        const Polygon subject = RandomPolygon(random, plane);
        Vec3 sum = Vec3::Zero();
        for (int i = -4; i < 4; ++i) {
            for (int j = -4; j < 4; ++j) {
                Polygon tile = Rectangle(0.7 * i, 0.7 * (i + 1), 0.9 * j, 0.9 * (j + 1));
                for (Vec3& corner : tile) {
                    corner = plane * corner;
                }
                sum += AreaOf(ClipConvex(subject, tile));
            }
        }
        ASSERT_LT((sum - AreaOf(subject)).norm(), 1e-13) << "round " << round;
    }
}

TEST(PolygonClipProperties, AreaIsIndependentOfTheOrderOfTheTwoPolygons) {
    std::mt19937 random(18);
    const Eigen::Isometry3d flat = Eigen::Isometry3d::Identity();
    int common = 0;
    for (int round = 0; round < 200; ++round) {
        const Polygon a = RandomPolygon(random, flat);
        const Polygon b = RandomPolygon(random, flat);
        const Polygon ab = ClipConvex(a, b);
        common += ab.empty() ? 0 : 1;
        ASSERT_LT((AreaOf(ab) - AreaOf(ClipConvex(b, a))).norm(), 1e-13) << "round " << round;
        ASSERT_LE(ab.size(), a.size() + b.size()) << "round " << round;
    }
    EXPECT_GT(common, 100);
}

}  // namespace
