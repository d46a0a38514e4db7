#ifndef KVX3D_OVERSET_NEAREST_FACE_H
#define KVX3D_OVERSET_NEAREST_FACE_H

#include <vector>

#include "overset/kd_tree_store.h"

/// Nearest face centre for cell after cell of a mesh; internal to hole cutting.
///
/// The answer is that of a KVX_ART_KDtree that took the centres one after the other, equally near
/// centres included. Walls are flat and meshes regular, which that tree takes badly: hundreds of
/// nodes a search. Here the centres lie in a balanced tree of boxes, a search starts from the
/// distance to its predecessor's answer, and the insertion tree is built and asked only when two
/// centres are equally near.
class NearestFace {
public:
    NearestFace() = default;
    NearestFace(const NearestFace&) = delete;
    NearestFace& operator=(const NearestFace&) = delete;
    ~NearestFace();

    /// Adds a centre; all of them before the first Find().
    void Add(double x, double y, double z);

    /// Number of the nearest centre in the order of Add(), from 1; 0 if there is none.
    int Find(const double* query);

private:
    struct Box {
        double min[3];
        double max[3];
    };
    struct Node {
        Box box;
        int first;  ///< range of `order`
        int last;
        int child;  ///< the first of two neighbouring nodes, 0 in a leaf
    };

    void BuildBoxes();
    Box BoundsOf(int first, int last) const;
    void ScanLeaf(const Node& leaf, const double* query);
    int FirstMet(const double* query);

    std::vector<KDtreePoint> centres;  ///< in the order of Add(), their ids in numbers
    std::vector<int> numbers;
    std::vector<int> order;      ///< centres by leaf, 0-based
    std::vector<double> leafed;  ///< coordinates in that order
    std::vector<Node> nodes;     ///< empty before the first Find()
    std::vector<int> nearest;    ///< centres at the least distance found, 0-based
    double nearestSq = 0.0;
    int previous = 0;  ///< answer of the search before, 0-based
    KDtreeCore* insertionTree = nullptr;
};

#endif
