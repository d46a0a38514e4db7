#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <vector>

#include "overset/detail/kd_tree_index.h"
#include "overset/detail/kd_tree_store.h"

namespace {

/// What a nearest search still has to look at on its way up: a node, then the child on its far
/// side.
struct OpenBranch {
    const KDtreeNode* node;
    double distSq;
    const KDtreeNode* far;
    double farSq[3];  ///< squared distance to the far child's box along each axis
};

/// Open branches of one search: in place as long as the tree is not degenerate.
class OpenBranches {
public:
    bool Empty() const { return size == 0; }

    OpenBranch& Push() {
        if (size == capacity) {
            Grow();
        }
        return base[size++];
    }

    OpenBranch& Pop() { return base[--size]; }

private:
    void Grow() {
        std::vector<OpenBranch> larger(static_cast<std::size_t>(2 * capacity));
        std::memcpy(larger.data(), base, sizeof(OpenBranch) * static_cast<std::size_t>(size));
        heap.swap(larger);
        base = heap.data();
        capacity *= 2;
    }

    static constexpr int inPlace = 128;
    OpenBranch local[inPlace];
    std::vector<OpenBranch> heap;
    OpenBranch* base = local;
    int size = 0;
    int capacity = inPlace;
};

/// The next double above a squared distance.
double JustAbove(double distSq) {
    std::uint64_t bits;
    std::memcpy(&bits, &distSq, sizeof bits);
    ++bits;
    std::memcpy(&distSq, &bits, sizeof bits);
    return distSq;
}

double Sum(const double* sq) {
    return sq[0] + sq[1] + sq[2];
}

/// Squared distance of the query to the box along each axis.
void BoxDistances(const KDtreeRect& box, const double* query, double* sq) {
    for (int axis = 0; axis < 3; ++axis) {
        double d = 0.0;
        if (box.min[axis] > query[axis]) {
            d = box.min[axis] - query[axis];
        } else if (query[axis] > box.max[axis]) {
            d = query[axis] - box.max[axis];
        }
        sq[axis] = d * d;
    }
}

/// One nearest search.
///
/// The answer is the first node at the least distance in the order near side, node, far side. The
/// descent measures every node it passes, so `limit` falls before the way up begins: to just
/// above a distance seen but not yet met in order, to the distance itself once it is.
class NearestSearch {
public:
    NearestSearch(const KDtreeCore& tree, const double* from)
        : core(tree), query(from), best(tree.root), limit(DistanceSq(from, tree.root->pos)) {}

    const KDtreeNode* Run() {
        double sq[3];
        BoxDistances(*core.rect, query, sq);
        Descend(core.root, sq);
        while (!branches.Empty()) {
            OpenBranch branch = branches.Pop();
            if (limit > branch.distSq) {
                best = branch.node;
                limit = branch.distSq;
            }
            if (branch.far && limit > Sum(branch.farSq)) {
                Descend(branch.far, branch.farSq);
            }
        }
        return best;
    }

private:
    /// Follows the near side to the end; nodes and far sides that may matter are left open.
    void Descend(const KDtreeNode* node, const double* sq) {
        while (node) {
            const int dir = node->dir;
            const double d = query[dir] - node->pos[dir];
            const double distSq = DistanceSq(query, node->pos);
            const KDtreeNode* near = d <= 0.0 ? node->left : node->right;
            const KDtreeNode* far = d <= 0.0 ? node->right : node->left;
            double farSq[3] = {sq[0], sq[1], sq[2]};
            // 0 at a plane that is no number: every later point there lies on its left.
            farSq[dir] = std::max(0.0, d * d);
            const bool maybeNode = limit > distSq;
            if (maybeNode) {
                limit = JustAbove(distSq);
            }
            if (maybeNode || (far && limit > Sum(farSq))) {
                OpenBranch& branch = branches.Push();
                branch.node = node;
                branch.distSq = distSq;
                branch.far = far;
                std::memcpy(branch.farSq, farSq, sizeof farSq);
            }
            node = near;
        }
    }

    const KDtreeCore& core;
    const double* query;
    const KDtreeNode* best;
    double limit;  ///< only what is nearer counts
    OpenBranches branches;
};

}  // namespace

const KDtreeNode* NearestNode(const KDtreeCore& core, const double* query) {
    if (!core.root || !core.rect) {
        return nullptr;
    }
    const KDtreeIndex* index = IndexOf(core);
    const KDtreeNode* nearest = index && IsFinite(query) ? index->Nearest(query) : nullptr;
    return nearest ? nearest : NearestSearch(core, query).Run();
}

bool InsertResult(KDtreeResultNode* head, KDtreeNode* node, double distSq) try {
    KDtreeResultNode* before = head;
    if (distSq >= 0.0) {
        while (before->next && before->next->distSq < distSq) {
            before = before->next;
        }
    }
    before->next = new KDtreeResultNode{node, distSq, before->next};
    return true;
} catch (const std::bad_alloc&) {
    return false;
}

void ClearResults(KDtreeResultNode* head) {
    while (KDtreeResultNode* entry = head->next) {
        head->next = entry->next;
        delete entry;
    }
}
