#ifndef KVX3D_OVERSET_HOLE_CUTTING_H
#define KVX3D_OVERSET_HOLE_CUTTING_H

#include "host_link/export.h"

class CKVX_ACMT_GV;
class KVX_ART_OVERSET_GRID_DATA;

/// Decides which cells leave the solution: component cells beyond a wall of the background, then
/// background cells under the first component grid.
///
/// A cell with centre C and volume V is judged against one face only, the one whose centre P is
/// nearest to C. With S the area vector and h = V^(1/3), the measure (C - P) . S is compared with
/// the margin |S| layer h: a signed distance from the face's plane against `layer` cell sizes,
/// both sides times |S|. The test is local; no polygon or ray is involved.
///
/// Cut cells get state 1 in gridData->cellState and are counted in gridData->NNonActiveCell. No
/// call sets a cell back or resets the count. Cells of the second component grid are never cut;
/// a cell without a grid number brings a warning on standard output for each pass and stays as it
/// is. Without a face to judge by, nothing is cut.
///
/// Copies share the links.
class KVX3D_API CKVX_ART_HoleCutting {
public:
    /// Clears outsideCellsCut and nothing else: link before use.
    CKVX_ART_HoleCutting();
    CKVX_ART_HoleCutting(const CKVX_ART_HoleCutting& other) = default;
    CKVX_ART_HoleCutting& operator=(const CKVX_ART_HoleCutting& other) = default;
    virtual ~CKVX_ART_HoleCutting();

    /// Sets the geometry for the second pair of cutting steps.
    /// @return false with a line on standard output if the argument is null; the link then stays
    bool LinkARTGv(CKVX_ACMT_GV* gv);
    /// Sets the overset tables that all cutting steps read and write.
    /// @return false with a line on standard output if the argument is null; the link then stays
    bool LinkOversetGridData(KVX_ART_OVERSET_GRID_DATA* data);
    /// Sets the margin of the second pair, in cell sizes.
    void SetCutGridLayer(int layer);

    /// Cuts cells of component grid 1 that lie beyond the background's physical walls or within
    /// `layer` of their own sizes before them. Sets outsideCellsCut; prints one line.
    void OutsideDomainCutting(int layer);
    /// Cuts background cells that lie under component grid 1, deeper than `layer` of their own
    /// sizes behind its outer faces (overset boundary group 1). Runs after OutsideDomainCutting();
    /// prints one line with the count of both.
    ///
    /// When cells were cut outside, every cell is judged with one fixed vector in place of the
    /// area vector: the centre of the last face of group 1.
    void OverlapRegionCutting(int layer);

    /// As OutsideDomainCutting(), with the geometry of artGv and the margin cutGridLayer.
    void CutOutsideDomainComponentCell();
    /// As the cutting pass of OverlapRegionCutting(), with the geometry of artGv, the margin
    /// cutGridLayer and the point set of gridData's overlap members, which a caller fills: first
    /// the centres of wall faces, then those of inner faces on the new boundary.
    void CutBackgroundCells();

    bool outsideCellsCut;                 ///< the last outside cut left cells cut
    KVX_ART_OVERSET_GRID_DATA* gridData;  ///< not owned
    CKVX_ACMT_GV* artGv;                  ///< geometry of the second pair, not owned
    int cutGridLayer;                     ///< margin of the second pair [cell sizes]

private:
    double Innerproduct(double* const a, double* const b);
    double Norm(double* const a);
};

#endif
