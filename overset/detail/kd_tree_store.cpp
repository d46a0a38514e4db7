#include "overset/detail/kd_tree_store.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <vector>

#include "overset/detail/kd_tree_build.h"
#include "overset/detail/kd_tree_index.h"

namespace {

/// A run of node blocks. The blocks stand behind the head, in the same allocation.
struct NodeChunk {
    NodeChunk* next;
    int capacity;
    int used;
    NodeBlock* blocks;
};

constexpr int fewPoints = 8;   // not worth a build of their own
constexpr int fewNodes = 256;  // a search of the tree is as quick as one of an index

/// The core with the memory of its nodes. Every core is one of these; the chunk list stays out of
/// KDtreeCore, whose fields are the interface.
struct KDtreeStore : KDtreeCore {
    NodeChunk* chunks;  ///< the one in use first
};

/// A box and its bounds in one allocation. The box of all points is the one field of a tree that
/// nobody else has a use for, so the index goes with it.
struct RectBlock {
    KDtreeRect rect;
    double min[3];
    double max[3];
    KDtreeIndex* index;  ///< owned, null for most trees
};

/// The block of a box; null if it is a box of somebody else's, whose bounds lie elsewhere.
RectBlock* BlockOf(KDtreeRect* rect) {
    const char* start = reinterpret_cast<const char*>(rect);
    const auto isAt = [start](const double* bounds, std::size_t offset) {
        return reinterpret_cast<const char*>(bounds) == start + offset;
    };
    return rect && isAt(rect->min, offsetof(RectBlock, min)) &&
                   isAt(rect->max, offsetof(RectBlock, max))
               ? reinterpret_cast<RectBlock*>(rect)
               : nullptr;
}

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

/// A node from the chunk in use or a new one, or null.
KDtreeNode* NewNode(KDtreeStore& store, const KDtreePoint& point, int dir) {
    if (!store.chunks || store.chunks->used == store.chunks->capacity) {
        const int capacity =
            store.chunks ? std::min(2 * store.chunks->capacity, largestChunk) : firstChunk;
        if (!AddChunk(store, std::max(capacity, firstChunk))) {
            return nullptr;
        }
    }
    NodeChunk& chunk = *store.chunks;
    return MakeNode(chunk.blocks + chunk.used++, point, dir);
}

/// A box that holds one point, or null.
KDtreeRect* NewRect(int dim, const double* xyz) try {
    RectBlock* block = new RectBlock;
    std::copy(xyz, xyz + 3, block->min);
    std::copy(xyz, xyz + 3, block->max);
    block->rect = {dim, block->min, block->max};
    block->index = nullptr;
    return &block->rect;
} catch (const std::bad_alloc&) {
    return nullptr;
}

void DropIndex(KDtreeCore& core) {
    if (RectBlock* block = BlockOf(core.rect)) {
        delete block->index;
        block->index = nullptr;
    }
}

void FreeRect(KDtreeCore& core) {
    DropIndex(core);
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

/// Extends the bounding box by n points in order of arrival.
void ExtendRect(KDtreeCore& core, const KDtreePoint* points, int n) {
    int i = 0;
    while (i < n && !core.rect) {
        ExtendRect(core, points[i++].xyz);
    }
    if (i == n) {
        return;
    }
    double min[3];
    double max[3];
    std::copy(core.rect->min, core.rect->min + 3, min);
    std::copy(core.rect->max, core.rect->max + 3, max);
    for (; i < n; ++i) {
        for (int axis = 0; axis < 3; ++axis) {
            min[axis] = std::min(min[axis], points[i].xyz[axis]);
            max[axis] = std::max(max[axis], points[i].xyz[axis]);
        }
    }
    std::copy(min, min + 3, core.rect->min);
    std::copy(max, max + 3, core.rect->max);
}

/// A coordinate that is no number compares false with everything, which no build by parts survives.
bool HasNaN(const KDtreePoint* points, int n) {
    return std::any_of(points, points + n, [](const KDtreePoint& p) {
        return p.xyz[0] != p.xyz[0] || p.xyz[1] != p.xyz[1] || p.xyz[2] != p.xyz[2];
    });
}

/// True if all nodes have finite coordinates within the box. One that was made late, for want of
/// memory, does not hold the points before it.
bool AllWithin(const KDtreeRect& box, const NodeBlock* blocks, int n) {
    return IsFinite(box.min) && IsFinite(box.max) &&
           std::all_of(blocks, blocks + n, [&box](const NodeBlock& block) {
               bool within = true;
               for (int axis = 0; axis < 3; ++axis) {
                   const double c = block.xyz[axis];
                   within = within && box.min[axis] <= c && c <= box.max[axis];
               }
               return within;
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
    DropIndex(core);
    const FreePlace place = FallTo({&core.root, 0}, point.xyz);
    KDtreeNode* node = NewNode(static_cast<KDtreeStore&>(core), point, place.dir);
    if (!node) {
        return false;
    }
    *place.slot = node;
    ExtendRect(core, point.xyz);
    return true;
}

KDtreePoint* RoomForPoints(KDtreeCore& core, int n) {
    KDtreeStore& store = static_cast<KDtreeStore&>(core);
    return AddChunk(store, n) ? PointsIn(store.chunks->blocks, n) : nullptr;
}

bool InsertPoints(KDtreeCore& core) {
    NodeChunk& chunk = *static_cast<KDtreeStore&>(core).chunks;
    const int n = chunk.capacity;
    const KDtreePoint* points = PointsIn(chunk.blocks, n);
    if (core.root || n <= fewPoints || HasNaN(points, n)) {
        for (int i = 0; i < n; ++i) {
            const KDtreePoint point = points[i];  // its room becomes that of a node
            InsertPoint(core, point);
        }
        return true;
    }
    chunk.used = n;
    ExtendRect(core, points, n);
    try {
        BuildFromTheTop(&core.root, chunk.blocks, n);
    } catch (const std::bad_alloc&) {
        core.root = nullptr;
        FreeRect(core);
        return false;
    }
    return true;
}

void IndexNodes(KDtreeCore& core) try {
    const NodeChunk* chunk = static_cast<KDtreeStore&>(core).chunks;
    RectBlock* block = BlockOf(core.rect);
    if (!block || block->index || chunk->next || chunk->used < fewNodes ||
        !AllWithin(*core.rect, chunk->blocks, chunk->used)) {
        return;
    }
    block->index = new KDtreeIndex(core, chunk->blocks, chunk->used);
} catch (const std::bad_alloc&) {
    // Searches are slower without it, and nothing else.
}

const KDtreeIndex* IndexOf(const KDtreeCore& core) {
    const RectBlock* block = BlockOf(core.rect);
    return block && block->index && block->index->IsFor(core) ? block->index : nullptr;
}
