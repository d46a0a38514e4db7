#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "overset/kd_tree.h"
#include "plain/plain_kd_tree.h"
#include "plain/samples/clouds.h"
#include "tests/overset/odd_clouds.h"

// Nearest searches against the plain tree on clouds with many ties, duplicates and extreme
// coordinates.

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// The same points three times: built at once, built one by one, and in the plain tree.
struct ThreeTrees {
    explicit ThreeTrees(const Cloud& points) : cloud(points), ids(cloud.x.size()) {
        atOnce.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), cloud.Size());
        for (std::size_t i = 0; i < ids.size(); ++i) {
            ids[i] = static_cast<int>(i) + 1;
            oneByOne.BuildTree(cloud.x[i], cloud.y[i], cloud.z[i], &ids[i]);
            plainTree.Insert(cloud.x[i], cloud.y[i], cloud.z[i], ids[i]);
        }
    }

    Cloud cloud;
    std::vector<int> ids;
    KVX_ART_KDtree atOnce;
    KVX_ART_KDtree oneByOne;
    plain::KdTree plainTree;
};

int NearestId(KVX_ART_KDtree& tree, const Query& q) {
    int* found = nullptr;
    const int n = tree.SearchNearestPoints(q[0], q[1], q[2], found);
    const int id = n == 1 ? found[1] : -1;
    delete[] found;
    return id;
}

std::string Text(const Query& q) {
    return testing::PrintToString(q);
}

void ExpectSameAnswers(ThreeTrees& trees, const std::vector<Query>& queries) {
    for (const Query& q : queries) {
        const int expected = trees.plainTree.Nearest(q[0], q[1], q[2]);
        ASSERT_EQ(NearestId(trees.atOnce, q), expected) << Text(q);
        ASSERT_EQ(NearestId(trees.oneByOne, q), expected) << Text(q);
    }
}

class KdTreeOnOddClouds : public testing::TestWithParam<NamedCloud> {};

TEST_P(KdTreeOnOddClouds, NearestIsTheSamePointTiesIncluded) {
    ThreeTrees trees(GetParam().cloud);
    std::mt19937 random(61);

    ExpectSameAnswers(trees, QueriesFor(trees.cloud, 62));
    ExpectSameAnswers(trees, OddQueries(trees.cloud));
    ExpectSameAnswers(trees, TieQueries(trees.cloud, random, 100));
}

INSTANTIATE_TEST_SUITE_P(Clouds, KdTreeOnOddClouds, testing::ValuesIn(OddClouds()),
                         [](const auto& param) { return param.param.name; });

TEST(KdTreeTies, AThousandLatticesAreAnsweredAsByThePlainTree) {
    std::mt19937 random(63);
    for (int i = 0; i < 1000; ++i) {
        ThreeTrees trees(RandomLattice(random));

        ExpectSameAnswers(trees, TieQueries(trees.cloud, random, 8));
        ASSERT_FALSE(HasFatalFailure()) << "lattice " << i;
    }
}

TEST(KdTreeTies, AHundredPointsInOnePlaceAreAnsweredAsByThePlainTree) {
    Cloud cloud = UniformCloud(400, 65);
    for (std::size_t i = 300; i < 400; ++i) {
        cloud.x[i] = cloud.y[i] = cloud.z[i] = 0.125;
    }
    ThreeTrees trees(cloud);

    ExpectSameAnswers(trees, {{0.125, 0.125, 0.125}, {0.1250001, 0.125, 0.1249999}});
}

TEST(KdTreeTies, TheRootWinsAgainstEightyEquallyNearPoints) {
    Cloud cloud;
    cloud.Add(1.0, 0.0, 0.0);
    for (int i = 0; i < 40; ++i) {
        cloud.Add(-1.0, 0.0, 0.0);
        cloud.Add(0.0, 1.0, 0.0);
    }
    cloud = Joined(cloud, Scaled(UniformCloud(400, 66), 1.0, 5.0));
    ThreeTrees trees(cloud);

    ExpectSameAnswers(trees, {{0.0, 0.0, 0.0}});
    EXPECT_EQ(NearestId(trees.atOnce, {0.0, 0.0, 0.0}), 1);
}

TEST(KdTreeCoordinates, InfiniteAndNaNCoordinatesAreSearchedAsByThePlainTree) {
    for (double odd : {notANumber, infinity, -infinity}) {
        for (int at : {0, 77, 499}) {
            for (std::vector<double> Cloud::*axis : {&Cloud::x, &Cloud::y, &Cloud::z}) {
                Cloud cloud = UniformCloud(500, 69);
                (cloud.*axis)[static_cast<std::size_t>(at)] = odd;
                ThreeTrees trees(cloud);

                ExpectSameAnswers(trees, QueriesFor(cloud, 70));
                ASSERT_FALSE(HasFatalFailure()) << odd << " at " << at;
            }
        }
    }
}

TEST(KdTreeGrowth, APointAddedToABuiltTreeIsFound) {
    ThreeTrees trees(LatticeCloud(9));
    int id = 9999;
    const Query place = {0.1, 0.1, 0.1};
    trees.plainTree.Insert(place[0], place[1], place[2], id);

    trees.atOnce.BuildTree(place[0], place[1], place[2], &id);

    EXPECT_EQ(NearestId(trees.atOnce, place), id);
    for (const Query& q : QueriesFor(trees.cloud, 71)) {
        ASSERT_EQ(NearestId(trees.atOnce, q), trees.plainTree.Nearest(q[0], q[1], q[2])) << Text(q);
    }
}

TEST(KdTreeGrowth, PointsOfASecondBuildAreFound) {
    ThreeTrees trees(LatticeCloud(9));
    Cloud more = UniformCloud(500, 72);
    int* const earlierIds = trees.atOnce.ids;

    trees.atOnce.BuildTree(more.x.data(), more.y.data(), more.z.data(), more.Size());

    for (int i = 0; i < more.Size(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        trees.plainTree.Insert(more.x[at], more.y[at], more.z[at], i + 1);
    }
    for (const Query& q : QueriesFor(more, 73)) {
        ASSERT_EQ(NearestId(trees.atOnce, q), trees.plainTree.Nearest(q[0], q[1], q[2])) << Text(q);
    }
    delete[] earlierIds;
}

TEST(KdTreeByHand, ACoreMadeByHandIsSearched) {
    double pos[3][3] = {{0, 0, 0}, {-1, 0, 0}, {1, 0, 0}};
    int ids[3] = {5, 6, 7};
    KDtreeNode left = {pos[1], 1, &ids[1], nullptr, nullptr};
    KDtreeNode right = {pos[2], 1, &ids[2], nullptr, nullptr};
    KDtreeNode root = {pos[0], 0, &ids[0], &left, &right};
    double box[2][3] = {{-1, 0, 0}, {1, 0, 0}};
    KDtreeRect rect = {3, box[0], box[1]};
    KDtreeCore core = {3, &root, &rect, nullptr};
    KVX_ART_KDtree tree;
    KDtreeCore* const ownCore = tree.tree;

    tree.tree = &core;

    EXPECT_EQ(NearestId(tree, {0.8, 0.1, 0.0}), 7);
    EXPECT_EQ(NearestId(tree, {-0.5, 0.0, 0.0}), 5);
    tree.tree = ownCore;
}

TEST(KdTreeThreads, ConcurrentSearchesAnswerAsSearchesInTurn) {
    ThreeTrees trees(Joined(LatticeCloud(12), UniformCloud(2000, 76)));
    const std::vector<Query> queries = QueriesFor(trees.cloud, 77);
    std::vector<int> expected;
    for (const Query& q : queries) {
        expected.push_back(trees.plainTree.Nearest(q[0], q[1], q[2]));
    }
    std::vector<std::vector<int>> answers(4);

    std::vector<std::thread> threads;
    for (std::vector<int>& mine : answers) {
        threads.emplace_back([&trees, &queries, &mine] {
            for (const Query& q : queries) {
                mine.push_back(NearestId(trees.atOnce, q));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    for (const std::vector<int>& mine : answers) {
        EXPECT_EQ(mine, expected);
    }
}

}  // namespace
