#include "reference_host/physics/hole_balance.h"

#include "reference_host/discretisation/face_flux.h"

namespace host {

namespace {

/// Part of the missing force that an iteration adds. The flow answers with a delay, and with all of
/// it the force would oscillate on some meshes.
constexpr double forceGain = 0.3;

}  // namespace

HoleBalance::HoleBalance(const Mesh& mesh, const OversetLink& link_) : link(link_) {
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const FaceSide side = link.Side(face);
        if (side != FaceSide::DonorIsFirst && side != FaceSide::DonorIsSecond) {
            continue;
        }
        const bool activeIsLeft = side == FaceSide::DonorIsSecond;
        faces.push_back({face, activeIsLeft ? link.First(face) : link.Second(face), activeIsLeft,
                         mesh.innerFaces[face].area.norm()});
        area += faces.back().area;
    }
}

double HoleBalance::NetFlux(const CMAFVMFaceVariableAll& flux) const {
    double net = 0.0;
    for (const Face& hole : faces) {
        net += hole.activeIsLeft ? flux.left[hole.face] : -flux.right[hole.face];
    }
    return net;
}

void HoleBalance::Add(double perArea, CMAFVMFaceVariableAll& flux) const {
    for (const Face& hole : faces) {
        const double out = perArea * hole.area;
        const double now = hole.activeIsLeft ? flux.left[hole.face] : flux.right[hole.face];
        SetInnerFlux(flux, hole.face, link.Side(hole.face),
                     hole.activeIsLeft ? now + out : now - out);
    }
}

void HoleBalance::CorrectFluxes(CMAFVMFaceVariableAll& flux) const {
    Add(fluxPerArea, flux);
}

void HoleBalance::AddFlux(double perArea, CMAFVMFaceVariableAll& flux) {
    fluxPerArea += perArea;
    Add(perArea, flux);
}

void HoleBalance::SubtractForce(int component, std::vector<double>& rhs) const {
    for (const Face& hole : faces) {
        rhs[hole.cell] -= forcePerArea[component] * hole.area;
    }
}

void HoleBalance::UpdateMomentum(const Vec3& onBody, const Vec3& onHole) {
    if (!faces.empty()) {
        forcePerArea += forceGain * ((onBody - onHole) / area - forcePerArea);
    }
}

}  // namespace host
