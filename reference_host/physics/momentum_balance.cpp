#include "reference_host/physics/momentum_balance.h"

#include <cmath>

#include "reference_host/link/body.h"
#include "reference_host/physics/forces.h"
#include "reference_host/physics/momentum_flux.h"

namespace host {

BodyForces ForcesFromMomentumBalance(const FlowSolver& flow) {
    const Momentum& momentum = flow.MomentumPart();
    const Mesh& mesh = momentum.builder.mesh;
    const OversetLink& link = momentum.builder.link;
    const MomentumFlux through(momentum, flow.PressurePart(), flow.Fields(), flow.Flux());
    Vec3 overset = Vec3::Zero();
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
    if (link.IsOverset()) {
        forces.overset = overset;
        forces.hole = through.IntoHole(flow.Hole()) + flow.Hole().Force();
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
    return -flow.Hole().NetFlux(flow.Flux()) / stream;
}

}  // namespace host
