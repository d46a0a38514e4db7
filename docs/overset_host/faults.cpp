#include "faults.h"

void PlantInShape(int fault, Shape& shape) {
    switch (fault) {
        case 4:
            shape.hasInlet = false;
            break;
        case 6:
            shape.y = 1.25;
            break;
        case 7:
            shape.inner = 0.95;
            shape.across = 3;
            break;
        default:
            break;
    }
}

void PlantInArrays(int fault, TwoGrids& grids) {
    CKVX3DFiniteVolumeMesh& fvm = grids.fvm;
    switch (fault) {
        case 1:
            fvm.nxe[1] = -fvm.nxe[1];
            fvm.nye[1] = -fvm.nye[1];
            break;
        case 2:
            fvm.idWall[2] = fvm.idWall[1];
            break;
        case 3:
            fvm.Ce23[1][1] = fvm.NcAll + 1;
            break;
        case 5:
            for (int cell = 1; cell <= fvm.Nc; ++cell) {
                ++grids.gv.cavityId[cell];
            }
            break;
        case 8:
            grids.gv.oversetBCWallFace[1][2] = 1;
            break;
        case 9:
            fvm.volume[1] = 0.0;
            break;
        case 10:
            fvm.cellNodes[1][8] = fvm.Nn + 1;
            break;
        default:
            break;
    }
}
