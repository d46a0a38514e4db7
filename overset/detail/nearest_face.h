#ifndef KVX3D_OVERSET_DETAIL_NEAREST_FACE_H
#define KVX3D_OVERSET_DETAIL_NEAREST_FACE_H

#include <array>
#include <vector>

#include "overset/detail/kd_tree_node.h"

namespace kvx3d::detail {

/// Nearest face, by face center, for the cells of a mesh one after the other.
///
/// Most cells lie so far from all faces that several faces may be the nearest without making a
/// difference. SideOf() settles those cells, many at once and from a few boxes; Find() is for the
/// cells near the cut.
///
/// Find() gives the face that a KVX_ART_KDtree would find into which the centers were inserted one
/// after the other. It searches a balanced tree of boxes over its own copies of the centers. If
/// several centers are equally near, the insertion tree decides, which is built when it is first
/// needed.
///
/// Readable transcription: the cuts in plain/plain_overset.h.
class NearestFace {
public:
    using Vector = std::array<double, 3>;

    NearestFace() = default;
    NearestFace(const NearestFace&) = delete;
    NearestFace& operator=(const NearestFace&) = delete;
    ~NearestFace();

    /// Adds a face by its center P and its area vector S. All faces come before the first query.
    void Add(const Vector& P, const Vector& S);

    /// Cells that are judged together: the box of their centers and the range of their depths.
    struct Cells {
        double min[3];
        double max[3];
        double minDepth;
        double maxDepth;
    };

    /// Sign of (C - P) . S + |S| depth, if it is the same for all of the cells with each face that
    /// may be the nearest to the cell's center C, and if no rounding error can change it.
    /// @return 1, -1, or 0 if the sign is not certain
    int SideOf(const Cells& cells);

    /// Number of the face nearest to the query, in the order of Add() and from 1.
    /// @return 0 if there is no face
    /// @throws std::bad_alloc  no memory for the boxes or for the insertion tree
    int Find(const double* query);

    const double* Center(int number) const { return centers[number - 1].data(); }
    const double* AreaVector(int number) const { return areaVectors[number - 1].data(); }

private:
    struct Box {
        double min[3];
        double max[3];
    };
    struct Node {
        Box box;    ///< of the centers
        Box areas;  ///< of the area vectors
        double minArea;
        double maxArea;
        double middle[3];  ///< a center near the middle of the box
        int first;         ///< range of `order`
        int last;
        int child;  ///< the first of two adjacent nodes, 0 in a leaf
    };
    struct Nearest {
        int at;  ///< position in `order`
        double distSq;
        bool tied;  ///< another center is equally near
    };

    void BuildBoxes();
    Node NodeOf(int first, int last) const;
    static int SideOfNode(const Node& node, const Cells& cells);
    void MeasureLeaf(const Node& leaf, const double* query, Nearest& nearest) const;
    Nearest NearestInBoxes(const double* query) const;
    int FindInTree(const double* query);
    void BuildInsertionTree();

    std::vector<Vector> centers;  ///< in the order of Add()
    std::vector<Vector> areaVectors;
    bool allModerate = true;  ///< no coordinate or area so large that its square overflows

    std::vector<Node> nodes;       ///< empty before the first query
    std::vector<int> order;        ///< 0-based numbers of the centers, leaf by leaf
    std::vector<Vector> inLeaves;  ///< the centers in that order
    double closeBy[3] = {};        ///< a center close to the cells of the last SideOf()
    int lastFound = 0;             ///< position in `order` of the answer of the last Find()

    KDtreeCore* insertionTree = nullptr;  ///< owned, null before the first tie
    std::vector<int> ids;                 ///< of the insertion tree: numbers from 1
};

}  // namespace kvx3d::detail

#endif
