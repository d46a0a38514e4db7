#include <cstddef>
#include <vector>

#include "tests/support/box_host.h"

namespace {

int Count(const std::vector<int>& array) {
    return static_cast<int>(array.size()) - 1;
}

}  // namespace

void BoxHost::LinkRecords() {
    fvm = CKVX3DFiniteVolumeMesh();
    fvm.Nc = Count(arrays.cavity);
    fvm.NcAll = static_cast<int>(arrays.pressure.size()) - 1;
    fvm.Ne = Count(arrays.owner);
    fvm.Nn = static_cast<int>(arrays.node[0].size()) - 1;

    const auto link = [](double*& x, double*& y, double*& z, std::vector<double>(&from)[3]) {
        x = from[0].data();
        y = from[1].data();
        z = from[2].data();
    };
    link(fvm.xn, fvm.yn, fvm.zn, arrays.node);
    link(fvm.xc, fvm.yc, fvm.zc, arrays.cellCentre);
    link(fvm.xe, fvm.ye, fvm.ze, arrays.faceCentre);
    link(fvm.nxe, fvm.nye, fvm.nze, arrays.faceArea);
    fvm.volume = arrays.volume.data();
    fvm.Ce23[0] = arrays.owner.data();
    fvm.Ce23[1] = arrays.neighbor.data();
    fvm.nonmatchingFace = arrays.nonmatching.data();

    const auto linkKind = [](int& n, int*& cell, int*& ghost, Boundary& from) {
        n = Count(from.cell);
        cell = from.cell.data();
        ghost = from.ghost.data();
    };
    linkKind(fvm.NInlet, fvm.CInlet23, fvm.idInlet, arrays.inlet);
    linkKind(fvm.NOutlet, fvm.COutlet23, fvm.idOutlet, arrays.outlet);
    linkKind(fvm.NWall, fvm.CWall23, fvm.idWall, arrays.wall);
    linkKind(fvm.NSymm, fvm.CSymm23, fvm.idSymm, arrays.symm);
    link(fvm.xInlet, fvm.yInlet, fvm.zInlet, arrays.inlet.centre);
    link(fvm.xOutlet, fvm.yOutlet, fvm.zOutlet, arrays.outlet.centre);
    link(fvm.xWall, fvm.yWall, fvm.zWall, arrays.wall.centre);
    link(fvm.xSymm, fvm.ySymm, fvm.zSymm, arrays.symm.centre);
    link(fvm.nxInlet, fvm.nyInlet, fvm.nzInlet, arrays.inlet.area);
    link(fvm.nxOutlet, fvm.nyOutlet, fvm.nzOutlet, arrays.outlet.area);
    link(fvm.nxWall, fvm.nyWall, fvm.nzWall, arrays.wall.area);
    link(fvm.nxSymm, fvm.nySymm, fvm.nzSymm, arrays.symm.area);

    const auto rows = [](std::vector<std::vector<int>>& from) {
        std::vector<int*> table{nullptr};
        for (std::size_t i = 1; i < from.size(); ++i) {
            table.push_back(from[i].data());
        }
        return table;
    };
    cellNodeRows = rows(arrays.cellNodes);
    groupWallRows = rows(arrays.groupWallFaces);
    fvm.cellNodes = cellNodeRows.data();

    gv = CKvx3dGV();
    gv.flowVariables[0] = arrays.pressure.data();
    link(gv.flowVariables[1], gv.flowVariables[2], gv.flowVariables[3], arrays.velocity);
    gv.mu = arrays.mu.data();
    gv.cp = arrays.cp.data();
    gv.cellRho = arrays.rho.data();
    gv.cellK = arrays.k.data();
    gv.rootDir = arrays.rootDir.data();
    gv.pProcessId = arrays.process.data();
    gv.cavityId = arrays.cavity.data();
    gv.NOversetBCGroup = arrays.groupCount.data();
    gv.oversetBCFaceCount = arrays.groupFaceCount.data();
    gv.oversetBCWallFace = groupWallRows.data();
}
