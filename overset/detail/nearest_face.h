#ifndef KVX3D_OVERSET_DETAIL_NEAREST_FACE_H
#define KVX3D_OVERSET_DETAIL_NEAREST_FACE_H

#include <vector>

#include "overset/detail/face_boxes.h"
#include "overset/detail/kd_tree_node.h"

namespace kvx3d::detail {

/// Nearest face, by face center, for the cells of a mesh one after the other.
///
/// Most cells lie so far from all faces that several faces may be the nearest without making a
/// difference. SideOf() settles those cells, many at once and from a few boxes: it takes the side
/// of a face that is close to them and looks for a face that contradicts. Find() is for the cells
/// near the cut.
///
/// Any order of cells gives the same answers; cells that come in spatial order are judged faster.
///
/// Find() gives the face that a KVX_ART_KDtree would find into which the centers were inserted one
/// after the other. It searches a balanced tree of boxes over its own copies of the centers. If
/// several centers are equally near, the insertion tree decides, which is built when it is first
/// needed.
///
/// Readable transcription: the cuts in plain/plain_overset.h.
class NearestFace {
public:
    using Vector = FaceBoxes::Vector;

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
    class CloseFace;

    bool BoxesServe();
    static int SideOfNode(const FaceBoxes::Node& node, const Cells& cells);
    static int SideOfFace(const FaceBoxes::Face& face, const Cells& cells);
    int FindContrary(int side, const CloseFace& close, const Cells& cells, int& nLeft) const;
    int FindInTree(const double* query);
    void BuildInsertionTree();

    std::vector<Vector> centers;  ///< in the order of Add()
    std::vector<Vector> areaVectors;
    bool allModerate = true;  ///< no coordinate or area so large that its square overflows

    FaceBoxes boxes;  ///< empty before the first query
    int closeBy = 0;  ///< position in the boxes of a center close to the last cells

    KDtreeCore* insertionTree = nullptr;  ///< owned, null before the first tie
    std::vector<int> ids;                 ///< of the insertion tree: numbers from 1
};

}  // namespace kvx3d::detail

#endif
