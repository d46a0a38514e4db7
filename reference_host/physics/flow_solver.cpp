#include "reference_host/physics/flow_solver.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "reference_host/discretisation/face_flux.h"
#include "reference_host/physics/forces.h"
#include "reference_host/physics/momentum_flux.h"
#include "reference_host/physics/wall_driven_flux.h"

namespace host {

namespace {

/// Change of the velocity in one iteration below which the force at the hole boundary is updated.
/// In the first iterations the force on the body is far from that of the converged flow, and a
/// correction that follows it would disturb the flow.
constexpr double settledChange = 0.01;
/// The same for the flux at the hole boundary. Until then the coefficients of the pressure
/// correction change so much that its second system would have to be solved anew each time. A
/// closed domain needs it from the beginning.
constexpr double roughlySettledChange = 0.1;
/// Part of the pressure correction that is added to the pressure until the change is below
/// `settledChange`. The whole correction overshoots where the pressure gradient of a cell responds
/// more strongly than the gradients at its faces, as beside walls: on prisms at n = 20 the drag of
/// the benchmark 2D-1 then swings to ten times its value before it settles. Afterward the whole
/// correction converges faster.
constexpr double earlyPressureShare = 0.7;

}  // namespace

double DefaultRelaxation(double cellsPerUnit) {
    return 1.0 - std::min(0.1, 1.0 / cellsPerUnit);
}

FlowSolver::FlowSolver(const Mesh& mesh_, HostObjects& objects, const OversetLink& link_,
                       const FlowSettings& settings)
    : mesh(mesh_),
      link(link_),
      conditions(mesh_, link_, settings),
      momentum(mesh_, objects, link_, conditions, settings.scheme, settings.mu, settings.relaxation,
               settings.momentumSolver),
      pressure(mesh_, objects, link_, conditions, settings.relaxation, settings.pressureSolver),
      hole(mesh_, link_),
      conservation(settings.conservation),
      fields(objects.CellAndGhostCount()),
      flux(&momentum.records.gv, /*shared=*/false) {
    momentum.equation.solver.SetTolerance(settings.momentumTolerance);
    pressure.equation.solver.SetTolerance(settings.pressureTolerance);
    momentum.equation.solver.SetTimes(settings.maxSolverIterations);
    pressure.equation.solver.SetTimes(settings.maxSolverIterations);
    if (settings.force) {
        momentum.SetForce(settings.force);
    }
    Start(settings);
}

void FlowSolver::Start(const FlowSettings& settings) {
    const InletProfile& start = settings.start ? settings.start : settings.inlet;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (!link.IsActive(cell)) {
            continue;
        }
        const Vec3 velocity = start(mesh.cellCentre[cell]);
        for (int component = 0; component < 3; ++component) {
            fields.velocity[component][cell] = velocity[component];
        }
    }
    momentum.FillGhosts(fields);
    Predict();
}

void FlowSolver::Predict() {
    pressure.PredictFluxes(fields, momentum.records, flux);
    hole.CorrectFluxes(flux);
}

FlowIteration FlowSolver::Iterate() {
    const FlowFields before = fields;
    FlowIteration report;

    momentum.Assemble(flux);
    report.momentum = momentum.Solve(pressure.Gradient(), hole, fields);

    pressure.SetCoefficients(momentum.Coefficients());
    Predict();
    const std::vector<double> net = NetOutflow(mesh, link, flux);
    report.massResidual = std::accumulate(net.begin(), net.end(), 0.0,
                                          [](double sum, double x) { return sum + std::abs(x); }) /
                          MassScale();
    report.pressure = pressure.Solve(net);
    if (conservation != Conservation::None &&
        (conditions.isClosed || lastChange < roughlySettledChange)) {
        pressure.CloseHole(hole, flux);
    }
    pressure.Correct(lastChange < settledChange ? 1.0 : earlyPressureShare, fields, flux);
    momentum.FillGhosts(fields);
    pressure.UpdatePressure(fields);
    report.change = RelativeChange(before, fields, mesh.CellCount());
    lastChange = report.change;
    if (conservation == Conservation::MassAndMomentum && report.change < settledChange) {
        const MomentumFlux through(momentum, pressure, fields, flux);
        hole.UpdateMomentum(ForceOnBody(momentum, fields), through.IntoHole(hole));
    }
    return report;
}

double FlowSolver::Inflow() const {
    return -std::accumulate(flux.inlet + 1, flux.inlet + mesh.FaceCount(Boundary::Inlet) + 1, 0.0);
}

/// Sum of the volume fluxes that enter through any boundary face. In a closed domain fluid may
/// enter and leave through the same kind of boundary, whose net flux is then no measure of the
/// flow.
double FlowSolver::EnteringFlux() const {
    double entering = 0.0;
    for (const Boundary kind : allBoundaries) {
        for (int face = 1; face <= mesh.FaceCount(kind); ++face) {
            if (mesh.Faces(kind)[face].oversetGroup == 0) {
                entering += std::max(0.0, -BoundaryFlux(flux, kind)[face]);
            }
        }
    }
    return entering;
}

double FlowSolver::MassScale() const {
    if (conditions.isClosed) {
        return std::max(EnteringFlux(), WallDrivenFlux(mesh, conditions));
    }
    const double inflow = Inflow();
    return inflow > 0.0 ? inflow : WallDrivenFlux(mesh, conditions);
}

double FlowSolver::MassDefect() const {
    const double outflow =
        std::accumulate(flux.outlet + 1, flux.outlet + mesh.FaceCount(Boundary::Outlet) + 1, 0.0);
    return Inflow() > 0.0 ? (outflow - Inflow()) / Inflow() : 0.0;
}

}  // namespace host
