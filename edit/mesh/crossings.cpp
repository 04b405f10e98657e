#include "edit/mesh/crossings.h"

#include "base/worker.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>

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

// An end of the stretch of a triangle in another one's plane: a corner, or where an edge meets the
// plane. Most of those are never made: the stretch of the other triangle ends before.
struct end_t {
    int point = -1;           // not made yet
    int a = -1, b = -1;       // the edge
    double at = 0, wrong = 0; // about where it is along the line, and how far that may be wrong
};

// Where an edge meets the plane of a triangle.
struct crossing_key {
    int a, b, triangle;
    bool operator==(const crossing_key &) const = default;
};
struct crossing_hash {
    std::size_t operator()(const crossing_key &key) const
    {
        std::uint64_t hash = 0;
        for (const int part : {key.a, key.b, key.triangle}) {
            hash = (hash ^ static_cast<std::uint32_t>(part)) * 0x9E3779B97F4A7C15ULL;
            hash ^= hash >> 29;
        }
        return hash;
    }
};

class finder {
public:
    finder(exact_points &points, const std::vector<solid_triangle> &triangles)
        : points_(points), triangles_(triangles)
    {
    }

    // Adds the pair when more than its common corners may meet. Changes nothing else: pairs may be
    // considered side by side.
    void consider(int a, int b, std::vector<touching_pair> &out) const;
    // After all pairs were considered: points that are made later find the corners.
    void enter_corners();
    void meet(const touching_pair &pair);

    std::vector<touching_pair> pairs;
    crossings_t found;

private:
    // Made when it is asked for: kept ones took more memory than all else together.
    [[nodiscard]] exact_plane plane_of(const solid_triangle &t) const
    {
        return points_.plane(t.v[0], t.v[1], t.v[2]);
    }
    static bool has(const solid_triangle &t, int p)
    {
        return t.v[0] == p || t.v[1] == p || t.v[2] == p;
    }
    [[nodiscard]] bool is_beside(const solid_triangle &of, const solid_triangle &other) const;
    [[nodiscard]] bool pass_by(const touching_pair &pair) const;
    bool sides(const solid_triangle &of, const solid_triangle &other, int shared,
               signs_t *out) const;
    [[nodiscard]] std::array<end_t, 2> on_plane(const solid_triangle &t, int plane,
                                                const signs_t &sides, int axis) const;
    [[nodiscard]] end_t end_on(int a, int b, const exact_plane &plane, int axis) const;
    int made(end_t &end, int plane);
    bool before(end_t &x, int x_plane, end_t &y, int y_plane, int axis);
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
    std::unordered_map<crossing_key, int, crossing_hash> crossings_;
};

// Whether all corners but the common ones lie on one side of the other's plane, beyond doubt: most
// pairs are neighbours on a bent surface.
bool finder::is_beside(const solid_triangle &of, const solid_triangle &other) const
{
    int front = 0, back = 0;
    for (const int v : of.v) {
        if (has(other, v))
            continue;
        const int side = points_.rough_side(other.plane, other.v[0], v);
        if (side == 0)
            return false;
        ++(side > 0 ? front : back);
    }
    return (front == 0) != (back == 0);
}

// The sides of the triangle's corners to the other's plane; false when nothing but the common
// corners can meet.
bool finder::sides(const solid_triangle &of, const solid_triangle &other, int shared,
                   signs_t *out) const
{
    const exact_plane plane = plane_of(other);
    int front = 0, back = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const int side = has(other, of.v[i]) ? 0 : points_.side(plane, of.v[i]);
        (*out)[i] = side;
        front += side > 0 ? 1 : 0;
        back += side < 0 ? 1 : 0;
    }
    return !(front + back == 3 - shared && (front == 0 || back == 0) && shared < 3);
}

void finder::consider(int a, int b, std::vector<touching_pair> &out) const
{
    const solid_triangle &t = triangles_[a], &u = triangles_[b];
    if (is_beside(u, t) || is_beside(t, u))
        return;
    int shared = 0;
    for (const int v : t.v)
        shared += has(u, v) ? 1 : 0;
    touching_pair pair = {a, b, {}, {}};
    if (!sides(u, t, shared, &pair.b_sides) || !sides(t, u, shared, &pair.a_sides))
        return;
    const bool flat = pair.a_sides == signs_t{} && pair.b_sides == signs_t{};
    if ((flat && shared == 2 && !overlap(t, u)) || (shared == 0 && pass_by(pair)))
        return;
    out.push_back(pair);
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

// The axis that the line where two planes meet runs along most, -1 when that is in doubt.
int axis_of_line(const exact_plane &p, const exact_plane &q)
{
    int best = -1;
    double most = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
        const double size = std::fabs(p.normal[j] * q.normal[k] - p.normal[k] * q.normal[j]);
        const double wrong = 1e-14 * (p.size[j] * q.size[k] + p.size[k] * q.size[j]);
        if (size > wrong && size > most && size > 1e-200) {
            most = size;
            best = static_cast<int>(i);
        }
    }
    return best;
}

// Where the edge meets the plane, about: at the share of the edge that the distances of its ends make.
end_t finder::end_on(int a, int b, const exact_plane &plane, int axis) const
{
    end_t end = {-1, std::min(a, b), std::max(a, b), 0, std::numeric_limits<double>::infinity()};
    double p_wrong = 0, q_wrong = 0;
    const double p = points_.ahead(plane, end.a, &p_wrong),
                 q = points_.ahead(plane, end.b, &q_wrong);
    const double whole = std::fabs(p) + std::fabs(q);
    if (axis < 0 || p_wrong + q_wrong > 1e-3 * whole || whole < 1e-200)
        return end;
    const double from = points_.at(end.a)[axis], to = points_.at(end.b)[axis];
    end.at = from + (to - from) * (std::fabs(p) / whole);
    end.wrong = 1.1 * std::fabs(to - from) * (std::fabs(p) * q_wrong + std::fabs(q) * p_wrong) /
                    (whole * whole) +
                1e-15 * (std::fabs(from) + std::fabs(to));
    return end;
}

// The stretch of the triangle in a plane; the same end twice for a touch.
std::array<end_t, 2> finder::on_plane(const solid_triangle &t, int plane, const signs_t &sides,
                                      int axis) const
{
    std::array<end_t, 2> ends;
    std::size_t count = 0;
    for (std::size_t i = 0; i < 3 && count < 2; ++i) {
        const std::size_t j = (i + 1) % 3;
        if (sides[i] == 0)
            ends[count++] = {t.v[i], -1, -1, axis < 0 ? 0 : points_.at(t.v[i])[axis], 0};
        if (sides[i] * sides[j] < 0 && count < 2)
            ends[count++] = end_on(t.v[i], t.v[j], plane_of(triangles_[plane]), axis);
    }
    if (count == 1)
        ends[1] = ends[0];
    return ends;
}

// Whether the stretches of the two in each other's planes lie apart, beyond doubt.
bool finder::pass_by(const touching_pair &pair) const
{
    const solid_triangle &t = triangles_[pair.a], &u = triangles_[pair.b];
    if (pair.a_sides == signs_t{} || pair.b_sides == signs_t{})
        return false;
    const int axis = axis_of_line(plane_of(t), plane_of(u));
    if (axis < 0)
        return false;
    const std::array<end_t, 2> on_t = on_plane(u, pair.a, pair.b_sides, axis);
    const std::array<end_t, 2> on_u = on_plane(t, pair.b, pair.a_sides, axis);
    const auto is_before = [](const std::array<end_t, 2> &x, const std::array<end_t, 2> &y) {
        return std::max(x[0].at + x[0].wrong, x[1].at + x[1].wrong) <
               std::min(y[0].at - y[0].wrong, y[1].at - y[1].wrong);
    };
    return is_before(on_t, on_u) || is_before(on_u, on_t);
}

int finder::made(end_t &end, int plane)
{
    if (end.point < 0) {
        int &known = crossings_.try_emplace({end.a, end.b, plane}, -1).first->second;
        if (known < 0)
            known = points_.cross_edge(end.a, end.b, plane_of(triangles_[plane]));
        end.point = known;
    }
    return end.point;
}

// The order of ends along the line of two planes.
bool finder::before(end_t &x, int x_plane, end_t &y, int y_plane, int axis)
{
    if (axis >= 0 && std::fabs(x.at - y.at) > x.wrong + y.wrong)
        return x.at < y.at;
    const int p = made(x, x_plane), q = made(y, y_plane);
    return axis >= 0 ? points_.order(axis, p, q) < 0 : exact_before(points_, p, q);
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
    const exact_plane plane = plane_of(other);
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
    const exact_plane t_plane = plane_of(t), u_plane = plane_of(u);
    const int axis = axis_of_line(t_plane, u_plane);
    std::array<end_t, 2> on_t = on_plane(u, pair.a, pair.b_sides, axis);
    std::array<end_t, 2> on_u = on_plane(t, pair.b, pair.a_sides, axis);
    if (before(on_t[1], pair.a, on_t[0], pair.a, axis))
        std::swap(on_t[0], on_t[1]);
    if (before(on_u[1], pair.b, on_u[0], pair.b, axis))
        std::swap(on_u[0], on_u[1]);
    const bool u_last = before(on_t[0], pair.a, on_u[0], pair.b, axis);
    const bool t_first = before(on_t[1], pair.a, on_u[1], pair.b, axis);
    end_t &first = u_last ? on_u[0] : on_t[0], &last = t_first ? on_t[1] : on_u[1];
    const int first_plane = u_last ? pair.b : pair.a, last_plane = t_first ? pair.a : pair.b;
    if (before(last, last_plane, first, first_plane, axis))
        return;
    const int from = made(first, first_plane), to = made(last, last_plane);
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

// All pairs, in an order that the number of threads has no part in.
bool search_pairs(finder &search, const box_tree &tree, std::size_t triangles,
                  const std::function<bool(double)> &go_on)
{
    constexpr std::size_t worth_a_thread = 4000, a_piece = 1000;
    const auto pieces =
        tree.pieces(triangles < worth_a_thread ? 1 : static_cast<int>(triangles / a_piece));
    std::vector<std::vector<touching_pair>> found(pieces.size());
    const auto run = [&](int i) {
        tree.pairs_of(pieces[i], [&](int a, int b) {
            search.consider(std::min(a, b), std::max(a, b), found[i]);
            return true;
        });
    };
    double done = 0;
    const auto count = static_cast<int>(pieces.size());
    const bool complete =
        in_parallel(count, run, [&] { return go_on(std::min(1.0, ++done / count)); });
    for (const std::vector<touching_pair> &some : found)
        search.pairs.insert(search.pairs.end(), some.begin(), some.end());
    return complete;
}

} // namespace

crossings_t find_crossings(exact_points &points, const std::vector<solid_triangle> &triangles,
                           const box_tree &tree, const std::function<bool(double)> &go_on)
{
    finder search(points, triangles);
    const bool complete = search_pairs(search, tree, triangles.size(), go_on);
    search.enter_corners();
    for (std::size_t i = 0; complete && i < search.pairs.size(); ++i) {
        search.meet(search.pairs[i]);
        if (i % 256 == 0 && !go_on(1.0))
            break;
    }
    return std::move(search.found);
}
