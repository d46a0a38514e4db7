#ifndef KVX3D_TESTS_SUPPORT_BOX_HOST_H
#define KVX3D_TESTS_SUPPORT_BOX_HOST_H

#include <array>
#include <string>
#include <vector>

#include "host_link/host_interface.h"
#include "tests/support/counting_partition_face.h"

/// The six sides of a block, as bits.
enum BoxSide : unsigned {
    sideXMin = 1u << 0,
    sideXMax = 1u << 1,
    sideYMin = 1u << 2,
    sideYMax = 1u << 3,
    sideZMin = 1u << 4,
    sideZMax = 1u << 5,
};

/// Cells first..last of a block, both inclusive, lattice positions from 1.
struct CellRange {
    std::array<int, 3> first{1, 1, 1};
    std::array<int, 3> last{0, 0, 0};
};

/// A complete host for tests: a box of hexahedra, with all arrays of both host records filled.
///
///     BoxHost host(4, 3, 2);                  // unit cells from the origin
///     gv.getKvx3dGV(&host.gv, &host.fvm);
///
///     BoxHost host(8, 8, 4);                  // plus a component grid over its middle
///     host.WithComponentGrid(6, 6, 4, {2, 2, 0}, {4, 4, 4}, sideZMin | sideZMax);
///
/// Geometry is exact: centers, areas and volumes are products of cell sizes, not differences of
/// coordinates. Every array has exactly as many entries as its count. Slot 0 holds NaN or -7777
/// wherever it is not data, and row 0 of a table is null, so that an index that is off by one is
/// detected.
///
/// Numbering: cells are numbered block by block, x fastest, without the cells of a body; nodes in
/// the same way, but for the whole lattice. Inner faces are ordered by owner, and for one owner in
/// the order x, y, z; the owner is the cell with the lower number. The background box has its inlet
/// at x min, its outlet at x max, walls at y min and then y max, symmetry planes at z min and then
/// z max; within a side, faces are ordered by cell. Walls are ordered block by block: in component
/// grids first the overset faces, then the physical walls; the walls of a body last. Ghost cells
/// are numbered in the order inlet, outlet, wall, symmetry, partition.
///
/// Every `With` function rebuilds all arrays, so call it before linking. Copies own their arrays;
/// changes to `partition` are not copied.
class BoxHost {
public:
    using Point = std::array<double, 3>;

    /// The background box of nx by ny by nz cells, cavity 1; a zero `size` gives unit cells.
    BoxHost(int nx, int ny, int nz, Point origin = {0, 0, 0}, Point size = {0, 0, 0});
    BoxHost(const BoxHost& other);
    BoxHost& operator=(const BoxHost& other);
    ~BoxHost() = default;

    /// Adds a block with nodes of its own in the next cavity. Its outer faces are the wall faces of
    /// the next overset group, except on `wallSides` (BoxSide bits), which are physical walls.
    BoxHost& WithComponentGrid(int nx, int ny, int nz, Point origin, Point size,
                               unsigned wallSides = 0);
    /// Adds a block in the next cavity, all of whose outer faces are physical walls.
    BoxHost& WithSeparateBlock(int nx, int ny, int nz, Point origin, Point size);
    /// Removes cells from a block (0 is the background); the faces that become boundary faces are
    /// physical walls.
    BoxHost& WithBody(int block, CellRange cells);
    /// Sets nonmatchingFace to 1 on these inner faces.
    BoxHost& WithNonmatchingFaces(const std::vector<int>& faces);
    /// Turns the outlet of the background into partition-interface faces, served by `partition`.
    BoxHost& WithPartitionFaces();
    /// Sets rootDir. The default is the empty string.
    BoxHost& WithRootDir(const std::string& directory);
    /// Sets pProcessId[0]. The default is 0.
    BoxHost& WithProcess(int process);

    /// Number of the cell at lattice position (i, j, k), from 1, of a block; 0 within a body.
    int CellAt(int block, int i, int j, int k) const;
    /// Number of the inner face between two cells, or 0.
    int InnerFaceBetween(int cellA, int cellB) const;

    CKvx3dGV gv;                      ///< points into the vectors below
    CKVX3DFiniteVolumeMesh fvm;       ///< points into the vectors below
    CountingPartitionFace partition;  ///< no faces without WithPartitionFaces()

    /// One kind of boundary face: centers, area vectors, real cell, ghost cell, 1-based.
    struct Boundary {
        std::vector<double> centre[3];
        std::vector<double> area[3];
        std::vector<int> cell;
        std::vector<int> ghost;
    };

    /// All numbers of the host, 1-based, for tests to read and to change.
    struct Arrays {
        std::vector<double> node[3];
        std::vector<double> cellCentre[3];
        std::vector<double> volume;
        std::vector<double> faceCentre[3];
        std::vector<double> faceArea[3];
        std::vector<int> owner;
        std::vector<int> neighbor;
        std::vector<int> nonmatching;
        std::vector<std::vector<int>> cellNodes;
        Boundary inlet, outlet, wall, symm;

        /// Fields by cell id, ghost cells included, evaluated at the center of the cell or boundary
        /// face:
        /// p = x + 2y + 3z, (u, v, w) = (1 + y, z / 2, -x).
        std::vector<double> pressure, velocity[3];
        std::vector<double> mu, cp, rho, k;  ///< 0.5, 2, 4 and 0.25 everywhere
        std::vector<int> cavity;
        std::vector<int> groupCount{0};                ///< slot 0 is data here
        std::vector<int> groupFaceCount;               ///< 1-based by group
        std::vector<std::vector<int>> groupWallFaces;  ///< 1-based by group, rows 1-based
        std::vector<int> process{0};                   ///< slot 0 is data here
        std::vector<char> rootDir{'\0'};
    };
    Arrays arrays;

private:
    struct Block {
        std::array<int, 3> n;
        Point origin;
        Point h;
        int group;  ///< overset group of the outer faces, 0 for none
        unsigned wallSides;
        CellRange body;
        std::vector<int> cellAt;  ///< cell number by lattice position, 0 in a body
    };
    struct OuterFace;

    BoxHost& AddBlock(int nx, int ny, int nz, Point origin, Point size, int group,
                      unsigned wallSides);
    void Build();
    void AddLattice(Block& block, int cavity);
    void AddInnerFaces(const Block& block);
    std::vector<OuterFace> OuterFaces() const;
    void AddBoundary(Boundary& boundary, const OuterFace& face);
    void AddPartition(const std::vector<OuterFace>& faces);
    void AddFields(const std::vector<OuterFace>& faces);
    void LinkRecords();

    std::vector<Block> blocks;
    std::vector<int> flaggedFaces;
    std::vector<int*> cellNodeRows;   ///< what fvm.cellNodes points to
    std::vector<int*> groupWallRows;  ///< what gv.oversetBCWallFace points to
    bool partitioned = false;
};

#endif
