#ifndef KVX3D_TESTS_OVERSET_SCATTER_HOST_H
#define KVX3D_TESTS_OVERSET_SCATTER_HOST_H

#include <random>
#include <vector>

#include "host_link/host_interface.h"

/// How the positions of a ScatterHost are drawn.
enum class Scatter {
    Uniform,   ///< anywhere
    Lattice,   ///< on a coarse lattice, area vectors along axes, unit volumes: ties and duplicates
    Rows,      ///< cells on a finer lattice in mesh order, faces drawn as for Lattice
    Diagonal,  ///< cells one behind the other: the deepest trees there are
    NotFinite  ///< uniform, but now and then infinite or no number
};

/// A host for the overset setup whose cells and faces belong together by numbers only: the setup
/// takes any arrays, and so meets cases that no mesh makes on purpose.
///
/// 1 to 4 cavities in mixed order; one inlet face in the background, walls of it and of the others,
/// one group of overset faces for each component. Only the arrays that the setup and the donor
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
