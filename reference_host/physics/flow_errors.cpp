#include "reference_host/physics/flow_errors.h"

#include <cmath>
#include <stdexcept>

#include "reference_host/link/body.h"
#include "reference_host/physics/face_quadrature.h"

namespace host {

namespace {

/// The faces on which the force is measured.
std::pair<Boundary, std::vector<int>> FacesWithForce(const StencilBuilder& builder) {
    std::vector<int> faces = BodyFaces(builder.mesh, builder.link);
    if (!faces.empty()) {
        return {Boundary::Wall, faces};
    }
    for (const Boundary kind : {Boundary::Inlet, Boundary::Outlet}) {
        for (int face = 1; face <= builder.mesh.FaceCount(kind); ++face) {
            faces.push_back(face);
        }
        if (!faces.empty()) {
            return {kind, faces};
        }
    }
    throw std::runtime_error("a manufactured flow needs a wall, an inlet or an outlet");
}

Vec3 ExactForce(const ManufacturedFlow& exact, const Mesh& mesh, const BoundaryFace& face,
                double mu) {
    Vec3 force = Vec3::Zero();
    for (const FacePoint& point : QuadraturePoints(mesh, face.nodes, face.area)) {
        const double area = point.area.norm();
        force += area * exact.Traction(point.at, point.area / area, mu);
    }
    return force;
}

Vec3 ComputedForce(const FlowSolver& flow, Boundary kind, int face, double pressureShift) {
    const Momentum& momentum = flow.MomentumPart();
    const StencilBuilder& builder = momentum.builder;
    const CMAFVMFaceData& record = momentum.records.AtBoundary(kind, face);
    const double pressure = flow.Fields().pressure[builder.objects.Ghost(kind, face)];
    Vec3 force = (pressure - pressureShift) * builder.mesh.Faces(kind)[face].area;
    for (int component = 0; component < momentum.Dimensions(); ++component) {
        force[component] -= momentum.mu * Apply(record.idNormal, record.coefNormal,
                                                flow.Fields().velocity[component]);
    }
    return force;
}

/// Mean of p - exact over the active cells.
double PressureShift(const ManufacturedFlow& exact, const FlowSolver& flow) {
    const StencilBuilder& builder = flow.MomentumPart().builder;
    const Mesh& mesh = builder.mesh;
    double sum = 0.0;
    double volume = 0.0;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (builder.link.IsActive(cell)) {
            sum += mesh.volume[cell] *
                   (flow.Fields().pressure[cell] - exact.Pressure(mesh.cellCentre[cell]));
            volume += mesh.volume[cell];
        }
    }
    return sum / volume;
}

}  // namespace

FlowDifference DifferenceFrom(const ManufacturedFlow& exact, const FlowSolver& flow) {
    const StencilBuilder& builder = flow.MomentumPart().builder;
    const Mesh& mesh = builder.mesh;
    const double shift = PressureShift(exact, flow);
    FlowDifference difference;
    difference.velocity.assign(mesh.CellCount() + 1, Vec3::Zero());
    difference.pressure.assign(mesh.CellCount() + 1, 0.0);
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (builder.link.IsActive(cell)) {
            const Vec3& at = mesh.cellCentre[cell];
            difference.velocity[cell] = flow.Fields().Velocity(cell) - exact.Velocity(at);
            difference.pressure[cell] = flow.Fields().pressure[cell] - exact.Pressure(at) - shift;
        }
    }
    return difference;
}

FlowErrorNorms NormsOf(const FlowDifference& difference, const FlowSolver& flow, int cavity) {
    const StencilBuilder& builder = flow.MomentumPart().builder;
    const auto norms = [&](const auto& errorOf) {
        return Norms(builder.mesh, builder.link, errorOf, cavity);
    };
    return {norms([&](int cell) { return difference.velocity[cell].norm(); }),
            norms([&](int cell) { return std::abs(difference.pressure[cell]); })};
}

double ForceError(const ManufacturedFlow& exact, const FlowSolver& flow) {
    const Momentum& momentum = flow.MomentumPart();
    const Mesh& mesh = momentum.builder.mesh;
    const double shift = PressureShift(exact, flow);
    const auto [kind, faces] = FacesWithForce(momentum.builder);
    Vec3 difference = Vec3::Zero();
    double scale = 0.0;
    for (const int face : faces) {
        const Vec3 onFace = ExactForce(exact, mesh, mesh.Faces(kind)[face], momentum.mu);
        difference += ComputedForce(flow, kind, face, shift) - onFace;
        scale += onFace.norm();
    }
    return difference.norm() / scale;
}

double FluxError(const ManufacturedFlow& exact, const FlowSolver& flow) {
    const StencilBuilder& builder = flow.MomentumPart().builder;
    double squares = 0.0;
    double whole = 0.0;
    for (int face = 1; face <= builder.mesh.InnerFaceCount(); ++face) {
        const FaceSide side = builder.link.Side(face);
        if (side == FaceSide::None) {
            continue;
        }
        const InnerFace& geometry = builder.mesh.innerFaces[face];
        double through =
            side == FaceSide::DonorIsFirst ? flow.Flux().right[face] : flow.Flux().left[face];
        for (const FacePoint& point :
             QuadraturePoints(builder.mesh, geometry.nodes, geometry.area)) {
            through -= exact.Velocity(point.at).dot(point.area);
        }
        const double area = geometry.area.norm();
        squares += through * through / area;
        whole += area;
    }
    return std::sqrt(squares / whole);
}

}  // namespace host
