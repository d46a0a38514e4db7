#ifndef KVX3D_REFERENCE_HOST_LINK_HOST_OBJECTS_H
#define KVX3D_REFERENCE_HOST_LINK_HOST_OBJECTS_H

#include <array>
#include <string>
#include <vector>

#include "host_link/host_interface.h"
#include "reference_host/mesh/mesh.h"

namespace host {

/// Owns the 1-based arrays that the toolbox links, and the two host objects that point to them.
/// It can be neither copied nor moved because the toolbox keeps the addresses.
class HostObjects {
public:
    /// Fills gv and fvm from the mesh. Ghost cells are numbered from Nc + 1, kind by kind: inlet,
    /// outlet, wall, symmetry. Fields start at zero; mu, cp, cellRho and cellK start at one. A
    /// ghost cell has the center of its face and the volume 0. Each overset group lists its wall
    /// faces in ascending order; there are as many groups as component grids.
    ///
    /// @param resultDir  value of gv.rootDir, the directory for result files
    HostObjects(const Mesh& mesh, const std::string& resultDir);
    HostObjects(const HostObjects&) = delete;
    HostObjects& operator=(const HostObjects&) = delete;

    CKvx3dGV gv;
    CKVX3DFiniteVolumeMesh fvm;

    /// Ghost cell of boundary face `face` of kind `kind`.
    int Ghost(Boundary kind, int face) const;
    int CellAndGhostCount() const { return fvm.NcAll; }

    // Fields, entries 1..NcAll, which the toolbox reads through gv.
    std::vector<double> pressure, u, v, w;
    std::vector<double> mu, cp, cellRho, cellK;

private:
    /// The x, y and z coordinates of the same entries.
    struct Vectors {
        std::vector<double> x, y, z;

        void Resize(int n);
        void Set(int i, const Vec3& value);
    };
    struct BoundaryArrays {
        Vectors centre, area;
        std::vector<int> cell, ghost;
    };

    void FillCells(const Mesh& mesh);
    void FillInnerFaces(const Mesh& mesh);
    void FillBoundaryFaces(const Mesh& mesh);
    void FillOversetGroups(const Mesh& mesh);
    void LinkBoundaryFaces();
    void LinkFields();

    std::string rootDir;
    std::vector<int> processId;
    Vectors nodes, cellCentres;
    std::vector<double> volume;
    std::vector<int> cellNodeLists;  // all rows of cellNodes, one after another
    std::vector<int*> cellNodeRows;  // 1..Nc
    std::vector<int> cavity;         // 1..Nc
    Vectors innerCentres, innerAreas;
    std::vector<int> owner, neighbor, nonmatching;
    std::array<BoundaryArrays, 4> boundary;    // by Boundary
    std::vector<int> groupCount, groupSizes;   // entry 0; entries 1..groups
    std::vector<std::vector<int>> groupFaces;  // 1..groups, rows 1..size
    std::vector<int*> groupRows;
};

}  // namespace host

#endif
