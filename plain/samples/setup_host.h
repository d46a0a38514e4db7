#ifndef KVX3D_PLAIN_SAMPLES_SETUP_HOST_H
#define KVX3D_PLAIN_SAMPLES_SETUP_HOST_H

#include <array>
#include <functional>
#include <vector>

#include "host_link/host_interface.h"

/// A host of structured blocks of hexahedra: a background and one component. Only the arrays that
/// the overset set-up and the donor search read are filled, so that meshes of some million cells
/// are made in seconds.
///
/// Cells are numbered block by block, axis 0 fastest; inner faces cell by cell, each from its lower
/// cell. Ghost cells follow the faces: inlet, outlet, wall, symmetry. Cell and face centers are the
/// means of the nodes.
class SetupHost {
public:
    SetupHost(const SetupHost&) = delete;
    SetupHost& operator=(const SetupHost&) = delete;
    virtual ~SetupHost() = default;

    /// Gives the cells numbers in random order and keeps the order of the faces.
    /// @return the new number of each cell, 1-based
    std::vector<int> NumberCellsAtRandom(unsigned seed);

    /// Moves the component's cells and faces in the host's arrays, whose addresses stay.
    void MoveComponent(double dx, double dy, double dz);

    CKvx3dGV gv;
    CKVX3DFiniteVolumeMesh fvm;

protected:
    using Point = std::array<double, 3>;

    /// `open` makes no faces: the neighbors belong to a block whose faces are not connected to
    /// those of this one, which no part of the set-up notices.
    enum Side { inlet, outlet, wall, overset, symm, open };

    struct Block {
        std::array<int, 3> n;                      ///< cells along each axis
        bool closed;                               ///< axis 0 runs in a circle, without sides
        std::function<Point(int, int, int)> node;  ///< node at lattice position 0..n
        std::array<Side, 6> sides;                 ///< low and high end of each axis
    };

    SetupHost() = default;

    /// Adds a block to a cavity: 1 is the background, 2 the component, with overset group 1.
    void Add(const Block& block, int cavityOfBlock);
    /// Links the records to the arrays; call it after the last block.
    void Link();

    /// The box [-4, 8] x [-4, 4] x [0, 2] in 12m x 8m x 2m cells: inlet at x = -4, outlet at
    /// x = 8, walls at y = -4 and y = 4, symmetry at z = 0 and z = 2.
    static Block Channel(int m);
    /// A ring of 12m x 2m x 2m cells around (0.0137, 0.0071), from a wall of radius 0.5 to the
    /// given outline, stretched by e^(1.5 j / 2m).
    /// @param outline  radius of the overset boundary by the angle from `start`
    static Block Ring(int m, double start, std::function<double(double)> outline);

private:
    struct Faces {
        std::vector<double> center[3]{{0.0}, {0.0}, {0.0}};
        std::vector<double> area[3]{{0.0}, {0.0}, {0.0}};
        std::vector<int> cell{0};
        std::vector<int> other{0};  ///< neighbor of an inner face, ghost cell of a boundary face
    };
    class Lattice;

    void AddCells(const Block& block, const Lattice& lattice, int cavityOfBlock);
    void AddFaces(const Block& block, const Lattice& lattice, int firstCell);
    void AddFace(Faces& faces, const std::array<Point, 4>& nodes, const Point& outward, int cell,
                 int other);
    void MoveFaces(Faces& faces, const Point& by);

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
