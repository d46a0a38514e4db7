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

std::string WallFaceAt(const Mesh& mesh, int wallFace) {
    const BoundaryFace& face = mesh.Faces(Boundary::Wall)[wallFace];
    const std::string group =
        face.oversetGroup > 0 ? FaceName(Boundary::Wall, face.oversetGroup) + " face, " : "";
    return fmt::format("{}wall face {} {}", group, wallFace, At(face.centre));
}

void Refuse(const std::vector<std::string>& faults) {
    std::string text;
    for (const std::string& fault : faults) {
        text += (text.empty() ? "" : "\n") + fault;
    }
    if (!text.empty()) {
        throw std::runtime_error(text);
    }
}

}  // namespace host
