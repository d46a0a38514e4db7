#ifndef KVX3D_TESTS_REFERENCE_HOST_MESH_MESH_FILES_H
#define KVX3D_TESTS_REFERENCE_HOST_MESH_MESH_FILES_H

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "reference_host/mesh/mesh.h"
#include "reference_host/mesh/mesh_reader.h"

/// Geometries that come with the host.
constexpr const char* channelGeo = "channel_cylinder_overset.geo";
constexpr const char* boxGeo = "box_annulus_overset.geo";
constexpr const char* sphereGeo = "box_sphere_overset.geo";

/// Path of one of them.
std::string ShippedGeo(const std::string& file);

/// Reads one of them.
host::Mesh ReadShipped(const std::string& file, const host::MeshParameters& parameters);

/// Reads one of them after replacing texts in it; each must occur.
host::Mesh ReadEdited(const std::string& file, const host::MeshParameters& parameters,
                      const std::vector<std::pair<std::string, std::string>>& replacements);

/// Writes `text` to a file of this name in a new directory and reads it as a mesh.
host::Mesh ReadText(const std::string& text, const std::string& file = "mesh.geo");

/// A .msh file in the making: nodes and elements with their physical group.
class MshText {
public:
    /// Adds the node and answers its number.
    int Node(double x, double y, double z);
    /// Adds a hexahedron 1 x 1 x 1 whose lowest corner is (x, 0, 0), with nodes of its own unless
    /// some are there already, so that boxes at 0, 1, 2 form a row.
    void Box(const std::string& group, double x);
    /// Names a side of the box at x: '-' and '+' in x, 'd' the four sides around it.
    void BoxSide(const std::string& group, double x, char side);
    /// Adds an element by Gmsh's type number. An empty group leaves it outside every group.
    void Element(int type, const std::string& group, const std::vector<int>& nodes);

    /// @param tagStep  distance between the numbers of two nodes in the file
    std::string Text(int tagStep = 1) const;
    host::Mesh Read() const { return ReadText(Text(), "mesh.msh"); }

private:
    int NodeAt(double x, double y, double z);

    struct Entry {
        int type;
        int group;
        std::vector<int> nodes;
    };
    std::vector<std::vector<double>> nodes;
    std::vector<Entry> elements;
};

/// What of the std::exception that `call` throws; empty if it throws none.
template <class Call>
std::string ErrorOf(Call call) {
    try {
        call();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

/// Test name of a case that has a `name`.
template <class Case>
std::string CaseName(const testing::TestParamInfo<Case>& given) {
    return given.param.name;
}

/// Whether a line contains all the words.
bool HasLine(const std::vector<std::string>& lines, const std::vector<std::string>& words);

#endif
