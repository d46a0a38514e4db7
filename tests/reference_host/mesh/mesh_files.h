#ifndef KVX3D_TESTS_REFERENCE_HOST_MESH_MESH_FILES_H
#define KVX3D_TESTS_REFERENCE_HOST_MESH_MESH_FILES_H

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "reference_host/mesh/mesh.h"
#include "reference_host/mesh/mesh_reader.h"

/// Mesh geometries of the reference host.
constexpr const char* channelGeo = "channel_cylinder_overset.geo";
constexpr const char* fittedGeo = "channel_cylinder_fitted.geo";
constexpr const char* boxGeo = "box_annulus_overset.geo";
constexpr const char* sphereGeo = "box_sphere_overset.geo";

/// Path of such a geometry.
std::string ShippedGeo(const std::string& file);

/// Reads such a geometry.
host::Mesh ReadShipped(const std::string& file, const host::MeshParameters& parameters);

/// Reads such a geometry after replacing texts in it.
/// @throws std::logic_error  a text to replace does not occur
host::Mesh ReadEdited(const std::string& file, const host::MeshParameters& parameters,
                      const std::vector<std::pair<std::string, std::string>>& replacements);

/// Writes `text` to a file of this name in a new directory and reads it as a mesh.
host::Mesh ReadText(const std::string& text, const std::string& file = "mesh.geo");

/// Builds the text of a .msh file from nodes and from elements with their physical groups.
class MshText {
public:
    /// Adds a node and returns its number.
    int Node(double x, double y, double z);
    /// Adds a hexahedron 1 x 1 x 1 whose lowest corner is (x, 0, 0). Nodes that exist at its
    /// corners are used again, so that boxes at 0, 1 and 2 form a row.
    void Box(const std::string& group, double x);
    /// Puts a side of the box at x into a group: '-' or '+' is the end in that direction of x, 'd'
    /// the four sides between the ends.
    void BoxSide(const std::string& group, double x, char side);
    /// Adds an element by its type number in Gmsh. It belongs to no group if `group` is empty.
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

/// The what() of the std::exception that `call` throws, or an empty text if it throws none.
template <class Call>
std::string ErrorOf(Call call) {
    try {
        call();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

/// Name of a parameterized test whose parameter has a member `name`.
template <class Case>
std::string CaseName(const testing::TestParamInfo<Case>& given) {
    return given.param.name;
}

/// Whether one of the lines contains all words.
bool HasLine(const std::vector<std::string>& lines, const std::vector<std::string>& words);

#endif
