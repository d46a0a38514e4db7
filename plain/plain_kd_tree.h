#ifndef KVX3D_PLAIN_PLAIN_KD_TREE_H
#define KVX3D_PLAIN_PLAIN_KD_TREE_H

#include <cmath>
#include <memory>
#include <vector>

namespace plain {

/// The point tree in its plainest form: insertion one by one, recursive searches with a working
/// box. The yardstick for shape, answers and speed of KVX_ART_KDtree.
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
        for (int a = 0; a < 3; ++a) {
            if (nodes.size() == 1 || p[a] < min[a]) {
                min[a] = p[a];
            }
            if (nodes.size() == 1 || p[a] > max[a]) {
                max[a] = p[a];
            }
        }
    }

    /// Id of the nearest point, 0 on an empty tree.
    int Nearest(double x, double y, double z) const {
        if (!root) {
            return 0;
        }
        Search s{{x, y, z}, {min[0], min[1], min[2]}, {max[0], max[1], max[2]}, root, 0.0};
        s.bestSq = DistSq(*root, s.q);
        s.Descend(root);
        return s.best->id;
    }

    /// Ids within the radius, last visited first.
    std::vector<int> Within(double x, double y, double z, double r) const {
        const double q[3] = {x, y, z};
        std::vector<int> met;
        Visit(root, q, r, met);
        return {met.rbegin(), met.rend()};
    }

    Node* root = nullptr;
    double min[3] = {0.0, 0.0, 0.0};
    double max[3] = {0.0, 0.0, 0.0};

private:
    static double DistSq(const Node& n, const double* q) {
        double sum = 0.0;
        for (int a = 0; a < 3; ++a) {
            sum += (n.pos[a] - q[a]) * (n.pos[a] - q[a]);
        }
        return sum;
    }

    struct Search {
        double q[3];
        double min[3];
        double max[3];
        const Node* best;
        double bestSq;

        double BoxDistSq() const {
            double sum = 0.0;
            for (int a = 0; a < 3; ++a) {
                if (min[a] > q[a]) {
                    sum += (min[a] - q[a]) * (min[a] - q[a]);
                } else if (q[a] > max[a]) {
                    sum += (max[a] - q[a]) * (max[a] - q[a]);
                }
            }
            return sum;
        }

        void Descend(const Node* m) {
            const int dir = m->dir;
            const bool left = q[dir] - m->pos[dir] <= 0.0;
            const Node* near = left ? m->left : m->right;
            const Node* far = left ? m->right : m->left;
            double& nearBound = left ? max[dir] : min[dir];
            double& farBound = left ? min[dir] : max[dir];
            if (near) {
                const double kept = nearBound;
                nearBound = m->pos[dir];
                Descend(near);
                nearBound = kept;
            }
            const double distSq = DistSq(*m, q);
            if (bestSq > distSq) {
                best = m;
                bestSq = distSq;
            }
            if (far) {
                const double kept = farBound;
                farBound = m->pos[dir];
                if (bestSq > BoxDistSq()) {
                    Descend(far);
                }
                farBound = kept;
            }
        }
    };

    static void Visit(const Node* m, const double* q, double r, std::vector<int>& met) {
        if (!m) {
            return;
        }
        if (DistSq(*m, q) <= r * r) {
            met.push_back(m->id);
        }
        const double d = q[m->dir] - m->pos[m->dir];
        Visit(d <= 0.0 ? m->left : m->right, q, r, met);
        if (std::fabs(d) < r) {
            Visit(d <= 0.0 ? m->right : m->left, q, r, met);
        }
    }

    std::vector<std::unique_ptr<Node>> nodes;
};

}  // namespace plain

#endif
