#ifndef KVX3D_PLAIN_PLAIN_OVERSET_H
#define KVX3D_PLAIN_PLAIN_OVERSET_H

#include <cmath>
#include <limits>

#include "overset/overset_grid_data.h"
#include "plain/plain_kd_tree.h"

/// Readable transcription of the overset set-up: hole cutting, donor trees and donor search.
///
/// This is the simplest form and not a fast one: one search of a plain tree for each cell. Tests
/// compare cell states and donors with it one by one, and benchmarks take it as their baseline. It
/// prints nothing.

namespace plain {

/// The overset set-up on linked grid data.
class Overset {
public:
    explicit Overset(KVX_ART_OVERSET_GRID_DATA& gridData) : data(gridData) {}

    /// All steps.
    /// @param layer  margin of both cuts [cell sizes]
    void Setup(int layer) {
        CutOutside(layer);
        CutOverlap(layer);
        BuildDonorTrees();
    }

    /// Cuts component cells beyond the background's walls, or nearer than `layer` cell sizes.
    void CutOutside(int layer) {
        KdTree tree;
        for (int i = 1; i <= data.NBackgroundWall; ++i) {
            tree.Insert(data.xBackgroundWall[i], data.yBackgroundWall[i], data.zBackgroundWall[i],
                        i);
        }
        for (int c = 1; c <= data.Nc; ++c) {
            if (data.cavityToGrid[data.cavityId[c]] != 2) {
                continue;
            }
            const int r = tree.Nearest(data.xc[c], data.yc[c], data.zc[c]);
            const int w = data.backgroundWall[r];
            const double S[3] = {data.nxWall[w], data.nyWall[w], data.nzWall[w]};
            const double measure = (data.xc[c] - data.xBackgroundWall[r]) * S[0] +
                                   (data.yc[c] - data.yBackgroundWall[r]) * S[1] +
                                   (data.zc[c] - data.zBackgroundWall[r]) * S[2];
            if (measure > -Margin(S, layer, c)) {
                ++data.NNonActiveCell;
                data.cellState[c] = 1;
            }
        }
        outsideCellsCut = data.NNonActiveCell != 0;
    }

    /// Cuts background cells deeper than `layer` cell sizes inside the component. After an outside
    /// cut S stays the center of the last face for all cells.
    void CutOverlap(int layer) {
        KdTree tree;
        double S[3] = {0.0, 0.0, 0.0};
        for (int i = 1; i <= data.oversetBCFaceCount[1]; ++i) {
            const int w = data.oversetBCWallFace[1][i];
            S[0] = data.xWall[w];
            S[1] = data.yWall[w];
            S[2] = data.zWall[w];
            tree.Insert(S[0], S[1], S[2], w);
        }
        for (int c = 1; c <= data.Nc; ++c) {
            if (data.cavityToGrid[data.cavityId[c]] != 1) {
                continue;
            }
            const int w = tree.Nearest(data.xc[c], data.yc[c], data.zc[c]);
            if (!outsideCellsCut) {
                S[0] = data.nxWall[w];
                S[1] = data.nyWall[w];
                S[2] = data.nzWall[w];
            }
            const double measure = (data.xc[c] - data.xWall[w]) * S[0] +
                                   (data.yc[c] - data.yWall[w]) * S[1] +
                                   (data.zc[c] - data.zWall[w]) * S[2];
            if (measure < -Margin(S, layer, c)) {
                ++data.NNonActiveCell;
                data.cellState[c] = 1;
            }
        }
    }

    /// Builds the trees of the active cells of the background and of component 1.
    void BuildDonorTrees() {
        Fill(backgroundTree, 1);
        Fill(componentTree, 2);
    }

    /// Donor of an inner face; 0 if none is found in `tries` searches.
    int InnerDonor(int face, int tries = std::numeric_limits<int>::max()) const {
        const int o = data.Ce23[0][face];
        const int n = data.Ce23[1][face];
        const bool turned = data.cellState[o] == 1 && data.cellState[n] == 2;
        const double sign = turned ? -1.0 : 1.0;
        const double P[3] = {data.xe[face], data.ye[face], data.ze[face]};
        const double N[3] = {sign * data.nxe[face], sign * data.nye[face], sign * data.nze[face]};
        return Donor(P, N, turned ? n : o, tries);
    }

    /// Donor of a wall face, as above. All three components of N are nx.
    int WallDonor(int w, int tries = std::numeric_limits<int>::max()) const {
        const double P[3] = {data.xWall[w], data.yWall[w], data.zWall[w]};
        const double N[3] = {data.nxWall[w], data.nxWall[w], data.nxWall[w]};
        return Donor(P, N, data.CWall23[w], tries);
    }

    KVX_ART_OVERSET_GRID_DATA& data;
    bool outsideCellsCut = false;  ///< after CutOutside(): cells were cut
    KdTree backgroundTree;
    KdTree componentTree;

private:
    /// |S| layer h of cell c.
    double Margin(const double* S, int layer, int c) const {
        const double length = std::sqrt(S[0] * S[0] + S[1] * S[1] + S[2] * S[2]);
        return length * static_cast<double>(layer) * std::pow(data.volume[c], 0.3333333333333333);
    }

    void Fill(KdTree& tree, int grid) {
        for (int i = 1; i <= data.NCellOfGrid[grid]; ++i) {
            const int c = data.cellOfGrid[grid][i];
            if (data.cellState[c] != 1) {
                tree.Insert(data.xc[c], data.yc[c], data.zc[c], c);
            }
        }
    }

    int Donor(const double* P, const double* N, int c, int tries) const {
        const int grid = data.cavityToGrid[data.cavityId[c]];
        if (grid != 1 && grid != 2) {
            return 0;  // no tree to search
        }
        const KdTree& tree = grid == 1 ? componentTree : backgroundTree;
        double t = 1.0;
        for (int i = 0; i < tries && tree.root; ++i, t += 0.1) {
            const int d =
                tree.Nearest((P[0] - data.xc[c]) * t + P[0], (P[1] - data.yc[c]) * t + P[1],
                             (P[2] - data.zc[c]) * t + P[2]);
            const double across = (data.yc[d] - P[1]) * N[1] + (data.xc[d] - P[0]) * N[0] +
                                  (data.zc[d] - P[2]) * N[2];
            if (across > 1e-8) {
                return d;
            }
        }
        return 0;
    }
};

}  // namespace plain

#endif
