#include "edit/mesh/nearest_points.h"

#include "model/bounds.h"
#include "model/matrix.h"
#include "model/vector.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

namespace {
constexpr int leaf_size = 8;
} // namespace

nearest_points::nearest_points(const std::vector<point3_t> &points)
    : points_(points), order_(points.size()), leaf_of_(points.size()), out_(points.size())
{
    std::iota(order_.begin(), order_.end(), 0);
    if (points.empty())
        return;
    // Halving down to leaf_size makes no more than this many levels.
    const auto leaves = std::bit_ceil((points.size() + leaf_size - 1) / leaf_size);
    nodes_.resize(2 * leaves - 1);
    build(0, 0, static_cast<int>(points.size()));
}

void nearest_points::build(std::size_t at, int first, int end)
{
    node &box = nodes_[at];
    box.first = first;
    box.end = end;
    box.left = end - first;
    bounds_clear(&box.min, &box.max);
    for (int i = first; i < end; ++i)
        bounds_add(points_[order_[i]], &box.min, &box.max);
    if (2 * at + 2 >= nodes_.size()) {
        for (int i = first; i < end; ++i)
            leaf_of_[order_[i]] = static_cast<int>(at);
        return;
    }
    int axis = 0;
    for (int other = 1; other < 3; ++other) {
        if (axis_of(box.max, other) - axis_of(box.min, other) >
            axis_of(box.max, axis) - axis_of(box.min, axis))
            axis = other;
    }
    const int middle = first + (end - first) / 2;
    const auto less = [&](int a, int b) {
        const float x = axis_of(points_[a], axis), y = axis_of(points_[b], axis);
        // Points that are no numbers are last: an order must be strict.
        return std::isnan(y) ? !std::isnan(x) : x < y;
    };
    std::nth_element(order_.begin() + first, order_.begin() + middle, order_.begin() + end, less);
    build(2 * at + 1, first, middle);
    build(2 * at + 2, middle, end);
}

// At most the distance to any point in the box.
double nearest_points::distance_to_box(const node &box, const point3_t &to) const
{
    double squared = 0;
    for (int axis = 0; axis < 3; ++axis) {
        const double p = axis_of(to, axis);
        const double below = axis_of(box.min, axis) - p, above = p - axis_of(box.max, axis);
        const double away = std::max({below, above, 0.0});
        squared += away * away;
    }
    return std::sqrt(squared) * (1 - 1e-6); // the distances themselves are rounded
}

void nearest_points::search(std::size_t at, const point3_t &to, best_t &best) const
{
    const node &box = nodes_[at];
    if (box.left == 0 || distance_to_box(box, to) > static_cast<double>(best.distance))
        return;
    if (2 * at + 2 < nodes_.size()) {
        const std::size_t low = 2 * at + 1, high = 2 * at + 2;
        const bool high_first =
            distance_to_box(nodes_[high], to) < distance_to_box(nodes_[low], to);
        search(high_first ? high : low, to, best);
        search(high_first ? low : high, to, best);
        return;
    }
    for (int i = box.first; i < box.end; ++i) {
        const int point = order_[i];
        if (out_[point])
            continue;
        const float distance = points_dist(&points_[point], &to);
        if (distance < best.distance || (distance == best.distance && point < best.point))
            best = {distance, point};
    }
}

int nearest_points::nearest(const point3_t &to) const
{
    if (left() == 1)
        return static_cast<int>(std::find(out_.begin(), out_.end(), false) - out_.begin());
    best_t best = {bounds_start, -1};
    if (left() > 0)
        search(0, to, best);
    return best.point;
}

void nearest_points::take_out(int point)
{
    out_[point] = true;
    for (auto at = leaf_of_[point];; at = (at - 1) / 2) {
        --nodes_[at].left;
        if (at == 0)
            break;
    }
}
