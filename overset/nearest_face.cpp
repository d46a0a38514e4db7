#include "overset/nearest_face.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <numeric>

namespace {

constexpr int leafSize = 8;   // centres; below this a scan is faster than boxes
constexpr int maxDepth = 64;  // halving an int range ends long before

/// Squared distance to a box, 0 inside. Summed as the distance of a point is, so that rounding
/// never lifts it above the distance of a point in the box.
double DistanceSqToBox(const double* min, const double* max, const double* query) {
    double sq[3];
    for (int axis = 0; axis < 3; ++axis) {
        const double below = min[axis] - query[axis];
        const double above = query[axis] - max[axis];
        const double outside = std::max(std::max(below, above), 0.0);
        sq[axis] = outside * outside;
    }
    return sq[0] + sq[1] + sq[2];
}

}  // namespace

NearestFace::~NearestFace() {
    FreeKDtree(insertionTree);
}

void NearestFace::Add(double x, double y, double z) {
    centres.push_back({{x, y, z}, nullptr});
}

NearestFace::Box NearestFace::BoundsOf(int first, int last) const {
    Box box;
    std::copy(centres[order[first]].xyz, centres[order[first]].xyz + 3, box.min);
    std::copy(box.min, box.min + 3, box.max);
    for (int i = first + 1; i < last; ++i) {
        for (int axis = 0; axis < 3; ++axis) {
            box.min[axis] = std::min(box.min[axis], centres[order[i]].xyz[axis]);
            box.max[axis] = std::max(box.max[axis], centres[order[i]].xyz[axis]);
        }
    }
    return box;
}

/// Halves the centres along the longest side of their box until few are left.
void NearestFace::BuildBoxes() {
    const int n = static_cast<int>(centres.size());
    order.resize(centres.size());
    std::iota(order.begin(), order.end(), 0);
    nodes.push_back({BoundsOf(0, n), 0, n, 0});
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
        nodes.push_back({BoundsOf(node.first, middle), node.first, middle, 0});
        nodes.push_back({BoundsOf(middle, node.last), middle, node.last, 0});
    }
    leafed.reserve(3 * centres.size());
    for (int number : order) {
        leafed.insert(leafed.end(), centres[number].xyz, centres[number].xyz + 3);
    }
}

void NearestFace::ScanLeaf(const Node& leaf, const double* query) {
    for (int i = leaf.first; i < leaf.last; ++i) {
        const double distSq = DistanceSq(query, &leafed[3 * static_cast<std::size_t>(i)]);
        if (distSq < nearestSq) {
            nearest.clear();
            nearestSq = distSq;
        }
        if (distSq == nearestSq) {
            nearest.push_back(order[i]);
        }
    }
}

int NearestFace::Find(const double* query) {
    if (centres.empty()) {
        return 0;
    }
    if (nodes.empty()) {
        BuildBoxes();
    }
    // The bound of the predecessor's answer alone, not that answer: it is met again on the way.
    nearest.clear();
    nearestSq = DistanceSq(query, centres[previous].xyz);
    struct Open {
        int node;
        double distSq;
    };
    Open open[maxDepth];
    int nOpen = 0;
    open[nOpen++] = {0, 0.0};
    while (nOpen > 0) {
        const Open next = open[--nOpen];
        if (next.distSq > nearestSq) {
            continue;
        }
        const Node* node = &nodes[next.node];
        while (node->child) {
            int near = node->child;
            int far = near + 1;
            double nearSq = DistanceSqToBox(nodes[near].box.min, nodes[near].box.max, query);
            double farSq = DistanceSqToBox(nodes[far].box.min, nodes[far].box.max, query);
            if (farSq < nearSq) {
                std::swap(near, far);
                std::swap(nearSq, farSq);
            }
            if (farSq <= nearestSq) {
                open[nOpen++] = {far, farSq};
            }
            if (nearSq > nearestSq) {
                node = nullptr;
                break;
            }
            node = &nodes[near];
        }
        if (node) {
            ScanLeaf(*node, query);
        }
    }
    previous = nearest.size() == 1 ? nearest[0] : FirstMet(query);
    return previous + 1;
}

/// Of the equally near centres, the one a search of the insertion tree answers: the root, else the
/// first on its way.
int NearestFace::FirstMet(const double* query) {
    // No candidate at all means a query or a centre that is no number: the root answers that, too.
    if (nearest.empty() || std::find(nearest.begin(), nearest.end(), 0) != nearest.end()) {
        return 0;
    }
    if (!insertionTree) {
        numbers.resize(centres.size());
        for (std::size_t i = 0; i < centres.size(); ++i) {
            centres[i].id = &numbers[i];
        }
        std::vector<KDtreePoint> points = centres;
        insertionTree = NewKDtree();
        if (!insertionTree ||
            !InsertPoints(*insertionTree, points.data(), static_cast<int>(points.size()))) {
            throw std::bad_alloc();
        }
    }
    int first = nearest[0];
    for (int candidate : nearest) {
        if (candidate != first &&
            IsMetBefore(*insertionTree, query, centres[candidate], centres[first])) {
            first = candidate;
        }
    }
    return first;
}
