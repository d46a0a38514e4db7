#include "host_checks/point_tree.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using kvx3d::checks::Point;
using kvx3d::checks::PointTree;

/// A tree into which the points were inserted one by one, as the toolbox does.
class InsertedOneByOne {
public:
    InsertedOneByOne(std::vector<int> pointIds, const std::vector<Point>& cloud)
        : ids(std::move(pointIds)) {
        for (int& id : ids) {
            tree.BuildTree(cloud[id].x, cloud[id].y, cloud[id].z, &id);
        }
    }
    ~InsertedOneByOne() { delete[] found; }

    int Nearest(const Point& query) {
        tree.SearchNearestPoints(query.x, query.y, query.z, found);
        return found[1];
    }

private:
    std::vector<int> ids;
    KVX_ART_KDtree tree;
    int* found = nullptr;
};

/// On a lattice many points are equally near, so the answers show the shape of the tree.
TEST(PointTree, AnswersLikeATreeOfInsertedPointsOnALattice) {
    std::mt19937 random(3);
    const auto coordinate = [&] { return static_cast<double>(random() % 8) / 8.0; };
    std::vector<Point> cloud(2001);
    std::vector<int> ids;
    for (int id = 1; id <= 2000; ++id) {
        const double x = coordinate();
        const double y = coordinate();
        cloud[id] = {x, y, coordinate()};
        if (id % 3 != 0) {
            ids.push_back(id);
        }
    }
    const PointTree tree(ids, [&](int id) { return cloud[id]; });
    InsertedOneByOne expected(ids, cloud);

    for (int i = 0; i < 2000; ++i) {
        const double x = coordinate();
        const double y = coordinate();
        const Point query = {x, y, coordinate() + 1.0 / 16};
        ASSERT_EQ(tree.Nearest(query), expected.Nearest(query)) << i;
    }
}

TEST(PointTree, WithoutPointsAnswersZero) {
    const PointTree tree({}, [](int) { return Point(); });

    EXPECT_TRUE(tree.IsEmpty());
    EXPECT_EQ(tree.Nearest({}), 0);
}

}  // namespace
