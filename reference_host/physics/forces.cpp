#include "reference_host/physics/forces.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "reference_host/link/body.h"

namespace host {

namespace {

/// Pressure on a wall face and distance of the face from the line through the center of the body.
struct Sample {
    double distance = 0.0;
    double pressure = 0.0;
};

Vec3 CentreOf(const Mesh& mesh, const std::vector<int>& bodyFaces) {
    Vec3 sum = Vec3::Zero();
    double area = 0.0;
    for (const int face : bodyFaces) {
        const BoundaryFace& wall = mesh.Faces(Boundary::Wall)[face];
        sum += wall.area.norm() * wall.centre;
        area += wall.area.norm();
    }
    return sum / area;
}

/// Removes the samples at the smallest distance from the line and returns their mean.
Sample TakeRing(std::vector<Sample>& ascending) {
    constexpr double sameDistance = 1e-6;  // much smaller than a face, much larger than rounding
    if (ascending.empty()) {
        throw std::runtime_error("the body has too few faces for its stagnation pressures");
    }
    const double limit = ascending.front().distance + sameDistance;
    const auto end = std::find_if(ascending.begin(), ascending.end(),
                                  [&](const Sample& sample) { return sample.distance > limit; });
    Sample mean;
    for (auto sample = ascending.begin(); sample != end; ++sample) {
        mean.distance += sample->distance;
        mean.pressure += sample->pressure;
    }
    const auto count = static_cast<double>(end - ascending.begin());
    ascending.erase(ascending.begin(), end);
    return {mean.distance / count, mean.pressure / count};
}

double OnTheLine(std::vector<Sample>& samples) {
    std::sort(samples.begin(), samples.end(),
              [](const Sample& a, const Sample& b) { return a.distance < b.distance; });
    const Sample near = TakeRing(samples);
    const Sample next = TakeRing(samples);
    const double near2 = near.distance * near.distance;
    const double next2 = next.distance * next.distance;
    return near.pressure - (next.pressure - near.pressure) * near2 / (next2 - near2);
}

}  // namespace

Vec3 ForceOnBody(const Momentum& momentum, const FlowFields& fields) {
    const StencilBuilder& builder = momentum.builder;
    Vec3 force = Vec3::Zero();
    for (const int face : BodyFaces(builder.mesh, builder.link)) {
        const CMAFVMFaceData& record = momentum.records.AtBoundary(Boundary::Wall, face);
        const Vec3& area = builder.mesh.Faces(Boundary::Wall)[face].area;  // into the body
        force += fields.pressure[builder.objects.Ghost(Boundary::Wall, face)] * area;
        for (int component = 0; component < momentum.Dimensions(); ++component) {
            force[component] -=
                momentum.mu * Apply(record.idNormal, record.coefNormal, fields.velocity[component]);
        }
    }
    return force;
}

StagnationPressures PressuresAtStagnation(const StencilBuilder& builder,
                                          const std::vector<double>& pressure) {
    const std::vector<int> bodyFaces = BodyFaces(builder.mesh, builder.link);
    const Vec3 centre = CentreOf(builder.mesh, bodyFaces);
    std::vector<Sample> front;
    std::vector<Sample> back;
    for (const int face : bodyFaces) {
        const Vec3 at = builder.mesh.Faces(Boundary::Wall)[face].centre - centre;
        const int ghost = builder.objects.Ghost(Boundary::Wall, face);
        (at.x() < 0.0 ? front : back).push_back({std::abs(at.y()), pressure[ghost]});
    }
    return {OnTheLine(front), OnTheLine(back)};
}

}  // namespace host
