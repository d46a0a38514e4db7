#include "overset/detail/kd_tree_build.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

namespace {

/// How a subtree is split. A path takes a degenerate one apart at once: toward the last point to
/// arrive, or, where nearly all others stay together beside that path, toward the middle one.
enum class SplitBy { Root, PathToLast, PathToMiddle };

/// A subtree to be built: its place, and the blocks for its nodes with the points, in order of
/// arrival, in their far half. Subtrees share no memory, so they may be built in any order.
struct Subtree {
    FreePlace place;
    NodeBlock* blocks;
    int n;
    SplitBy way;

    KDtreePoint* Points() const { return PointsIn(blocks, n); }
};

/// The nodes of a path that split on one axis, and where a point leaves at them. The splits that
/// the path passes on the right ascend, those that it passes on the left descend.
class Turns {
public:
    void Add(double split, bool toTheRight, int node) {
        (toTheRight ? rights : lefts).push_back({split, node});
        high = low;
    }

    /// Number of the first node at which a point with the coordinate c leaves; `never` if at none.
    int LeavesAt(double c) {
        // Points come in mesh order: on most axes the answer is that for the point before.
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

    /// Finds the answer for c, and the interval from low to below high for which it holds.
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

/// One path down from a free place, toward one of the points to arrive.
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

    /// Appends the point as a node at the end.
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

constexpr int fewPoints = 8;     // up to this, points fall one by one
constexpr int manyPoints = 512;  // a path is worth its overhead above this
constexpr int lopsided = 128;    // one side has less than a part in `lopsided`

/// True if a part of n points is so large that splits like this one end nowhere.
bool NearlyAll(int part, int n) {
    return n > manyPoints && n - 1 - part < n / lopsided;
}

/// Sorts the points in the far half of nLeft + nRight blocks into the far halves of the first nLeft
/// and the last nRight of them, in order of arrival and without further memory.
///
/// The larger part moves by no more than the gap in front of it, clear of what is still to be
/// read; the smaller one goes the same way or, where it would not be clear, is parked in that gap.
/// Both parts take every point and one of them counts it: no branch to mispredict.
/// @param isRight  1 for a point of the right part, else 0
void Part(NodeBlock* blocks, int nLeft, int nRight, const unsigned char* isRight) {
    if (nLeft == 0 || nRight == 0) {
        return;  // they stand there already
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

/// Subtrees still to be built, and how to build each.
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
            const FreePlace place = FallTo(subtree.place, point.xyz);
            *place.slot = MakeNode(subtree.blocks + i, point, place.dir);
        }
    }

    /// The first point is the root; the others part at its plane.
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
        Part(rest, nLeft, nRight, isRight.data());
        const int next = (dir + 1) % 3;
        Open({&root->right, next}, rest + nLeft, nRight, subtree.n, SplitBy::PathToLast);
        Open({&root->left, next}, rest, nLeft, subtree.n, SplitBy::PathToLast);
    }

    /// Points that reach the end of the path extend it; the others are handed to the place where
    /// they leave it.
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
        Part(subtree.blocks, path.Length(), nLeaving, isRight.data());
        NodeBlock* const rest = subtree.blocks + path.Length();
        GroupByNode(rest, nLeaving);
        MakePath(subtree, path, rest);
    }

    /// Sorts n points that leave a path by node, each group into the far half of its blocks.
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
        // Each start has moved to the end of its group. The last group is spread first: none
        // reaches into those before it.
        for (std::size_t k = count.size(); k-- > 0;) {
            const int first = start[k] - count[k];
            std::copy_backward(sorted + first, sorted + start[k],
                               PointsIn(blocks + first, count[k]) + count[k]);
        }
    }

    /// Makes the nodes of the path and opens the subtrees beside it, whose blocks follow.
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

    /// Leaves a part of n points for later; one with nearly all of them is split by a path.
    void Open(FreePlace place, NodeBlock* blocks, int part, int n, SplitBy path) {
        if (part > 0) {
            open.push_back({place, blocks, part, NearlyAll(part, n) ? path : SplitBy::Root});
        }
    }

    std::vector<Subtree> open;
    std::vector<unsigned char> isRight;  ///< side of each point of the subtree being split
    std::vector<int> leftAt;             ///< node at which each point leaves the path
    std::vector<int> count;              ///< points that leave the path at each node
    std::vector<int> start;              ///< where the group of each node starts
};

}  // namespace

void BuildFromTheTop(KDtreeNode** root, NodeBlock* blocks, int n) {
    TopDownBuild().Run({{root, 0}, blocks, n, SplitBy::Root});
}
