#include "overset/detail/nearest_face.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <numeric>

#include "overset/detail/kd_tree_search.h"
#include "overset/detail/kd_tree_store.h"

// Whether all faces of a node have one side: (C - P) . S + |S| depth must have one sign.
//
//     S  S  S  S      The bounds come from the box of the area vectors and from the bounds of
//     ^  ^  ^  ^      (P - M) . S with the middle M, which is 0 for all faces of one plane. The
//     |  |  |  |      box of the centers would not do: around a slanted plane it is thick.
//   --P--M--P--P--
//
// Whether a face matters at all: it does not if every cell is nearer to another face.
//
//     Q         P     C lies on Q's side of the plane midway between Q and P. That is linear in
//       C C  |        C, so a whole row of cells is decided from its ends.
//
// Readable transcription: CutOutside() and CutOverlap() in plain/plain_overset.h.

namespace kvx3d::detail {
namespace {

constexpr int nodesToJudge = 1024;            // a verdict from more boxes costs as much as searches
constexpr int noFace = -1;                    // in place of a position in FaceBoxes
constexpr double largest = 1e150;             // products of larger numbers overflow
constexpr double absoluteError = 1e-300;      // bound that covers subnormal numbers
constexpr double relativeErrorOfSum = 1e-12;  // the sum of some products errs by some 1e-15

/// Bounds of a sum of products, and the sign that they and rounding errors leave certain.
struct SignedSum {
    double least = 0.0;
    double most = 0.0;
    double magnitude = 0.0;  ///< sum of the largest absolute values of the terms

    /// Adds a term between a and b.
    void Add(double a, double b) {
        least += std::min(a, b);
        most += std::max(a, b);
        magnitude += std::max(std::fabs(a), std::fabs(b));
    }
    /// Adds a term between the smallest and the largest of four values.
    void Add(double a, double b, double c, double d) {
        Add(std::min(std::min(a, b), std::min(c, d)), std::max(std::max(a, b), std::max(c, d)));
    }

    int Sign() const {
        const double error = relativeErrorOfSum * magnitude + absoluteError;
        return least > error ? 1 : most < -error ? -1 : 0;
    }
};

/// False for NaN as well.
bool IsModerate(const double* v) {
    return std::fabs(v[0]) <= largest && std::fabs(v[1]) <= largest && std::fabs(v[2]) <= largest;
}

}  // namespace

/// A face close to some cells, which rules out all faces that are farther from every cell.
class NearestFace::CloseFace {
public:
    /// @param center  Q, the center of the face
    CloseFace(const double* center, const Cells& judgedCells)
        : Q(center),
          cells(judgedCells),
          error(relativeErrorOfSum * FarthestSqInBox(cells.min, cells.max, Q) + absoluteError) {}

    /// True if every cell center C is nearer to Q than to any point P of the box, rounding of
    /// DistanceSq() included. Along one axis, the least (C - P)^2 - (C - Q)^2 over the box is a
    /// concave function of C, so it is smallest at an end of the cells' box.
    bool RulesOut(const double* min, const double* max) const {
        double gap = 0.0;
        for (int axis = 0; axis < 3; ++axis) {
            gap += std::min(Gap(cells.min[axis], min[axis], max[axis], Q[axis]),
                            Gap(cells.max[axis], min[axis], max[axis], Q[axis]));
        }
        return gap > error;
    }

private:
    static double Gap(double c, double min, double max, double q) {
        const double outside = std::max(std::max(min - c, c - max), 0.0);
        const double toQ = c - q;
        return outside * outside - toQ * toQ;
    }

    const double* const Q;
    const Cells& cells;
    const double error;
};

NearestFace::~NearestFace() {
    FreeKDtree(insertionTree);
}

void NearestFace::Add(const Vector& P, const Vector& S) {
    centers.push_back(P);
    areaVectors.push_back(S);
    allModerate = allModerate && IsModerate(P.data()) && IsModerate(S.data());
}

/// False if the boxes cannot answer: there are no faces, or numbers whose squares overflow.
bool NearestFace::BoxesServe() {
    if (centers.empty() || !allModerate) {
        return false;
    }
    if (boxes.IsEmpty()) {
        boxes.Build(centers, areaVectors);
    }
    return true;
}

/// The sign for all faces of a node at once, by interval arithmetic; 0 if it may differ.
int NearestFace::SideOfNode(const FaceBoxes::Node& node, const Cells& cells) {
    SignedSum sum;
    sum.Add(node.minArea * cells.minDepth, node.maxArea * cells.minDepth,
            node.minArea * cells.maxDepth, node.maxArea * cells.maxDepth);
    for (int axis = 0; axis < 3; ++axis) {
        const double from = cells.min[axis] - node.middle[axis];
        const double to = cells.max[axis] - node.middle[axis];
        sum.Add(from * node.areas.min[axis], from * node.areas.max[axis], to * node.areas.min[axis],
                to * node.areas.max[axis]);
    }
    sum.least -= node.maxOffset;
    sum.most -= node.minOffset;
    sum.magnitude += node.offsetMagnitude;
    return sum.Sign();
}

/// The sign for one face, 0 if it may differ from cell to cell.
int NearestFace::SideOfFace(const FaceBoxes::Face& face, const Cells& cells) {
    SignedSum sum;
    sum.Add(face.area * cells.minDepth, face.area * cells.maxDepth);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        sum.Add((cells.min[axis] - face.P[axis]) * face.S[axis],
                (cells.max[axis] - face.P[axis]) * face.S[axis]);
    }
    return sum.Sign();
}

int NearestFace::SideOf(const Cells& cells) {
    if (!BoxesServe() || !IsModerate(cells.min) || !IsModerate(cells.max)) {
        return 0;
    }
    const double middle[3] = {0.5 * (cells.min[0] + cells.max[0]),
                              0.5 * (cells.min[1] + cells.max[1]),
                              0.5 * (cells.min[2] + cells.max[2])};
    closeBy = boxes.CloseTo(middle, closeBy).at;
    int nLeft = nodesToJudge;
    while (true) {
        const FaceBoxes::Face& close = boxes.FaceAt(closeBy);
        const int side = SideOfFace(close, cells);
        if (side == 0) {
            return 0;
        }
        const int contrary = FindContrary(side, CloseFace(close.P.data(), cells), cells, nLeft);
        if (nLeft == 0) {
            return 0;
        }
        if (contrary == noFace) {
            return side;
        }
        // CloseTo() may have missed the nearest face. If the contrary face is nearer, it is tried
        // in place of the close one; otherwise both may be the nearest.
        if (DistanceSq(middle, boxes.FaceAt(contrary).P.data()) >=
            DistanceSq(middle, close.P.data())) {
            return 0;
        }
        closeBy = contrary;
    }
}

/// Looks for a face without the given side that may be the nearest to some cell.
/// @param[in,out] nLeft  nodes that may still be opened; at 0 the search has been given up
/// @return its position in the boxes, or noFace
int NearestFace::FindContrary(int side, const CloseFace& close, const Cells& cells,
                              int& nLeft) const {
    int open[FaceBoxes::maxDepth];
    int nOpen = 0;
    open[nOpen++] = 0;
    while (nOpen > 0) {
        const FaceBoxes::Node& node = boxes.NodeAt(open[--nOpen]);
        if (close.RulesOut(node.box.min, node.box.max) || SideOfNode(node, cells) == side) {
            continue;
        }
        if (--nLeft == 0) {
            return noFace;
        }
        if (node.child) {
            open[nOpen++] = node.child;
            open[nOpen++] = node.child + 1;
            continue;
        }
        for (int i = node.first; i < node.last; ++i) {
            const double* P = boxes.FaceAt(i).P.data();
            if (SideOfFace(boxes.FaceAt(i), cells) != side && !close.RulesOut(P, P)) {
                return i;
            }
        }
    }
    return noFace;
}

int NearestFace::Find(const double* query) {
    if (centers.empty()) {
        return 0;
    }
    if (!BoxesServe() || !IsModerate(query)) {
        return FindInTree(query);
    }
    // Cells come in spatial order: the last answer gives a close bound from the start.
    const FaceBoxes::Nearest nearest = boxes.NearestTo(query, closeBy);
    closeBy = nearest.at;
    return nearest.tied ? FindInTree(query) : boxes.FaceAt(closeBy).number + 1;
}

int NearestFace::FindInTree(const double* query) {
    if (!insertionTree) {
        BuildInsertionTree();
    }
    return *NearestNode(*insertionTree, query)->data;
}

/// Builds the tree that takes the centers one after the other.
void NearestFace::BuildInsertionTree() {
    ids.resize(centers.size());
    std::iota(ids.begin(), ids.end(), 1);
    insertionTree = NewKDtree();
    KDtreePoint* points = RoomForPoints(*insertionTree, static_cast<int>(centers.size()));
    if (!points) {
        throw std::bad_alloc();
    }
    for (std::size_t i = 0; i < centers.size(); ++i) {
        points[i] = {{centers[i][0], centers[i][1], centers[i][2]}, &ids[i]};
    }
    if (!InsertPoints(*insertionTree)) {
        throw std::bad_alloc();
    }
}

}  // namespace kvx3d::detail
