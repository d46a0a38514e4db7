#include "reference_host/physics/momentum.h"

#include <algorithm>
#include <cmath>

#include "reference_host/discretisation/face_flux.h"

namespace host {

namespace {

/// Weight of a cell in a stencil.
double Weight(const int* ids, const double* coefs, int cell) {
    double weight = 0.0;
    for (int j = 1; j <= ids[0]; ++j) {
        weight += ids[j] == cell ? coefs[j] : 0.0;
    }
    return weight;
}

}  // namespace

Momentum::Momentum(const Mesh& mesh, HostObjects& objects_, const OversetLink& link,
                   const FlowConditions& conditions_, Scheme scheme_, double mu_,
                   double relaxation_, MatrixSolver matrixSolver)
    : builder(mesh, objects_, link,
              mesh.IsQuasi2d() ? GradientSet::Velocity : GradientSet::VectorAtSymmetry,
              InterfaceValue::Fitted),
      records(builder, objects_, FarPointOf(scheme_)),
      equation(builder, records, ReachOf(scheme_), matrixSolver),
      mu(mu_),
      objects(objects_),
      conditions(conditions_),
      scheme(scheme_),
      relaxation(relaxation_),
      dimensions(mesh.IsQuasi2d() ? 2 : 3) {
    if (dimensions == 3) {
        planes.emplace(mesh, objects, link);
    }
    SumDiffusionWeights();
}

void Momentum::SetForce(const std::function<Vec3(const Vec3& point)>& force) {
    const Mesh& mesh = builder.mesh;
    forces.assign(mesh.CellCount() + 1, Vec3::Zero());
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (builder.link.IsActive(cell)) {
            forces[cell] = mesh.volume[cell] * force(mesh.cellCentre[cell]);
        }
    }
}

void Momentum::SumDiffusionWeights() {
    const Mesh& mesh = builder.mesh;
    diffusionWeights.assign(mesh.CellCount() + 1, 0.0);
    const auto add = [&](int cell, const CMAFVMFaceData& record) {
        diffusionWeights[cell] += mu * std::abs(Weight(record.idNormal, record.coefNormal, cell));
    };
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        add(builder.link.First(face), records.gv.faceDataLeft[face]);
        add(builder.link.Second(face), records.gv.faceDataRight[face]);
    }
    for (const Boundary kind : {Boundary::Inlet, Boundary::Wall}) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            add(mesh.Faces(kind)[face].cell, records.AtBoundary(kind, face));
        }
    }
}

void Momentum::SumCoefficients(const CMAFVMFaceVariableAll& flux) {
    const Mesh& mesh = builder.mesh;
    coefficients = diffusionWeights;
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        coefficients[builder.link.First(face)] += std::max(flux.left[face], 0.0);
        coefficients[builder.link.Second(face)] += std::max(-flux.right[face], 0.0);
    }
    for (const Boundary kind : allBoundaries) {
        const double* through = BoundaryFlux(flux, kind);
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            coefficients[mesh.Faces(kind)[face].cell] += std::max(through[face], 0.0);
        }
    }
}

void Momentum::Assemble(CMAFVMFaceVariableAll& flux) {
    const Mesh& mesh = builder.mesh;
    conditions.velocity[0].SetGhostMu(mesh, objects, std::vector<double>(mesh.CellCount() + 1, mu));
    if (planes) {
        planes->SetGhostMu(objects, mu);
    }
    records.SetFaceMu(mu);
    equation.Clear();
    KVX_ART_FVM::CKVX_ART_MatOperator operators(&equation.matrix, &records.gv);
    AddConvection(scheme, operators, flux);
    operators.DiffusionOperator(-1.0);

    SumCoefficients(flux);
    // While the fluxes are not free of divergence, div(F u) contains the term u div F, which is no
    // part of the momentum balance and is subtracted.
    const std::vector<double> net = NetOutflow(mesh, builder.link, flux);
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (builder.link.IsActive(cell)) {
            const double relaxed = (1.0 - relaxation) / relaxation * coefficients[cell];
            equation.matrix.AddElementValue(cell, cell, relaxed - net[cell]);
        }
    }
    equation.CloseRows(conditions.velocity[0], coefficients);
}

std::vector<double> Momentum::RightHandSide(const std::vector<Vec3>& pressureGradient,
                                            const HoleBalance& hole, const FlowFields& fields,
                                            int component) const {
    const Mesh& mesh = builder.mesh;
    std::vector<double> rhs(records.gv.NcAll + 1, 0.0);
    const double relaxed = (1.0 - relaxation) / relaxation;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        rhs[cell] = relaxed * coefficients[cell] * fields.velocity[component][cell] -
                    mesh.volume[cell] * pressureGradient[cell][component];
    }
    for (int cell = 1; !forces.empty() && cell <= mesh.CellCount(); ++cell) {
        rhs[cell] += forces[cell][component];
    }
    hole.SubtractForce(component, rhs);
    equation.FillGhostRows(conditions.velocity[component], rhs);
    if (planes) {
        planes->FillRightHandSide(component, fields.velocity, coefficients, rhs);
    }
    return rhs;
}

void Momentum::SetSymmetryRows(int component, double sign) {
    if (planes) {
        planes->ChangeRows(component, sign, coefficients,
                           [this](int row, int column, double value) {
                               equation.matrix.AddElementValue(row, column, value);
                           });
    }
}

std::vector<LinearSolve> Momentum::Solve(const std::vector<Vec3>& pressureGradient,
                                         const HoleBalance& hole, FlowFields& fields) {
    std::vector<std::vector<double>> rhs;
    rhs.reserve(dimensions);
    for (int component = 0; component < dimensions; ++component) {
        rhs.push_back(RightHandSide(pressureGradient, hole, fields, component));
    }
    std::vector<LinearSolve> solves;
    for (int component = 0; component < dimensions; ++component) {
        SetSymmetryRows(component, 1.0);
        solves.push_back(equation.solver.Solve(rhs[component], fields.velocity[component]));
        SetSymmetryRows(component, -1.0);
    }
    FillGhosts(fields);
    return solves;
}

void Momentum::FillGhosts(FlowFields& fields) const {
    for (int component = 0; component < dimensions; ++component) {
        equation.FillGhosts(conditions.velocity[component], fields.velocity[component]);
    }
    if (planes) {
        planes->FillGhosts(fields.velocity);
    }
}

}  // namespace host
