#ifndef KVX3D_OVERSET_DETAIL_FACE_BOXES_H
#define KVX3D_OVERSET_DETAIL_FACE_BOXES_H

#include <array>
#include <cstddef>
#include <vector>

namespace kvx3d::detail {

/// A balanced tree of boxes over face centers, halved along the longest side until eight centers
/// are left:
///
///     nodes  | 0: all          | 1: lower half | 2: upper half | 3, 4: halves of 1 | ...
///              child ------------^
///     faces  |  leaf by leaf  |
///               first .. last of a node is a range of them
///
/// All coordinates and area vectors must be finite and so small that their squares do not overflow.
class FaceBoxes {
public:
    using Vector = std::array<double, 3>;

    struct Face {
        Vector P;  ///< center
        Vector S;  ///< area vector
        double area;
        int number;  ///< 0-based, in the order of the arrays given to Build()
    };
    struct Box {
        double min[3];
        double max[3];
    };
    struct Node {
        Box box;    ///< of the centers
        Box areas;  ///< of the area vectors
        double minArea;
        double maxArea;
        double middle[3];  ///< M, a center near the middle of the box
        double minOffset;  ///< of (P - M) . S
        double maxOffset;
        double offsetMagnitude;  ///< largest sum of the absolute values of its three terms
        int first;
        int last;   ///< the position after the last face
        int child;  ///< the first of two adjacent nodes, 0 in a leaf
    };
    struct Nearest {
        int at;  ///< position in faces()
        double distSq;
        bool tied;  ///< another center is equally near
    };

    /// Builds the tree; n > 0 faces.
    void Build(const std::vector<Vector>& centers, const std::vector<Vector>& areaVectors);

    bool IsEmpty() const { return nodes.empty(); }
    const Node& NodeAt(int i) const { return nodes[static_cast<std::size_t>(i)]; }
    const Face& FaceAt(int i) const { return faces[static_cast<std::size_t>(i)]; }

    /// The center nearest to the query.
    /// @param start  position of a center that bounds the search from the beginning
    Nearest NearestTo(const double* query, int start) const;
    /// A center close to the query, the nearest one in most cases: the best of the leaf to which
    /// the nearer halves lead and of `start`.
    Nearest CloseTo(const double* query, int start) const;

    static constexpr int maxDepth = 64;  ///< more levels than halving an int range can take

private:
    Node NodeOf(int first, int last) const;
    void MeasureOffsets(Node& node) const;
    int Halve(const Node& node);
    void MeasureLeaf(const Node& leaf, const double* query, Nearest& nearest) const;

    std::vector<Node> nodes;
    std::vector<Face> faces;
};

/// Squared distance from a point to a box, 0 inside. A lower bound of DistanceSq() to any point in
/// the box, rounding included, because the terms are summed in the same order.
double DistanceSqToBox(const FaceBoxes::Box& box, const double* point);

/// Squared distance from a point to the farthest corner of a box. An upper bound of DistanceSq() to
/// any point in the box, rounding included.
double FarthestSqInBox(const double* min, const double* max, const double* point);

}  // namespace kvx3d::detail

#endif
