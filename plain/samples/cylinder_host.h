#ifndef KVX3D_PLAIN_SAMPLES_CYLINDER_HOST_H
#define KVX3D_PLAIN_SAMPLES_CYLINDER_HOST_H

#include <array>
#include <functional>
#include <vector>

#include "host_link/host_interface.h"

/// A host whose mesh is a channel with an overset O-grid around a cylinder; m refines it to
/// 240 m^3 cells.
///
/// Background: [-4, 8] x [-4, 4] x [0, 2], uniform 12m x 8m x 2m hexahedra, x fastest; inlet at
/// x = -4, outlet at x = 8, walls at y = -4 and y = 4, symmetry at z = 0 and z = 2. Component:
/// 12m x 2m x 2m cells between the radii 0.5 and 1.5 around (0.0137, 0.0071), theta fastest, then
/// r, then z, radii stretched by e^(1.5 j / nr); the inner side is a wall, the outer side overset
/// group 1. Only the arrays that the overset set-up reads are filled.
class CylinderHost {
public:
    explicit CylinderHost(int m);
    CylinderHost(const CylinderHost&) = delete;
    CylinderHost& operator=(const CylinderHost&) = delete;

    CKvx3dGV gv;
    CKVX3DFiniteVolumeMesh fvm;

private:
    using Point = std::array<double, 3>;
    enum Side { inlet, outlet, wall, overset, symm };

    struct Block {
        std::array<int, 3> n;
        bool closed;  ///< the last cell along axis 0 is beside the first one
        std::function<Point(int, int, int)> node;
        std::array<Side, 6> sides;  ///< boundary at the lower and upper end of each axis
        int firstCell;
    };
    struct Faces {
        std::vector<double> center[3]{{0.0}, {0.0}, {0.0}};
        std::vector<double> area[3]{{0.0}, {0.0}, {0.0}};
        std::vector<int> cell{0};
        std::vector<int> other{0};  ///< neighbor of an inner face, ghost cell of a boundary face
    };

    void AddCells(const Block& block, int cavity);
    void AddFaces(const Block& block);
    void AddFace(Faces& faces, const std::array<Point, 4>& nodes, const Point& outward, int cell,
                 int other);
    void Link();

    std::vector<double> center[3]{{0.0}, {0.0}, {0.0}};
    std::vector<double> volume{0.0};
    std::vector<int> cavity{0};
    Faces inner;
    Faces sideFaces[4];  ///< inlet, outlet, wall, symmetry
    std::vector<int> groupFaces{0};
    int nGroups = 1;
    std::vector<int> groupFaceCount{0, 0};
    std::vector<int*> groupRows{nullptr, nullptr};
    std::vector<int> process{0};
};

#endif
