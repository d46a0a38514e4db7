#ifndef OVERSET_HOST_BLOCKS_H
#define OVERSET_HOST_BLOCKS_H

#include <array>
#include <deque>
#include <string>
#include <vector>

#include "host_checks/point.h"
#include "host_link/host_interface.h"

/// The measures of the two blocks of cells. The toolbox compares with absolute thresholds, so a
/// host scales its lengths to about 1.
struct Shape {
    int n = 10;                     ///< background cells per unit length
    double x = 2.0137, y = 1.9929;  ///< center of the turned box, whose sides are 2 long
    double angle = 30.0;            ///< by which it is turned [degrees]
    double cellRatio = 1.0;         ///< its cell size in background cells
    bool hasInlet = true;           ///< the side x = 0 is an inlet, otherwise a wall
};

/// Owns the arrays of a host and the two objects that point to them. All arrays are 1-based: entry
/// 0 is not data.
///
/// The background (cavity 1) is the box [0, 4] x [0, 4] with an inlet at x = 0, by which the
/// toolbox knows it, and walls on the other sides. The turned box (cavity 2) lies over it and is
/// bounded by overset group 1. The mesh is one cell thick, between two symmetry planes.
///
/// Neither copied nor moved: the toolbox keeps the addresses.
class Blocks {
public:
    /// @param resultDirectory  becomes gv.rootDir: result files go there
    Blocks(const Shape& shape, std::string resultDirectory);
    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;

    /// Cells in a row of the block of a cell: beside cell c lie c - 1, c + 1 and, in the next rows,
    /// c - CellsPerRow(c) and c + CellsPerRow(c), unless the block ends there.
    int CellsPerRow(int cell) const { return cellsPerRow[cavity[cell]]; }

    CKvx3dGV gv;
    CKVX3DFiniteVolumeMesh fvm;
    std::vector<double> temperature;  ///< by cell and ghost cell; published as the pressure

private:
    using Point = kvx3d::checks::Point;

    struct Points {
        std::vector<double> x{0.0}, y{0.0}, z{0.0};

        int Count() const { return static_cast<int>(x.size()) - 1; }
        void Add(const Point& point);
        void Link(double*& toX, double*& toY, double*& toZ);
    };

    struct Faces {
        Points center, area;
        std::vector<int> cell{0};   // owner or the cell beside the face
        std::vector<int> other{0};  // neighbor or ghost cell

        void Add(const Point& at, const Point& areaVector, int cellId, int otherId = 0);
        void Link(int& count, int*& cells, int*& others);
    };

    void AddBlock(const Point& middle, double angle, double side, int perRow, Faces& west);
    void AddFaces(int cell, const std::array<Point, 4>& steps, const std::array<bool, 4>& isAtEnd,
                  Faces& west);
    void LinkMesh();
    void LinkVariables();

    double depth;
    std::string directory;
    Points nodes, centers;
    Faces inner, inlet, wall, symmetry;
    std::vector<double> volume{0.0}, zeros, ones;
    std::deque<std::array<int, 9>> cellNodes{{}};  // a deque does not move its rows
    std::vector<int*> cellNodeRows{nullptr};
    std::vector<int> cavity{0}, nonmatching, cellsPerRow{0};
    std::vector<int> groupCount{1}, groupSizes, groupFaces{0}, processId{0};
    std::vector<int*> groupRows;
};

#endif
