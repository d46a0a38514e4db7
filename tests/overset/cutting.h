#ifndef KVX3D_TESTS_OVERSET_CUTTING_H
#define KVX3D_TESTS_OVERSET_CUTTING_H

#include <vector>

#include "overset/hole_cutting.h"
#include "overset/overset_grid_data.h"
#include "tests/support/box_host.h"

/// Linked grid data of a host, and the hole cutting on it.
template <typename Host>
struct Cutting {
    explicit Cutting(Host& host) {
        data.getKvx3dGV(&host.gv, &host.fvm);
        data.getKvx3dData();
        data.OversetGridsInfoSetting();
        holes.LinkOversetGridData(&data);
        holes.LinkARTGv(&data);
    }
    std::vector<int> CutCells() const {
        std::vector<int> cells;
        for (int c = 1; c <= data.Nc; ++c) {
            if (data.cellState[c] == 1) {
                cells.push_back(c);
            }
        }
        return cells;
    }
    KVX_ART_OVERSET_GRID_DATA data;
    CKVX_ART_HoleCutting holes;
};

/// A background of unit cells and a component of unit cells inside it, whose sides are overset
/// faces except at the ends of the z axis.
inline BoxHost Inside() {
    return BoxHost(12, 12, 2).WithComponentGrid(6, 6, 2, {3, 3, 0}, {6, 6, 2}, sideZMin | sideZMax);
}

/// The same, but the component extends beyond the wall y = 0.
inline BoxHost StickingOut() {
    return BoxHost(12, 12, 2).WithComponentGrid(6, 6, 2, {3, -2, 0}, {6, 6, 2},
                                                sideZMin | sideZMax);
}

#endif
