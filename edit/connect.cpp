#include "edit/connect.h"

#include "edit/document/selection_internal.h"
#include "edit/edge_operation.h"
#include "edit/mesh/vertex_use.h"
#include "model/vec3d.h"

#include <algorithm>
#include <cmath>

namespace {

struct outline_corner {
    int at;
    flat_uv uv;
    bool joined; // new edges end here
};
using outline_t = std::vector<outline_corner>;

vec3d normal_of(const mesh_change &change, const outline_t &outline)
{
    vec3d sum;
    const vec3d origin = to_vec3d(change.position(outline.front().at));
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const vec3d p = to_vec3d(change.position(outline[i].at)) - origin;
        const vec3d q = to_vec3d(change.position(outline[(i + 1) % outline.size()].at)) - origin;
        sum += cross(p, q);
    }
    return sum;
}

// Whether the straight way from corner i to corner j stays inside the polygon: it lies within the
// angles at both ends, and no side crosses it.
bool chord_is_inside(const mesh_change &change, const outline_t &outline, std::size_t i,
                     std::size_t j)
{
    const std::size_t n = outline.size();
    const vec3d normal = normal_of(change, outline);
    const auto point = [&](std::size_t k) { return to_vec3d(change.position(outline[k % n].at)); };
    const auto turn = [&](const vec3d &a, const vec3d &b, const vec3d &c) {
        return dot(normal, cross(b - a, c - a));
    };
    const auto in_angle = [&](std::size_t at, std::size_t to) {
        const vec3d a = point(at + n - 1), b = point(at), c = point(at + 1), p = point(to);
        const bool convex = turn(a, b, c) >= 0;
        const bool left_of_next = turn(b, c, p) > 0, left_of_last = turn(a, b, p) > 0;
        return convex ? left_of_next && left_of_last : left_of_next || left_of_last;
    };
    if (!in_angle(i, j) || !in_angle(j, i))
        return false;
    const vec3d p = point(i), q = point(j);
    for (std::size_t k = 0; k < n; ++k) {
        const std::size_t next = (k + 1) % n;
        if (k == i || k == j || next == i || next == j)
            continue;
        const vec3d a = point(k), b = point(next);
        if ((turn(p, q, a) > 0) != (turn(p, q, b) > 0) &&
            (turn(a, b, p) > 0) != (turn(a, b, q) > 0))
            return false;
    }
    return true;
}

class connector {
public:
    connector(edge_work &work, std::vector<bool> joined)
        : work_(work), joined_(std::move(joined)), middles_(work.topology.size(), -1)
    {
        for (const int e : work.edges) {
            const mesh_edge &edge = work.topology.edge(e);
            const vec3d sum =
                to_vec3d(work.mesh().position(edge.a)) + to_vec3d(work.mesh().position(edge.b));
            middles_[e] = work.change.add_vertex(to_point(sum / 2), edge.a);
        }
    }

    void run()
    {
        for (int s = 0; s < work_.mesh().num_surfaces(); ++s) {
            if (!work_.mesh().surface(s).is_line() && !part(s))
                insert_middles(s);
        }
        if (!work_.edges.empty() && work_.made_edges.empty()) // middles alone are no result
            work_.changed = 0;
    }

private:
    // The outline with the middles of selected sides.
    [[nodiscard]] outline_t outline_of(int s) const
    {
        const flat_mesh &mesh = work_.mesh();
        outline_t outline;
        for (int c = mesh.first_corner(s); c < mesh.end_corner(s); ++c) {
            const flat_uv &uv = mesh.uv(c);
            outline.push_back({mesh.corner(c), uv, !joined_.empty() && joined_[mesh.corner(c)]});
            const int e = work_.topology.edge_of_corner(c);
            if (e < 0 || middles_[e] < 0)
                continue;
            const int next = c + 1 < mesh.end_corner(s) ? c + 1 : mesh.first_corner(s);
            outline.push_back(
                {middles_[e], {(uv.u + mesh.uv(next).u) / 2, (uv.v + mesh.uv(next).v) / 2}, true});
        }
        return outline;
    }

    void add_polygon(int like, const outline_t &outline, const std::vector<std::size_t> &places)
    {
        work_.change.add_surface(like);
        for (const std::size_t i : places)
            work_.change.add_corner(outline[i].at, outline[i].uv);
    }

    // False: the surface stays whole.
    bool part(int s)
    {
        const outline_t outline = outline_of(s);
        std::vector<std::size_t> ends;
        for (std::size_t i = 0; i < outline.size(); ++i) {
            if (outline[i].joined)
                ends.push_back(i);
        }
        if (ends.size() < 2)
            return false;
        const std::size_t n = outline.size();
        std::vector<std::vector<std::size_t>> pieces;
        for (std::size_t k = 0; k < ends.size(); ++k) {
            const std::size_t from = ends[k], to = ends[(k + 1) % ends.size()];
            const std::size_t steps = (to + n - from) % n;
            if (steps < 2 || steps + 1 == n)
                continue;
            if (!chord_is_inside(work_.change, outline, from, to))
                return false;
            std::vector<std::size_t> piece;
            for (std::size_t i = 0; i <= steps; ++i)
                piece.push_back((from + i) % n);
            pieces.push_back(std::move(piece));
        }
        if (pieces.empty())
            return false;
        work_.change.remove_surface(s);
        for (std::size_t k = 0; k < pieces.size(); ++k) {
            add_polygon(s, outline, pieces[k]);
            if (ends.size() > 2 || k == 0)
                work_.made_edges.push_back(
                    {outline[pieces[k].front()].at, outline[pieces[k].back()].at});
        }
        if (ends.size() > 2)
            add_polygon(s, outline, ends);
        ++work_.changed;
        return true;
    }

    void insert_middles(int s)
    {
        const flat_mesh &mesh = work_.mesh();
        for (int c = mesh.first_corner(s); c < mesh.end_corner(s); ++c) {
            const int e = work_.topology.edge_of_corner(c);
            if (e < 0 || middles_[e] < 0)
                continue;
            const int next = c + 1 < mesh.end_corner(s) ? c + 1 : mesh.first_corner(s);
            const flat_uv &p = mesh.uv(c), &q = mesh.uv(next);
            work_.change.insert_corner_after(c, middles_[e], {(p.u + q.u) / 2, (p.v + q.v) / 2});
        }
    }

    edge_work &work_;
    const std::vector<bool> joined_; // vertices; empty in edge mode
    std::vector<int> middles_;       // of edges
};

// Gives each fan of surfaces round a vertex, between split edges, a vertex of its own.
void split(edge_work &work)
{
    const flat_mesh &mesh = work.mesh();
    std::vector<bool> cut(work.topology.size()), touched(mesh.num_vertices());
    for (const int e : work.edges) {
        cut[e] = work.topology.uses(e).size() > 1;
        touched[work.topology.edge(e).a] = touched[work.topology.edge(e).b] = true;
    }
    const vertex_corners corners(mesh);
    const auto before = [&](int s, int c) {
        return c > mesh.first_corner(s) ? c - 1 : mesh.end_corner(s) - 1;
    };
    for (int v = 0; v < mesh.num_vertices(); ++v) {
        if (!touched[v])
            continue;
        const auto all = corners.of(v);
        // Corners hang together across edges at v that are not cut.
        std::vector<int> fan(all.size(), -1);
        int fans = 0;
        const auto joins = [&](std::int32_t c, std::int32_t d) {
            const int s = corners.surface_of(c), t = corners.surface_of(d);
            for (const int e :
                 {work.topology.edge_of_corner(c), work.topology.edge_of_corner(before(s, c))}) {
                if (e >= 0 && !cut[e] &&
                    (e == work.topology.edge_of_corner(d) ||
                     e == work.topology.edge_of_corner(before(t, d))))
                    return true;
            }
            return false;
        };
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (fan[i] >= 0)
                continue;
            std::vector<std::size_t> open = {i};
            fan[i] = fans;
            while (!open.empty()) {
                const std::size_t at = open.back();
                open.pop_back();
                for (std::size_t j = 0; j < all.size(); ++j) {
                    if (fan[j] < 0 && joins(all[at], all[j])) {
                        fan[j] = fans;
                        open.push_back(j);
                    }
                }
            }
            ++fans;
        }
        for (int k = 1; k < fans; ++k) {
            const int copy = work.change.add_vertex(mesh.position(v), v);
            for (std::size_t i = 0; i < all.size(); ++i) {
                if (fan[i] == k)
                    work.change.redirect_corner(all[i], copy);
            }
        }
        work.changed += fans > 1 ? 1 : 0;
    }
    for (const int e : work.edges)
        work.made_edges.push_back({work.topology.edge(e).a, work.topology.edge(e).b});
}

} // namespace

// ---- commands ----

void command_connect()
{
    const bool by_vertices = select_mode() == SELECT_VERTEX;
    run_edge_operation("connect", "surfaces",
                       by_vertices ? owners_of_selected_vertices() : selected_edges(),
                       [&](edge_work &work) {
                           std::vector<bool> joined;
                           if (by_vertices)
                               joined = selected_vertex_marks(work.mesh());
                           connector(work, std::move(joined)).run();
                       });
}

void command_split_edges() { run_edge_operation("split edges", "vertices", split); }
