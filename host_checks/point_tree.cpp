#include "host_checks/point_tree.h"

#include <memory>
#include <new>
#include <utility>

namespace kvx3d::checks {

PointTree::PointTree(std::vector<int> pointIds, const std::function<Point(int)>& position)
    : ids(std::move(pointIds)) {
    std::vector<double> x, y, z;
    for (std::vector<double>* coordinate : {&x, &y, &z}) {
        coordinate->reserve(ids.size());
    }
    for (int id : ids) {
        const Point at = position(id);
        x.push_back(at.x);
        y.push_back(at.y);
        z.push_back(at.z);
    }
    // The array build gives the points the ids 1..n and a balanced index, which finds the same
    // nearest points as inserting them one by one but does not become slow on ordered meshes.
    if (!tree.BuildTree(x.data(), y.data(), z.data(), static_cast<int>(ids.size()))) {
        throw std::bad_alloc();
    }
}

PointTree::~PointTree() = default;

int PointTree::Nearest(const Point& query) const {
    int* found = nullptr;
    const int count = tree.SearchNearestPoints(query.x, query.y, query.z, found);
    const std::unique_ptr<int[]> release(found);
    return count > 0 ? ids[found[1] - 1] : 0;
}

}  // namespace kvx3d::checks
