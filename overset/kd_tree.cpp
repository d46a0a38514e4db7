#include "overset/kd_tree.h"

#include <algorithm>
#include <cstddef>
#include <iostream>

#include "overset/detail/kd_tree_search.h"
#include "overset/detail/kd_tree_store.h"

// Readable transcription: KdTree in plain/plain_kd_tree.h.

namespace {

using namespace kvx3d::detail;

/// Prints the line for a tree object without a tree.
int ReportMissingTree() {
    std::cout << "Must Build Tree First" << std::endl;
    return -1;
}

/// A result list that releases its entries.
struct ResultList {
    ~ResultList() { ClearResults(&head); }
    KDtreeResultNode head = {nullptr, -1.0, nullptr};
};

/// Replaces an answer by one with room for `count` ids.
void RenewAnswer(int*& result, int count) {
    delete[] result;
    result = nullptr;  // the next line may throw
    result = new int[static_cast<std::size_t>(count) + 1];
    result[0] = count;
}

/// Replaces an answer by the ids of a result set.
void FillAnswer(const KDtreeResultSet& set, int*& result) {
    RenewAnswer(result, set.size);
    int i = 0;
    for (const KDtreeResultNode* entry = set.list->next; entry; entry = entry->next) {
        result[++i] = *entry->node->data;
    }
}

/// An array of n ints without values.
int* NewIds(int n) {
    return new int[static_cast<std::size_t>(std::max(n, 0))];
}

}  // namespace

KVX_ART_KDtree::KVX_ART_KDtree() : tree(NewKDtree()), pointCount(0), ids(nullptr) {}

KVX_ART_KDtree::~KVX_ART_KDtree() {
    FreeKDtree(tree);
    delete[] ids;
}

bool KVX_ART_KDtree::BuildTree(double* x, double* y, double* z, int n) {
    pointCount = n;
    // Not released before: the nodes of an earlier build still point into the earlier ids.
    ids = NewIds(n);
    if (n < 1) {
        return true;
    }
    KDtreePoint* points = RoomForPoints(*tree, n);
    if (!points) {
        return false;
    }
    for (int i = 0; i < n; ++i) {
        ids[i] = i + 1;
        points[i] = {{x[i], y[i], z[i]}, &ids[i]};
    }
    return InsertPoints(*tree);
}

bool KVX_ART_KDtree::BuildTree(const double& x, const double& y, const double& z, int* id) {
    return InsertPoint(*tree, {{x, y, z}, id});
}

bool KVX_ART_KDtree::BuildTreeByBlockId(double* x, double* y, double* z, int* blockIds, int blockId,
                                        int n) {
    pointCount = n;
    ids = NewIds(n);
    const auto nWanted = static_cast<int>(std::count(blockIds, blockIds + std::max(n, 0), blockId));
    if (nWanted < 1) {
        return true;
    }
    KDtreePoint* points = RoomForPoints(*tree, nWanted);
    if (!points) {
        return false;
    }
    for (int i = 0; i < n; ++i) {
        if (blockIds[i] == blockId) {
            ids[i] = i + 1;
            *points++ = {{x[i], y[i], z[i]}, &ids[i]};
        }
    }
    return InsertPoints(*tree);
}

int KVX_ART_KDtree::SearchNearestPoints(const double& x, const double& y, const double& z,
                                        int*& result) {
    if (!tree) {
        return ReportMissingTree();
    }
    const double query[3] = {x, y, z};
    const KDtreeNode* nearest = NearestNode(*tree, query);
    RenewAnswer(result, nearest ? 1 : 0);
    if (nearest) {
        result[1] = *nearest->data;
    }
    return result[0];
}

int KVX_ART_KDtree::SearchByRadius(const double& x, const double& y, const double& z,
                                   const double& radius, int*& result) {
    if (!tree) {
        return ReportMissingTree();
    }
    const double query[3] = {x, y, z};
    ResultList list;
    KDtreeResultSet set = {tree, &list.head, &list.head, 0};
    if (!CollectWithin(*tree, query, radius, set)) {
        return -1;
    }
    FillAnswer(set, result);
    return set.size;
}
