#include "overset/detail/kd_tree_store.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "overset/detail/kd_tree_build.h"

// The memory of one tree:
//
//     KDtreeStore                       NodeChunk, one allocation each
//     | dim root rect destructor |      | next capacity used blocks | gap | block | block | ... |
//     | box, boxMin, boxMax      |        |                      |           ^
//     | chunks -------------------------> |                      +-----------+ cache line
//                                         +--> the chunk before it
//
// `rect` points to `box`, and `root` into one of the chunks.
//
// Readable transcription: KdTree in plain/plain_kd_tree.h.

namespace kvx3d::detail {
namespace {

constexpr int fewPoints = 8;        // up to this number, points are inserted one by one
constexpr int firstChunk = 16;      // nodes; keeps small trees small
constexpr int largestChunk = 4096;  // nodes; chunks double up to this size
constexpr std::size_t cacheLine = 64;

/// The head of a run of node blocks, which come after it in the same allocation.
struct NodeChunk {
    NodeChunk* next;
    int capacity;  ///< blocks
    int used;      ///< blocks that hold nodes, or points on their way into the tree
    NodeBlock* blocks;
};

/// The core together with the memory it needs. Every core made here is one of these; the additions
/// stay out of KDtreeCore, whose fields are public.
struct KDtreeStore : KDtreeCore {
    NodeChunk* chunks;  ///< the chunk in use first
    KDtreeRect box;
    double boxMin[3];
    double boxMax[3];
};

/// Puts a chunk in front of the others.
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
    const std::size_t gap = (cacheLine - start % cacheLine) % cacheLine;
    void* blocks = memory + sizeof(NodeChunk) + gap;
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

/// Makes a node in the chunk in use or in a new one.
/// @return null if there is not enough memory
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

/// Extends the bounding box by n > 0 points; the first point of a tree starts it.
void ExtendBox(KDtreeStore& store, const KDtreePoint* points, int n) {
    if (!store.rect) {
        std::copy(points->xyz, points->xyz + 3, store.boxMin);
        std::copy(points->xyz, points->xyz + 3, store.boxMax);
        store.box = {store.dim, store.boxMin, store.boxMax};
        store.rect = &store.box;
    }
    double min[3];
    double max[3];
    std::copy(store.rect->min, store.rect->min + 3, min);
    std::copy(store.rect->max, store.rect->max + 3, max);
    for (int i = 0; i < n; ++i) {
        for (int axis = 0; axis < 3; ++axis) {
            // In this order a NaN coordinate leaves the bounds as they are.
            min[axis] = std::min(min[axis], points[i].xyz[axis]);
            max[axis] = std::max(max[axis], points[i].xyz[axis]);
        }
    }
    std::copy(min, min + 3, store.rect->min);
    std::copy(max, max + 3, store.rect->max);
}

/// A NaN coordinate breaks the partitioning because it is neither below a plane nor above it.
bool HasNaN(const KDtreePoint* points, int n) {
    return std::any_of(points, points + n, [](const KDtreePoint& p) {
        return p.xyz[0] != p.xyz[0] || p.xyz[1] != p.xyz[1] || p.xyz[2] != p.xyz[2];
    });
}

/// Calls the destructor for each node, children before parents and left before right.
///
/// The links of the tree serve as the list of nodes still to be finished and are lost: on the way
/// down, `left` is replaced by the parent and, once the right side is entered, `right` by null.
void CallInPostOrder(KDtreeNode* node, void (*destructor)(int*)) {
    KDtreeNode* parent = nullptr;
    while (node || parent) {
        if (node) {  // enter the left side
            KDtreeNode* const left = node->left;
            node->left = parent;
            parent = node;
            node = left;
        } else if (parent->right) {  // the left side is finished: enter the right side
            node = parent->right;
            parent->right = nullptr;
        } else {  // both sides are finished
            destructor(parent->data);
            parent = parent->left;
        }
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
    delete store;
}

bool InsertPoint(KDtreeCore& core, const KDtreePoint& point) {
    KDtreeStore& store = static_cast<KDtreeStore&>(core);
    const FreePlace place = FindFreePlace({&store.root, 0}, point.xyz);
    KDtreeNode* node = NewNode(store, point, place.dir);
    if (!node) {
        return false;
    }
    *place.slot = node;
    ExtendBox(store, &point, 1);
    return true;
}

KDtreePoint* RoomForPoints(KDtreeCore& core, int n) {
    KDtreeStore& store = static_cast<KDtreeStore&>(core);
    return AddChunk(store, n) ? PointsIn(store.chunks->blocks, n) : nullptr;
}

bool InsertPoints(KDtreeCore& core) {
    KDtreeStore& store = static_cast<KDtreeStore&>(core);
    NodeChunk& chunk = *store.chunks;
    const int n = chunk.capacity;
    const KDtreePoint* points = PointsIn(chunk.blocks, n);
    if (store.root || n <= fewPoints || HasNaN(points, n)) {
        for (int i = 0; i < n; ++i) {
            const KDtreePoint point = points[i];  // a copy: a node takes its place
            InsertPoint(store, point);
        }
        return true;
    }
    chunk.used = n;
    ExtendBox(store, points, n);
    try {
        BuildFromTheTop(&store.root, chunk.blocks, n);
    } catch (const std::bad_alloc&) {
        store.root = nullptr;
        store.rect = nullptr;
        return false;
    }
    return true;
}

}  // namespace kvx3d::detail
