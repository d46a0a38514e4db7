#include "overset/detail/kd_tree_search.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <new>
#include <vector>

#include "overset/detail/kd_tree_node.h"

// Readable transcription: NearestSearch and KdTree::Within() in plain/plain_kd_tree.h.
//
// State of a nearest search after its first descent; each far child is stored with the squared
// distance to its box along each axis, so that one box distance costs three additions:
//
//     root         branches
//      | \         +-----+--------+----------------+
//      |  far 0    | far | distSq | sq x, sq y, sq z |   far 0
//      | \         |     |        |                |
//      |  far 1    | far | distSq | sq x, sq y, sq z |   far 1   <- visited next
//      leaf        +-----+--------+----------------+

namespace kvx3d::detail {
namespace {

/// A subtree that is still to be visited.
struct OpenBranch {
    const KDtreeNode* node;
    double distSq;  ///< squared distance from the query to its box, the sum of sq
    double sq[3];   ///< squared distance along each axis
};

/// Last-in, first-out list of open branches. The first 128 entries need no heap memory.
class OpenBranches {
public:
    bool Empty() const { return size == 0; }
    int Size() const { return size; }

    /// Room for one more branch. The caller fills it in place, which is faster than a copy of a
    /// record just written, and adds it by Keep().
    OpenBranch& Room() {
        if (size == capacity) {
            Grow();
        }
        return base[size];
    }
    void Keep() { ++size; }

    /// Removes the last branch; valid until the next Room().
    const OpenBranch& Pop() { return base[--size]; }

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

/// Squared distance from the query to the box along each axis.
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
/// Of equally near nodes the answer is the first one in the order near side, node, far side. The
/// search measures each node before its near side, because the distance then prunes earlier. Both
/// orders agree except for a node and the nodes on its near side: an equally near node replaces
/// `best` exactly if it lies on the near side of `best`. The search is still on that side as long
/// as it has closed no branch that was open when it measured `best`.
class NearestSearch {
public:
    NearestSearch(const KDtreeCore& tree, const double* from)
        : core(tree),
          query{from[0], from[1], from[2]},
          best(tree.root),
          bestSq(DistanceSq(from, tree.root->pos)) {}

    const KDtreeNode* Run() {
        double sq[3];
        BoxDistances(*core.rect, query, sq);
        Descend(core.root, sq);
        while (!branches.Empty()) {
            const OpenBranch& branch = branches.Pop();
            fewestOpen = std::min(fewestOpen, branches.Size());
            if (branch.distSq <= bestSq) {  // an equally near node may still replace `best`
                Descend(branch.node, branch.sq);
            }
        }
        return best;
    }

private:
    /// Follows the near side of a subtree to its end and opens the far sides that may matter.
    ///
    /// The loop works on copies of the query, of the box and of bestSq: a write to the list of
    /// branches might change the members, so they would be loaded again after each.
    void Descend(const KDtreeNode* node, const double* sq) {
        const double q[3] = {query[0], query[1], query[2]};
        const double boxSq[3] = {sq[0], sq[1], sq[2]};
        double leastSq = bestSq;
        while (node) {
            const double* pos = node->pos;
            const int dir = node->dir;
            const double d = q[dir] - pos[dir];
            const double planeSq = d * d;
            // A query on the splitting plane goes left first, although points on it lie right.
            const bool left = d <= 0.0;
            const KDtreeNode* near = left ? node->left : node->right;
            if (planeSq > leastSq) {  // too far away: the node itself and all beyond its plane
                node = near;
                continue;
            }
            const KDtreeNode* far = left ? node->right : node->left;
            const double distSq = DistanceSq(q, pos);
            const bool isBest = distSq < leastSq || (distSq == leastSq && WinsTie());
            if (isBest) {
                best = node;
                leastSq = distSq;
            }
            if (far && !(planeSq > leastSq)) {
                OpenBranch& open = branches.Room();
                std::copy(boxSq, boxSq + 3, open.sq);
                // 0 at a plane with a NaN coordinate: every point inserted later lies on its left.
                open.sq[dir] = std::max(0.0, planeSq);
                open.distSq = open.sq[0] + open.sq[1] + open.sq[2];
                open.node = far;
                if (open.distSq <= leastSq) {
                    branches.Keep();
                }
            }
            if (isBest) {
                openAtBest = branches.Size();
                fewestOpen = openAtBest;
            }
            node = near;
        }
        bestSq = leastSq;
    }

    /// True if an equally near node, measured now, comes before `best`.
    bool WinsTie() const { return best != core.root && fewestOpen >= openAtBest; }

    const KDtreeCore& core;
    const double query[3];
    const KDtreeNode* best;
    double bestSq;
    int openAtBest = 0;  ///< open branches when `best` was measured, its own far side included
    int fewestOpen = 0;  ///< fewest open branches since then
    OpenBranches branches;
};

}  // namespace

const KDtreeNode* NearestNode(const KDtreeCore& core, const double* query) {
    if (!core.root || !core.rect) {
        return nullptr;
    }
    return NearestSearch(core, query).Run();
}

bool CollectWithin(const KDtreeCore& core, const double* query, double radius,
                   KDtreeResultSet& set) try {
    const double radiusSq = radius * radius;
    std::vector<KDtreeNode*> open;  // far sides that are still to be visited
    KDtreeNode* node = core.root;
    while (node || !open.empty()) {
        if (!node) {
            node = open.back();
            open.pop_back();
        }
        if (DistanceSq(query, node->pos) <= radiusSq) {
            if (!InsertResult(set.list, node, -1.0)) {
                return false;
            }
            ++set.size;
        }
        const double d = query[node->dir] - node->pos[node->dir];
        KDtreeNode* far = d <= 0.0 ? node->right : node->left;
        // Strict, although the test of a point includes the sphere: a plane exactly `radius` away
        // is not crossed, so the points beyond it are left out even if they touch the sphere.
        if (far && std::fabs(d) < radius) {
            open.push_back(far);
        }
        node = d <= 0.0 ? node->left : node->right;
    }
    return true;
} catch (const std::bad_alloc&) {
    return false;
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

}  // namespace kvx3d::detail
