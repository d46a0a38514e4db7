#include "reference_host/physics/pressure_correction.h"

#include <algorithm>

#include "fvm_operators/mat_operator.h"
#include "reference_host/discretisation/face_flux.h"

namespace host {

PressureCorrection::PressureCorrection(const Mesh& mesh, HostObjects& objects_,
                                       const OversetLink& link, const FlowConditions& conditions_,
                                       double relaxation_, MatrixSolver matrixSolver)
    : builder(mesh, objects_, link, GradientSet::Pressure),
      records(builder, objects_, FarPoint::LinearUpwind),
      equation(builder, records, Reach::Normal, matrixSolver),
      objects(objects_),
      conditions(conditions_),
      relaxation(relaxation_),
      cellD(mesh.CellCount() + 1, 0.0),
      gradient(mesh.CellCount() + 1, Vec3::Zero()),
      correction(objects_.CellAndGhostCount() + 1, 0.0) {
    records.SetFaceMu(0.0);
}

bool PressureCorrection::IsOpen(Boundary kind, int face) const {
    return !builder.IsSilent(kind, face) &&
           conditions.pressure.At(kind, face).kind != GhostCondition::Kind::ZeroGradient;
}

void PressureCorrection::SetCoefficients(const std::vector<double>& momentumCoefficients) {
    const Mesh& mesh = builder.mesh;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (builder.link.IsActive(cell)) {
            cellD[cell] =
                relaxation * mesh.volume[cell] / ((1.0 - relaxation) * momentumCoefficients[cell]);
        }
    }
    double* faceD = records.gv.faceMu->left;
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const double first = cellD[builder.link.First(face)];
        const double second = cellD[builder.link.Second(face)];
        switch (builder.link.Side(face)) {
            case FaceSide::DonorIsSecond:
                faceD[face] = first;
                break;
            case FaceSide::DonorIsFirst:
                faceD[face] = second;
                break;
            default:
                faceD[face] = 0.5 * (first + second);
        }
    }
}

double PressureCorrection::NormalAt(const CMAFVMFaceData& record,
                                    const std::vector<double>& phi) const {
    return Apply(record.idNormal, record.coefNormal, phi);
}

double PressureCorrection::InnerFlux(int face, const FlowFields& fields,
                                     const StencilRecords& velocities) const {
    const Vec3& area = builder.mesh.innerFaces[face].area;
    const CMAFVMFaceData& record = velocities.Inner(face);
    double through = 0.0;
    for (int component = 0; component < 3; ++component) {
        if (area[component] != 0.0) {
            through +=
                area[component] * Apply(record.idFace, record.coefFace, fields.velocity[component]);
        }
    }
    const double E = (1.0 - relaxation) * records.gv.faceMu->left[face];
    const Vec3 mean =
        0.5 * (gradient[builder.link.First(face)] + gradient[builder.link.Second(face)]);
    return through - E * (NormalAt(records.Inner(face), fields.pressure) - area.dot(mean));
}

double PressureCorrection::BoundaryFluxAt(Boundary kind, int face, const FlowFields& fields) const {
    if (builder.IsSilent(kind, face)) {
        return 0.0;
    }
    const BoundaryFace& geometry = builder.mesh.Faces(kind)[face];
    const double through = geometry.area.dot(fields.Velocity(objects.Ghost(kind, face)));
    if (!IsOpen(kind, face)) {
        return through;
    }
    const double E = (1.0 - relaxation) * cellD[geometry.cell];
    const double normal = NormalAt(records.AtBoundary(kind, face), fields.pressure);
    return through - E * (normal - geometry.area.dot(gradient[geometry.cell]));
}

void PressureCorrection::PredictFluxes(const FlowFields& fields,
                                       const StencilRecords& velocityRecords,
                                       CMAFVMFaceVariableAll& flux) const {
    const Mesh& mesh = builder.mesh;
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const FaceSide side = builder.link.Side(face);
        if (side != FaceSide::None) {
            SetInnerFlux(flux, face, side, InnerFlux(face, fields, velocityRecords));
        }
    }
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            BoundaryFlux(flux, kind)[face] = BoundaryFluxAt(kind, face, fields);
        }
    }
}

LinearSolve PressureCorrection::Solve(const std::vector<double>& net) {
    conditions.pressure.SetGhostMu(builder.mesh, objects, cellD);
    equation.Clear();
    KVX_ART_FVM::CKVX_ART_MatOperator operators(&equation.matrix, &records.gv);
    operators.DiffusionOperator(-1.0);
    equation.CloseRows(conditions.pressure);

    std::vector<double> rhs(records.gv.NcAll + 1, 0.0);
    for (int cell = 1; cell <= builder.mesh.CellCount(); ++cell) {
        rhs[cell] = -net[cell];
    }
    equation.FillGhostRows(conditions.pressure, rhs);
    std::fill(correction.begin(), correction.end(), 0.0);
    return equation.solver.Solve(rhs, correction);
}

void PressureCorrection::Correct(FlowFields& fields, CMAFVMFaceVariableAll& flux) {
    const Mesh& mesh = builder.mesh;
    const double* faceD = records.gv.faceMu->left;
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        const FaceSide side = builder.link.Side(face);
        if (side == FaceSide::None) {
            continue;
        }
        const double predicted =
            side == FaceSide::DonorIsFirst ? flux.right[face] : flux.left[face];
        SetInnerFlux(flux, face, side,
                     predicted - faceD[face] * NormalAt(records.Inner(face), correction));
    }
    for (const Boundary kind : {Boundary::Outlet, Boundary::Wall}) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            if (IsOpen(kind, face)) {
                BoundaryFlux(flux, kind)[face] -=
                    cellD[mesh.Faces(kind)[face].cell] *
                    NormalAt(records.AtBoundary(kind, face), correction);
            }
        }
    }
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        const Vec3 change = cellD[cell] * builder.Gradient(cell).Apply(correction);
        for (int component = 0; component < 3; ++component) {
            fields.velocity[component][cell] -= change[component];
        }
        fields.pressure[cell] += correction[cell];
    }
}

void PressureCorrection::UpdatePressure(FlowFields& fields) {
    const Mesh& mesh = builder.mesh;
    equation.FillGhosts(conditions.pressure, fields.pressure);
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        gradient[cell] = builder.Gradient(cell).Apply(fields.pressure);
    }
    for (const Boundary kind : {Boundary::Inlet, Boundary::Wall}) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            if (!builder.IsSilent(kind, face) && !IsOpen(kind, face)) {
                const BoundaryFace& geometry = mesh.Faces(kind)[face];
                const Vec3 d = geometry.centre - mesh.cellCentre[geometry.cell];
                fields.pressure[objects.Ghost(kind, face)] =
                    fields.pressure[geometry.cell] + gradient[geometry.cell].dot(d);
            }
        }
    }
}

}  // namespace host
