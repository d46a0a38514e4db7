#ifndef KVX3D_OVERSET_KD_TREE_H
#define KVX3D_OVERSET_KD_TREE_H

#include "host_link/export.h"

/// One point of the tree.
struct KDtreeNode {
    double* pos;        ///< the node's own copy of the coordinates x, y, z
    int dir;            ///< axis on which the node splits: 0, 1, 2
    int* data;          ///< id of the point, not owned
    KDtreeNode* left;   ///< points with a coordinate below pos[dir] on axis dir
    KDtreeNode* right;  ///< points with an equal or a larger coordinate
};

/// An axis-parallel box.
struct KDtreeRect {
    int dim;      ///< 3
    double* min;  ///< lower corner, owned
    double* max;  ///< upper corner, owned
};

/// The tree proper. The constructor of KVX_ART_KDtree makes it together with memory for its nodes.
/// A core from elsewhere can be searched, but it must neither grow nor be destroyed through a tree
/// object.
struct KDtreeCore {
    int dim;           ///< 3
    KDtreeNode* root;  ///< null while the tree is empty
    KDtreeRect* rect;  ///< bounding box of all points, null while the tree is empty
    /// Called with the id of each node at clearing, children before their parent; null for none. It
    /// must not look at the nodes: their links are invalid by then.
    void (*destructor)(int*);
};

/// One entry of a result list. A list starts with a head entry that holds no point.
struct KDtreeResultNode {
    KDtreeNode* node;
    double distSq;  ///< squared distance in an ordered list, -1 in an unordered one
    KDtreeResultNode* next;
};

/// The result of a search in progress.
struct KDtreeResultSet {
    KDtreeCore* tree;
    KDtreeResultNode* list;    ///< head entry
    KDtreeResultNode* cursor;  ///< current entry
    int size;                  ///< entries after the head entry
};

/// Points in space with an int id each. The tree finds the point nearest to a query, and the
/// points within a radius of it.
///
/// This is a plain binary tree: axes cycle x, y, z from the root down, and each node holds one
/// point. It has the shape that results from inserting the points one after the other, and that
/// shape decides the order of answers: nothing is sorted or balanced. A tree is built by one array
/// build, or point by point; points cannot be removed.
///
/// Points in mesh order make the tree about a hundred levels deep, points in sorted order as deep
/// as their number. Neither building, nor searching, nor clearing recurses, so depth costs time
/// and no stack.
///
/// Searches read the nodes as they are. A host may detach a leaf, or move a leaf within the part
/// of space that the splits above it leave to it; the next search answers accordingly.
///
/// Answers are int arrays from the array form of new: slot 0 the count, then the ids. A search
/// first releases the array that `result` points to, so one pointer serves a whole loop. It must
/// be null before the first search, and the caller releases the last answer.
///
/// Searches change nothing and are independent of each other. Copies share the tree and the ids:
/// only one of a tree and its copies may be destroyed.
///
/// Source of the structure: J. L. Bentley, Comm. ACM 18 (1975) 509-517, doi:10.1145/361002.361007.
class KVX3D_API KVX_ART_KDtree {
public:
    KVX_ART_KDtree();
    KVX_ART_KDtree(const KVX_ART_KDtree& other) = default;
    KVX_ART_KDtree& operator=(const KVX_ART_KDtree& other) = default;
    ~KVX_ART_KDtree();

    /// Inserts n points with the ids 1..n.
    ///
    /// A second build adds its points to the tree. The ids of the first build stay in use and are
    /// never released.
    /// @param x,y,z  coordinates, 0-based; pass the address of entry 1 of a 1-based array
    /// @return false if there is not enough memory for the nodes
    /// @throws std::bad_alloc  no memory for the ids
    bool BuildTree(double* x, double* y, double* z, int n);
    /// Inserts one point.
    /// @param id  the caller's; must stay valid as long as the tree
    /// @return false if there is not enough memory for the node
    bool BuildTree(const double& x, const double& y, const double& z, int* id);
    /// Like the first overload, for the points i with blockIds[i] == blockId; the id of point i is
    /// still i + 1.
    bool BuildTreeByBlockId(double* x, double* y, double* z, int* blockIds, int blockId, int n);

    /// Finds the point nearest to (x, y, z).
    ///
    /// Of equally near points the root wins; otherwise the point that comes first in the order
    /// near side, node, far side. A query on a splitting plane has its near side on the left.
    /// @param[in,out] result  becomes {1, id}, or {0} for an empty tree
    /// @return the count, or -1 with a line on standard output if `tree` is null
    int SearchNearestPoints(const double& x, const double& y, const double& z, int*& result);
    /// Finds the points within `radius` of (x, y, z), the sphere included; the point visited last
    /// comes first.
    ///
    /// A splitting plane exactly `radius` away is not crossed: the points beyond it are left out
    /// even if they touch the sphere.
    /// @param[in,out] result  becomes {count, ids}
    /// @return the count, or -1 if `tree` is null (with a line on standard output) or if there is
    ///         not enough memory
    int SearchByRadius(const double& x, const double& y, const double& z, const double& radius,
                       int*& result);

    KDtreeCore* tree;  ///< owned
    int pointCount;    ///< the n of the last array build
    int* ids;          ///< ids of the last array build, 0-based, owned; null before
};

#endif
