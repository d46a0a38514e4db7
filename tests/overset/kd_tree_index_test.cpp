#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "overset/detail/kd_tree_store.h"
#include "overset/kd_tree.h"
#include "plain/plain_kd_tree.h"
#include "plain/samples/clouds.h"

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double notANumber = std::nan("");

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

/// All trees answer alike; the one built at once does so with an index.
void ExpectSameAnswers(ThreeTrees& trees, const std::vector<Query>& queries) {
    ASSERT_NE(IndexOf(*trees.atOnce.tree), nullptr);
    ASSERT_EQ(IndexOf(*trees.oneByOne.tree), nullptr);
    for (const Query& q : queries) {
        const int expected = trees.plainTree.Nearest(q[0], q[1], q[2]);
        ASSERT_EQ(NearestId(trees.atOnce, q), expected) << Text(q);
        ASSERT_EQ(NearestId(trees.oneByOne, q), expected) << Text(q);
    }
}

/// Far away, on the planes through the points, and where nothing can be measured.
std::vector<Query> OddQueries(const Cloud& cloud) {
    std::vector<Query> queries = {{1e6, -1e6, 1e6},       {1e200, 0.0, 0.0},
                                  {-1e308, 1e308, 0.0},   {1e-300, -0.0, 0.0},
                                  {notANumber, 0.0, 0.0}, {0.0, notANumber, 1.0},
                                  {0.5, 0.5, notANumber}, {infinity, 0.0, 0.0},
                                  {0.0, -infinity, 0.0},  {infinity, infinity, notANumber}};
    for (std::size_t i = 0; i < cloud.x.size(); i += 1 + cloud.x.size() / 7) {
        queries.push_back({cloud.x[i], 0.3, -0.2});
        queries.push_back({0.3, cloud.y[i], 3.0});
        queries.push_back({-2.0, 0.1, cloud.z[i]});
        queries.push_back({std::nextafter(cloud.x[i], 9.0), cloud.y[i], cloud.z[i]});
    }
    return queries;
}

/// Points of a small lattice with steps of its own along each axis, some left out, some repeated,
/// in mesh order or shuffled.
Cloud RandomLattice(std::mt19937& random) {
    const auto pick = [&random](int from, int to) {
        return std::uniform_int_distribution<int>(from, to)(random);
    };
    const int size[3] = {pick(1, 14), pick(4, 12), pick(6, 12)};
    const double step[3] = {std::ldexp(1.0, pick(-2, 1)), 0.1 * pick(1, 3), 0.25 * pick(1, 4)};
    const int keep = pick(6, 10);
    std::vector<Query> points;
    while (points.size() < 256) {
        for (int i = 0; i < size[0] * size[1] * size[2]; ++i) {
            if (pick(1, 10) <= keep) {
                points.push_back({step[0] * (i % size[0]), step[1] * (i / size[0] % size[1]),
                                  step[2] * (i / size[0] / size[1])});
            }
        }
    }
    if (pick(0, 2) == 0) {
        std::shuffle(points.begin(), points.end(), random);
    }
    Cloud cloud;
    for (const Query& p : points) {
        cloud.Add(p[0], p[1], p[2]);
    }
    return cloud;
}

/// On points, and in the middle of two, four or eight of them.
std::vector<Query> TieQueries(const Cloud& cloud, std::mt19937& random, int n) {
    std::vector<Query> queries;
    const auto any = [&] { return static_cast<std::size_t>(random()) % cloud.x.size(); };
    for (int i = 0; i < n; ++i) {
        const std::size_t a = any();
        const std::size_t b = (a + 1) % cloud.x.size();
        const std::size_t c = any();
        queries.push_back({cloud.x[a], cloud.y[a], cloud.z[a]});
        queries.push_back({0.5 * (cloud.x[a] + cloud.x[b]), 0.5 * (cloud.y[a] + cloud.y[b]),
                           0.5 * (cloud.z[a] + cloud.z[b])});
        queries.push_back({0.5 * (cloud.x[a] + cloud.x[c]), 0.5 * (cloud.y[a] + cloud.y[c]),
                           0.5 * (cloud.z[a] + cloud.z[c])});
    }
    return queries;
}

/// A power of two for each point and axis: no box is ever parted evenly.
Cloud GeometricCloud(int n) {
    Cloud cloud;
    for (int i = 0; i < n; ++i) {
        cloud.Add(std::ldexp(1.0, -i), std::ldexp(1.0, -(i * 7) % 900), std::ldexp(-1.0, i - n));
    }
    return cloud;
}

Cloud Scaled(Cloud cloud, double scale, double shift) {
    for (std::vector<double>* c : {&cloud.x, &cloud.y, &cloud.z}) {
        for (double& v : *c) {
            v = v * scale + shift;
        }
    }
    return cloud;
}

/// A tenth of the points at large, the others within small balls.
Cloud ClusteredCloud(int n) {
    Cloud cloud = UniformCloud(n, 51);
    for (std::size_t i = 0; i < cloud.x.size(); ++i) {
        if (i % 10 != 0) {
            const std::size_t centre = i % 70 / 10 * 10;
            cloud.x[i] = cloud.x[centre] + 1e-7 * cloud.x[i];
            cloud.y[i] = cloud.y[centre] + 1e-9 * cloud.y[i];
            cloud.z[i] = cloud.z[centre] + 1e-7 * cloud.z[i];
        }
    }
    return cloud;
}

std::vector<NamedCloud> IndexedClouds() {
    std::vector<NamedCloud> clouds;
    for (const NamedCloud& named : AllClouds()) {
        if (named.cloud.Size() >= 256) {
            clouds.push_back(named);
        }
    }
    clouds.push_back({"Geometric", GeometricCloud(800)});
    clouds.push_back({"Clustered", ClusteredCloud(3000)});
    clouds.push_back({"FarFromTheOrigin", Scaled(LatticeCloud(9), 1e-3, 1e9)});
    clouds.push_back({"SquaresOverflow", Scaled(LatticeCloud(9), 1e200, 0.0)});
    clouds.push_back({"SidesOverflow", Scaled(LatticeCloud(9), 1.7e308, 0.0)});
    clouds.push_back({"SquaresVanish", Scaled(UniformCloud(500, 52), 1e-170, 0.0)});
    clouds.push_back({"Denormal", Scaled(LatticeCloud(9), 1e-320, 0.0)});
    clouds.push_back({"AllInOnePlace", Scaled(UniformCloud(500, 53), 0.0, 0.25)});
    clouds.push_back({"OneLine", [] {
                          Cloud cloud = UniformCloud(700, 54);
                          cloud.y.assign(700, 0.5);
                          cloud.z = cloud.y;
                          return cloud;
                      }()});
    return clouds;
}

class KdTreeIndexAgainstPlain : public testing::TestWithParam<NamedCloud> {};

TEST_P(KdTreeIndexAgainstPlain, NearestIsTheSamePointTiesIncluded) {
    ThreeTrees trees(GetParam().cloud);
    std::mt19937 random(61);

    ExpectSameAnswers(trees, QueriesFor(trees.cloud, 62));
    ExpectSameAnswers(trees, OddQueries(trees.cloud));
    ExpectSameAnswers(trees, TieQueries(trees.cloud, random, 100));
}

INSTANTIATE_TEST_SUITE_P(Clouds, KdTreeIndexAgainstPlain, testing::ValuesIn(IndexedClouds()),
                         [](const auto& param) { return param.param.name; });

TEST(KdTreeIndexTies, AThousandLatticesAreDecidedAsTheTreeDecides) {
    std::mt19937 random(63);
    for (int i = 0; i < 1000; ++i) {
        ThreeTrees trees(RandomLattice(random));

        ExpectSameAnswers(trees, TieQueries(trees.cloud, random, 8));
        ASSERT_FALSE(HasFatalFailure()) << "lattice " << i;
    }
}

TEST(KdTreeIndexTies, MorePointsInOnePlaceThanAreNotedAreLeftToTheTree) {
    Cloud cloud = UniformCloud(400, 65);
    for (std::size_t i = 300; i < 400; ++i) {
        cloud.x[i] = cloud.y[i] = cloud.z[i] = 0.125;
    }
    ThreeTrees trees(cloud);

    ExpectSameAnswers(trees, {{0.125, 0.125, 0.125}, {0.1250001, 0.125, 0.1249999}});
}

TEST(KdTreeIndexTies, TheRootWinsThemAll) {
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

/// A tree of n random points, built at once.
std::unique_ptr<KVX_ART_KDtree> TreeOf(Cloud cloud) {
    auto tree = std::make_unique<KVX_ART_KDtree>();
    tree->BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), cloud.Size());
    return tree;
}

TEST(KdTreeIndexLife, OnlyLargeTreesHaveOne) {
    EXPECT_EQ(IndexOf(*TreeOf(UniformCloud(255, 67))->tree), nullptr);
    EXPECT_NE(IndexOf(*TreeOf(UniformCloud(256, 67))->tree), nullptr);
}

TEST(KdTreeIndexLife, PointsSelectedByBlockHaveOne) {
    Cloud cloud = UniformCloud(600, 68);
    std::vector<int> blockIds(600, 2);
    KVX_ART_KDtree tree;

    tree.BuildTreeByBlockId(cloud.x.data(), cloud.y.data(), cloud.z.data(), blockIds.data(), 2,
                            600);

    EXPECT_NE(IndexOf(*tree.tree), nullptr);
}

TEST(KdTreeIndexLife, CoordinatesThatAreNotFiniteLeaveTheTreeWithoutOne) {
    for (double odd : {notANumber, infinity, -infinity}) {
        for (int at : {0, 77, 499}) {
            for (std::vector<double> Cloud::*axis : {&Cloud::x, &Cloud::y, &Cloud::z}) {
                Cloud cloud = UniformCloud(500, 69);
                (cloud.*axis)[static_cast<std::size_t>(at)] = odd;
                ThreeTrees trees(cloud);

                ASSERT_EQ(IndexOf(*trees.atOnce.tree), nullptr);
                for (const Query& q : QueriesFor(cloud, 70)) {
                    ASSERT_EQ(NearestId(trees.atOnce, q), trees.plainTree.Nearest(q[0], q[1], q[2]))
                        << Text(q) << ' ' << odd << " at " << at;
                }
            }
        }
    }
}

TEST(KdTreeIndexLife, APointMoreDropsItAndIsFound) {
    ThreeTrees trees(LatticeCloud(9));
    int id = 9999;
    const Query place = {0.1, 0.1, 0.1};
    trees.plainTree.Insert(place[0], place[1], place[2], id);

    trees.atOnce.BuildTree(place[0], place[1], place[2], &id);

    EXPECT_EQ(IndexOf(*trees.atOnce.tree), nullptr);
    EXPECT_EQ(NearestId(trees.atOnce, place), id);
    for (const Query& q : QueriesFor(trees.cloud, 71)) {
        ASSERT_EQ(NearestId(trees.atOnce, q), trees.plainTree.Nearest(q[0], q[1], q[2]));
    }
}

TEST(KdTreeIndexLife, ASecondBuildDropsIt) {
    ThreeTrees trees(LatticeCloud(9));
    Cloud more = UniformCloud(500, 72);
    int* const earlierIds = trees.atOnce.ids;

    trees.atOnce.BuildTree(more.x.data(), more.y.data(), more.z.data(), more.Size());

    for (int i = 0; i < more.Size(); ++i) {
        const auto at = static_cast<std::size_t>(i);
        trees.plainTree.Insert(more.x[at], more.y[at], more.z[at], i + 1);
    }
    EXPECT_EQ(IndexOf(*trees.atOnce.tree), nullptr);
    for (const Query& q : QueriesFor(more, 73)) {
        ASSERT_EQ(NearestId(trees.atOnce, q), trees.plainTree.Nearest(q[0], q[1], q[2]));
    }
    delete[] earlierIds;
}

TEST(KdTreeIndexLife, CopiesOfATreeShareIt) {
    auto tree = TreeOf(UniformCloud(500, 74));
    auto copy = std::make_unique<KVX_ART_KDtree>(*tree);

    EXPECT_EQ(IndexOf(*copy->tree), IndexOf(*tree->tree));
    EXPECT_EQ(NearestId(*copy, {0.1, 0.2, 0.3}), NearestId(*tree, {0.1, 0.2, 0.3}));
    copy->tree = nullptr;  // one of the two may be destroyed
    copy->ids = nullptr;
}

TEST(KdTreeIndexLife, AnotherRootOrBoxSetByHandIsSearchedWithoutIt) {
    auto tree = TreeOf(UniformCloud(500, 75));
    KDtreeCore& core = *tree->tree;
    KDtreeNode* const root = core.root;
    const double max = core.rect->max[1];
    double own[2][3] = {{-1.0, -1.0, -1.0}, {1.0, 1.0, 1.0}};
    KDtreeRect ownRect = {3, own[0], own[1]};
    KDtreeRect* const rect = core.rect;

    core.root = root->left;
    EXPECT_EQ(IndexOf(core), nullptr);
    core.root = root;
    core.rect->max[1] = 0.5 * max;
    EXPECT_EQ(IndexOf(core), nullptr);
    core.rect->max[1] = max;
    core.rect = &ownRect;
    EXPECT_EQ(IndexOf(core), nullptr);
    core.rect = rect;
    EXPECT_NE(IndexOf(core), nullptr);
}

TEST(KdTreeIndexLife, ACorePutTogetherByHandIsSearched) {
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

TEST(KdTreeIndexThreads, SearchesAtTheSameTimeAnswerAsSearchesInTurn) {
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
