#ifndef KVX3D_OVERSET_HOLE_CUTTING_H
#define KVX3D_OVERSET_HOLE_CUTTING_H

#include "host_link/export.h"

class CKVX_ACMT_GV;
class KVX_ART_OVERSET_GRID_DATA;

/// Decides which cells are cut, that is, excluded from the solution: first component cells beyond a
/// wall of the background, then background cells under the first component grid.
///
/// There are two pairs of cutting steps. The set-up of an overset mesh uses OutsideDomainCutting()
/// and OverlapRegionCutting(). The second pair, CutOutsideDomainComponentCell() and
/// CutBackgroundCells(), applies the same rule to a geometry and to points that the caller links.
///
/// A cell with center C and volume V is judged by one face only, the one whose center P is nearest
/// to C. With the area vector S and the cell size h = V^(1/3), (C - P) . S is compared with the
/// margin |S| layer h. This is the signed distance of C from the plane of the face against `layer`
/// cell sizes, both multiplied by |S|. The test is local: it uses no polygon and no ray.
///
/// Cut cells get state 1 in gridData->cellState and are counted in gridData->NNonActiveCell. No
/// call makes a cell active again or resets the count. Cells of the second component grid are never
/// cut. For a cell without a grid number each step prints a warning on standard output and leaves
/// the state unchanged. If there are no faces to judge by, nothing is cut.
///
/// Copies share the links.
class KVX3D_API CKVX_ART_HoleCutting {
public:
    /// Sets outsideCellsCut to false and leaves all other members unset: link before use.
    CKVX_ART_HoleCutting();
    CKVX_ART_HoleCutting(const CKVX_ART_HoleCutting& other) = default;
    CKVX_ART_HoleCutting& operator=(const CKVX_ART_HoleCutting& other) = default;
    virtual ~CKVX_ART_HoleCutting();

    /// Sets the geometry that the second pair of cutting steps reads.
    /// @return false, with a line on standard output, if the argument is null; the link then stays
    bool LinkARTGv(CKVX_ACMT_GV* gv);
    /// Sets the overset tables that all cutting steps read and write.
    /// @return false, with a line on standard output, if the argument is null; the link then stays
    bool LinkOversetGridData(KVX_ART_OVERSET_GRID_DATA* data);
    /// Sets the margin of the second pair, in cell sizes.
    void SetCutGridLayer(int layer);

    /// Cuts cells of component grid 1 that lie beyond the background's physical walls, or inside
    /// them but closer to them than `layer` times the cell size. Sets outsideCellsCut and prints
    /// one line.
    void OutsideDomainCutting(int layer);
    /// Cuts background cells under component grid 1: those inside its outer faces (overset boundary
    /// group 1) and deeper than `layer` times the cell size. Call it after OutsideDomainCutting().
    /// Sets gridData->NOverlapWallPoint to 0 and prints one line with the number of cells that both
    /// steps have cut.
    ///
    /// If outsideCellsCut is true, one fixed vector replaces the area vector of every face: the
    /// center of the last face of group 1.
    void OverlapRegionCutting(int layer);

    /// Like OutsideDomainCutting(), with the geometry of artGv and the margin cutGridLayer.
    void CutOutsideDomainComponentCell();
    /// Cuts background cells by the same rule as OverlapRegionCutting(), with the geometry of
    /// artGv, the margin cutGridLayer and the area vectors of the faces in every case. The face
    /// centers are the overlap points of gridData, which the caller fills. If outsideCellsCut is
    /// false, point r is face r of overset boundary group 1. If it is true, the wall faces come
    /// first, then inner faces on the boundary that the outside cut has left.
    void CutBackgroundCells();

    bool outsideCellsCut;                 ///< at the end of the last outside cut some cell was cut
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
