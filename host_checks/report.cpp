// The two Report() functions of host_checks.h.
#include <string>

#include "host_checks/detail/messages.h"
#include "host_checks/host_checks.h"

namespace kvx3d::checks {
namespace {

constexpr std::size_t maxListedPieces = 5;

std::string Lines(const std::vector<Fault>& faults) {
    std::string text;
    for (const Fault& fault : faults) {
        text += std::string(Name(fault.rule)) + ": " + Text(fault) + "\n";
    }
    return text;
}

/// "1 face", "3 faces".
std::string Count(int n, const std::string& noun) {
    return std::to_string(n) + " " + noun + (n == 1 ? "" : "s");
}

std::string Line(const GridCut& grid) {
    std::string text = GridName(grid.grid) + ": " + Count(grid.cells, "cell") + ", " +
                       std::to_string(grid.cutCells) + " cut (" + Digits(100.0 * grid.cutShare, 3) +
                       " %)";
    const std::size_t nPieces = grid.cutPieces.size();
    if (nPieces > 0) {
        text += " in " + Count(static_cast<int>(nPieces), "piece") + " of ";
        for (std::size_t i = 0; i < nPieces && i < maxListedPieces; ++i) {
            text += (i > 0 ? ", " : "") + std::to_string(grid.cutPieces[i]);
        }
        text += nPieces > maxListedPieces ? ", ... cells" : " cells";
    }
    if (grid.grid == 3) {
        text += "; the toolbox never cuts this grid and finds no donors for its faces";
    }
    return text + "\n";
}

std::string Line(const char* name, const DonorSummary& donors) {
    return std::string(name) + ": " + Count(donors.faces, "face") + ", " +
           std::to_string(donors.withoutDonor) + " without a donor, at most " +
           std::to_string(donors.mostTries) + (donors.mostTries == 1 ? " search" : " searches") +
           " for one, distance to the donor " + Digits(donors.meanDistance, 3) +
           " cell sizes on average and " + Digits(donors.largestDistance, 3) + " at most\n";
}

}  // namespace

std::string Report(const Verdict& verdict) {
    return verdict ? "the mesh may be set up\n" : Lines(verdict.faults);
}

std::string Report(const Soundness& soundness) {
    std::string text;
    for (const GridCut& grid : soundness.grids) {
        text += Line(grid);
    }
    if (soundness.hole.faces > 0) {
        text += Line("hole boundary", soundness.hole);
    }
    if (soundness.outer.faces > 0) {
        text += Line("outer boundary", soundness.outer);
    }
    if (soundness.outerFacesWithoutToolboxDonor > 0) {
        text += Count(soundness.outerFacesWithoutToolboxDonor, "outer face") +
                " for which GetOversetWallNeighbor must not be called: it finds no donor within " +
                std::to_string(BoundedDonorSearch::defaultMaxTries) + " searches\n";
    }
    return text + Lines(soundness.faults);
}

}  // namespace kvx3d::checks
