#include "reference_host/discretisation/face_flux.h"

namespace host {

const double* BoundaryFlux(const CMAFVMFaceVariableAll& flux, Boundary kind) {
    switch (kind) {
        case Boundary::Inlet:
            return flux.inlet;
        case Boundary::Outlet:
            return flux.outlet;
        case Boundary::Wall:
            return flux.wall;
        default:
            return flux.symm;
    }
}

double* BoundaryFlux(CMAFVMFaceVariableAll& flux, Boundary kind) {
    return const_cast<double*>(BoundaryFlux(static_cast<const CMAFVMFaceVariableAll&>(flux), kind));
}

void SetInnerFlux(CMAFVMFaceVariableAll& flux, int face, FaceSide side, double through) {
    const bool firstLive = side == FaceSide::Both || side == FaceSide::DonorIsSecond;
    const bool secondLive = side == FaceSide::Both || side == FaceSide::DonorIsFirst;
    flux.left[face] = firstLive ? through : 0.0;
    flux.right[face] = secondLive ? through : 0.0;
}

void FillConstantFlux(const StencilBuilder& builder, const Vec3& velocity,
                      CMAFVMFaceVariableAll& flux) {
    const Mesh& mesh = builder.mesh;
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        SetInnerFlux(flux, face, builder.link.Side(face), velocity.dot(mesh.innerFaces[face].area));
    }
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            BoundaryFlux(flux, kind)[face] =
                builder.IsSilent(kind, face) ? 0.0 : velocity.dot(mesh.Faces(kind)[face].area);
        }
    }
}

std::vector<double> NetOutflow(const Mesh& mesh, const OversetLink& link,
                               const CMAFVMFaceVariableAll& flux) {
    std::vector<double> net(mesh.CellCount() + 1, 0.0);
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        net[link.First(face)] += flux.left[face];
        net[link.Second(face)] -= flux.right[face];
    }
    for (const Boundary kind : allBoundaries) {
        const double* through = BoundaryFlux(flux, kind);
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            net[mesh.Faces(kind)[face].cell] += through[face];
        }
    }
    return net;
}

}  // namespace host
