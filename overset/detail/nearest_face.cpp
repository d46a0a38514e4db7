#include "overset/detail/nearest_face.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <numeric>

namespace {

constexpr int leafSize = 8;               // centres; below this a scan is faster than boxes
constexpr int maxDepth = 64;              // halving an int range ends long before
constexpr int nodesToJudge = 24;          // a verdict that needs more costs as much as a search
constexpr double largest = 1e150;         // products of larger numbers overflow
constexpr double smallestDoubt = 1e-300;  // where numbers lose digits, no sign is certain
constexpr double roundingDoubt = 1e-12;   // relative; a sum of four products errs by some 1e-15

/// Squared distance between two boxes, 0 where they meet. Summed as the distance of two points is,
/// so that rounding never lifts it above the distance of a point in the one and a point in the
/// other.
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

/// Squared distance of the two points of two boxes that are furthest apart; rounding never drops it
/// below the distance of any two.
double FurthestSqOfBoxes(const double* min, const double* max, const double* otherMin,
                         const double* otherMax) {
    double sq[3];
    for (int axis = 0; axis < 3; ++axis) {
        const double away =
            std::max(std::fabs(otherMax[axis] - min[axis]), std::fabs(max[axis] - otherMin[axis]));
        sq[axis] = away * away;
    }
    return sq[0] + sq[1] + sq[2];
}

/// False for what is no number, too.
bool IsModerate(const NearestFace::Vector& v) {
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
    centres.push_back({{P[0], P[1], P[2]}, nullptr});
    areaVectors.push_back(S);
    allModerate = allModerate && IsModerate(P) && IsModerate(S);
}

NearestFace::Node NearestFace::NodeOf(int first, int last) const {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const Box nothing = {{infinity, infinity, infinity}, {-infinity, -infinity, -infinity}};
    Node node = {nothing, nothing, infinity, 0.0, {}, first, last, 0};
    for (int i = first; i < last; ++i) {
        const double* P = centres[order[i]].xyz;
        const double* S = areaVectors[order[i]].data();
        Extend(node.box.min, node.box.max, P);
        Extend(node.areas.min, node.areas.max, S);
        const double area = std::sqrt(S[0] * S[0] + S[1] * S[1] + S[2] * S[2]);
        node.minArea = std::min(node.minArea, area);
        node.maxArea = std::max(node.maxArea, area);
    }
    double leastSq = infinity;
    for (int i = first; i < last; ++i) {
        const double* P = centres[order[i]].xyz;
        const double awaySq = FurthestSqOfBoxes(node.box.min, node.box.max, P, P);
        if (awaySq < leastSq) {
            leastSq = awaySq;
            std::copy(P, P + 3, node.middle);
        }
    }
    return node;
}

/// Halves the centres along the longest side of their box until few are left.
void NearestFace::BuildBoxes() {
    const int n = static_cast<int>(centres.size());
    order.resize(centres.size());
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
            [this, axis](int a, int b) { return centres[a].xyz[axis] < centres[b].xyz[axis]; });
        nodes[at].child = static_cast<int>(nodes.size());
        nodes.push_back(NodeOf(node.first, middle));
        nodes.push_back(NodeOf(middle, node.last));
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
    double sum[3] = {0.0, 0.0, 0.0};  // least, most, and size of the terms
    add(node.minArea * cells.minDepth, node.maxArea * cells.minDepth, node.minArea * cells.maxDepth,
        node.maxArea * cells.maxDepth, sum);
    for (int axis = 0; axis < 3; ++axis) {
        const double from = cells.min[axis] - node.box.max[axis];
        const double to = cells.max[axis] - node.box.min[axis];
        add(from * node.areas.min[axis], from * node.areas.max[axis], to * node.areas.min[axis],
            to * node.areas.max[axis], sum);
    }
    const double doubt = roundingDoubt * sum[2] + smallestDoubt;
    return sum[0] > doubt ? 1 : sum[1] < -doubt ? -1 : 0;
}

int NearestFace::SideOf(const Cells& cells) {
    if (centres.empty() || !allModerate) {
        return 0;
    }
    if (nodes.empty()) {
        BuildBoxes();
    }
    // Cells come in mesh order: what was close to the ones before is close to these.
    double withinSq = FurthestSqOfBoxes(closeBy, closeBy, cells.min, cells.max);
    struct Open {
        int node;
        double distSq;
    };
    Open open[maxDepth];
    int nOpen = 0;
    int side = 0;
    int left = nodesToJudge;
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
        if (!node.child || --left == 0) {
            return 0;
        }
        Open child[2];
        for (int i = 0; i < 2; ++i) {
            const Node& half = nodes[node.child + i];
            const double reachSq =
                FurthestSqOfBoxes(half.middle, half.middle, cells.min, cells.max);
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
    if (centres.empty()) {
        return 0;
    }
    return static_cast<int>(NearestNode(InsertionTree(), query)->data - numbers.data()) + 1;
}

/// The tree that took the centres one after the other, built when it is first asked for.
const KDtreeCore& NearestFace::InsertionTree() {
    if (insertionTree) {
        return *insertionTree;
    }
    numbers.resize(centres.size());
    for (std::size_t i = 0; i < centres.size(); ++i) {
        centres[i].id = &numbers[i];
    }
    insertionTree = NewKDtree();
    KDtreePoint* points = RoomForPoints(*insertionTree, static_cast<int>(centres.size()));
    if (points) {
        std::copy(centres.begin(), centres.end(), points);
    }
    if (!points || !InsertPoints(*insertionTree) || !insertionTree->rect) {
        throw std::bad_alloc();
    }
    IndexNodes(*insertionTree);
    return *insertionTree;
}
