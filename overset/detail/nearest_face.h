#ifndef KVX3D_OVERSET_DETAIL_NEAREST_FACE_H
#define KVX3D_OVERSET_DETAIL_NEAREST_FACE_H

#include <array>
#include <vector>

#include "overset/detail/kd_tree_store.h"

/// Nearest face for cell after cell of a mesh; internal to hole cutting.
///
/// "Nearest" is by face centre. Most cells lie so far from all faces that it does not matter which
/// of several is the nearest: SideOf() tells that first, for many cells at once and from a few
/// boxes, and Find() is left for the cells near the cut.
///
/// The answer of Find() is that of a KVX_ART_KDtree that took the centres one after the other,
/// equally near centres included; that tree and its index are made when it is first asked.
class NearestFace {
public:
    using Vector = std::array<double, 3>;

    NearestFace() = default;
    NearestFace(const NearestFace&) = delete;
    NearestFace& operator=(const NearestFace&) = delete;
    ~NearestFace();

    /// Adds a face by centre and area vector; all of them before the first question.
    void Add(const Vector& P, const Vector& S);

    /// Cells judged together: the box of their centres and the range of their depths.
    struct Cells {
        double min[3];
        double max[3];
        double minDepth;
        double maxDepth;
    };

    /// Sign of (C - P) . S + |S| depth, if it is the same for every one of the cells and every face
    /// that may be the nearest to its centre C, and no rounding can turn it; else 0.
    int SideOf(const Cells& cells);

    /// Number of the nearest face in the order of Add(), from 1; 0 if there is none.
    int Find(const double* query);

    const double* Centre(int number) const { return centres[number - 1].xyz; }
    const double* AreaVector(int number) const { return areaVectors[number - 1].data(); }

private:
    struct Box {
        double min[3];
        double max[3];
    };
    struct Node {
        Box box;    ///< of the centres
        Box areas;  ///< of the area vectors
        double minArea;
        double maxArea;
        double middle[3];  ///< a centre in the middle of the box
        int first;         ///< range of `order`
        int last;
        int child;  ///< the first of two neighbouring nodes, 0 in a leaf
    };

    void BuildBoxes();
    Node NodeOf(int first, int last) const;
    static int SideOfNode(const Node& node, const Cells& cells);
    const KDtreeCore& InsertionTree();

    std::vector<KDtreePoint> centres;  ///< in the order of Add()
    std::vector<Vector> areaVectors;
    std::vector<int> numbers;
    std::vector<int> order;   ///< centres by leaf, 0-based
    std::vector<Node> nodes;  ///< empty before the first verdict
    double closeBy[3] = {};   ///< a centre close to the cells of the verdict before
    KDtreeCore* insertionTree = nullptr;
    bool allModerate = true;  ///< no face so large that sizes overflow
};

#endif
