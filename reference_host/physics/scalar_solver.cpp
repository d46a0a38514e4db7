#include "reference_host/physics/scalar_solver.h"

namespace host {

ScalarSolver::ScalarSolver(const Mesh& mesh, HostObjects& objects_, const OversetLink& link,
                           Scheme scheme_, MatrixSolver matrixSolver)
    : builder(mesh, objects_, link, GradientSet::Velocity),
      records(builder, objects_, FarPointOf(scheme_)),
      equation(builder, records, ReachOf(scheme_), matrixSolver),
      objects(objects_),
      scheme(scheme_) {
    equation.solver.SetTolerance(1e-12);
    equation.solver.SetTimes(2000);
}

void ScalarSolver::AddDiffusion(double mu) {
    KVX_ART_FVM::CKVX_ART_MatOperator operators(&equation.matrix, &records.gv);
    if (scheme == Scheme::Laplace) {
        operators.PureLaplaceOperator(-mu);
        return;
    }
    records.SetFaceMu(mu);
    operators.DiffusionOperator(-1.0);
}

void ScalarSolver::AddConvection(const Vec3& velocity) {
    CMAFVMFaceVariableAll flux(&records.gv, /*shared=*/false);
    FillConstantFlux(builder, velocity, flux);
    KVX_ART_FVM::CKVX_ART_MatOperator operators(&equation.matrix, &records.gv);
    host::AddConvection(scheme, operators, flux);
}

void ScalarSolver::Assemble(const BoundaryConditions& conditions, double mu, const Vec3& velocity,
                            double storage) {
    conditions.SetGhostMu(builder.mesh, objects,
                          std::vector<double>(builder.mesh.CellCount() + 1, mu));
    equation.Clear();
    AddConvection(velocity);
    AddDiffusion(mu);
    if (storage > 0.0) {
        for (int cell = 1; cell <= builder.mesh.CellCount(); ++cell) {
            if (builder.link.IsActive(cell)) {
                equation.matrix.AddElementValue(cell, cell, storage * builder.mesh.volume[cell]);
            }
        }
    }
    equation.CloseRows(conditions);
}

SolveReport ScalarSolver::Solve(const BoundaryConditions& conditions,
                                const std::vector<double>& source, std::vector<double>& phi,
                                double reduction) {
    std::vector<double> rhs(records.gv.NcAll + 1, 0.0);
    for (int cell = 1; cell <= records.gv.Nc; ++cell) {
        rhs[cell] = builder.link.IsActive(cell) ? source[cell] : 0.0;
    }
    equation.FillGhostRows(conditions, rhs);
    return equation.Solve(rhs, phi, reduction);
}

ManufacturedRun SolveManufactured(const Mesh& mesh, HostObjects& objects, const OversetLink& link,
                                  Scheme scheme, const AnalyticField& exact, double mu,
                                  const Vec3& velocity, MatrixSolver matrixSolver) {
    const BoundaryConditions conditions(mesh, link, [&](Boundary kind, int face) {
        return GhostCondition{GhostCondition::Kind::Value,
                              exact.value(mesh.Faces(kind)[face].centre)};
    });
    const Vec3 carrier = Convects(scheme) ? velocity : Vec3::Zero();
    std::vector<double> source(mesh.CellCount() + 1, 0.0);
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        const Vec3& at = mesh.cellCentre[cell];
        source[cell] =
            mesh.volume[cell] * (carrier.dot(exact.gradient(at)) - mu * exact.laplacian(at));
    }
    ScalarSolver solver(mesh, objects, link, scheme, matrixSolver);
    const int declared = solver.equation.matrix.Ia[solver.records.gv.NcAll + 1];
    solver.Assemble(conditions, mu, velocity);
    ManufacturedRun run;
    run.storedEntriesGrown = solver.equation.matrix.Ia[solver.records.gv.NcAll + 1] - declared;
    run.phi.assign(solver.records.gv.NcAll + 1, 0.0);
    run.solve = solver.Solve(conditions, source, run.phi);
    run.fallbackCount = solver.builder.FallbackCount();
    return run;
}

}  // namespace host
