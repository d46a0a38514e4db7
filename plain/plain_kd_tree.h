#ifndef KVX3D_PLAIN_PLAIN_KD_TREE_H
#define KVX3D_PLAIN_PLAIN_KD_TREE_H

#include <cmath>
#include <memory>
#include <vector>

/// Readable transcription of KVX_ART_KDtree: insertion one point at a time, recursive searches.
///
/// This is the simplest form of the tree and not a fast one. Tests compare the shape and the
/// answers of KVX_ART_KDtree with it bit for bit, and benchmarks take it as their baseline.

namespace plain {

/// Squared distance between two points, summed in the order x, y, z.
inline double DistSq(const double* a, const double* b) {
    double sum = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        sum += (a[axis] - b[axis]) * (a[axis] - b[axis]);
    }
    return sum;
}

/// Recursive nearest search over nodes with the members pos, dir, left and right.
///
/// Each visit goes to the near child, then measures the node, then goes to the far child if its
/// box can hold a nearer point. `min` and `max` are the corners of the box of the node visited.
template <typename Node>
struct NearestSearch {
    double query[3];
    double min[3];
    double max[3];
    const Node* best;
    double bestSq;

    /// Squared distance from the query to the box.
    double BoxDistSq() const {
        double sum = 0.0;
        for (int axis = 0; axis < 3; ++axis) {
            if (min[axis] > query[axis]) {
                sum += (min[axis] - query[axis]) * (min[axis] - query[axis]);
            } else if (query[axis] > max[axis]) {
                sum += (max[axis] - query[axis]) * (max[axis] - query[axis]);
            }
        }
        return sum;
    }

    void Visit(const Node* node) {
        const int dir = node->dir;
        const bool left = query[dir] - node->pos[dir] <= 0.0;
        const Node* near = left ? node->left : node->right;
        const Node* far = left ? node->right : node->left;
        double& nearBound = left ? max[dir] : min[dir];
        double& farBound = left ? min[dir] : max[dir];
        if (near) {
            const double kept = nearBound;
            nearBound = node->pos[dir];
            Visit(near);
            nearBound = kept;
        }
        const double distSq = DistSq(node->pos, query);
        if (bestSq > distSq) {
            best = node;
            bestSq = distSq;
        }
        if (far) {
            const double kept = farBound;
            farBound = node->pos[dir];
            if (bestSq > BoxDistSq()) {
                Visit(far);
            }
            farBound = kept;
        }
    }
};

/// The node below `root` that is nearest to `query`; the root wins every tie that it takes part in.
/// @param min,max  corners of a box that holds all nodes
template <typename Node>
const Node* NearestBelow(const Node* root, const double* min, const double* max,
                         const double* query) {
    NearestSearch<Node> search{{query[0], query[1], query[2]},
                               {min[0], min[1], min[2]},
                               {max[0], max[1], max[2]},
                               root,
                               DistSq(root->pos, query)};
    search.Visit(root);
    return search.best;
}

/// The tree: one point in each node, split axes in the order x, y, z from the root down.
class KdTree {
public:
    struct Node {
        double pos[3];
        int dir;
        int id;
        Node* left = nullptr;
        Node* right = nullptr;
    };

    void Insert(double x, double y, double z, int id) {
        const double p[3] = {x, y, z};
        Node** slot = &root;
        int dir = 0;
        while (Node* node = *slot) {
            dir = (node->dir + 1) % 3;
            slot = node->pos[node->dir] <= p[node->dir] ? &node->right : &node->left;
        }
        nodes.push_back(std::make_unique<Node>());
        *slot = nodes.back().get();
        **slot = {{x, y, z}, dir, id, nullptr, nullptr};
        for (int axis = 0; axis < 3; ++axis) {
            if (nodes.size() == 1 || p[axis] < min[axis]) {
                min[axis] = p[axis];
            }
            if (nodes.size() == 1 || p[axis] > max[axis]) {
                max[axis] = p[axis];
            }
        }
    }

    /// Id of the nearest point, 0 in an empty tree.
    int Nearest(double x, double y, double z) const {
        const double query[3] = {x, y, z};
        return root ? NearestBelow<Node>(root, min, max, query)->id : 0;
    }

    /// Ids of the points within radius r, the last one visited first.
    std::vector<int> Within(double x, double y, double z, double r) const {
        const double query[3] = {x, y, z};
        std::vector<int> visited;
        Visit(root, query, r, visited);
        return {visited.rbegin(), visited.rend()};
    }

    Node* root = nullptr;
    double min[3] = {0.0, 0.0, 0.0};  ///< lower corner of the bounding box of all points
    double max[3] = {0.0, 0.0, 0.0};  ///< upper corner

private:
    static void Visit(const Node* node, const double* query, double r, std::vector<int>& visited) {
        if (!node) {
            return;
        }
        if (DistSq(node->pos, query) <= r * r) {
            visited.push_back(node->id);
        }
        const double d = query[node->dir] - node->pos[node->dir];
        Visit(d <= 0.0 ? node->left : node->right, query, r, visited);
        if (std::fabs(d) < r) {
            Visit(d <= 0.0 ? node->right : node->left, query, r, visited);
        }
    }

    std::vector<std::unique_ptr<Node>> nodes;
};

}  // namespace plain

#endif
