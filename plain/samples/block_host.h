#ifndef KVX3D_PLAIN_SAMPLES_BLOCK_HOST_H
#define KVX3D_PLAIN_SAMPLES_BLOCK_HOST_H

#include <array>
#include <functional>
#include <vector>

#include "host_checks/point.h"
#include "host_link/host_interface.h"

/// A complete host of curved structured blocks of hexahedra, one cavity each, with nodes, fields
/// and overset groups. The arrays are the host's own, so tests spoil them through `gv` and `fvm`.
///
/// Cells are numbered block by block, axis 0 fastest; inner faces cell by cell in the order of the
/// axes, from the lower to the higher cell; boundary faces by block, cell and side. Ghost cells
/// follow the faces: inlet, outlet, wall, symmetry. A cell center is the mean of the nodes.
class BlockHost {
public:
    using Point = kvx3d::checks::Point;
    enum Side { inlet, outlet, wall, symmetry, overset };

    struct Block {
        std::array<int, 3> n{};                    ///< cells along each axis
        bool closed = false;                       ///< axis 0 runs in a circle, without sides
        std::function<Point(int, int, int)> node;  ///< node at lattice position 0..n
        std::array<Side, 6> sides{};               ///< low and high end of each axis
        int group = 0;                             ///< overset group of its overset sides
    };

    BlockHost() = default;
    BlockHost(const BlockHost&) = delete;
    BlockHost& operator=(const BlockHost&) = delete;

    /// Adds a block in the next cavity and links the records anew.
    void Add(const Block& block);

    CKvx3dGV gv;
    CKVX3DFiniteVolumeMesh fvm;

private:
    struct Faces {
        std::vector<double> center[3]{{0.0}, {0.0}, {0.0}};
        std::vector<double> area[3]{{0.0}, {0.0}, {0.0}};
        std::vector<int> cell{0};   ///< owner or real cell
        std::vector<int> other{0};  ///< neighbor or ghost cell
    };

    void AddNodes(const Block& block);
    void AddCells(const Block& block);
    void AddFaces(const Block& block);
    std::array<int, 4> SideNodes(int cell, int side) const;
    void AddFace(Faces& faces, int cell, int side, int other);
    Point NodeAt(int node) const { return {nodes[0][node], nodes[1][node], nodes[2][node]}; }
    Point CellCenter(int cell) const;
    void Link();
    void LinkGroups();

    int firstNode = 1;  // of the block being added
    int firstCell = 1;
    std::vector<double> nodes[3]{{0.0}, {0.0}, {0.0}};
    std::vector<double> centers[3]{{0.0}, {0.0}, {0.0}};
    std::vector<double> volumes{0.0};
    std::vector<int> cavities{0};
    std::vector<std::array<int, 9>> cellNodes{{}};  ///< rows with the count 8 in slot 0
    std::vector<int*> cellNodeRows;
    Faces inner;
    std::array<Faces, 4> boundary;  ///< inlet, outlet, wall, symmetry
    std::vector<int> nonmatching;
    std::vector<std::vector<int>> groups{{}};  ///< wall faces by group, from slot 1
    std::vector<int> groupCount, groupSizes;
    std::vector<int*> groupRows;
    std::vector<std::vector<double>> fields;
    std::vector<char> rootDir{'.', '\0'};
    std::vector<int> process{0};
};

/// The geometry of an AnnulusHost, in background diameters of the body.
struct AnnulusShape {
    int n = 10;                     ///< background cells per unit length
    double width = 4.0;             ///< background: width x 4 in the plane
    double x = 2.0137, y = 1.9929;  ///< center of the annulus
    double inner = 0.5, outer = 1.25;
    int around = 80;     ///< cells around
    int across = 8;      ///< cells from the inner to the outer boundary
    double depth = 0.1;  ///< thickness of the mesh
    int layers = 1;      ///< cells across the thickness
    /// Outer radius by angle, in place of `outer`.
    std::function<double(double)> outerRadius = nullptr;
    bool hasSecond = false;  ///< a second annulus, 4 to the right of the first
    std::function<double(double)> secondRadius = nullptr;  ///< outerRadius of the second
    double scale = 1.0;                                    ///< factor on all lengths
};

/// A box with an overset annulus around a body: inlet at x = 0, outlet at x = width, walls at y = 0
/// and y = 4, symmetry on both sides of the thickness; the inner side of the annulus is a wall, the
/// outer side overset group 1 (of the second annulus: group 2).
class AnnulusHost : public BlockHost {
public:
    explicit AnnulusHost(const AnnulusShape& shape = {});

private:
    void AddAnnulus(const AnnulusShape& shape, double x, int group,
                    const std::function<double(double)>& outerRadius);
};

#endif
