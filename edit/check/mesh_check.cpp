#include "edit/check/mesh_check.h"

#include "edit/check/model_check_notes.h"
#include "edit/check/model_check_search.h"
#include "edit/mesh/edge_table.h"
#include "edit/mesh/union_find.h"

#include <algorithm>

namespace {

// A polygon has no area when twice its area is below this share of its longest side squared.
constexpr double no_area = 1e-7;
// A polygon is no plane when a corner is further from it than this share of its extent.
constexpr double no_plane = 1e-4;

// The findings of one mesh while they are made.
class finder {
public:
    finder(const flat_ptr &mesh, int most, const std::function<bool()> &go_on)
        : mesh_(mesh), most_(most), go_on_(go_on)
    {
    }

    model_findings find()
    {
        const std::vector<int> first = first_at_place(*mesh_->positions);
        next([&] { find_by_edges(first); });
        next([&] { find_duplicate_surfaces(); });
        next([&] { find_shapes(); });
        next([&] { find_unused(); });
        next([&] { find_crossings(first); });
        std::stable_sort(
            found_.problems.begin(), found_.problems.end(),
            [](const found_problem &a, const found_problem &b) { return a.kind < b.kind; });
        return std::move(found_);
    }

private:
    void add(model_problem kind, int first, int second, int surface = -1, bool note = false)
    {
        const auto place = static_cast<std::size_t>(kind);
        if (note)
            ++found_.notes[place];
        if (found_.totals[place]++ < most_)
            found_.problems.push_back({kind, nullptr, first, second, surface, note});
    }
    // Pieces of an object stand in each other on purpose, as a table's leg in its top; a piece that goes
    // through itself is a fault.
    void find_crossings(const std::vector<int> &first)
    {
        const std::vector<std::pair<int, int>> pairs = crossing_surfaces(mesh_, go_on_);
        if (pairs.empty())
            return;
        union_find pieces(mesh_->num_vertices());
        for (int s = 0; s < mesh_->num_surfaces(); ++s) {
            for (const auto corner : mesh_->surface_corners(s))
                pieces.join(first[mesh_->surface_corners(s)[0]], first[corner]);
        }
        const auto piece_of = [&](int s) {
            return pieces.find(first[mesh_->surface_corners(s)[0]]);
        };
        for (const auto &[one, other] : pairs)
            add(model_problem::crossing, one, other, -1, piece_of(one) != piece_of(other));
    }
    [[nodiscard]] const point3_t &position(int v) const { return mesh_->position(v); }
    [[nodiscard]] bool polygon(int s) const { return !mesh_->surface(s).is_line(); }

    template <class Search>
    void next(const Search &search)
    {
        if (go_on_())
            search();
    }

    // The edges go before crossings are searched, which need as much memory again.
    void find_by_edges(const std::vector<int> &first)
    {
        const edge_table edges(*mesh_);
        if (!go_on_())
            return;
        const meant_parts meant = find_meant_parts(*mesh_, edges, first);
        next([&] { find_edges(edges, meant); });
        next([&] { find_t_vertices(edges); });
        next([&] { find_duplicate_vertices(first, meant); });
        next([&] { find_flipped(edges); });
    }

    void find_edges(const edge_table &edges, const meant_parts &meant)
    {
        for (int e = 0; e < edges.size(); ++e) {
            const auto uses = edges.uses(e);
            const mesh_edge &edge = edges.edge(e);
            if (uses.size() == 1) {
                add(model_problem::open_edge, edge.a, edge.b, uses.front().surface, meant.edges[e]);
            } else if (uses.size() > 2) {
                add(model_problem::crowded_edge, edge.a, edge.b, uses[2].surface);
            }
        }
    }

    void find_t_vertices(const edge_table &edges)
    {
        for (const t_vertex &found : mesh_t_vertices(*mesh_, edges)) {
            const mesh_edge &edge = edges.edge(found.edge);
            add(model_problem::t_vertex, found.vertex, edge.a,
                edges.uses(found.edge).front().surface);
        }
    }

    void find_duplicate_vertices(const std::vector<int> &first, const meant_parts &meant)
    {
        for (int v = 0; v < mesh_->num_vertices(); ++v) {
            if (first[v] != v)
                add(model_problem::duplicate_vertex, v, first[v], -1, meant.vertices[v]);
        }
    }

    void find_duplicate_surfaces()
    {
        const std::vector<int> first = first_of_same_corners(*mesh_);
        for (int s = 0; s < mesh_->num_surfaces(); ++s) {
            if (first[s] != s)
                add(model_problem::duplicate_surface, s, first[s]);
        }
    }

    void find_shapes()
    {
        for (int s = 0; s < mesh_->num_surfaces(); ++s) {
            if (!polygon(s))
                continue;
            const polygon_shape shape = shape_of(*mesh_, s);
            if (!(shape.double_area > no_area * shape.longest_side * shape.longest_side)) {
                add(model_problem::zero_area, s, -1);
            } else if (shape.out_of_plane > no_plane * shape.extent) {
                add(model_problem::non_planar, s, -1);
            }
        }
    }

    void find_flipped(const edge_table &edges)
    {
        std::vector<bool> told(mesh_->num_surfaces());
        for (int e = 0; e < edges.size(); ++e) {
            const auto uses = edges.uses(e);
            if (uses.size() != 2 || uses[0].forward != uses[1].forward ||
                uses[0].surface == uses[1].surface || told[uses[1].surface])
                continue;
            told[uses[1].surface] = true;
            add(model_problem::flipped, uses[1].surface, uses[0].surface);
        }
    }

    void find_unused()
    {
        for (const int v : flat_loose_vertices(*mesh_))
            add(model_problem::unused_vertex, v, -1);
    }

    const flat_ptr &mesh_;
    int most_;
    const std::function<bool()> &go_on_;
    model_findings found_;
};

} // namespace

model_findings mesh_find_problems(const flat_ptr &mesh, int most_of_each,
                                  const std::function<bool()> &go_on)
{
    return finder(mesh, most_of_each, go_on).find();
}
