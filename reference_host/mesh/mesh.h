#ifndef KVX3D_REFERENCE_HOST_MESH_MESH_H
#define KVX3D_REFERENCE_HOST_MESH_MESH_H

#include <Eigen/Core>
#include <array>
#include <string>
#include <vector>

namespace host {

using Vec3 = Eigen::Vector3d;

/// The four kinds of boundary faces in the order in which the toolbox numbers their ghost cells.
/// Faces of an overset boundary are wall faces.
enum class Boundary { Inlet, Outlet, Wall, Symmetry };
constexpr std::array<Boundary, 4> allBoundaries = {Boundary::Inlet, Boundary::Outlet,
                                                   Boundary::Wall, Boundary::Symmetry};

struct InnerFace {
    int owner = 0;               ///< cell that the area vector points out of
    int neighbor = 0;            ///< cell that the area vector points into
    Vec3 centre = Vec3::Zero();  ///< centroid [length]
    Vec3 area = Vec3::Zero();    ///< area vector: unit normal times area [length^2]
    std::vector<int> nodes;      ///< node ids in order around the face; empty at an interface
    bool nonmatching = false;    ///< part of an interface whose two sides do not match
};

struct BoundaryFace {
    int cell = 0;          ///< real cell beside the face
    int oversetGroup = 0;  ///< wall faces: 1 or 2 on an overset boundary, 0 on a physical wall
    bool isBody = false;   ///< wall faces: in the group "body" of the mesh file
    Vec3 centre = Vec3::Zero();  ///< centroid [length]
    Vec3 area = Vec3::Zero();    ///< area vector, points out of the domain [length^2]
    std::vector<int> nodes;      ///< node ids in order around the face
};

/// The mesh as the rooms of the host use it. Every list is 1-based: entry 0 is unused, and an id is
/// the position in its list.
struct Mesh {
    std::vector<Vec3> nodes;                  ///< coordinates [length]
    std::vector<std::vector<int>> cellNodes;  ///< node ids per cell in VTK's linear order
    std::vector<Vec3> cellCentre;             ///< centroids [length]
    std::vector<double> volume;               ///< [length^3]
    std::vector<int> cavity;  ///< 1 background, 2 component1, 3 component2; 0 block0, 1 block1
    std::vector<InnerFace> innerFaces;
    std::array<std::vector<BoundaryFace>, 4> boundaryFaces;  ///< by Boundary
    /// The faces of block0 and of block1 where the two meet, as the mesh file has them. They are
    /// neither matched nor cut; JoinInterface() does that.
    std::array<std::vector<BoundaryFace>, 2> interfaceFaces;

    bool namesBody = false;  ///< whether any face is in the group "body"

    int CellCount() const { return static_cast<int>(cellCentre.size()) - 1; }
    int NodeCount() const { return static_cast<int>(nodes.size()) - 1; }
    int InnerFaceCount() const { return static_cast<int>(innerFaces.size()) - 1; }
    const std::vector<BoundaryFace>& Faces(Boundary kind) const {
        return boundaryFaces[static_cast<int>(kind)];
    }
    int FaceCount(Boundary kind) const { return static_cast<int>(Faces(kind).size()) - 1; }
    /// Number of cavities: 1 for a single grid, 2 or 3 for an overset mesh.
    int GridCount() const;
    /// Whether every cell has exactly two symmetry faces, with opposite normals along z. Such a
    /// mesh is one cell thick, and the flow is solved in the x-y plane only.
    bool IsQuasi2d() const;
    /// Extent in z [length].
    double Depth() const;
};

/// Mean of the coordinates of some nodes [length].
Vec3 NodeMean(const Mesh& mesh, const std::vector<int>& nodeIds);

}  // namespace host

#endif
