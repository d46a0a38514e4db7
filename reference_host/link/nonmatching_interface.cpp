#include "reference_host/link/nonmatching_interface.h"

#include <fmt/format.h>

#include <Eigen/Geometry>
#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "reference_host/mesh/mesh_geometry.h"
#include "reference_host/mesh/messages.h"
#include "reference_host/mesh/polygon_clip.h"

namespace host {

namespace {

constexpr double planeTolerance = 1e-9;  // of directions, and of distances relative to a face
constexpr double sliver = 1e-12;         // share of a face below which an overlap is rounding
constexpr double coverTolerance = 1e-9;  // share of a face by which its fragments may differ

/// An interface face with its corners and bounding box.
struct Side {
    Side(const Mesh& mesh, const BoundaryFace& face_) : face(face_), size(face_.area.norm()) {
        for (int node : face.nodes) {
            corners.push_back(mesh.nodes[node]);
            box.extend(mesh.nodes[node]);
        }
    }

    const BoundaryFace& face;
    const double size;  // area
    std::vector<Vec3> corners;
    Eigen::AlignedBox3d box;
    double covered = 0.0;  // total area of the fragments found so far
};

std::vector<Side> SidesOf(const Mesh& mesh, int block) {
    std::vector<Side> sides;
    const std::vector<BoundaryFace>& faces = mesh.interfaceFaces[block];
    for (std::size_t i = 1; i < faces.size(); ++i) {
        sides.emplace_back(mesh, faces[i]);
    }
    return sides;
}

/// The two faces lie in one plane with opposite normals.
bool AreBackToBack(const Side& a, const Side& b) {
    const Vec3 normalA = a.face.area / a.size;
    const Vec3 normalB = b.face.area / b.size;
    const double distance = std::abs(normalA.dot(b.face.centre - a.face.centre));
    return (normalA + normalB).norm() <= planeTolerance &&
           distance <= planeTolerance * std::sqrt(a.size);
}

void RefuseUncovered(const std::vector<Side>& sides, int block) {
    for (const Side& side : sides) {
        if (std::abs(side.covered - side.size) > coverTolerance * side.size) {
            throw std::runtime_error(fmt::format(
                "the interface{} face {} beside cell {} is covered to {:.6g} of its area by "
                "block{}: both sides must be plane there and cover each other",
                block, At(side.face.centre), side.face.cell, side.covered / side.size, 1 - block));
        }
    }
}

InnerFace FlaggedFace(int owner, int neighbor, const Vec3& centre, const Vec3& area) {
    InnerFace face;
    face.owner = owner;
    face.neighbor = neighbor;
    face.centre = centre;
    face.area = area;
    face.nonmatching = true;
    return face;
}

/// One inner face for each fragment, owned by the cell of `block`.
std::vector<InnerFace> CutFaces(const Mesh& mesh, const std::vector<Fragment>& fragments,
                                int block) {
    const int other = 1 - block;
    std::vector<InnerFace> faces;
    for (const Fragment& fragment : fragments) {
        const PolygonGeometry polygon = GeometryOf(fragment.corners);
        faces.push_back(FlaggedFace(mesh.interfaceFaces[block][fragment.face[block]].cell,
                                    mesh.interfaceFaces[other][fragment.face[other]].cell,
                                    polygon.centre, block == 0 ? polygon.area : -polygon.area));
    }
    return faces;
}

/// The uncut faces of `block`; the neighbor of each is the cell with its largest fragment.
std::vector<InnerFace> UncutFaces(const Mesh& mesh, const std::vector<Fragment>& fragments,
                                  int block) {
    const std::vector<BoundaryFace>& sides = mesh.interfaceFaces[block];
    std::vector<int> neighbor(sides.size(), 0);
    std::vector<double> largest(sides.size(), 0.0);
    for (const Fragment& fragment : fragments) {
        const int face = fragment.face[block];
        const double size = GeometryOf(fragment.corners).area.norm();
        if (size > largest[face]) {
            largest[face] = size;
            neighbor[face] = mesh.interfaceFaces[1 - block][fragment.face[1 - block]].cell;
        }
    }
    std::vector<InnerFace> faces;
    for (std::size_t i = 1; i < sides.size(); ++i) {
        faces.push_back(FlaggedFace(sides[i].cell, neighbor[i], sides[i].centre, sides[i].area));
    }
    return faces;
}

}  // namespace

std::vector<Fragment> CutInterface(const Mesh& mesh) {
    std::vector<Side> sides0 = SidesOf(mesh, 0);
    std::vector<Side> sides1 = SidesOf(mesh, 1);
    std::vector<Fragment> fragments;
    for (std::size_t i = 0; i < sides0.size(); ++i) {
        for (std::size_t j = 0; j < sides1.size(); ++j) {
            if (!sides0[i].box.intersects(sides1[j].box) || !AreBackToBack(sides0[i], sides1[j])) {
                continue;
            }
            std::vector<Vec3> corners = ClipConvex(sides0[i].corners, sides1[j].corners);
            const double size = corners.size() < 3 ? 0.0 : GeometryOf(corners).area.norm();
            if (size <= sliver * std::min(sides0[i].size, sides1[j].size)) {
                continue;
            }
            sides0[i].covered += size;
            sides1[j].covered += size;
            fragments.push_back(
                {{static_cast<int>(i) + 1, static_cast<int>(j) + 1}, std::move(corners)});
        }
    }
    RefuseUncovered(sides0, 0);
    RefuseUncovered(sides1, 1);
    return fragments;
}

std::array<int, 2> JoinInterface(Mesh& mesh, WholeFaces whole) {
    const std::vector<Fragment> fragments = CutInterface(mesh);
    if (fragments.empty()) {
        throw std::runtime_error(
            "the mesh has no interface: give it the volumes block0 and block1 and the surfaces "
            "interface0 and interface1");
    }
    std::array<int, 2> counts = {};
    for (int block = 0; block < 2; ++block) {
        const bool isWhole = whole == (block == 0 ? WholeFaces::Block0 : WholeFaces::Block1);
        const std::vector<InnerFace> faces =
            isWhole ? UncutFaces(mesh, fragments, block) : CutFaces(mesh, fragments, block);
        mesh.innerFaces.insert(mesh.innerFaces.end(), faces.begin(), faces.end());
        counts[block] = static_cast<int>(faces.size());
    }
    return counts;
}

void TakeAreas(const HostObjects& objects, Mesh& mesh) {
    for (int face = 1; face <= mesh.InnerFaceCount(); ++face) {
        mesh.innerFaces[face].area =
            Vec3(objects.fvm.nxe[face], objects.fvm.nye[face], objects.fvm.nze[face]);
    }
}

}  // namespace host
