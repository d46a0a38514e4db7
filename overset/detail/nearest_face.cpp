#include "overset/detail/nearest_face.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <numeric>

#include "overset/detail/kd_tree_search.h"
#include "overset/detail/kd_tree_store.h"

// The boxes over the face centers, halved along the longest side until eight centers are left:
//
//     nodes      | 0: all          | 1: lower half | 2: upper half | 3, 4: halves of 1 | ...
//                  child ------------^
//     order      |  numbers of the centers, leaf by leaf  |
//     inLeaves   |  their coordinates in the same order   |
//                  first .. last of a node is a range of both
//
// Readable transcription: CutOutside() and CutOverlap() in plain/plain_overset.h.

namespace kvx3d::detail {
namespace {

constexpr int leafSize = 8;                   // centers; below this a scan is faster than boxes
constexpr int maxDepth = 64;                  // more levels than halving an int range can take
constexpr int nodesToJudge = 24;              // a verdict from more boxes costs as much as a search
constexpr double largest = 1e150;             // products of larger numbers overflow
constexpr double absoluteError = 1e-300;      // bound that covers subnormal numbers
constexpr double relativeErrorOfSum = 1e-12;  // the sum of four products errs by some 1e-15

/// Squared distance between two boxes, 0 where they meet. A lower bound of DistanceSq() for any two
/// points in them, rounding included, because the terms are summed in the same order.
double DistanceSqOfBoxes(const double* min, const double* max, const double* otherMin,
                         const double* otherMax) {
    double sq[3];
    for (int axis = 0; axis < 3; ++axis) {
        const double below = min[axis] - otherMax[axis];
        const double above = otherMin[axis] - max[axis];
        const double outside = std::max(std::max(below, above), 0.0);
        sq[axis] = outside * outside;
    }
    return sq[0] + sq[1] + sq[2];
}

/// Squared distance between the two points of two boxes that are farthest apart. An upper bound of
/// DistanceSq() for any two points in them, rounding included.
double FarthestSqOfBoxes(const double* min, const double* max, const double* otherMin,
                         const double* otherMax) {
    double sq[3];
    for (int axis = 0; axis < 3; ++axis) {
        const double away =
            std::max(std::fabs(otherMax[axis] - min[axis]), std::fabs(max[axis] - otherMin[axis]));
        sq[axis] = away * away;
    }
    return sq[0] + sq[1] + sq[2];
}

/// False for NaN as well.
bool IsModerate(const double* v) {
    return std::fabs(v[0]) <= largest && std::fabs(v[1]) <= largest && std::fabs(v[2]) <= largest;
}

void Extend(double* min, double* max, const double* v) {
    for (int axis = 0; axis < 3; ++axis) {
        min[axis] = std::min(min[axis], v[axis]);
        max[axis] = std::max(max[axis], v[axis]);
    }
}

}  // namespace

NearestFace::~NearestFace() {
    FreeKDtree(insertionTree);
}

void NearestFace::Add(const Vector& P, const Vector& S) {
    centers.push_back(P);
    areaVectors.push_back(S);
    allModerate = allModerate && IsModerate(P.data()) && IsModerate(S.data());
}

NearestFace::Node NearestFace::NodeOf(int first, int last) const {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const Box nothing = {{infinity, infinity, infinity}, {-infinity, -infinity, -infinity}};
    Node node = {nothing, nothing, infinity, 0.0, {}, first, last, 0};
    for (int i = first; i < last; ++i) {
        const double* P = centers[order[i]].data();
        const double* S = areaVectors[order[i]].data();
        Extend(node.box.min, node.box.max, P);
        Extend(node.areas.min, node.areas.max, S);
        const double area = std::sqrt(S[0] * S[0] + S[1] * S[1] + S[2] * S[2]);
        node.minArea = std::min(node.minArea, area);
        node.maxArea = std::max(node.maxArea, area);
    }
    double leastSq = infinity;
    for (int i = first; i < last; ++i) {
        const double* P = centers[order[i]].data();
        const double awaySq = FarthestSqOfBoxes(node.box.min, node.box.max, P, P);
        if (awaySq < leastSq) {
            leastSq = awaySq;
            std::copy(P, P + 3, node.middle);
        }
    }
    return node;
}

/// Halves the centers along the longest side of their box until few are left.
void NearestFace::BuildBoxes() {
    const int n = static_cast<int>(centers.size());
    order.resize(centers.size());
    std::iota(order.begin(), order.end(), 0);
    nodes.push_back(NodeOf(0, n));
    std::copy(nodes[0].middle, nodes[0].middle + 3, closeBy);
    for (std::size_t at = 0; at < nodes.size(); ++at) {
        const Node node = nodes[at];
        if (node.last - node.first <= leafSize) {
            continue;
        }
        int axis = 0;
        for (int a = 1; a < 3; ++a) {
            if (node.box.max[a] - node.box.min[a] > node.box.max[axis] - node.box.min[axis]) {
                axis = a;
            }
        }
        const int middle = node.first + (node.last - node.first) / 2;
        std::nth_element(
            order.begin() + node.first, order.begin() + middle, order.begin() + node.last,
            [this, axis](int a, int b) { return centers[a][axis] < centers[b][axis]; });
        nodes[at].child = static_cast<int>(nodes.size());
        nodes.push_back(NodeOf(node.first, middle));
        nodes.push_back(NodeOf(middle, node.last));
    }
    for (int number : order) {
        inLeaves.push_back(centers[number]);
    }
}

/// The sign for all faces of a node at once, by interval arithmetic; 0 if it may differ.
int NearestFace::SideOfNode(const Node& node, const Cells& cells) {
    const auto add = [](double a, double b, double c, double d, double* sum) {
        const double least = std::min(std::min(a, b), std::min(c, d));
        const double most = std::max(std::max(a, b), std::max(c, d));
        sum[0] += least;
        sum[1] += most;
        sum[2] += std::max(std::fabs(least), std::fabs(most));
    };
    double sum[3] = {0.0, 0.0, 0.0};  // least value, largest value, magnitude of the terms
    add(node.minArea * cells.minDepth, node.maxArea * cells.minDepth, node.minArea * cells.maxDepth,
        node.maxArea * cells.maxDepth, sum);
    for (int axis = 0; axis < 3; ++axis) {
        const double from = cells.min[axis] - node.box.max[axis];
        const double to = cells.max[axis] - node.box.min[axis];
        add(from * node.areas.min[axis], from * node.areas.max[axis], to * node.areas.min[axis],
            to * node.areas.max[axis], sum);
    }
    const double error = relativeErrorOfSum * sum[2] + absoluteError;
    return sum[0] > error ? 1 : sum[1] < -error ? -1 : 0;
}

int NearestFace::SideOf(const Cells& cells) {
    if (centers.empty() || !allModerate) {
        return 0;
    }
    if (nodes.empty()) {
        BuildBoxes();
    }
    // Cells come in mesh order: a center close to the cells before is close to these as well.
    double withinSq = FarthestSqOfBoxes(closeBy, closeBy, cells.min, cells.max);
    struct Open {
        int node;
        double distSq;
    };
    Open open[maxDepth];
    int nOpen = 0;
    int side = 0;
    int nLeft = nodesToJudge;
    open[nOpen++] = {0, 0.0};
    while (nOpen > 0) {
        const Open next = open[--nOpen];
        if (next.distSq > withinSq) {
            continue;
        }
        const Node& node = nodes[next.node];
        const int here = SideOfNode(node, cells);
        if (here != 0) {
            if (side == -here) {
                return 0;
            }
            side = here;
            continue;
        }
        if (!node.child || --nLeft == 0) {
            return 0;
        }
        Open child[2];
        for (int i = 0; i < 2; ++i) {
            const Node& half = nodes[node.child + i];
            const double reachSq =
                FarthestSqOfBoxes(half.middle, half.middle, cells.min, cells.max);
            if (reachSq < withinSq) {
                withinSq = reachSq;
                std::copy(half.middle, half.middle + 3, closeBy);
            }
            child[i] = {node.child + i,
                        DistanceSqOfBoxes(half.box.min, half.box.max, cells.min, cells.max)};
        }
        const int near = child[1].distSq < child[0].distSq ? 1 : 0;
        open[nOpen++] = child[1 - near];
        open[nOpen++] = child[near];
    }
    return side;
}

int NearestFace::Find(const double* query) {
    if (centers.empty()) {
        return 0;
    }
    if (!allModerate || !IsModerate(query)) {
        return FindInTree(query);
    }
    if (nodes.empty()) {
        BuildBoxes();
    }
    const Nearest nearest = NearestInBoxes(query);
    lastFound = nearest.at;
    return nearest.tied ? FindInTree(query) : order[nearest.at] + 1;
}

/// Measures the centers of a leaf.
void NearestFace::MeasureLeaf(const Node& leaf, const double* query, Nearest& nearest) const {
    for (int i = leaf.first; i < leaf.last; ++i) {
        const double distSq = DistanceSq(query, inLeaves[i].data());
        if (distSq < nearest.distSq) {
            nearest = {i, distSq, false};
        } else if (distSq == nearest.distSq && i != nearest.at) {  // the bound itself is no tie
            nearest.tied = true;
        }
    }
}

NearestFace::Nearest NearestFace::NearestInBoxes(const double* query) const {
    struct Open {
        int node;
        double distSq;
    };
    Open open[maxDepth];
    int nOpen = 0;
    // Cells come in mesh order: the last answer gives a close bound from the start.
    Nearest nearest = {lastFound, DistanceSq(query, inLeaves[lastFound].data()), false};
    open[nOpen++] = {0, 0.0};
    while (nOpen > 0) {
        const Open next = open[--nOpen];
        if (next.distSq > nearest.distSq) {
            continue;  // an equally near box may hold an equally near center
        }
        const Node& node = nodes[next.node];
        if (!node.child) {
            MeasureLeaf(node, query, nearest);
            continue;
        }
        Open child[2];
        for (int i = 0; i < 2; ++i) {
            const Box& box = nodes[node.child + i].box;
            child[i] = {node.child + i, DistanceSqOfBoxes(box.min, box.max, query, query)};
        }
        const int near = child[1].distSq < child[0].distSq ? 1 : 0;
        open[nOpen++] = child[1 - near];
        open[nOpen++] = child[near];
    }
    return nearest;
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
