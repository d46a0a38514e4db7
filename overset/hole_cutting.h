#ifndef KVX3D_OVERSET_HOLE_CUTTING_H
#define KVX3D_OVERSET_HOLE_CUTTING_H

#include "host_link/export.h"

class CKVX_ACMT_GV;
class KVX_ART_OVERSET_GRID_DATA;

/// Decides which cells leave the solution: first component cells beyond a wall of the background,
/// then background cells under the first component grid.
///
/// A cell with center C and volume V is judged by one face only, the one whose center P is nearest
/// to C. With the area vector S and the cell size h = V^(1/3), (C - P) . S is compared with the
/// margin |S| layer h. This is the signed distance of C from the plane of the face against `layer`
/// cell sizes, both multiplied by |S|. The test is local: it uses no polygon and no ray.
///
/// Cut cells get state 1 in gridData->cellState and are counted in gridData->NNonActiveCell. No
/// call makes a cell active again or resets the count. Cells of the second component grid are never
/// cut. A cell without a grid number prints a warning on standard output in each pass and keeps its
/// state. If there is no face to judge by, nothing is cut.
///
/// Copies share the links.
class KVX3D_API CKVX_ART_HoleCutting {
public:
    /// Sets outsideCellsCut to false and no other member: link before use.
    CKVX_ART_HoleCutting();
    CKVX_ART_HoleCutting(const CKVX_ART_HoleCutting& other) = default;
    CKVX_ART_HoleCutting& operator=(const CKVX_ART_HoleCutting& other) = default;
    virtual ~CKVX_ART_HoleCutting();

    /// Sets the geometry for the second pair of cutting steps.
    /// @return false, with a line on standard output, if the argument is null; the link then stays
    bool LinkARTGv(CKVX_ACMT_GV* gv);
    /// Sets the overset tables that all cutting steps read and write.
    /// @return false, with a line on standard output, if the argument is null; the link then stays
    bool LinkOversetGridData(KVX_ART_OVERSET_GRID_DATA* data);
    /// Sets the margin of the second pair, in cell sizes.
    void SetCutGridLayer(int layer);

    /// Cuts cells of component grid 1 that lie beyond the background's physical walls, or inside
    /// them but nearer than `layer` of their own sizes. Sets outsideCellsCut and prints one line.
    void OutsideDomainCutting(int layer);
    /// Cuts background cells that lie under component grid 1: inside its outer faces (overset
    /// boundary group 1), deeper than `layer` of their own sizes. Call it after
    /// OutsideDomainCutting(). Prints one line with the count of both cuts.
    ///
    /// If the outside cut has cut cells, every cell is judged with one fixed vector in place of
    /// the area vector: the center of the last face of group 1.
    void OverlapRegionCutting(int layer);

    /// Like OutsideDomainCutting(), with the geometry of artGv and the margin cutGridLayer.
    void CutOutsideDomainComponentCell();
    /// Like the cutting pass of OverlapRegionCutting(), with the geometry of artGv and the margin
    /// cutGridLayer. The points are gridData's overlap members, which the caller fills: first the
    /// centers of wall faces, then those of inner faces on the new boundary.
    void CutBackgroundCells();

    bool outsideCellsCut;                 ///< cells were cut when the last outside cut ended
    KVX_ART_OVERSET_GRID_DATA* gridData;  ///< not owned
    CKVX_ACMT_GV* artGv;                  ///< geometry of the second pair, not owned
    int cutGridLayer;                     ///< margin of the second pair [cell sizes]

private:
    /// Scalar product of two vectors of three components, 0-based.
    double Innerproduct(double* const a, double* const b);
    /// Length of a vector of three components, 0-based.
    double Norm(double* const a);
};

#endif
