#ifndef KVX3D_REFERENCE_HOST_MESH_MESH_H
#define KVX3D_REFERENCE_HOST_MESH_MESH_H

#include <Eigen/Core>
#include <array>
#include <string>
#include <vector>

namespace host {

using Vec3 = Eigen::Vector3d;

/// The four boundary kinds of the toolbox, in its order. Overset faces are wall faces.
enum class Boundary { Inlet, Outlet, Wall, Symmetry };
constexpr std::array<Boundary, 4> allBoundaries = {Boundary::Inlet, Boundary::Outlet,
                                                   Boundary::Wall, Boundary::Symmetry};

struct InnerFace {
    int owner = 0;     ///< cell on the side the area vector leaves
    int neighbor = 0;  ///< cell on the side it points to
    Vec3 centre = Vec3::Zero();
    Vec3 area = Vec3::Zero();
    std::vector<int> nodes;    ///< node ids in order around the face; none at an interface
    bool nonmatching = false;  ///< of an interface whose two sides do not match
};

struct BoundaryFace {
    int cell = 0;          ///< real cell beside the face
    int oversetGroup = 0;  ///< wall faces: 1 or 2 on an overset boundary, 0 on a physical wall
    Vec3 centre = Vec3::Zero();
    Vec3 area = Vec3::Zero();  ///< points out of the domain
    std::vector<int> nodes;    ///< node ids in order around the face
};

/// A mesh as the host works on it. Every list is 1-based: entry 0 is a dummy, ids are positions.
struct Mesh {
    std::vector<Vec3> nodes;
    std::vector<std::vector<int>> cellNodes;  ///< node ids per cell in VTK's linear order
    std::vector<Vec3> cellCentre;
    std::vector<double> volume;
    std::vector<int> cavity;  ///< 1 background, 2 component1, 3 component2; 0 block0, 1 block1
    std::vector<InnerFace> innerFaces;
    std::array<std::vector<BoundaryFace>, 4> boundaryFaces;  ///< by Boundary
    /// Where block0 and block1 meet: the faces of each, not matched and not cut.
    std::array<std::vector<BoundaryFace>, 2> interfaceFaces;

    int CellCount() const { return static_cast<int>(cellCentre.size()) - 1; }
    int NodeCount() const { return static_cast<int>(nodes.size()) - 1; }
    int InnerFaceCount() const { return static_cast<int>(innerFaces.size()) - 1; }
    const std::vector<BoundaryFace>& Faces(Boundary kind) const {
        return boundaryFaces[static_cast<int>(kind)];
    }
    int FaceCount(Boundary kind) const { return static_cast<int>(Faces(kind).size()) - 1; }
    /// Number of cavities: 1 for a single grid, 2 or 3 for an overset mesh.
    int GridCount() const;
    /// Every cell has exactly two symmetry faces with opposite normals along z: the mesh is one
    /// cell thick and only the x-y plane is solved.
    bool IsQuasi2d() const;
    /// Extent in z.
    double Depth() const;
};

}  // namespace host

#endif
