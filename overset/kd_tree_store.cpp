#include "overset/kd_tree_store.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <vector>

namespace {

/// A node and its coordinates: one cache line.
struct NodeBlock {
    KDtreeNode node;
    double xyz[3];
};

/// A run of node blocks. The blocks stand behind the head, in the same allocation.
struct NodeChunk {
    NodeChunk* next;
    int capacity;
    int used;
    NodeBlock* blocks;
};

/// The core with the memory of its nodes. Every core is one of these; the chunk list stays out of
/// KDtreeCore, whose fields are the interface.
struct KDtreeStore : KDtreeCore {
    NodeChunk* chunks;  ///< the one in use first
};

/// A box and its bounds in one allocation.
struct RectBlock {
    KDtreeRect rect;
    double min[3];
    double max[3];
};

constexpr std::size_t cacheLine = 64;
constexpr int firstChunk = 16;      // nodes; a tree of a few points stays small
constexpr int largestChunk = 4096;  // nodes; chunks double up to this size

bool AddChunk(KDtreeStore& store, int capacity) {
    const std::size_t bytes =
        sizeof(NodeChunk) + cacheLine + sizeof(NodeBlock) * static_cast<std::size_t>(capacity);
    char* memory = nullptr;
    try {
        memory = new char[bytes];
    } catch (const std::bad_alloc&) {
        return false;
    }
    const std::size_t start = reinterpret_cast<std::size_t>(memory + sizeof(NodeChunk));
    const std::size_t shift = (cacheLine - start % cacheLine) % cacheLine;
    void* blocks = memory + sizeof(NodeChunk) + shift;
    store.chunks =
        new (memory) NodeChunk{store.chunks, capacity, 0, static_cast<NodeBlock*>(blocks)};
    return true;
}

void FreeChunks(NodeChunk* chunk) {
    while (chunk) {
        NodeChunk* next = chunk->next;
        delete[] reinterpret_cast<char*>(chunk);
        chunk = next;
    }
}

/// The next node of the chunk in use, which has room.
KDtreeNode* PlaceNode(NodeChunk& chunk, const KDtreePoint& point, int dir) {
    NodeBlock* block = new (chunk.blocks + chunk.used) NodeBlock;
    ++chunk.used;
    std::copy(point.xyz, point.xyz + 3, block->xyz);
    block->node = {block->xyz, dir, point.id, nullptr, nullptr};
    return &block->node;
}

/// A node from the chunk in use or a new one, or null.
KDtreeNode* NewNode(KDtreeStore& store, const KDtreePoint& point, int dir) {
    if (!store.chunks || store.chunks->used == store.chunks->capacity) {
        const int capacity =
            store.chunks ? std::min(2 * store.chunks->capacity, largestChunk) : firstChunk;
        if (!AddChunk(store, std::max(capacity, firstChunk))) {
            return nullptr;
        }
    }
    return PlaceNode(*store.chunks, point, dir);
}

/// A box that holds one point, or null.
KDtreeRect* NewRect(int dim, const double* xyz) try {
    RectBlock* block = new RectBlock;
    std::copy(xyz, xyz + 3, block->min);
    std::copy(xyz, xyz + 3, block->max);
    block->rect = {dim, block->min, block->max};
    return &block->rect;
} catch (const std::bad_alloc&) {
    return nullptr;
}

void FreeRect(KDtreeCore& core) {
    delete reinterpret_cast<RectBlock*>(core.rect);
    core.rect = nullptr;
}

/// Extends the bounding box. A box that cannot be made is tried again with the next point.
void ExtendRect(KDtreeCore& core, const double* xyz) {
    if (!core.rect) {
        core.rect = NewRect(core.dim, xyz);
        return;
    }
    for (int axis = 0; axis < 3; ++axis) {
        if (xyz[axis] < core.rect->min[axis]) {
            core.rect->min[axis] = xyz[axis];
        }
        if (xyz[axis] > core.rect->max[axis]) {
            core.rect->max[axis] = xyz[axis];
        }
    }
}

/// The empty place of the tree that a point falls to, and the axis a node there splits on.
struct FreePlace {
    KDtreeNode** slot;
    int dir;
};

FreePlace FallTo(FreePlace from, const double* xyz) {
    while (KDtreeNode* node = *from.slot) {
        from.dir = (node->dir + 1) % 3;
        from.slot = GoesRight(*node, xyz) ? &node->right : &node->left;
    }
    return from;
}

/// How a subtree is split. A path takes a degenerate one apart at once: toward the last point to
/// arrive, or, where nearly all others stay together beside that path, toward the middle one.
enum class SplitBy { Root, PathToLast, PathToMiddle };

/// Points that belong below one free place, in order of arrival, in one of two buffers.
struct Subtree {
    FreePlace place;
    KDtreePoint* points;
    KDtreePoint* other;  ///< the same range of the other buffer
    int n;
    SplitBy way;
};

/// One path down from a free place, toward one of the points to arrive, and where it is left.
///
/// On each axis the splits followed to the right ascend and those followed to the left descend, so
/// the first node at which a point leaves the path is found by bisection.
class Path {
public:
    Path(FreePlace start, const double* target) : place(start), toward(target) {}

    /// Number of the first node at which the point leaves, or Length() if it reaches the end.
    int LeavesAt(const double* xyz) const {
        int first = Length();
        for (int axis = 0; axis < 3; ++axis) {
            const double c = xyz[axis];
            const auto& lower = turns[axis][1];
            const auto& upper = turns[axis][0];
            const auto above = std::partition_point(
                lower.begin(), lower.end(), [c](const Turn& turn) { return turn.split <= c; });
            const auto below = std::partition_point(
                upper.begin(), upper.end(), [c](const Turn& turn) { return !(turn.split <= c); });
            if (above != lower.end()) {
                first = std::min(first, above->number);
            }
            if (below != upper.end()) {
                first = std::min(first, below->number);
            }
        }
        return first;
    }

    /// Appends a node at the end of the path.
    void Append(NodeChunk& chunk, const KDtreePoint& point) {
        KDtreeNode* node = PlaceNode(chunk, point, place.dir);
        const int side = GoesRight(*node, toward) ? 1 : 0;
        turns[node->dir][side].push_back({node->pos[node->dir], Length()});
        *place.slot = node;
        place = {side ? &node->right : &node->left, (node->dir + 1) % 3};
        leaving.push_back({side ? &node->left : &node->right, place.dir});
    }

    int Length() const { return static_cast<int>(leaving.size()); }

    std::vector<FreePlace> leaving;  ///< the place off the path, at each of its nodes

private:
    struct Turn {
        double split;
        int number;
    };

    FreePlace place;
    const double* toward;
    std::vector<Turn> turns[3][2];  ///< by axis and side followed
};

constexpr int fewPoints = 8;     // below this, points fall one by one
constexpr int manyPoints = 512;  // a path is worth its overhead above this
constexpr int lopsided = 128;    // one side has less than a part in `lopsided`

/// Builds trees from the top down; a tree of n nodes takes its place in a chunk with room for n.
class TopDownBuild {
public:
    explicit TopDownBuild(NodeChunk& room) : chunk(room) {}

    void Run(KDtreeCore& core, KDtreePoint* points, int n) {
        std::vector<KDtreePoint> buffer(static_cast<std::size_t>(n));
        leftAt.resize(static_cast<std::size_t>(n));
        open.push_back({{&core.root, 0}, points, buffer.data(), n, SplitBy::Root});
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
    /// True if a part of n points is so large that splits like this one end nowhere.
    static bool NearlyAll(int part, int n) { return n > manyPoints && n - 1 - part < n / lopsided; }

    void InsertEach(const Subtree& subtree) {
        for (int i = 0; i < subtree.n; ++i) {
            const KDtreePoint& point = subtree.points[i];
            const FreePlace place = FallTo(subtree.place, point.xyz);
            *place.slot = PlaceNode(chunk, point, place.dir);
        }
    }

    /// The first point is the root; a stable partition of the others gives the two sides in their
    /// order of arrival.
    void SplitAtRoot(const Subtree& subtree) {
        KDtreeNode* root = PlaceNode(chunk, subtree.points[0], subtree.place.dir);
        *subtree.place.slot = root;
        const int dir = root->dir;
        const double split = root->pos[dir];
        KDtreePoint* const points = subtree.points;
        KDtreePoint* const other = subtree.other;
        int nLeft = 0;
        int nRight = 0;
        for (int i = 1; i < subtree.n; ++i) {
            // Both sides take the point and one of them counts it: no branch to mispredict.
            const int right = split <= points[i].xyz[dir] ? 1 : 0;
            other[nRight] = points[i];
            points[nLeft] = points[i];
            nLeft += 1 - right;
            nRight += right;
        }
        const int next = (dir + 1) % 3;
        if (nRight > 0) {
            open.push_back({{&root->right, next},
                            subtree.other,
                            subtree.points + nLeft,
                            nRight,
                            NearlyAll(nRight, subtree.n) ? SplitBy::PathToLast : SplitBy::Root});
        }
        if (nLeft > 0) {
            open.push_back({{&root->left, next},
                            subtree.points,
                            subtree.other + nRight,
                            nLeft,
                            NearlyAll(nLeft, subtree.n) ? SplitBy::PathToLast : SplitBy::Root});
        }
    }

    /// Points that reach the end of the path extend it; the others are handed, in order of
    /// arrival, to the place where they leave it.
    void SplitAlongPath(const Subtree& subtree) {
        const bool toLast = subtree.way == SplitBy::PathToLast;
        const KDtreePoint target = subtree.points[toLast ? subtree.n - 1 : subtree.n / 2];
        Path path(subtree.place, target.xyz);
        count.clear();
        for (int i = 0; i < subtree.n; ++i) {
            const int at = path.LeavesAt(subtree.points[i].xyz);
            if (at == path.Length()) {
                path.Append(chunk, subtree.points[i]);
                count.push_back(0);
                leftAt[i] = onPath;
            } else {
                ++count[at];
                leftAt[i] = at;
            }
        }
        int start = 0;
        for (int k = 0; k < path.Length(); ++k) {
            if (count[k] > 0) {
                open.push_back(
                    {path.leaving[k], subtree.other + start, subtree.points + start, count[k],
                     NearlyAll(count[k], subtree.n) ? SplitBy::PathToMiddle : SplitBy::Root});
            }
            const int end = start + count[k];
            count[k] = start;
            start = end;
        }
        for (int i = 0; i < subtree.n; ++i) {
            if (leftAt[i] != onPath) {
                subtree.other[count[leftAt[i]]++] = subtree.points[i];
            }
        }
    }

    static constexpr int onPath = -1;

    NodeChunk& chunk;
    std::vector<Subtree> open;
    std::vector<int> leftAt;  ///< node of the path at which each point leaves it
    std::vector<int> count;   ///< points leaving at each node, then the next free position
};

/// A coordinate that is no number compares false with everything, which no bisection survives.
bool HasNaN(const KDtreePoint* points, int n) {
    return std::any_of(points, points + n, [](const KDtreePoint& p) {
        return p.xyz[0] != p.xyz[0] || p.xyz[1] != p.xyz[1] || p.xyz[2] != p.xyz[2];
    });
}

void CallInPostOrder(KDtreeNode* node, void (*destructor)(int*)) {
    if (node) {
        CallInPostOrder(node->left, destructor);
        CallInPostOrder(node->right, destructor);
        destructor(node->data);
    }
}

}  // namespace

KDtreeCore* NewKDtree() {
    KDtreeStore* store = new KDtreeStore;
    store->dim = 3;
    store->root = nullptr;
    store->rect = nullptr;
    store->destructor = nullptr;
    store->chunks = nullptr;
    return store;
}

void FreeKDtree(KDtreeCore* core) {
    if (!core) {
        return;
    }
    KDtreeStore* store = static_cast<KDtreeStore*>(core);
    if (store->destructor) {
        CallInPostOrder(store->root, store->destructor);
    }
    FreeChunks(store->chunks);
    FreeRect(*store);
    delete store;
}

bool InsertPoint(KDtreeCore& core, const KDtreePoint& point) {
    const FreePlace place = FallTo({&core.root, 0}, point.xyz);
    KDtreeNode* node = NewNode(static_cast<KDtreeStore&>(core), point, place.dir);
    if (!node) {
        return false;
    }
    *place.slot = node;
    ExtendRect(core, point.xyz);
    return true;
}

bool InsertPoints(KDtreeCore& core, KDtreePoint* points, int n) {
    if (n < 1) {
        return true;
    }
    if (core.root || n <= fewPoints || HasNaN(points, n)) {
        return std::all_of(points, points + n,
                           [&core](const KDtreePoint& point) { return InsertPoint(core, point); });
    }
    KDtreeStore& store = static_cast<KDtreeStore&>(core);
    if (!AddChunk(store, n)) {
        return false;
    }
    for (int i = 0; i < n; ++i) {
        ExtendRect(core, points[i].xyz);
    }
    try {
        TopDownBuild(*store.chunks).Run(core, points, n);
    } catch (const std::bad_alloc&) {
        core.root = nullptr;
        FreeRect(core);
        store.chunks->used = store.chunks->capacity;
        return false;
    }
    return true;
}
