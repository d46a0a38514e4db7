#ifndef KVX3D_OVERSET_DETAIL_CELL_RUN_H
#define KVX3D_OVERSET_DETAIL_CELL_RUN_H

#include <vector>

#include "overset/detail/nearest_face.h"

class CKVX_ACMT_GV;
class KVX_ART_OVERSET_GRID_DATA;

/// The cells that a cutting pass looks at, one by one and in runs.
namespace kvx3d::detail {

/// Cell size h = V^(1/3). Adjacent cells often have the same volume, and the power costs more than
/// the rest of the test, so the last result is kept.
class CellSize {
public:
    double Of(double V);

private:
    double volume = 1.0;
    double size = 1.0;
};

/// The cells of one grid in ascending order. Each cell without a grid prints a warning.
class GridCells {
public:
    /// @param data  grid of each cell
    /// @param mesh  centers and volumes
    GridCells(const KVX_ART_OVERSET_GRID_DATA& data, const CKVX_ACMT_GV& mesh, int wantedGrid,
              const char* noGridWarning);

    /// Goes to the next cell; false after the last one.
    bool Next();

    int cell = 0;
    double C[3];     ///< its center
    double V = 0.0;  ///< its volume

private:
    const KVX_ART_OVERSET_GRID_DATA& gridData;
    const CKVX_ACMT_GV& geometry;
    const int wanted;
    const char* const warning;
};

/// Up to 32 cells that are close to each other. They are judged together as far as possible: one
/// verdict on all of them costs little more than one on a single cell.
///
///     run      | c c c c c c c c |    no common verdict:
///     halves   | c c c c | c c c c |    no common verdict:
///     quarters | c c | c c |    and so on down to single cells
class CellRun {
public:
    /// Takes cells of a list, from position `first` on.
    /// @return position after the last cell taken
    int Fill(const std::vector<int>& cells, int first, const CKVX_ACMT_GV& mesh);

    /// Sets `side` of each cell to the verdict of NearestFace::SideOf() at a depth of `layer` cell
    /// sizes.
    void Judge(NearestFace& faces, int layer) { JudgeGroup(faces, layer, 0, n); }

    double SizeOf(int i) { return sizes.Of(V[i]); }

    static constexpr int capacity = 32;

    int n = 0;
    int cell[capacity];
    double C[capacity][3];
    double V[capacity];
    int side[capacity];  ///< 0 where the nearest face itself must be found

private:
    void JudgeGroup(NearestFace& faces, int layer, int first, int last);
    int SideOfGroup(NearestFace& faces, int layer, int first, int last);

    CellSize sizes;
};

}  // namespace kvx3d::detail

#endif
