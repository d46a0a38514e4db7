#include "host_checks/detail/plane_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

using kvx3d::checks::PlaneSearch;
using kvx3d::checks::Point;

bool AnyByScan(const std::vector<Point>& points, const Point& origin, const Point& normal,
               double limit) {
    return std::any_of(points.begin(), points.end(),
                       [&](const Point& point) { return Dot(point - origin, normal) > limit; });
}

struct Surface {
    std::vector<Point> points;
    std::vector<Point> normals;
};

/// Points on a sphere, some of them pushed inwards or outwards.
Surface BumpySphere(int n, unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<double> normal;
    Surface surface;
    for (int i = 0; i < n; ++i) {
        const double x = normal(random), y = normal(random);
        const Point direction = Unit(Point{x, y, normal(random)});
        const double radius = 1.0 + 0.02 * normal(random);
        surface.points.push_back(radius * direction);
        surface.normals.push_back(direction);
    }
    return surface;
}

class PlaneSearchAgainstScan : public testing::TestWithParam<int> {};

TEST_P(PlaneSearchAgainstScan, AnswersLikeAScanOverAllPoints) {
    const Surface surface = BumpySphere(GetParam(), 5);
    const PlaneSearch search(surface.points, surface.normals);
    int nInFront = 0;
    int nNone = 0;

    for (std::size_t i = 0; i < surface.points.size(); ++i) {
        for (const double limit : {0.0, 0.03, 0.06}) {
            const bool expected =
                AnyByScan(surface.points, surface.points[i], surface.normals[i], limit);
            ASSERT_EQ(search.AnyInFront(surface.points[i], surface.normals[i], limit), expected)
                << i << " " << limit;
            ++(expected ? nInFront : nNone);
        }
    }
    EXPECT_GT(nNone, 0);
    EXPECT_TRUE(GetParam() < 9 || nInFront > 0);
}

INSTANTIATE_TEST_SUITE_P(Sizes, PlaneSearchAgainstScan, testing::Values(1, 2, 8, 9, 17, 100, 2000));

TEST(PlaneSearch, HandlesNormalsThatCancelEachOther) {
    const std::vector<Point> points = {{0, 0, 1}, {0, 0, -1}, {0.5, 0, 1}, {0.5, 0, -1}};
    const PlaneSearch search(points, {{0, 0, 1}, {0, 0, -1}, {0, 0, 1}, {0, 0, -1}});

    EXPECT_FALSE(search.AnyInFront({0, 0, 1}, {0, 0, 1}, 0.0));
    EXPECT_TRUE(search.AnyInFront({0, 0, 1}, {0, 0, 1}, -1.0));
    EXPECT_TRUE(search.AnyInFront({0, 0, 0}, {1, 0, 0}, 0.4));
}

TEST(PlaneSearch, WithoutPointsFindsNothing) {
    EXPECT_FALSE(PlaneSearch({}, {}).AnyInFront({}, {0, 0, 1}, -1.0));
}

}  // namespace
