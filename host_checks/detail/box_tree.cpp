#include "host_checks/detail/box_tree.h"

#include <algorithm>
#include <utility>

namespace kvx3d::checks {
namespace {

constexpr int leafSize = 8;
// Squared distances within this relative difference are equal: far above their rounding errors and
// far below any real difference.
constexpr double tieShare = 1e-12;

double Square(double value) {
    return value * value;
}

double DistanceSquared(const Point& a, const Point& b) {
    return Square(a.x - b.x) + Square(a.y - b.y) + Square(a.z - b.z);
}

/// Distance of a coordinate from an interval, 0 inside it.
double Outside(double value, double min, double max) {
    return std::max(std::max(min - value, value - max), 0.0);
}

}  // namespace

BoxTree::BoxTree(const std::vector<int>& ids, const std::function<Point(int)>& position) {
    for (int id : ids) {
        entries.push_back({position(id), id});
    }
    boxes.push_back(BoxOf(0, static_cast<int>(entries.size())));
    for (std::size_t at = 0; at < boxes.size(); ++at) {
        if (boxes[at].last - boxes[at].first > leafSize) {
            boxes[at].child = static_cast<int>(boxes.size());
            Split(Box(boxes[at]));
        }
    }
}

BoxTree::Box BoxTree::BoxOf(int first, int last) const {
    Box box;
    box.first = first;
    box.last = last;
    box.min = box.max = entries[first].point;
    for (int i = first; i < last; ++i) {
        const Point& point = entries[i].point;
        box.min = {std::min(box.min.x, point.x), std::min(box.min.y, point.y),
                   std::min(box.min.z, point.z)};
        box.max = {std::max(box.max.x, point.x), std::max(box.max.y, point.y),
                   std::max(box.max.z, point.z)};
    }
    return box;
}

/// Halves the points of a box along its longest side and appends the boxes of both halves.
void BoxTree::Split(const Box& box) {
    const Point size = box.max - box.min;
    const int middle = box.first + (box.last - box.first) / 2;
    const auto halve = [&](auto coordinate) {
        std::nth_element(entries.begin() + box.first, entries.begin() + middle,
                         entries.begin() + box.last, [&](const Entry& a, const Entry& b) {
                             return coordinate(a.point) < coordinate(b.point);
                         });
    };
    if (size.x >= size.y && size.x >= size.z) {
        halve([](const Point& point) { return point.x; });
    } else if (size.y >= size.z) {
        halve([](const Point& point) { return point.y; });
    } else {
        halve([](const Point& point) { return point.z; });
    }
    boxes.push_back(BoxOf(box.first, middle));
    boxes.push_back(BoxOf(middle, box.last));
}

void BoxTree::Visit(const Box& leaf, const Point& query) {
    for (int i = leaf.first; i < leaf.last; ++i) {
        const double distance = DistanceSquared(entries[i].point, query);
        if (distance <= best * (1.0 + tieShare)) {
            candidates.push_back(i);
            if (distance < best) {
                best = distance;
                lastBest = i;
            }
        }
    }
}

const std::vector<int>& BoxTree::Nearest(const Point& query) {
    const auto distanceTo = [&](int box) {
        const Box& b = boxes[box];
        return Square(Outside(query.x, b.min.x, b.max.x)) +
               Square(Outside(query.y, b.min.y, b.max.y)) +
               Square(Outside(query.z, b.min.z, b.max.z));
    };
    candidates.clear();
    best = DistanceSquared(entries[lastBest].point, query);
    open.assign(1, {0, distanceTo(0)});
    while (!open.empty()) {
        const Open next = open.back();
        open.pop_back();
        if (next.distanceSquared > best * (1.0 + tieShare)) {
            continue;
        }
        const Box& box = boxes[next.box];
        if (box.child == 0) {
            Visit(box, query);
            continue;
        }
        Open nearer = {box.child, distanceTo(box.child)};
        Open farther = {box.child + 1, distanceTo(box.child + 1)};
        if (farther.distanceSquared < nearer.distanceSquared) {
            std::swap(nearer, farther);
        }
        open.push_back(farther);
        open.push_back(nearer);
    }
    found.clear();
    for (int i : candidates) {
        if (DistanceSquared(entries[i].point, query) <= best * (1.0 + tieShare)) {
            found.push_back(entries[i].id);
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace kvx3d::checks
