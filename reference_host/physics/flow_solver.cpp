#include "reference_host/physics/flow_solver.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "reference_host/discretisation/face_flux.h"
#include "reference_host/physics/wall_driven_flux.h"

namespace host {

double DefaultRelaxation(double cellsPerUnit) {
    return 1.0 - std::min(0.1, 1.0 / cellsPerUnit);
}

FlowSolver::FlowSolver(const Mesh& mesh_, HostObjects& objects, const OversetLink& link_,
                       const FlowSettings& settings)
    : mesh(mesh_),
      link(link_),
      conditions(mesh_, link_, settings.inlet, settings.farWalls),
      momentum(mesh_, objects, link_, conditions, settings.scheme, settings.mu, settings.relaxation,
               settings.momentumSolver),
      pressure(mesh_, objects, link_, conditions, settings.relaxation, settings.pressureSolver),
      fields(objects.CellAndGhostCount()),
      flux(&momentum.records.gv, /*shared=*/false) {
    momentum.equation.solver.SetTolerance(settings.momentumTolerance);
    pressure.equation.solver.SetTolerance(settings.pressureTolerance);
    momentum.equation.solver.SetTimes(settings.maxSolverIterations);
    pressure.equation.solver.SetTimes(settings.maxSolverIterations);
    Start(settings.inlet);
}

void FlowSolver::Start(const InletProfile& inlet) {
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (!link.IsActive(cell)) {
            continue;
        }
        const Vec3 velocity = inlet(mesh.cellCentre[cell]);
        for (int component = 0; component < 3; ++component) {
            fields.velocity[component][cell] = velocity[component];
        }
    }
    momentum.FillGhosts(fields);
    pressure.PredictFluxes(fields, momentum.records, flux);
}

FlowIteration FlowSolver::Iterate() {
    const FlowFields before = fields;
    FlowIteration report;

    momentum.Assemble(flux);
    report.momentum = momentum.Solve(pressure.Gradient(), fields);

    pressure.SetCoefficients(momentum.Coefficients());
    pressure.PredictFluxes(fields, momentum.records, flux);
    const std::vector<double> net = NetOutflow(mesh, link, flux);
    report.massResidual = std::accumulate(net.begin(), net.end(), 0.0,
                                          [](double sum, double x) { return sum + std::abs(x); }) /
                          MassScale();
    report.pressure = pressure.Solve(net);
    pressure.Correct(fields, flux);
    momentum.FillGhosts(fields);
    pressure.UpdatePressure(fields);

    report.change = RelativeChange(before, fields, mesh.CellCount());
    return report;
}

double FlowSolver::Inflow() const {
    return -std::accumulate(flux.inlet + 1, flux.inlet + mesh.FaceCount(Boundary::Inlet) + 1, 0.0);
}

double FlowSolver::MassScale() const {
    const double inflow = Inflow();
    return inflow > 0.0 ? inflow : WallDrivenFlux(mesh, conditions);
}

double FlowSolver::MassDefect() const {
    const double outflow =
        std::accumulate(flux.outlet + 1, flux.outlet + mesh.FaceCount(Boundary::Outlet) + 1, 0.0);
    return (outflow - Inflow()) / Inflow();
}

}  // namespace host
