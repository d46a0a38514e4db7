#include "overset/detail/kd_tree_index.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

namespace {

constexpr int leafSize = 12;              // nodes; more to measure against less to descend
constexpr int onlyHalve = 64;             // levels, then nodes are halved wherever they lie
constexpr int maxDepth = onlyHalve + 32;  // halving an int range ends before
constexpr int lopsided = 8;               // a side with a part in `lopsided` or less is no half
constexpr int maxTies = 16;               // equally near nodes; more are left to the tree

/// A length as a float; the largest one for a length that no float holds.
float Narrowed(double length) {
    constexpr double largest = std::numeric_limits<float>::max();
    return static_cast<float>(std::min(length, largest));
}

/// Sorts nodes into the leaves of an index.
class IndexBuild {
public:
    IndexBuild(const NodeBlock* nodeBlocks, int n, const KDtreeRect& bounds) : blocks(nodeBlocks) {
        places.reserve(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) {
            const double* xyz = blocks[i].xyz;
            places.push_back({{Narrowed(xyz[0] - bounds.min[0]), Narrowed(xyz[1] - bounds.min[1]),
                               Narrowed(xyz[2] - bounds.min[2])},
                              i});
        }
        Part whole = {0, n, 0, noParent, {{}, {}}};
        for (int a = 0; a < 3; ++a) {
            whole.box.max[a] = Narrowed(bounds.max[a] - bounds.min[a]);
        }
        open.push_back(whole);
    }

    /// Adds the branches, without their gaps.
    /// @return the numbers of the nodes, leaf by leaf
    std::vector<int> Run(std::vector<KDtreeIndex::Branch>& branches) {
        while (!open.empty()) {
            const Part part = open.back();
            open.pop_back();
            const int at = static_cast<int>(branches.size());
            if (part.parent != noParent) {
                branches[part.parent].right = at;
            }
            if (part.last - part.first <= leafSize) {
                branches.push_back({0.0, 0.0, part.first - part.last, part.first});
            } else {
                branches.push_back({0.0, 0.0, Divide(part, at), 0});
            }
        }
        std::vector<int> numbers;
        numbers.reserve(places.size());
        for (const Place& place : places) {
            numbers.push_back(place.number);
        }
        return numbers;
    }

private:
    static constexpr int noParent = -1;

    /// Where a node is, seen from the corner of all. Half the size of the node's coordinates and
    /// good enough to sort by: what is to be exact comes from the nodes.
    struct Place {
        float xyz[3];
        int number;
    };

    struct Box {
        float min[3];
        float max[3];
    };

    /// A range of places to be divided.
    struct Part {
        int first;
        int last;
        int depth;
        int parent;  ///< whose right half it is, or noParent
        Box box;     ///< they lie in
    };

    /// Divides a part at the middle of its box; one that has nearly all on one side at the middle
    /// of what it fills; one that is lopsided even then in two parts of equal size.
    /// @return the axis
    int Divide(Part part, int at) {
        int axis = LongestSide(part.box);
        float split = Middle(part.box, axis);
        int middle = PartAt(part, axis, split);
        if (IsLopsided(part, middle)) {
            part.box = BoundsOf(part);
            axis = LongestSide(part.box);
            split = Middle(part.box, axis);
            middle = PartAt(part, axis, split);
        }
        if (part.depth >= onlyHalve || IsLopsided(part, middle)) {
            middle = Halve(part, axis);
            split = places[middle].xyz[axis];
        }
        Part right = {middle, part.last, part.depth + 1, at, part.box};
        right.box.min[axis] = split;
        open.push_back(right);
        Part left = {part.first, middle, part.depth + 1, noParent, part.box};
        left.box.max[axis] = split;
        open.push_back(left);
        return axis;
    }

    static int LongestSide(const Box& box) {
        int axis = 0;
        for (int a = 1; a < 3; ++a) {
            if (box.max[a] - box.min[a] > box.max[axis] - box.min[axis]) {
                axis = a;
            }
        }
        return axis;
    }

    static float Middle(const Box& box, int axis) {
        return 0.5F * box.min[axis] + 0.5F * box.max[axis];
    }

    static bool IsLopsided(const Part& part, int middle) {
        return std::min(middle - part.first, part.last - middle) <=
               (part.last - part.first) / lopsided;
    }

    Box BoundsOf(const Part& part) const {
        Box box;
        std::copy(places[part.first].xyz, places[part.first].xyz + 3, box.min);
        std::copy(places[part.first].xyz, places[part.first].xyz + 3, box.max);
        for (int i = part.first + 1; i < part.last; ++i) {
            for (int a = 0; a < 3; ++a) {
                box.min[a] = std::min(box.min[a], places[i].xyz[a]);
                box.max[a] = std::max(box.max[a], places[i].xyz[a]);
            }
        }
        return box;
    }

    int PartAt(const Part& part, int axis, float split) {
        Place* const all = places.data();
        int middle = part.first;
        for (int i = part.first; i < part.last; ++i) {
            // Every place is swapped and the left side counts its own: no branch to mispredict.
            const Place place = all[i];
            all[i] = all[middle];
            all[middle] = place;
            middle += place.xyz[axis] < split ? 1 : 0;
        }
        return middle;
    }

    int Halve(const Part& part, int axis) {
        const int middle = part.first + (part.last - part.first) / 2;
        const auto start = places.begin();
        std::nth_element(start + part.first, start + middle, start + part.last,
                         [this, axis](const Place& a, const Place& b) {
                             return blocks[a.number].xyz[axis] < blocks[b.number].xyz[axis];
                         });
        return middle;
    }

    const NodeBlock* blocks;
    std::vector<Place> places;
    std::vector<Part> open;
};

/// Of n equally near nodes of a tree, the one that a search meets first. Sorts `ties`.
const KDtreeNode* FirstMet(const KDtreeNode* node, const double* query, const KDtreeNode** ties,
                           int n) {
    for (;;) {
        const bool nearIsRight = !LeftIsNear(*node, query);
        const auto isNear = [node, nearIsRight](const KDtreeNode* tie) {
            return tie != node && GoesRight(*node, tie->pos) == nearIsRight;
        };
        const int nNear = static_cast<int>(std::partition(ties, ties + n, isNear) - ties);
        if (nNear > 0) {
            n = nNear;
        } else if (std::find(ties, ties + n, node) != ties + n) {
            return node;
        }
        if (n == 1) {
            return ties[0];
        }
        node = (nNear > 0) == nearIsRight ? node->right : node->left;
    }
}

/// The nodes at the least distance seen so far.
struct NearestSeen {
    double distSq;
    int n;  ///< maxTies + 1 stands for more than there is room for
    const KDtreeNode* ties[maxTies];

    void Measure(const NodeBlock& block, const double* query) {
        const double sq = DistanceSq(query, block.xyz);
        if (sq < distSq) {
            distSq = sq;
            n = 0;
        } else if (sq > distSq || n > maxTies) {
            return;
        }
        if (n < maxTies) {
            ties[n] = &block.node;
        }
        ++n;
    }
};

}  // namespace

KDtreeIndex::KDtreeIndex(const KDtreeCore& core, const NodeBlock* nodeBlocks, int n)
    : blocks(nodeBlocks), root(core.root) {
    std::copy(core.rect->min, core.rect->min + 3, bounds.min);
    std::copy(core.rect->max, core.rect->max + 3, bounds.max);
    numbers = IndexBuild(blocks, n, *core.rect).Run(branches);
    branches.shrink_to_fit();
    FindGaps();
}

void KDtreeIndex::Extend(Box& box, const double* min, const double* max) {
    for (int a = 0; a < 3; ++a) {
        box.min[a] = std::min(box.min[a], min[a]);
        box.max[a] = std::max(box.max[a], max[a]);
    }
}

/// Sets what separates the halves of each branch, from the last branch to the first.
void KDtreeIndex::FindGaps() {
    std::vector<Box> boxes(branches.size());
    for (std::size_t at = branches.size(); at-- > 0;) {
        Branch& branch = branches[at];
        Box& box = boxes[at];
        if (branch.axis >= 0) {
            const Box& right = boxes[branch.right];
            box = boxes[at + 1];
            branch.low = box.max[branch.axis];
            branch.high = right.min[branch.axis];
            Extend(box, right.min, right.max);
            continue;
        }
        const double* xyz = blocks[numbers[branch.right]].xyz;
        std::copy(xyz, xyz + 3, box.min);
        std::copy(xyz, xyz + 3, box.max);
        for (int i = branch.right + 1; i < branch.right - branch.axis; ++i) {
            xyz = blocks[numbers[i]].xyz;
            Extend(box, xyz, xyz);
        }
    }
}

bool KDtreeIndex::IsFor(const KDtreeCore& core) const {
    return root == core.root && std::equal(bounds.min, bounds.min + 3, core.rect->min) &&
           std::equal(bounds.max, bounds.max + 3, core.rect->max);
}

const KDtreeNode* KDtreeIndex::Nearest(const double* query) const {
    struct Open {
        double sq[3];  ///< squared distance of the query along each axis, at least
        double distSq;
        int branch;
    };
    Open open[maxDepth];
    int nOpen = 0;
    Open part = {{0.0, 0.0, 0.0}, 0.0, 0};
    for (int a = 0; a < 3; ++a) {
        const double d =
            std::max(std::max(bounds.min[a] - query[a], query[a] - bounds.max[a]), 0.0);
        part.sq[a] = d * d;
    }
    const double rootSq = DistanceSq(query, root->pos);
    NearestSeen seen;
    seen.distSq = rootSq;
    seen.n = 0;
    for (;;) {
        int at = part.branch;
        while (branches[at].axis >= 0) {
            const Branch& branch = branches[at];
            const int a = branch.axis;
            const double beyondLow = query[a] - branch.low;
            const double beforeHigh = branch.high - query[a];
            const bool leftIsNear = beyondLow < beforeHigh;
            const double d = std::max(leftIsNear ? beforeHigh : beyondLow, 0.0);
            Open& far = open[nOpen];
            std::memcpy(far.sq, part.sq, sizeof part.sq);
            // The larger of two lower bounds, and the sum of DistanceSq(): never above the
            // distance of a node in there.
            far.sq[a] = std::max(d * d, part.sq[a]);
            far.distSq = far.sq[0] + far.sq[1] + far.sq[2];
            far.branch = leftIsNear ? branch.right : at + 1;
            nOpen += far.distSq <= seen.distSq ? 1 : 0;  // equally near ones count
            at = leftIsNear ? at + 1 : branch.right;
        }
        const int* const first = &numbers[branches[at].right];
        for (const int* number = first; number != first - branches[at].axis; ++number) {
            seen.Measure(blocks[*number], query);
        }
        while (nOpen > 0 && open[nOpen - 1].distSq > seen.distSq) {
            --nOpen;
        }
        if (nOpen == 0) {
            break;
        }
        part = open[--nOpen];
    }
    if (seen.distSq == rootSq) {
        return root;  // wins every tie it takes part in
    }
    if (seen.n > maxTies) {
        return nullptr;
    }
    return seen.n == 1 ? seen.ties[0] : FirstMet(root, query, seen.ties, seen.n);
}
