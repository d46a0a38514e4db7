/// Building a point tree and searching it for the nearest point.
///
/// The argument and the counter "size" are the number of points. "Uniform" is a random cloud;
/// "Lattice" is a cubic lattice in mesh order, which makes the tree deep. "Build" is one array
/// build, "Nearest" 32,768 queries all over the cloud, "FirstSearches" a build followed by one
/// query for every eight points. Items are points or queries.
///
/// The baselines are the plain tree, which inserts one point at a time and searches recursively,
/// and nanoflann, whose tree is balanced and independent of the order of the points. Our answers
/// must have the ids of the plain tree and the distances of nanoflann.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <nanoflann.hpp>
#include <utility>
#include <vector>

#include "overset/kd_tree.h"
#include "plain/plain_kd_tree.h"
#include "plain/samples/clouds.h"

namespace {

constexpr int nQueries = 1 << 15;
constexpr int pointsPerQuery = 8;  // of FirstSearches

Cloud UniformPoints(std::int64_t n) {
    return UniformCloud(static_cast<int>(n), 31);
}

Cloud LatticePoints(std::int64_t n) {
    return LatticeCloud(static_cast<int>(std::lround(std::cbrt(static_cast<double>(n)))));
}

using MakeCloud = Cloud (*)(std::int64_t);

struct NanoflannCloud {
    const Cloud& cloud;
    std::size_t kdtree_get_point_count() const { return cloud.x.size(); }
    double kdtree_get_pt(std::size_t i, std::size_t dim) const {
        return dim == 0 ? cloud.x[i] : dim == 1 ? cloud.y[i] : cloud.z[i];
    }
    template <typename Box>
    bool kdtree_get_bbox(Box&) const {
        return false;
    }
};

/// nanoflann with the leaf size that its manual suggests.
class Nanoflann {
public:
    explicit Nanoflann(const Cloud& cloud)
        : adaptor{cloud}, tree(3, adaptor, nanoflann::KDTreeSingleIndexAdaptorParams(10)) {
        tree.buildIndex();
    }

    std::size_t Nearest(const Query& q) const {
        std::uint32_t index = 0;
        double distSq = 0.0;
        tree.knnSearch(q.data(), 1, &index, &distSq);
        return index;
    }

private:
    NanoflannCloud adaptor;
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, NanoflannCloud>,
                                        NanoflannCloud, 3>
        tree;
};

/// Our tree with the array for its answers.
class Ours {
public:
    explicit Ours(Cloud& cloud) {
        tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), cloud.Size());
    }
    ~Ours() { delete[] found; }
    Ours(const Ours&) = delete;
    Ours& operator=(const Ours&) = delete;

    std::size_t Nearest(const Query& q) {
        tree.SearchNearestPoints(q[0], q[1], q[2], found);
        return static_cast<std::size_t>(found[1]) - 1;
    }

private:
    KVX_ART_KDtree tree;
    int* found = nullptr;
};

/// The plain tree.
class Plain {
public:
    explicit Plain(const Cloud& cloud) {
        for (std::size_t i = 0; i < cloud.x.size(); ++i) {
            tree.Insert(cloud.x[i], cloud.y[i], cloud.z[i], static_cast<int>(i) + 1);
        }
    }

    std::size_t Nearest(const Query& q) const {
        return static_cast<std::size_t>(tree.Nearest(q[0], q[1], q[2])) - 1;
    }

private:
    plain::KdTree tree;
};

double DistanceSqTo(const Cloud& cloud, std::size_t i, const Query& q) {
    const double dx = q[0] - cloud.x[i];
    const double dy = q[1] - cloud.y[i];
    const double dz = q[2] - cloud.z[i];
    return dx * dx + dy * dy + dz * dz;
}

const std::vector<Query>& UniformQueries() {
    static const std::vector<Query> queries = [] {
        const Cloud at = UniformCloud(nQueries, 32);
        std::vector<Query> made;
        for (std::size_t i = 0; i < at.x.size(); ++i) {
            made.push_back({at.x[i], at.y[i], at.z[i]});
        }
        return made;
    }();
    return queries;
}

/// The points of a row, made once for all rows and repetitions. Records whether all trees agree on
/// every query.
struct Points {
    explicit Points(Cloud made) : cloud(std::move(made)) {
        Ours ours(cloud);
        const Plain baseline(cloud);
        const Nanoflann peer(cloud);
        for (const Query& q : UniformQueries()) {
            const std::size_t answer = ours.Nearest(q);
            agreed = agreed && answer == baseline.Nearest(q) &&
                     DistanceSqTo(cloud, answer, q) == DistanceSqTo(cloud, peer.Nearest(q), q);
        }
    }

    Cloud cloud;
    bool agreed = true;
};

Points& PointsOf(benchmark::State& state, MakeCloud make) {
    static std::map<std::pair<MakeCloud, std::int64_t>, std::unique_ptr<Points>> all;
    std::unique_ptr<Points>& points = all[{make, state.range(0)}];
    if (!points) {
        points = std::make_unique<Points>(make(state.range(0)));
    }
    if (!points->agreed) {
        state.SkipWithError("wrong neighbor: the time has no meaning");
    }
    state.counters["size"] = points->cloud.Size();
    return *points;
}

template <typename Tree>
void Build(benchmark::State& state, MakeCloud make) {
    Cloud& cloud = PointsOf(state, make).cloud;
    for (auto _ : state) {
        Tree tree(cloud);
        benchmark::DoNotOptimize(&tree);
    }
    state.SetItemsProcessed(state.iterations() * cloud.Size());
}

template <typename Tree>
void Nearest(benchmark::State& state, MakeCloud make) {
    Tree tree(PointsOf(state, make).cloud);
    const std::vector<Query>& queries = UniformQueries();
    for (auto _ : state) {
        for (const Query& q : queries) {
            benchmark::DoNotOptimize(tree.Nearest(q));
        }
    }
    state.SetItemsProcessed(state.iterations() * nQueries);
}

template <typename Tree>
void FirstSearches(benchmark::State& state, MakeCloud make) {
    Cloud& cloud = PointsOf(state, make).cloud;
    const std::vector<Query>& queries = UniformQueries();
    const std::size_t n = cloud.x.size() / pointsPerQuery;
    for (auto _ : state) {
        Tree tree(cloud);
        for (std::size_t i = 0; i < n; ++i) {
            benchmark::DoNotOptimize(tree.Nearest(queries[i % queries.size()]));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
}

constexpr auto BM_Build = Build<Ours>;
constexpr auto BM_BuildPlain = Build<Plain>;
constexpr auto BM_BuildNanoflann = Build<Nanoflann>;
constexpr auto BM_Nearest = Nearest<Ours>;
constexpr auto BM_NearestPlain = Nearest<Plain>;
constexpr auto BM_NearestNanoflann = Nearest<Nanoflann>;
constexpr auto BM_FirstSearches = FirstSearches<Ours>;
constexpr auto BM_FirstSearchesPlain = FirstSearches<Plain>;
constexpr auto BM_FirstSearchesNanoflann = FirstSearches<Nanoflann>;

void Sizes(benchmark::internal::Benchmark* row) {
    for (int perSide : {16, 32, 64, 100}) {
        row->Arg(perSide * perSide * perSide);
    }
    row->Unit(benchmark::kMillisecond);
}

#define KD_TREE_BENCHMARK(kernel)                                    \
    BENCHMARK_CAPTURE(kernel, Uniform, UniformPoints)->Apply(Sizes); \
    BENCHMARK_CAPTURE(kernel, Lattice, LatticePoints)->Apply(Sizes)

KD_TREE_BENCHMARK(BM_Build);
KD_TREE_BENCHMARK(BM_BuildPlain);
KD_TREE_BENCHMARK(BM_BuildNanoflann);
KD_TREE_BENCHMARK(BM_Nearest);
KD_TREE_BENCHMARK(BM_NearestPlain);
KD_TREE_BENCHMARK(BM_NearestNanoflann);
KD_TREE_BENCHMARK(BM_FirstSearches);
KD_TREE_BENCHMARK(BM_FirstSearchesPlain);
KD_TREE_BENCHMARK(BM_FirstSearchesNanoflann);

}  // namespace
