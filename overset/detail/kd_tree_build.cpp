#include "overset/detail/kd_tree_build.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

// The tree of successive insertions, built from the top down. The first point to arrive is the
// root; the other points are partitioned at its plane, keep their order of arrival, and are the
// points of its two subtrees. Memory is read and written from front to end.
//
// Points in sorted order make that slow: each split removes one point. Such a subtree is split
// along a whole path of nodes at once:
//
//     a                    path a b c toward the last point; the points that leave the path at
//      \                   the same node are one subtree, built later
//       b    <- leave at b
//        \                 | a | b | c | points that leave at a | at b | at c |
//         c  <- leave at c

namespace kvx3d::detail {
namespace {

/// How a subtree is split: at its root, or along a path toward the last point to arrive. Where
/// nearly all points leave that path together, the next path leads toward the middle one.
enum class SplitBy { Root, PathToLast, PathToMiddle };

/// A subtree that is to be built: its place, and the blocks for its nodes, with its points in
/// order of arrival in their second half. Subtrees share no memory, so their order is free.
struct Subtree {
    FreePlace place;
    NodeBlock* blocks;
    int n;
    SplitBy way;

    KDtreePoint* Points() const { return PointsIn(blocks, n); }
};

/// The nodes of a path that split on one axis. The splits at which the path turns right ascend
/// along the path; those at which it turns left descend. So the first node at which a point leaves
/// is found by bisection.
class Turns {
public:
    void Add(double split, bool toTheRight, int node) {
        (toTheRight ? rights : lefts).push_back({split, node});
        high = low;
    }

    /// Number of the first node at which a point with the coordinate c leaves the path, or `never`.
    int LeavesAt(double c) {
        // Points arrive in mesh order, so most have the answer of the point before them.
        if (!(low <= c && c < high)) {
            Bisect(c);
        }
        return number;
    }

    static constexpr int never = std::numeric_limits<int>::max();

private:
    struct Turn {
        double split;
        int number;
    };

    /// Finds the answer for c and the interval [low, high) of coordinates that share it.
    void Bisect(double c) {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        const auto right = std::partition_point(rights.begin(), rights.end(),
                                                [c](const Turn& t) { return t.split <= c; });
        const auto left = std::partition_point(lefts.begin(), lefts.end(),
                                               [c](const Turn& t) { return t.split > c; });
        low = -infinity;
        high = infinity;
        number = never;
        if (right != rights.begin()) {
            low = right[-1].split;
        }
        if (right != rights.end()) {
            high = right->split;
            number = right->number;
        }
        if (left != lefts.begin()) {
            high = std::min(high, left[-1].split);
        }
        if (left != lefts.end()) {
            low = std::max(low, left->split);
            number = std::min(number, left->number);
        }
    }

    std::vector<Turn> rights;
    std::vector<Turn> lefts;
    double low = 0.0;
    double high = 0.0;
    int number = never;
};

/// A path from a free place toward one of the points to be inserted.
class Path {
public:
    Path(int startDir, const KDtreePoint& target) : dir(startDir), toward(target) {}

    /// Number of the first node at which the point leaves, or Length() if it reaches the end.
    int LeavesAt(const KDtreePoint& point) {
        int first = length;
        for (int axis = 0; axis < 3; ++axis) {
            first = std::min(first, turns[axis].LeavesAt(point.xyz[axis]));
        }
        return first;
    }

    /// Appends the point as the last node.
    void Append(const KDtreePoint& point) {
        const double split = point.xyz[dir];
        turns[dir].Add(split, split <= toward.xyz[dir], length);
        dir = (dir + 1) % 3;
        ++length;
    }

    int Length() const { return length; }
    const KDtreePoint& Toward() const { return toward; }

private:
    int dir;  ///< axis of the next node
    int length = 0;
    const KDtreePoint toward;
    Turns turns[3];  ///< by axis
};

constexpr int fewPoints = 8;     // up to this number, points are inserted one by one
constexpr int manyPoints = 512;  // a path is worth its overhead above this number
constexpr int lopsided = 128;    // smaller part below 1/128: the split was nearly useless

/// True if a part of n points has nearly all of them, so that the next split must be a path.
bool NearlyAll(int part, int n) {
    return n > manyPoints && n - 1 - part < n / lopsided;
}

/// Partitions the points in the second half of nLeft + nRight blocks: the left part goes to the
/// second half of the first nLeft blocks, the right part to that of the last nRight blocks. Keeps
/// the order of arrival and needs no further memory.
///
/// The larger part moves by no more than the gap in front of it, so it never overwrites a point
/// that is still to be read. The smaller part moves the same way if that is safe; otherwise it is
/// parked in the gap first. Each point is written to both parts, and the write position of only
/// one of them advances: the loop has no branch to mispredict.
/// @param isRight  1 for a point of the right part, else 0
void Partition(NodeBlock* blocks, int nLeft, int nRight, const unsigned char* isRight) {
    if (nLeft == 0 || nRight == 0) {
        return;  // all points are in their place
    }
    const KDtreePoint* const points = PointsIn(blocks, nLeft + nRight);
    KDtreePoint* toLeft = PointsIn(blocks, nLeft);
    KDtreePoint* toRight = PointsIn(blocks + nLeft, nRight);
    if (nLeft <= nRight) {
        toLeft += nLeft - 1;
        toRight += nRight - 1;
        for (int i = nLeft + nRight - 1; i >= 0; --i) {
            const KDtreePoint point = points[i];
            *toLeft = point;
            *toRight = point;
            toLeft -= 1 - isRight[i];
            toRight -= isRight[i];
        }
        return;
    }
    KDtreePoint* const parked = reinterpret_cast<KDtreePoint*>(blocks);
    KDtreePoint* toParked = parked;
    for (int i = 0; i < nLeft + nRight; ++i) {
        const KDtreePoint point = points[i];
        *toLeft = point;
        *toParked = point;
        toLeft += 1 - isRight[i];
        toParked += isRight[i];
    }
    std::copy(parked, toParked, toRight);
}

/// Builds subtrees from a list until none is left.
class TopDownBuild {
public:
    void Run(const Subtree& whole) {
        isRight.resize(static_cast<std::size_t>(whole.n));
        open.push_back(whole);
        while (!open.empty()) {
            const Subtree subtree = open.back();
            open.pop_back();
            if (subtree.n <= fewPoints) {
                InsertEach(subtree);
            } else if (subtree.way == SplitBy::Root) {
                SplitAtRoot(subtree);
            } else {
                SplitAlongPath(subtree);
            }
        }
    }

private:
    static void InsertEach(const Subtree& subtree) {
        for (int i = 0; i < subtree.n; ++i) {
            const KDtreePoint point = subtree.Points()[i];
            const FreePlace place = FindFreePlace(subtree.place, point.xyz);
            *place.slot = MakeNode(subtree.blocks + i, point, place.dir);
        }
    }

    /// Makes the first point the root and partitions the others at its plane.
    void SplitAtRoot(const Subtree& subtree) {
        const KDtreePoint* others = subtree.Points() + 1;
        KDtreeNode* root = MakeNode(subtree.blocks, others[-1], subtree.place.dir);
        *subtree.place.slot = root;
        const int dir = root->dir;
        const double split = root->pos[dir];
        int nRight = 0;
        for (int i = 0; i < subtree.n - 1; ++i) {
            isRight[i] = split <= others[i].xyz[dir] ? 1 : 0;
            nRight += isRight[i];
        }
        const int nLeft = subtree.n - 1 - nRight;
        NodeBlock* const rest = subtree.blocks + 1;
        Partition(rest, nLeft, nRight, isRight.data());
        const int next = (dir + 1) % 3;
        Open({&root->right, next}, rest + nLeft, nRight, subtree.n, SplitBy::PathToLast);
        Open({&root->left, next}, rest, nLeft, subtree.n, SplitBy::PathToLast);
    }

    /// Points that reach the end of the path extend it. The other points are grouped by the node
    /// at which they leave it.
    void SplitAlongPath(const Subtree& subtree) {
        const KDtreePoint* points = subtree.Points();
        const bool toLast = subtree.way == SplitBy::PathToLast;
        Path path(subtree.place.dir, points[toLast ? subtree.n - 1 : subtree.n / 2]);
        leftAt.resize(std::max(leftAt.size(), static_cast<std::size_t>(subtree.n)));
        count.clear();
        int nLeaving = 0;
        for (int i = 0; i < subtree.n; ++i) {
            const int at = path.LeavesAt(points[i]);
            isRight[i] = at < path.Length() ? 1 : 0;
            if (isRight[i]) {
                ++count[at];
                leftAt[nLeaving++] = at;
            } else {
                path.Append(points[i]);
                count.push_back(0);
            }
        }
        Partition(subtree.blocks, path.Length(), nLeaving, isRight.data());
        NodeBlock* const rest = subtree.blocks + path.Length();
        GroupByNode(rest, nLeaving);
        MakePath(subtree, path, rest);
    }

    /// Sorts n points by the node at which they leave the path. Each group ends up in the second
    /// half of its blocks.
    void GroupByNode(NodeBlock* blocks, int n) {
        const KDtreePoint* points = PointsIn(blocks, n);
        KDtreePoint* const sorted = reinterpret_cast<KDtreePoint*>(blocks);
        start.assign(1, 0);
        for (int nAtNode : count) {
            start.push_back(start.back() + nAtNode);
        }
        for (int i = 0; i < n; ++i) {
            sorted[start[leftAt[i]]++] = points[i];
        }
        // Each start has now advanced to the end of its group. The last group moves first, so no
        // group overwrites another one.
        for (std::size_t k = count.size(); k-- > 0;) {
            const int first = start[k] - count[k];
            std::copy_backward(sorted + first, sorted + start[k],
                               PointsIn(blocks + first, count[k]) + count[k]);
        }
    }

    /// Makes the nodes of the path and opens the subtrees beside it, whose blocks come after them.
    void MakePath(const Subtree& subtree, const Path& path, NodeBlock* beside) {
        FreePlace place = subtree.place;
        for (int k = 0; k < path.Length(); ++k) {
            const KDtreePoint* points = PointsIn(subtree.blocks, path.Length());
            KDtreeNode* node = MakeNode(subtree.blocks + k, points[k], place.dir);
            *place.slot = node;
            const bool right = GoesRight(*node, path.Toward().xyz);
            const int next = (place.dir + 1) % 3;
            Open({right ? &node->left : &node->right, next}, beside, count[k], subtree.n,
                 SplitBy::PathToMiddle);
            beside += count[k];
            place = {right ? &node->right : &node->left, next};
        }
    }

    /// Adds a part of n points to the list. If it has nearly all of them, `path` splits it.
    void Open(FreePlace place, NodeBlock* blocks, int part, int n, SplitBy path) {
        if (part > 0) {
            open.push_back({place, blocks, part, NearlyAll(part, n) ? path : SplitBy::Root});
        }
    }

    std::vector<Subtree> open;           ///< subtrees that are still to be built
    std::vector<unsigned char> isRight;  ///< part of each point of the subtree being split
    std::vector<int> leftAt;             ///< node at which each point leaves the path
    std::vector<int> count;              ///< points that leave the path, by node
    std::vector<int> start;              ///< where the group of each node starts
};

}  // namespace

void BuildFromTheTop(KDtreeNode** root, NodeBlock* blocks, int n) {
    TopDownBuild().Run({{root, 0}, blocks, n, SplitBy::Root});
}

}  // namespace kvx3d::detail
