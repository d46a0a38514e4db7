#include "reference_host/cases/flow_study.h"

#include <fmt/format.h>

#include <iostream>
#include <stdexcept>

#include "reference_host/run/convergence.h"

namespace host {

namespace {

constexpr ConvergenceLimits converged = {1e-9, 1e-6};

/// The five figures of a row, in the order of the table.
struct Row {
    FlowErrorNorms norms;
    std::optional<double> force, flux;
};

std::string Figure(std::optional<double> value, std::optional<double> before, int size,
                   int sizeBefore) {
    if (!value) {
        return fmt::format("  {:>9} {:>5}", "", "");
    }
    const std::string order =
        before ? fmt::format("{:5.2f}", Order(*before, *value, sizeBefore, size)) : "";
    return fmt::format("  {:9.3e} {:>5}", *value, order);
}

void PrintRow(const FlowStudy& study, const char* grid, const FlowStudyLevel& level, const Row& row,
              const FlowStudyLevel* before, const std::optional<Row>& rowBefore) {
    PrintRowBeginning(study.scheme, study.kind, level.size, level.activeCells, grid);
    const auto print = [&](const auto& figureOf) {
        std::cout << Figure(figureOf(row),
                            rowBefore ? figureOf(*rowBefore) : std::optional<double>(), level.size,
                            before ? before->size : 0);
    };
    using Figure = std::optional<double>;
    print([](const Row& r) { return Figure(r.norms.velocity.l2); });
    print([](const Row& r) { return Figure(r.norms.velocity.max); });
    print([](const Row& r) { return Figure(r.norms.pressure.l2); });
    print([](const Row& r) { return Figure(r.norms.pressure.max); });
    print([](const Row& r) { return r.force; });
    print([](const Row& r) { return r.flux; });
    std::cout << (row.force ? fmt::format(" {:>6}\n", level.iterations) : "\n");
}

Row RowOfAll(const FlowStudyLevel& level) {
    return {level.all, level.force, level.flux};
}

bool HasTetrahedra(const Mesh& mesh) {
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (mesh.cellNodes[cell].size() == 4) {
            return true;
        }
    }
    return false;
}

}  // namespace

FlowStudyLimits FlowLimitsOf(bool hasTetrahedra) {
    return hasTetrahedra ? FlowStudyLimits{1.7, 1.2, 1.2} : FlowStudyLimits{1.9, 1.5, 1.5};
}

FlowLevelSolver::FlowLevelSolver(const StudyMesh& level_)
    : level(level_), exact(ManufacturedFlowFor(level_.mesh)) {}

FlowSettings FlowLevelSolver::Settings(Scheme scheme, double mu, MatrixSolver matrixSolver) const {
    FlowSettings settings;
    const auto velocity = [this](const Vec3& at) { return exact.Velocity(at); };
    settings.inlet = velocity;
    settings.walls = [velocity](WallRole, const Vec3& at) { return velocity(at); };
    settings.outlet = velocity;
    settings.mu = mu;
    settings.force = [this, mu](const Vec3& at) { return exact.Force(at, mu); };
    settings.start = [](const Vec3&) { return Vec3(Vec3::Zero()); };
    settings.conservation = Conservation::Mass;
    settings.scheme = scheme;
    settings.relaxation = DefaultRelaxation(level.size);
    settings.momentumSolver = matrixSolver;
    settings.pressureSolver = matrixSolver;
    return settings;
}

FlowStudyLevel FlowLevelSolver::Solve(Scheme scheme, double mu, MatrixSolver matrixSolver) {
    const FlowSettings settings = Settings(scheme, mu, matrixSolver);
    FlowSolver flow(level.mesh, level.objects, level.link, settings);
    FlowIteration last;
    int iterations = 0;
    while (iterations == 0 || !HasConverged(last, converged)) {
        if (iterations == maxIterations) {
            throw std::runtime_error(fmt::format("{}, {}: not converged after {} iterations: {}",
                                                 level.place, Name(scheme), iterations,
                                                 WhyNotConverged(last, converged)));
        }
        last = flow.Iterate();
        ++iterations;
        if (HasDiverged(last)) {
            throw std::runtime_error(fmt::format("{}, {}: the flow diverges in iteration {}",
                                                 level.place, Name(scheme), iterations));
        }
        const std::string idle = IdleSolve(last, settings);
        if (!idle.empty()) {
            throw std::runtime_error(fmt::format("{}, {}: iteration {}: {}", level.place,
                                                 Name(scheme), iterations, idle));
        }
    }
    FlowStudyLevel measured = Measure(flow);
    measured.iterations = iterations;
    return measured;
}

FlowStudyLevel FlowLevelSolver::Measure(const FlowSolver& flow) {
    const FlowDifference difference = DifferenceFrom(exact, flow);
    FlowStudyLevel measured;
    measured.size = level.size;
    measured.activeCells = level.ActiveCells();
    measured.hasTetrahedra = HasTetrahedra(level.mesh);
    measured.all = NormsOf(difference, flow);
    for (const int grid : level.Grids()) {
        measured.byGrid.push_back(NormsOf(difference, flow, grid));
    }
    measured.force = ForceError(exact, flow);
    measured.flux = FluxError(exact, flow);
    if (level.series) {
        Publish(difference);
    }
    return measured;
}

void FlowLevelSolver::Publish(const FlowDifference& difference) {
    HostObjects& objects = level.objects;
    for (int cell = 1; cell <= level.mesh.CellCount(); ++cell) {
        objects.pressure[cell] = difference.pressure[cell];
        objects.u[cell] = difference.velocity[cell].x();
        objects.v[cell] = difference.velocity[cell].y();
        objects.w[cell] = difference.velocity[cell].z();
    }
    ++stepCount;
    level.series->Write(stepCount, stepCount);
}

std::vector<std::string> Misses(const std::vector<FlowStudy>& studies) {
    std::vector<std::string> misses;
    for (const FlowStudy& study : studies) {
        if (study.levels.size() < 2) {
            continue;
        }
        const FlowStudyLevel& coarse = study.levels[study.levels.size() - 2];
        const FlowStudyLevel& fine = study.levels.back();
        const FlowStudyLimits limits = FlowLimitsOf(fine.hasTetrahedra);
        const auto check = [&](const char* name, double before, double now, double limit) {
            CheckOrder(
                fmt::format("flow {} kind {} {}", Name(study.scheme), KindText(study.kind), name),
                Order(before, now, coarse.size, fine.size), limit, misses);
        };
        check("velocity", coarse.all.velocity.l2, fine.all.velocity.l2, limits.velocity);
        check("pressure", coarse.all.pressure.l2, fine.all.pressure.l2, limits.pressure);
        check("force", coarse.force, fine.force, limits.force);
    }
    return misses;
}

void PrintTable(const std::vector<FlowStudy>& studies) {
    PrintRowHeading();
    for (const char* name : {"u L2", "u max", "p L2", "p max", "force", "flux"}) {
        std::cout << fmt::format("  {:>9} {:>5}", name, "order");
    }
    std::cout << fmt::format(" {:>6}\n", "iter");
    for (const FlowStudy& study : studies) {
        const FlowStudyLevel* before = nullptr;
        for (const FlowStudyLevel& level : study.levels) {
            PrintRow(study, "all", level, RowOfAll(level), before,
                     before ? std::optional<Row>(RowOfAll(*before)) : std::nullopt);
            for (std::size_t g = 0; g < level.byGrid.size(); ++g) {
                const Row row = {level.byGrid[g], std::nullopt, std::nullopt};
                PrintRow(study, GridName(g), level, row, before,
                         before
                             ? std::optional<Row>({before->byGrid[g], std::nullopt, std::nullopt})
                             : std::nullopt);
            }
            before = &level;
        }
    }
}

}  // namespace host
