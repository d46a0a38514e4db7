#include "plain/samples/cylinder_host.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

constexpr double pi = 3.14159265358979323846;

double Radians(double degrees) {
    return degrees * pi / 180.0;
}

}  // namespace

CylinderHost::CylinderHost(int m) {
    Add(Channel(m), 1);
    Add(Ring(m, 0.0, [](double) { return 1.5; }), 2);
    Link();
}

TurnedSquareHost::TurnedSquareHost(int m, double angle) {
    const double size = 0.6 / m;
    const double cosine = std::cos(Radians(angle));
    const double sine = std::sin(Radians(angle));
    const auto node = [=](int i, int j, int k) {
        const double u = size * i - 1.5;
        const double v = size * j - 1.5;
        return Point{0.0137 + u * cosine - v * sine, 0.0071 + u * sine + v * cosine, k * (1.0 / m)};
    };
    Add(Channel(m), 1);
    Add({{5 * m, 5 * m, 2 * m}, false, node, {overset, overset, overset, overset, symm, symm}}, 2);
    Link();
}

SquareRingHost::SquareRingHost(int m, double angle) {
    const auto outline = [](double theta) {
        return 1.2 / std::max(std::fabs(std::cos(theta)), std::fabs(std::sin(theta)));
    };
    Add(Channel(m), 1);
    Add(Ring(m, Radians(angle), outline), 2);
    Link();
}

SphereShellHost::SphereShellHost(int m) {
    const double h = 1.0 / m;
    Add({{6 * m, 6 * m, 6 * m},
         false,
         [h](int i, int j, int k) {
             return Point{-3.0 + i * h, -3.0 + j * h, -3.0 + k * h};
         },
         {inlet, outlet, wall, wall, wall, wall}},
        1);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (double end : {-1.0, 1.0}) {
            // Equal angles between the nodes of a patch, seen from the center of the sphere.
            const auto node = [=](int i, int j, int k) {
                const double u = std::tan(0.25 * pi * (i * h - 1.0));
                const double v = std::tan(0.25 * pi * (j * h - 1.0));
                const double share = (std::exp(1.5 * k / m) - 1.0) / (std::exp(1.5) - 1.0);
                const double r = (0.5 + share) / std::sqrt(1.0 + u * u + v * v);
                Point P = {0.0137, 0.0071, 0.0043};
                P[axis] += r * end;
                P[(axis + 1) % 3] += r * u;
                P[(axis + 2) % 3] += r * v;
                return P;
            };
            Add({{2 * m, 2 * m, m}, false, node, {open, open, open, open, wall, overset}}, 2);
        }
    }
    Link();
}
