#include "model/ear_cut.h"

#include "model/vector.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

struct flat_point_t {
    double x, y;
};

double side_of(const flat_point_t &a, const flat_point_t &b, const flat_point_t &c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// The outline seen along its facing, so that it runs counter-clockwise.
std::vector<flat_point_t> flatten_outline(const point3_t *corners, int count)
{
    double sum[3] = {};
    for (int i = 1; i + 1 < count; ++i) {
        const point3_t c =
            point_cross(point_sub(corners[i], corners[0]), point_sub(corners[i + 1], corners[0]));
        sum[0] += c.x;
        sum[1] += c.y;
        sum[2] += c.z;
    }
    const double size[3] = {std::fabs(sum[0]), std::fabs(sum[1]), std::fabs(sum[2])};
    const int drop = static_cast<int>(std::max_element(size, size + 3) - size);
    const bool flip = sum[drop] < 0;
    std::vector<flat_point_t> points(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        const double v[3] = {corners[i].x, corners[i].y, corners[i].z};
        const double a = v[(drop + 1) % 3];
        const double b = v[(drop + 2) % 3];
        points[i] = flip ? flat_point_t{b, a} : flat_point_t{a, b};
    }
    return points;
}

// The corners that are left, in a ring; when they are many also in a grid, two in a cell or so.
class outline_t {
public:
    explicit outline_t(std::vector<flat_point_t> points)
        : points_(std::move(points)), left_(static_cast<int>(points_.size())),
          next_(points_.size()), previous_(points_.size())
    {
        for (int i = 0; i < left_; ++i) {
            next_[i] = i + 1 == left_ ? 0 : i + 1;
            previous_[i] = i == 0 ? left_ - 1 : i - 1;
        }
        if (left_ > enough_for_a_grid)
            fill_grid();
    }

    [[nodiscard]] int left() const { return left_; }
    [[nodiscard]] int next(int corner) const { return next_[corner]; }
    [[nodiscard]] int previous(int corner) const { return previous_[corner]; }
    [[nodiscard]] bool has(int corner) const { return next_[corner] >= 0; }

    // Whether the triangle at this corner lies inside and holds no other corner.
    [[nodiscard]] bool is_ear(int tip) const
    {
        const flat_point_t &a = points_[previous(tip)];
        const flat_point_t &b = points_[tip];
        const flat_point_t &c = points_[next(tip)];
        const double ear = side_of(a, b, c);
        if (!(ear > 0))
            return false;
        const double slack = -1e-12 * ear;
        const auto holds = [&](int other) {
            const flat_point_t &p = points_[other];
            if ((p.x == a.x && p.y == a.y) || (p.x == b.x && p.y == b.y) ||
                (p.x == c.x && p.y == c.y))
                return false;
            return side_of(a, b, p) > slack && side_of(b, c, p) > slack && side_of(c, a, p) > slack;
        };
        if (in_grid_ == 0) {
            for (int other = next(next(tip)); other != previous(tip); other = next(other))
                if (holds(other))
                    return false;
            return true;
        }
        const auto [left, right] = std::minmax({a.x, b.x, c.x});
        const auto [low, high] = std::minmax({a.y, b.y, c.y});
        for (int row = row_of(low); row <= row_of(high); ++row) {
            const int first = cell_starts_[row * side_ + column_of(left)];
            const int last = cell_starts_[row * side_ + column_of(right) + 1];
            for (int i = first; i < last; ++i)
                if (has(cell_corners_[i]) && holds(cell_corners_[i]))
                    return false;
        }
        return true;
    }

    void remove(int corner)
    {
        next_[previous(corner)] = next(corner);
        previous_[next(corner)] = previous(corner);
        next_[corner] = -1;
        if (--left_ < in_grid_ / 2)
            fill_grid();
    }

private:
    static constexpr int enough_for_a_grid = 32;

    // Of numbers that are none: the first cell, where they do no harm.
    [[nodiscard]] int line_of(double offset, double scale) const
    {
        const double line = offset * scale;
        return line > 0 ? static_cast<int>(std::min(line, side_ - 1.0)) : 0;
    }
    [[nodiscard]] int column_of(double x) const { return line_of(x - corner_.x, scale_.x); }
    [[nodiscard]] int row_of(double y) const { return line_of(y - corner_.y, scale_.y); }

    void fill_grid()
    {
        in_grid_ = left_;
        side_ = std::max(1, static_cast<int>(std::sqrt(left_ / 2.0)));
        flat_point_t end = {-HUGE_VAL, -HUGE_VAL};
        corner_ = {HUGE_VAL, HUGE_VAL};
        for_each_left([&](int corner) {
            const flat_point_t &p = points_[corner];
            corner_ = {std::min(corner_.x, p.x), std::min(corner_.y, p.y)};
            end = {std::max(end.x, p.x), std::max(end.y, p.y)};
        });
        scale_ = {side_ / std::max(end.x - corner_.x, 1e-300),
                  side_ / std::max(end.y - corner_.y, 1e-300)};
        const auto cell_of = [&](int corner) {
            const flat_point_t &p = points_[corner];
            return row_of(p.y) * side_ + column_of(p.x);
        };
        cell_starts_.assign(side_ * side_ + 1, 0);
        for_each_left([&](int corner) { ++cell_starts_[cell_of(corner) + 1]; });
        std::partial_sum(cell_starts_.begin(), cell_starts_.end(), cell_starts_.begin());
        std::vector<int> ends(cell_starts_.begin(), cell_starts_.end() - 1);
        cell_corners_.resize(left_);
        for_each_left([&](int corner) { cell_corners_[ends[cell_of(corner)]++] = corner; });
    }

    template <class Visit>
    void for_each_left(Visit &&visit) const
    {
        for (int i = 0; i < static_cast<int>(points_.size()); ++i)
            if (has(i))
                visit(i);
    }

    std::vector<flat_point_t> points_;
    int left_;
    std::vector<int> next_, previous_;
    int in_grid_ = 0, side_ = 1;
    flat_point_t corner_ = {}, scale_ = {};
    std::vector<int> cell_starts_, cell_corners_;
};

} // namespace

void cut_ears(const point3_t *corners, int count, std::vector<int> &out)
{
    if (count < 3)
        return;
    if (count == 3) {
        out.insert(out.end(), {0, 1, 2});
        return;
    }
    outline_t outline(flatten_outline(corners, count));
    int tip = 0;
    int tried = 0;
    while (outline.left() > 3) {
        // After a whole round without an ear the outline crosses itself: any corner is cut off.
        if (tried < outline.left() && !outline.is_ear(tip)) {
            tip = outline.next(tip);
            ++tried;
            continue;
        }
        const int after = outline.next(tip);
        out.insert(out.end(), {outline.previous(tip), tip, after});
        outline.remove(tip);
        tip = after;
        tried = 0;
    }
    int first = 0;
    while (!outline.has(first))
        ++first;
    out.insert(out.end(), {first, outline.next(first), outline.previous(first)});
}

std::vector<int> surface_ears(const flat_mesh &flat, int surface)
{
    std::vector<point3_t> points;
    for (const std::int32_t index : flat.surface_corners(surface))
        points.push_back(flat.position(index));
    std::vector<int> ears;
    cut_ears(points.data(), static_cast<int>(points.size()), ears);
    return ears;
}
