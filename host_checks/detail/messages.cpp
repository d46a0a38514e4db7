#include "host_checks/detail/messages.h"

#include <array>
#include <charconv>

namespace kvx3d::checks {

std::string Digits(double value, int digits) {
    // Not printf: a host may have set a locale with a decimal comma.
    std::array<char, 40> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::general, digits);
    return {text.data(), end.ptr};
}

std::string Triple(const Point& point) {
    return "(" + Digits(point.x) + ", " + Digits(point.y) + ", " + Digits(point.z) + ")";
}

std::string At(const Point& point) {
    return "at " + Triple(point);
}

std::string CellAt(const MeshView& mesh, int cell) {
    return "cell " + std::to_string(cell) + " " + At(mesh.NodeMean(cell));
}

std::string WallFaceAt(const MeshView& mesh, int wallFace) {
    const int group = mesh.WallGroup(wallFace);
    const std::string name = group > 0 ? "overset" + std::to_string(group) + " face, " : "";
    return name + "wall face " + std::to_string(wallFace) + " " + At(mesh.Walls().Center(wallFace));
}

std::string GridName(int grid) {
    return grid == 1 ? "background" : "component" + std::to_string(grid - 1);
}

}  // namespace kvx3d::checks
