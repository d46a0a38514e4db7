#include "reference_host/cases/benchmark_cavity.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <stdexcept>

#include "reference_host/cases/flow_probe.h"
#include "reference_host/run/comparison.h"

namespace host::benchmarkcavity {

namespace {

constexpr double samePlace = 1e-9;  // in sides: much smaller than a cell, much larger than rounding

bool HasLid(const Mesh& mesh, double side) {
    for (int face = 1; face <= mesh.FaceCount(Boundary::Wall); ++face) {
        if (WallVelocityAt(mesh.Faces(Boundary::Wall)[face].centre, side).x() > 0.0) {
            return true;
        }
    }
    return false;
}

/// The point refined by the parabola through it and its two neighbors.
ProfilePoint Refined(const Profile& profile, std::size_t k) {
    if (k == 0 || k + 1 == profile.size()) {
        return profile[k];
    }
    const double before = profile[k - 1].velocity - profile[k].velocity;
    const double after = profile[k + 1].velocity - profile[k].velocity;
    const double curvature = before + after;
    if (curvature == 0.0) {
        return profile[k];
    }
    const double shift = 0.5 * (before - after) / curvature;  // in intervals
    const double interval = profile[k + 1].at - profile[k].at;
    return {profile[k].at + shift * interval,
            profile[k].velocity - 0.125 * (before - after) * (before - after) / curvature};
}

bool IsLower(const ProfilePoint& a, const ProfilePoint& b) {
    return a.velocity < b.velocity;
}

ProfilePoint Lowest(const Profile& profile) {
    const auto found = std::min_element(profile.begin(), profile.end(), IsLower);
    return Refined(profile, found - profile.begin());
}

ProfilePoint Highest(const Profile& profile) {
    const auto found = std::max_element(profile.begin(), profile.end(), IsLower);
    return Refined(profile, found - profile.begin());
}

double InterpolateLinearly(const Profile& profile, double at) {
    const auto above = std::find_if(profile.begin() + 1, profile.end() - 1,
                                    [at](const ProfilePoint& point) { return point.at >= at; });
    const ProfilePoint& a = *(above - 1);
    const ProfilePoint& b = *above;
    return a.velocity + (at - a.at) / (b.at - a.at) * (b.velocity - a.velocity);
}

const Published at100 = {"Ghia et al.",
                         {{0.4531, -0.21090}, {0.8047, -0.24533}, {0.2344, 0.17527}},
                         {{{0.0547, -0.03717},
                           {0.0625, -0.04192},
                           {0.0703, -0.04775},
                           {0.1016, -0.06434},
                           {0.1719, -0.10150},
                           {0.2813, -0.15662},
                           {0.4531, -0.21090},
                           {0.5000, -0.20581},
                           {0.6172, -0.13641},
                           {0.7344, 0.00332},
                           {0.8516, 0.23151},
                           {0.9531, 0.68717},
                           {0.9609, 0.73722},
                           {0.9688, 0.78871},
                           {0.9766, 0.84123}},
                          {{0.0625, 0.09233},
                           {0.0703, 0.10091},
                           {0.0781, 0.10890},
                           {0.0938, 0.12317},
                           {0.1563, 0.16077},
                           {0.2266, 0.17507},
                           {0.2344, 0.17527},
                           {0.5000, 0.05454},
                           {0.8047, -0.24533},
                           {0.8594, -0.22445},
                           {0.9063, -0.16914},
                           {0.9453, -0.10313},
                           {0.9531, -0.08864},
                           {0.9609, -0.07391},
                           {0.9688, -0.05906}}}};

const Published at1000 = {"Botella, Peyret",
                          {{0.1717, -0.3885698}, {0.9092, -0.5270771}, {0.1578, 0.3769447}},
                          {{{0.0547, -0.18109},
                            {0.0625, -0.20196},
                            {0.0703, -0.22220},
                            {0.1016, -0.29730},
                            {0.1719, -0.38289},
                            {0.2813, -0.27805},
                            {0.4531, -0.10648},
                            {0.5000, -0.06080},
                            {0.6172, 0.05702},
                            {0.7344, 0.18719},
                            {0.8516, 0.33304},
                            {0.9531, 0.46604},
                            {0.9609, 0.51117},
                            {0.9688, 0.57492},
                            {0.9766, 0.65928}},
                           {{0.0625, 0.27485},
                            {0.0703, 0.29012},
                            {0.0781, 0.30353},
                            {0.0938, 0.32627},
                            {0.1563, 0.37095},
                            {0.2266, 0.33075},
                            {0.2344, 0.32235},
                            {0.5000, 0.02526},
                            {0.8047, -0.31966},
                            {0.8594, -0.42665},
                            {0.9063, -0.51550},
                            {0.9453, -0.39188},
                            {0.9531, -0.33714},
                            {0.9609, -0.27669},
                            {0.9688, -0.21388}}}};

}  // namespace

double SideOf(const Mesh& mesh, const std::string& meshFile) {
    if (!mesh.IsQuasi2d()) {
        throw std::runtime_error(meshFile + ": the cavity must be one cell thick");
    }
    if (mesh.FaceCount(Boundary::Outlet) > 0) {
        throw std::runtime_error(meshFile + ": a cavity has no faces in the group \"outlet\"");
    }
    Vec3 low = mesh.nodes[1];
    Vec3 high = low;
    for (int node = 2; node <= mesh.NodeCount(); ++node) {
        low = low.cwiseMin(mesh.nodes[node]);
        high = high.cwiseMax(mesh.nodes[node]);
    }
    const double side = high.x();
    if (low.head<2>().norm() > samePlace * side || std::abs(high.y() - side) > samePlace * side) {
        throw std::runtime_error(
            fmt::format("{}: the cavity must be a square with the corner (0, 0), but the mesh "
                        "reaches from ({:g}, {:g}) to ({:g}, {:g})",
                        meshFile, low.x(), low.y(), high.x(), high.y()));
    }
    if (!HasLid(mesh, side)) {
        throw std::runtime_error(
            fmt::format("{}: the lid, the side y = {:g} of the cavity, has no face in the group "
                        "\"wall\", and nothing would move the fluid",
                        meshFile, side));
    }
    return side;
}

Vec3 WallVelocityAt(const Vec3& point, double side) {
    return {point.y() > (1.0 - samePlace) * side ? 1.0 : 0.0, 0.0, 0.0};
}

bool IsEmpty(const Mesh& mesh, double side) {
    const Vec3 center(0.5 * side, 0.5 * side, 0.0);
    for (int face = 1; face <= mesh.FaceCount(Boundary::Wall); ++face) {
        const BoundaryFace& wall = mesh.Faces(Boundary::Wall)[face];
        const Vec3 distance = (wall.centre - center).cwiseAbs();
        if (wall.oversetGroup == 0 &&
            std::max(distance.x(), distance.y()) < (0.5 - samePlace) * side) {
            return false;
        }
    }
    return true;
}

int CellsPerSide(const Mesh& mesh) {
    const auto count = std::count(mesh.cavity.begin() + 1, mesh.cavity.end(), 1);
    return static_cast<int>(std::lround(std::sqrt(static_cast<double>(count))));
}

Profiles MeasureProfiles(const FlowSolver& flow, double side, int intervals) {
    const FlowProbe probe(flow);
    const double z = 0.5 * flow.MomentumPart().builder.mesh.Depth();
    Profiles profiles;
    profiles.u.push_back({0.0, 0.0});
    profiles.v.push_back({0.0, 0.0});
    for (int k = 1; k < intervals; ++k) {
        const double at = static_cast<double>(k) / intervals;
        profiles.u.push_back({at, probe.Velocity({0.5 * side, at * side, z}).x()});
        profiles.v.push_back({at, probe.Velocity({at * side, 0.5 * side, z}).y()});
    }
    profiles.u.push_back({1.0, 1.0});
    profiles.v.push_back({1.0, 0.0});
    return profiles;
}

Extremes ExtremesOf(const Profiles& profiles) {
    return {Lowest(profiles.u), Lowest(profiles.v), Highest(profiles.v)};
}

std::optional<Published> PublishedAt(double reynolds) {
    if (reynolds == 100.0) {
        return at100;
    }
    return reynolds == 1000.0 ? std::optional<Published>(at1000) : std::nullopt;
}

double LargestDifference(const Profile& profile, const Profile& points) {
    double largest = 0.0;
    for (const auto& [at, velocity] : points) {
        largest = std::max(largest, std::abs(InterpolateLinearly(profile, at) - velocity));
    }
    return largest;
}

std::optional<Limits> LimitsOf(Scheme scheme, double reynolds, int n) {
    if (scheme != Scheme::LinearUpwind || (n != 32 && n != 64)) {
        return std::nullopt;
    }
    if (reynolds == 100.0) {
        return n == 32 ? Limits{0.018, 0.032, 0.019} : Limits{0.02, 0.04, 0.028};
    }
    if (reynolds == 1000.0) {
        return n == 32 ? Limits{0.14, 0.01, 0.085} : Limits{0.042, 0.013, 0.034};
    }
    return std::nullopt;
}

std::vector<std::string> Misses(const Extremes& measured, const Extremes& published,
                                const Limits& limits) {
    const auto deviation = [](const ProfilePoint& a, const ProfilePoint& b) {
        return a.velocity / b.velocity - 1.0;
    };
    LimitCheck check;
    check.Magnitude("the lowest u deviates by", deviation(measured.lowestU, published.lowestU),
                    limits.lowestU);
    check.Magnitude("the lowest v deviates by", deviation(measured.lowestV, published.lowestV),
                    limits.lowestV);
    check.Magnitude("the highest v deviates by", deviation(measured.highestV, published.highestV),
                    limits.highestV);
    return check.Misses();
}

}  // namespace host::benchmarkcavity
