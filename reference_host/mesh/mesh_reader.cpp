#include "reference_host/mesh/mesh_reader.h"

#include <fmt/format.h>
#include <gmsh.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <utility>

#include "reference_host/mesh/geo_parameters.h"
#include "reference_host/mesh/gmsh_session.h"
#include "reference_host/mesh/mesh_faces.h"
#include "reference_host/mesh/mesh_geometry.h"
#include "reference_host/mesh/messages.h"

namespace host {
namespace {

/// The meaning of a physical group of surfaces.
struct SurfaceGroup {
    Boundary kind = Boundary::Wall;
    int oversetGroup = 0;
    int interfaceSide = -1;
    bool isBody = false;
};

const std::map<std::string, int> cavityOfGroup = {
    {"background", 1}, {"component1", 2}, {"component2", 3}, {"block0", 0}, {"block1", 1}};
const std::map<std::string, SurfaceGroup> surfaceGroups = {{"inlet", {Boundary::Inlet}},
                                                           {"outlet", {Boundary::Outlet}},
                                                           {"wall", {Boundary::Wall}},
                                                           {"symmetry", {Boundary::Symmetry}},
                                                           {"overset1", {Boundary::Wall, 1}},
                                                           {"overset2", {Boundary::Wall, 2}},
                                                           {"interface0", {Boundary::Wall, 0, 0}},
                                                           {"interface1", {Boundary::Wall, 0, 1}},
                                                           {"body", {Boundary::Wall, 0, -1, true}}};

/// Elements of one type in one volume or surface. Nodes are tags of Gmsh.
struct ElementBlock {
    int type = 0;
    std::size_t nodesEach = 0;
    int cavity = 0;        // for volumes
    std::string group;     // for volumes
    SurfaceGroup surface;  // for surfaces
    std::vector<std::size_t> nodes;
};

/// Copies of what Gmsh holds, for use after the session has ended.
struct GmshMesh {
    std::vector<std::pair<std::size_t, Vec3>> nodes;  // by ascending tag
    std::vector<ElementBlock> volumes;
    std::vector<ElementBlock> surfaces;

    /// Position of a tag in `nodes`. Every tag of an element is there: Gmsh refuses a file with an
    /// element on an unknown node.
    std::size_t NodePosition(std::size_t tag) const {
        // Tags are 1, 2, 3 ... in nearly every file.
        if (tag - 1 < nodes.size() && nodes[tag - 1].first == tag) {
            return tag - 1;
        }
        const auto place = std::lower_bound(
            nodes.begin(), nodes.end(), tag,
            [](const auto& node, std::size_t wanted) { return node.first < wanted; });
        return static_cast<std::size_t>(place - nodes.begin());
    }

    /// Mean of the nodes of element `i` of a block.
    Vec3 Centre(const ElementBlock& block, std::size_t i) const {
        Vec3 sum = Vec3::Zero();
        for (std::size_t k = i * block.nodesEach; k < (i + 1) * block.nodesEach; ++k) {
            sum += nodes[NodePosition(block.nodes[k])].second;
        }
        return sum / static_cast<double>(block.nodesEach);
    }
};

std::vector<std::pair<std::size_t, Vec3>> ReadNodes() {
    std::vector<std::size_t> tags;
    std::vector<double> x;
    std::vector<double> parametric;
    gmsh::model::mesh::getNodes(tags, x, parametric);
    std::vector<std::pair<std::size_t, Vec3>> nodes;
    nodes.reserve(tags.size());
    for (std::size_t i = 0; i < tags.size(); ++i) {
        nodes.emplace_back(tags[i], Vec3(x[3 * i], x[3 * i + 1], x[3 * i + 2]));
    }
    std::sort(nodes.begin(), nodes.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    return nodes;
}

std::string KnownNames(int dim) {
    return dim == 3
               ? "background, component1, component2, block0, block1"
               : "inlet, outlet, wall, body, symmetry, overset1, overset2, interface0, interface1";
}

/// Name of the group of each volume (dim 3) or surface (dim 2) that belongs to one.
std::map<int, std::string> ReadGroups(int dim) {
    const std::string kind = dim == 3 ? "volume" : "surface";
    gmsh::vectorpair groups;
    gmsh::model::getPhysicalGroups(groups, dim);
    std::map<int, std::string> nameOfEntity;
    for (const auto& group : groups) {
        std::string name;
        gmsh::model::getPhysicalName(dim, group.second, name);
        if (dim == 3 ? cavityOfGroup.count(name) == 0 : surfaceGroups.count(name) == 0) {
            throw std::runtime_error(
                fmt::format("physical {} group {} is named \"{}\": rename it to one of {}", kind,
                            group.second, name, KnownNames(dim)));
        }
        std::vector<int> entities;
        gmsh::model::getEntitiesForPhysicalGroup(dim, group.second, entities);
        for (int entity : entities) {
            const auto [place, isNew] = nameOfEntity.emplace(entity, name);
            if (!isNew && place->second != name) {
                throw std::runtime_error(fmt::format(
                    "{} {} is in two physical groups, \"{}\" and \"{}\": keep it in one", kind,
                    entity, place->second, name));
            }
        }
    }
    return nameOfEntity;
}

/// Elements of one volume or surface, one block for each type.
std::vector<ElementBlock> ReadElements(int dim, int entity) {
    std::vector<int> types;
    std::vector<std::vector<std::size_t>> tags;
    std::vector<std::vector<std::size_t>> nodes;
    gmsh::model::mesh::getElements(types, tags, nodes, dim, entity);
    std::vector<ElementBlock> blocks;
    for (std::size_t i = 0; i < types.size(); ++i) {
        ElementBlock block;
        block.type = types[i];
        block.nodesEach = nodes[i].size() / tags[i].size();
        block.nodes = std::move(nodes[i]);
        blocks.push_back(std::move(block));
    }
    return blocks;
}

/// Throws unless the elements are linear triangles, quadrangles, tetrahedra, hexahedra, prisms or
/// pyramids.
void CheckElementType(const GmshMesh& found, const ElementBlock& block, int dim, int entity) {
    constexpr std::array<int, 6> accepted = {2, 3, 4, 5, 6, 7};  // their type numbers in Gmsh
    if (std::find(accepted.begin(), accepted.end(), block.type) != accepted.end()) {
        return;
    }
    std::string name;
    int itsDim = 0;
    int order = 0;
    int nNodes = 0;
    int nCorners = 0;
    std::vector<double> local;
    gmsh::model::mesh::getElementProperties(block.type, name, itsDim, order, nNodes, local,
                                            nCorners);
    const std::string remedy = order > 1
                                   ? "the host reads linear elements, set Mesh.ElementOrder = 1"
                                   : "the host reads tetrahedra, hexahedra, prisms and pyramids";
    throw std::runtime_error(fmt::format("{} {} has elements \"{}\", the first {}: {}",
                                         dim == 3 ? "volume" : "surface", entity, name,
                                         At(found.Centre(block, 0)), remedy));
}

void ReadVolumes(GmshMesh& found) {
    const std::map<int, std::string> groups = ReadGroups(3);
    gmsh::vectorpair entities;
    gmsh::model::getEntities(entities, 3);
    if (entities.empty()) {
        throw std::runtime_error("the file has no volume: the host needs a three-dimensional mesh");
    }
    for (const auto& entity : entities) {
        std::vector<ElementBlock> blocks = ReadElements(3, entity.second);
        if (blocks.empty()) {
            throw std::runtime_error(fmt::format(
                "volume {} has no cells: mesh it, or take it out of the model", entity.second));
        }
        const auto group = groups.find(entity.second);
        if (group == groups.end()) {
            throw std::runtime_error(fmt::format(
                "volume {} with its cell {} is in no physical group: put it into one of {}",
                entity.second, At(found.Centre(blocks[0], 0)), KnownNames(3)));
        }
        for (ElementBlock& block : blocks) {
            CheckElementType(found, block, 3, entity.second);
            block.cavity = cavityOfGroup.at(group->second);
            block.group = group->second;
            found.volumes.push_back(std::move(block));
        }
    }
}

void ReadSurfaces(GmshMesh& found) {
    for (const auto& [entity, name] : ReadGroups(2)) {
        for (ElementBlock& block : ReadElements(2, entity)) {
            CheckElementType(found, block, 2, entity);
            block.surface = surfaceGroups.at(name);
            found.surfaces.push_back(std::move(block));
        }
    }
}

/// Throws unless the mesh has two blocks and nothing else, each with its side of the interface, or
/// no block at all: an overset mesh holds no blocks.
void RefuseIncompleteBlocks(const GmshMesh& found) {
    std::set<std::string> groups;
    std::array<bool, 2> hasSide = {};
    for (const ElementBlock& block : found.volumes) {
        groups.insert(block.group);
    }
    for (const ElementBlock& block : found.surfaces) {
        if (block.surface.interfaceSide >= 0) {
            hasSide[block.surface.interfaceSide] = true;
        }
    }
    const std::size_t nBlocks = groups.count("block0") + groups.count("block1");
    if (nBlocks == 0 && !hasSide[0] && !hasSide[1]) {
        return;
    }
    if (nBlocks != 2 || groups.size() != 2) {
        throw std::runtime_error(
            "a mesh with a non-matching interface has the physical volume groups \"block0\" and "
            "\"block1\" and no other: give its volumes these names");
    }
    for (int side = 0; side < 2; ++side) {
        if (!hasSide[side]) {
            throw std::runtime_error(fmt::format(
                "physical surface group \"interface{}\" is missing: put the surfaces of block{} "
                "that lie on the other block into it",
                side, side));
        }
    }
}

/// Throws unless the mesh has a background, no component2 without a component1, and an overset
/// surface for each component.
void RefuseMissingGroups(const GmshMesh& found) {
    std::array<bool, 4> hasCavity = {};
    std::array<bool, 3> hasOverset = {};
    for (const ElementBlock& block : found.volumes) {
        hasCavity[block.cavity] = true;
    }
    for (const ElementBlock& block : found.surfaces) {
        hasOverset[block.surface.oversetGroup] = true;
    }
    for (int cavity = 1; cavity <= 3; ++cavity) {
        const bool isNeeded = cavity == 1 || (cavity == 2 && hasCavity[3]);
        if (isNeeded && !hasCavity[cavity]) {
            throw std::runtime_error(fmt::format(
                "physical volume group \"{}\" is missing: {}", CavityName(cavity),
                cavity == 1 ? "give this name to the grid that fills the domain"
                            : "give this name to the only component, in place of component2"));
        }
    }
    for (int group = 1; group <= 2; ++group) {
        const std::string overset = FaceName(Boundary::Wall, group);
        const std::string component = CavityName(group + 1);
        if (hasCavity[group + 1] && !hasOverset[group]) {
            throw std::runtime_error(
                fmt::format("physical surface group \"{}\" is missing: put the outer boundary of "
                            "{} into it",
                            overset, component));
        }
        if (!hasCavity[group + 1] && hasOverset[group]) {
            throw std::runtime_error(
                fmt::format("there is a physical surface group \"{}\" but no volume group \"{}\": "
                            "add the volume, or take the surfaces out of the group",
                            overset, component));
        }
    }
}

/// Numbers the nodes of the elements by ascending tag. Nodes that no element uses are left out:
/// Gmsh creates one at each point of the geometry, for example at the center of a circle.
std::vector<int> NumberNodes(const GmshMesh& found, Mesh& mesh) {
    std::vector<int> idOfPosition(found.nodes.size(), 0);
    for (const auto* blocks : {&found.volumes, &found.surfaces}) {
        for (const ElementBlock& block : *blocks) {
            for (std::size_t tag : block.nodes) {
                idOfPosition[found.NodePosition(tag)] = 1;
            }
        }
    }
    mesh.nodes.assign(1, Vec3::Zero());
    for (std::size_t i = 0; i < idOfPosition.size(); ++i) {
        if (idOfPosition[i] > 0) {
            idOfPosition[i] = static_cast<int>(mesh.nodes.size());
            mesh.nodes.push_back(found.nodes[i].second);
        }
    }
    return idOfPosition;
}

Mesh BuildMesh(const GmshMesh& found) {
    Mesh mesh;
    const std::vector<int> idOfPosition = NumberNodes(found, mesh);
    const auto nodesOf = [&](const ElementBlock& block, std::size_t element) {
        std::vector<int> ids(block.nodesEach);
        for (std::size_t k = 0; k < ids.size(); ++k) {
            const std::size_t tag = block.nodes[element * block.nodesEach + k];
            ids[k] = idOfPosition[found.NodePosition(tag)];
        }
        return ids;
    };

    mesh.cellNodes.assign(1, {});
    mesh.cavity.assign(1, 0);
    for (const ElementBlock& block : found.volumes) {
        for (std::size_t i = 0; i < block.nodes.size() / block.nodesEach; ++i) {
            mesh.cellNodes.push_back(nodesOf(block, i));
            mesh.cavity.push_back(block.cavity);
        }
    }
    std::vector<NamedFace> named;
    for (const ElementBlock& block : found.surfaces) {
        for (std::size_t i = 0; i < block.nodes.size() / block.nodesEach; ++i) {
            named.push_back({block.surface.kind, block.surface.oversetGroup, nodesOf(block, i),
                             block.surface.interfaceSide, block.surface.isBody});
        }
    }
    BuildFaces(mesh, named);
    ComputeGeometry(mesh);
    return mesh;
}

void CheckFileName(const std::string& file, const std::string& extension,
                   const MeshParameters& parameters) {
    if (!std::filesystem::is_regular_file(file)) {
        throw std::runtime_error(
            fmt::format("{}: give the path of a .msh or .geo file",
                        std::filesystem::exists(file) ? "this is no file" : "no such file"));
    }
    if (extension != ".msh" && extension != ".geo") {
        throw std::runtime_error("the name must end in .msh or .geo");
    }
    if (extension == ".msh" && !parameters.empty()) {
        throw std::runtime_error(
            fmt::format("a .msh file has no parameters, \"{}\" was given: pass the .geo file",
                        parameters.begin()->first));
    }
}

GmshMesh ReadModel(const std::string& file, const MeshParameters& parameters) {
    const std::string extension = std::filesystem::path(file).extension().string();
    CheckFileName(file, extension, parameters);
    GmshSession session;
    for (const auto& [variable, value] : parameters) {
        const std::string name = OnelabName(file, variable);
        session.Run([&, number = value] { gmsh::onelab::setNumber(name, {number}); });
    }
    try {
        session.Run([&] {
            gmsh::open(file);
            if (extension == ".geo") {
                gmsh::model::mesh::generate(3);
            }
        });
    } catch (const std::exception& error) {
        throw std::runtime_error(
            fmt::format("Gmsh reports \"{}\": {}", error.what(),
                        extension == ".geo" ? "correct the geometry or its parameters"
                                            : "it may be incomplete; write it again, with linear "
                                              "tetrahedra, hexahedra, prisms and pyramids only"));
    }
    GmshMesh found;
    session.Run([&] {
        found.nodes = ReadNodes();
        ReadVolumes(found);
        ReadSurfaces(found);
    });
    RefuseIncompleteBlocks(found);
    RefuseMissingGroups(found);
    return found;
}

}  // namespace

Mesh ReadMesh(const std::string& file, const MeshParameters& parameters) {
    try {
        return BuildMesh(ReadModel(file, parameters));
    } catch (const std::exception& error) {
        throw std::runtime_error(file + ": " + error.what());
    }
}

Mesh ReadGrids(const std::string& file, const MeshParameters& parameters) {
    Mesh mesh = ReadMesh(file, parameters);
    if (std::count(mesh.cavity.begin() + 1, mesh.cavity.end(), 0) > 0) {
        throw std::runtime_error(file +
                                 ": its volumes are block0 and block1, which the case nonmatching "
                                 "joins: this case needs background and component1");
    }
    return mesh;
}

}  // namespace host
