/// Building the point tree and asking it for the nearest point.
///
/// The argument is the number of points: a uniform cloud, or the nearest cubic lattice in mesh
/// order ("Lattice"), which makes deep trees. Items are points built or queries answered. The
/// yardsticks: insertion one by one for the build, a linear scan for the query, and nanoflann for
/// both, whose balanced tree owes nothing to the order of arrival.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <nanoflann.hpp>
#include <vector>

#include "benchmarks/plain/plain_kd_tree.h"
#include "overset/kd_tree.h"
#include "tests/overset/clouds.h"

namespace {

constexpr int nQueries = 512;

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

using Nanoflann =
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, NanoflannCloud>,
                                        NanoflannCloud, 3>;

double DistanceSqTo(const Cloud& cloud, std::size_t i, const Query& q) {
    const double dx = q[0] - cloud.x[i];
    const double dy = q[1] - cloud.y[i];
    const double dz = q[2] - cloud.z[i];
    return dx * dx + dy * dy + dz * dz;
}

std::size_t NearestByScan(const Cloud& cloud, const Query& q) {
    std::size_t best = 0;
    double bestSq = DistanceSqTo(cloud, 0, q);
    for (std::size_t i = 1; i < cloud.x.size(); ++i) {
        const double distSq = DistanceSqTo(cloud, i, q);
        if (distSq < bestSq) {
            best = i;
            bestSq = distSq;
        }
    }
    return best;
}

std::vector<Query> UniformQueries() {
    const Cloud at = UniformCloud(nQueries, 32);
    std::vector<Query> queries;
    for (std::size_t i = 0; i < at.x.size(); ++i) {
        queries.push_back({at.x[i], at.y[i], at.z[i]});
    }
    return queries;
}

void BM_Build(benchmark::State& state, MakeCloud make) {
    Cloud cloud = make(state.range(0));
    for (auto _ : state) {
        KVX_ART_KDtree tree;
        tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), cloud.Size());
        benchmark::DoNotOptimize(tree.tree->root);
    }
    state.SetItemsProcessed(state.iterations() * cloud.Size());
}

void BM_BuildInsertion(benchmark::State& state, MakeCloud make) {
    const Cloud cloud = make(state.range(0));
    for (auto _ : state) {
        plain::KdTree tree;
        for (std::size_t i = 0; i < cloud.x.size(); ++i) {
            tree.Insert(cloud.x[i], cloud.y[i], cloud.z[i], static_cast<int>(i) + 1);
        }
        benchmark::DoNotOptimize(tree.root);
    }
    state.SetItemsProcessed(state.iterations() * cloud.Size());
}

void BM_BuildNanoflann(benchmark::State& state, MakeCloud make) {
    const Cloud cloud = make(state.range(0));
    const NanoflannCloud adaptor{cloud};
    for (auto _ : state) {
        Nanoflann tree(3, adaptor, nanoflann::KDTreeSingleIndexAdaptorParams(10));
        tree.buildIndex();
        benchmark::DoNotOptimize(&tree);
    }
    state.SetItemsProcessed(state.iterations() * cloud.Size());
}

void BM_Nearest(benchmark::State& state, MakeCloud make) {
    Cloud cloud = make(state.range(0));
    const std::vector<Query> queries = UniformQueries();
    KVX_ART_KDtree tree;
    tree.BuildTree(cloud.x.data(), cloud.y.data(), cloud.z.data(), cloud.Size());
    int* found = nullptr;
    for (auto _ : state) {
        for (const Query& q : queries) {
            benchmark::DoNotOptimize(tree.SearchNearestPoints(q[0], q[1], q[2], found));
        }
    }
    for (const Query& q : queries) {
        tree.SearchNearestPoints(q[0], q[1], q[2], found);
        if (DistanceSqTo(cloud, static_cast<std::size_t>(found[1]) - 1, q) !=
            DistanceSqTo(cloud, NearestByScan(cloud, q), q)) {
            state.SkipWithError("wrong neighbour: the time means nothing");
            break;
        }
    }
    delete[] found;
    state.SetItemsProcessed(state.iterations() * nQueries);
}

void BM_NearestScan(benchmark::State& state, MakeCloud make) {
    const Cloud cloud = make(state.range(0));
    const std::vector<Query> queries = UniformQueries();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(NearestByScan(cloud, queries[i++ % queries.size()]));
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_NearestNanoflann(benchmark::State& state, MakeCloud make) {
    const Cloud cloud = make(state.range(0));
    const std::vector<Query> queries = UniformQueries();
    const NanoflannCloud adaptor{cloud};
    Nanoflann tree(3, adaptor, nanoflann::KDTreeSingleIndexAdaptorParams(10));
    tree.buildIndex();
    for (auto _ : state) {
        for (const Query& q : queries) {
            std::uint32_t index = 0;
            double distSq = 0.0;
            tree.knnSearch(q.data(), 1, &index, &distSq);
            benchmark::DoNotOptimize(index);
        }
    }
    state.SetItemsProcessed(state.iterations() * nQueries);
}

#define KD_TREE_BENCHMARK(kernel)                                                                \
    BENCHMARK_CAPTURE(kernel, Uniform, UniformPoints)->Arg(1 << 12)->Arg(1 << 15)->Arg(1 << 18); \
    BENCHMARK_CAPTURE(kernel, Lattice, LatticePoints)->Arg(1 << 12)->Arg(1 << 15)->Arg(1 << 18)

KD_TREE_BENCHMARK(BM_Build);
KD_TREE_BENCHMARK(BM_BuildInsertion);
KD_TREE_BENCHMARK(BM_BuildNanoflann);
KD_TREE_BENCHMARK(BM_Nearest);
KD_TREE_BENCHMARK(BM_NearestScan);
KD_TREE_BENCHMARK(BM_NearestNanoflann);

}  // namespace
