#ifndef KVX3D_HOST_CHECKS_FAULT_H
#define KVX3D_HOST_CHECKS_FAULT_H

#include <string>
#include <utility>
#include <vector>

#include "host_checks/export.h"

namespace kvx3d::checks {

/// The rules that the checks know. docs/host_checks.md lists each with its reason and its remedy.
enum class Rule {
    // The host objects: a broken rule may lead to accesses out of range.
    Counts,                 ///< counts of nodes, cells and faces are not negative
    GhostCount,             ///< NcAll counts the cells and one ghost cell for each boundary face
    NullPointer,            ///< every array that the toolbox reads exists
    Coordinates,            ///< coordinates and area vectors are finite
    CellVolume,             ///< volumes are positive
    CellNodes,              ///< each cell lists its nodes by valid ids
    InnerFaceCells,         ///< an inner face lies between two different real cells
    SeparateCavities,       ///< two cavities share no face
    InnerFaceDirection,     ///< inner area vectors point from the owner to the neighbor
    NonmatchingFlag,        ///< nonmatchingFace is 0 or 1
    BoundaryFaceCell,       ///< a boundary face lies beside a real cell
    GhostCell,              ///< each boundary face has a ghost cell of its own
    BoundaryFaceDirection,  ///< boundary area vectors point out of the domain
    LastCell,               ///< the last cell is not alone in its cavity
    CavityIds,              ///< cavities are numbered from 1 without a gap, at most three
    BackgroundInlet,        ///< inlet face 1 exists and lies beside the background
    OversetGroups,          ///< each component has an overset group
    OversetGroupFaces,      ///< no overset group is empty
    OversetGroupWallFace,   ///< overset groups list wall faces by valid numbers
    OversetGroupOverlap,    ///< a wall face is in at most one overset group, once
    OversetGroupGrid,       ///< all faces of an overset group lie beside the same component

    // The mesh before hole cutting: a broken rule spoils the cut or the donors.
    InletGrid,       ///< only the background has inlets
    BackgroundWall,  ///< the background has a physical wall face
    GridCells,       ///< each grid has at least two cells
    LengthScale,     ///< lengths are far from the absolute thresholds of the toolbox
    WallDistance,    ///< component cells keep away from the walls of the background
    Gap,             ///< outer faces keep away from the walls of the background
    Thickness,       ///< the component is thick enough for a hole under it
    Depth,           ///< a mesh one cell thick is about as thick as its cells are wide
    OuterFaceSize,   ///< outer faces are not larger than the background cells
    OuterLayer,      ///< cells at the outer boundary are about as thick as background cells
    SmoothBoundary,  ///< no corner of the outer boundary is sharper than a right angle
    ConvexBoundary,  ///< the outer boundary of a component is convex

    // The mesh after hole cutting.
    HoleExists,         ///< background cells were cut
    ComponentUncut,     ///< no component cell was cut
    DonorExists,        ///< each hole-boundary and each outer face has a donor
    DonorAwayFromWall,  ///< no donor touches a wall or an outer face
    DonorNeighbors,     ///< a donor has enough active cells around it to interpolate
    DonorTries,         ///< a donor is found after a few searches
};

/// Short name of a rule in lower case, such as "inner face direction".
KVX3D_CHECKS_API const char* Name(Rule rule);

/// A broken rule, with the first place that breaks it.
struct Fault {
    Rule rule = Rule::Counts;
    std::string what;    ///< the first place and what is wrong there
    int firstId = 0;     ///< 1-based id of the cell, face or group there; 0 if there is none
    int count = 0;       ///< number of places that break the rule
    std::string remedy;  ///< what the host should change
};

/// "what: remedy", or "what (and n more): remedy" for more than one place.
KVX3D_CHECKS_API std::string Text(const Fault& fault);

/// Counts how often a rule is broken and keeps the first place, so that a fault that occurs in a
/// whole grid is reported in one line.
class FaultCounter {
public:
    explicit FaultCounter(Rule brokenRule) { fault.rule = brokenRule; }

    /// @param id    1-based id of the cell, face or group
    /// @param what  called for the first fault only; returns the text that describes it
    template <class What>
    void Add(int id, What what) {
        if (++fault.count == 1) {
            fault.firstId = id;
            fault.what = what();
        }
    }

    /// Appends the fault, if there was one.
    void AppendTo(std::vector<Fault>& faults, std::string remedy) {
        if (fault.count > 0) {
            fault.remedy = std::move(remedy);
            faults.push_back(fault);
        }
    }

private:
    Fault fault;
};

}  // namespace kvx3d::checks

#endif
