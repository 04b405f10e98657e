#include "edit/mesh/borders.h"

#include <algorithm>
#include <unordered_map>

namespace {

int after(const flat_mesh &mesh, const edge_use &use)
{
    return use.corner + 1 < mesh.end_corner(use.surface) ? use.corner + 1
                                                         : mesh.first_corner(use.surface);
}

int before(const flat_mesh &mesh, int s, int c)
{
    return c > mesh.first_corner(s) ? c - 1 : mesh.end_corner(s) - 1;
}

// The corner where a filling surface begins the side: the end of the neighbour's side.
border_corner begin_of(const flat_mesh &mesh, const edge_use &use)
{
    const int c = after(mesh, use);
    return {mesh.corner(c), mesh.uv(c), use.surface};
}

// The border edge that goes on from the neighbour's corner of `e`, turning round its vertex; -1
// where there is none.
int next_border(const edge_topology &topology, int e)
{
    const flat_mesh &mesh = topology.mesh();
    edge_use use = topology.uses(e)[0];
    const int v = mesh.corner(use.corner);
    for (std::size_t turns = topology.edges_at(v).size() + 1; turns > 0; --turns) {
        const int c =
            mesh.corner(use.corner) == v ? before(mesh, use.surface, use.corner) : after(mesh, use);
        const int other = topology.edge_of_corner(c);
        if (other < 0)
            return -1;
        if (topology.is_border(other))
            return other;
        const edge_use *next = topology.beyond(other, use.surface);
        if (next == nullptr)
            return -1;
        use = *next;
    }
    return -1;
}

} // namespace

std::vector<border_chain> holes_at(const edge_topology &topology, const std::vector<int> &edges)
{
    std::vector<border_chain> holes;
    std::vector<bool> seen(topology.size());
    for (const int start : edges) {
        if (seen[start] || !topology.is_border(start))
            continue;
        border_chain hole;
        int e = start;
        while (e >= 0 && !seen[e]) {
            seen[e] = true;
            hole.corners.push_back(begin_of(topology.mesh(), topology.uses(e)[0]));
            e = next_border(topology, e);
        }
        hole.closed = e == start;
        if (hole.closed && hole.corners.size() > 2)
            holes.push_back(std::move(hole));
    }
    return holes;
}

std::vector<border_chain> chains_of(const edge_topology &topology, const std::vector<int> &edges,
                                    const std::function<bool(const edge_use &)> &is_side)
{
    const flat_mesh &mesh = topology.mesh();
    // Sides by the vertex where a filling surface begins them, and the number that end there.
    std::unordered_map<int, edge_use> from;
    std::unordered_map<int, int> ends;
    for (const int e : edges) {
        const edge_use *side = nullptr;
        for (const edge_use &use : topology.uses(e)) {
            if (!is_side(use))
                continue;
            if (side != nullptr)
                return {};
            side = &use;
        }
        if (side == nullptr || !from.emplace(begin_of(mesh, *side).vertex, *side).second ||
            ++ends[mesh.corner(side->corner)] > 1)
            return {};
    }
    std::vector<border_chain> chains;
    const auto walk = [&](int v) {
        border_chain chain;
        const int start = v;
        for (auto at = from.find(v); at != from.end(); at = from.find(v)) {
            const edge_use use = at->second;
            from.erase(at);
            chain.corners.push_back(begin_of(mesh, use));
            v = mesh.corner(use.corner);
            if (v != start && !from.contains(v))
                chain.corners.push_back({v, mesh.uv(use.corner), use.surface});
        }
        chain.closed = v == start;
        chains.push_back(std::move(chain));
    };
    // Open chains from their beginnings, then what is left: closed ones.
    for (const int e : edges) {
        for (const int v : {topology.edge(e).a, topology.edge(e).b}) {
            if (from.contains(v) && !ends.contains(v))
                walk(v);
        }
    }
    for (const int e : edges) {
        if (from.contains(topology.edge(e).a))
            walk(topology.edge(e).a);
    }
    return chains;
}
