#include "reference_host/mesh/point_tree.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace host {

PointTree::PointTree(std::vector<int> ids_, const std::function<const Vec3&(int)>& point)
    : ids(std::move(ids_)) {
    for (int& id : ids) {
        const Vec3& at = point(id);
        if (!tree.BuildTree(at.x(), at.y(), at.z(), &id)) {
            throw std::bad_alloc();
        }
    }
}

int PointTree::Nearest(const Vec3& query) const {
    int* found = nullptr;
    const int count = tree.SearchNearestPoints(query.x(), query.y(), query.z(), found);
    const std::unique_ptr<int[]> release(found);
    return count > 0 ? found[1] : 0;
}

int TreeDepth(const std::vector<Vec3>& points, int limit) {
    struct Children {
        int below = 0;  // 0: the place is free; the root is nobody's child
        int above = 0;
    };
    std::vector<Children> tree(points.size());
    int depth = points.empty() ? 0 : 1;
    for (int i = 1; i < static_cast<int>(points.size()) && depth <= limit; ++i) {
        int level = 0;
        int* place = nullptr;
        for (int node = 0; level == 0 || node > 0; node = *place) {
            const int axis = level++ % 3;
            place = points[node][axis] <= points[i][axis] ? &tree[node].above : &tree[node].below;
        }
        *place = i;
        depth = std::max(depth, level + 1);
    }
    return depth;
}

}  // namespace host
