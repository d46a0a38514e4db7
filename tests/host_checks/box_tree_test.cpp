#include "host_checks/detail/box_tree.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <vector>

namespace {

using kvx3d::checks::BoxTree;
using kvx3d::checks::Point;

/// Ids 1..n of the points at the least distance, ascending; distances on a lattice are exact.
std::vector<int> NearestByScan(const std::vector<Point>& points, const Point& query) {
    std::vector<int> nearest;
    double best = 1e300;
    for (int id = 1; id < static_cast<int>(points.size()); ++id) {
        const double distance = Dot(points[id] - query, points[id] - query);
        if (distance < best) {
            best = distance;
            nearest.clear();
        }
        if (distance == best) {
            nearest.push_back(id);
        }
    }
    return nearest;
}

class BoxTreeAgainstScan : public testing::TestWithParam<int> {};

TEST_P(BoxTreeAgainstScan, FindsAllEquallyNearPoints) {
    std::mt19937 random(11);
    const auto coordinate = [&] { return static_cast<double>(random() % 8) / 8.0; };
    std::vector<Point> points(GetParam() + 1);
    for (Point& point : points) {
        const double x = coordinate();
        const double y = coordinate();
        point = {x, y, coordinate()};
    }
    std::vector<int> ids(GetParam());
    std::iota(ids.begin(), ids.end(), 1);
    BoxTree tree(ids, [&](int id) { return points[id]; });

    for (int i = 0; i < 500; ++i) {
        const double shift = i % 3 == 0 ? 1.0 / 16 : i % 3 == 1 ? 4.0 : 0.0;
        const double x = coordinate() + shift;
        const double y = coordinate();
        const Point query = {x, y, coordinate() - shift};
        ASSERT_EQ(tree.Nearest(query), NearestByScan(points, query)) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, BoxTreeAgainstScan, testing::Values(1, 2, 8, 9, 17, 500, 3000));

}  // namespace
