#include "edit/mesh/outline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <set>

namespace {

using vector3 = std::array<double, 3>;
using matrix3 = std::array<vector3, 3>;

// ---- the plane ----

// Turns the symmetric matrix in the plane of axes p and q so that its element p q becomes 0;
// `axes` collects the turns.
void jacobi_turn(matrix3 &m, matrix3 &axes, std::size_t p, std::size_t q)
{
    if (m[p][q] == 0)
        return;
    const double theta = (m[q][q] - m[p][p]) / (2 * m[p][q]);
    const double t = (theta < 0 ? -1.0 : 1.0) / (std::fabs(theta) + std::hypot(theta, 1.0));
    const double c = 1 / std::hypot(t, 1.0), s = t * c;
    for (std::size_t i = 0; i < 3; ++i) {
        const double ip = m[i][p], iq = m[i][q];
        m[i][p] = c * ip - s * iq;
        m[i][q] = s * ip + c * iq;
    }
    for (std::size_t i = 0; i < 3; ++i) {
        const double pi = m[p][i], qi = m[q][i];
        m[p][i] = c * pi - s * qi;
        m[q][i] = s * pi + c * qi;
        const double ip = axes[i][p], iq = axes[i][q];
        axes[i][p] = c * ip - s * iq;
        axes[i][q] = s * ip + c * iq;
    }
}

// Two directions of the plane: those in which the points spread most.
std::array<vector3, 2> plane_axes(const std::vector<vector3> &points)
{
    matrix3 spread = {}, axes = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    for (const vector3 &p : points) {
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j)
                spread[i][j] += p[i] * p[j];
        }
    }
    for (int sweep = 0; sweep < 12; ++sweep) {
        jacobi_turn(spread, axes, 0, 1);
        jacobi_turn(spread, axes, 0, 2);
        jacobi_turn(spread, axes, 1, 2);
    }
    std::array<std::size_t, 3> order = {0, 1, 2};
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return spread[a][a] > spread[b][b]; });
    const auto axis = [&](std::size_t i) {
        return vector3{axes[0][order[i]], axes[1][order[i]], axes[2][order[i]]};
    };
    return {axis(0), axis(1)};
}

// ---- crossings: a line sweeps from left to right over the sides it meets, kept in order ----

double turn(const plane_point &a, const plane_point &b, const plane_point &c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool before(const plane_point &a, const plane_point &b)
{
    return a.x != b.x ? a.x < b.x : a.y < b.y;
}

struct side_t {
    plane_point left, right;
    int number;
};

bool in_box(const side_t &side, const plane_point &p)
{
    return p.x >= side.left.x && p.x <= side.right.x &&
           p.y >= std::min(side.left.y, side.right.y) && p.y <= std::max(side.left.y, side.right.y);
}

bool meet(const side_t &a, const side_t &b)
{
    const double b_left = turn(a.left, a.right, b.left), b_right = turn(a.left, a.right, b.right);
    const double a_left = turn(b.left, b.right, a.left), a_right = turn(b.left, b.right, a.right);
    if (b_left * b_right < 0 && a_left * a_right < 0)
        return true;
    return (b_left == 0 && in_box(a, b.left)) || (b_right == 0 && in_box(a, b.right)) ||
           (a_left == 0 && in_box(b, a.left)) || (a_right == 0 && in_box(b, a.right));
}

bool same(const plane_point &a, const plane_point &b) { return a.x == b.x && a.y == b.y; }

class crossing_search {
public:
    explicit crossing_search(const std::vector<plane_point> &outline) : outline_(outline)
    {
        const std::size_t n = outline.size();
        for (std::size_t i = 0; i < n; ++i) {
            const plane_point &a = outline[i], &b = outline[(i + 1) % n];
            sides_.push_back({before(b, a) ? b : a, before(b, a) ? a : b, static_cast<int>(i)});
        }
    }
    [[nodiscard]] bool any() const;

private:
    struct event_t {
        plane_point at;
        bool ends;
        int side;
    };
    // Which side is lower where both are met.
    struct lower {
        bool operator()(const side_t *a, const side_t *b) const
        {
            if (a == b)
                return false;
            const double at = before(a->left, b->left) ? turn(a->left, a->right, b->left)
                                                       : -turn(b->left, b->right, a->left);
            if (at != 0)
                return at > 0;
            const double then = before(a->left, b->left) ? turn(a->left, a->right, b->right)
                                                         : -turn(b->left, b->right, a->right);
            return then != 0 ? then > 0 : a->number < b->number;
        }
    };

    [[nodiscard]] bool conflict(const side_t &a, const side_t &b) const;
    [[nodiscard]] std::vector<event_t> events() const;

    const std::vector<plane_point> &outline_;
    std::vector<side_t> sides_;
};

// Sides that follow each other share a point, and may lie on one another.
bool crossing_search::conflict(const side_t &a, const side_t &b) const
{
    const int n = static_cast<int>(sides_.size());
    const side_t &first = (a.number + 1) % n == b.number ? a : b;
    const side_t &second = &first == &a ? b : a;
    if ((first.number + 1) % n != second.number)
        return meet(a, b);
    const auto shared = outline_[second.number];
    const plane_point &end = same(second.left, shared) ? second.right : second.left;
    const plane_point &begin = same(first.left, shared) ? first.right : first.left;
    return turn(begin, shared, end) == 0 &&
           (begin.x - shared.x) * (end.x - shared.x) + (begin.y - shared.y) * (end.y - shared.y) >
               0;
}

std::vector<crossing_search::event_t> crossing_search::events() const
{
    std::vector<event_t> all;
    for (const side_t &side : sides_) {
        all.push_back({side.left, false, side.number});
        all.push_back({side.right, true, side.number});
    }
    std::sort(all.begin(), all.end(), [](const event_t &a, const event_t &b) {
        if (!same(a.at, b.at))
            return before(a.at, b.at);
        return a.ends != b.ends ? b.ends : a.side < b.side; // beginnings before ends
    });
    return all;
}

bool crossing_search::any() const
{
    std::set<const side_t *, lower> met;
    std::vector<decltype(met)::iterator> where(sides_.size());
    for (const event_t &event : events()) {
        const side_t &side = sides_[event.side];
        auto &at = where[event.side];
        if (event.ends) {
            const auto above = std::next(at);
            if (at != met.begin() && above != met.end() && conflict(**std::prev(at), **above))
                return true;
            met.erase(at);
            continue;
        }
        at = met.insert(&side).first;
        if (at != met.begin() && conflict(**std::prev(at), side))
            return true;
        if (std::next(at) != met.end() && conflict(side, **std::next(at)))
            return true;
    }
    return false;
}

} // namespace

fit_plane best_fit_plane(const std::vector<vec3d> &points)
{
    vec3d middle;
    for (const vec3d &p : points)
        middle += p / static_cast<double>(points.size());
    std::vector<vector3> away;
    for (const vec3d &p : points)
        away.push_back({p.x - middle.x, p.y - middle.y, p.z - middle.z});
    const auto [u, v] = plane_axes(away);
    return {middle, {u[0], u[1], u[2]}, {v[0], v[1], v[2]}};
}

std::vector<plane_point> in_best_fit_plane(const std::vector<point3_t> &points)
{
    std::vector<vec3d> places;
    for (const point3_t &p : points)
        places.push_back(to_vec3d(p));
    const fit_plane plane = best_fit_plane(places);
    std::vector<plane_point> flat;
    double area = 0;
    for (const vec3d &p : places)
        flat.push_back({dot(p - plane.middle, plane.along), dot(p - plane.middle, plane.across)});
    for (std::size_t i = 0; i < flat.size(); ++i) {
        const plane_point &a = flat[i], &b = flat[(i + 1) % flat.size()];
        area += a.x * b.y - b.x * a.y;
    }
    for (plane_point &p : flat)
        p.y = area < 0 ? -p.y : p.y;
    return flat;
}

bool outline_crosses_itself(const std::vector<plane_point> &outline)
{
    if (outline.size() < 3)
        return false;
    std::vector<plane_point> points = outline;
    std::sort(points.begin(), points.end(), before);
    return std::adjacent_find(points.begin(), points.end(), same) != points.end() ||
           crossing_search(outline).any();
}

std::vector<int> order_by_angle(const std::vector<plane_point> &points)
{
    std::vector<int> order(points.size());
    std::iota(order.begin(), order.end(), 0);
    const auto key = [&](int i) {
        const plane_point &p = points[i];
        return std::pair(std::atan2(p.y, p.x), std::hypot(p.x, p.y));
    };
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return key(a) < key(b); });
    return order;
}
