#include "edit/check/model_check_search.h"

#include "edit/mesh/position_index.h"
#include "model/bounds.h"
#include "model/vec3d.h"
#include "model/vector.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <unordered_map>
#include <utility>

namespace {

std::uint64_t mixed(std::uint64_t h)
{
    h ^= h >> 33;
    h *= 0xFF51AFD7ED558CCDULL;
    h ^= h >> 33;
    h *= 0xC4CEB9FE1A85EC53ULL;
    return h ^ (h >> 33);
}

// An open hash table of places in an array; equality and hash are the caller's.
class place_table {
public:
    explicit place_table(std::size_t elements)
        : slots_(std::bit_ceil(2 * elements + 2), -1), mask_(slots_.size() - 1)
    {
    }
    // The place that was entered first of those that `same` says yes to; else enters this one.
    template <class Same>
    int find_or_add(std::uint64_t hash, int at, Same &&same)
    {
        for (std::uint64_t slot = hash & mask_;; slot = (slot + 1) & mask_) {
            if (slots_[slot] < 0)
                return slots_[slot] = at;
            if (same(slots_[slot]))
                return slots_[slot];
        }
    }

private:
    std::vector<int> slots_;
    std::uint64_t mask_;
};

// The corners turned so that the lowest vertex is first and the lower of its neighbours second.
void canonical(std::span<const int> corners, std::vector<int> *out)
{
    const auto n = static_cast<std::ptrdiff_t>(corners.size());
    out->assign(corners.begin(), corners.end());
    if (n == 0)
        return;
    std::rotate(out->begin(), std::min_element(out->begin(), out->end()), out->end());
    if (n > 2 && out->back() < (*out)[1])
        std::reverse(out->begin() + 1, out->end());
}

} // namespace

std::vector<int> first_at_place(const std::vector<point3_t> &points)
{
    position_index index(points.size());
    std::vector<int> first(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        first[i] = index.find_or_add(points[i], static_cast<int>(i));
    return first;
}

std::vector<int> first_of_same_corners(const flat_mesh &mesh)
{
    const int n = mesh.num_surfaces();
    place_table table(n);
    std::vector<int> first(n);
    std::vector<int> own, other_corners;
    for (int s = 0; s < n; ++s) {
        const bool polygon = !mesh.surface(s).is_line();
        canonical(mesh.surface_corners(s), &own);
        std::uint64_t hash = polygon ? 1 : 0;
        for (const int v : own)
            hash = mixed(hash + static_cast<std::uint64_t>(v) + 1);
        first[s] = table.find_or_add(hash, s, [&](int other) {
            if (mesh.surface(other).is_line() == polygon ||
                mesh.surface_corners(other).size() != own.size())
                return false;
            canonical(mesh.surface_corners(other), &other_corners);
            return other_corners == own;
        });
    }
    return first;
}

polygon_shape shape_of(const flat_mesh &mesh, int surface)
{
    const auto corners = mesh.surface_corners(surface);
    const auto at = [&](std::size_t i) { return mesh.position(corners[i]); };
    polygon_shape shape;
    const std::size_t n = corners.size();
    if (n < 3)
        return shape;
    // Sums are formed about the first corner, so that a model far from the origin loses nothing.
    const point3_t origin = at(0);
    vec3d normal, middle;
    point3_t min, max;
    bounds_clear(&min, &max);
    for (std::size_t i = 0; i < n; ++i) {
        const point3_t p = point_sub(at(i), origin), q = point_sub(at((i + 1) % n), origin);
        normal += cross(to_vec3d(p), to_vec3d(q));
        middle += to_vec3d(p);
        shape.longest_side = std::max(shape.longest_side, point_length(point_sub(q, p)));
        bounds_add(p, &min, &max);
    }
    shape.double_area = std::hypot(normal.x, normal.y, normal.z);
    shape.extent = point_length(point_sub(max, min));
    if (n == 3 || shape.double_area == 0)
        return shape;
    for (std::size_t i = 0; i < n; ++i) {
        const vec3d p = to_vec3d(point_sub(at(i), origin));
        const double distance = dot(p - middle / static_cast<double>(n), normal);
        shape.out_of_plane = std::max(shape.out_of_plane, std::fabs(distance) / shape.double_area);
    }
    return shape;
}

// ---- vertices on edges ----

namespace {

// Points in a tree of boxes: each node halves its range of `order` at the middle of its longest
// axis. Asked for the points near a segment.
class point_tree {
public:
    point_tree(const std::vector<point3_t> &points, std::vector<int> &&order)
        : points_(points), order_(std::move(order))
    {
        if (!order_.empty())
            build(0, order_.size());
    }

    // Calls visit(place) for every point whose distance from the segment may be within `reach`.
    template <class Visit>
    void near(const point3_t &a, const point3_t &b, double reach, Visit &&visit) const
    {
        std::vector<std::size_t> stack;
        if (!nodes_.empty())
            stack.push_back(0);
        while (!stack.empty()) {
            const node &at = nodes_[stack.back()];
            stack.pop_back();
            if (!meets(at, a, b, reach))
                continue;
            if (at.right == 0) {
                for (std::size_t i = at.begin; i < at.end; ++i)
                    visit(order_[i]);
                continue;
            }
            stack.push_back(at.right);
            stack.push_back(static_cast<std::size_t>(&at - nodes_.data()) + 1); // the left one
        }
    }

private:
    struct node {
        point3_t min, max;
        std::size_t begin, end;
        std::size_t right = 0; // 0: a leaf
    };
    static constexpr std::size_t leaf_size = 8;

    void build(std::size_t begin, std::size_t end)
    {
        const std::size_t self = nodes_.size();
        node made = {{}, {}, begin, end};
        bounds_clear(&made.min, &made.max);
        for (std::size_t i = begin; i < end; ++i)
            bounds_add(points_[order_[i]], &made.min, &made.max);
        nodes_.push_back(made);
        if (end - begin <= leaf_size)
            return;
        const point3_t size = point_sub(made.max, made.min);
        float point3_t::*axis = size.x >= size.y && size.x >= size.z ? &point3_t::x
                                : size.y >= size.z                   ? &point3_t::y
                                                                     : &point3_t::z;
        const std::size_t middle = begin + (end - begin) / 2;
        const auto first = order_.begin();
        std::nth_element(first + static_cast<std::ptrdiff_t>(begin),
                         first + static_cast<std::ptrdiff_t>(middle),
                         first + static_cast<std::ptrdiff_t>(end),
                         [&](int i, int j) { return points_[i].*axis < points_[j].*axis; });
        build(begin, middle);
        nodes_[self].right = nodes_.size();
        build(middle, end);
    }

    // Whether the segment meets the node's box, grown by `reach` on every side.
    static bool meets(const node &at, const point3_t &a, const point3_t &b, double reach)
    {
        double from = 0, to = 1;
        for (float point3_t::*axis : {&point3_t::x, &point3_t::y, &point3_t::z}) {
            const double low = at.min.*axis - reach, high = at.max.*axis + reach;
            const double start = a.*axis, step = static_cast<double>(b.*axis) - start;
            if (step == 0) {
                if (start < low || start > high)
                    return false;
                continue;
            }
            const double t1 = (low - start) / step, t2 = (high - start) / step;
            from = std::max(from, std::min(t1, t2));
            to = std::min(to, std::max(t1, t2));
        }
        return from <= to;
    }

    const std::vector<point3_t> &points_;
    std::vector<int> order_;
    std::vector<node> nodes_; // the left child follows its parent
};

// How near a vertex must be to an edge: rounding of a point computed on it.
constexpr double t_reach = 1e-6; // of the diagonal of the model's box

bool lies_inside(const point3_t &p, const point3_t &a, const point3_t &b, double reach)
{
    const point3_t along = point_sub(b, a), to = point_sub(p, a);
    const double length = point_length(along);
    const double t = point_dot(to, along) / length; // distance from a
    if (!(t > reach && t < length - reach))
        return false;
    const auto part = static_cast<float>(t / length);
    return point_length(point_sub(to, point_scale(along, part))) <= reach;
}

} // namespace

std::vector<t_vertex> mesh_t_vertices(const flat_mesh &mesh, const edge_table &edges)
{
    const std::vector<point3_t> &points = *mesh.positions;
    std::vector<bool> is_open(points.size());
    std::vector<int> open_vertices, open_edges;
    point3_t min, max;
    bounds_clear(&min, &max);
    for (int e = 0; e < edges.size(); ++e) {
        if (edges.uses(e).size() != 1)
            continue;
        open_edges.push_back(e);
        for (const int v : {edges.edge(e).a, edges.edge(e).b}) {
            if (is_open[v])
                continue;
            is_open[v] = true;
            open_vertices.push_back(v);
            bounds_add(points[v], &min, &max);
        }
    }
    std::vector<t_vertex> found;
    if (open_vertices.empty())
        return found;
    const double reach = t_reach * point_length(point_sub(max, min));
    // Of vertices at one place the first speaks for all: a thousand of them at the tip of a cone
    // would be met by a thousand edges each.
    std::vector<point3_t> places;
    for (const int v : open_vertices)
        places.push_back(points[v]);
    const std::vector<int> first = first_at_place(places);
    std::vector<int> speakers;
    for (std::size_t i = 0; i < first.size(); ++i) {
        if (std::cmp_equal(first[i], i))
            speakers.push_back(open_vertices[i]);
    }
    const point_tree tree(points, std::move(speakers));
    for (const int e : open_edges) {
        const mesh_edge &edge = edges.edge(e);
        const point3_t &a = points[edge.a], &b = points[edge.b];
        if (point_equal(a, b))
            continue;
        const auto before = static_cast<std::ptrdiff_t>(found.size());
        tree.near(a, b, reach, [&](int v) {
            if (v != edge.a && v != edge.b && lies_inside(points[v], a, b, reach))
                found.push_back({v, e});
        });
        std::sort(found.begin() + before, found.end(),
                  [](const t_vertex &x, const t_vertex &y) { return x.vertex < y.vertex; });
    }
    return found;
}
