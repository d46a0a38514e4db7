#include "overset/detail/face_boxes.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "overset/detail/kd_tree_node.h"

namespace kvx3d::detail {
namespace {

constexpr int leafSize = 8;  // faces; below this a scan is faster than boxes

double Length(const FaceBoxes::Vector& v) {
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

void Extend(FaceBoxes::Box& box, const FaceBoxes::Vector& v) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        box.min[axis] = std::min(box.min[axis], v[axis]);
        box.max[axis] = std::max(box.max[axis], v[axis]);
    }
}

}  // namespace

double DistanceSqToBox(const FaceBoxes::Box& box, const double* point) {
    double sq[3];
    for (int axis = 0; axis < 3; ++axis) {
        const double below = box.min[axis] - point[axis];
        const double above = point[axis] - box.max[axis];
        const double outside = std::max(std::max(below, above), 0.0);
        sq[axis] = outside * outside;
    }
    return sq[0] + sq[1] + sq[2];
}

double FarthestSqInBox(const double* min, const double* max, const double* point) {
    double sq[3];
    for (int axis = 0; axis < 3; ++axis) {
        const double away =
            std::max(std::fabs(point[axis] - min[axis]), std::fabs(max[axis] - point[axis]));
        sq[axis] = away * away;
    }
    return sq[0] + sq[1] + sq[2];
}

void FaceBoxes::Build(const std::vector<Vector>& centers, const std::vector<Vector>& areaVectors) {
    faces.clear();
    nodes.clear();
    for (std::size_t i = 0; i < centers.size(); ++i) {
        faces.push_back({centers[i], areaVectors[i], Length(areaVectors[i]), static_cast<int>(i)});
    }
    nodes.push_back(NodeOf(0, static_cast<int>(faces.size())));
    for (std::size_t at = 0; at < nodes.size(); ++at) {
        const Node node = nodes[at];
        if (node.last - node.first > leafSize) {
            const int middle = Halve(node);
            nodes[at].child = static_cast<int>(nodes.size());
            nodes.push_back(NodeOf(node.first, middle));
            nodes.push_back(NodeOf(middle, node.last));
        }
    }
}

/// Sorts the faces of a node into halves along the longest side of its box.
/// @return position of the first face of the upper half
int FaceBoxes::Halve(const Node& node) {
    std::size_t axis = 0;
    for (std::size_t a = 1; a < 3; ++a) {
        if (node.box.max[a] - node.box.min[a] > node.box.max[axis] - node.box.min[axis]) {
            axis = a;
        }
    }
    const int middle = node.first + (node.last - node.first) / 2;
    std::nth_element(faces.begin() + node.first, faces.begin() + middle, faces.begin() + node.last,
                     [axis](const Face& a, const Face& b) { return a.P[axis] < b.P[axis]; });
    return middle;
}

FaceBoxes::Node FaceBoxes::NodeOf(int first, int last) const {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const Box nothing = {{infinity, infinity, infinity}, {-infinity, -infinity, -infinity}};
    Node node = {nothing, nothing, infinity, 0.0, {}, infinity, -infinity, 0.0, first, last, 0};
    for (int i = first; i < last; ++i) {
        Extend(node.box, FaceAt(i).P);
        Extend(node.areas, FaceAt(i).S);
        node.minArea = std::min(node.minArea, FaceAt(i).area);
        node.maxArea = std::max(node.maxArea, FaceAt(i).area);
    }
    double leastSq = infinity;
    for (int i = first; i < last; ++i) {
        const double* P = FaceAt(i).P.data();
        const double awaySq = FarthestSqInBox(node.box.min, node.box.max, P);
        if (awaySq < leastSq) {
            leastSq = awaySq;
            std::copy(P, P + 3, node.middle);
        }
    }
    MeasureOffsets(node);
    return node;
}

/// Sets the bounds of (P - M) . S over the faces of a node.
void FaceBoxes::MeasureOffsets(Node& node) const {
    for (int i = node.first; i < node.last; ++i) {
        double offset = 0.0;
        double magnitude = 0.0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double term = (FaceAt(i).P[axis] - node.middle[axis]) * FaceAt(i).S[axis];
            offset += term;
            magnitude += std::fabs(term);
        }
        node.minOffset = std::min(node.minOffset, offset);
        node.maxOffset = std::max(node.maxOffset, offset);
        node.offsetMagnitude = std::max(node.offsetMagnitude, magnitude);
    }
}

/// Measures the centers of a leaf.
void FaceBoxes::MeasureLeaf(const Node& leaf, const double* query, Nearest& nearest) const {
    for (int i = leaf.first; i < leaf.last; ++i) {
        const double distSq = DistanceSq(query, FaceAt(i).P.data());
        if (distSq < nearest.distSq) {
            nearest = {i, distSq, false};
        } else if (distSq == nearest.distSq && i != nearest.at) {  // the start itself is no tie
            nearest.tied = true;
        }
    }
}

FaceBoxes::Nearest FaceBoxes::CloseTo(const double* query, int start) const {
    Nearest close = {start, DistanceSq(query, FaceAt(start).P.data()), false};
    const Node* node = &nodes[0];
    while (node->child) {
        const Node* half = &NodeAt(node->child);
        const double lower = DistanceSqToBox(half[0].box, query);
        const double upper = DistanceSqToBox(half[1].box, query);
        node = half + (upper < lower ? 1 : 0);
    }
    MeasureLeaf(*node, query, close);
    return close;
}

FaceBoxes::Nearest FaceBoxes::NearestTo(const double* query, int start) const {
    struct Open {
        int node;
        double distSq;
    };
    Open open[maxDepth];
    int nOpen = 0;
    Nearest nearest = {start, DistanceSq(query, FaceAt(start).P.data()), false};
    open[nOpen++] = {0, 0.0};
    while (nOpen > 0) {
        const Open next = open[--nOpen];
        if (next.distSq > nearest.distSq) {
            continue;  // an equally near box may hold an equally near center
        }
        const Node& node = NodeAt(next.node);
        if (!node.child) {
            MeasureLeaf(node, query, nearest);
            continue;
        }
        Open child[2];
        for (int i = 0; i < 2; ++i) {
            child[i] = {node.child + i, DistanceSqToBox(NodeAt(node.child + i).box, query)};
        }
        const int near = child[1].distSq < child[0].distSq ? 1 : 0;
        open[nOpen++] = child[1 - near];
        open[nOpen++] = child[near];
    }
    return nearest;
}

}  // namespace kvx3d::detail
