#include "reference_host/physics/pressure_correction.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "fvm_operators/mat_operator.h"
#include "reference_host/discretisation/face_flux.h"

namespace host {

namespace {

/// Weight of the first cell in the linear interpolation to the center of an inner face. Between two
/// grids it is 1/2, because the mirrored point is as far from the face as the cell.
std::vector<double> Weights(const Mesh& mesh, const OversetLink& link) {
    std::vector<double> weights(mesh.innerFaces.size(), 0.5);
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        if (link.Side(face) == FaceSide::Both) {
            const InnerFace& between = mesh.innerFaces[face];
            const Vec3& second = mesh.cellCentre[link.Second(face)];
            const Vec3 d = second - mesh.cellCentre[link.First(face)];
            weights[face] = (second - between.centre).dot(between.area) / d.dot(between.area);
        }
    }
    return weights;
}

Vec3 Apply(const int* ids, const double* coefs, const std::vector<Vec3>& field) {
    Vec3 sum = Vec3::Zero();
    for (int j = 1; j <= ids[0]; ++j) {
        sum += coefs[j] * field[ids[j]];
    }
    return sum;
}

}  // namespace

PressureCorrection::PressureCorrection(const Mesh& mesh, HostObjects& objects_,
                                       const OversetLink& link, const FlowConditions& conditions_,
                                       double relaxation_, MatrixSolver matrixSolver)
    : builder(mesh, objects_, link,
              conditions_.isClosed ? GradientSet::ClosedPressure : GradientSet::Pressure,
              InterfaceValue::Fitted),
      records(builder, objects_, FarPoint::LinearUpwind),
      equation(builder, records, Reach::Normal, matrixSolver),
      objects(objects_),
      conditions(conditions_),
      relaxation(relaxation_),
      dimensions(mesh.IsQuasi2d() ? 2 : 3),
      faces(builder, records, equation, conditions_.pressure),
      weights(Weights(mesh, link)),
      mirrored(mesh.Faces(Boundary::Wall).size()),
      cellD(mesh.CellCount() + 1, 0.0),
      gradient(mesh.CellCount() + 1, Vec3::Zero()),
      correction(objects_.CellAndGhostCount() + 1, 0.0),
      response(objects_.CellAndGhostCount() + 1, 0.0) {
    records.SetFaceMu(0.0);
    for (int face = 1; face <= mesh.FaceCount(Boundary::Wall); ++face) {
        if (faces.IsOpen(Boundary::Wall, face)) {
            mirrored[face] = builder.Mirrored(face);
        }
    }
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
                // Beside a flat cell with a small coefficient the face is close to that cell. With
                // the mean of both cells the Rhie-Chow term there is as large as in its neighbor,
                // and flat tetrahedra with two faces on the body make the flow unstable.
                faceD[face] = weights[face] * first + (1.0 - weights[face]) * second;
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
    const double E = (1.0 - relaxation) / relaxation * records.gv.faceMu->left[face];
    const CMAFVMFaceData& own = records.Inner(face);
    const Vec3 mean = weights[face] * Apply(own.idLeft, own.coefLeft, gradient) +
                      (1.0 - weights[face]) * Apply(own.idRight, own.coefRight, gradient);
    return through - E * (NormalAt(own, fields.pressure) - area.dot(mean));
}

double PressureCorrection::BoundaryFluxAt(Boundary kind, int face, const FlowFields& fields) const {
    if (builder.IsSilent(kind, face)) {
        return 0.0;
    }
    const BoundaryFace& geometry = builder.mesh.Faces(kind)[face];
    const double through = geometry.area.dot(fields.Velocity(objects.Ghost(kind, face)));
    if (!faces.IsOpen(kind, face)) {
        return through;
    }
    const double E = (1.0 - relaxation) / relaxation * cellD[geometry.cell];
    const double normal = NormalAt(records.AtBoundary(kind, face), fields.pressure);
    return through - E * (normal - geometry.area.dot(MeanGradientAt(kind, face)));
}

/// The mean of the cell and its mirrored point at an overset boundary, the cell at an outlet.
Vec3 PressureCorrection::MeanGradientAt(Boundary kind, int face) const {
    const Vec3& inside = gradient[builder.mesh.Faces(kind)[face].cell];
    if (kind != Boundary::Wall) {
        return inside;
    }
    Vec3 beyond = Vec3::Zero();
    for (const Stencil::Term& term : mirrored[face].Terms()) {
        beyond += term.weight * gradient[term.column];
    }
    return 0.5 * (inside + beyond);
}

/// Makes the net flux through the given boundary of each grid zero. The values at the face centers
/// leave a small one, for which a closed domain has no place. Each flux changes by the same part of
/// its magnitude.
void PressureCorrection::CloseBoundary(CMAFVMFaceVariableAll& flux) const {
    const Mesh& mesh = builder.mesh;
    const auto forEach = [&](const auto& apply) {
        for (const Boundary kind : {Boundary::Inlet, Boundary::Outlet, Boundary::Wall}) {
            for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
                if (!builder.IsSilent(kind, face) && !faces.IsOpen(kind, face)) {
                    apply(mesh.cavity[mesh.Faces(kind)[face].cell], BoundaryFlux(flux, kind)[face]);
                }
            }
        }
    };
    std::map<int, double> net;
    std::map<int, double> whole;
    forEach([&](int grid, double through) {
        net[grid] += through;
        whole[grid] += std::abs(through);
    });
    forEach([&](int grid, double& through) {
        if (whole[grid] > 0.0) {
            through -= net[grid] / whole[grid] * std::abs(through);
        }
    });
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
    if (conditions.isClosed) {
        CloseBoundary(flux);
    }
}

/// The cell whose correction is zero in a closed domain: the first active one of the background.
int PressureCorrection::FixedCell() const {
    int cell = 1;
    while (!builder.link.IsActive(cell)) {
        ++cell;
    }
    return cell;
}

LinearSolve PressureCorrection::Solve(const std::vector<double>& net) {
    conditions.pressure.SetGhostMu(builder.mesh, objects, cellD);
    equation.Clear();
    KVX_ART_FVM::CKVX_ART_MatOperator operators(&equation.matrix, &records.gv);
    operators.DiffusionOperator(-1.0);
    if (conditions.isClosed) {
        const int cell = FixedCell();
        equation.matrix.AddElementValue(cell, cell, equation.matrix.GetDiagonalValue(cell));
    }
    equation.CloseRows(conditions.pressure);

    std::vector<double> rhs(records.gv.NcAll + 1, 0.0);
    for (int cell = 1; cell <= builder.mesh.CellCount(); ++cell) {
        rhs[cell] = -net[cell];
    }
    equation.FillGhostRows(conditions.pressure, rhs);
    std::fill(correction.begin(), correction.end(), 0.0);
    return equation.solver.Solve(rhs, correction);
}

/// Net flux out of the background through the hole boundary that belongs to a correction phi.
double PressureCorrection::HoleFlux(const HoleBalance& hole, const std::vector<double>& phi) const {
    double net = 0.0;
    for (const HoleBalance::Face& face : hole.Faces()) {
        const double along =
            -records.gv.faceMu->left[face.face] * NormalAt(records.Inner(face.face), phi);
        net += face.activeIsLeft ? along : -along;
    }
    return net;
}

void PressureCorrection::CloseHole(HoleBalance& hole, CMAFVMFaceVariableAll& flux) {
    if (hole.Faces().empty()) {
        return;
    }
    constexpr double accurate = 0.02;  // residual, relative to that of a zero field
    std::vector<double> rhs(records.gv.NcAll + 1, 0.0);
    for (const HoleBalance::Face& face : hole.Faces()) {
        rhs[face.cell] -= face.area;
    }
    equation.Solve(rhs, response, accurate, /*maxCalls=*/3);
    const double missing = hole.NetFlux(flux) + HoleFlux(hole, correction);
    const double perArea = -missing / (hole.Area() + HoleFlux(hole, response));
    hole.AddFlux(perArea, flux);
    for (std::size_t id = 1; id < correction.size(); ++id) {
        correction[id] += perArea * response[id];
    }
}

void PressureCorrection::Correct(double share, FlowFields& fields, CMAFVMFaceVariableAll& flux) {
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
            if (faces.IsOpen(kind, face)) {
                BoundaryFlux(flux, kind)[face] -=
                    cellD[mesh.Faces(kind)[face].cell] *
                    NormalAt(records.AtBoundary(kind, face), correction);
            }
        }
    }
    equation.FillGhosts(conditions.pressure, correction);
    const std::vector<Vec3> slope = faces.Of(correction);
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        const Vec3 change = cellD[cell] * slope[cell];
        for (int component = 0; component < dimensions; ++component) {
            fields.velocity[component][cell] -= change[component];
        }
        fields.pressure[cell] += share * correction[cell];
    }
}

/// Shifts the active cells so that their mean, weighted by volume, is zero.
void PressureCorrection::SetLevel(std::vector<double>& phi) const {
    const Mesh& mesh = builder.mesh;
    double sum = 0.0;
    double volume = 0.0;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (builder.link.IsActive(cell)) {
            sum += mesh.volume[cell] * phi[cell];
            volume += mesh.volume[cell];
        }
    }
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (builder.link.IsActive(cell)) {
            phi[cell] -= sum / volume;
        }
    }
}

void PressureCorrection::UpdatePressure(FlowFields& fields) {
    if (conditions.isClosed) {
        SetLevel(fields.pressure);
    }
    faces.FillGhosts(fields.pressure);
    gradient = faces.Of(fields.pressure);
}

}  // namespace host
