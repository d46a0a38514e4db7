#include "reference_host/physics/manufactured.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double k = 1.3;  // wave number: about one wave over the length 4 of the meshes

double WaveX(const Vec3& at) {
    return std::sin(k * at[0] + 0.3);
}
double WaveXSlope(const Vec3& at) {
    return k * std::cos(k * at[0] + 0.3);
}
double WaveY(const Vec3& at) {
    return std::cos(k * at[1] - 0.2);
}
double WaveYSlope(const Vec3& at) {
    return -k * std::sin(k * at[1] - 0.2);
}

/// The wave with wave number `kz` in z. The wave is plane if kz is 0.
AnalyticField Wave(double kz) {
    return {
        [kz](const Vec3& at) { return WaveX(at) * WaveY(at) * std::cos(kz * at[2]) + 0.2 * at[0]; },
        [kz](const Vec3& at) {
            const double waveZ = std::cos(kz * at[2]);
            return Vec3(WaveXSlope(at) * WaveY(at) * waveZ + 0.2,
                        WaveX(at) * WaveYSlope(at) * waveZ,
                        -kz * WaveX(at) * WaveY(at) * std::sin(kz * at[2]));
        },
        [kz](const Vec3& at) {
            return -(2.0 * k * k + kz * kz) * WaveX(at) * WaveY(at) * std::cos(kz * at[2]);
        }};
}

}  // namespace

AnalyticField WaveField() {
    return Wave(0.0);
}

AnalyticField WaveField(double thickness) {
    return Wave(pi / thickness);
}

AnalyticField LinearField(const Vec3& slope, double offset) {
    return {[=](const Vec3& at) { return offset + slope.dot(at); },
            [=](const Vec3&) { return slope; }, [](const Vec3&) { return 0.0; }};
}

AnalyticField WaveFor(const Mesh& mesh) {
    if (mesh.IsQuasi2d()) {
        return WaveField();
    }
    double top = 0.0;
    for (int node = 1; node <= mesh.NodeCount(); ++node) {
        top = std::max(top, mesh.nodes[node][2]);
    }
    return WaveField(top);
}

ErrorNorms Norms(const Mesh& mesh, const OversetLink& link,
                 const std::function<double(int cell)>& errorOf, int cavity) {
    ErrorNorms norms;
    double squares = 0.0;
    double volume = 0.0;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (!link.IsActive(cell) || (cavity != 0 && mesh.cavity[cell] != cavity)) {
            continue;
        }
        const double error = errorOf(cell);
        squares += mesh.volume[cell] * error * error;
        volume += mesh.volume[cell];
        norms.max = std::max(norms.max, error);
    }
    norms.l2 = std::sqrt(squares / volume);
    return norms;
}

ErrorNorms Errors(const Mesh& mesh, const OversetLink& link, const std::vector<double>& phi,
                  const AnalyticField& exact, int cavity) {
    return Norms(
        mesh, link,
        [&](int cell) { return std::abs(phi[cell] - exact.value(mesh.cellCentre[cell])); }, cavity);
}

}  // namespace host
