#include "reference_host/run/control_figures.h"

#include <fmt/format.h>

#include <iostream>

#include "reference_host/physics/momentum_balance.h"
#include "reference_host/run/comparison.h"

namespace host {

namespace {

void PrintDrag(const char* name, std::optional<double> overSurface, double cd) {
    if (overSurface) {
        std::cout << fmt::format("  {:<20} {:15.10f} {:>15} {:+10.3f} %\n", name, *overSurface,
                                 "from the body", 100.0 * (*overSurface / cd - 1.0));
    }
}

}  // namespace

ControlFigures MeasureControl(const FlowSolver& flow, double forceUnit) {
    const BodyForces forces = ForcesFromMomentumBalance(flow);
    ControlFigures figures;
    if (forces.overset) {
        figures.cdOverset = forces.overset->x() / forceUnit;
    }
    if (forces.hole) {
        figures.cdHole = forces.hole->x() / forceUnit;
    }
    figures.cdOuter = forces.outer.x() / forceUnit;
    figures.interfaceMass = InterfaceMassDefect(flow);
    return figures;
}

std::vector<std::string> ControlMisses(const ControlFigures& figures, double cd) {
    constexpr double dragLimit = 2e-3;
    constexpr double massLimit = 1e-4;
    LimitCheck check;
    const auto drag = [&](const char* surface, std::optional<double> overSurface) {
        if (overSurface) {
            check.Magnitude(fmt::format("the drag over the {} boundary differs by", surface),
                            *overSurface / cd - 1.0, dragLimit);
        }
    };
    drag("overset", figures.cdOverset);
    drag("hole", figures.cdHole);
    drag("outer", figures.cdOuter);
    if (figures.interfaceMass) {
        check.Magnitude("the interface mass is", *figures.interfaceMass, massLimit);
    }
    return check.Misses();
}

void PrintControl(const ControlFigures& figures, double cd) {
    PrintDrag("Cd, overset boundary", figures.cdOverset, cd);
    PrintDrag("Cd, hole boundary", figures.cdHole, cd);
    PrintDrag("Cd, outer boundary", figures.cdOuter, cd);
    if (figures.interfaceMass) {
        std::cout << fmt::format("  {:<20} {:15.2e}\n", "interface mass", *figures.interfaceMass);
    }
}

}  // namespace host
