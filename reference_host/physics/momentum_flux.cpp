#include "reference_host/physics/momentum_flux.h"

#include "reference_host/discretisation/convected_value.h"
#include "reference_host/discretisation/face_flux.h"

namespace host {

MomentumFlux::MomentumFlux(const Momentum& momentum_, const PressureCorrection& pressure_,
                           const FlowFields& fields_, const CMAFVMFaceVariableAll& flux_)
    : momentum(momentum_), pressure(pressure_), fields(fields_), flux(flux_) {}

Vec3 MomentumFlux::Inner(int face) const {
    const StencilBuilder& builder = momentum.builder;
    const CMAFVMFaceData& record = momentum.records.Inner(face);
    const double through =
        builder.link.Side(face) == FaceSide::DonorIsFirst ? flux.right[face] : flux.left[face];
    Vec3 sum = pressure.Faces().AtInner(face, fields.pressure) * builder.mesh.innerFaces[face].area;
    for (int component = 0; component < momentum.Dimensions(); ++component) {
        const std::vector<double>& u = fields.velocity[component];
        sum[component] +=
            through * ConvectedValue(momentum.ConvectionScheme(), record, builder.link.First(face),
                                     builder.link.Second(face), through, u) -
            momentum.mu * Apply(record.idNormal, record.coefNormal, u);
    }
    return sum;
}

Vec3 MomentumFlux::IntoHole(const HoleBalance& hole) const {
    Vec3 sum = Vec3::Zero();
    for (const HoleBalance::Face& face : hole.Faces()) {
        sum += face.activeIsLeft ? Inner(face.face) : Vec3(-Inner(face.face));
    }
    return sum;
}

Vec3 MomentumFlux::AtBoundary(Boundary kind, int face) const {
    const StencilBuilder& builder = momentum.builder;
    const BoundaryFace& geometry = builder.mesh.Faces(kind)[face];
    if (!builder.link.IsActive(geometry.cell)) {
        return Vec3::Zero();
    }
    const int ghost = builder.objects.Ghost(kind, face);
    Vec3 sum = pressure.Faces().AtBoundary(kind, face, fields.pressure) * geometry.area;
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

}  // namespace host
