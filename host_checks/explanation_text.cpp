// The explanations as sentences; the numbers come from explanation.cpp.
#include <cmath>
#include <locale>
#include <sstream>

#include "host_checks/explanation.h"

namespace kvx3d::checks {
namespace {

std::ostringstream Stream() {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    return text;
}

std::string Number(double value) {
    std::ostringstream text = Stream();
    text << value;
    return text.str();
}

std::string At(const Point& point) {
    return "(" + Number(point.x) + ", " + Number(point.y) + ", " + Number(point.z) + ")";
}

std::string GridName(int grid) {
    switch (grid) {
        case OversetGrid_Background:
            return "grid 1, background";
        case OversetGrid_Component1:
            return "grid 2, component 1";
        case OversetGrid_Component2:
            return "grid 3, component 2";
        default:
            return "no grid";
    }
}

std::string StateName(OversetCellType state) {
    switch (state) {
        case OversetCell_Active:
            return "active";
        case OversetCell_NonActive:
            return "cut";
        default:
            return "in no valid state";
    }
}

/// "cell 17 (grid 1, background)"
std::string CellName(int cell, int grid) {
    return "cell " + std::to_string(cell) + " (" + GridName(grid) + ")";
}

/// "1 try", "4 tries"
std::string Tries(int tries) {
    return std::to_string(tries) + (tries == 1 ? " try" : " tries");
}

/// Where the cell lies with respect to its nearest face, compared with the margin.
std::string Position(const CellExplanation& cell) {
    const bool isInFront = cell.distance > 0.0;
    std::string text;
    if (cell.hasFixedVector) {
        text = "component cells were cut outside the domain, so " + At(cell.vector) +
               ", the center of the last outer face, replaces all area vectors, and along it the "
               "cell lies ";
    } else {
        text = "it lies ";
    }
    text += Number(std::abs(cell.distance));
    if (cell.hasFixedVector) {
        text += isInFront ? " in front of the face" : " behind the face";
    } else if (cell.step == CuttingStep::Overlap) {
        text += isInFront ? " outside the component" : " inside the component";
    } else {
        text += isInFront ? " outside the domain" : " inside the domain";
    }
    return text + ", the margin is " + Number(cell.marginLength) + " (2 cell sizes)";
}

/// The part of the text on a cell that no step judges.
std::string ReasonOfNoStep(const CellExplanation& cell) {
    switch (cell.grid) {
        case OversetGrid_Background:
            return "component 1 has no outer face that could judge it";
        case OversetGrid_Component1:
            return "the background has no physical wall that could judge it";
        case OversetGrid_Component2:
            return "no cutting step judges the cells of component 2";
        default:
            return "its cavity has no grid number, so that no cutting step judges it";
    }
}

/// The search for a donor from its start to its end.
std::string Search(const DonorRecord& donor, double distanceInCells) {
    if (donor.tries == 0) {
        return std::string("there is no donor: ") + Name(donor.verdict);
    }
    const std::string effort = "the search across the face from cell " +
                               std::to_string(donor.cell) + " ends at " + At(donor.query) +
                               " after " + Tries(donor.tries);
    if (donor.donor == 0) {
        return effort + " without a donor: " + Name(donor.verdict) +
               ", and the search of the toolbox might not end";
    }
    return effort + " with donor cell " + std::to_string(donor.donor) + ", whose center is " +
           Number(donor.distance) + " (" + Number(distanceInCells) +
           " cell sizes) away from that point";
}

}  // namespace

std::string Text(const CellExplanation& cell) {
    std::string text = "Cell " + std::to_string(cell.cell) + " (" + GridName(cell.grid) + ") at " +
                       At(cell.center) + " is " + StateName(cell.state) + ": ";
    if (cell.step == CuttingStep::None) {
        return text + ReasonOfNoStep(cell) + '.';
    }
    text += cell.step == CuttingStep::Overlap ? "its nearest outer face of component 1 is "
                                              : "its nearest physical wall of the background is ";
    return text + "wall face " + std::to_string(cell.wallFace) + " at " + At(cell.faceCenter) +
           "; " + Position(cell) + '.';
}

std::string Text(const InnerFaceExplanation& face) {
    std::string text = "Inner face " + std::to_string(face.face) + " at " + At(face.center);
    if (face.holdsDonor) {
        return text + " joins two grids because its donor was already written: " +
               CellName(face.owner, face.ownerGrid) + " and " +
               CellName(face.neighbor, face.neighborGrid) + '.';
    }
    switch (face.type) {
        case OversetInnerFace_Active:
            text += " is a regular face";
            break;
        case OversetInnerFace_NonActive:
            text += " lies in a hole";
            break;
        case OversetInnerFace_Overset:
            text += " lies on a hole boundary";
            break;
        default:
            text += " has no valid type";
            break;
    }
    text += ": owner " + CellName(face.owner, face.ownerGrid) + " is " +
            StateName(face.ownerState) + ", neighbor " +
            CellName(face.neighbor, face.neighborGrid) + " is " + StateName(face.neighborState);
    if (face.type == OversetInnerFace_Overset) {
        text += "; " + Search(face.donor, face.distanceInCells);
    }
    return text + '.';
}

std::string Text(const WallFaceExplanation& face) {
    std::string text =
        "Wall face " + std::to_string(face.wallFace) + " at " + At(face.center) +
        (face.kind == OversetWallFace_Overset
             ? " is an outer face, listed in overset group " + std::to_string(face.group) + ","
             : std::string(" is a physical wall")) +
        " beside " + CellName(face.cell, face.grid);
    if (face.kind != OversetWallFace_Overset) {
        return text + '.';
    }
    text += face.donor.donor == 0
                ? std::string("; there is no donor: ") + Name(face.donor.verdict)
                : "; its donor is cell " + std::to_string(face.donor.donor) +
                      ", the active background cell nearest to the mirrored center " +
                      At(face.donor.query) + ", " + Number(face.donor.distance) + " (" +
                      Number(face.distanceInCells) + " cell sizes) away";
    const DonorRecord& own = face.toolboxDonor;
    text += own.donor == 0 ? ". GetOversetWallNeighbor must not be called for it: " +
                                 std::string(Name(own.verdict))
                           : ". GetOversetWallNeighbor returns cell " + std::to_string(own.donor) +
                                 " after " + Tries(own.tries);
    if (own.verdict == DonorVerdict::NoCellAcross) {
        text += " within " + Tries(own.tries);
    }
    return text + '.';
}

}  // namespace kvx3d::checks
