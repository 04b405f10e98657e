#include "edit/mesh/crossings.h"

#include <array>
#include <cmath>

bool exact_before(const exact_points &points, int a, int b)
{
    for (int axis = 0; axis < 3; ++axis) {
        if (const int sign = points.order(axis, a, b); sign != 0)
            return sign < 0;
    }
    return false;
}

namespace {

using signs_t = std::array<int, 3>;

struct touching_pair {
    int a, b;
    signs_t a_sides, b_sides; // of the corners of one to the plane of the other
};

class finder {
public:
    finder(exact_points &points, const std::vector<solid_triangle> &triangles)
        : points_(points), triangles_(triangles)
    {
        planes_.reserve(triangles.size());
        for (const solid_triangle &t : triangles)
            planes_.push_back(points.plane(t.v[0], t.v[1], t.v[2]));
    }

    // Keeps the pair for later when more than its common corners may meet.
    void consider(int a, int b);
    // After all pairs were considered: points that are made later find the corners.
    void enter_corners();
    void meet(const touching_pair &pair);

    std::vector<touching_pair> pairs;
    crossings_t found;

private:
    [[nodiscard]] const exact_plane &plane_of(const solid_triangle &t) const
    {
        return planes_[&t - triangles_.data()];
    }
    static bool has(const solid_triangle &t, int p)
    {
        return t.v[0] == p || t.v[1] == p || t.v[2] == p;
    }
    bool sides(const solid_triangle &of, const solid_triangle &other, int shared,
               signs_t *out) const;
    std::array<int, 2> on_plane(const solid_triangle &t, const exact_plane &plane,
                                const signs_t &sides);
    void note(int triangle, int from, int to, const exact_plane &plane);
    void note_self(int a, int b, int from, int to);
    [[nodiscard]] double depth(const solid_triangle &t, const solid_triangle &other) const;

    [[nodiscard]] int turn(int axis, int a, int b, int c) const
    {
        return points_.turn(axis, a, b, c);
    }
    [[nodiscard]] bool overlap(const solid_triangle &a, const solid_triangle &b) const;
    [[nodiscard]] bool apart(const solid_triangle &a, const solid_triangle &b, int axis) const;
    void clip_sides(int into, int of);
    [[nodiscard]] bool between(int p, int a, int b) const
    {
        return exact_before(points_, a, b)
                   ? exact_before(points_, a, p) && exact_before(points_, p, b)
                   : exact_before(points_, b, p) && exact_before(points_, p, a);
    }

    exact_points &points_;
    const std::vector<solid_triangle> &triangles_;
    std::vector<exact_plane> planes_; // of the triangles
};

// The sides of the triangle's corners to the other's plane; false when nothing but the common
// corners can meet.
bool finder::sides(const solid_triangle &of, const solid_triangle &other, int shared,
                   signs_t *out) const
{
    const exact_plane &plane = plane_of(other);
    int front = 0, back = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const int side = has(other, of.v[i]) ? 0 : points_.side(plane, of.v[i]);
        (*out)[i] = side;
        front += side > 0 ? 1 : 0;
        back += side < 0 ? 1 : 0;
    }
    return !(front + back == 3 - shared && (front == 0 || back == 0) && shared < 3);
}

void finder::consider(int a, int b)
{
    const solid_triangle &t = triangles_[a], &u = triangles_[b];
    int shared = 0;
    for (const int v : t.v)
        shared += has(u, v) ? 1 : 0;
    touching_pair pair = {a, b, {}, {}};
    if (!sides(u, t, shared, &pair.b_sides) || !sides(t, u, shared, &pair.a_sides))
        return;
    const bool flat = pair.a_sides == signs_t{} && pair.b_sides == signs_t{};
    if (flat && shared == 2 && !overlap(t, u))
        return;
    pairs.push_back(pair);
}

void finder::enter_corners()
{
    std::vector<bool> entered(points_.num_input());
    for (const touching_pair &pair : pairs) {
        for (const int t : {pair.a, pair.b}) {
            for (const int v : triangles_[t].v) {
                if (!entered[v])
                    points_.enter(v);
                entered[v] = true;
            }
        }
    }
}

// The stretch of the triangle in the plane, in order; the same point twice for a touch.
std::array<int, 2> finder::on_plane(const solid_triangle &t, const exact_plane &plane,
                                    const signs_t &sides)
{
    std::array<int, 2> ends = {-1, -1};
    const auto add = [&](int p) { (ends[0] < 0 ? ends[0] : ends[1]) = p; };
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t j = (i + 1) % 3;
        if (sides[i] == 0)
            add(t.v[i]);
        if (sides[i] * sides[j] < 0)
            add(points_.cross_edge(std::min(t.v[i], t.v[j]), std::max(t.v[i], t.v[j]), plane));
    }
    if (ends[1] < 0)
        ends[1] = ends[0];
    else if (exact_before(points_, ends[1], ends[0]))
        std::swap(ends[0], ends[1]);
    return ends;
}

void finder::note(int triangle, int from, int to, const exact_plane &plane)
{
    const solid_triangle &t = triangles_[triangle];
    if (has(t, from) && has(t, to))
        return; // a corner, or a side
    found.meetings.push_back({triangle, from, to, plane});
}

// How far the triangle reaches through the other's plane, on the side where it does so less.
double finder::depth(const solid_triangle &t, const solid_triangle &other) const
{
    const exact_plane &plane = plane_of(other);
    const double length = std::hypot(plane.normal[0], plane.normal[1], plane.normal[2]);
    double front = 0, back = 0;
    for (const int v : t.v) {
        double distance = 0;
        for (std::size_t i = 0; i < 3; ++i)
            distance += plane.normal[i] * (points_.at(v)[i] - points_.at(plane.a)[i]) / length;
        front = std::max(front, distance);
        back = std::max(back, -distance);
    }
    return std::min(front, back);
}

void finder::note_self(int a, int b, int from, int to)
{
    const solid_triangle &t = triangles_[a], &u = triangles_[b];
    const auto &p = points_.at(from), &q = points_.at(to);
    const double length = std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]);
    found.self.push_back({a, b, std::min({length, depth(t, u), depth(u, t)})});
}

void finder::meet(const touching_pair &pair)
{
    const solid_triangle &t = triangles_[pair.a], &u = triangles_[pair.b];
    if (pair.a_sides == signs_t{} || pair.b_sides == signs_t{}) {
        if (overlap(t, u))
            found.overlapping.emplace_back(pair.a, pair.b);
        clip_sides(pair.a, pair.b);
        clip_sides(pair.b, pair.a);
        return;
    }
    const exact_plane &t_plane = plane_of(t), &u_plane = plane_of(u);
    const std::array<int, 2> on_t = on_plane(u, t_plane, pair.b_sides);
    const std::array<int, 2> on_u = on_plane(t, u_plane, pair.a_sides);
    if (on_t[0] < 0 || on_u[0] < 0)
        return;
    const int from = exact_before(points_, on_t[0], on_u[0]) ? on_u[0] : on_t[0];
    const int to = exact_before(points_, on_t[1], on_u[1]) ? on_t[1] : on_u[1];
    if (exact_before(points_, to, from))
        return;
    note(pair.a, from, to, u_plane);
    note(pair.b, from, to, t_plane);
    if (t.part == u.part && from != to)
        note_self(pair.a, pair.b, from, to);
}

// ---- in one plane ----

// Whether a side of `a` has all of `b` outside of it.
bool finder::apart(const solid_triangle &a, const solid_triangle &b, int axis) const
{
    const int facing = turn(axis, a.v[0], a.v[1], a.v[2]);
    for (int i = 0; i < 3; ++i) {
        bool outside = true;
        for (int k = 0; k < 3 && outside; ++k)
            outside = turn(axis, a.v[i], a.v[(i + 1) % 3], b.v[k]) * facing <= 0;
        if (outside)
            return true;
    }
    return false;
}

bool finder::overlap(const solid_triangle &a, const solid_triangle &b) const
{
    return !apart(a, b, a.axis) && !apart(b, a, a.axis);
}

// The sides of one triangle as far as they lie in the other.
void finder::clip_sides(int into, int of)
{
    const solid_triangle &t = triangles_[into], &u = triangles_[of];
    const int axis = t.axis;
    const auto inside = [&](int p) {
        for (int i = 0; i < 3; ++i) {
            if (turn(axis, t.v[i], t.v[(i + 1) % 3], p) * t.facing < 0)
                return false;
        }
        return true;
    };
    for (int k = 0; k < 3; ++k) {
        const int c = u.v[k], d = u.v[(k + 1) % 3];
        int from = -1, to = -1;
        const auto add = [&](int p) {
            from = from < 0 || exact_before(points_, p, from) ? p : from;
            to = to < 0 || exact_before(points_, to, p) ? p : to;
        };
        for (const int p : {c, d}) {
            if (inside(p))
                add(p);
        }
        for (int i = 0; i < 3; ++i) {
            const int a = t.v[i], b = t.v[(i + 1) % 3];
            const int a_side = turn(axis, c, d, a), b_side = turn(axis, c, d, b);
            if (a_side == 0 && between(a, c, d))
                add(a);
            if (a_side * b_side < 0 && turn(axis, a, b, c) * turn(axis, a, b, d) < 0)
                add(points_.cross_edge(std::min(c, d), std::max(c, d),
                                       points_.plane_along(a, b, axis)));
        }
        if (from >= 0)
            note(into, from, to, points_.plane_along(c, d, axis));
    }
}

} // namespace

crossings_t find_crossings(exact_points &points, const std::vector<solid_triangle> &triangles,
                           const box_tree &tree, const std::function<bool(double)> &go_on)
{
    finder search(points, triangles);
    long seen = 0;
    const bool complete = tree.pairs([&](int a, int b) {
        search.consider(std::min(a, b), std::max(a, b));
        // Each triangle has about six neighbours for its share.
        return ++seen % 4096 != 0 ||
               go_on(std::min(1.0, static_cast<double>(seen) / 6 /
                                       static_cast<double>(triangles.size())));
    });
    search.enter_corners();
    for (std::size_t i = 0; complete && i < search.pairs.size(); ++i) {
        search.meet(search.pairs[i]);
        if (i % 256 == 0 && !go_on(1.0))
            break;
    }
    return std::move(search.found);
}
