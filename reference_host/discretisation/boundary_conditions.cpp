#include "reference_host/discretisation/boundary_conditions.h"

namespace host {

BoundaryConditions::BoundaryConditions(const Mesh& mesh, const OversetLink& link,
                                       const Choice& choose) {
    for (const Boundary kind : allBoundaries) {
        auto& ofKind = conditions[static_cast<int>(kind)];
        ofKind.resize(mesh.FaceCount(kind) + 1);
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            const BoundaryFace& geometry = mesh.Faces(kind)[face];
            if (!link.IsActive(geometry.cell)) {
                ofKind[face] = {GhostCondition::Kind::Value, 0.0};
            } else if (kind == Boundary::Symmetry) {
                ofKind[face] = {GhostCondition::Kind::ZeroGradient, 0.0};
            } else if (geometry.oversetGroup > 0) {
                ofKind[face] = {GhostCondition::Kind::Mirror, 0.0};
            } else {
                ofKind[face] = choose(kind, face);
            }
        }
    }
}

void BoundaryConditions::SetGhostMu(const Mesh& mesh, HostObjects& objects,
                                    const std::vector<double>& cellMu) const {
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            const bool conducts = At(kind, face).kind != GhostCondition::Kind::ZeroGradient;
            objects.mu[objects.Ghost(kind, face)] =
                conducts ? cellMu[mesh.Faces(kind)[face].cell] : 0.0;
        }
    }
}

}  // namespace host
