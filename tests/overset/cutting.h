#ifndef KVX3D_TESTS_OVERSET_CUTTING_H
#define KVX3D_TESTS_OVERSET_CUTTING_H

#include <vector>

#include "overset/hole_cutting.h"
#include "overset/overset_grid_data.h"
#include "tests/support/box_host.h"

/// Grid data of a host, ready to be cut.
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

/// Unit background cells; a component of unit cells, open on all sides but z.
inline BoxHost Inside() {
    return BoxHost(12, 12, 2).WithComponentGrid(6, 6, 2, {3, 3, 0}, {6, 6, 2}, sideZMin | sideZMax);
}

/// The same, but the component sticks out through the wall y = 0.
inline BoxHost StickingOut() {
    return BoxHost(12, 12, 2).WithComponentGrid(6, 6, 2, {3, -2, 0}, {6, 6, 2},
                                                sideZMin | sideZMax);
}

#endif
