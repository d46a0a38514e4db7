#include "tests/reference_host/mesh/mesh_files.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <stdexcept>

#include "tests/support/temp_directory.h"

namespace {

const std::map<std::string, std::pair<int, int>> groupNumbers = {
    {"background", {3, 1}}, {"component1", {3, 2}}, {"component2", {3, 3}}, {"inlet", {2, 11}},
    {"outlet", {2, 12}},    {"wall", {2, 13}},      {"symmetry", {2, 14}},  {"overset1", {2, 15}},
    {"overset2", {2, 16}},  {"lid", {2, 17}}};

constexpr int outsideEveryGroup = 0;

}  // namespace

std::string ShippedGeo(const std::string& file) {
    return std::string(KVX3D_TEST_MESH_DIR) + "/" + file;
}

host::Mesh ReadShipped(const std::string& file, const host::MeshParameters& parameters) {
    return host::ReadMesh(ShippedGeo(file), parameters);
}

host::Mesh ReadEdited(const std::string& file, const host::MeshParameters& parameters,
                      const std::vector<std::pair<std::string, std::string>>& replacements) {
    std::string text = ReadFile(ShippedGeo(file));
    for (const auto& [from, to] : replacements) {
        const std::size_t place = text.find(from);
        if (place == std::string::npos) {
            throw std::logic_error(file + " does not contain \"" + from + "\"");
        }
        text.replace(place, from.size(), to);
    }
    const TempDirectory directory;
    const auto path = directory.Path() / file;
    WriteFile(path, text);
    return host::ReadMesh(path.string(), parameters);
}

host::Mesh ReadText(const std::string& text, const std::string& file) {
    const TempDirectory directory;
    const auto path = directory.Path() / file;
    WriteFile(path, text);
    return host::ReadMesh(path.string());
}

int MshText::Node(double x, double y, double z) {
    nodes.push_back({x, y, z});
    return static_cast<int>(nodes.size());
}

int MshText::NodeAt(double x, double y, double z) {
    const auto place = std::find(nodes.begin(), nodes.end(), std::vector<double>{x, y, z});
    return place == nodes.end() ? Node(x, y, z) : static_cast<int>(place - nodes.begin()) + 1;
}

void MshText::Box(const std::string& group, double x) {
    std::vector<int> corners;
    for (double z : {0.0, 1.0}) {
        corners.push_back(NodeAt(x, 0, z));
        corners.push_back(NodeAt(x + 1, 0, z));
        corners.push_back(NodeAt(x + 1, 1, z));
        corners.push_back(NodeAt(x, 1, z));
    }
    Element(5, group, corners);
}

void MshText::BoxSide(const std::string& group, double x, char side) {
    if (side != 'd') {
        const double at = side == '-' ? x : x + 1;
        Element(3, group, {NodeAt(at, 0, 0), NodeAt(at, 1, 0), NodeAt(at, 1, 1), NodeAt(at, 0, 1)});
        return;
    }
    const double corner[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    for (int i = 0; i < 4; ++i) {
        const double* a = corner[i];
        const double* b = corner[(i + 1) % 4];
        Element(3, group,
                {NodeAt(x, a[0], a[1]), NodeAt(x + 1, a[0], a[1]), NodeAt(x + 1, b[0], b[1]),
                 NodeAt(x, b[0], b[1])});
    }
}

void MshText::Element(int type, const std::string& group, const std::vector<int>& nodeIds) {
    const int number = group.empty() ? outsideEveryGroup : groupNumbers.at(group).second;
    elements.push_back({type, number, nodeIds});
}

std::string MshText::Text(int tagStep) const {
    std::ostringstream out;
    out.precision(17);
    out << "$MeshFormat\n2.2 0 8\n$EndMeshFormat\n$PhysicalNames\n" << groupNumbers.size() << '\n';
    for (const auto& [name, number] : groupNumbers) {
        out << number.first << ' ' << number.second << " \"" << name << "\"\n";
    }
    out << "$EndPhysicalNames\n$Nodes\n" << nodes.size() << '\n';
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        out << (i + 1) * tagStep << ' ' << nodes[i][0] << ' ' << nodes[i][1] << ' ' << nodes[i][2]
            << '\n';
    }
    out << "$EndNodes\n$Elements\n" << elements.size() << '\n';
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const Entry& element = elements[i];
        const int entity = element.group == outsideEveryGroup ? 99 : element.group;
        out << i + 1 << ' ' << element.type << " 2 " << element.group << ' ' << entity;
        for (int node : element.nodes) {
            out << ' ' << node * tagStep;
        }
        out << '\n';
    }
    out << "$EndElements\n";
    return out.str();
}

bool HasLine(const std::vector<std::string>& lines, const std::vector<std::string>& words) {
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
        return std::all_of(words.begin(), words.end(), [&](const std::string& word) {
            return line.find(word) != std::string::npos;
        });
    });
}
