#include "reference_host/physics/symmetry_planes.h"

#include <gtest/gtest.h>

#include <Eigen/Geometry>
#include <cmath>

#include "reference_host/discretisation/face_flux.h"
#include "reference_host/physics/momentum.h"
#include "tests/reference_host/mesh/mesh_files.h"
#include "tests/reference_host/physics/flow_case.h"

namespace {

using host::Boundary;
using host::FlowFields;
using host::Momentum;
using host::Scheme;
using host::Vec3;

constexpr double mu = 0.05;

/// A box of graded hexahedra that is turned about the x axis by an angle in degrees, with an inlet
/// on four sides and symmetry planes on the lower two, which are across y and z at angle 0.
std::string CornerGeo(double angle) {
    return "a = " + std::to_string(angle) +
           " * Pi / 180;\n"
           "Point(1) = {0, 0, 0}; Point(2) = {1, 0, 0};\n"
           "Point(3) = {1, Cos(a), Sin(a)}; Point(4) = {0, Cos(a), Sin(a)};\n"
           "Line(1) = {1, 2}; Line(2) = {2, 3}; Line(3) = {4, 3}; Line(4) = {1, 4};\n"
           "Transfinite Curve{1, 3} = 6;\n"
           "Transfinite Curve{2, 4} = 6 Using Progression 1.2;\n"
           "Curve Loop(1) = {1, 2, -3, -4}; Plane Surface(1) = {1};\n"
           "Transfinite Surface{1}; Recombine Surface{1};\n"
           "e[] = Extrude{0, -Sin(a), Cos(a)} { Surface{1}; Layers{5}; Recombine; };\n"
           "Physical Volume(\"background\", 1) = {e[1]};\n"
           "Physical Surface(\"inlet\", 11) = {e[0], e[3], e[4], e[5]};\n"
           "Physical Surface(\"symmetry\", 14) = {1, e[2]};\n";
}

/// The flow (c - 3 x, y, 2 z) in the axes of the turned box. It is free of divergence, its shear
/// stresses vanish, and its component normal to each symmetry plane is zero there.
struct CornerFlow {
    CornerFlow(double angle, Scheme scheme)
        : mesh(ReadText(CornerGeo(angle))),
          objects(mesh, "."),
          link(mesh, objects),
          turn(Eigen::AngleAxisd(angle * std::acos(-1.0) / 180.0, Vec3::UnitX())),
          conditions(mesh, link, {[this](const Vec3& at) { return Velocity(at); }, {}, {}}),
          momentum(mesh, objects, link, conditions, scheme, mu, 0.8),
          flux(&momentum.records.gv, /*shared=*/false) {
        for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
            const host::InnerFace& inner = mesh.innerFaces[face];
            host::SetInnerFlux(flux, face, host::FaceSide::Both,
                               inner.area.dot(Velocity(inner.centre)));
        }
        for (const Boundary kind : host::allBoundaries) {
            for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
                const host::BoundaryFace& outer = mesh.Faces(kind)[face];
                host::BoundaryFlux(flux, kind)[face] =
                    kind == Boundary::Symmetry ? 0.0 : outer.area.dot(Velocity(outer.centre));
            }
        }
    }

    Vec3 Velocity(const Vec3& at) const {
        return turn * (slopes.cwiseProduct(turn.inverse() * at) + start);
    }
    /// -(u . grad) u
    Vec3 PressureGradient(const Vec3& at) const {
        return -(turn * slopes.cwiseProduct(turn.inverse() * Velocity(at)));
    }

    /// Largest change of the exact velocity by `times` solutions of the momentum equations with the
    /// exact fluxes and the exact pressure.
    double ChangeOfExactFlow(int times) {
        FlowFields fields(objects.CellAndGhostCount());
        std::vector<Vec3> gradient(mesh.CellCount() + 1, Vec3::Zero());
        for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
            const Vec3 exact = Velocity(mesh.cellCentre[cell]);
            for (int component = 0; component < 3; ++component) {
                fields.velocity[component][cell] = exact[component];
            }
            gradient[cell] = PressureGradient(mesh.cellCentre[cell]);
        }
        momentum.FillGhosts(fields);
        momentum.equation.solver.SetTolerance(1e-13);
        for (int k = 0; k < times; ++k) {
            momentum.Assemble(flux);
            momentum.Solve(gradient, host::HoleBalance(mesh, link), fields);
        }
        return LargestVelocityError(mesh, fields, [this](const Vec3& at) { return Velocity(at); });
    }

    const Vec3 slopes = {-3.0, 1.0, 2.0};
    const Vec3 start = {4.0, 0.0, 0.0};
    const host::Mesh mesh;
    host::HostObjects objects;
    host::OversetLink link;
    const Eigen::Quaterniond turn;
    const host::FlowConditions conditions;
    Momentum momentum;
    CMAFVMFaceVariableAll flux;
};

class FlowAlongTwoSymmetryPlanes : public testing::TestWithParam<Scheme> {};

TEST_P(FlowAlongTwoSymmetryPlanes, IsExactIfTheVelocityIsLinear) {
    for (const double angle : {0.0, 90.0, 180.0, 30.0}) {
        CornerFlow corner(angle, GetParam());

        ASSERT_EQ(corner.mesh.FaceCount(Boundary::Symmetry), 50);
        EXPECT_LT(corner.ChangeOfExactFlow(10), 1e-9) << angle << " degrees";
    }
}

INSTANTIATE_TEST_SUITE_P(Schemes, FlowAlongTwoSymmetryPlanes,
                         testing::Values(Scheme::LinearUpwind, Scheme::Central, Scheme::Quick));

}  // namespace
