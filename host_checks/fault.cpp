#include "host_checks/fault.h"

namespace kvx3d::checks {

const char* Name(Rule rule) {
    switch (rule) {
        case Rule::Counts:
            return "counts";
        case Rule::GhostCount:
            return "ghost count";
        case Rule::NullPointer:
            return "null pointer";
        case Rule::Coordinates:
            return "coordinates";
        case Rule::CellVolume:
            return "cell volume";
        case Rule::CellNodes:
            return "cell nodes";
        case Rule::InnerFaceCells:
            return "inner face cells";
        case Rule::SeparateCavities:
            return "separate cavities";
        case Rule::InnerFaceDirection:
            return "inner face direction";
        case Rule::NonmatchingFlag:
            return "nonmatching flag";
        case Rule::BoundaryFaceCell:
            return "boundary face cell";
        case Rule::GhostCell:
            return "ghost cell";
        case Rule::BoundaryFaceDirection:
            return "boundary face direction";
        case Rule::LastCell:
            return "last cell";
        case Rule::CavityIds:
            return "cavity ids";
        case Rule::BackgroundInlet:
            return "background inlet";
        case Rule::OversetGroups:
            return "overset groups";
        case Rule::OversetGroupFaces:
            return "overset group faces";
        case Rule::OversetGroupWallFace:
            return "overset group wall face";
        case Rule::OversetGroupOverlap:
            return "overset group overlap";
        case Rule::OversetGroupGrid:
            return "overset group grid";
        case Rule::InletGrid:
            return "inlet grid";
        case Rule::BackgroundWall:
            return "background wall";
        case Rule::GridCells:
            return "grid cells";
        case Rule::LengthScale:
            return "length scale";
        case Rule::WallDistance:
            return "wall distance";
        case Rule::Gap:
            return "gap";
        case Rule::Thickness:
            return "thickness";
        case Rule::Depth:
            return "depth";
        case Rule::OuterFaceSize:
            return "outer face size";
        case Rule::OuterLayer:
            return "outer layer";
        case Rule::SmoothBoundary:
            return "smooth boundary";
        case Rule::ConvexBoundary:
            return "convex boundary";
        case Rule::HoleExists:
            return "hole exists";
        case Rule::ComponentUncut:
            return "component uncut";
        case Rule::DonorExists:
            return "donor exists";
        case Rule::DonorAwayFromWall:
            return "donor away from wall";
        case Rule::DonorNeighbors:
            return "donor neighbors";
        case Rule::DonorTries:
            return "donor tries";
    }
    return "";
}

std::string Text(const Fault& fault) {
    const std::string more =
        fault.count > 1 ? " (and " + std::to_string(fault.count - 1) + " more)" : "";
    return fault.what + more + ": " + fault.remedy;
}

}  // namespace kvx3d::checks
