#include "reference_host/mesh/messages.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>

namespace host {

std::string At(const Vec3& point) {
    return fmt::format("at ({:.6g}, {:.6g}, {:.6g})", point.x(), point.y(), point.z());
}

std::string CellAt(const Mesh& mesh, int cell) {
    return fmt::format("cell {} {}", cell, At(NodeMean(mesh, mesh.cellNodes[cell])));
}

std::string CavityName(int cavity) {
    return cavity == 1 ? "background" : fmt::format("component{}", cavity - 1);
}

std::string GridName(const Mesh& mesh, int cell) {
    const bool hasBlocks = std::count(mesh.cavity.begin() + 1, mesh.cavity.end(), 0) > 0;
    return hasBlocks ? fmt::format("block{}", mesh.cavity[cell]) : CavityName(mesh.cavity[cell]);
}

std::string FaceName(Boundary kind, int oversetGroup) {
    if (oversetGroup > 0) {
        return fmt::format("overset{}", oversetGroup);
    }
    constexpr std::array<const char*, 4> names = {"inlet", "outlet", "wall", "symmetry"};
    return names[static_cast<int>(kind)];
}

void Refuse(const std::vector<kvx3d::checks::Fault>& faults) {
    std::string text;
    for (const kvx3d::checks::Fault& fault : faults) {
        text += (text.empty() ? "" : "\n") + kvx3d::checks::Text(fault);
    }
    if (!text.empty()) {
        throw std::runtime_error(text);
    }
}

}  // namespace host
