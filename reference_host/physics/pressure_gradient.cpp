#include "reference_host/physics/pressure_gradient.h"

namespace host {

PressureGradient::PressureGradient(const StencilBuilder& builder_, const StencilRecords& records_,
                                   const Equation& equation_, const BoundaryConditions& conditions_)
    : builder(builder_),
      records(records_),
      equation(equation_),
      conditions(conditions_),
      atOverset(builder_.mesh.Faces(Boundary::Wall).size()) {
    for (int face = 1; face <= builder.mesh.FaceCount(Boundary::Wall); ++face) {
        if (IsOpen(Boundary::Wall, face)) {
            atOverset[face] = builder.AtOversetFace(face, /*cellShare=*/0.5);
        }
    }
}

bool PressureGradient::IsOpen(Boundary kind, int face) const {
    return !builder.IsSilent(kind, face) &&
           conditions.At(kind, face).kind != GhostCondition::Kind::ZeroGradient;
}

void PressureGradient::FillGhosts(std::vector<double>& p) const {
    const Mesh& mesh = builder.mesh;
    equation.FillGhosts(conditions, p);
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            const BoundaryFace& geometry = mesh.Faces(kind)[face];
            if (builder.link.IsActive(geometry.cell) && !IsOpen(kind, face)) {
                const Vec3 d = geometry.centre - mesh.cellCentre[geometry.cell];
                p[builder.objects.Ghost(kind, face)] =
                    p[geometry.cell] + builder.Gradient(geometry.cell).Apply(p).dot(d);
            }
        }
    }
}

double PressureGradient::AtInner(int face, const std::vector<double>& p) const {
    const CMAFVMFaceData& record = records.Inner(face);
    return Apply(record.idFace, record.coefFace, p);
}

double PressureGradient::AtBoundary(Boundary kind, int face, const std::vector<double>& p) const {
    return kind == Boundary::Wall && !atOverset[face].Terms().empty()
               ? atOverset[face].Apply(p)
               : p[builder.objects.Ghost(kind, face)];
}

std::vector<Vec3> PressureGradient::Of(const std::vector<double>& p) const {
    const Mesh& mesh = builder.mesh;
    std::vector<Vec3> gradient(mesh.CellCount() + 1, Vec3::Zero());
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const FaceSide side = builder.link.Side(face);
        if (side == FaceSide::None) {
            continue;
        }
        const Vec3 force = AtInner(face, p) * mesh.innerFaces[face].area;
        if (side != FaceSide::DonorIsFirst) {
            gradient[builder.link.First(face)] += force;
        }
        if (side != FaceSide::DonorIsSecond) {
            gradient[builder.link.Second(face)] -= force;
        }
    }
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            const BoundaryFace& geometry = mesh.Faces(kind)[face];
            if (builder.link.IsActive(geometry.cell)) {
                gradient[geometry.cell] += AtBoundary(kind, face, p) * geometry.area;
            }
        }
    }
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        gradient[cell] /= mesh.volume[cell];
    }
    return gradient;
}

}  // namespace host
