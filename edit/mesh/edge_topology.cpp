#include "edit/mesh/edge_topology.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

// Of the objects asked for last, the newest first.
std::array<topology_ptr, 2> kept;

// An array with the same address has not changed.
bool have_same_polygons(const flat_mesh &a, const flat_mesh &b)
{
    return a.corners == b.corners && a.corner_offsets == b.corner_offsets &&
           a.surfaces == b.surfaces && a.num_vertices() == b.num_vertices();
}

} // namespace

edge_topology::tables_t::tables_t(const flat_mesh &mesh)
    : edges(mesh), of_corner(edges.edges_of_corners(mesh.num_corners())),
      first_at(mesh.num_vertices() + 1, 0), at_vertices(2 * static_cast<std::size_t>(edges.size()))
{
    for (int e = 0; e < edges.size(); ++e) {
        ++first_at[edges.edge(e).a + 1];
        ++first_at[edges.edge(e).b + 1];
    }
    for (std::size_t v = 1; v < first_at.size(); ++v)
        first_at[v] += first_at[v - 1];
    std::vector<int> next(first_at.begin(), first_at.end() - 1);
    for (int e = 0; e < edges.size(); ++e) {
        at_vertices[next[edges.edge(e).a]++] = e;
        at_vertices[next[edges.edge(e).b]++] = e;
    }
}

edge_topology::edge_topology(flat_ptr mesh)
    : mesh_(std::move(mesh)), tables_(std::make_shared<const tables_t>(*mesh_))
{
}

const edge_use *edge_topology::beyond(int e, int surface) const
{
    const auto all = uses(e);
    if (all.size() != 2 || all[0].surface == all[1].surface)
        return nullptr;
    return all[0].surface == surface ? &all[1] : &all[0];
}

int edge_topology::straight_on(int e, int v) const
{
    const auto around = edges_at(v);
    if (is_border(e)) {
        int found = -1;
        for (const int other : around) {
            if (other == e || !is_border(other))
                continue;
            if (found >= 0) // borders cross here
                return -1;
            found = other;
        }
        return found;
    }
    if (around.size() != 4 || uses(e).size() != 2)
        return -1;
    int found = -1;
    for (const int other : around) {
        if (uses(other).size() != 2)
            return -1;
        if (other == e)
            continue;
        const bool neighbour = std::any_of(uses(other).begin(), uses(other).end(), [&](auto &use) {
            return use.surface == uses(e)[0].surface || use.surface == uses(e)[1].surface;
        });
        if (!neighbour)
            found = found < 0 ? other : -2;
    }
    return std::max(found, -1);
}

edge_chain edge_topology::loop(int e) const
{
    edge_chain chain;
    for (const int end : {edge(e).a, edge(e).b}) {
        std::vector<int> way;
        int v = end;
        for (int at = straight_on(e, v); at >= 0; at = straight_on(at, v)) {
            if (at == e) {
                chain.closed = true;
                break;
            }
            way.push_back(at);
            v = other_end(at, v);
        }
        if (end == edge(e).a) {
            chain.edges.assign(way.rbegin(), way.rend());
            chain.edges.push_back(e);
            if (chain.closed)
                break;
        } else {
            chain.edges.insert(chain.edges.end(), way.begin(), way.end());
        }
    }
    return chain;
}

edge_chain edge_topology::ring(int e) const
{
    edge_chain chain = {{e}, false};
    const auto sides = uses(e);
    if (sides.size() > 2)
        return chain;
    std::vector<bool> seen; // made when a ring crosses itself is possible, that is always
    seen.resize(size());
    seen[e] = true;
    for (const edge_use &start : sides) {
        std::vector<int> way;
        const edge_use *use = &start;
        while (use != nullptr && is_quad(use->surface)) {
            const int next = tables_->of_corner[opposite_corner(use->surface, use->corner)];
            if (next < 0)
                break;
            if (seen[next]) {
                chain.closed = next == e;
                break;
            }
            seen[next] = true;
            way.push_back(next);
            use = beyond(next, use->surface);
        }
        if (&start == sides.data()) {
            chain.edges.insert(chain.edges.end(), way.begin(), way.end());
            if (chain.closed)
                break;
        } else {
            chain.edges.insert(chain.edges.begin(), way.rbegin(), way.rend());
        }
    }
    return chain;
}

std::vector<int> edge_topology::ring_quads(const edge_chain &ring) const
{
    std::vector<int> quads;
    const std::size_t count = ring.edges.size();
    for (std::size_t i = 0; i + (ring.closed ? 0 : 1) < count; ++i) {
        const int next = ring.edges[(i + 1) % count];
        for (const edge_use &use : uses(ring.edges[i])) {
            const bool taken = !quads.empty() && quads.back() == use.surface;
            if (is_quad(use.surface) && !taken &&
                tables_->of_corner[opposite_corner(use.surface, use.corner)] == next) {
                quads.push_back(use.surface);
                break;
            }
        }
    }
    return quads;
}

topology_ptr object_topology(object_t *object)
{
    const flat_ptr mesh = object_flat(object);
    auto found = std::find_if(kept.begin(), kept.end(), [&](const topology_ptr &topology) {
        return topology != nullptr && have_same_polygons(topology->mesh(), *mesh);
    });
    if (found == kept.end()) {
        --found;
        found->reset(); // its memory may serve the new one
        *found = std::make_shared<const edge_topology>(mesh);
    } else if ((*found)->mesh().positions != mesh->positions ||
               // The records are others after an undo that gave the arrays back.
               (*found)->mesh().vertex_records != mesh->vertex_records ||
               (*found)->mesh().surface_records != mesh->surface_records) {
        *found = std::make_shared<const edge_topology>(mesh, **found);
    }
    std::rotate(kept.begin(), found, found + 1);
    return kept.front();
}

void object_topology_forget() { kept = {}; }
