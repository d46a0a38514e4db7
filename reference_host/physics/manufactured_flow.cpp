#include "reference_host/physics/manufactured_flow.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr double pi = 3.14159265358979323846;

WaveProduct Negative(WaveProduct product) {
    product.amplitude = -product.amplitude;
    return product;
}

}  // namespace

double WaveProduct::At(const Vec3& point) const {
    double product = amplitude;
    for (int axis = 0; axis < 3; ++axis) {
        product *= std::sin(wave[axis] * point[axis] + phase[axis]);
    }
    return product;
}

WaveProduct WaveProduct::Derivative(int axis) const {
    WaveProduct derivative = *this;
    derivative.amplitude *= wave[axis];
    derivative.phase[axis] += pi / 2.0;
    return derivative;
}

WaveProduct WaveProduct::Laplacian() const {
    return {-amplitude * wave.squaredNorm(), wave, phase};
}

// The wave numbers give about one wave over the length 4 of the meshes. The mean velocity is larger
// than the waves, so that fluid enters through the whole inlet.
ManufacturedFlow::ManufacturedFlow(std::optional<double> thickness) : mean(1.0, 0.6, 0.0) {
    const double kz = thickness ? pi / *thickness : 0.0;
    const double cosine = pi / 2.0;  // phase
    const WaveProduct potentialZ = {0.4, {1.3, 1.1, kz}, {0.3, 1.2, cosine}};
    waves[0] = {potentialZ.Derivative(1)};
    waves[1] = {Negative(potentialZ.Derivative(0))};
    if (thickness) {
        const WaveProduct potentialY = {0.3 / kz, {0.9, 1.4, kz}, {0.8, 0.5, 0.0}};
        waves[0].push_back(Negative(potentialY.Derivative(2)));
        waves[2] = {potentialY.Derivative(0)};
    }
    pressure = {0.6, {1.2, 1.5, kz}, {-0.4, 0.7, cosine}};
}

Vec3 ManufacturedFlow::Velocity(const Vec3& at) const {
    Vec3 velocity = mean;
    for (int component = 0; component < 3; ++component) {
        for (const WaveProduct& wave : waves[component]) {
            velocity[component] += wave.At(at);
        }
    }
    return velocity;
}

Eigen::Matrix3d ManufacturedFlow::VelocityGradient(const Vec3& at) const {
    Eigen::Matrix3d gradient = Eigen::Matrix3d::Zero();
    for (int component = 0; component < 3; ++component) {
        for (const WaveProduct& wave : waves[component]) {
            for (int axis = 0; axis < 3; ++axis) {
                gradient(component, axis) += wave.Derivative(axis).At(at);
            }
        }
    }
    return gradient;
}

Vec3 ManufacturedFlow::Force(const Vec3& at, double mu) const {
    Vec3 force = VelocityGradient(at) * Velocity(at);
    for (int component = 0; component < 3; ++component) {
        force[component] += pressure.Derivative(component).At(at);
        for (const WaveProduct& wave : waves[component]) {
            force[component] -= mu * wave.Laplacian().At(at);
        }
    }
    return force;
}

Vec3 ManufacturedFlow::Traction(const Vec3& at, const Vec3& normal, double mu) const {
    return Pressure(at) * normal - mu * (VelocityGradient(at) * normal);
}

ManufacturedFlow ManufacturedFlowFor(const Mesh& mesh) {
    return mesh.IsQuasi2d() ? ManufacturedFlow() : ManufacturedFlow(mesh.Depth());
}

}  // namespace host
