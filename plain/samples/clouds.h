#ifndef KVX3D_PLAIN_SAMPLES_CLOUDS_H
#define KVX3D_PLAIN_SAMPLES_CLOUDS_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

/// Point clouds and queries that tests and benchmarks share.

/// Points in one array per coordinate, 0-based, as the array builds of KVX_ART_KDtree take them.
struct Cloud {
    std::vector<double> x, y, z;

    void Add(double px, double py, double pz) {
        x.push_back(px);
        y.push_back(py);
        z.push_back(pz);
    }
    int Size() const { return static_cast<int>(x.size()); }
};

/// n random points, uniform in [-1, 1]^3.
inline Cloud UniformCloud(int n, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> at(-1.0, 1.0);
    Cloud cloud;
    for (int i = 0; i < n; ++i) {
        const double px = at(random);
        const double py = at(random);
        cloud.Add(px, py, at(random));
    }
    return cloud;
}

/// A cubic lattice on [-1, 1]^3, x fastest. Has many equal coordinates and equal distances.
inline Cloud LatticeCloud(int perSide) {
    Cloud cloud;
    const double step = 2.0 / std::max(perSide - 1, 1);
    for (int k = 0; k < perSide; ++k) {
        for (int j = 0; j < perSide; ++j) {
            for (int i = 0; i < perSide; ++i) {
                cloud.Add(-1.0 + i * step, -1.0 + j * step, -1.0 + k * step);
            }
        }
    }
    return cloud;
}

/// Random points at 125 different positions, so that each occurs many times.
inline Cloud RepeatedCloud(int n, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> at(-2, 2);
    Cloud cloud;
    for (int i = 0; i < n; ++i) {
        const double px = 0.5 * at(random);
        const double py = 0.5 * at(random);
        cloud.Add(px, py, 0.5 * at(random));
    }
    return cloud;
}

/// Points along the diagonal, ascending or descending. The tree is as deep as their number.
inline Cloud DiagonalCloud(int n, bool ascending) {
    Cloud cloud;
    for (int i = 0; i < n; ++i) {
        const double at = (ascending ? i : n - 1 - i) * (2.0 / n) - 1.0;
        cloud.Add(at, at, at);
    }
    return cloud;
}

/// Rings around the z axis, theta fastest. A point on the axis is equally near to all points of a
/// ring.
inline Cloud RingCloud(int perRing, int rings) {
    Cloud cloud;
    for (int k = 0; k < rings; ++k) {
        for (int i = 0; i < perRing; ++i) {
            const double theta = 2.0 * 3.14159265358979323846 * i / perRing;
            cloud.Add(std::cos(theta), std::sin(theta), -1.0 + 2.0 * k / rings);
        }
    }
    return cloud;
}

/// The points of a, then those of b.
inline Cloud Joined(Cloud a, const Cloud& b) {
    a.x.insert(a.x.end(), b.x.begin(), b.x.end());
    a.y.insert(a.y.end(), b.y.begin(), b.y.end());
    a.z.insert(a.z.end(), b.z.begin(), b.z.end());
    return a;
}

/// Points up the diagonal, then down again between the first ones.
inline Cloud OutAndBackCloud(int n) {
    return Joined(DiagonalCloud(n / 2, true), DiagonalCloud(n - n / 2 - 1, false));
}

struct NamedCloud {
    std::string name;
    Cloud cloud;
};

/// All shapes of clouds, with sizes below and above each threshold of the top-down build.
inline std::vector<NamedCloud> AllClouds() {
    std::vector<NamedCloud> clouds;
    for (int n : {1, 2, 3, 8, 9, 17, 100, 511, 513, 3000}) {
        clouds.push_back({"Uniform" + std::to_string(n), UniformCloud(n, 11)});
    }
    for (int n : {2, 3, 9, 15}) {
        clouds.push_back({"Lattice" + std::to_string(n), LatticeCloud(n)});
    }
    clouds.push_back({"Repeated", RepeatedCloud(2000, 12)});
    clouds.push_back({"Ascending", DiagonalCloud(2000, true)});
    clouds.push_back({"Descending", DiagonalCloud(2000, false)});
    clouds.push_back({"OutAndBack", OutAndBackCloud(2000)});
    clouds.push_back({"Rings", RingCloud(64, 12)});
    clouds.push_back({"LatticeThenUniform", Joined(LatticeCloud(9), UniformCloud(900, 13))});
    clouds.push_back({"UniformThenLattice", Joined(UniformCloud(900, 14), LatticeCloud(9))});
    return clouds;
}

using Query = std::array<double, 3>;

/// Queries in and around a cloud: random ones, at its points, at lattice positions, and midway
/// between two points.
inline std::vector<Query> QueriesFor(const Cloud& cloud, unsigned seed) {
    std::vector<Query> queries;
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> at(-1.5, 1.5);
    std::uniform_int_distribution<int> step(-6, 6);
    for (int i = 0; i < 60; ++i) {
        queries.push_back({at(random), at(random), at(random)});
        queries.push_back({0.25 * step(random), 0.25 * step(random), 0.25 * step(random)});
        queries.push_back({0.125 * step(random), 0.125 * step(random), 0.125 * step(random)});
        queries.push_back({0.0, 0.0, 0.125 * step(random)});
        const auto a = static_cast<std::size_t>(random()) % cloud.x.size();
        const auto b = static_cast<std::size_t>(random()) % cloud.x.size();
        queries.push_back({cloud.x[a], cloud.y[a], cloud.z[a]});
        queries.push_back({0.5 * (cloud.x[a] + cloud.x[b]), 0.5 * (cloud.y[a] + cloud.y[b]),
                           0.5 * (cloud.z[a] + cloud.z[b])});
    }
    return queries;
}

#endif
