#include "tests/overset/scatter_host.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace {

int Between(std::mt19937& random, int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
}

}  // namespace

void ScatterHost::Positions::Add(double px, double py, double pz) {
    x.push_back(px);
    y.push_back(py);
    z.push_back(pz);
}

ScatterHost::ScatterHost(Scatter how, int nCells, unsigned seed)
    : scatter(how), random(seed), nCavities(Between(random, 2, 4)) {
    AddCells(std::max(nCells, nCavities + 1));
    AddWalls(std::max(nCells / 3, 6));
    AddInnerFaces(nCells);
    Link();
}

double ScatterHost::Coordinate() {
    if (scatter == Scatter::NotFinite && Between(random, 0, 40) == 0) {
        const double infinity = std::numeric_limits<double>::infinity();
        const double values[] = {infinity, -infinity, std::nan(""), 1e300, -0.0};
        return values[Between(random, 0, 4)];
    }
    if (scatter == Scatter::Uniform || scatter == Scatter::NotFinite) {
        return std::uniform_real_distribution<double>(-6.0, 6.0)(random);
    }
    return Between(random, -4, 4);
}

double ScatterHost::AreaComponent() {
    return scatter == Scatter::Uniform ? std::uniform_real_distribution<double>(-1.0, 1.0)(random)
                                       : 0.5 * Between(random, -1, 1);
}

/// A random cell of the cavity.
int ScatterHost::CellOf(int wanted) {
    const int nCells = static_cast<int>(cavity.size()) - 1;
    int cell = Between(random, 1, nCells);
    while (cavity[static_cast<std::size_t>(cell)] != wanted) {
        cell = cell % nCells + 1;
    }
    return cell;
}

void ScatterHost::AddCells(int nCells) {
    for (int i = 0; i < nCells; ++i) {
        if (scatter == Scatter::Rows) {
            cells.Add(0.5 * (i % 16) - 4.0, 0.5 * (i / 16 % 8) - 2.0, 0.5 * (i / 128) - 1.0);
        } else if (scatter == Scatter::Diagonal) {
            const double at = 8.0 * i / nCells - 4.0;
            cells.Add(at, at, at);
        } else {
            const double px = Coordinate();
            const double py = Coordinate();
            cells.Add(px, py, Coordinate());
        }
        const double sizes[] = {1.0, 1.0, 0.125, 0.001};
        volume.push_back(scatter == Scatter::Uniform
                             ? std::uniform_real_distribution<double>(0.0, 0.3)(random)
                             : sizes[Between(random, 0, 3)]);
        // The first cells use each cavity once; the others come in runs of one cavity.
        const bool goesOn = i > nCavities && Between(random, 0, 4) > 0;
        cavity.push_back(i < nCavities ? i + 1
                         : goesOn      ? cavity.back()
                                       : Between(random, 1, nCavities));
    }
}

void ScatterHost::AddWalls(int nWalls) {
    nGroups = std::min(nCavities - 1, 2);
    for (std::vector<int>& group : groups) {
        group.assign(1, 0);
    }
    for (int i = 1; i <= nWalls; ++i) {
        const double px = Coordinate();
        const double py = Coordinate();
        walls.Add(px, py, Coordinate());
        const double ax = AreaComponent();
        const double ay = AreaComponent();
        wallAreas.Add(ax, ay, AreaComponent());
        // The first face of each group decides which cavity is which grid.
        const int group = i <= nGroups ? i : Between(random, -2, nGroups);
        if (group > 0) {
            groups[group].push_back(i);
        }
        wallCell.push_back(group > 0     ? CellOf(group + 1)
                           : group < 0   ? CellOf(1)
                           : i == nWalls ? CellOf(1)
                                         : CellOf(Between(random, 1, nCavities)));
    }
    // At least one wall of the background, because without one the outside cut does nothing.
    walls.Add(5.0, 5.0, 5.0);
    wallAreas.Add(0.0, 1.0, 0.0);
    wallCell.push_back(CellOf(1));
}

void ScatterHost::AddInnerFaces(int nFaces) {
    const int nCells = static_cast<int>(cavity.size()) - 1;
    for (int i = 0; i < nFaces; ++i) {
        const double px = Coordinate();
        const double py = Coordinate();
        inner.Add(px, py, Coordinate());
        const double ax = AreaComponent();
        const double ay = AreaComponent();
        innerAreas.Add(ax, ay, AreaComponent());
        owner.push_back(Between(random, 1, nCells));
        neighbor.push_back(Between(random, 1, nCells));
    }
    inlet.Add(-6.0, 0.0, 0.0);
    inletAreas.Add(-1.0, 0.0, 0.0);
    inletCell.push_back(CellOf(1));
}

void ScatterHost::Link() {
    fvm.Nc = static_cast<int>(cavity.size()) - 1;
    fvm.NcAll = fvm.Nc;
    inletGhost.push_back(++fvm.NcAll);
    while (wallGhost.size() < wallCell.size()) {
        wallGhost.push_back(++fvm.NcAll);
    }
    fvm.xc = cells.x.data();
    fvm.yc = cells.y.data();
    fvm.zc = cells.z.data();
    fvm.volume = volume.data();

    const auto link = [](Positions& at, Positions& area, int& n, double*& x, double*& y, double*& z,
                         double*& nx, double*& ny, double*& nz) {
        n = static_cast<int>(at.x.size()) - 1;
        x = at.x.data();
        y = at.y.data();
        z = at.z.data();
        nx = area.x.data();
        ny = area.y.data();
        nz = area.z.data();
    };
    link(inner, innerAreas, fvm.Ne, fvm.xe, fvm.ye, fvm.ze, fvm.nxe, fvm.nye, fvm.nze);
    link(inlet, inletAreas, fvm.NInlet, fvm.xInlet, fvm.yInlet, fvm.zInlet, fvm.nxInlet,
         fvm.nyInlet, fvm.nzInlet);
    link(walls, wallAreas, fvm.NWall, fvm.xWall, fvm.yWall, fvm.zWall, fvm.nxWall, fvm.nyWall,
         fvm.nzWall);
    fvm.Ce23[0] = owner.data();
    fvm.Ce23[1] = neighbor.data();
    fvm.CInlet23 = inletCell.data();
    fvm.idInlet = inletGhost.data();
    fvm.CWall23 = wallCell.data();
    fvm.idWall = wallGhost.data();

    gv.cavityId = cavity.data();
    gv.pProcessId = &process;
    gv.NOversetBCGroup = &nGroups;
    groupCount.assign(1, 0);
    groupRows.assign(1, nullptr);
    for (int g = 1; g <= nGroups; ++g) {
        groupCount.push_back(static_cast<int>(groups[g].size()) - 1);
        groupRows.push_back(groups[g].data());
    }
    gv.oversetBCFaceCount = groupCount.data();
    gv.oversetBCWallFace = groupRows.data();
}
