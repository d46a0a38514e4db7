#ifndef KVX3D_HOST_CHECKS_POINT_H
#define KVX3D_HOST_CHECKS_POINT_H

#include <cmath>

namespace kvx3d::checks {

/// A point or vector in space, in the host's units.
struct Point {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

inline Point operator+(const Point& a, const Point& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

inline Point operator-(const Point& a, const Point& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline Point operator-(const Point& a) {
    return {-a.x, -a.y, -a.z};
}

inline Point operator*(double factor, const Point& a) {
    return {factor * a.x, factor * a.y, factor * a.z};
}

/// Dot product, summed in the order x, y, z.
inline double Dot(const Point& a, const Point& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Point Cross(const Point& a, const Point& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double Norm(const Point& a) {
    return std::sqrt(Dot(a, a));
}

/// The vector of length 1 in the direction of `a`; `a` must not vanish.
inline Point Unit(const Point& a) {
    const double length = Norm(a);
    return {a.x / length, a.y / length, a.z / length};
}

}  // namespace kvx3d::checks

#endif
