// The half of knife_cut that makes polygons of what the line cuts.

#include "edit/mesh/knife_cut.h"
#include "edit/mesh/planar_sides.h"
#include "edit/mesh/union_find.h"
#include "model/vec3d.h"

#include <algorithm>
#include <set>

namespace {

float mixed(float from, float to, double share)
{
    return static_cast<float>(from + (static_cast<double>(to) - from) * share);
}

} // namespace

// ---- chords of one polygon ----

void knife_cut::add_chord(int surface, int from, int to)
{
    if (from == to)
        return;
    for (const auto &[a, b] : chords_[surface]) {
        if ((a == from && b == to) || (a == to && b == from))
            return;
    }
    cross_chords(surface, from, to);
}

// Adds the chord, in parts where it crosses older ones.
void knife_cut::cross_chords(int surface, int from, int to)
{
    std::vector<chord_t> &chords = chords_[surface];
    bool mirrored = false;
    const int axis = axis_of(surface, &mirrored);
    for (std::size_t i = 0; i < chords.size(); ++i) {
        const auto [a, b] = chords[i];
        const exact_points points({position(from), position(to), position(a), position(b)});
        if (points.turn(axis, 0, 1, 2) * points.turn(axis, 0, 1, 3) >= 0 ||
            points.turn(axis, 2, 3, 0) * points.turn(axis, 2, 3, 1) >= 0)
            continue;
        const int j = (axis + 1) % 3, k = (axis + 2) % 3;
        const auto area = [&](int p, int q, int r) {
            const auto &o = points.at(p), &x = points.at(q), &y = points.at(r);
            return (x[j] - o[j]) * (y[k] - o[k]) - (x[k] - o[k]) * (y[j] - o[j]);
        };
        const double p = area(2, 3, 0), q = area(2, 3, 1), share = p / (p - q);
        const vec3d start = to_vec3d(position(from)), end = to_vec3d(position(to));
        const flat_uv u = uv_of(surface, from), v = uv_of(surface, to);
        const int made = node_inside(surface, to_point(start + (end - start) * share),
                                     {mixed(u.u, v.u, share), mixed(u.v, v.v, share)});
        if (made == from || made == to || made == a || made == b)
            continue;
        chords[i] = {a, made};
        chords.emplace_back(made, b);
        cross_chords(surface, from, made);
        cross_chords(surface, made, to);
        return;
    }
    chords.emplace_back(from, to);
}

std::vector<knife_cut::ring_corner_t> knife_cut::ring_of(int surface) const
{
    std::vector<ring_corner_t> ring;
    const auto corners = mesh_->surface_corners(surface);
    const int first = mesh_->first_corner(surface), n = static_cast<int>(corners.size());
    for (int i = 0; i < n; ++i) {
        const int a = corners[i], b = corners[i + 1 < n ? i + 1 : 0];
        ring.push_back({a, first + i, mesh_->uv(first + i)});
        const auto here = on_sides_.find(std::minmax(a, b));
        if (here == on_sides_.end())
            continue;
        std::vector<int> nodes = here->second;
        if (a > b)
            std::reverse(nodes.begin(), nodes.end());
        const flat_uv &p = mesh_->uv(first + i), &q = mesh_->uv(first + (i + 1 < n ? i + 1 : 0));
        for (const int node : nodes) {
            const double share = nodes_[node - mesh_->num_vertices()].share;
            const double way = a < b ? share : 1 - share;
            ring.push_back({node, -1, {mixed(p.u, q.u, way), mixed(p.v, q.v, way)}});
        }
    }
    return ring;
}

flat_uv knife_cut::uv_of(int surface, int node) const
{
    const int old = mesh_->num_vertices();
    if (node >= old && nodes_[node - old].low < 0)
        return nodes_[node - old].uv;
    for (const ring_corner_t &corner : ring_of(surface)) {
        if (corner.node == node)
            return corner.uv;
    }
    return {0, 0};
}

// Whether nothing of the polygon, its sides and chords, comes between the two.
bool knife_cut::sees(int surface, int a, int b) const
{
    bool mirrored = false;
    const int axis = axis_of(surface, &mirrored);
    const auto free_of = [&](int p, int q) {
        const exact_points points({position(a), position(b), position(p), position(q)});
        const int at_p = points.turn(axis, 0, 1, 2), at_q = points.turn(axis, 0, 1, 3);
        const bool shares = p == a || p == b || q == a || q == b;
        if (shares) // along it
            return at_p != 0 || at_q != 0;
        return at_p * at_q > 0 || points.turn(axis, 2, 3, 0) * points.turn(axis, 2, 3, 1) > 0;
    };
    const std::vector<ring_corner_t> ring = ring_of(surface);
    for (std::size_t i = 0; i < ring.size(); ++i) {
        if (!free_of(ring[i].node, ring[i + 1 < ring.size() ? i + 1 : 0].node))
            return false;
    }
    const std::vector<chord_t> &chords = chords_.at(surface);
    return std::all_of(chords.begin(), chords.end(),
                       [&](const chord_t &chord) { return free_of(chord.first, chord.second); });
}

// Joins up to `wanted` of the nodes to the nearest corners that they see, no node or corner twice.
void knife_cut::join_to_corners(int surface, const std::vector<int> &from, int wanted)
{
    struct way_t {
        double length;
        int node, corner;
    };
    std::vector<way_t> ways;
    for (const int node : from) {
        for (const int corner : mesh_->surface_corners(surface))
            ways.push_back({length(between(position(node), position(corner))), node, corner});
    }
    std::sort(ways.begin(), ways.end(),
              [](const way_t &a, const way_t &b) { return a.length < b.length; });
    std::set<int> taken;
    for (const way_t &way : ways) {
        if (wanted == 0)
            return;
        if (taken.contains(way.node) || taken.contains(way.corner) ||
            !sees(surface, way.node, way.corner))
            continue;
        chords_[surface].emplace_back(way.node, way.corner);
        taken.insert({way.node, way.corner});
        --wanted;
    }
}

void knife_cut::join_loose_ends(int surface)
{
    std::map<int, int> sides;
    for (const auto &[a, b] : chords_[surface]) {
        ++sides[a];
        ++sides[b];
    }
    const int old = mesh_->num_vertices();
    for (const auto &[node, count] : sides) {
        if (count == 1 && node >= old && nodes_[node - old].low < 0)
            join_to_corners(surface, {node}, 1);
    }
}

void knife_cut::join_rings(int surface)
{
    // What hangs together, and what of it hangs on the polygon's sides.
    std::map<int, int> numbers;
    const auto number = [&](int node) {
        return numbers.try_emplace(node, static_cast<int>(numbers.size()) + 1).first->second;
    };
    const std::vector<chord_t> chords = chords_[surface];
    union_find parts(2 * static_cast<int>(chords.size()) + 1);
    const int old = mesh_->num_vertices();
    for (const auto &[a, b] : chords) {
        parts.join(number(a), number(b));
        for (const int node : {a, b}) {
            if (node < old || nodes_[node - old].low >= 0)
                parts.join(number(node), 0);
        }
    }
    std::map<int, std::vector<int>> loose;
    for (const auto &[node, place] : numbers) {
        if (parts.find(place) != parts.find(0))
            loose[parts.find(place)].push_back(node);
    }
    for (const auto &[part, nodes] : loose)
        join_to_corners(surface, nodes, 2);
}

// ---- polygons ----

// The polygon falls into those that its sides and chords go round.
void knife_cut::cut_polygon(mesh_change &change, int surface, const std::vector<int> &places) const
{
    const int old = mesh_->num_vertices();
    const auto place_of = [&](int node) { return node < old ? node : places[node - old]; };
    const std::vector<chord_t> &chords = chords_.at(surface);
    std::map<int, int> numbers;
    std::vector<point3_t> at;
    std::vector<int> nodes;
    const auto number = [&](int node) {
        const auto [entry, fresh] = numbers.try_emplace(node, static_cast<int>(nodes.size()));
        if (fresh) {
            nodes.push_back(node);
            at.push_back(position(node));
        }
        return entry->second;
    };
    const std::vector<ring_corner_t> ring = ring_of(surface);
    std::map<int, flat_uv> uvs;
    for (const ring_corner_t &corner : ring)
        uvs.try_emplace(number(corner.node), corner.uv);
    for (const auto &[a, b] : chords) {
        for (const int node : {a, b})
            uvs.try_emplace(number(node), node < old ? flat_uv{0, 0} : nodes_[node - old].uv);
    }
    const exact_points points(at);
    bool mirrored = false;
    const int axis = axis_of(surface, &mirrored);
    planar_sides sides(points, axis, mirrored);
    for (std::size_t i = 0; i < ring.size(); ++i)
        sides.add(number(ring[i].node), number(ring[i + 1 < ring.size() ? i + 1 : 0].node));
    for (const auto &[a, b] : chords) {
        sides.add(number(a), number(b));
        sides.add(number(b), number(a));
    }
    sides.connect();
    change.remove_surface(surface);
    for (const std::vector<int> &loop : sides.trace()) {
        change.add_surface(surface);
        for (const int side : loop) {
            const int from = sides.sides()[side].from;
            change.add_corner(place_of(nodes[from]), uvs[from]);
        }
    }
}

void knife_cut::apply(mesh_change &change) const
{
    const int old = mesh_->num_vertices();
    std::vector<int> places; // of the new nodes
    for (const node_t &node : nodes_)
        places.push_back(change.add_vertex(node.at, node.low));
    const auto place_of = [&](int node) { return node < old ? node : places[node - old]; };
    for (const auto &[surface, chords] : chords_)
        cut_polygon(change, surface, places);
    if (on_sides_.empty())
        return;
    std::vector<bool> touched(old);
    for (const auto &[side, nodes] : on_sides_)
        touched[side.first] = touched[side.second] = true;
    for (int s = 0; s < mesh_->num_surfaces(); ++s) {
        const auto corners = mesh_->surface_corners(s);
        if (chords_.contains(s) || mesh_->surface(s).is_line() ||
            std::none_of(corners.begin(), corners.end(), [&](int v) { return touched[v]; }))
            continue;
        int corner = -1;
        for (const ring_corner_t &at : ring_of(s)) {
            if (at.corner >= 0)
                corner = at.corner;
            else
                change.insert_corner_after(corner, place_of(at.node), at.uv);
        }
    }
}
