#include "edit/edge_bevel.h"

#include "base/numbers.h"
#include "edit/document/selection_internal.h"
#include "edit/edge_operation.h"
#include "edit/mesh/polygon_plane.h"
#include "edit/mesh/vertex_fan.h"
#include "model/vec3d.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <unordered_map>

namespace {

constexpr int most_segments = 100;
constexpr double most_of_edge = 0.49; // that one end may take
constexpr double least_sine = 0.2;    // flatter angles move no farther
constexpr double cap_depth = 1.737; // of the arcs' middle below the corner, of the cap's own depth
constexpr double cap_height = 0.53; // of a round cap's middle towards the corner, by profile

struct bevel_options {
    double width = 0.1;
    int segments = 1;
    double profile = 0.5;
};

vec3d unit(const vec3d &a)
{
    const double size = length(a);
    return size > 0 ? a / size : vec3d{};
}

// Of two surfaces beside a new one the one that it takes after. Of a model and its mirror image they
// are the same ones: neither the order of the surfaces nor that of their corners decides, unless
// nothing else does.
bool comes_before(const flat_mesh &mesh, int s, int other)
{
    const flat_surface &a = mesh.surface(s), &b = mesh.surface(other);
    const auto look = [](const flat_surface &of) {
        return std::tuple(of.material, of.smooth, of.twosided);
    };
    if (look(a) != look(b))
        return look(a) < look(b);
    constexpr double alike = 1e-4;
    const double area = length(polygon_area_vector(mesh, s)),
                 other_area = length(polygon_area_vector(mesh, other));
    return area > other_area * (1 + alike);
}

// Of the corners at a vertex the one whose surface comes before the others.
int leading_corner(const flat_mesh &mesh, const vertex_corners &corners, const vertex_fan &fan)
{
    return *std::min_element(fan.corners.begin(), fan.corners.end(), [&](int a, int b) {
        return comes_before(mesh, corners.surface_of(a), corners.surface_of(b));
    });
}

// A vertex with bevelled edges: what replaces it in each of its polygons.
struct bevelled_vertex {
    vertex_fan fan;
    std::vector<int> bevelled;                    // places of bevelled edges in the fan, ascending
    std::unordered_map<int, std::vector<int>> at; // by corner: new vertices, in its polygon's order
    // Of each bevelled edge (by its number), from the right of the edge, as it leaves the vertex, to
    // its left.
    std::unordered_map<int, std::vector<int>> rows;
};

class edge_beveller {
public:
    edge_beveller(edge_work &work, const bevel_options &options)
        : work_(work), mesh_(work.mesh()), options_(options), corners_(mesh_),
          marked_(work.topology.size())
    {
    }

    void run()
    {
        for (const int e : work_.edges)
            marked_[e] = work_.topology.uses(e).size() == 2;
        for (const int e : work_.edges) {
            for (const int v : {work_.topology.edge(e).a, work_.topology.edge(e).b}) {
                if (marked_[e] && !vertices_.contains(v) && !add_vertex(v)) {
                    work_.refusal = "the surfaces round a vertex are no single fan";
                    work_.faulty = {e};
                    return;
                }
            }
        }
        limit_width();
        for (const int v : order_)
            make_points(v);
        for (int s = 0; s < mesh_.num_surfaces(); ++s)
            rebuild(s);
        for (const int e : work_.edges) {
            if (marked_[e])
                add_strip(e);
        }
        for (const int v : order_)
            add_cap(v);
        if (work_.changed > 0)
            work_.change.remove_unused();
    }

private:
    bool add_vertex(int v)
    {
        bevelled_vertex found;
        if (!find_vertex_fan(work_.topology, corners_, v, &found.fan))
            return false;
        for (std::size_t i = 0; i < found.fan.edges.size(); ++i) {
            if (marked_[found.fan.edges[i]])
                found.bevelled.push_back(static_cast<int>(i));
        }
        vertices_.emplace(v, std::move(found));
        order_.push_back(v);
        return true;
    }

    // ---- where the new vertices lie ----

    [[nodiscard]] vec3d along(int e, int v) const
    {
        return between(mesh_.position(v), mesh_.position(work_.topology.other_end(e, v)));
    }

    // The way from the vertex for a width of one, between two neighbouring bevelled edges: as far
    // from both, in the polygon of the corner.
    [[nodiscard]] vec3d way_inside(int corner) const
    {
        const int s = corners_.surface_of(corner);
        const point3_t &here = mesh_.position(mesh_.corner(corner));
        const vec3d in =
            unit(between(mesh_.position(mesh_.corner(corner_before(mesh_, s, corner))), here));
        const vec3d out =
            unit(between(here, mesh_.position(mesh_.corner(corner_after(mesh_, s, corner)))));
        const vec3d normal = to_vec3d(mesh_.face_normal(s));
        const vec3d a = unit(cross(normal, in)), b = unit(cross(normal, out));
        return (a + b) / std::max(1 + dot(a, b), least_sine);
    }

    // The same on an edge beside bevelled ones.
    [[nodiscard]] vec3d way_on(int v, int e, const std::vector<int> &beside) const
    {
        const vec3d way = unit(along(e, v));
        double sum = 0;
        for (const int other : beside)
            sum += 1 / std::max(length(cross(way, unit(along(other, v)))), least_sine);
        return way * (sum / static_cast<double>(beside.size()));
    }

    // A run of polygons of the fan without a bevelled edge between them.
    struct sector {
        int first, end; // corners of the fan, `end` not included; may pass its size
        std::vector<int>
            inner{}; // the edge that the point lies on, or the two in the middle that it
                     // lies between; none: inside the only polygon
        std::vector<int> beside{}; // its bevelled edges
    };

    // Between bevelled edges, and before the first and after the last one of an open fan. A single
    // bevelled edge of a closed fan is an end: two sectors, that do not share all polygons.
    [[nodiscard]] std::vector<sector> sectors_of(const bevelled_vertex &bevel) const
    {
        const vertex_fan &fan = bevel.fan;
        const std::vector<int> &places = bevel.bevelled;
        std::vector<sector> all;
        const auto number = [&](int i) { return fan.edge(i); };
        if (fan.closed && places.size() == 1) {
            const int a = places[0], n = fan.size();
            all.push_back({a, a + 1, {number(a + 1)}, {number(a)}});
            all.push_back({a + n - 1, a + n, {number(a + n - 1)}, {number(a)}});
            return all;
        }
        if (!fan.closed)
            all.push_back({places[0] - 1, places[0], {number(places[0] - 1)}, {number(places[0])}});
        for (std::size_t k = 0; k + (fan.closed ? 0 : 1) < places.size(); ++k) {
            const int a = places[k];
            const int b = k + 1 < places.size() ? places[k + 1] : places[0] + fan.size();
            sector between = {a, b, {}, {number(a), number(b)}};
            if (b - a > 1)
                between.inner.push_back(number((a + b) / 2));
            if (b - a > 1 && (b - a) % 2 != 0)
                between.inner.push_back(number((a + b + 1) / 2));
            all.push_back(between);
        }
        if (!fan.closed)
            all.push_back({places.back(),
                           places.back() + 1,
                           {number(places.back() + 1)},
                           {number(places.back())}});
        return all;
    }

    [[nodiscard]] vec3d way_of(int v, const bevelled_vertex &bevel, const sector &run) const
    {
        if (run.inner.empty())
            return way_inside(bevel.fan.corners[run.first % bevel.fan.size()]);
        vec3d sum;
        for (const int e : run.inner)
            sum += way_on(v, e, run.beside) / static_cast<double>(run.inner.size());
        return sum;
    }

    void limit_width()
    {
        for (const int v : order_) {
            const bevelled_vertex &bevel = vertices_.at(v);
            for (const sector &run : sectors_of(bevel)) {
                const vec3d way = way_of(v, bevel, run);
                std::vector<int> edges = run.beside;
                edges.insert(edges.end(), run.inner.begin(), run.inner.end());
                for (const int e : edges) {
                    const vec3d edge = along(e, v);
                    const double size = length(edge);
                    const double taken = size > 0 ? dot(way, edge) / size : 0;
                    if (taken > 0)
                        options_.width = std::min(options_.width, most_of_edge * size / taken);
                }
            }
        }
    }

    // ---- what replaces a vertex ----

    void make_points(int v)
    {
        bevelled_vertex &bevel = vertices_.at(v);
        const std::vector<sector> sectors = sectors_of(bevel);
        std::vector<int> points;
        for (const sector &run : sectors) {
            const vec3d at = to_vec3d(mesh_.position(v)) + way_of(v, bevel, run) * options_.width;
            points.push_back(work_.change.add_vertex(to_point(at), v));
        }
        if (bevel.fan.closed && bevel.bevelled.size() == 1)
            end_at(v, bevel, points[0], points[1]);
        else
            pass_through(v, bevel, sectors, points);
    }

    // The last edge of a chain: the polygons beside it get a point each, one in between both, several
    // keep the vertex.
    void end_at(int v, bevelled_vertex &bevel, int left, int right)
    {
        const vertex_fan &fan = bevel.fan;
        const int a = bevel.bevelled[0], n = fan.size();
        const auto corner = [&](int i) { return fan.corners[i % n]; };
        bevel.rows[fan.edge(a)] = row_between(v, {fan.edge(a)}, right, left);
        const std::vector<int> &row = bevel.rows[fan.edge(a)];
        if (n == 2) { // both polygons share the one other edge
            bevel.at[corner(a)] = {left};
            bevel.at[corner(a + 1)] = {right};
            return;
        }
        bevel.at[corner(a)] = {left};
        bevel.at[corner(a + n - 1)] = {right};
        if (n == 3) {
            bevel.at[corner(a + 1)] = row;
            return;
        }
        bevel.at[corner(a + 1)] = {v, left};
        bevel.at[corner(a + n - 2)] = {right, v};
    }

    void pass_through(int v, bevelled_vertex &bevel, const std::vector<sector> &sectors,
                      const std::vector<int> &points)
    {
        const vertex_fan &fan = bevel.fan;
        for (std::size_t k = 0; k < sectors.size(); ++k) {
            for (int i = sectors[k].first; i < sectors[k].end; ++i)
                bevel.at[fan.corners[i % fan.size()]] = {points[k]};
        }
        if (!fan.closed)
            keep_outer(v, bevel, points);
        const std::size_t count = bevel.bevelled.size();
        for (std::size_t k = 0; k < count; ++k) {
            const int e = fan.edge(bevel.bevelled[k]);
            const std::size_t right = fan.closed ? (k + count - 1) % count : k;
            const std::size_t left = fan.closed ? k : k + 1;
            if (fan.closed && count == 2 && k == 1) { // the same points, seen from the other side
                std::vector<int> row = bevel.rows.at(fan.edge(bevel.bevelled[0]));
                std::reverse(row.begin(), row.end());
                bevel.rows[e] = row;
            } else {
                std::vector<int> strips = {e};
                if (fan.closed && count == 2)
                    strips.push_back(fan.edge(bevel.bevelled[1]));
                bevel.rows[e] = row_between(v, strips, points[right], points[left]);
            }
        }
    }

    // Polygons of an open fan that do not touch a bevelled edge keep the vertex.
    void keep_outer(int v, bevelled_vertex &bevel, const std::vector<int> &points) const
    {
        const int first = bevel.bevelled.front() - 1, last = bevel.bevelled.back();
        const std::vector<int> &corners = bevel.fan.corners;
        if (first > 0)
            bevel.at[corners[first - 1]] = {points.front(), v};
        if (last + 1 < bevel.fan.size())
            bevel.at[corners[last + 1]] = {v, points.back()};
    }

    // The profile across a strip, or two that meet: a curve from one point to the other, drawn
    // towards the vertex.
    std::vector<int> row_between(int v, const std::vector<int> &strips, int from, int to)
    {
        std::vector<int> row = {from};
        const vec3d p = to_vec3d(work_.change.position(from));
        const vec3d q = to_vec3d(work_.change.position(to));
        // The old corner in the strip's cross-section: on the edge, as far along as the points.
        const vec3d old = to_vec3d(mesh_.position(v));
        vec3d corner = old;
        for (const int e : strips) {
            const vec3d way = unit(along(e, v));
            corner += way * ((dot(p - old, way) + dot(q - old, way)) /
                             (2 * static_cast<double>(strips.size())));
        }
        // A conic: its weight makes a straight line, a circle's arc, or the corner itself.
        const vec3d a = unit(p - corner), b = unit(q - corner);
        const double arc = std::sqrt(std::max(0.0, (1 - dot(a, b)) / 2));
        const double share = std::clamp(options_.profile, 0.0, 0.99);
        const double weight = arc * share / (1 - share);
        for (int i = 1; i < options_.segments; ++i) {
            const double t = static_cast<double>(i) / options_.segments;
            const double x = (1 - t) * (1 - t), y = 2 * weight * t * (1 - t), z = t * t;
            const vec3d point = (p * x + corner * y + q * z) / (x + y + z);
            row.push_back(work_.change.add_vertex(to_point(point), v));
        }
        row.push_back(to);
        return row;
    }

    // ---- the surfaces ----

    void rebuild(int s)
    {
        const int first = mesh_.first_corner(s), end = mesh_.end_corner(s);
        const auto replaced = [&](int c) -> const std::vector<int> * {
            const auto vertex = vertices_.find(mesh_.corner(c));
            if (vertex == vertices_.end())
                return nullptr;
            const auto at = vertex->second.at.find(c);
            return at == vertex->second.at.end() ? nullptr : &at->second;
        };
        bool any = false;
        for (int c = first; c < end; ++c)
            any = any || replaced(c) != nullptr;
        if (!any)
            return;
        work_.change.remove_surface(s);
        work_.change.add_surface(s);
        for (int c = first; c < end; ++c) {
            const std::vector<int> *points = replaced(c);
            if (points == nullptr) {
                work_.change.add_corner(mesh_.corner(c), mesh_.uv(c));
                continue;
            }
            for (const int at : *points)
                add_corner(at, s, c);
        }
    }

    // A corner at a new vertex, with the coordinates that the old corner's surface has there.
    void add_corner(int at, int s, int c)
    {
        work_.change.add_corner(at, corner_uv_at(mesh_, s, c, work_.change.position(at)));
    }

    void add_strip(int e)
    {
        const mesh_edge &edge = work_.topology.edge(e);
        const std::vector<int> &row = vertices_.at(edge.a).rows.at(e);
        std::vector<int> other = vertices_.at(edge.b).rows.at(e);
        std::reverse(other.begin(), other.end());
        // One of the surfaces beside it gives material and coordinates.
        const auto uses = work_.topology.uses(e);
        const int left = uses[0].forward ? 0 : 1;
        const edge_use &use =
            uses[comes_before(mesh_, uses[1 - left].surface, uses[left].surface) ? 1 - left : left];
        const int s = use.surface, next = corner_after(mesh_, s, use.corner);
        const int at_a = use.forward ? use.corner : next, at_b = use.forward ? next : use.corner;
        for (std::size_t j = 0; j + 1 < row.size(); ++j) {
            work_.change.add_surface(s);
            add_corner(row[j + 1], s, at_a);
            add_corner(row[j], s, at_a);
            add_corner(other[j], s, at_b);
            if (other[j + 1] != other[j])
                add_corner(other[j + 1], s, at_b);
        }
        work_.made_edges.push_back({row.front(), other.front()});
        work_.made_edges.push_back({row.back(), other.back()});
        ++work_.changed;
    }

    // What closes the corner between the strips.
    void add_cap(int v)
    {
        const bevelled_vertex &bevel = vertices_.at(v);
        const vertex_fan &fan = bevel.fan;
        std::vector<int> outline;
        for (const int place : bevel.bevelled) {
            const std::vector<int> &row = bevel.rows.at(fan.edge(place));
            for (const int at : row) {
                if (outline.empty() || outline.back() != at)
                    outline.push_back(at);
            }
        }
        const bool end = fan.closed && bevel.bevelled.size() == 1 && fan.size() > 3;
        if (end)
            outline.push_back(v);
        if (fan.closed && !outline.empty() && outline.front() == outline.back())
            outline.pop_back();
        const std::size_t strips = bevel.bevelled.size();
        if (outline.size() < 3 || !(end || strips > 2 || (!fan.closed && strips == 2)))
            return;
        const int corner = leading_corner(mesh_, corners_, fan);
        const int s = corners_.surface_of(corner);
        if (options_.segments == 1 || strips < 3) {
            add_surface(outline, s, corner);
            return;
        }
        add_round_cap(v, outline, s, corner);
    }

    void add_round_cap(int v, const std::vector<int> &outline, int s, int corner)
    {
        vec3d middle;
        for (const int at : outline)
            middle += to_vec3d(work_.change.position(at)) / static_cast<double>(outline.size());
        const vec3d up = to_vec3d(mesh_.position(v)) - middle;
        const vec3d top = middle + up * std::min(cap_height * options_.profile, 1.0);
        // Rings from the outline to the middle, on arcs about a point below the cap.
        const vec3d below = to_vec3d(mesh_.position(v)) - up * cap_depth;
        std::vector<int> ring = outline;
        const int rings = (options_.segments + 1) / 2;
        for (int k = 1; k < rings; ++k) {
            std::vector<int> next;
            for (const int at : outline)
                next.push_back(work_.change.add_vertex(
                    to_point(on_arc(below, to_vec3d(work_.change.position(at)), top,
                                    static_cast<double>(k) / rings)),
                    v));
            for (std::size_t i = 0; i < ring.size(); ++i) {
                const std::size_t j = (i + 1) % ring.size();
                add_surface({ring[i], ring[j], next[j], next[i]}, s, corner);
            }
            ring = next;
        }
        const int centre = work_.change.add_vertex(to_point(top), v);
        for (std::size_t i = 0; i < ring.size(); ++i)
            add_surface({ring[i], ring[(i + 1) % ring.size()], centre}, s, corner);
    }

    static vec3d on_arc(const vec3d &about, const vec3d &from, const vec3d &to, double share)
    {
        const vec3d a = from - about, b = to - about;
        const double radius = length(a) * (1 - share) + length(b) * share;
        return about + unit(unit(a) * (1 - share) + unit(b) * share) * radius;
    }

    void add_surface(const std::vector<int> &vertices, int s, int corner)
    {
        work_.change.add_surface(s);
        for (const int at : vertices)
            add_corner(at, s, corner);
    }

    edge_work &work_;
    const flat_mesh &mesh_;
    bevel_options options_;
    const vertex_corners corners_;
    std::vector<bool> marked_; // edges
    std::unordered_map<int, bevelled_vertex> vertices_;
    std::vector<int> order_; // of the vertices
};

// ---- vertices ----

// Cuts one vertex off: its polygons get a corner on each of its two edges there.
class vertex_beveller {
public:
    vertex_beveller(edge_work &work, double width)
        : work_(work), mesh_(work.mesh()), width_(width), corners_(mesh_)
    {
    }

    void run()
    {
        const std::vector<bool> marks = selected_vertex_marks(mesh_);
        // Of each corner of a cut vertex: the new vertices on the arriving and the leaving edge.
        std::unordered_map<int, std::array<int, 2>> cut;
        for (int v = 0; v < mesh_.num_vertices(); ++v) {
            vertex_fan fan;
            if (!marks[v] || corners_.of(v).empty())
                continue;
            if (!find_vertex_fan(work_.topology, corners_, v, &fan)) {
                work_.refusal = "the surfaces round a vertex are no single fan";
                return;
            }
            cut_off(v, fan, marks, &cut);
        }
        rebuild(cut);
        if (work_.changed > 0)
            work_.change.remove_unused();
    }

private:
    void cut_off(int v, const vertex_fan &fan, const std::vector<bool> &marks,
                 std::unordered_map<int, std::array<int, 2>> *cut)
    {
        std::vector<int> points;
        for (const int e : fan.edges) {
            const int other = work_.topology.other_end(e, v);
            const vec3d way = between(mesh_.position(v), mesh_.position(other));
            const double size = length(way);
            const double most = (marks[other] ? most_of_edge : 2 * most_of_edge) * size;
            const vec3d at = to_vec3d(mesh_.position(v)) + unit(way) * std::min(width_, most);
            points.push_back(work_.change.add_vertex(to_point(at), v));
        }
        for (int i = 0; i < fan.size(); ++i) {
            const int next = points[(i + 1) % static_cast<int>(points.size())];
            (*cut)[fan.corners[i]] = {next, points[i]};
        }
        for (std::size_t i = 0; i + (fan.closed ? 0 : 1) < points.size(); ++i)
            work_.made_edges.push_back({points[i], points[(i + 1) % points.size()]});
        ++work_.changed;
        if (points.size() < 3)
            return;
        const int corner = leading_corner(mesh_, corners_, fan);
        const int s = corners_.surface_of(corner);
        work_.change.add_surface(s);
        for (const int at : points)
            work_.change.add_corner(at, corner_uv_at(mesh_, s, corner, work_.change.position(at)));
    }

    void rebuild(const std::unordered_map<int, std::array<int, 2>> &cut)
    {
        for (int s = 0; s < mesh_.num_surfaces(); ++s) {
            const int first = mesh_.first_corner(s), end = mesh_.end_corner(s);
            bool any = false;
            for (int c = first; c < end; ++c)
                any = any || cut.contains(c);
            if (!any)
                continue;
            work_.change.remove_surface(s);
            work_.change.add_surface(s);
            for (int c = first; c < end; ++c) {
                const auto points = cut.find(c);
                if (points == cut.end()) {
                    work_.change.add_corner(mesh_.corner(c), mesh_.uv(c));
                    continue;
                }
                for (const int at : points->second)
                    work_.change.add_corner(at,
                                            corner_uv_at(mesh_, s, c, work_.change.position(at)));
            }
        }
    }

    edge_work &work_;
    const flat_mesh &mesh_;
    const double width_;
    const vertex_corners corners_;
};

} // namespace

// ---- commands ----

void command_edge_bevel(int count, const char *const *words)
{
    bevel_options options;
    if (count > 0)
        options.width = static_cast<double>(std::max(finite_float_of(words[0]), 0.0f));
    if (count > 1)
        options.segments = std::clamp(int_of(words[1]), 1, most_segments);
    if (count > 2)
        options.profile = static_cast<double>(std::clamp(finite_float_of(words[2]), 0.0f, 1.0f));
    run_edge_operation("bevel edges", "edges",
                       [&](edge_work &work) { edge_beveller(work, options).run(); });
}

void command_vertex_bevel(float width)
{
    run_edge_operation("bevel vertices", "vertices", owners_of_selected_vertices(),
                       [&](edge_work &work) {
                           vertex_beveller(work, std::max(static_cast<double>(width), 0.0)).run();
                       });
}
