#include "reference_host/physics/momentum_balance.h"

#include <cmath>

#include "reference_host/discretisation/convected_value.h"
#include "reference_host/discretisation/face_flux.h"
#include "reference_host/link/body.h"
#include "reference_host/physics/forces.h"

namespace host {

namespace {

bool IsOnHoleBoundary(const OversetLink& link, int face) {
    return link.Side(face) == FaceSide::DonorIsSecond || link.Side(face) == FaceSide::DonorIsFirst;
}

/// Volume flux through a hole-boundary face, out of the active cell.
double FluxIntoHole(const OversetLink& link, const CMAFVMFaceVariableAll& flux, int face) {
    return link.Side(face) == FaceSide::DonorIsFirst ? -flux.right[face] : flux.left[face];
}

}  // namespace

MomentumFlux::MomentumFlux(const Momentum& momentum_, const StencilRecords& pressureRecords_,
                           const FlowFields& fields_, const CMAFVMFaceVariableAll& flux_)
    : momentum(momentum_), pressureRecords(pressureRecords_), fields(fields_), flux(flux_) {}

Vec3 MomentumFlux::Inner(int face) const {
    const StencilBuilder& builder = momentum.builder;
    const CMAFVMFaceData& record = momentum.records.Inner(face);
    const CMAFVMFaceData& pressureRecord = pressureRecords.Inner(face);
    const double through =
        builder.link.Side(face) == FaceSide::DonorIsFirst ? flux.right[face] : flux.left[face];
    Vec3 sum = Apply(pressureRecord.idFace, pressureRecord.coefFace, fields.pressure) *
               builder.mesh.innerFaces[face].area;
    for (int component = 0; component < momentum.Dimensions(); ++component) {
        const std::vector<double>& u = fields.velocity[component];
        sum[component] +=
            through * ConvectedValue(momentum.ConvectionScheme(), record, builder.link.First(face),
                                     builder.link.Second(face), through, u) -
            momentum.mu * Apply(record.idNormal, record.coefNormal, u);
    }
    return sum;
}

Vec3 MomentumFlux::IntoHole(int face) const {
    return momentum.builder.link.Side(face) == FaceSide::DonorIsFirst ? Vec3(-Inner(face))
                                                                      : Inner(face);
}

Vec3 MomentumFlux::AtSymmetry(const BoundaryFace& plane) const {
    Vec3 stress;
    for (int component = 0; component < 3; ++component) {
        stress[component] =
            momentum.NormalStressAtSymmetry(plane, fields.Velocity(plane.cell), component);
    }
    return -stress;
}

Vec3 MomentumFlux::AtBoundary(Boundary kind, int face) const {
    const StencilBuilder& builder = momentum.builder;
    const BoundaryFace& geometry = builder.mesh.Faces(kind)[face];
    if (!builder.link.IsActive(geometry.cell)) {
        return Vec3::Zero();
    }
    const int ghost = builder.objects.Ghost(kind, face);
    Vec3 sum = fields.pressure[ghost] * geometry.area;
    if (kind == Boundary::Symmetry) {
        return sum + AtSymmetry(geometry);
    }
    const CMAFVMFaceData& record = momentum.records.AtBoundary(kind, face);
    const double through = BoundaryFlux(flux, kind)[face];
    const double mu = momentum.IsViscousAt(kind, face) ? momentum.mu : 0.0;
    for (int component = 0; component < momentum.Dimensions(); ++component) {
        const std::vector<double>& u = fields.velocity[component];
        sum[component] += through * ConvectedBoundaryValue(momentum.ConvectionScheme(), record,
                                                           geometry.cell, ghost, through, u) -
                          mu * Apply(record.idNormal, record.coefNormal, u);
    }
    return sum;
}

BodyForces ForcesFromMomentumBalance(const FlowSolver& flow) {
    const Momentum& momentum = flow.MomentumPart();
    const Mesh& mesh = momentum.builder.mesh;
    const OversetLink& link = momentum.builder.link;
    const MomentumFlux through(momentum, flow.PressurePart().records, flow.Fields(), flow.Flux());
    Vec3 overset = Vec3::Zero();
    Vec3 hole = Vec3::Zero();
    BodyForces forces;
    forces.body = ForceOnBody(momentum, flow.Fields());
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            if (!IsBody(mesh, link, kind, face)) {
                const bool ofComponent =
                    link.IsOverset() && mesh.cavity[mesh.Faces(kind)[face].cell] != 1;
                (ofComponent ? overset : forces.outer) -= through.AtBoundary(kind, face);
            }
        }
    }
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        if (IsOnHoleBoundary(link, face)) {
            hole += through.IntoHole(face);
        }
    }
    if (link.IsOverset()) {
        forces.overset = overset;
        forces.hole = hole;
    }
    return forces;
}

Vec3 MeanInflowVelocity(const FlowSolver& flow) {
    const StencilBuilder& builder = flow.MomentumPart().builder;
    Vec3 sum = Vec3::Zero();
    double area = 0.0;
    for (int face = 1; face <= builder.mesh.FaceCount(Boundary::Inlet); ++face) {
        const double faceArea = builder.mesh.Faces(Boundary::Inlet)[face].area.norm();
        sum += faceArea * flow.Fields().Velocity(builder.objects.Ghost(Boundary::Inlet, face));
        area += faceArea;
    }
    return area > 0.0 ? Vec3(sum / area) : sum;
}

double FrontalStream(const FlowSolver& flow) {
    const StencilBuilder& builder = flow.MomentumPart().builder;
    const Vec3 velocity = MeanInflowVelocity(flow);
    double both = 0.0;  // through the front and the back of the body
    for (const int face : BodyFaces(builder.mesh, builder.link)) {
        both += std::abs(builder.mesh.Faces(Boundary::Wall)[face].area.dot(velocity));
    }
    return 0.5 * both;
}

std::optional<double> InterfaceMassDefect(const FlowSolver& flow) {
    const StencilBuilder& builder = flow.MomentumPart().builder;
    const double stream = FrontalStream(flow);
    if (!builder.link.IsOverset() || stream == 0.0) {
        return std::nullopt;
    }
    double intoHole = 0.0;
    for (int face = 1; face <= builder.mesh.InnerFaceCount(); ++face) {
        if (IsOnHoleBoundary(builder.link, face)) {
            intoHole += FluxIntoHole(builder.link, flow.Flux(), face);
        }
    }
    return -intoHole / stream;
}

}  // namespace host
