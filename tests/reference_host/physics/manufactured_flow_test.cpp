#include "reference_host/physics/manufactured_flow.h"

#include <gtest/gtest.h>

#include <cmath>

#include "reference_host/physics/face_quadrature.h"
#include "reference_host/physics/flow_errors.h"
#include "reference_host/physics/flow_solver.h"
#include "tests/reference_host/discretisation/mesh_case.h"
#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/support/output_capture.h"

namespace {

using host::ManufacturedFlow;
using host::Vec3;

constexpr double thickness = 0.8;
constexpr double mu = 0.05;
const std::vector<Vec3> points = {{0.3, 0.2, 0.1}, {1.7, 3.1, 0.5}, {3.9, 2.2, 0.7}};

/// The plane flow and the three-dimensional one.
class ManufacturedFlowIn : public testing::TestWithParam<bool> {
protected:
    const ManufacturedFlow flow = GetParam() ? ManufacturedFlow(thickness) : ManufacturedFlow();
};

/// Central difference of a function of a point, with an error of about 1e-10.
template <class Function>
auto Difference(const Function& f, const Vec3& at, int axis) {
    const double step = 1e-5;
    const Vec3 shift = step * Vec3::Unit(axis);
    using Value = decltype(f(at));
    return Value((f(at + shift) - f(at - shift)) / (2.0 * step));
}

TEST_P(ManufacturedFlowIn, VelocityGradientIsThatOfTheVelocity) {
    const auto velocity = [this](const Vec3& at) { return flow.Velocity(at); };
    for (const Vec3& at : points) {
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_LT((flow.VelocityGradient(at).col(axis) - Difference(velocity, at, axis)).norm(),
                      1e-9);
        }
    }
}

TEST_P(ManufacturedFlowIn, VelocityIsFreeOfDivergence) {
    for (const Vec3& at : points) {
        EXPECT_GT(flow.VelocityGradient(at).norm(), 0.1);
        EXPECT_NEAR(flow.VelocityGradient(at).trace(), 0.0, 1e-14);
    }
}

TEST_P(ManufacturedFlowIn, ForceBalancesTheMomentum) {
    for (const Vec3& at : points) {
        // div(mu grad u - p I) - (u . grad) u by finite differences of the closed forms.
        Vec3 balance = flow.VelocityGradient(at) * flow.Velocity(at);
        for (int axis = 0; axis < 3; ++axis) {
            const auto pressure = [this](const Vec3& x) { return flow.Pressure(x); };
            const auto column = [&](const Vec3& x) {
                return Vec3(flow.VelocityGradient(x).col(axis));
            };
            balance[axis] += Difference(pressure, at, axis);
            balance -= mu * Difference(column, at, axis);
        }
        EXPECT_LT((flow.Force(at, mu) - balance).norm(), 1e-9);
    }
}

TEST_P(ManufacturedFlowIn, TractionIsPressureLessViscousStress) {
    const Vec3 at = points[1];
    const Vec3 normal = Vec3(1.0, -2.0, 0.0).normalized();
    const Vec3 expected = flow.Pressure(at) * normal - mu * flow.VelocityGradient(at) * normal;

    EXPECT_LT((flow.Traction(at, normal, mu) - expected).norm(), 1e-15);
}

INSTANTIATE_TEST_SUITE_P(Dimensions, ManufacturedFlowIn, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& dimensions) {
                             return dimensions.param ? "Space" : "Plane";
                         });

TEST(ManufacturedFlow, HasSymmetryPlanesAtBothEndsOfItsThickness) {
    const ManufacturedFlow flow(thickness);
    for (const double z : {0.0, thickness}) {
        const Vec3 at(1.2, 0.7, z);
        const Vec3 normal = flow.VelocityGradient(at).col(2);
        EXPECT_NEAR(flow.Velocity(at).z(), 0.0, 1e-15);
        EXPECT_NEAR(normal.x(), 0.0, 1e-14);
        EXPECT_NEAR(normal.y(), 0.0, 1e-14);
        EXPECT_NEAR(flow.Pressure(at + Vec3(0, 0, 1e-4)), flow.Pressure(at - Vec3(0, 0, 1e-4)),
                    1e-14);
    }
    EXPECT_GT(std::abs(flow.Velocity({1.2, 0.7, 0.3}).z()), 1e-2);
}

TEST(ManufacturedFlow, FitsTheDepthOfTheMesh) {
    const MeshCase plane({"Plane", boxFile, {{"n", 5}, {"kind", 1}}});
    const MeshCase layers({"Layers", boxFile, {{"n", 5}, {"kind", 1}, {"nz", 4}}});
    const Vec3 at(1.2, 0.7, 0.4);

    EXPECT_EQ(host::ManufacturedFlowFor(plane.mesh).Velocity(at), ManufacturedFlow().Velocity(at));
    EXPECT_EQ(host::ManufacturedFlowFor(layers.mesh).Velocity(at),
              ManufacturedFlow(layers.mesh.Depth()).Velocity(at));
}

TEST(FaceQuadrature, IsExactForPolynomialsOfDegreeFive) {
    host::Mesh mesh;
    mesh.nodes = {Vec3::Zero(), {0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}};
    const auto integral = [&](const auto& f) {
        double sum = 0.0;
        for (const host::FacePoint& point :
             host::QuadraturePoints(mesh, {1, 2, 3, 4}, Vec3(0, 0, -1))) {
            sum += f(point.at) * point.area.z();
        }
        return sum;
    };

    // The area vector points against z although the nodes are listed the other way round.
    EXPECT_NEAR(integral([](const Vec3&) { return 1.0; }), -2.0, 1e-14);
    EXPECT_NEAR(integral([](const Vec3& x) { return std::pow(x.x(), 5); }), -64.0 / 6.0, 1e-12);
    EXPECT_NEAR(integral([](const Vec3& x) { return std::pow(x.x(), 2) * std::pow(x.y(), 3); }),
                -8.0 / 12.0, 1e-13);
}

TEST(ManufacturedForce, IsMeasuredOnTheOutletOfAMeshWithoutWallsAndInlet) {
    OutputCapture quiet;
    const host::Mesh mesh = ReadEdited(
        boxGeo, {{"n", 5}, {"kind", 3}},
        {{"Physical Surface(\"inlet\", 11)    = {cin[]};", ""}, {"{cout[]}", "{cin[], cout[]}"}});
    host::HostObjects objects(mesh, ".");
    const host::OversetLink link(mesh, objects);
    const host::ManufacturedFlow exact = host::ManufacturedFlowFor(mesh);
    host::FlowSettings settings;
    settings.mu = 0.05;
    settings.inlet = [&](const host::Vec3& at) { return exact.Velocity(at); };
    settings.outlet = settings.inlet;

    const host::FlowSolver flow(mesh, objects, link, settings);

    // The pressure is still zero, and so the force is wrong by about its own size.
    EXPECT_GT(host::ForceError(exact, flow), 1e-3);
    EXPECT_LT(host::ForceError(exact, flow), 10.0);
}

}  // namespace
