#include "faults.h"

#include <stdexcept>

void PlantInShape(int fault, Shape& shape) {
    if (fault > faultCount) {
        throw std::runtime_error("--fault takes a number from 1 to 10");
    }
    switch (fault) {
        case 4:
            shape.hasInlet = false;
            break;
        case 6:
            shape.y = 1.4;
            break;
        case 7:
            shape.cellRatio = 1.4;
            break;
        default:
            break;
    }
}

void PlantInArrays(int fault, Blocks& blocks) {
    CKVX3DFiniteVolumeMesh& fvm = blocks.fvm;
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
                ++blocks.gv.cavityId[cell];
            }
            break;
        case 8:
            blocks.gv.oversetBCWallFace[1][2] = 1;
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
