#include "edit/dissolve.h"

#include "edit/document/edit_support.h"
#include "edit/edge_operation.h"
#include "edit/mesh/union_find.h"
#include "edit/mesh/vertex_use.h"
#include "model/vec3d.h"

#include <algorithm>
#include <array>
#include <set>
#include <unordered_map>
#include <utility>

namespace {

// Merges surfaces into polygons.
class dissolver {
public:
    // `thin_out`: vertices that the dissolved edges leave with two sides go.
    dissolver(edge_work &work, const std::vector<int> &edges, std::vector<bool> gone, bool thin_out)
        : work_(work), edges_(edges), gone_(std::move(gone)), groups_(work.mesh().num_surfaces()),
          thin_out_(thin_out)
    {
    }

    void run()
    {
        for (const int e : edges_) {
            const auto uses = work_.topology.uses(e);
            if (uses.size() == 2 && uses[0].surface != uses[1].surface &&
                uses[0].forward != uses[1].forward)
                groups_.join(uses[0].surface, uses[1].surface);
        }
        find_inner_edges();
        if (thin_out_)
            find_thin_vertices();
        merge_groups();
        drop_from_others();
        if (work_.changed > 0)
            work_.change.remove_unused();
    }

private:
    // All edges between surfaces of one group are dissolved, or slits would stay.
    void find_inner_edges()
    {
        inner_.resize(work_.topology.size());
        sizes_.resize(work_.mesh().num_surfaces());
        for (int s = 0; s < work_.mesh().num_surfaces(); ++s)
            ++sizes_[groups_.find(s)];
        for (int e = 0; e < work_.topology.size(); ++e) {
            const auto uses = work_.topology.uses(e);
            inner_[e] = uses.size() == 2 && uses[0].surface != uses[1].surface &&
                        groups_.find(uses[0].surface) == groups_.find(uses[1].surface);
        }
    }

    // Ends of dissolved edges that two edges are left at go, unless a surface would be left with too
    // few corners or the two edges would become one that is there already.
    void find_thin_vertices()
    {
        const flat_mesh &mesh = work_.mesh();
        gone_.resize(mesh.num_vertices());
        std::vector<int> corners_left(mesh.num_surfaces()); // of groups
        for (int c = 0, s = 0; c < mesh.num_corners(); ++c) {
            while (c >= mesh.end_corner(s))
                ++s;
            const int e = work_.topology.edge_of_corner(c);
            if (e < 0 || !inner_[e])
                ++corners_left[groups_.find(s)];
        }
        std::unordered_map<int, std::array<int, 2>> ends; // of the two edges of a thin vertex
        std::vector<int> thin;
        for (int e = 0; e < work_.topology.size(); ++e) {
            if (!inner_[e])
                continue;
            for (const int v : {work_.topology.edge(e).a, work_.topology.edge(e).b}) {
                std::vector<int> beyond;
                for (const int other : work_.topology.edges_at(v)) {
                    if (!inner_[other])
                        beyond.push_back(work_.topology.other_end(other, v));
                }
                if (beyond.size() == 2 && ends.emplace(v, std::array{beyond[0], beyond[1]}).second)
                    thin.push_back(v);
            }
        }
        std::set<std::pair<int, int>> joined;
        const vertex_corners corners(mesh);
        for (const int v : thin) {
            const auto [a, b] = ends[v];
            std::set<int> around;
            for (const std::int32_t c : corners.of(v))
                around.insert(groups_.find(corners.surface_of(c)));
            const int e = work_.topology.table().find(a, b);
            if (a == b || (e >= 0 && !inner_[e]) ||
                std::any_of(around.begin(), around.end(),
                            [&](int group) { return corners_left[group] <= 3; }) ||
                !joined.insert(std::minmax(a, b)).second)
                continue;
            gone_[v] = true;
            for (const int group : around)
                --corners_left[group];
            for (const auto &[end, other] : {std::pair{a, b}, std::pair{b, a}}) {
                const auto at = ends.find(end);
                if (at != ends.end())
                    std::replace(at->second.begin(), at->second.end(), v, other);
            }
        }
    }

    [[nodiscard]] bool is_gone(int v) const { return !gone_.empty() && gone_[v]; }

    void merge_groups()
    {
        // The outer sides of each group with several surfaces, in the order of the surfaces.
        std::unordered_map<int, std::vector<int>> outer;
        std::vector<int> order;
        const flat_mesh &mesh = work_.mesh();
        for (int s = 0; s < mesh.num_surfaces(); ++s) {
            const int group = groups_.find(s);
            if (sizes_[group] < 2)
                continue;
            if (group == s)
                order.push_back(s);
            for (int c = mesh.first_corner(s); c < mesh.end_corner(s); ++c) {
                const int e = work_.topology.edge_of_corner(c);
                if (e < 0 || !inner_[e])
                    outer[group].push_back(c);
            }
        }
        for (const int group : order) {
            if (!merge(group, outer[group]))
                return;
        }
        for (int s = 0; s < mesh.num_surfaces(); ++s) {
            if (sizes_[groups_.find(s)] > 1)
                work_.change.remove_surface(s);
        }
    }

    // The one polygon of a group from its outer sides; refused unless they are one simple outline.
    bool merge(int group, const std::vector<int> &sides)
    {
        const flat_mesh &mesh = work_.mesh();
        std::unordered_map<int, int> from; // the side that begins at a vertex
        for (const int c : sides) {
            if (!from.emplace(mesh.corner(c), c).second)
                return refuse(group, "the surfaces would touch themselves at a vertex");
        }
        std::vector<int> way;
        for (int c = sides.empty() ? -1 : sides.front(); c >= 0 && way.size() <= sides.size();) {
            way.push_back(c);
            const auto next = from.find(end_of_side(c));
            c = next == from.end() || next->second == sides.front() ? -1 : next->second;
        }
        if (way.size() != sides.size() || way.empty())
            return refuse(group, "the surfaces would surround a hole");
        std::erase_if(way, [&](int c) { return is_gone(mesh.corner(c)); });
        if (way.size() < 3)
            return refuse(group, "fewer than three corners would be left");
        work_.change.add_surface(group);
        for (std::size_t i = 0; i < way.size(); ++i) {
            work_.change.add_corner(mesh.corner(way[i]), mesh.uv(way[i]));
            work_.made_edges.push_back(
                {mesh.corner(way[i]), mesh.corner(way[(i + 1) % way.size()])});
        }
        work_.changed += sizes_[group];
        return true;
    }

    [[nodiscard]] int end_of_side(int c) const
    {
        const mesh_edge &edge = work_.topology.edge(work_.topology.edge_of_corner(c));
        return edge.a == work_.mesh().corner(c) ? edge.b : edge.a;
    }

    bool refuse(int group, const char *why)
    {
        work_.refusal = why;
        for (const int e : edges_) {
            if (inner_[e] && groups_.find(work_.topology.uses(e)[0].surface) == group)
                work_.faulty.push_back(e);
        }
        return false;
    }

    // Surfaces that stay lose the vertices that go.
    void drop_from_others()
    {
        if (gone_.empty() || !work_.refusal.empty())
            return;
        const vertex_corners corners(work_.mesh());
        for (int v = 0; v < work_.mesh().num_vertices(); ++v) {
            if (!gone_[v])
                continue;
            for (const std::int32_t c : corners.of(v)) {
                if (sizes_[groups_.find(corners.surface_of(c))] == 1)
                    drop_corner(corners.surface_of(c), c);
            }
        }
    }

    void drop_corner(int s, int c)
    {
        lost_.resize(sizes_.size());
        const int left = work_.mesh().end_corner(s) - work_.mesh().first_corner(s) - ++lost_[s];
        if (left < 3)
            work_.change.remove_surface(s);
        else
            work_.change.remove_corner(c);
        work_.changed = std::max(work_.changed, 1);
    }

    edge_work &work_;
    const std::vector<int> &edges_;
    std::vector<bool> gone_; // vertices; empty: none
    union_find groups_;      // of surfaces
    const bool thin_out_;
    std::vector<bool> inner_; // edges
    std::vector<int> sizes_;  // of groups, by their first surface
    std::vector<int> lost_;   // corners of surfaces that stay
};

// In vertex mode: all edges at the selected vertices, which go themselves.
void dissolve_vertices(edge_work &work)
{
    const std::vector<bool> marks = selected_vertex_marks(work.mesh());
    std::vector<int> edges;
    for (int e = 0; e < work.topology.size(); ++e) {
        if (marks[work.topology.edge(e).a] || marks[work.topology.edge(e).b])
            edges.push_back(e);
    }
    dissolver(work, edges, marks, false).run();
}

// In surface mode: the edges between two selected surfaces.
std::vector<int> edges_within_surfaces(const edge_work &work)
{
    std::vector<int> sides(work.topology.size()); // how many selected surfaces an edge has
    for (const owned_elements &owned : target_surfaces()) {
        if (object_flat(owned.object)->corners != work.mesh().corners)
            continue;
        for (const int s : owned.indices) {
            for (int c = work.mesh().first_corner(s); c < work.mesh().end_corner(s); ++c) {
                const int e = work.topology.edge_of_corner(c);
                if (e >= 0)
                    ++sides[e];
            }
        }
    }
    std::vector<int> within;
    for (int e = 0; e < work.topology.size(); ++e) {
        if (sides[e] == 2)
            within.push_back(e);
    }
    return within;
}

// ---- collapse ----

class collapser {
public:
    explicit collapser(edge_work &work) : work_(work), groups_(work.mesh().num_vertices())
    {
        for (const int e : work.edges)
            groups_.join(work.topology.edge(e).a, work.topology.edge(e).b);
    }

    void run()
    {
        make_middles();
        for (int s = 0; s < work_.mesh().num_surfaces(); ++s)
            redirect(s);
        if (work_.changed > 0)
            work_.change.remove_unused();
    }

private:
    void make_middles()
    {
        const flat_mesh &mesh = work_.mesh();
        std::vector<vec3d> sums(mesh.num_vertices());
        std::vector<int> counts(mesh.num_vertices());
        for (int v = 0; v < mesh.num_vertices(); ++v) {
            sums[groups_.find(v)] += to_vec3d(mesh.position(v));
            ++counts[groups_.find(v)];
        }
        to_.resize(mesh.num_vertices(), -1);
        for (int v = 0; v < mesh.num_vertices(); ++v) {
            if (groups_.find(v) != v || counts[v] < 2)
                continue;
            to_[v] = work_.change.add_vertex(to_point(sums[v] / counts[v]), v);
            work_.made_vertices.push_back(to_[v]);
            ++work_.changed;
        }
    }

    // A surface's corners on a group become one corner; what is left without an area goes.
    void redirect(int s)
    {
        const flat_mesh &mesh = work_.mesh();
        const int first = mesh.first_corner(s), end = mesh.end_corner(s);
        std::vector<int> kept; // corners
        const auto target = [&](int c) {
            const int to = to_[groups_.find(mesh.corner(c))];
            return to >= 0 ? to : mesh.corner(c);
        };
        bool any = false;
        for (int c = first; c < end; ++c) {
            any = any || target(c) != mesh.corner(c);
            if (kept.empty() || target(kept.back()) != target(c))
                kept.push_back(c);
        }
        if (!any)
            return;
        const bool line = mesh.surface(s).is_line();
        if (!line && kept.size() > 1 && target(kept.front()) == target(kept.back()))
            kept.pop_back();
        if (kept.size() < (line ? 2u : 3u)) {
            work_.change.remove_surface(s);
            return;
        }
        auto next = kept.begin();
        for (int c = first; c < end; ++c) {
            if (next == kept.end() || *next != c) {
                work_.change.remove_corner(c);
                continue;
            }
            ++next;
            if (target(c) != mesh.corner(c))
                work_.change.redirect_corner(c, target(c));
        }
    }

    edge_work &work_;
    union_find groups_; // of vertices
    std::vector<int> to_;
};

} // namespace

// ---- commands ----

void command_dissolve()
{
    if (select_mode() == SELECT_VERTEX) {
        run_edge_operation("dissolve", "surfaces", owners_of_selected_vertices(),
                           dissolve_vertices);
        return;
    }
    const bool edges = select_mode() == SELECT_EDGE;
    run_edge_operation("dissolve", "surfaces", [&](edge_work &work) {
        std::vector<int> within = work.edges;
        if (!edges)
            within = edges_within_surfaces(work);
        dissolver(work, within, {}, edges).run();
    });
}

void command_collapse()
{
    run_edge_operation("collapse", "vertices", [](edge_work &work) { collapser(work).run(); });
}
