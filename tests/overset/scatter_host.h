#ifndef KVX3D_TESTS_OVERSET_SCATTER_HOST_H
#define KVX3D_TESTS_OVERSET_SCATTER_HOST_H

#include <random>
#include <vector>

#include "host_link/host_interface.h"

/// How the positions of a ScatterHost are drawn.
enum class Scatter {
    Uniform,   ///< anywhere
    Lattice,   ///< on a coarse lattice, with simple area vectors: many ties and duplicates
    Rows,      ///< cells on a finer lattice in mesh order, faces as for Lattice
    Diagonal,  ///< cells along the diagonal, which makes the deepest possible trees
    NotFinite  ///< uniform, with some infinite and NaN coordinates
};

/// A host for the overset set-up with random positions. Cells and faces are related by their
/// numbers only, not by geometry, so the set-up meets cases that hardly occur in a mesh.
///
/// Two to four cavities in mixed order, one inlet face in the background, walls of all cavities,
/// one group of overset faces for each component. Only the arrays that the set-up and the donor
/// search read are filled.
class ScatterHost {
public:
    ScatterHost(Scatter scatter, int nCells, unsigned seed);
    ScatterHost(const ScatterHost&) = delete;
    ScatterHost& operator=(const ScatterHost&) = delete;

    CKvx3dGV gv;
    CKVX3DFiniteVolumeMesh fvm;

private:
    struct Positions {
        std::vector<double> x{0.0}, y{0.0}, z{0.0};
        void Add(double px, double py, double pz);
    };

    double Coordinate();
    double AreaComponent();
    int CellOf(int cavity);
    void AddCells(int nCells);
    void AddWalls(int nWalls);
    void AddInnerFaces(int nFaces);
    void Link();

    Scatter scatter;
    std::mt19937 random;
    int nCavities;
    Positions cells;
    Positions walls, wallAreas;
    Positions inner, innerAreas;
    Positions inlet, inletAreas;
    std::vector<double> volume{0.0};
    std::vector<int> cavity{0};
    std::vector<int> wallCell{0}, wallGhost{0};
    std::vector<int> owner{0}, neighbor{0};
    std::vector<int> inletCell{0}, inletGhost{0};
    std::vector<int> groups[3];  ///< wall faces by group, from entry 1
    std::vector<int> groupCount;
    std::vector<int*> groupRows;
    int nGroups = 0;
    int process = 0;
};

#endif
