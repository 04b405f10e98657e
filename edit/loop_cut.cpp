#include "edit/loop_cut.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "edit/edge_operation.h"
#include "edit/symmetry.h"
#include "model/identity.h"
#include "model/vector.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr int most_cuts = 1000;
constexpr float nearest_to_end = 1e-3f; // of a side: cuts never fall on its ends

point3_t point_between(const point3_t &p, const point3_t &q, float share)
{
    return point_add(p, point_scale(point_sub(q, p), share));
}
flat_uv uv_between(const flat_uv &p, const flat_uv &q, float share)
{
    return {p.u + (q.u - p.u) * share, p.v + (q.v - p.v) * share};
}

// Shares of a side at which it is cut, ascending.
std::vector<float> shares_of(int cuts, float slide)
{
    std::vector<float> shares;
    for (int i = 1; i <= cuts; ++i) {
        const float share = (static_cast<float>(i) + slide) / static_cast<float>(cuts + 1);
        shares.push_back(std::clamp(share, nearest_to_end, 1 - nearest_to_end));
    }
    return shares;
}

// For each edge of the ring the end from which the shares count: all on one side of the ring, that
// of `start` for this edge.
std::vector<int> starts_of(const edge_topology &topology, const edge_chain &ring,
                           const std::vector<int> &quads, int edge, int start)
{
    const flat_mesh &mesh = topology.mesh();
    std::vector<int> starts = {topology.edge(ring.edges.front()).a};
    for (std::size_t i = 0; i + 1 < ring.edges.size(); ++i) {
        const int first = mesh.first_corner(quads[i]);
        int c = first;
        while (topology.edge_of_corner(c) != ring.edges[i])
            ++c;
        const int across = topology.opposite_corner(quads[i], c);
        const int beside = first + (across - first + 1) % 4;
        starts.push_back(starts.back() == mesh.corner(c) ? mesh.corner(beside)
                                                         : mesh.corner(across));
    }
    const auto place = std::find(ring.edges.begin(), ring.edges.end(), edge) - ring.edges.begin();
    if (starts[place] != start) {
        for (std::size_t i = 0; i < starts.size(); ++i)
            starts[i] = topology.other_end(ring.edges[i], starts[i]);
    }
    return starts;
}

std::vector<loop_seed> seeds_of(const edge_work &work)
{
    return loop_seeds(work.topology, work.edges,
                      symmetry_is_on() ? symmetric_places(work.object) : std::vector<int>());
}

class loop_cutter {
public:
    loop_cutter(edge_work &work, std::vector<float> shares)
        : work_(work), shares_(std::move(shares)), cuts_(work.topology.size()),
          crossed_(work.mesh().num_surfaces())
    {
    }

    void run()
    {
        for (const auto &[e, start] : seeds_of(work_)) {
            if (cuts_[e].first >= 0)
                continue;
            const edge_chain ring = work_.topology.ring(e);
            const std::vector<int> quads = work_.topology.ring_quads(ring);
            if (quads.empty())
                continue;
            cut_edges(ring, starts_of(work_.topology, ring, quads, e, start));
            cross(ring, quads);
            ++work_.changed;
        }
        for (int s = 0; s < work_.mesh().num_surfaces(); ++s) {
            if (crossed_[s] != 0)
                replace(s);
        }
        for (int e = 0; e < work_.topology.size(); ++e) {
            if (cuts_[e].first >= 0)
                insert_into_others(e);
        }
    }

private:
    enum : std::uint8_t { first_and_third = 1, second_and_fourth = 2 };

    struct edge_cut {
        int start = -1; // the end from which the shares count
        int first = -1; // new vertex; -1: not cut
    };
    struct corner_t {
        int at;
        flat_uv uv;
    };

    [[nodiscard]] int count() const { return static_cast<int>(shares_.size()); }

    void cut_edges(const edge_chain &ring, const std::vector<int> &starts)
    {
        for (std::size_t i = 0; i < ring.edges.size(); ++i) {
            const int e = ring.edges[i];
            if (cuts_[e].first >= 0)
                continue;
            cuts_[e] = {starts[i], work_.change.num_vertices()};
            const point3_t &from = work_.mesh().position(starts[i]);
            const point3_t &to = work_.mesh().position(work_.topology.other_end(e, starts[i]));
            for (const float share : shares_)
                work_.change.add_vertex(point_between(from, to, share), starts[i]);
        }
    }

    void cross(const edge_chain &ring, const std::vector<int> &quads)
    {
        for (std::size_t i = 0; i < quads.size(); ++i) {
            const int first = work_.mesh().first_corner(quads[i]);
            const bool even = work_.topology.edge_of_corner(first) == ring.edges[i] ||
                              work_.topology.edge_of_corner(first + 2) == ring.edges[i];
            crossed_[quads[i]] |= even ? first_and_third : second_and_fourth;
        }
    }

    // The corner of the cut `i` (0: the side's start, count() + 1: its end) on the side of surface
    // `s` that begins at corner `c`, in the direction of the surface.
    [[nodiscard]] corner_t on_side(int s, int c, int i) const
    {
        const flat_mesh &mesh = work_.mesh();
        const int next = c + 1 < mesh.end_corner(s) ? c + 1 : mesh.first_corner(s);
        if (i == 0)
            return {mesh.corner(c), mesh.uv(c)};
        if (i == count() + 1)
            return {mesh.corner(next), mesh.uv(next)};
        const edge_cut &cut = cuts_[work_.topology.edge_of_corner(c)];
        const bool along = cut.start == mesh.corner(c);
        const int place = along ? i - 1 : count() - i;
        const float share = along ? shares_[place] : 1 - shares_[place];
        return {cut.first + place, uv_between(mesh.uv(c), mesh.uv(next), share)};
    }

    void add_quad(int like, const corner_t &a, const corner_t &b, const corner_t &c,
                  const corner_t &d)
    {
        work_.change.add_surface(like);
        for (const corner_t &corner : {a, b, c, d})
            work_.change.add_corner(corner.at, corner.uv);
    }

    void replace(int s)
    {
        const int first = work_.mesh().first_corner(s);
        work_.change.remove_surface(s);
        if (crossed_[s] == (first_and_third | second_and_fourth)) {
            replace_by_grid(s);
            return;
        }
        const int side = crossed_[s] == first_and_third ? first : first + 1;
        const int facing = work_.topology.opposite_corner(s, side);
        for (int i = 0; i <= count(); ++i) {
            const corner_t a = on_side(s, side, i), b = on_side(s, side, i + 1);
            const corner_t c = on_side(s, facing, count() - i);
            const corner_t d = on_side(s, facing, count() + 1 - i);
            // A ring that ends at an edge of more than two surfaces leaves vertices on the sides
            // beside this one's.
            work_.change.add_surface(s);
            add_corner(a);
            add_corner(b);
            if (i == count())
                add_cuts_of(s, after(s, side));
            add_corner(c);
            add_corner(d);
            if (i == 0)
                add_cuts_of(s, after(s, facing));
            if (i < count())
                work_.made_edges.push_back({b.at, c.at});
        }
    }

    [[nodiscard]] int after(int s, int c) const
    {
        return c + 1 < work_.mesh().end_corner(s) ? c + 1 : work_.mesh().first_corner(s);
    }
    void add_corner(const corner_t &corner) { work_.change.add_corner(corner.at, corner.uv); }
    void add_cuts_of(int s, int c)
    {
        const int e = work_.topology.edge_of_corner(c);
        for (int i = 1; e >= 0 && cuts_[e].first >= 0 && i <= count(); ++i)
            add_corner(on_side(s, c, i));
    }

    // Corner (i, j) of a quad that is cut both ways: i along its first side, j along its last one
    // backwards.
    void replace_by_grid(int s)
    {
        const int first = work_.mesh().first_corner(s);
        const int size = count() + 2;
        std::vector<corner_t> grid(static_cast<std::size_t>(size) * size);
        const auto at = [&](int i, int j) -> corner_t & { return grid[j * size + i]; };
        for (int i = 0; i < size; ++i) {
            at(i, 0) = on_side(s, first, i);
            at(size - 1, i) = on_side(s, first + 1, i);
            at(i, size - 1) = on_side(s, first + 2, size - 1 - i);
            at(0, i) = on_side(s, first + 3, size - 1 - i);
        }
        for (int j = 1; j < size - 1; ++j) {
            for (int i = 1; i < size - 1; ++i)
                at(i, j) = inside(at(i, 0), at(i, size - 1), share_of_row(s, j));
        }
        for (int j = 0; j + 1 < size; ++j) {
            for (int i = 0; i + 1 < size; ++i) {
                add_quad(s, at(i, j), at(i + 1, j), at(i + 1, j + 1), at(i, j + 1));
                if (j > 0)
                    work_.made_edges.push_back({at(i, j).at, at(i + 1, j).at});
                if (i > 0)
                    work_.made_edges.push_back({at(i, j).at, at(i, j + 1).at});
            }
        }
    }

    [[nodiscard]] float share_of_row(int s, int j) const
    {
        const int c = work_.mesh().first_corner(s) + 3;
        const edge_cut &cut = cuts_[work_.topology.edge_of_corner(c)];
        const bool from_top = cut.start == work_.mesh().corner(work_.mesh().first_corner(s));
        return from_top ? shares_[j - 1] : 1 - shares_[count() - j];
    }

    corner_t inside(const corner_t &p, const corner_t &q, float share)
    {
        const point3_t point =
            point_between(work_.change.position(p.at), work_.change.position(q.at), share);
        return {work_.change.add_vertex(point), uv_between(p.uv, q.uv, share)};
    }

    // Surfaces that the ring does not cross get the vertices into their side.
    void insert_into_others(int e)
    {
        for (const edge_use &use : work_.topology.uses(e)) {
            if (crossed_[use.surface] != 0)
                continue;
            for (int i = 1; i <= count(); ++i) {
                const corner_t corner = on_side(use.surface, use.corner, i);
                work_.change.insert_corner_after(use.corner, corner.at, corner.uv);
            }
        }
    }

    edge_work &work_;
    const std::vector<float> shares_;
    std::vector<edge_cut> cuts_;        // of each edge
    std::vector<std::uint8_t> crossed_; // of each surface
};

} // namespace

std::vector<loop_seed> loop_seeds(const edge_topology &topology, const std::vector<int> &edges,
                                  const std::vector<int> &twins)
{
    std::vector<loop_seed> seeds;
    std::vector<bool> taken(topology.size());
    for (const int e : edges) {
        if (taken[e])
            continue;
        const mesh_edge &edge = topology.edge(e);
        seeds.push_back({e, edge.a});
        taken[e] = true;
        if (twins.empty() || twins[edge.a] < 0 || twins[edge.b] < 0)
            continue;
        // It counts from the counterpart of the end.
        const int other = topology.table().find(twins[edge.a], twins[edge.b]);
        if (other >= 0 && !taken[other]) {
            seeds.push_back({other, twins[edge.a]});
            taken[other] = true;
        }
    }
    return seeds;
}

std::vector<point3_t> loop_cut_preview(const edge_topology &topology,
                                       const std::vector<loop_seed> &seeds, int cuts, float slide)
{
    std::vector<point3_t> points;
    const flat_mesh &mesh = topology.mesh();
    for (const auto &[edge, start] : seeds) {
        const edge_chain ring = topology.ring(edge);
        const std::vector<int> quads = topology.ring_quads(ring);
        if (quads.empty())
            continue;
        const std::vector<int> starts = starts_of(topology, ring, quads, edge, start);
        for (const float share : shares_of(cuts, slide)) {
            const auto point_of = [&](std::size_t i) {
                const int e = ring.edges[i];
                return point_between(mesh.position(starts[i]),
                                     mesh.position(topology.other_end(e, starts[i])), share);
            };
            for (std::size_t i = 0; i < quads.size(); ++i) {
                points.push_back(point_of(i));
                points.push_back(point_of((i + 1) % ring.edges.size()));
            }
        }
        // Their counterparts lie in the same ring: it is cut once.
        const bool crosses =
            std::any_of(seeds.begin() + 1, seeds.end(), [&](const loop_seed &seed) {
                return std::find(ring.edges.begin(), ring.edges.end(), seed.edge) !=
                       ring.edges.end();
            });
        if (crosses)
            break;
    }
    return points;
}

bool loop_cut_at(object_t *object, int edge, int cuts, float slide)
{
    const topology_ptr topology = object_topology(object);
    if (object->visible == 0 || object->locked != 0 || edge < 0 || edge >= topology->size() ||
        topology->ring_quads(topology->ring(edge)).empty())
        return false;
    const std::vector<float> shares =
        shares_of(std::clamp(cuts, 1, most_cuts), std::clamp(slide, -1.0f, 1.0f));
    run_edge_operation("loop cut", "rings", {{object, topology, {edge}}},
                       [&](edge_work &work) { loop_cutter(work, shares).run(); });
    return true;
}

// ---- commands ----

void command_loop_cut_at(int count, const char *const *words)
{
    object_t *object = object_by_identity(int_of(words[0]));
    const int a = int_of(words[1]), b = int_of(words[2]);
    const int cuts = count > 3 ? int_of(words[3]) : 1;
    const float slide = count > 4 ? finite_float_of(words[4]) : 0;
    int edge = -1;
    if (object != nullptr && std::min(a, b) >= 0 && std::max(a, b) < object->num_vertices)
        edge = object_topology(object)->table().find(a, b);
    if (object == nullptr || !loop_cut_at(object, edge, cuts, slide))
        display_message("loop cut - no quads lie beside that edge");
}

void command_loop_cut(int count, const char *const *words)
{
    const int cuts = count > 0 ? int_of(words[0]) : 1;
    const float slide = count > 1 ? finite_float_of(words[1]) : 0;
    const std::vector<float> shares =
        shares_of(std::clamp(cuts, 1, most_cuts), std::clamp(slide, -1.0f, 1.0f));
    run_edge_operation("loop cut", "rings",
                       [&](edge_work &work) { loop_cutter(work, shares).run(); });
}
