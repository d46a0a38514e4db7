#include "reference_host/cases/flow_probe.h"

#include <vector>

namespace host {

namespace {

std::vector<int> ActiveCells(const Mesh& mesh, const OversetLink& link) {
    std::vector<int> cells;
    for (int cell = 1; cell <= mesh.CellCount(); ++cell) {
        if (link.IsActive(cell)) {
            cells.push_back(cell);
        }
    }
    return cells;
}

const StencilBuilder& BuilderOf(const FlowSolver& flow) {
    return flow.MomentumPart().builder;
}

}  // namespace

FlowProbe::FlowProbe(const FlowSolver& flow_)
    : flow(flow_),
      cellFaces(BuilderOf(flow_).mesh),
      interpolation(BuilderOf(flow_).mesh, BuilderOf(flow_).link, cellFaces),
      activeCells(ActiveCells(BuilderOf(flow_).mesh, BuilderOf(flow_).link), [this](int cell) {
          const Vec3& center = BuilderOf(flow).mesh.cellCentre[cell];
          return kvx3d::checks::Point{center.x(), center.y(), center.z()};
      }) {}

Vec3 FlowProbe::Velocity(const Vec3& point) const {
    const int cell = activeCells.Nearest({point.x(), point.y(), point.z()});
    const Stencil fit = interpolation.Fit(cell, point);
    if (fit.Terms().empty()) {
        return flow.Fields().Velocity(cell);
    }
    const auto& velocity = flow.Fields().velocity;
    return {fit.Apply(velocity[0]), fit.Apply(velocity[1]), fit.Apply(velocity[2])};
}

}  // namespace host
