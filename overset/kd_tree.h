#ifndef KVX3D_OVERSET_KD_TREE_H
#define KVX3D_OVERSET_KD_TREE_H

#include "host_link/export.h"

/// One point of the tree.
struct KDtreeNode {
    double* pos;        ///< the node's own copy of the coordinates x, y, z
    int dir;            ///< axis on which the node splits: 0, 1, 2
    int* data;          ///< id of the point, not owned
    KDtreeNode* left;   ///< points below pos[dir] on axis dir
    KDtreeNode* right;  ///< points equal or above
};

/// An axis-parallel box.
struct KDtreeRect {
    int dim;      ///< 3
    double* min;  ///< lower corner, owned
    double* max;  ///< upper corner, owned
};

/// The tree proper. Only the constructor of KVX_ART_KDtree makes one: the memory of its nodes is
/// kept beside it, so a core made elsewhere must not be put into a tree object.
struct KDtreeCore {
    int dim;                   ///< 3
    KDtreeNode* root;          ///< null while the tree is empty
    KDtreeRect* rect;          ///< bounding box of all points, null while the tree is empty
    void (*destructor)(int*);  ///< called with the id of each node at clearing, unless null
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
    int size;                  ///< entries behind the head
};

/// Points in space with an int id each, and two questions: which point is nearest, and which lie
/// within a radius.
///
/// A plain binary tree, axes cycling x, y, z from the root, one point a node. Its shape is that of
/// inserting the points one after the other, and so is the order of answers: nothing is sorted or
/// balanced. A tree is built by one array build, or point by point; it has no removal.
///
/// The order of the points makes such a tree deep, a hundred levels on a mesh. An array build of
/// many points into an empty tree makes a balanced index beside it, some 11 bytes a point, that
/// finds the same nearest points in a quarter of the time and less; inserting more drops it.
///
/// Answers are int arrays from the array form of new: slot 0 the count, then the ids. A search
/// first releases what `result` held, so one pointer serves a whole loop; it starts as null, and
/// the caller releases the last answer.
///
/// Searches change nothing and are independent of each other. Copies share the tree and the ids:
/// of a tree and its copies only one may be destroyed.
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
    /// A second build adds its points; the ids of the first stay in use and are never released.
    /// @param x,y,z  coordinates, 0-based: for 1-based arrays hand over the address of entry 1
    /// @return false if the memory for the nodes cannot be had
    /// @throws std::bad_alloc  no memory for the ids
    bool BuildTree(double* x, double* y, double* z, int n);
    /// Inserts one point.
    /// @param id  the caller's; must stay valid as long as the tree
    /// @return false if the memory for the node cannot be had
    bool BuildTree(const double& x, const double& y, const double& z, int* id);
    /// Inserts point i + 1 of n where blockIds[i] == blockId; otherwise as the first build.
    bool BuildTreeByBlockId(double* x, double* y, double* z, int* blockIds, int blockId, int n);

    /// The point nearest to (x, y, z).
    ///
    /// Of equally near points the root wins, else the one whose place the descent reaches first:
    /// near side, node, far side; a query on a splitting plane has its near side on the left.
    /// @param[in,out] result  becomes {1, id}, or {0} on an empty tree
    /// @return the count; -1 with a line on standard output if `tree` is null
    int SearchNearestPoints(const double& x, const double& y, const double& z, int*& result);
    /// The points within `radius` of (x, y, z), that distance included, last visited first.
    ///
    /// A splitting plane exactly `radius` away is not crossed: points behind it are left out even
    /// if they touch the sphere.
    /// @param[in,out] result  becomes {count, ids}
    /// @return the count; -1 if `tree` is null (with a line on standard output) or memory ran out
    int SearchByRadius(const double& x, const double& y, const double& z, const double& radius,
                       int*& result);

    KDtreeCore* tree;  ///< owned
    int pointCount;    ///< the n of the last array build
    int* ids;          ///< ids of the last array build, 0-based, owned; null before
};

#endif
