#ifndef OVERSET_HOST_TWO_GRIDS_H
#define OVERSET_HOST_TWO_GRIDS_H

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host_link/host_interface.h"

/// The measures of the two grids. Lengths are in diameters of the heated cylinder: the toolbox
/// compares with absolute thresholds, so a host scales its lengths to about 1.
struct Shape {
    int n = 10;  ///< background cells per unit length; the mesh is one cell of 1 / n thick
    double x = 2.0137, y = 1.9929;  ///< center of the ring
    double inner = 0.5;             ///< radius of the cylinder, the inner side of the ring
    double outer = 1.25;            ///< radius of the outer side of the ring
    int around = 80;                ///< cells of the ring around the cylinder
    int across = 8;                 ///< cells of the ring from its inner to its outer side
    bool hasInlet = true;           ///< the side x = 0 is an inlet, otherwise an outlet
};

/// Owns the arrays of a host and the two objects that point to them. All arrays are 1-based: entry
/// 0 is not data.
///
/// Background (cavity 1): the square [0, 4] x [0, 4] of hexahedra, with an inlet at x = 0, an
/// outlet at x = 4 and walls at y = 0 and y = 4. Component 1 (cavity 2): a ring of hexahedra around
/// the cylinder; its inner side is a wall, its outer side is overset group 1. Both lie between two
/// symmetry planes, so the problem is one of the x-y plane.
///
/// Neither copied nor moved: the toolbox keeps the addresses.
class TwoGrids {
public:
    /// @param resultDirectory  becomes gv.rootDir: result files go there
    TwoGrids(const Shape& shape, std::string resultDirectory);
    TwoGrids(const TwoGrids&) = delete;
    TwoGrids& operator=(const TwoGrids&) = delete;

    CKvx3dGV gv;
    CKVX3DFiniteVolumeMesh fvm;
    std::vector<double> temperature;  ///< by cell and ghost, 1..NcAll; published as the pressure

private:
    struct Point {
        double x, y;
    };
    enum class Side { inlet, outlet, wall, overset };

    /// A structured block: cells (i, j), i fastest.
    struct Block {
        int ni, nj;
        bool isRing;                          ///< i runs in a circle and has no sides
        std::function<Point(int, int)> node;  ///< position of node (i, j), from 0
        Side west = Side::wall, east = Side::wall, south = Side::wall, north = Side::wall;
    };
    struct Faces {
        std::vector<double> x{0.0}, y{0.0}, z{0.0};     // centers
        std::vector<double> nx{0.0}, ny{0.0}, nz{0.0};  // area vectors
        std::vector<int> cell{0};                       // owner or the cell beside the face
        std::vector<int> other{0};                      // neighbor or ghost cell
    };

    void Add(const Block& block, int cavity);
    void AddCell(const Block& block, int i, int j, int firstNode);
    void AddFace(Faces& faces, Point a, Point b, int cell, int other);
    void AddBoundaryFace(Side side, Point a, Point b, int cell);
    void AddSymmetryFaces(int cell, double area);
    void NumberGhosts();
    void Link();
    int CellCount() const { return static_cast<int>(volume.size()) - 1; }

    double depth;
    std::string rootDirectory;
    std::vector<double> xn{0.0}, yn{0.0}, zn{0.0}, xc{0.0}, yc{0.0}, zc{0.0}, volume{0.0};
    std::vector<std::vector<int>> cellNodes{{0}};
    std::vector<int*> cellNodeRows;
    std::vector<int> cavity{0};
    Faces inner, inlet, outlet, wall, symmetry;
    std::vector<int> nonmatching;
    std::vector<int> groupCount{1}, groupSizes{0, 0}, groupFaces{0};
    std::vector<int*> groupRows;
    std::vector<int> processId{0};
    std::vector<double> velocity[3], ones;
};

#endif
