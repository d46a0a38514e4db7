#include "tests/overset/odd_clouds.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Powers of two along each axis: no plane halves the points of any box.
Cloud GeometricCloud(int n) {
    Cloud cloud;
    for (int i = 0; i < n; ++i) {
        cloud.Add(std::ldexp(1.0, -i), std::ldexp(1.0, -(i * 7) % 900), std::ldexp(-1.0, i - n));
    }
    return cloud;
}

/// A tenth of the points anywhere, the others within small balls around some of them.
Cloud ClusteredCloud(int n) {
    Cloud cloud = UniformCloud(n, 51);
    for (std::size_t i = 0; i < cloud.x.size(); ++i) {
        if (i % 10 != 0) {
            const std::size_t center = i % 70 / 10 * 10;
            cloud.x[i] = cloud.x[center] + 1e-7 * cloud.x[i];
            cloud.y[i] = cloud.y[center] + 1e-9 * cloud.y[i];
            cloud.z[i] = cloud.z[center] + 1e-7 * cloud.z[i];
        }
    }
    return cloud;
}

Cloud LineCloud(int n) {
    Cloud cloud = UniformCloud(n, 54);
    cloud.y.assign(cloud.x.size(), 0.5);
    cloud.z = cloud.y;
    return cloud;
}

}  // namespace

Cloud Scaled(Cloud cloud, double scale, double shift) {
    for (std::vector<double>* c : {&cloud.x, &cloud.y, &cloud.z}) {
        for (double& v : *c) {
            v = v * scale + shift;
        }
    }
    return cloud;
}

std::vector<NamedCloud> OddClouds() {
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
    clouds.push_back({"OneLine", LineCloud(700)});
    return clouds;
}

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
