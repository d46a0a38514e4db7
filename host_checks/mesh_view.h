#ifndef KVX3D_HOST_CHECKS_MESH_VIEW_H
#define KVX3D_HOST_CHECKS_MESH_VIEW_H

#include <array>
#include <vector>

#include "host_checks/export.h"
#include "host_checks/point.h"
#include "host_link/host_interface.h"

namespace kvx3d::checks {

/// The arrays of one boundary kind under common names, 1-based, owned by the host.
struct BoundaryFaces {
    const char* name;  ///< "inlet", "outlet", "wall", "symmetry"
    int count;
    const double *x, *y, *z;     ///< face centers
    const double *nx, *ny, *nz;  ///< area vectors
    const int* cell;             ///< real cell beside the face
    const int* ghost;            ///< ghost cell of the face

    Point Center(int face) const { return {x[face], y[face], z[face]}; }
    Point Area(int face) const { return {nx[face], ny[face], nz[face]}; }
};

/// The four boundary kinds in the order inlet, outlet, wall, symmetry.
KVX3D_CHECKS_API std::array<BoundaryFaces, 4> BoundaryKinds(const CKVX3DFiniteVolumeMesh& fvm);

/// V^(1/3) with the operations of the toolbox, whose margins are multiples of this length.
KVX3D_CHECKS_API double MarginLength(double volume);

/// Edge length of the regular cell with this number of nodes and this volume: tetrahedron (4),
/// pyramid (5), prism (6), otherwise the cube.
KVX3D_CHECKS_API double RegularEdge(double volume, int nodeCount);

/// Edge length of the regular triangle (3 corners) or otherwise the square with this area.
KVX3D_CHECKS_API double RegularEdgeInPlane(double area, int cornerCount);

/// What the checks derive from the host objects. A view copies no array of the host.
///
/// The host objects must satisfy the rules of HostFaults(), with one grid or more; they must
/// outlive the view and must not change their sizes or their overset groups while it exists.
class KVX3D_CHECKS_API MeshView {
public:
    MeshView(const CKvx3dGV& hostVariables, const CKVX3DFiniteVolumeMesh& hostMesh);
    MeshView(const MeshView&) = delete;
    MeshView& operator=(const MeshView&) = delete;

    const CKvx3dGV& gv;
    const CKVX3DFiniteVolumeMesh& fvm;

    /// Number of grids: 1, 2 or 3.
    int GridCount() const { return nGrids; }
    /// Grid of a cell 1..Nc by the rule of the toolbox: 1 is the background, the cavity beside
    /// inlet face 1; 2 is component 1, the cavity beside the first face of overset group 1; 3 is
    /// component 2, the same with group 2. Without an inlet face the background is cavity 1.
    int Grid(int cell) const { return gridOfCavity[gv.cavityId[cell]]; }
    /// Cells of a grid in ascending order.
    std::vector<int> CellsOfGrid(int grid) const;

    Point CellCenter(int cell) const { return {fvm.xc[cell], fvm.yc[cell], fvm.zc[cell]}; }
    Point Node(int node) const { return {fvm.xn[node], fvm.yn[node], fvm.zn[node]}; }
    /// Mean position of the nodes of a cell. Messages give it as the position of the cell.
    Point NodeMean(int cell) const;
    int NodeCount(int cell) const { return fvm.cellNodes[cell][0]; }
    Point InnerFaceCenter(int face) const { return {fvm.xe[face], fvm.ye[face], fvm.ze[face]}; }
    Point InnerFaceArea(int face) const { return {fvm.nxe[face], fvm.nye[face], fvm.nze[face]}; }

    const BoundaryFaces& Inlets() const { return kinds[0]; }
    const BoundaryFaces& Walls() const { return kinds[2]; }
    const BoundaryFaces& Symmetries() const { return kinds[3]; }
    /// Overset group of a wall face 1..NWall: 1 or 2 on the outer boundary of a component, 0 on a
    /// physical wall.
    int WallGroup(int wallFace) const { return wallGroup[wallFace]; }
    /// Wall faces of an overset group (0: physical walls) beside a grid, in ascending order.
    std::vector<int> WallFaces(int group, int grid) const;

    /// True if every cell has exactly two symmetry faces, all of them perpendicular to one
    /// direction and the two of a cell opposite to each other.
    bool IsOneCellThick() const { return !planeArea.empty(); }
    /// Unit vector across a mesh that is one cell thick.
    Point ThinDirection() const { return thinDirection; }
    /// Edge length of the regular cell with the shape and volume of the cell. On a mesh one cell
    /// thick: of the regular polygon with the shape and area of its symmetry face.
    double EdgeLength(int cell) const;

    /// Nodes of a face of `cell`, in order around the face, whatever the node order of the cell.
    ///
    /// Host objects have no node lists of faces. The nodes of the face are those whose distance
    /// from the plane through `center` perpendicular to `area` is less than a third of the largest
    /// distance of any node of the cell, which allows for warped faces; they are sorted by their
    /// angle around `center`.
    std::vector<int> FaceNodes(int cell, const Point& center, const Point& area) const;
    std::vector<int> WallFaceNodes(int wallFace) const;

private:
    void NumberGrids();
    void ReadWallGroups();
    void FindThinDirection();

    std::array<BoundaryFaces, 4> kinds;
    int nGrids = 0;
    std::vector<int> gridOfCavity;  // by cavity id
    std::vector<int> wallGroup;     // by wall face
    std::vector<double> planeArea;  // by cell: area of a symmetry face; empty unless one cell thick
    Point thinDirection;
};

}  // namespace kvx3d::checks

#endif
